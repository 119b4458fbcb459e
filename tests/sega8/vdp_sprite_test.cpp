// Mode 4 sprites: search, limit, order, collision, sizes and their quirks.
#include "sega8/vdp.h"
#include "sega8/vdp_rig.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

// Tiles 1 to 15 solid in their colour, background colour 0.
void Start(VdpRig& rig) {
    rig.StartMode4();
    for (uint8_t colour = 1; colour < 16; ++colour) {
        rig.SolidTile(colour, colour);
    }
}

// Runs a frame; returns the flags that it raised.
uint8_t FlagsOfAFrame(VdpRig& rig) {
    rig.Finish();
    (void)VdpStatusRead(rig.vdp);
    rig.Finish();
    return VdpStatusRead(rig.vdp) & 0xE0;
}

// Sets 224 or 240 lines; the name table moves to 0x3700, which is empty.
void SetTall(VdpRig& rig, uint32_t height, uint32_t more = 0) {
    rig.Reg(0, 0x06);
    rig.Reg(1, (height == 224 ? 0x50U : 0x48U) | more);
}

constexpr uint8_t kFrame = 0x80;
constexpr uint8_t kOverflow = 0x40;
constexpr uint8_t kCollision = 0x20;

} // namespace

TEST(VdpSprites, BeginOnTheLineBelowTheirY) {
    VdpRig rig;
    Start(rig);
    rig.Sprite(0, 0, 16, 1);
    rig.Sprite(1, 255, 32, 2);
    rig.Sprite(2, 0xF9, 48, 3); // the last row of this one is on line 1
    rig.Sprite(3, 190, 64, 4);
    rig.Frame();
    EXPECT_EQ(rig.At(16, 0), SixBits(0));
    EXPECT_EQ(rig.At(16, 1), SixBits(17));
    EXPECT_EQ(rig.At(23, 8), SixBits(17));
    EXPECT_EQ(rig.At(24, 8), SixBits(0));
    EXPECT_EQ(rig.At(16, 9), SixBits(0));
    EXPECT_EQ(rig.At(32, 0), SixBits(18));
    EXPECT_EQ(rig.At(32, 7), SixBits(18));
    EXPECT_EQ(rig.At(32, 8), SixBits(0));
    EXPECT_EQ(rig.At(48, 1), SixBits(19));
    EXPECT_EQ(rig.At(48, 2), SixBits(0));
    EXPECT_EQ(rig.At(64, 190), SixBits(0));
    EXPECT_EQ(rig.At(64, 191), SixBits(20));
}

TEST(VdpSprites, AllSixtyFourAreSearched) {
    VdpRig rig;
    Start(rig);
    for (uint32_t sprite = 0; sprite < 64; ++sprite) {
        rig.Sprite(sprite, sprite / 8 * 16 + 9, (sprite & 7) * 16 + 8, 1 + sprite % 15);
    }
    rig.Frame();
    for (uint32_t sprite = 0; sprite < 64; ++sprite) {
        ASSERT_EQ(rig.At((sprite & 7) * 16 + 8, sprite / 8 * 16 + 10), SixBits(17 + sprite % 15))
            << sprite;
    }
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
}

TEST(VdpSprites, Y208EndsTheListWith192LinesOnly) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond}) {
        for (const uint32_t height : {192U, 224U, 240U}) {
            if (variant == kVdpFirst && height != 192) {
                continue; // the first chip stays at 192 lines
            }
            VdpRig rig(variant);
            Start(rig);
            rig.Sprite(0, 100, 16, 1);
            rig.Sprite(1, 0xD0, 24, 3);
            rig.Sprite(2, 100, 32, 2);
            if (height != 192) {
                SetTall(rig, height);
            }
            rig.Frame();
            EXPECT_EQ(rig.At(16, 101), SixBits(17));
            EXPECT_EQ(rig.At(32, 101), SixBits(height == 192 ? 0 : 18)) << height;
            if (height != 192) { // the place of an ordinary sprite
                EXPECT_EQ(rig.At(24, 208), SixBits(0));
                EXPECT_EQ(rig.At(24, 209), SixBits(19)) << height;
                EXPECT_EQ(rig.At(24, 216), SixBits(19)) << height;
                EXPECT_EQ(rig.At(24, 217), SixBits(0));
            }
        }
    }
}

// The settings of a tall picture leave the first chip at 192 lines, and its list ends as ever.
TEST(VdpSprites, Y208EndsTheListOfTheFirstChipWithTallSettingsToo) {
    for (const uint32_t height : {224U, 240U}) {
        VdpRig rig(kVdpFirst);
        Start(rig);
        rig.Sprite(2, 100, 32, 2); // sprite 1 holds the end mark
        rig.vram[0x3F00] = 100;
        rig.vram[0x3F01] = 0xD0;
        SetTall(rig, height);
        rig.Frame();
        EXPECT_EQ(rig.vdp.activeHeight, 192U);
        EXPECT_EQ(rig.At(32, 101), SixBits(0));
    }
}

TEST(VdpSprites, NinthOnALineIsLeftOutAndFlagged) {
    VdpRig rig;
    Start(rig);
    for (uint32_t sprite = 0; sprite < 8; ++sprite) {
        rig.Sprite(sprite, 50, sprite * 16, 1);
    }
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
    rig.Sprite(8, 50, 200, 0); // an empty tile counts
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame | kOverflow);
    rig.Sprite(8, 50, 200, 1);
    rig.Frame();
    EXPECT_EQ(rig.At(112, 51), SixBits(17));
    EXPECT_EQ(rig.At(200, 51), SixBits(0));
    // An end mark before the ninth stops the search.
    rig.Sprite(9, 50, 200, 1);
    rig.vram[0x3F08] = 0xD0;
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
}

TEST(VdpSprites, OverflowComesDuringTheLineBeforeAndNotOutsideThePicture) {
    VdpRig rig;
    Start(rig);
    for (uint32_t sprite = 0; sprite < 9; ++sprite) {
        rig.Sprite(sprite, 50, sprite * 16, 1);
    }
    rig.Frame();
    (void)VdpStatusRead(rig.vdp);
    // The search of the first sixteen sprites for line 51 is at the end of line 49.
    rig.RunTo(50, 320);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
    rig.RunTo(50, 0);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x5F);
    for (uint32_t sprite = 0; sprite < 9; ++sprite) {
        rig.vram[0x3F00 + sprite] = 192; // first line 193
    }
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
    for (uint32_t sprite = 0; sprite < 9; ++sprite) {
        rig.vram[0x3F00 + sprite] = 50;
    }
    rig.Reg(1, 0);
    rig.Frame();
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame); // a blanked display searches nothing
}

TEST(VdpSprites, NinthIsFlaggedDownToTheLastLineOfATallPicture) {
    for (const uint32_t height : {224U, 240U}) {
        for (const bool pal : {false, true}) {
            VdpRig rig(kVdpSecond, pal);
            Start(rig);
            SetTall(rig, height);
            // The first line is Y + 1: the last one of the picture, and the first one below it.
            for (const uint32_t y : {height - 2, height - 1}) {
                for (uint32_t sprite = 0; sprite < 64; ++sprite) {
                    rig.vram[0x3F00 + sprite] = 239; // never on a line of either picture
                }
                for (uint32_t sprite = 10; sprite < 19; ++sprite) {
                    rig.vram[0x3F00 + sprite] = static_cast<uint8_t>(y);
                    rig.vram[0x3F80 + sprite * 2] = static_cast<uint8_t>((sprite - 10) * 16);
                    rig.vram[0x3F81 + sprite * 2] = 1;
                }
                const bool inside = y == height - 2;
                EXPECT_EQ(FlagsOfAFrame(rig), inside ? kFrame | kOverflow : kFrame) << height;
                EXPECT_EQ(rig.At(112, height - 1), SixBits(inside ? 17 : 0)) << height;
                EXPECT_EQ(rig.At(128, height - 1), SixBits(0)) << height;
                rig.vram[0x3F00 + 18] = 239; // eight are allowed
                EXPECT_EQ(FlagsOfAFrame(rig), kFrame) << height;
            }
        }
    }
}

TEST(VdpSprites, TheFirstOfTheListIsOnTop) {
    VdpRig rig;
    Start(rig);
    rig.Sprite(0, 50, 20, 1);
    rig.Sprite(1, 50, 24, 2);
    rig.Frame();
    EXPECT_EQ(rig.At(23, 51), SixBits(17));
    EXPECT_EQ(rig.At(27, 51), SixBits(17));
    EXPECT_EQ(rig.At(28, 51), SixBits(18));
}

TEST(VdpSprites, PriorityTilesCoverThemExceptInColour0) {
    VdpRig rig;
    Start(rig);
    rig.TileRow(16, 0, {5, 0, 5, 0, 5, 0, 5, 0});
    rig.Name(1, 1, 16);
    rig.Name(1, 2, 16 | 0x1000);
    rig.Sprite(0, 7, 8, 1);
    rig.Sprite(1, 7, 16, 1);
    rig.Frame();
    EXPECT_EQ(rig.At(8, 8), SixBits(17));
    EXPECT_EQ(rig.At(9, 8), SixBits(17));
    EXPECT_EQ(rig.At(16, 8), SixBits(5));
    EXPECT_EQ(rig.At(17, 8), SixBits(17));
}

TEST(VdpSprites, CollisionIsRaisedAtTheDotWhereTwoMeet) {
    VdpRig rig;
    Start(rig);
    rig.Sprite(0, 50, 100, 1);
    rig.Sprite(1, 50, 104, 2);
    rig.Frame();
    rig.RunTo(51, 11 + 104);
    (void)VdpStatusRead(rig.vdp);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
    rig.Ticks(2);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x3F);
}

TEST(VdpSprites, CollisionCountsBehindTilesButNotEmptyOrOffTheScreen) {
    VdpRig rig;
    Start(rig);
    rig.Sprite(0, 50, 100, 1);
    rig.Sprite(1, 50, 108, 2);
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame); // side by side
    rig.Sprite(1, 50, 100, 0);
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame); // an empty tile
    rig.Sprite(1, 50, 107, 2);
    for (uint32_t column = 0; column < 32; ++column) {
        rig.Name(6, column, 3 | 0x1000);
        rig.Name(7, column, 3 | 0x1000);
    }
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame | kCollision);
    EXPECT_EQ(rig.At(107, 51), SixBits(3));
    rig.Reg(0, 0x0C); // eight to the left: both end at the edge
    rig.Sprite(0, 50, 0, 1);
    rig.Sprite(1, 50, 0, 2);
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
    rig.Sprite(0, 50, 1, 1);
    rig.Sprite(1, 50, 1, 2);
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame | kCollision);
}

TEST(VdpSprites, DoNotWrapAtEitherEdge) {
    VdpRig rig;
    Start(rig);
    rig.Sprite(0, 50, 252, 1);
    rig.Frame();
    EXPECT_EQ(rig.At(255, 51), SixBits(17));
    EXPECT_EQ(rig.At(0, 51), SixBits(0));
    rig.Reg(0, 0x0C);
    rig.Sprite(0, 50, 4, 1);
    rig.Frame();
    EXPECT_EQ(rig.At(0, 51), SixBits(17));
    EXPECT_EQ(rig.At(3, 51), SixBits(17));
    EXPECT_EQ(rig.At(4, 51), SixBits(0));
    EXPECT_EQ(rig.At(255, 51), SixBits(0));
}

TEST(VdpSprites, SixteenRowsDropTileBit0AndRegister6SelectsTheUpperTiles) {
    VdpRig rig;
    Start(rig);
    rig.SolidTile(256 + 4, 9);
    rig.SolidTile(256 + 5, 10);
    rig.Sprite(0, 50, 100, 5);
    rig.Frame();
    EXPECT_EQ(rig.At(100, 58), SixBits(21));
    EXPECT_EQ(rig.At(100, 59), SixBits(0));
    rig.Reg(1, 0x42);
    rig.Frame();
    EXPECT_EQ(rig.At(100, 51), SixBits(20));
    EXPECT_EQ(rig.At(100, 58), SixBits(20));
    EXPECT_EQ(rig.At(100, 59), SixBits(21));
    EXPECT_EQ(rig.At(100, 66), SixBits(21));
    EXPECT_EQ(rig.At(100, 67), SixBits(0));
    rig.Reg(6, 0xFF);
    rig.Frame();
    EXPECT_EQ(rig.At(100, 51), SixBits(25));
    EXPECT_EQ(rig.At(100, 59), SixBits(26));
}

TEST(VdpSprites, ZoomDoublesBothWaysButSidewaysOnlyFourOnTheFirstChip) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond}) {
        VdpRig rig(variant);
        Start(rig);
        rig.TileRow(20, 0, {1, 2, 3, 4, 5, 6, 7, 8});
        rig.TileRow(20, 1, {8, 7, 6, 5, 4, 3, 2, 1});
        for (uint32_t sprite = 0; sprite < 5; ++sprite) {
            rig.Sprite(sprite, 50, sprite * 32, 20);
        }
        rig.Reg(1, 0x41);
        rig.Frame();
        for (uint32_t dot = 0; dot < 16; ++dot) {
            EXPECT_EQ(rig.At(96 + dot, 51), SixBits(17 + dot / 2));
            EXPECT_EQ(rig.At(96 + dot, 52), SixBits(17 + dot / 2));
            EXPECT_EQ(rig.At(96 + dot, 53), SixBits(24 - dot / 2));
            const uint32_t narrow = dot < 8 ? SixBits(17 + dot) : SixBits(0);
            EXPECT_EQ(rig.At(128 + dot, 52), variant == kVdpFirst ? narrow : SixBits(17 + dot / 2));
        }
        EXPECT_EQ(rig.At(96, 54), SixBits(24));
        EXPECT_EQ(rig.At(96, 55), SixBits(0));
    }
}

TEST(VdpSprites, ZoomedOnesAreCutAtBothEdgesAndDoNotWrap) {
    VdpRig rig;
    Start(rig);
    for (uint32_t row = 0; row < 8; ++row) {
        rig.TileRow(20, row, {1, 2, 3, 4, 5, 6, 7, 8});
    }
    rig.Reg(1, 0x41);
    rig.Sprite(0, 50, 251, 20); // the first five of its sixteen dots
    rig.Frame();
    for (uint32_t x = 251; x < 256; ++x) {
        EXPECT_EQ(rig.At(x, 51), SixBits(17 + (x - 251) / 2)) << x;
    }
    for (uint32_t x = 0; x < 16; ++x) {
        EXPECT_EQ(rig.At(x, 51), SixBits(0)) << x;
        EXPECT_EQ(rig.At(x, 52), SixBits(0)) << x;
    }
    rig.Reg(0, 0x0C); // eight to the left
    rig.Sprite(0, 50, 3, 20);
    rig.Frame();
    for (uint32_t x = 0; x < 11; ++x) { // dots 5 to 15
        EXPECT_EQ(rig.At(x, 51), SixBits(17 + (x + 5) / 2)) << x;
    }
    EXPECT_EQ(rig.At(11, 51), SixBits(0));
    for (uint32_t x = 240; x < 256; ++x) {
        EXPECT_EQ(rig.At(x, 51), SixBits(0)) << x;
    }
}

// Zoomed dots past the right edge meet no others; the same dots inside do.
TEST(VdpSprites, ZoomedOnesCollideInsideThePictureOnly) {
    VdpRig rig;
    Start(rig);
    for (uint32_t row = 0; row < 8; ++row) {
        rig.TileRow(20, row, {0, 0, 0, 0, 1, 1, 1, 1}); // eight dots after eight empty ones
    }
    rig.Reg(1, 0x41);
    rig.Sprite(0, 50, 248, 20);
    rig.Sprite(1, 50, 250, 20);
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame);
    rig.Sprite(0, 50, 240, 20);
    rig.Sprite(1, 50, 247, 20); // dots 248 to 255 and 255 to 262
    EXPECT_EQ(FlagsOfAFrame(rig), kFrame | kCollision);
}

// Y counts modulo 256 for doubled rows as well. Y = 0xF8 would begin on line 249, so that line 0
// shows the eighth of its lines, row 3.
TEST(VdpSprites, ZoomedOnesComeInAtTheTop) {
    VdpRig rig;
    Start(rig);
    for (uint8_t row = 0; row < 8; ++row) {
        const auto colour = static_cast<uint8_t>(row + 1);
        rig.TileRow(20, row, {colour, colour, colour, colour, colour, colour, colour, colour});
        rig.TileRow(21, row, {15, 15, 15, 15, 15, 15, 15, 15});
    }
    rig.Reg(1, 0x41);
    rig.Sprite(0, 0xF8, 100, 20);
    rig.Frame();
    const uint32_t rows[] = {3, 4, 4, 5, 5, 6, 6, 7, 7};
    for (uint32_t line = 0; line < 9; ++line) {
        EXPECT_EQ(rig.At(100, line), SixBits(17 + rows[line])) << line;
    }
    EXPECT_EQ(rig.At(100, 9), SixBits(0));
    rig.Reg(1,
            0x43); // two tiles and 32 lines: Y = 0xE8 shows the last nine of them, from row 11 on
    rig.Sprite(0, 0xE8, 100, 20);
    rig.Frame();
    for (uint32_t line = 0; line < 9; ++line) {
        EXPECT_EQ(rig.At(100, line), SixBits(31)) << line;
    }
    EXPECT_EQ(rig.At(100, 9), SixBits(0));
}

// Bit 2 selects the upper tiles. The lower two bits, which mask tile bits on the real first chip,
// do nothing here.
TEST(VdpSprites, Register6Bits0And1ChangeNothingOnAnyChip) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond}) {
        VdpRig rig(variant);
        Start(rig);
        rig.SolidTile(0x40 + 7, 7);
        rig.SolidTile(0x100 + 0x40 + 7, 9);
        rig.Sprite(0, 50, 100, 0x40 + 7);
        for (uint32_t low = 0; low < 4; ++low) {
            rig.Reg(6, 0xF8 | low);
            rig.Frame();
            EXPECT_EQ(rig.At(100, 51), SixBits(16 + 7)) << low;
            rig.Reg(6, 0xFC | low);
            rig.Frame();
            EXPECT_EQ(rig.At(100, 51), SixBits(16 + 9)) << low;
        }
    }
}

// The real first chip reads X and tile number from the lower half of the table; here only an
// address bit of the Y words is cleared, which is 0 anyway.
TEST(VdpSprites, TableIsTheSameWithRegister5Bit0OnEveryChip) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond, kVdpGameGear}) {
        VdpRig rig(variant);
        Start(rig);
        rig.Sprite(0, 50, 100, 1);
        rig.Colour(17, 17);
        rig.Colour(0x22, 17); // entry 17 of a Game Gear
        rig.Colour(0x23, 0);
        rig.Frame();
        const uint32_t shown = rig.At(100, 51);
        EXPECT_NE(shown, rig.At(90, 51));
        rig.Reg(5, 0xFE);
        rig.Frame();
        EXPECT_EQ(rig.At(100, 51), shown);
        EXPECT_EQ(rig.vdp.foundCount, 0);
    }
}

TEST(VdpSprites, TableBaseIsBits1To6OfRegister5) {
    VdpRig rig;
    Start(rig);
    rig.Reg(5, 0x81 | 0x20); // 0x1000
    rig.vram[0x1000] = 50;
    rig.vram[0x1001] = 0xD0;
    rig.vram[0x1080] = 77;
    rig.vram[0x1081] = 3;
    rig.Frame();
    EXPECT_EQ(rig.At(77, 51), SixBits(19));
}
