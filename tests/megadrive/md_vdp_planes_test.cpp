// Planes and window: name tables, flips, priority, scroll, sizes, interlace.
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr uint32_t kHigh = 0x8000;
constexpr uint32_t kFlipX = 0x0800;
constexpr uint32_t kFlipY = 0x1000;

uint32_t Palette(uint32_t number) {
    return number << 13;
}

// Tiles 16 to 31 tell column (16) and row (17) of their pixels; tile 16: 1..8 across.
void SetRulers(MdVdpRig& rig) {
    for (uint32_t row = 0; row < 8; ++row) {
        rig.TileRow(16, row, 0x12345678);
        rig.TileRow(17, row, (row + 1) * 0x11111111);
    }
}

} // namespace

TEST(MdVdpPlanes, CellsShowTheirPaletteAndFlips) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        SetRulers(rig);
        rig.CellA(0, 0, 16);
        rig.CellA(1, 0, 16 | kFlipX | Palette(1));
        rig.CellA(2, 0, 17 | Palette(2));
        rig.CellB(3, 0, 17 | kFlipY | Palette(3));
        rig.Finish();
        for (uint32_t i = 0; i < 8; ++i) {
            EXPECT_EQ(rig.At(i, 3), EntryPixel(1 + i));
            EXPECT_EQ(rig.At(8 + i, 3), EntryPixel(16 + 8 - i));
            EXPECT_EQ(rig.At(16, i), EntryPixel(32 + 1 + i));
            EXPECT_EQ(rig.At(24, i), EntryPixel(48 + 8 - i));
        }
        EXPECT_EQ(rig.At(32, 0), EntryPixel(0));
        EXPECT_EQ(rig.At(h40 ? 319 : 255, 100), EntryPixel(0));
    }
}

// Of all layers with a pixel, the one with the largest code is shown.
TEST(MdVdpPlanes, OrderOfLayersIsThatOfTheirCodes) {
    struct Layers {
        uint32_t b, a, window, sprite; // name table words; 0 is transparent
        uint32_t entry;
    };
    const Layers rows[] = {
        {0,         0,         0,         0,         0},
        {1,         0,         0,         0,         1},
        {1,         2,         0,         0,         2},
        {1,         0,         3,         0,         3},
        {1,         2,         0,         4,         4},
        {1,         0,         3,         4,         4},
        {1 | kHigh, 2,         0,         4,         1},
        {1 | kHigh, 0,         3,         4,         1},
        {1 | kHigh, 2 | kHigh, 0,         4,         2},
        {1 | kHigh, 0,         3 | kHigh, 4,         3},
        {1 | kHigh, 2 | kHigh, 0,         4 | kHigh, 4},
        {1 | kHigh, 0,         3 | kHigh, 4 | kHigh, 4},
        {1,         2 | kHigh, 0,         4,         2},
        {1,         0,         3 | kHigh, 4,         3},
        {1,         kHigh,     0,         4,         4}, // a transparent pixel of a high cell hides nothing
        {1 | kHigh, 2,         0,         4 | kHigh, 4},
    };
    for (const Layers& row : rows) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.CellB(0, 0, row.b);
        rig.CellA(0, 0, row.a);
        rig.CellWindow(0, 0, row.window);
        if (row.window != 0) {
            rig.Reg(17, 1);
            rig.CellA(0, 0, 5 | kHigh); // of which nothing is seen
        }
        rig.Sprite(0, 0, 0, 0, 0, row.sprite);
        rig.Finish();
        rig.Finish();
        EXPECT_EQ(rig.At(3, 3), EntryPixel(row.entry))
            << row.b << " " << row.a << " " << row.window << " " << row.sprite;
    }
}

TEST(MdVdpPlanes, SizesRepeatAtTheirEdges) {
    const uint32_t sizes[4] = {32, 64, 32, 128};
    for (uint32_t value = 0; value < 4; ++value) {
        MdVdpRig rig;
        rig.Setup(false);
        rig.Reg(16, value);
        SetRulers(rig);
        // The last column, shown at the left by a scroll of one cell to the right.
        rig.CellA(sizes[value] - 1, 0, 3);
        rig.Word(0x5400, 8);
        rig.Finish();
        EXPECT_EQ(rig.At(0, 0), EntryPixel(3)) << value;
        EXPECT_EQ(rig.At(8, 0), EntryPixel(0)) << value;
        MdVdpRig tall;
        tall.Setup(false);
        tall.Reg(16, value << 4);
        tall.vdp->vram[0] = 0;
        tall.Word(0x2000 + (sizes[value] - 1) * 64, 3);
        tall.vdp->vsram[0] = static_cast<uint16_t>(0x400 - 8); // a cell down
        tall.Finish();
        tall.Finish();
        EXPECT_EQ(tall.At(0, 7), EntryPixel(3)) << value;
        EXPECT_EQ(tall.At(0, 8), EntryPixel(0)) << value;
    }
}

TEST(MdVdpPlanes, HorizontalScrollMovesByEveryPixel) {
    for (const bool h40 : {false, true}) {
        for (uint32_t scroll = 0; scroll < 24; ++scroll) {
            MdVdpRig rig;
            rig.Setup(h40);
            rig.Reg(16, 1); // 64 cells across
            SetRulers(rig);
            for (uint32_t column = 0; column < 64; ++column) {
                rig.CellA(column, 0, 16 | Palette(column & 3));
                rig.CellB(column, 1, 16 | Palette(column & 3));
            }
            rig.Word(0x5400, scroll);
            rig.Word(0x5402, 0x400 - scroll); // the other way
            rig.Finish();
            for (uint32_t x = 0; x < (h40 ? 320U : 256U); ++x) {
                const uint32_t a = (x - scroll) & 511;
                ASSERT_EQ(rig.At(x, 0), EntryPixel((a / 8 & 3) * 16 + 1 + a % 8)) << scroll;
                const uint32_t b = (x + scroll) & 511;
                ASSERT_EQ(rig.At(x, 8), EntryPixel((b / 8 & 3) * 16 + 1 + b % 8)) << scroll;
            }
        }
    }
}

TEST(MdVdpPlanes, HorizontalScrollTableByMode) {
    for (uint32_t mode = 0; mode < 4; ++mode) {
        for (const uint32_t line : {0U, 5U, 21U, 223U}) {
            MdVdpRig rig;
            rig.Setup(true);
            rig.Reg(11, mode);
            for (uint32_t i = 0; i < 256; ++i) {
                rig.Word(0x5400 + i * 4, 1000 - i);
                rig.Word(0x5402 + i * 4, 500 - i);
            }
            rig.RunTo(line, 30);
            const uint32_t rows[4] = {0, line & 7, line & ~7U, line};
            EXPECT_EQ(rig.vdp->hScrollA, 24 + rows[mode]); // 1024 - 1000
            EXPECT_EQ(rig.vdp->hScrollB, 524 + rows[mode]);
        }
    }
}

TEST(MdVdpPlanes, VerticalScrollOfWholePlanes) {
    MdVdpRig rig;
    rig.Setup(true);
    SetRulers(rig);
    for (uint32_t row = 0; row < 32; ++row) {
        rig.CellA(0, row, 17 | Palette(row & 3));
        rig.CellB(1, row, 17 | Palette(row & 3));
    }
    rig.vdp->vsram[0] = 0xFC00 + 13; // ten bits count
    rig.vdp->vsram[1] = 250;
    rig.Finish();
    rig.Finish();
    for (uint32_t y = 0; y < 224; ++y) {
        const uint32_t a = (y + 13) & 255;
        const uint32_t b = (y + 250) & 255;
        ASSERT_EQ(rig.At(0, y), EntryPixel((a / 8 & 3) * 16 + 1 + a % 8)) << y;
        ASSERT_EQ(rig.At(8, y), EntryPixel((b / 8 & 3) * 16 + 1 + b % 8)) << y;
    }
}

TEST(MdVdpPlanes, VerticalScrollOfColumnPairs) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(16, 1);
    rig.Reg(11, 4);
    SetRulers(rig);
    for (uint32_t row = 0; row < 32; ++row) {
        for (uint32_t column = 0; column < 40; ++column) {
            rig.CellA(column, row, (row & 1) != 0 ? 0 : 17 | Palette(row >> 1 & 3));
            rig.CellB(column, row, 17 | Palette(row >> 1 & 3));
        }
    }
    for (uint32_t pair = 0; pair < 20; ++pair) {
        rig.vdp->vsram[pair * 2] = static_cast<uint16_t>(pair * 3);
        rig.vdp->vsram[pair * 2 + 1] = static_cast<uint16_t>(pair * 5 + 1);
    }
    rig.Finish();
    rig.Finish();
    for (uint32_t x = 0; x < 320; x += 4) {
        for (uint32_t y = 0; y < 224; ++y) {
            const uint32_t pair = x / 16;
            const uint32_t a = (y + pair * 3) & 255;
            const uint32_t b = (y + pair * 5 + 1) & 255;
            const uint32_t v = (a / 8 & 1) == 0 ? a : b;
            ASSERT_EQ(rig.At(x, y), EntryPixel((v / 16 & 3) * 16 + 1 + v % 8)) << x << " " << y;
        }
    }
}

// Fine scroll of 5 shows a part of a cell at the left, which goes with the first pair of columns, as do the
// two cells after it: pixels 0 to 20.
TEST(MdVdpPlanes, PartialFirstCellTakesTheScrollOfTheFirstPair) {
    for (const uint32_t plane : {0U, 1U}) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Reg(11, 4);
        SetRulers(rig);
        for (uint32_t row = 0; row < 32; ++row) {
            for (uint32_t column = 0; column < 32; ++column) {
                const uint32_t word = 17 | Palette(row & 3);
                plane == 0 ? rig.CellA(column, row, word) : rig.CellB(column, row, word);
            }
        }
        rig.vdp->vsram.fill(16);
        rig.vdp->vsram[plane] = 11;
        rig.vdp->vsram[1 - plane] = 29; // of the other plane
        rig.Word(0x5400 + plane * 2, 5);
        rig.Finish();
        for (uint32_t y = 0; y < 224; ++y) {
            for (uint32_t x = 0; x < 48; ++x) {
                const uint32_t v = (y + (x < 21 ? 11 : 16)) & 255;
                ASSERT_EQ(rig.At(x, y), EntryPixel((v / 8 & 3) * 16 + 1 + v % 8))
                    << plane << " " << x << " " << y;
            }
        }
    }
}

TEST(MdVdpPlanes, FlipAndPaletteTakeNoPartInTheTileNumber) {
    MdVdpRig rig;
    rig.Setup(false);
    rig.TileRow(0x7FF, 0, 0x99999999);
    rig.CellA(0, 0, 0x7FF);
    rig.Finish();
    EXPECT_EQ(rig.At(0, 0), EntryPixel(9));
}

namespace {

// Where the window (entry 3) and where plane A (entry 2) is seen.
void ExpectWindow(uint32_t reg17, uint32_t reg18, auto&& inside) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        rig.Reg(16, 1);
        for (uint32_t i = 0; i < 64 * 32; ++i) {
            rig.Word(0x2000 + i * 2, 2);
            rig.Word(0x6000 + i * 2, 3);
        }
        rig.Reg(3, 0x6000 >> 10);
        rig.Reg(17, reg17);
        rig.Reg(18, reg18);
        rig.Word(0x5400, 5); // of which only plane A knows
        rig.Word(0x4000, 0);
        rig.Reg(4, 7); // plane B out of the way
        rig.Finish();
        for (uint32_t y = 0; y < 224; ++y) {
            for (uint32_t x = 0; x < (h40 ? 320U : 256U); ++x) {
                ASSERT_EQ(rig.At(x, y), EntryPixel(inside(x / 8, y) ? 3 : 2))
                    << reg17 << " " << reg18 << " " << x << " " << y;
            }
        }
    }
}

} // namespace

TEST(MdVdpWindow, CoversItsSides) {
    ExpectWindow(0x00, 0x00, [](uint32_t, uint32_t) { return false; });
    ExpectWindow(0x05, 0x00, [](uint32_t column, uint32_t) { return column < 10; });
    ExpectWindow(0x85, 0x00, [](uint32_t column, uint32_t) { return column >= 10; });
    ExpectWindow(0x00, 0x07, [](uint32_t, uint32_t y) { return y < 56; });
    ExpectWindow(0x00, 0x87, [](uint32_t, uint32_t y) { return y >= 56; });
    ExpectWindow(0x83, 0x9A, [](uint32_t column, uint32_t y) { return column >= 6 || y >= 208; });
    ExpectWindow(0x1F, 0x00, [](uint32_t, uint32_t) { return true; });
    ExpectWindow(0x80, 0x00, [](uint32_t, uint32_t) { return true; });
    ExpectWindow(0x00, 0x80, [](uint32_t, uint32_t) { return true; });
}

// Both are rulers here: plane A counts 1 to 8 across a cell, the window 15 to 8, and the palettes count cells.
// Beside the window plane A goes on as if there were none, whatever its scroll.
TEST(MdVdpWindow, LiesBesideAScrolledPlaneA) {
    struct Side {
        uint32_t reg17;
        uint32_t first; // columns of the window
        uint32_t last;
    };
    for (const bool h40 : {false, true}) {
        for (const Side& side : {
                 Side{0x01, 0,  1 }, // with column 0
                 Side{0x03, 0,  5 },
                 Side{0x85, 10, 39},
                 Side{0x8F, 30, 39}
        }) {
            for (uint32_t scroll = 0; scroll < 17; ++scroll) {
                MdVdpRig rig;
                rig.Setup(h40);
                rig.Reg(16, 1); // 64 cells across
                rig.Reg(17, side.reg17);
                SetRulers(rig);
                rig.TileRow(18, 0, 0xFEDCBA98);
                for (uint32_t column = 0; column < 64; ++column) {
                    rig.CellA(column, 0, 16 | Palette(column & 3));
                }
                for (uint32_t column = 0; column < (h40 ? 40U : 32U); ++column) {
                    rig.CellWindow(column, 0, 18 | Palette(column & 3));
                }
                rig.Word(0x5400, scroll);
                rig.Finish();
                for (uint32_t x = 0; x < (h40 ? 320U : 256U); ++x) {
                    const bool inside = x / 8 >= side.first && x / 8 <= side.last;
                    const uint32_t a = (x - scroll) & 511;
                    const uint32_t entry =
                        inside ? (x / 8 & 3) * 16 + 15 - x % 8 : (a / 8 & 3) * 16 + 1 + a % 8;
                    ASSERT_EQ(rig.At(x, 0), EntryPixel(entry))
                        << h40 << " " << side.reg17 << " " << scroll << " " << x;
                }
            }
        }
    }
}

TEST(MdVdpWindow, HasItsOwnWidthAndNoScroll) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        rig.Reg(17, 0x80);
        rig.vdp->vsram[0] = 100;
        rig.CellWindow(0, 1, 5);
        rig.Finish();
        rig.Finish();
        EXPECT_EQ(rig.At(0, 8), EntryPixel(5));
        EXPECT_EQ(rig.At(0, 7), EntryPixel(0));
        EXPECT_EQ(rig.At(0, 16), EntryPixel(0));
        EXPECT_EQ(rig.vdp->windowWidth, h40 ? 64U : 32U);
    }
}

TEST(MdVdpInterlace, CellsHaveSixteenRowsOfBothFields) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x87);
    std::fill_n(rig.vdp->vram.begin(), 64, uint8_t{0}); // tile 0 is empty
    for (uint32_t row = 0; row < 16; ++row) {
        // Tile 8 of 64 bytes; rows 0 to 14 as entries 1 to 15, row 15 empty.
        rig.Word(8 * 64 + row * 4, (row + 1) % 16 * 0x1111);
        rig.Word(8 * 64 + row * 4 + 2, (row + 1) % 16 * 0x1111);
    }
    for (uint32_t row = 0; row < 32; ++row) {
        rig.CellA(0, row, 8);
        rig.CellA(1, row, 8 | kFlipY);
        rig.CellB(2, row, 8 | Palette(1));
    }
    rig.vdp->vsram[1] = 3;
    rig.Finish();
    for (uint32_t frame = 0; frame < 2; ++frame) {
        const uint32_t field = rig.vdp->field;
        for (uint32_t line = 0; line < 224; ++line) {
            // As the line ends: in odd fields the next one darkens its row.
            rig.RunTo(line, 397);
            const uint32_t y = line * 2 + field;
            const auto entry = [](uint32_t row) { return (row + 1) % 16; };
            const uint32_t at = (8 + y) * 320;
            ASSERT_EQ(rig.pixels[at], EntryPixel(entry(y & 15)));
            ASSERT_EQ(rig.pixels[at + 8], EntryPixel(entry(15 - (y & 15))));
            const uint32_t b = entry((y + 3) & 15);
            ASSERT_EQ(rig.pixels[at + 16], EntryPixel(b == 0 ? 0 : 16 + b));
        }
        rig.Finish();
        EXPECT_EQ(rig.vdp->field, field ^ 1);
    }
}
