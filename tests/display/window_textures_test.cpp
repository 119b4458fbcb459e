#include "display/display_fixture.h"
#include "display/gl_private.h"
#include "display/screen_reader.h"
#include "display/window_textures.h"

#include <vector>

namespace {

constexpr uint32_t kWidth = 128;
constexpr uint32_t kHeight = 96;

class WindowTexturesTest : public DisplayTest {
protected:
    void TearDown() override {
        textures.End(); // while there is a context
        DisplayTest::TearDown();
    }

    // The screen after the drawing, on a black ground.
    template <typename Draw>
    static std::vector<uint32_t> Screen(Draw draw) {
        Ortho2D(kWidth, kHeight);
        ClearScreen(kBlack);
        draw();
        return ReadScreen(kWidth, kHeight);
    }
    static uint32_t At(const std::vector<uint32_t>& screen, uint32_t x, uint32_t y) {
        return screen[size_t{y} * kWidth + x];
    }

    WindowTextures textures;
};

// Four by three pixels, each of a colour of its own.
std::vector<uint32_t> Mosaic() {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < 12; ++i) {
        pixels.push_back(0xFF000000 | (i + 1) * 0x00140A05);
    }
    return pixels;
}

} // namespace

TEST_F(WindowTexturesTest, AWindowIsShownPixelForPixel) {
    const std::vector<uint32_t> mosaic = Mosaic();
    textures.Create(4, 4, 3);
    textures.Upload(4, mosaic.data(), 4);
    EXPECT_EQ(textures.Uploads(), 1u);
    const auto screen = Screen([&] { textures.Draw(4, 0, 0, 10, 20, 4, 3); });
    for (uint32_t y = 0; y < 3; ++y) {
        for (uint32_t x = 0; x < 4; ++x) {
            EXPECT_EQ(At(screen, 10 + x, 20 + y), mosaic[y * 4 + x]) << x << ", " << y;
        }
    }
    EXPECT_EQ(At(screen, 9, 20), kBlack);
    EXPECT_EQ(At(screen, 14, 20), kBlack);
    EXPECT_EQ(At(screen, 10, 19), kBlack);
    EXPECT_EQ(At(screen, 10, 23), kBlack);
}

TEST_F(WindowTexturesTest, APartIsShownAlsoWhereTexturesArePowersOfTwo) {
    GlForbidOddTextureSizes();
    const std::vector<uint32_t> mosaic = Mosaic();
    textures.Create(7, 3, 3); // rows of 4 pixels, of which 3 are the window's
    textures.Upload(7, mosaic.data(), 4);
    const auto screen = Screen([&] { textures.Draw(7, 1, 2, 0, 0, 2, 1); });
    EXPECT_EQ(At(screen, 0, 0), mosaic[2 * 4 + 1]);
    EXPECT_EQ(At(screen, 1, 0), mosaic[2 * 4 + 2]);
    EXPECT_EQ(At(screen, 2, 0), kBlack);
    EXPECT_EQ(At(screen, 0, 1), kBlack);
}

TEST_F(WindowTexturesTest, AlphaBlendsOverWhatIsThere) {
    const std::vector<uint32_t> pixels = {0x80FFFFFF, 0x00FFFFFF};
    textures.Create(4, 2, 1);
    textures.Upload(4, pixels.data(), 2);
    const auto screen = Screen([&] { textures.Draw(4, 0, 0, 0, 0, 2, 1); });
    EXPECT_NEAR(At(screen, 0, 0) & 0xFF, 0x80, 1);
    EXPECT_EQ(At(screen, 1, 0), kBlack);
}

TEST_F(WindowTexturesTest, UnknownWindowsAndSizesOfNothingDoNothing) {
    textures.Create(4, 0, 3);
    textures.Create(7, 3, -1);
    EXPECT_EQ(textures.Count(), 0u);
    const uint32_t pixel = kWhite;
    textures.Upload(4, &pixel, 1);
    textures.Destroy(4);
    EXPECT_EQ(textures.Uploads(), 0u);
    const auto screen = Screen([&] { textures.Draw(4, 0, 0, 0, 0, 8, 8); });
    EXPECT_EQ(At(screen, 0, 0), kBlack);
}

TEST_F(WindowTexturesTest, AFullTableLeavesFurtherWindowsWithoutATexture) {
    for (uint32_t id = 1; id <= kMostWindowTextures; ++id) {
        textures.Create(id, 1, 1);
    }
    EXPECT_EQ(textures.Count(), kMostWindowTextures);
    textures.Create(100000, 1, 1);
    EXPECT_EQ(textures.Count(), kMostWindowTextures);
    textures.Destroy(5);
    textures.Create(100000, 1, 1);
    EXPECT_EQ(textures.Count(), kMostWindowTextures);
    textures.Create(6, 2, 2); // the same window in another size
    EXPECT_EQ(textures.Count(), kMostWindowTextures);
}
