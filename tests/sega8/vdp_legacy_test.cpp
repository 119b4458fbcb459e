// Modes 0 to 2, their sprites and their fixed colours.
#include "sega8/vdp.h"
#include "sega8/vdp_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// The measured colours of the chip, as six-bit values.
constexpr uint8_t kColours[16] = {0x00, 0x00, 0x08, 0x0C, 0x10, 0x30, 0x01, 0x3C,
                                  0x02, 0x03, 0x05, 0x0F, 0x04, 0x33, 0x15, 0x3F};

uint32_t Fixed(uint32_t colour) {
    return SixBits(kColours[colour]);
}

constexpr uint32_t kNames = 0x1800;
constexpr uint32_t kPatterns = 0x0000;
constexpr uint32_t kColourTable = 0x2000;
constexpr uint32_t kSprites = 0x1B00;
constexpr uint32_t kSpritePatterns = 0x3800;

// Tables at their usual places. Sprites end at the first.
void Start(VdpRig& rig, uint32_t reg0, uint32_t reg1) {
    const uint32_t values[8] = {reg0, reg1, 0x06, 0x80, 0x00, 0x36, 0x07, 0x04};
    for (uint32_t i = 0; i < 8; ++i) {
        rig.Reg(i, values[i]);
    }
    rig.vram[kSprites] = 0xD0;
}

void StartMode2(VdpRig& rig, uint32_t reg1 = 0x40) {
    Start(rig, 0x02, reg1);
    rig.Reg(3, 0xFF);
    rig.Reg(4, 0x03);
}

void Sprite(VdpRig& rig, uint32_t number, uint32_t y, uint32_t x, uint32_t pattern,
            uint32_t flags) {
    const uint32_t values[4] = {y, x, pattern, flags};
    for (uint32_t i = 0; i < 4; ++i) {
        rig.vram[kSprites + number * 4 + i] = static_cast<uint8_t>(values[i]);
    }
    rig.vram[kSprites + number * 4 + 4] = 0xD0;
}

void SolidPattern(VdpRig& rig, uint32_t pattern) {
    for (uint32_t row = 0; row < 8; ++row) {
        rig.vram[kSpritePatterns + pattern * 8 + row] = 0xFF;
    }
}

uint8_t FlagsOfAFrame(VdpRig& rig) {
    rig.Finish();
    (void)VdpStatusRead(rig.vdp);
    rig.Finish();
    return VdpStatusRead(rig.vdp) & 0xE0;
}

} // namespace

TEST(VdpLegacy, ModeBitsDecodeAsTheTableHasIt) {
    const uint8_t expected[16] = {0, 1, 2, 0, 0, 0, 0, 0, 4, 0, 4, 4, 4, 0, 4, 4};
    for (uint32_t bits = 0; bits < 16; ++bits) {
        VdpRig rig;
        rig.Reg(0, (bits >> 3) << 2 | (bits & 2));
        rig.Reg(1, ((bits >> 2) & 1) << 3 | (bits & 1) << 4);
        rig.RunTo(1, 0);
        rig.Ticks(4);
        EXPECT_EQ(rig.vdp.mode, expected[bits]) << bits;
    }
}

TEST(VdpLegacy, Mode0ColoursEightNamesAlike) {
    VdpRig rig;
    Start(rig, 0x00, 0x40);
    rig.vram[kNames] = 0x21;
    rig.vram[kNames + 33] = 0x2F; // second row, second column
    rig.vram[kNames + 23 * 32 + 31] = 0x28;
    for (const uint32_t name : {0x21U, 0x2FU, 0x28U}) {
        rig.vram[kPatterns + name * 8 + 3] = 0xA1;
    }
    rig.vram[kColourTable + 4] = 0xF6; // names 0x20 to 0x27
    rig.vram[kColourTable + 5] = 0x09; // names 0x28 to 0x2F: ink shows the backdrop
    rig.Frame();
    for (uint32_t x = 0; x < 8; ++x) {
        const bool ink = ((0xA1U >> (7 - x)) & 1) != 0;
        EXPECT_EQ(rig.At(x, 3), Fixed(ink ? 15 : 6));
        EXPECT_EQ(rig.At(8 + x, 11), Fixed(ink ? 4 : 9));
        EXPECT_EQ(rig.At(248 + x, 187), Fixed(ink ? 4 : 9));
        EXPECT_EQ(rig.At(x, 4), Fixed(6)); // an empty row of the pattern
    }
}

TEST(VdpLegacy, AllFixedColoursShowWhateverColourRamHolds) {
    VdpRig rig;
    Start(rig, 0x00, 0x40);
    for (uint32_t colour = 0; colour < 32; ++colour) {
        rig.Colour(colour, 0x2A);
    }
    for (uint32_t colour = 0; colour < 16; ++colour) {
        rig.vram[kNames + colour] = static_cast<uint8_t>(colour * 8);
        rig.vram[kColourTable + colour] = static_cast<uint8_t>(colour);
    }
    rig.Frame();
    for (uint32_t colour = 0; colour < 16; ++colour) {
        EXPECT_EQ(rig.At(colour * 8, 0), colour == 0 ? Fixed(4) : Fixed(colour)) << colour;
    }
    EXPECT_EQ(rig.pixels[0], Fixed(4)); // the border too
    EXPECT_EQ(rig.vdp.palette[20], SixBits(0x2A));
}

TEST(VdpLegacy, GameGearTakesEntries16To31OfColourRam) {
    VdpRig rig(kVdpGameGear);
    Start(rig, 0x00, 0x40);
    rig.Colour(2 * (16 + 6), 0x21);
    rig.Colour(2 * (16 + 6) + 1, 0x03);
    rig.vram[kColourTable] = 0x06;
    rig.Frame();
    EXPECT_EQ(rig.At(0, 0), 0xFF102030U);
}

TEST(VdpLegacy, Mode2HasATableForEachThird) {
    VdpRig rig;
    StartMode2(rig);
    for (uint32_t third = 0; third < 3; ++third) {
        rig.vram[kNames + third * 256 + 5] = 0x41;
        rig.vram[kPatterns + third * 2048 + 0x41 * 8 + 2] = 0xF0;
        rig.vram[kColourTable + third * 2048 + 0x41 * 8 + 2] =
            static_cast<uint8_t>((third + 1) << 4 | (third + 9));
    }
    rig.Frame();
    for (uint32_t third = 0; third < 3; ++third) {
        EXPECT_EQ(rig.At(40, third * 64 + 2), Fixed(third + 1));
        EXPECT_EQ(rig.At(43, third * 64 + 2), Fixed(third + 1));
        EXPECT_EQ(rig.At(44, third * 64 + 2), Fixed(third + 9));
        EXPECT_EQ(rig.At(44, third * 64 + 3), Fixed(4));
    }
}

TEST(VdpLegacy, TextModeShowsFortyColumnsOfSixPixels) {
    VdpRig rig;
    Start(rig, 0x00, 0x50);
    rig.Reg(7, 0xF4);
    for (uint32_t cell = 0; cell < 40 * 24; ++cell) {
        rig.vram[kNames + cell] = static_cast<uint8_t>(cell % 251);
    }
    for (uint32_t name = 0; name < 251; ++name) {
        for (uint32_t row = 0; row < 8; ++row) {
            rig.vram[kPatterns + name * 8 + row] = static_cast<uint8_t>(name * 37 + row * 11);
        }
    }
    rig.Frame();
    for (uint32_t y = 0; y < 192; ++y) {
        for (uint32_t x = 0; x < 256; ++x) {
            uint32_t expected = Fixed(4);
            if (x >= 8 && x < 248) {
                const uint32_t column = (x - 8) / 6;
                const uint32_t name = (y / 8 * 40 + column) % 251;
                const uint32_t bits = (name * 37 + (y & 7) * 11) & 255;
                expected = (bits & (0x80U >> ((x - 8) % 6))) != 0 ? Fixed(15) : Fixed(4);
            }
            ASSERT_EQ(rig.At(x, y), expected) << x << " " << y;
        }
    }
}

TEST(VdpLegacy, TextModeHasNoSprites) {
    VdpRig rig;
    Start(rig, 0x00, 0x50);
    SolidPattern(rig, 1);
    for (uint32_t sprite = 0; sprite < 6; ++sprite) {
        Sprite(rig, sprite, 50, 100, 1, 9);
    }
    EXPECT_EQ(FlagsOfAFrame(rig), 0x80);
    EXPECT_EQ(rig.At(100, 51), Fixed(4));
}

TEST(VdpLegacy, SpritesHaveOneColourAndLieOverTheCells) {
    VdpRig rig;
    StartMode2(rig);
    for (uint32_t i = 0; i < 0x1800; ++i) {
        rig.vram[kColourTable + i] = 0x22;
    }
    SolidPattern(rig, 1);
    rig.vram[kSpritePatterns + 8 + 7] = 0x81;
    Sprite(rig, 0, 50, 100, 1, 9);
    Sprite(rig, 1, 60, 10, 1, 0x80 | 7); // early clock: 22 pixels outside, none seen
    Sprite(rig, 2, 70, 40, 1, 0x80 | 7);
    Sprite(rig, 3, 255, 0, 1, 3);
    rig.Frame();
    EXPECT_EQ(rig.At(99, 51), Fixed(2));
    EXPECT_EQ(rig.At(100, 50), Fixed(2));
    EXPECT_EQ(rig.At(100, 51), Fixed(9));
    EXPECT_EQ(rig.At(107, 51), Fixed(9));
    EXPECT_EQ(rig.At(100, 58), Fixed(9));
    EXPECT_EQ(rig.At(101, 58), Fixed(2));
    EXPECT_EQ(rig.At(0, 61), Fixed(2));
    EXPECT_EQ(rig.At(10, 61), Fixed(2));
    EXPECT_EQ(rig.At(8, 71), Fixed(7));
    EXPECT_EQ(rig.At(0, 0), Fixed(3));
    rig.Reg(0, 0x0A); // eight to the left
    rig.Frame();
    EXPECT_EQ(rig.At(92, 51), Fixed(9));
    EXPECT_EQ(rig.At(100, 51), Fixed(2));
}

TEST(VdpLegacy, LargeSpritesAreFourPatternsColumnByColumn) {
    VdpRig rig;
    StartMode2(rig, 0x42);
    const uint8_t patterns[4] = {0x80, 0x40, 0x20, 0x10}; // upper left, lower left, right both
    for (uint32_t i = 0; i < 4; ++i) {
        for (uint32_t row = 0; row < 8; ++row) {
            rig.vram[kSpritePatterns + (4 + i) * 8 + row] = patterns[i];
        }
    }
    Sprite(rig, 0, 50, 100, 6, 9); // the low two bits do not count
    rig.Frame();
    for (uint32_t x = 0; x < 16; ++x) {
        EXPECT_EQ(rig.At(100 + x, 51), Fixed(x == 0 || x == 10 ? 9 : 4)) << x;
        EXPECT_EQ(rig.At(100 + x, 66), Fixed(x == 1 || x == 11 ? 9 : 4)) << x;
        EXPECT_EQ(rig.At(100 + x, 67), Fixed(4));
    }
    rig.Reg(1, 0x43);
    rig.Frame();
    for (uint32_t x = 0; x < 32; ++x) {
        EXPECT_EQ(rig.At(100 + x, 51), Fixed(x / 2 == 0 || x / 2 == 10 ? 9 : 4)) << x;
        EXPECT_EQ(rig.At(100 + x, 82), Fixed(x / 2 == 1 || x / 2 == 11 ? 9 : 4)) << x;
    }
}

// 32 pixels wide: sixteen set, eight empty, eight set.
TEST(VdpLegacy, LargeZoomedSpritesAreCutAtBothEdgesAndDoNotWrap) {
    VdpRig rig;
    StartMode2(rig, 0x43);
    for (uint32_t row = 0; row < 16; ++row) {
        rig.vram[kSpritePatterns + 4 * 8 + row] = 0xFF;
        rig.vram[kSpritePatterns + 4 * 8 + 16 + row] = 0x0F;
    }
    Sprite(rig, 0, 50, 230, 4, 9);
    Sprite(rig, 1, 100, 12, 4, 0x80 | 7); // early clock: 32 to the left, so 20 pixels are outside
    rig.Frame();
    for (uint32_t x = 0; x < 256; ++x) {
        const bool right = (x >= 230 && x < 246) || x >= 254;
        EXPECT_EQ(rig.At(x, 51), Fixed(right ? 9 : 4)) << x;
        EXPECT_EQ(rig.At(x, 52), Fixed(right ? 9 : 4)) << x;
        const bool left = x >= 4 && x < 12;
        EXPECT_EQ(rig.At(x, 101), Fixed(left ? 7 : 4)) << x;
        EXPECT_EQ(rig.At(x, 132), Fixed(left ? 7 : 4)) << x;
        EXPECT_EQ(rig.At(x, 133), Fixed(4)) << x;
    }
}

TEST(VdpLegacy, FifthSpriteIsLeftOutAndFlagged) {
    VdpRig rig;
    StartMode2(rig);
    SolidPattern(rig, 1);
    for (uint32_t sprite = 0; sprite < 4; ++sprite) {
        Sprite(rig, sprite, 50, sprite * 20, 1, 9);
    }
    EXPECT_EQ(FlagsOfAFrame(rig), 0x80);
    Sprite(rig, 4, 50, 100, 1, 9);
    EXPECT_EQ(FlagsOfAFrame(rig), 0xC0);
    EXPECT_EQ(rig.At(60, 51), Fixed(9));
    EXPECT_EQ(rig.At(100, 51), Fixed(4));
}

TEST(VdpLegacy, InvisibleSpritesCollideAndLetOthersThrough) {
    VdpRig rig;
    StartMode2(rig);
    SolidPattern(rig, 1);
    Sprite(rig, 0, 50, 100, 1, 0);
    Sprite(rig, 1, 50, 104, 1, 9);
    EXPECT_EQ(FlagsOfAFrame(rig), 0xA0);
    EXPECT_EQ(rig.At(100, 51), Fixed(4));
    EXPECT_EQ(rig.At(104, 51), Fixed(9));
    Sprite(rig, 1, 50, 108, 1, 9);
    EXPECT_EQ(FlagsOfAFrame(rig), 0x80);
}

TEST(VdpLegacy, NameTableIsTakenAsTheLineBegins) {
    VdpRig rig;
    Start(rig, 0x00, 0x40);
    rig.vram[kColourTable + 1] = 0x07;
    for (uint32_t cell = 0; cell < 768; ++cell) {
        rig.vram[0x1400 + cell] = 8;
    }
    rig.vram[kColourTable] = 0x06;
    rig.Frame();
    rig.RunTo(50, 100);
    rig.Reg(2, 0x05);
    rig.RunTo(60, 0);
    EXPECT_EQ(rig.At(255, 50), Fixed(6));
    EXPECT_EQ(rig.At(0, 51), Fixed(7));
}
