#include "host/picture.h"
#include "host/session.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

namespace {

struct PICTURE {
    PICTURE(uint32_t width, uint32_t height)
        : pixels(size_t{width} * height) {
        video.pixels = pixels.data();
        video.width = video.visibleWidth = width;
        video.height = video.visibleHeight = height;
    }

    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const { return pixels[y * video.width + x]; }
    [[nodiscard]] size_t Drawn() const {
        return static_cast<size_t>(
            std::count_if(pixels.begin(), pixels.end(), [](uint32_t pixel) { return pixel != 0; }));
    }

    std::vector<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
};

constexpr uint32_t kWhite = 0xFFFFFFFF;
constexpr uint32_t kLight = 0xFFC0C0C0;
constexpr uint32_t kDark = 0xFF808080;
constexpr uint32_t kBlack = 0xFF000000;

std::array<uint32_t, 4> Four(const PICTURE& picture, uint32_t x, uint32_t y) {
    return {picture.At(x, y), picture.At(x + 1, y), picture.At(x + 2, y), picture.At(x + 3, y)};
}

constexpr std::array<uint32_t, 4> kForwardStroke = {kWhite, kLight, kDark, kBlack};
constexpr std::array<uint32_t, 4> kBackStroke = {kBlack, kDark, kLight, kWhite};

} // namespace

// A picture of 256 x 192: the middle is (128, 96), so rows 72 to 119 and forward bars at 102 and 130.
TEST(SpeedGlyph, ForwardIsAtItsPlace) {
    PICTURE picture(256, 192);
    EmuDrawSpeedGlyph(SpeedGlyph::kForward, picture.video);
    for (const uint32_t bar : {102u, 130u}) {
        for (const uint32_t row : {80u, 95u, 96u, 110u}) {
            EXPECT_EQ(Four(picture, bar, row), kForwardStroke) << bar << ", " << row;
        }
        EXPECT_EQ(Four(picture, bar, 72), kForwardStroke);      // the diagonal begins on the bar
        EXPECT_EQ(Four(picture, bar + 10, 82), kForwardStroke); // one column a row
        EXPECT_EQ(Four(picture, bar + 23, 95), kForwardStroke); // the point, upper diagonal
        EXPECT_EQ(Four(picture, bar + 23, 96), kForwardStroke); // and lower
        EXPECT_EQ(Four(picture, bar + 5, 114), kForwardStroke);
        EXPECT_EQ(Four(picture, bar, 119), kForwardStroke);
    }
    EXPECT_EQ(picture.At(129, 72), 0u); // between the chevrons
    EXPECT_EQ(picture.At(101, 96), 0u); // left of the bar
    EXPECT_EQ(picture.At(157, 96), 0u); // right of the point: 130 + 23 + 3 is the last
    EXPECT_EQ(picture.At(156, 96), kBlack);
    EXPECT_EQ(picture.At(102, 71), 0u);
    EXPECT_EQ(picture.At(102, 120), 0u);
}

TEST(SpeedGlyph, BackIsTheMirrorOfForward) {
    PICTURE back(256, 192);
    PICTURE forward(256, 192);
    EmuDrawSpeedGlyph(SpeedGlyph::kBack, back.video);
    EmuDrawSpeedGlyph(SpeedGlyph::kForward, forward.video);
    // Bars at 122 and 150, with the points to the left.
    EXPECT_EQ(Four(back, 122, 80), kBackStroke);
    EXPECT_EQ(Four(back, 150, 80), kBackStroke);
    EXPECT_EQ(Four(back, 122 - 23, 95), kBackStroke);
    EXPECT_EQ(Four(back, 150 - 10, 82), kBackStroke);
    for (uint32_t y = 0; y < 192; ++y) {
        for (uint32_t x = 0; x < 256; ++x) {
            EXPECT_EQ(back.At(x, y), forward.At(255 - x, y)) << x << ", " << y;
        }
    }
}

TEST(SpeedGlyph, NothingIsDrawnOnAPictureOfHalfSideTwentyFive) {
    for (const auto& [width, height] : {
             std::pair{51u,  192u},
             {256u, 51u },
             {50u,  50u },
             {0u,   0u  }
    }) {
        PICTURE picture(width, height);
        EmuDrawSpeedGlyph(SpeedGlyph::kForward, picture.video);
        EmuDrawSpeedGlyph(SpeedGlyph::kBack, picture.video);
        EXPECT_EQ(picture.Drawn(), 0u) << width << " x " << height;
    }
}

TEST(SpeedGlyph, WhatIsBeyondTheEdgeIsCut) {
    PICTURE picture(52, 52); // forward reaches from column 0 to 54
    EmuDrawSpeedGlyph(SpeedGlyph::kForward, picture.video);
    EXPECT_EQ(Four(picture, 0, 20), kForwardStroke);
    EXPECT_EQ(picture.At(51, 25), kForwardStroke[0]); // 28 + 23: the tip's first column
    EXPECT_EQ(picture.At(0, 25), kWhite);             // the next ones are clipped
    EXPECT_EQ(picture.At(0, 26), kWhite);
    EXPECT_EQ(picture.At(4, 26), 0u);

    PICTURE back(52, 52); // back reaches from column -3 to 51
    EmuDrawSpeedGlyph(SpeedGlyph::kBack, back.video);
    EXPECT_EQ(back.At(0, 25), kWhite); // 20 - 23 + 3
    EXPECT_EQ(back.At(51, 24), kWhite);
    EXPECT_EQ(back.At(47, 24), 0u);
}

TEST(RotateFrame, TurnsAPictureClockwise) {
    PICTURE picture(3, 2);
    picture.pixels = {1, 2, 3, //
                      4, 5, 6};
    picture.video.pixels = picture.pixels.data();
    picture.video.rotated = 1;
    picture.video.aspect = 2.0f;
    picture.video.visibleAspect = 4.0f;
    picture.video.visibleX = 1;
    picture.video.visibleY = 0;
    picture.video.visibleWidth = 2;
    picture.video.visibleHeight = 1;
    std::vector<uint32_t> scratch;
    EmuRotateFrame(picture.video, scratch);
    EXPECT_EQ(picture.pixels, (std::vector<uint32_t>{4, 1, //
                                                     5, 2, //
                                                     6, 3}));
    EXPECT_EQ(picture.video.width, 2u);
    EXPECT_EQ(picture.video.height, 3u);
    EXPECT_EQ(picture.video.visibleX, 0u);
    EXPECT_EQ(picture.video.visibleY, 1u);
    EXPECT_EQ(picture.video.visibleWidth, 1u);
    EXPECT_EQ(picture.video.visibleHeight, 2u);
    EXPECT_EQ(picture.video.aspect, 0.5f);
    EXPECT_EQ(picture.video.visibleAspect, 0.25f);
}

TEST(RotateFrame, LeavesAnUnmarkedPictureAlone) {
    PICTURE picture(2, 1);
    picture.pixels = {7, 8};
    picture.video.pixels = picture.pixels.data();
    std::vector<uint32_t> scratch;
    EmuRotateFrame(picture.video, scratch);
    EXPECT_EQ(picture.pixels, (std::vector<uint32_t>{7, 8}));
    EXPECT_EQ(picture.video.width, 2u);
}

TEST(RotateFrame, TurnsOnceForOneMark) {
    PICTURE picture(2, 1);
    picture.video.rotated = 1;
    std::vector<uint32_t> scratch;
    EmuRotateFrame(picture.video, scratch);
    EmuRotateFrame(picture.video, scratch);
    EXPECT_EQ(picture.video.width, 1u);
    EXPECT_EQ(picture.video.height, 2u);
}

TEST(RotateFrame, EveryPixelFollowsTheFormula) {
    constexpr uint32_t kWidth = 17;
    constexpr uint32_t kHeight = 5;
    PICTURE picture(kWidth, kHeight);
    for (uint32_t i = 0; i < kWidth * kHeight; ++i) {
        picture.pixels[i] = i;
    }
    picture.video.rotated = 1;
    std::vector<uint32_t> scratch;
    EmuRotateFrame(picture.video, scratch);
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            EXPECT_EQ(picture.pixels[(kHeight - 1 - y) + x * kHeight], y * kWidth + x);
        }
    }
}

TEST(ClampPicture, APictureWithinItsBufferIsUntouched) {
    PICTURE picture(320, 240);
    picture.video.visibleX = 8;
    picture.video.visibleWidth = 304;
    EmuClampPicture(picture.video, size_t{320} * 240);
    EXPECT_EQ(picture.video.height, 240u);
    EXPECT_EQ(picture.video.visibleX, 8u);
    EXPECT_EQ(picture.video.visibleWidth, 304u);
    EXPECT_EQ(picture.video.visibleHeight, 240u);
}

TEST(ClampPicture, ATallPictureLosesRowsAndItsWindowFollows) {
    PICTURE picture(320, 241);
    EmuClampPicture(picture.video, size_t{320} * 240);
    EXPECT_EQ(picture.video.width, 320u);
    EXPECT_EQ(picture.video.height, 240u);
    EXPECT_EQ(picture.video.visibleHeight, 240u);
}

TEST(ClampPicture, AWidthBeyondTheWholeBufferLeavesNoPicture) {
    EMU_VIDEO_FRAME video{};
    video.width = video.height = 0xFFFFFFFF;
    video.visibleX = 5;
    video.visibleWidth = 9;
    EmuClampPicture(video, 100);
    EXPECT_EQ(video.width, 0u);
    EXPECT_EQ(video.height, 0u);
    EXPECT_EQ(video.visibleX, 0u);
    EXPECT_EQ(video.visibleWidth, 0u);
}

TEST(ClampPicture, AWindowOutsideThePictureIsCut) {
    PICTURE picture(100, 100);
    picture.video.visibleX = 90;
    picture.video.visibleY = 200;
    picture.video.visibleWidth = 0xFFFFFFFF;
    picture.video.visibleHeight = 50;
    EmuClampPicture(picture.video, 10000);
    EXPECT_EQ(picture.video.visibleX, 90u);
    EXPECT_EQ(picture.video.visibleWidth, 10u);
    EXPECT_EQ(picture.video.visibleY, 100u);
    EXPECT_EQ(picture.video.visibleHeight, 0u);
}

TEST(RepeatPicture, CopiesPixelsAndMeasures) {
    PICTURE before(3, 1);
    before.pixels = {1, 2, 3};
    before.video.pixels = before.pixels.data();
    before.video.aspect = 1.5f;
    before.video.visibleX = 1;
    PICTURE after(4, 4);
    after.video.tvKey = 9;
    EmuRepeatPicture(before.video, after.video);
    EXPECT_EQ(after.video.width, 3u);
    EXPECT_EQ(after.video.height, 1u);
    EXPECT_EQ(after.video.visibleX, 1u);
    EXPECT_EQ(after.video.aspect, 1.5f);
    EXPECT_EQ(after.video.tvKey, 9u);
    EXPECT_EQ(after.pixels[2], 3u);
    EXPECT_EQ(after.video.pixels, after.pixels.data());
}

TEST(RepeatPicture, WithoutAnEarlierPictureNothingChanges) {
    PICTURE after(2, 2);
    EmuRepeatPicture(EMU_VIDEO_FRAME{}, after.video);
    EXPECT_EQ(after.video.width, 2u);
}

// Two screens of 160 x 144, numbered pixel by pixel.
TEST(DividedScreens, LoseNoPixelAndKeepTheirShape) {
    PICTURE picture(320, 144);
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
        picture.pixels[i] = static_cast<uint32_t>(i);
    }
    picture.pixels.resize(size_t{512} * 256);
    picture.video.pixels = picture.pixels.data();
    picture.video.aspect = picture.video.visibleAspect = 8.0f / 3.0f;
    EmuDivideScreens(2, picture.video, picture.pixels.size());
    ASSERT_EQ(picture.video.width, 324u);
    EXPECT_EQ(picture.video.visibleWidth, 324u);
    EXPECT_EQ(picture.video.height, 144u);
    EXPECT_FLOAT_EQ(picture.video.visibleAspect, 8.0f / 3.0f * 324 / 320);
    for (uint32_t y = 0; y < 144; ++y) {
        for (uint32_t x = 0; x < 160; ++x) {
            ASSERT_EQ(picture.At(x, y), y * 320 + x);
            ASSERT_EQ(picture.At(164 + x, y), y * 320 + 160 + x);
        }
        EXPECT_EQ(picture.At(160, y), kBlack);
        EXPECT_EQ(picture.At(161, y), picture.At(162, y));
        EXPECT_NE(picture.At(161, y), kBlack) << "a black picture ends where it is seen";
        EXPECT_EQ(picture.At(163, y), kBlack);
    }
}

TEST(DividedScreens, AreLeftAsTheyAreWithoutRoomOrNeed) {
    PICTURE one(160, 144);
    EmuDivideScreens(1, one.video, 512 * 256);
    EXPECT_EQ(one.video.width, 160u);
    PICTURE full(512, 256);
    EmuDivideScreens(2, full.video, full.pixels.size());
    EXPECT_EQ(full.video.width, 512u);
    PICTURE none(0, 0);
    EmuDivideScreens(2, none.video, 512 * 256);
    EXPECT_EQ(none.video.width, 0u);
}
