// Mode 4 backgrounds, writes in the middle of a line, and the two layers of System E.
#include "sega8/vdp.h"
#include "sega8/vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

// Tile n of 1 to 15 is solid colour n; column c of every row shows tile (c AND 7) + 1.
void Stripes(VdpRig& rig) {
    rig.StartMode4();
    for (uint8_t colour = 1; colour < 16; ++colour) {
        rig.SolidTile(colour, colour);
    }
    for (uint32_t row = 0; row < 28; ++row) {
        for (uint32_t column = 0; column < 32; ++column) {
            rig.Name(row, column, (column & 7) + 1);
        }
    }
}

// Row r of the table shows tile (r AND 7) + 1.
void Bands(VdpRig& rig, uint32_t rows, uint32_t base) {
    rig.StartMode4();
    for (uint8_t colour = 1; colour < 16; ++colour) {
        rig.SolidTile(colour, colour);
    }
    for (uint32_t row = 0; row < rows; ++row) {
        for (uint32_t column = 0; column < 32; ++column) {
            rig.Name(row, column, (row & 7) + 1, base);
        }
    }
}

uint32_t StripeAt(uint32_t x) {
    return SixBits(((x >> 3) & 7) + 1);
}

uint32_t BandAt(uint32_t row) {
    return SixBits((row & 7) + 1);
}

} // namespace

TEST(VdpMode4, TilesShowPlanesFlipsAndPalettes) {
    VdpRig rig;
    rig.StartMode4();
    rig.TileRow(1, 0, {1, 2, 4, 8, 15, 0, 7, 9});
    rig.TileRow(1, 7, {3, 3, 3, 3, 5, 5, 5, 5});
    rig.Name(0, 0, 1);
    rig.Name(0, 1, 1 | 0x200);
    rig.Name(0, 2, 1 | 0x400);
    rig.Name(0, 3, 1 | 0x800);
    rig.Name(0, 4, 256 | 0x800); // tile 256 is empty: entry 16, not the backdrop
    rig.Reg(7, 9);
    rig.Frame();
    const uint8_t row0[8] = {1, 2, 4, 8, 15, 0, 7, 9};
    for (uint32_t x = 0; x < 8; ++x) {
        EXPECT_EQ(rig.At(x, 0), SixBits(row0[x]));
        EXPECT_EQ(rig.At(8 + x, 0), SixBits(row0[7 - x]));
        EXPECT_EQ(rig.At(16 + x, 0), SixBits(x < 4 ? 3 : 5));
        EXPECT_EQ(rig.At(24 + x, 0), SixBits(16U + row0[x]));
        EXPECT_EQ(rig.At(32 + x, 0), SixBits(16));
        EXPECT_EQ(rig.At(x, 7), SixBits(x < 4 ? 3 : 5));
    }
}

TEST(VdpMode4, ScrollXMovesRightAndLeavesBackdropFree) {
    VdpRig rig;
    Stripes(rig);
    rig.Reg(7, 3);
    for (const uint32_t scroll : {0U, 1U, 7U, 8U, 21U, 255U}) {
        rig.Reg(8, scroll);
        rig.Frame();
        for (uint32_t x = 0; x < 256; ++x) {
            const uint32_t expected =
                x < (scroll & 7) ? SixBits(19) : StripeAt((x + 256 - scroll) & 255);
            ASSERT_EQ(rig.At(x, 100), expected) << scroll << " " << x;
        }
    }
}

TEST(VdpMode4, ScrollYWrapsAfter224LinesOrAfter256) {
    for (const uint32_t scroll : {0U, 5U, 100U, 223U, 224U, 255U}) {
        VdpRig low;
        Bands(low, 28, 0x3800);
        low.Reg(9, scroll);
        low.Frame();
        for (uint32_t line = 0; line < 192; ++line) {
            ASSERT_EQ(low.At(128, line), BandAt(((line + scroll) % 224) / 8)) << scroll;
        }
        for (const uint32_t reg1 : {0x50U, 0x48U}) {
            VdpRig tall;
            Bands(tall, 32, 0x3700);
            tall.Reg(0, 0x06);
            tall.Reg(1, reg1);
            tall.Reg(9, scroll);
            tall.Frame();
            for (uint32_t line = 0; line < (reg1 == 0x50 ? 224U : 240U); ++line) {
                ASSERT_EQ(tall.At(128, line), BandAt(((line + scroll) & 255) / 8)) << scroll;
            }
        }
    }
}

TEST(VdpMode4, ScrollLocksHoldTheTopRowsAndTheRightColumns) {
    VdpRig rig;
    Stripes(rig);
    rig.Reg(0, 0x44);
    rig.Reg(8, 13);
    rig.Frame();
    for (uint32_t x = 16; x < 256; ++x) {
        ASSERT_EQ(rig.At(x, 15), StripeAt(x));
        ASSERT_EQ(rig.At(x, 16), StripeAt(x - 13));
    }
    VdpRig bands;
    Bands(bands, 28, 0x3800);
    bands.Reg(0, 0x84);
    bands.Reg(8, 64); // the lock looks at the screen column
    bands.Reg(9, 24);
    bands.Frame();
    EXPECT_EQ(bands.At(191, 0), BandAt(3));
    EXPECT_EQ(bands.At(192, 0), BandAt(0));
}

TEST(VdpMode4, GameGearHasNeitherXLockNorLeftColumnBlank) {
    VdpRig rig(kVdpGameGear);
    Stripes(rig);
    for (uint32_t entry = 0; entry < 32; ++entry) {
        rig.Colour(entry * 2, entry);
        rig.Colour(entry * 2 + 1, 0);
    }
    rig.Reg(0, 0x64);
    rig.Reg(8, 8);
    rig.Frame();
    EXPECT_EQ(rig.At(0, 0), 0xFF800000U); // column 31, tile 8: red 8 of 15
    EXPECT_EQ(rig.At(8, 0), 0xFF100000U);
}

TEST(VdpMode4, LeftColumnBlankCoversBackgroundAndSprites) {
    VdpRig rig;
    Stripes(rig);
    rig.Reg(0, 0x24);
    rig.Reg(7, 2);
    rig.Sprite(0, 49, 4, 9);
    rig.Frame();
    EXPECT_EQ(rig.At(7, 50), SixBits(18));
    EXPECT_EQ(rig.At(8, 50), SixBits(25));
    EXPECT_EQ(rig.At(12, 50), SixBits(2));
}

TEST(VdpMode4, FirstChipDropsRowBit16WhileRegister2Bit0IsClear) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond}) {
        VdpRig rig(variant);
        Bands(rig, 28, 0x3800);
        for (uint32_t column = 0; column < 32; ++column) {
            rig.Name(16, column, 12);
            rig.Name(0, column, 11);
        }
        rig.Reg(2, 0xFE);
        rig.Frame();
        EXPECT_EQ(rig.At(0, 128), SixBits(variant == kVdpFirst ? 11 : 12));
        rig.Reg(2, 0xFF);
        rig.Frame();
        EXPECT_EQ(rig.At(0, 128), SixBits(12));
    }
}

TEST(VdpMidLine, AColourChangesFromItsVeryDot) {
    VdpRig rig;
    Stripes(rig);
    for (const uint32_t x : {0U, 1U, 100U, 101U, 255U}) {
        for (uint32_t entry = 0; entry < 16; ++entry) {
            rig.Colour(entry, entry);
        }
        rig.Frame();
        rig.RunTo(50, 11 + x);
        for (uint32_t entry = 1; entry < 16; ++entry) {
            rig.Colour(entry, 0x3F);
        }
        rig.RunTo(60, 0);
        for (uint32_t i = 0; i < 256; ++i) {
            ASSERT_EQ(rig.At(i, 50), i < x ? StripeAt(i) : SixBits(0x3F)) << i;
        }
    }
}

TEST(VdpMidLine, ScrollIsTakenAsTheLineBegins) {
    for (const uint32_t number : {8U, 9U}) {
        VdpRig rig;
        if (number == 8) {
            Stripes(rig);
        } else {
            Bands(rig, 28, 0x3800);
        }
        rig.Frame();
        rig.RunTo(50, 0);
        rig.RunTo(50, 1); // dot 0 has taken them
        rig.Reg(number, 16);
        rig.RunTo(60, 0);
        rig.RunTo(70, 0); // and before dot 0 they count
        rig.Reg(number, 0);
        rig.Finish();
        for (uint32_t x = 16; x < 256; ++x) {
            for (const uint32_t line : {49U, 50U, 51U, 69U, 70U}) {
                const bool moved = line == 51 || line == 69;
                const uint32_t expected = number == 8 ? StripeAt(moved ? x - 16 : x)
                                                      : BandAt((line + (moved ? 16 : 0)) / 8);
                ASSERT_EQ(rig.At(x, line), expected) << number << " " << line << " " << x;
            }
        }
    }
}

TEST(VdpMidLine, DisplayBitAndModeAreTakenAsTheLineBegins) {
    VdpRig rig;
    Stripes(rig);
    rig.Reg(7, 4);
    rig.Frame();
    rig.RunTo(50, 1);
    rig.Reg(1, 0x00);
    rig.RunTo(60, 0);
    rig.Reg(1, 0x40);
    rig.RunTo(70, 100);
    rig.Reg(0, 0x00); // mode 0, where the fixed colour 4 is the backdrop of empty cells
    rig.Reg(2, 0x00);
    rig.Reg(3, 0x00);
    rig.Reg(4, 0x01);
    rig.RunTo(80, 0);
    rig.Reg(0, 0x04);
    rig.Reg(2, 0xFF);
    rig.Finish();
    for (uint32_t x = 0; x < 256; ++x) {
        ASSERT_EQ(rig.At(x, 50), StripeAt(x));
        ASSERT_EQ(rig.At(x, 51), SixBits(20));
        ASSERT_EQ(rig.At(x, 59), SixBits(20));
        ASSERT_EQ(rig.At(x, 60), StripeAt(x));
        ASSERT_EQ(rig.At(x, 71), SixBits(0x10)) << x; // dark blue
        ASSERT_EQ(rig.At(x, 80), StripeAt(x));
    }
    for (uint32_t x = 0; x < 88; ++x) {
        ASSERT_EQ(rig.At(x, 70), StripeAt(x));
    }
}

TEST(VdpMidLine, NameTableChangesFromTheNextColumnFetched) {
    VdpRig rig;
    Stripes(rig);
    for (uint32_t column = 0; column < 32; ++column) {
        rig.Name(6, column, 14, 0x3000);
    }
    rig.Frame();
    rig.RunTo(50, 8 * 10); // before the name of column 10
    rig.Reg(2, 0xFD);
    rig.RunTo(51, 0);
    rig.Reg(2, 0xFF);
    rig.Finish();
    for (uint32_t x = 0; x < 256; ++x) {
        ASSERT_EQ(rig.At(x, 50), x < 80 ? StripeAt(x) : SixBits(14)) << x;
    }
}

TEST(VdpMidLine, ScrollLockChangesFromTheNextColumnFetched) {
    VdpRig rig;
    Bands(rig, 28, 0x3800);
    rig.Reg(9, 24);
    rig.Frame();
    rig.RunTo(50, 8 * 28);
    rig.Reg(0, 0x84);
    rig.RunTo(51, 0);
    for (uint32_t x = 0; x < 256; ++x) {
        ASSERT_EQ(rig.At(x, 50), BandAt(x < 224 ? (50 + 24) / 8 : 50 / 8)) << x;
    }
}

TEST(VdpMidLine, BlankLinesTakeTheBackdropColumnByColumn) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(1, 0);
    rig.Reg(7, 1);
    rig.Frame();
    rig.RunTo(50, 8 * 10 + 6); // the blank slot of column 10
    rig.Reg(7, 2);
    rig.RunTo(51, 0);
    for (uint32_t x = 0; x < 256; ++x) {
        ASSERT_EQ(rig.At(x, 50), SixBits(x < 80 ? 17 : 18)) << x;
    }
}

TEST(VdpLayers, SecondChipLeavesTransparentPixelsAlone) {
    VdpRig rig(kVdpFirst);
    rig.vdp.secondChip = true;
    rig.StartMode4();
    rig.TileRow(1, 0, {0, 3, 0, 3, 0, 3, 0, 3});
    rig.Name(0, 0, 1);
    rig.Name(0, 1, 1 | 0x800);
    rig.SolidTile(2, 6);
    rig.Sprite(0, 255, 32, 2);
    rig.Frame();
    EXPECT_EQ(rig.At(0, 0), kUntouched);
    EXPECT_EQ(rig.At(1, 0), SixBits(3));
    EXPECT_EQ(rig.At(8, 0), kUntouched);
    EXPECT_EQ(rig.At(9, 0), SixBits(19));
    EXPECT_EQ(rig.At(32, 0), SixBits(22));
    EXPECT_EQ(rig.At(40, 0), kUntouched);
    EXPECT_EQ(rig.pixels[0], kUntouched); // border
    std::fill(rig.pixels.begin(), rig.pixels.end(), kUntouched);
    rig.Reg(0, 0x24);
    rig.Frame();
    EXPECT_EQ(rig.At(1, 0), kUntouched); // blanked column
    EXPECT_EQ(rig.At(9, 0), SixBits(19));
    std::fill(rig.pixels.begin(), rig.pixels.end(), kUntouched);
    rig.Reg(1, 0);
    rig.Frame();
    for (const uint32_t pixel : rig.pixels) {
        ASSERT_EQ(pixel, kUntouched);
    }
}

TEST(VdpLayers, MemoryMayBeExchangedBetweenLines) {
    VdpRig rig;
    Stripes(rig);
    std::vector<uint8_t> other(kVdpVramBytes);
    rig.Frame();
    rig.RunTo(50, 0);
    rig.vdp.vram = other.data();
    rig.RunTo(60, 0);
    rig.vdp.vram = rig.vram.data();
    rig.Finish();
    EXPECT_EQ(rig.At(100, 49), StripeAt(100));
    EXPECT_EQ(rig.At(100, 55), SixBits(0));
    EXPECT_EQ(rig.At(100, 61), StripeAt(100));
}
