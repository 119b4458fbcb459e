// The gallery's pages on screens of every usual shape: nothing is cut and nothing lies over its neighbour.
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "front/window_icon.h"
#include "gui/manager.h"
#include "gui/window_ex.h"

#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct SHAPE {
    int32_t width; // pixels
    int32_t height;
};
constexpr SHAPE kShapes[] = {
    {1280, 720 },
    {1366, 768 }, // 16 to 9, not quite
    {1024, 768 }, // 4 to 3
    {1600, 900 },
    {1440, 900 }, // 16 to 10
    {2560, 1080}, // 21 to 9
    {3840, 2160},
};

class GalleryTest : public testing::Test {
protected:
    void SetUp() override { LoadedTheme(); }
    void TearDown() override { Show(nullptr); }

    void Show(const GALLERY_PAGE* page) {
        if (root != nullptr) {
            manager.DestroyWindow(root);
        }
        manager.Tick(0);
        root = nullptr;
        if (page != nullptr) {
            root = GalleryWindow(nullptr, L"BATTLEMAIN", L"", 0, manager.ScreenRect());
            page->build(root);
        }
    }

    static GUI_RECT PlaceOf(const GHOSTMANAGER_WINDOW& window) {
        return {window.x, window.y, window.width, window.height};
    }

    // What is seen in a window, but for its own parts.
    static std::vector<const GHOSTMANAGER_WINDOW*> Contents(const GHOSTMANAGER_WINDOW& window) {
        std::vector<const GHOSTMANAGER_WINDOW*> contents;
        for (const auto* child = window.firstChild; child != nullptr; child = child->nextSibling) {
            if (child->visible && !child->nonClient && !PlaceOf(*child).Empty()) {
                contents.push_back(child);
            }
        }
        return contents;
    }

    static void ExpectTidy(const GHOSTMANAGER_WINDOW& window, const std::string& what) {
        const auto contents = Contents(window);
        const GUI_RECT inside{0, 0, window.clientRect.width, window.clientRect.height};
        for (size_t i = 0; i < contents.size(); ++i) {
            const GUI_RECT place = PlaceOf(*contents[i]);
            EXPECT_EQ(Intersection(place, inside), place)
                << what << ": cut at " << place.x << ", " << place.y;
            for (size_t k = i + 1; k < contents.size(); ++k) {
                const GUI_RECT other = PlaceOf(*contents[k]);
                EXPECT_TRUE(Intersection(place, other).Empty())
                    << what << ": " << place.x << ", " << place.y << " and " << other.x << ", "
                    << other.y;
            }
        }
    }

    // The page as it is drawn on a screen of these pixels, without a renderer.
    std::vector<uint32_t> Draw(const GALLERY_PAGE& page, int32_t width, int32_t height) {
        std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
        manager.SetScreen(width, height);
        manager.SetCompositeBuffer(pixels.data(), width, height, width);
        Show(&page);
        manager.Tick(0);
        manager.CompositeAll();
        Show(nullptr);
        manager.SetCompositeBuffer(nullptr, 0, 0, 0);
        return pixels;
    }

    static int Channel(uint32_t pixel, int shift) {
        return static_cast<int>(pixel >> shift & 0xFF);
    }

    CGhostManager& manager = CGhostManager::Get();
    GHOSTMANAGER_WINDOW* root = nullptr;
};

using Gallery = GalleryTest;

} // namespace

TEST_F(Gallery, NothingIsCutOrOverlapsOnAnyScreen) {
    constexpr size_t kBarAndArea = 2; // of the pages that show the program's screens
    for (const SHAPE& shape : kShapes) {
        manager.SetScreen(shape.width, shape.height);
        for (const GALLERY_PAGE& page : GalleryPages()) {
            const std::string what = std::string(page.name) + " at " + std::to_string(shape.width);
            Show(&page);
            const auto contents = Contents(*root);
            EXPECT_GE(contents.size(), kBarAndArea) << what;
            ExpectTidy(*root, what);
            if (contents.size() == kBarAndArea) {
                ExpectTidy(*contents[0], what);
                ExpectTidy(*contents[1], what);
            }
        }
    }
}

// After one tick: what a page opens beside its root, as a menu or a message, goes with it.
TEST_F(Gallery, APageLeavesNothingBehind) {
    manager.SetScreen(1280, 720);
    for (const GALLERY_PAGE& page : GalleryPages()) {
        Show(&page);
        manager.Tick(0);
        Show(nullptr);
        size_t left = 0;
        manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW&) { ++left; });
        EXPECT_EQ(left, 0u) << page.name;
        EXPECT_EQ(manager.ModalWindow(), nullptr) << page.name;
    }
}

// Ivory, dusk and the lit window are still told apart in 64 pixels, and the corners are clear.
TEST(Icon, IsTheLogo) {
    const std::vector<uint32_t> pixels = WindowIcon();
    ASSERT_EQ(pixels.size(), size_t{kWindowIconSize} * kWindowIconSize);
    EXPECT_EQ(pixels.front() >> 24, 0u);
    EXPECT_EQ(pixels.back() >> 24, 0u);
    const auto at = [&](size_t x, size_t y) {
        return pixels[y * kWindowIconSize + x]; // of 64; the logo has 48 units
    };
    EXPECT_EQ(at(56, 28), 0xFFF3EAD3) << "the crescent, at the right";
    EXPECT_EQ(at(22, 40), 0xFFFFB347) << "the window";
    const uint32_t shadow = at(30, 24);
    EXPECT_GT(shadow & 0xFF, shadow >> 8 & 0xFF) << "blue prevails in the shadow";
}

// A screen of twice the pixels shows the same page, only finer: four of its pixels are about one of the other's.
// Edges of letters and lines fall differently, so a few pixels differ much and all together little.
TEST_F(Gallery, APageLooksTheSameOnAFinerScreen) {
    constexpr int32_t kWidth = 1280;
    constexpr int32_t kHeight = 720;
    for (const GALLERY_PAGE& page : GalleryPages()) {
        const std::vector<uint32_t> coarse = Draw(page, kWidth, kHeight);
        const std::vector<uint32_t> fine = Draw(page, 2 * kWidth, 2 * kHeight);
        const auto at = [&](int32_t x, int32_t y) {
            return fine[static_cast<size_t>(y) * 2 * kWidth + static_cast<size_t>(x)];
        };
        int64_t differences = 0;
        int64_t farFromGround = 0; // pixels unlike the page's first one: a blank page has none
        for (int32_t y = 0; y < kHeight; ++y) {
            for (int32_t x = 0; x < kWidth; ++x) {
                const uint32_t one =
                    coarse[static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)];
                for (const int shift : {0, 8, 16}) {
                    const int mean =
                        (Channel(at(2 * x, 2 * y), shift) + Channel(at(2 * x + 1, 2 * y), shift) +
                         Channel(at(2 * x, 2 * y + 1), shift) +
                         Channel(at(2 * x + 1, 2 * y + 1), shift)) /
                        4;
                    differences += std::abs(mean - Channel(one, shift));
                }
                farFromGround += std::abs(Channel(one, 0) - Channel(coarse[0], 0)) > 40 ? 1 : 0;
            }
        }
        constexpr int64_t kSamples = int64_t{kWidth} * kHeight * 3;
        constexpr int64_t kMostMean = 4; // of 255
        EXPECT_LT(differences, kMostMean * kSamples) << page.name;
        EXPECT_GT(farFromGround, 1000) << page.name << " is blank";
        EXPECT_EQ(Draw(page, kWidth, kHeight), coarse) << page.name << " is drawn anew";
    }
}
