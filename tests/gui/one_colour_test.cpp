// What has one colour all over needs no pixels of its own.
#include "gui/gui_rig.h"
#include "gui/surface.h"

#include <optional>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kDim = 0xB3112233;

CGhostSurface Made(int32_t width, int32_t height) {
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create({0, 0, width, height}, 1.0));
    return surface;
}

// Fills its window, and a corner of it once that is wanted.
class Filler : public CGhostGUIHandler {
public:
    void Destroy() override {}
    void OnPaint(CGhostSurface* surface, const GUI_RECT& client) override {
        surface->FillRect({0, 0, client.width, client.height}, kDim);
        if (corner) {
            surface->FillRect({0, 0, 1, 1}, 0xFFFFFFFF);
        }
    }
    bool corner = false;
};

class OneColour : public testing::Test {
protected:
    void SetUp() override {
        GUI_HOST_CALLBACKS host;
        host.create = [this](uint32_t, int32_t width, int32_t height) {
            told.push_back("create " + std::to_string(width) + " " + std::to_string(height));
        };
        host.upload = [this](uint32_t, const uint32_t* pixels, int32_t stride) {
            told.push_back("upload " + std::to_string(stride));
            firstPixel = pixels[0];
        };
        manager.SetHost(host);
        manager.SetScreen(1280, 720);
    }
    void TearDown() override { manager.Reset(); }

    GHOSTMANAGER_WINDOW* Make(uint32_t flags, int32_t width, int32_t height) {
        GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(nullptr, flags, &filler, false);
        manager.SetWindowPos(window, 0, 0, width, height);
        return window;
    }
    std::vector<std::string> Round() {
        told.clear();
        manager.Tick(0);
        return told;
    }

    CGhostManager manager;
    Filler filler;
    std::vector<std::string> told;
    uint32_t firstPixel = 0;
};

using Lines = std::vector<std::string>;

} // namespace

TEST_F(OneColour, ASurfaceIsOfOneUntilAPartOfItIsPainted) {
    CGhostSurface surface = Made(4, 3);
    EXPECT_EQ(surface.OneColour(), 0u) << "transparent";
    surface.FillRect({-1, -1, 9, 9}, kDim);
    EXPECT_EQ(surface.OneColour(), kDim) << "a colour on nothing is itself";
    surface.FillRect({0, 0, 4, 3}, 0xFF000000);
    EXPECT_EQ(surface.OneColour(), 0xFF000000u) << "an opaque one covers it";
    surface.FillRect({1, 1, 1, 1}, 0xFFFFFFFF);
    EXPECT_EQ(surface.OneColour(), std::nullopt);
    EXPECT_EQ(surface.Pixels()[0], 0xFF000000u) << "what was there before";
    EXPECT_NE(surface.Pixels()[4 + 1], 0xFF000000u);
    surface.Clear();
    EXPECT_EQ(surface.OneColour(), 0u);
    EXPECT_EQ(surface.Pixels()[4 + 1], 0u);
}

TEST_F(OneColour, ALargeWindowHasATextureOfOnePixelWhileItIsOfOne) {
    auto* const window = Make(0, 1280, 720);
    EXPECT_EQ(Round(), (Lines{"create 1 1", "upload 1"}));
    EXPECT_EQ(firstPixel, kDim);
    manager.Invalidate(window);
    EXPECT_EQ(Round(), (Lines{"upload 1"})) << "the texture is there";
    filler.corner = true;
    manager.Invalidate(window);
    EXPECT_EQ(Round(), (Lines{"create 1280 720", "upload 1280"}));
    filler.corner = false;
    manager.Invalidate(window);
    EXPECT_EQ(Round(), (Lines{"create 1 1", "upload 1"}));
}

TEST_F(OneColour, AWindowOfAnotherSizeHasATextureOfThatSize) {
    auto* const window = Make(0, 1280, 720);
    Round();
    told.clear();
    manager.SetWindowPos(window, 0, 0, 1000, 700);
    EXPECT_EQ(told, (Lines{"create 1000 700"}));
    EXPECT_EQ(Round(), (Lines{"create 1 1", "upload 1"}));
}

TEST_F(OneColour, ASmallWindowAndOneWithFlagsKeepTheirSize) {
    Make(0, 100, 50);
    EXPECT_EQ(Round(), (Lines{"upload 100"}));
    Make(7, 1280, 720);
    EXPECT_EQ(Round(), (Lines{"upload 1280"})) << "the host may ask for its size";
}

TEST_F(OneColour, TheManagersOwnCompositeFillsItsPlace) {
    std::vector<uint32_t> pixels(size_t{1280} * 720);
    manager.SetHost({});
    manager.SetCompositeBuffer(pixels.data(), 1280, 720, 1280);
    Make(0, 1000, 700);
    manager.Tick(0);
    manager.CompositeAll();
    EXPECT_EQ(pixels[0], kDim);
    EXPECT_EQ(pixels[size_t{699} * 1280 + 999], kDim);
    EXPECT_EQ(pixels[size_t{699} * 1280 + 1000], 0u);
    EXPECT_EQ(pixels[size_t{700} * 1280], 0u);
    manager.SetCompositeBuffer(nullptr, 0, 0, 0);
}
