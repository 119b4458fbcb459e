#include "display/display_fixture.h"
#include "display/picture_glow.h"
#include "display/picture_painter.h"
#include "display/screen_reader.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

int Channel(uint32_t pixel, int shift) {
    return static_cast<int>(pixel >> shift & 0xFF);
}

double LinearLight(int code) {
    const double value = code / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// A picture of noise that looks the same in every run.
std::vector<uint32_t> Noise(uint32_t width, uint32_t height) {
    std::vector<uint32_t> pixels(size_t{width} * height);
    uint32_t seed = 12345;
    for (uint32_t& pixel : pixels) {
        seed = seed * 1664525 + 1013904223;
        pixel = 0xFF000000 | seed >> 8;
    }
    return pixels;
}

class PicturePainterTest : public DisplayTest {
protected:
    void SetUp() override {
        DisplayTest::SetUp();
        std::string error;
        ASSERT_TRUE(painter.Start(LoadGlFunctions(SDL_GL_GetProcAddress), error)) << error;
        StartSessionPicture(session, size_t{64} * 64);
    }

    void TearDown() override {
        EndSessionPicture(session);
        painter.Release();
        DisplayTest::TearDown();
    }

    void Show(std::vector<uint32_t> pixels, uint32_t width, uint32_t height, bool glows = false) {
        ASSERT_EQ(pixels.size(), size_t{width} * height);
        EMU_VIDEO_FRAME picture{};
        picture.pixels = pixels.data();
        picture.width = picture.visibleWidth = width;
        picture.height = picture.visibleHeight = height;
        session.glows = glows;
        ASSERT_TRUE(UploadPicture(picture, session, PictureScaler::kNone));
    }

    // So that the picture fills the screen whatever its size.
    std::vector<uint32_t> Draw(FULL_SCREEN_VIEW view, uint32_t width, uint32_t height) {
        session.picture.aspect = static_cast<float>(width) / static_cast<float>(height);
        session.picture.visibleAspect = session.picture.aspect;
        ClearScreen(kRed);
        painter.Draw(session, view, width, height);
        return ReadScreen(width, height);
    }

    std::vector<uint32_t> DrawCrt(float strength, uint32_t width, uint32_t height) {
        return Draw({.crtStrength = strength}, width, height);
    }

    static double MeanLight(const std::vector<uint32_t>& pixels, int shift) {
        double sum = 0;
        for (const uint32_t pixel : pixels) {
            sum += LinearLight(Channel(pixel, shift));
        }
        return sum / static_cast<double>(pixels.size());
    }

    PicturePainter painter;
    SESSION_PICTURE session;
};

// Two dots on three pixels: the one in the middle is half of each. The root of half of 255 squared is 180.3.
TEST_F(PicturePainterTest, PixelBetweenTwoDotsHasTheirMeanLight) {
    Show({kWhite, kBlack}, 2, 1);
    EXPECT_EQ(Draw({}, 3, 1), (std::vector<uint32_t>{kWhite, 0xFFB4B4B4, kBlack}));
}

// Three dots on four pixels cover 1, 1/3 + 2/3, 2/3 + 1/3 and 1 of a dot's three quarters.
TEST_F(PicturePainterTest, PixelsHaveTheDotsByTheAreaThatTheseCover) {
    Show({kWhite, kBlack, kWhite}, 3, 1);
    const std::vector<uint32_t> row = Draw({}, 4, 1);
    EXPECT_EQ(row[0], kWhite);
    EXPECT_EQ(Channel(row[1], 0), 147); // 255 times the root of 1/3: 147.2
    EXPECT_EQ(row[2], row[1]);
    EXPECT_EQ(row[3], kWhite);
}

// In double precision, by the overlap of two rectangles.
std::vector<uint32_t> EvenlyScaled(const std::vector<uint32_t>& pixels, uint32_t width,
                                   uint32_t height, uint32_t toWidth, uint32_t toHeight) {
    const auto overlap = [](uint32_t pixel, uint32_t dot, double dotsOfPixel) {
        const double from = std::max(pixel * dotsOfPixel, static_cast<double>(dot));
        const double to = std::min((pixel + 1) * dotsOfPixel, dot + 1.0);
        return std::max(to - from, 0.0) / dotsOfPixel;
    };
    const double across = static_cast<double>(width) / toWidth;
    const double down = static_cast<double>(height) / toHeight;
    std::vector<uint32_t> result;
    for (uint32_t y = 0; y < toHeight; ++y) {
        for (uint32_t x = 0; x < toWidth; ++x) {
            uint32_t pixel = kBlack;
            for (const int shift : {16, 8, 0}) {
                double sum = 0;
                for (uint32_t row = 0; row < height; ++row) {
                    for (uint32_t column = 0; column < width; ++column) {
                        const int code = Channel(pixels[row * width + column], shift);
                        sum += overlap(x, column, across) * overlap(y, row, down) * code * code;
                    }
                }
                pixel |= static_cast<uint32_t>(std::lround(std::sqrt(sum))) << shift;
            }
            result.push_back(pixel);
        }
    }
    return result;
}

int LargestDifference(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    int largest = a.size() == b.size() ? 0 : 256;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        for (const int shift : {16, 8, 0}) {
            largest = std::max(largest, std::abs(Channel(a[i], shift) - Channel(b[i], shift)));
        }
    }
    return largest;
}

TEST_F(PicturePainterTest, EvenDotsAreTheAreaMeanAtEverySize) {
    const std::vector<uint32_t> pixels = Noise(14, 9);
    Show(pixels, 14, 9);
    const struct {
        uint32_t width, height;
    } sizes[] = {
        {14,  9 },
        {15,  10},
        {21,  31},
        {37,  24},
        {64,  96},
        {125, 80},
        {13,  8 },
        {7,   5 },
        {9,   30},
        {5,   3 },
    };
    for (const auto& size : sizes) {
        EXPECT_LE(LargestDifference(Draw({}, size.width, size.height),
                                    EvenlyScaled(pixels, 14, 9, size.width, size.height)),
                  1)
            << size.width << 'x' << size.height;
    }
}

TEST_F(PicturePainterTest, EvenDotsReadNothingOutsideTheShownPart) {
    std::vector<uint32_t> pixels(size_t{7} * 5, kRed);
    for (uint32_t y = 1; y < 4; ++y) {
        std::fill_n(pixels.begin() + y * 7 + 2, 3, kWhite);
    }
    Show(pixels, 7, 5);
    session.picture.visibleX = 2;
    session.picture.visibleY = 1;
    session.picture.visibleWidth = session.picture.visibleHeight = 3;
    for (const float crt : {0.0f, 1.0f}) {
        const FULL_SCREEN_VIEW view{.crop = true, .crtStrength = crt};
        for (const uint32_t pixel : Draw(view, 20, 32)) {
            ASSERT_GT(Channel(pixel, 8), 100);
        }
    }
}

TEST_F(PicturePainterTest, WholeMultiplesAreTheDotsThemselves) {
    const std::vector<uint32_t> pixels = Noise(10, 8);
    Show(pixels, 10, 8);
    EXPECT_EQ(Draw({}, 30, 16), EvenlyScaled(pixels, 10, 8, 30, 16));
}

TEST_F(PicturePainterTest, WithoutShadersTheNearestDotsAreShown) {
    std::string error;
    EXPECT_FALSE(painter.Start({}, error));
    Show({kWhite, kBlack}, 2, 1);
    const std::vector<uint32_t> row = Draw({}, 5, 1);
    EXPECT_EQ(
        std::count(row.begin(), row.end(), kWhite) + std::count(row.begin(), row.end(), kBlack), 5);
}

TEST_F(PicturePainterTest, TinyWindowsStillShowThePicture) {
    Show(std::vector<uint32_t>(size_t{64} * 64, kGreen), 64, 64);
    EXPECT_EQ(Draw({}, 8, 8), std::vector<uint32_t>(64, kGreen));
}

// ---- The CRT filter.

TEST_F(PicturePainterTest, CrtOfNoStrengthIsThePlainPicture) {
    Show(Noise(20, 15), 20, 15, true);
    EXPECT_EQ(DrawCrt(0.0f, 97, 71), Draw({}, 97, 71));
}

TEST_F(PicturePainterTest, CrtOfLittleStrengthIsAlmostThePlainPicture) {
    Show(Noise(20, 15), 20, 15, true);
    EXPECT_LE(LargestDifference(DrawCrt(0.001f, 97, 71), Draw({}, 97, 71)), 3);
}

// A row of the mask's period repeats in two triads, so the mean of the whole screen is that of the picture: all light
// but what the header says is left. A code is a step of light; the tolerance is half of the largest.
TEST_F(PicturePainterTest, CrtKeepsTheLightOfEveryPicture) {
    const std::vector<std::vector<uint32_t>> pictures = {
        std::vector<uint32_t>(size_t{24} * 20, kWhite),
        std::vector<uint32_t>(size_t{24} * 20, 0xFF808080),
        std::vector<uint32_t>(size_t{24} * 20, 0xFF204060),
        Noise(24, 20),
    };
    for (const std::vector<uint32_t>& pixels : pictures) {
        Show(pixels, 24, 20);
        const struct {
            uint32_t width, height;
        } sizes[] = {
            {96,  80},
            {120, 72},
            {126, 96},
            {78,  64},
        };
        for (const auto& size : sizes) {
            const std::vector<uint32_t> screen = DrawCrt(1.0f, size.width, size.height);
            for (const int shift : {16, 8, 0}) {
                const double plain = MeanLight(pixels, shift);
                EXPECT_NEAR(MeanLight(screen, shift), plain * kCrtLight, 0.003 + 0.01 * plain)
                    << size.width << 'x' << size.height << " of " << std::hex << pixels[0];
            }
        }
    }
}

TEST_F(PicturePainterTest, CrtHalfwayLosesHalfAsMuch) {
    Show(std::vector<uint32_t>(size_t{24} * 20, kWhite), 24, 20);
    EXPECT_NEAR(MeanLight(DrawCrt(0.5f, 96, 80), 8), 0.5 + 0.5 * kCrtLight, 0.01);
}

TEST_F(PicturePainterTest, CrtGlowMovesLightAndAddsNone) {
    std::vector<uint32_t> pixels(size_t{32} * 32, kBlack);
    for (uint32_t y = 12; y < 20; ++y) {
        std::fill_n(pixels.begin() + y * 32 + 12, 8, kWhite);
    }
    Show(pixels, 32, 32);
    const std::vector<uint32_t> dark = DrawCrt(1.0f, 96, 96);
    Show(pixels, 32, 32, true);
    const std::vector<uint32_t> glowing = DrawCrt(1.0f, 96, 96);
    const size_t beside = size_t{24} * 96 + 48; // four dots above the bright square
    EXPECT_EQ(Channel(dark[beside], 8), 0);
    EXPECT_GT(Channel(glowing[beside], 8), 4);
    EXPECT_LT(Channel(glowing[beside], 8), 60);
    EXPECT_NEAR(MeanLight(glowing, 8), MeanLight(dark, 8), 0.002);
}

TEST_F(PicturePainterTest, CrtBeamIsWiderWhereItIsBrighter) {
    const auto gapOf = [&](uint32_t grey) {
        Show(std::vector<uint32_t>(size_t{12} * 8, grey), 12, 8);
        const std::vector<uint32_t> screen = DrawCrt(1.0f, 96, 64); // eight rows a line
        const auto rowMean = [&](uint32_t row) {
            double sum = 0;
            for (uint32_t x = 0; x < 96; ++x) {
                sum += LinearLight(Channel(screen[size_t{row} * 96 + x], 8));
            }
            return sum;
        };
        return rowMean(32) / rowMean(28); // between two lines, and in the middle of one
    };
    const double dark = gapOf(0xFF303030);
    const double bright = gapOf(0xFFC0C0C0);
    EXPECT_LT(dark, 0.3);
    EXPECT_LT(dark, bright);
    EXPECT_LT(bright, gapOf(kWhite));
    EXPECT_LT(gapOf(kWhite), 1.0);
}

// An odd number of triads and of slots: the mask is then its own mirror image, red for blue.
TEST_F(PicturePainterTest, CrtIsSymmetric) {
    constexpr uint32_t kWidth = 20;
    constexpr uint32_t kHeight = 14;
    constexpr uint32_t kScreenWidth = 93;
    constexpr uint32_t kScreenHeight = 76;
    ASSERT_EQ(CrtMask(kScreenHeight).stripe, 1U);
    ASSERT_EQ(kScreenWidth / 3 % 2, 1U);
    ASSERT_EQ(kScreenHeight / CrtMask(kScreenHeight).slot % 2, 1U);
    const std::vector<uint32_t> pixels = Noise(kWidth, kHeight);
    const auto swapped = [](uint32_t pixel) {
        return (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
    };
    std::vector<uint32_t> turned(pixels.rbegin(), pixels.rend()); // both ways at once
    std::transform(turned.begin(), turned.end(), turned.begin(), swapped);
    Show(pixels, kWidth, kHeight);
    const std::vector<uint32_t> screen = DrawCrt(1.0f, kScreenWidth, kScreenHeight);
    Show(turned, kWidth, kHeight);
    std::vector<uint32_t> back = DrawCrt(1.0f, kScreenWidth, kScreenHeight);
    std::reverse(back.begin(), back.end());
    std::transform(back.begin(), back.end(), back.begin(), swapped);
    EXPECT_LE(LargestDifference(screen, back), 1);
}

TEST_F(PicturePainterTest, CrtDrawsTheSameTwice) {
    Show(Noise(20, 15), 20, 15, true);
    const std::vector<uint32_t> first = DrawCrt(0.7f, 120, 90);
    EXPECT_EQ(DrawCrt(0.7f, 120, 90), first);
    EXPECT_NE(first, Draw({}, 120, 90));
}

// Seen from where neither lines nor stripes are made out, a flat picture is flat: no waves wider than the mask.
TEST_F(PicturePainterTest, CrtHasNoMoire) {
    Show(std::vector<uint32_t>(size_t{40} * 28, 0xFF909090), 40, 28);
    for (const uint32_t height : {84U, 88U, 91U, 95U}) { // 3 to 3.4 rows a line
        const std::vector<uint32_t> screen = DrawCrt(1.0f, 126, height);
        // Means of two triads by sixteen rows.
        double least = 1;
        double most = 0;
        for (uint32_t y = 0; y + 16 <= height; y += 1) {
            double sum = 0;
            for (uint32_t row = 0; row < 16; ++row) {
                // A window that fades in and out, as the eye's does.
                const double weight = 1 - std::cos(2 * 3.14159265358979 * (row + 0.5) / 16);
                for (uint32_t x = 0; x < 126; ++x) {
                    sum += weight * LinearLight(Channel(screen[size_t{y + row} * 126 + x], 8));
                }
            }
            least = std::min(least, sum / (16 * 126));
            most = std::max(most, sum / (16 * 126));
        }
        EXPECT_LT((most - least) / most, 0.02) << height;
    }
}

TEST(CrtMaskSize, FitsThePixelsOfTheScreen) {
    EXPECT_EQ(CrtMask(720).stripe, 1U);
    EXPECT_EQ(CrtMask(1080).stripe, 1U);
    EXPECT_EQ(CrtMask(2160).stripe, 2U);
    EXPECT_EQ(CrtMask(4320).stripe, 4U);
    EXPECT_EQ(CrtMask(48).stripe, 1U);
}

TEST(PictureGlow, FlatPictureHasItsOwnLight) {
    const std::vector<uint32_t> pixels(size_t{20} * 11, 0xFFFF8000);
    const PICTURE_GLOW glow = GlowOfPicture(pixels.data(), 20, 11);
    EXPECT_EQ(glow.width, 3U);
    EXPECT_EQ(glow.height, 2U);
    // 128 / 255 is 0.2158 of white's light, and 0.2158 * 255 is 55.
    EXPECT_EQ(glow.cells, std::vector<uint32_t>(6, 0xFFFF3700));
}

TEST(PictureGlow, OneBrightCellSpreadsByTheBlursWeights) {
    std::vector<uint32_t> pixels(size_t{40} * 8, kBlack);
    for (uint32_t y = 0; y < 8; ++y) {
        std::fill_n(pixels.begin() + y * 40 + 16, 8, kWhite);
    }
    const PICTURE_GLOW glow = GlowOfPicture(pixels.data(), 40, 8);
    std::vector<int> reds;
    for (const uint32_t cell : glow.cells) {
        reds.push_back(Channel(cell, 16));
    }
    EXPECT_EQ(reds, (std::vector<int>{16, 64, 96, 64, 16})); // of 255: sixteenths 1 4 6 4 1
}

} // namespace
