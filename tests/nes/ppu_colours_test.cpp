// The colours against the published composite signal: levels, phases, emphasis.
#include "nes/ppu_colours.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

const std::array<uint32_t, kPpuColours>& Table() {
    static const auto kTable = PpuBuildColourTable();
    return kTable;
}

struct Rgb {
    int red;
    int green;
    int blue;
};

Rgb Of(uint32_t colour, uint32_t emphasis = 0) {
    const uint32_t pixel = Table()[emphasis * 64 + colour];
    return {static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
            static_cast<int>(pixel & 255)};
}

bool Clamped(const Rgb& c) {
    return std::min({c.red, c.green, c.blue}) == 0 || std::max({c.red, c.green, c.blue}) == 255;
}

// The published matrix from RGB to YIQ; 0 to 1.
double Luma(const Rgb& c) {
    return (0.299 * c.red + 0.587 * c.green + 0.114 * c.blue) / 256;
}
double InPhase(const Rgb& c) {
    return (0.596 * c.red - 0.274 * c.green - 0.322 * c.blue) / 256;
}
double Quadrature(const Rgb& c) {
    return (0.211 * c.red - 0.523 * c.green + 0.312 * c.blue) / 256;
}
double Angle(const Rgb& c) {
    return std::atan2(Quadrature(c), InPhase(c)) * 180 / std::numbers::pi;
}

// A channel is truncated; this is the middle of its range.
constexpr double kHalf = 0.5 / 256;

double Circular(double degrees) {
    return degrees - 360 * std::floor((degrees + 180) / 360);
}

int GreyLevel(double signal) {
    return static_cast<int>(std::clamp((signal - 0.518) * 0.684931506849315 * 256, 0.0, 255.0));
}

} // namespace

TEST(PpuColours, EveryOneIsOpaque) {
    for (const uint32_t pixel : Table()) {
        EXPECT_EQ(pixel >> 24, 0xFFU);
    }
}

TEST(PpuColours, GreyColumnsHaveTheLevelsOfTheSignal) {
    const double high[4] = {1.09, 1.5, 1.96, 1.96};
    const double low[4] = {0.35, 0.518, 0.962, 1.55};
    for (uint32_t row = 0; row < 4; ++row) {
        for (const uint32_t hue : {0U, 13U, 14U, 15U}) {
            const Rgb c = Of(row * 16 + hue);
            EXPECT_EQ(c.red, c.green) << row << " " << hue;
            EXPECT_EQ(c.green, c.blue) << row << " " << hue;
            const double signal = hue == 0 ? high[row] : hue == 13 ? low[row] : 0.518;
            EXPECT_EQ(c.red, GreyLevel(signal)) << row << " " << hue;
        }
    }
}

TEST(PpuColours, HuesHaveThePublishedNames) {
    const Rgb blue = Of(0x11);
    EXPECT_GT(blue.blue, std::max(blue.red, blue.green));
    for (const uint32_t hue : {0x15U, 0x16U}) {
        const Rgb red = Of(hue);
        EXPECT_GT(red.red, std::max(red.green, red.blue));
    }
    const Rgb olive = Of(0x18); // the colour burst's hue, yellowish brown
    EXPECT_LT(olive.blue, std::min(olive.red, olive.green));
    EXPECT_LT(std::abs(olive.red - olive.green), 64);
    const Rgb green = Of(0x1A);
    EXPECT_GT(green.green, std::max(green.red, green.blue));
    const Rgb cyan = Of(0x1C);
    EXPECT_LT(cyan.red, std::min(cyan.green, cyan.blue));
}

// If no channel is clamped, the angle of a hue can be computed from its pixel: in the lightest row with all three
// emphasis bits, which darken every phase equally.
TEST(PpuColours, HuesFollowEachOtherBy30Degrees) {
    for (uint32_t hue = 1; hue <= 12; ++hue) {
        const Rgb c = Of(0x30 + hue, 7);
        ASSERT_FALSE(Clamped(c)) << hue;
        EXPECT_NEAR(Circular(Angle(c) - (183 - 30.0 * hue)), 0, 15) << hue;
        const Rgb next = Of(0x30 + hue % 12 + 1, 7);
        EXPECT_NEAR(Circular(Angle(c) - Angle(next)), 30, 4) << hue;
    }
}

TEST(PpuColours, SaturationFollowsFromTheTwoLevels) {
    const double deviation = 0.74 * (1.96 - 1.55) / 2; // of every phase from the mean
    const double expected = deviation * std::sqrt(0.684931506849315) * 0.84;
    for (uint32_t hue = 1; hue <= 12; ++hue) {
        const Rgb c = Of(0x30 + hue, 7);
        EXPECT_NEAR(std::hypot(InPhase(c), Quadrature(c)), expected, 0.005) << hue;
    }
}

TEST(PpuColours, RowsGetBrighter) {
    for (uint32_t hue = 0; hue <= 12; ++hue) {
        for (uint32_t row = 0; row < 3; ++row) {
            const double darker = Luma(Of(row * 16 + hue));
            const double brighter = Luma(Of(row * 16 + 16 + hue));
            if (hue == 0 && row == 2) {
                EXPECT_EQ(darker, brighter); // white twice
            } else {
                EXPECT_LT(darker, brighter) << hue << " " << row;
            }
        }
    }
}

// One bit darkens 6 of the 12 phases, two bits 10, three bits all.
TEST(PpuColours, EmphasisDarkensWhiteByTheNumberOfPhases) {
    const double phases[8] = {0, 6, 6, 10, 6, 10, 10, 12};
    for (uint32_t emphasis = 1; emphasis < 8; ++emphasis) {
        const double mean = 1.5 * (1 - 0.26 * phases[emphasis] / 12);
        const Rgb c = Of(0x10, emphasis); // the lighter whites clamp
        ASSERT_FALSE(Clamped(c)) << emphasis;
        EXPECT_NEAR(Luma(c) + kHalf, (mean - 0.518) * 0.684931506849315, 0.7 / 256) << emphasis;
    }
}

TEST(PpuColours, EmphasisTintsWhiteItsWay) {
    const Rgb red = Of(0x30, 1);
    EXPECT_GT(red.red, std::max(red.green, red.blue));
    const Rgb green = Of(0x30, 2);
    EXPECT_GT(green.green, std::max(green.red, green.blue));
    const Rgb blue = Of(0x30, 4);
    EXPECT_GT(blue.blue, std::max(blue.red, blue.green));
    const Rgb all = Of(0x30, 7);
    EXPECT_EQ(all.red, all.green);
    EXPECT_EQ(all.green, all.blue);
    EXPECT_EQ(all.red, GreyLevel(1.96 * 0.74));
}

// Red darkens the phases in which hue 12 is high, green those of hue 4, blue those of hue 8: the whole high half
// and nothing of the low one.
TEST(PpuColours, EmphasisHasThePhasesOfThreeHues) {
    const double mean = (1.96 * 0.74 + 1.55) / 2;
    const double deviation = (1.55 - 1.96 * 0.74) / 2;
    const uint32_t hues[3] = {12, 4, 8};
    for (uint32_t bit = 0; bit < 3; ++bit) {
        const Rgb c = Of(0x30 + hues[bit], 1U << bit);
        ASSERT_FALSE(Clamped(c));
        EXPECT_NEAR(Luma(c) + kHalf, (mean - 0.518) * 0.684931506849315, 0.7 / 256) << bit;
        EXPECT_NEAR(std::hypot(InPhase(c), Quadrature(c)),
                    deviation * std::sqrt(0.684931506849315) * 0.84, 0.005)
            << bit;
    }
}

TEST(PpuColours, EmphasisLeavesBlackColumnsAlone) {
    for (uint32_t emphasis = 0; emphasis < 8; ++emphasis) {
        for (uint32_t row = 0; row < 4; ++row) {
            EXPECT_EQ(Table()[emphasis * 64 + row * 16 + 14], 0xFF000000U);
            EXPECT_EQ(Table()[emphasis * 64 + row * 16 + 15], 0xFF000000U);
        }
    }
}

TEST(PpuColours, EmphasisDarkensTheLowGreysToo) {
    for (const uint32_t colour : {0x2DU, 0x3DU}) {
        EXPECT_EQ(Of(colour, 7).red, GreyLevel((colour == 0x2D ? 0.962 : 1.55) * 0.74));
    }
}
