// The background: what is fetched, where it appears, and what a write in the middle of a line does.
#include "nes/ppu_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t kBackgroundOn = 0x0A; // the left column too

// Sets the palette; tile 0 empty, tile n (1 to 3) solid in colour n.
void StartSolid(PpuRig& rig) {
    rig.SetPalette();
    rig.Tile(1, 0xFF, 0x00);
    rig.Tile(2, 0x00, 0xFF);
    rig.Tile(3, 0xFF, 0xFF);
}

// The filter of the scanline board's hook; returns true if the address clocks the counter.
bool Counts(uint32_t& filter, uint16_t address) {
    if (filter != 0) {
        --filter;
    }
    const bool high = (address & 0x1000) != 0;
    const bool counts = filter == 0 && high;
    if (high) {
        filter = 8;
    }
    return counts;
}

} // namespace

TEST(PpuBackground, TilesAreWhereTheNametableSays) {
    PpuRig rig;
    rig.SetPalette();
    for (uint32_t row = 0; row < 8; ++row) {
        rig.TileRow(5, row, 0xF0 ^ row, 0xCC); // rows differ
    }
    const std::vector<std::pair<uint32_t, uint32_t>> places{
        {0,  0 },
        {1,  0 },
        {2,  3 },
        {9,  7 },
        {31, 12},
        {17, 29}
    };
    for (const auto& [column, row] : places) {
        rig.ppu->nametables[0][row * 32 + column] = 5;
    }
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0);
    rig.Frame();
    std::vector<uint32_t> expected(size_t{kPpuWidth} * kPpuHeight, Shade(0));
    for (const auto& [column, row] : places) {
        for (uint32_t y = 0; y < 8; ++y) {
            for (uint32_t x = 0; x < 8; ++x) {
                const uint32_t low = (0xF0U ^ y) >> (7 - x) & 1;
                const uint32_t high = 0xCCU >> (7 - x) & 1;
                const uint32_t entry = high * 2 + low;
                expected[(row * 8 + y) * 256 + column * 8 + x] = Shade(entry);
            }
        }
    }
    EXPECT_EQ(rig.pixels, expected);
}

TEST(PpuBackground, AttributesColourQuartersOfFourByFourTiles) {
    PpuRig rig;
    StartSolid(rig);
    auto& page = rig.ppu->nametables[0];
    std::fill(page.begin(), page.begin() + 0x3C0, uint8_t{2});
    page[0x3C0] = 0b11100100;             // palettes 0, 1 above 2, 3
    page[0x3C0 + 7 * 8 + 7] = 0b00011011; // half of it below the picture
    page[0x3C0 + 3 * 8 + 5] = 0b01000000; // one quarter only
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0);
    rig.Frame();
    EXPECT_EQ(rig.At(0, 0), Shade(2));
    EXPECT_EQ(rig.At(15, 15), Shade(2));
    EXPECT_EQ(rig.At(16, 15), Shade(6));
    EXPECT_EQ(rig.At(31, 0), Shade(6));
    EXPECT_EQ(rig.At(32, 0), Shade(2));
    EXPECT_EQ(rig.At(0, 16), Shade(10));
    EXPECT_EQ(rig.At(15, 31), Shade(10));
    EXPECT_EQ(rig.At(16, 16), Shade(14));
    EXPECT_EQ(rig.At(31, 31), Shade(14));
    EXPECT_EQ(rig.At(0, 32), Shade(2));
    EXPECT_EQ(rig.At(224, 239), Shade(14));
    EXPECT_EQ(rig.At(255, 224), Shade(10));
    EXPECT_EQ(rig.At(5 * 32 + 16, 3 * 32 + 16), Shade(6));
    EXPECT_EQ(rig.At(5 * 32 + 15, 3 * 32 + 16), Shade(2));
    EXPECT_EQ(rig.At(5 * 32 + 16, 3 * 32 + 15), Shade(2));
}

TEST(PpuBackground, ColourZeroOfEveryPaletteIsEntryZero) {
    PpuRig rig;
    rig.SetPalette();
    rig.ppu->palette[12] = 0x2C; // differs from entry 0
    auto& page = rig.ppu->nametables[0];
    std::fill(page.begin() + 0x3C0, page.end(), uint8_t{0xFF});
    rig.Write(1, kBackgroundOn);
    rig.Frame();
    EXPECT_EQ(rig.At(100, 100), Shade(0));
}

TEST(PpuBackground, PatternsComeFromTheTableOfControlBit4) {
    PpuRig rig;
    StartSolid(rig);
    rig.Tile(256 + 9, 0x00, 0xFF);
    rig.Tile(9, 0xFF, 0x00);
    rig.ppu->nametables[0][33] = 9;
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0, 0x00);
    rig.Frame();
    EXPECT_EQ(rig.At(8, 8), Shade(1));
    rig.Scroll(0, 0, 0x10);
    rig.Frame();
    EXPECT_EQ(rig.At(8, 8), Shade(2));
}

// Every tile of the two nametables has its own number; the pixel at (x, y) must be the one at (x + scroll,
// y + scroll) in the plane of two by two nametables.
TEST(PpuBackground, ScrollsOverTheNametables) {
    struct Row {
        uint32_t x;
        uint32_t y;
        uint32_t table;
    };
    for (const Row& row : {
             Row{0,   0,   0},
             Row{1,   0,   0},
             Row{7,   3,   0},
             Row{8,   8,   0},
             Row{100, 77,  0},
             Row{255, 239, 0},
             Row{13,  200, 1},
             Row{37,  119, 2},
             Row{255, 1,   3}
    }) {
        PpuRig rig;
        rig.SetPalette();
        rig.Mirror(0, 1, 2, 3);
        for (uint32_t tile = 0; tile < 256; ++tile) {
            for (uint32_t line = 0; line < 8; ++line) {
                rig.TileRow(tile, line, tile * 7 + line * 31, tile * 13 ^ line * 57);
            }
        }
        for (uint32_t page = 0; page < 4; ++page) {
            for (uint32_t i = 0; i < 0x3C0; ++i) {
                rig.ppu->nametables[page][i] = static_cast<uint8_t>(i * 3 + page * 71);
            }
        }
        rig.Write(1, kBackgroundOn);
        rig.Scroll(row.x, row.y, row.table);
        rig.Frame();
        std::vector<uint32_t> expected;
        for (uint32_t y = 0; y < kPpuHeight; ++y) {
            for (uint32_t x = 0; x < kPpuWidth; ++x) {
                const uint32_t px = (x + row.x + (row.table & 1) * 256) % 512;
                const uint32_t py = (y + row.y + (row.table >> 1) * 240) % 480;
                const uint32_t page = px / 256 + py / 240 * 2;
                const uint32_t i = py % 240 / 8 * 32 + px % 256 / 8;
                const uint32_t tile = (i * 3 + page * 71) & 255;
                const uint32_t line = py % 240 % 8;
                const uint32_t bit = 7 - px % 8;
                const uint32_t low = (tile * 7 + line * 31) >> bit & 1;
                const uint32_t high = (tile * 13 ^ line * 57) >> bit & 1;
                expected.push_back(Shade(high * 2 + low));
            }
        }
        EXPECT_EQ(rig.pixels, expected) << row.x << " " << row.y << " " << row.table;
    }
}

TEST(PpuBackground, ScrolledBelowTheLastRowItShowsAttributesAndStaysInTheTable) {
    PpuRig rig;
    StartSolid(rig);
    rig.Mirror(0, 1, 2, 3);
    auto& page = rig.ppu->nametables[0];
    std::fill(page.begin(), page.begin() + 0x20, uint8_t{1});   // row 0
    std::fill(page.begin() + 0x3C0, page.end(), uint8_t{0xAA}); // "rows" 30 and 31
    rig.Tile(0xAA, 0xFF, 0x00);
    rig.ppu->nametables[2].fill(3); // the nametable below is not reached
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0xF0); // row 30
    rig.Frame();
    EXPECT_EQ(rig.At(0, 0), Shade(9)); // the attributes are 0xAA: palette 2
    EXPECT_EQ(rig.At(200, 15), Shade(9));
    EXPECT_EQ(rig.At(0, 16), Shade(9)); // row 0 again
    EXPECT_EQ(rig.At(255, 23), Shade(9));
    EXPECT_EQ(rig.At(0, 24), Shade(0));
    EXPECT_EQ(rig.At(0, 239), Shade(0));
}

TEST(PpuBackground, LeftColumnNeedsItsBit) {
    for (const uint32_t mask : {0x08U, 0x0AU}) {
        PpuRig rig;
        StartSolid(rig);
        rig.ppu->nametables[0].fill(1);
        rig.Write(1, mask);
        rig.Frame();
        EXPECT_EQ(rig.At(0, 50), mask == 0x08 ? Shade(0) : Shade(1));
        EXPECT_EQ(rig.At(7, 50), mask == 0x08 ? Shade(0) : Shade(1));
        EXPECT_EQ(rig.At(8, 50), Shade(1));
    }
}

TEST(PpuBackground, NothingOfItWithoutItsEnableBit) {
    PpuRig rig;
    StartSolid(rig);
    rig.ppu->nametables[0].fill(1);
    rig.Write(1, 0x16); // sprites only
    rig.Frame();
    for (const uint32_t pixel : rig.pixels) {
        ASSERT_EQ(pixel, Shade(0));
    }
}

TEST(PpuBackground, GrayAndEmphasisChooseTheColour) {
    for (uint32_t emphasis = 0; emphasis < 8; ++emphasis) {
        for (const bool gray : {false, true}) {
            PpuRig rig;
            StartSolid(rig);
            rig.ppu->nametables[0].fill(2);
            std::fill(rig.ppu->nametables[0].begin() + 0x3C0, rig.ppu->nametables[0].end(),
                      uint8_t{0x55});
            rig.Write(1, kBackgroundOn | emphasis << 5 | (gray ? 1 : 0));
            rig.Frame();
            EXPECT_EQ(rig.At(60, 60), Shade(6, emphasis, gray)) << emphasis << gray;
        }
    }
}

// The next nametable fetch is on dot 88, for pixels from 104 on.
TEST(PpuBackground, AnAddressWrittenInALineShowsFromTheNextTileFetched) {
    struct Row {
        uint32_t dot; // after which the second half is written
        uint32_t x;   // of the first pixel of the other table
    };
    for (const Row& row : {
             Row{83,  104},
             Row{87,  104},
             Row{88,  112},
             Row{0,   24 },
             Row{239, 256}
    }) {
        PpuRig rig;
        StartSolid(rig);
        rig.ppu->nametables[0].fill(1);
        rig.ppu->nametables[1].fill(2);
        for (uint32_t page = 0; page < 2; ++page) {
            auto& table = rig.ppu->nametables[page];
            std::fill(table.begin() + 0x3C0, table.end(), uint8_t{0});
        }
        rig.Write(1, kBackgroundOn);
        rig.Scroll(0, 0);
        rig.Finish();
        rig.RunTo(100, row.dot);
        rig.Write(6, 0x24);
        rig.Write(6, 0x00);
        rig.Finish();
        EXPECT_EQ(rig.At(255, 99), Shade(1));
        for (uint32_t x = 0; x < kPpuWidth; ++x) {
            ASSERT_EQ(rig.At(x, 100), Shade(x < row.x ? 1 : 2)) << row.dot << " " << x;
            ASSERT_EQ(rig.At(x, 101), Shade(2));
        }
    }
}

TEST(PpuBackground, FineScrollWrittenInALineShowsFromTheNextPixel) {
    for (const uint32_t dot : {99U, 100U, 101U, 103U}) {
        PpuRig rig;
        StartSolid(rig);
        rig.Tile(1, 0x0F, 0x00);
        auto& table = rig.ppu->nametables[0];
        std::fill(table.begin(), table.begin() + 0x3C0, uint8_t{1});
        rig.Write(1, kBackgroundOn);
        rig.Scroll(0, 0);
        rig.Finish();
        rig.RunTo(100, dot);
        rig.Write(5, 0x04);
        rig.Finish();
        for (uint32_t x = 0; x < kPpuWidth; ++x) {
            const uint32_t shown = x <= dot ? x : x + 4;
            ASSERT_EQ(rig.At(x, 100), Shade(shown % 8 < 4 ? 0 : 1)) << dot << " " << x;
        }
    }
}

TEST(PpuBackground, CoarseScrollWrittenInALineShowsFromTheNextLine) {
    PpuRig rig;
    StartSolid(rig);
    for (uint32_t i = 0; i < 0x3C0; ++i) {
        rig.ppu->nametables[0][i] = i % 32 == 10 ? 1 : 0;
    }
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0);
    rig.Finish();
    rig.RunTo(100, 10);
    rig.Write(5, 0x18); // three tiles
    rig.Finish();
    EXPECT_EQ(rig.At(80, 100), Shade(1));
    EXPECT_EQ(rig.At(80, 101), Shade(0));
    EXPECT_EQ(rig.At(56, 101), Shade(1));
}

TEST(PpuBackground, VerticalScrollWrittenInThePictureWaitsForTheNextFrame) {
    PpuRig rig;
    StartSolid(rig);
    std::fill_n(rig.ppu->nametables[0].begin() + 20 * 32, 32, uint8_t{1});
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0);
    rig.Finish();
    rig.RunTo(50, 10);
    rig.Scroll(0, 80);
    rig.Finish();
    EXPECT_EQ(rig.At(0, 160), Shade(1));
    EXPECT_EQ(rig.At(0, 80), Shade(0));
    rig.Finish();
    EXPECT_EQ(rig.At(0, 160), Shade(0));
    EXPECT_EQ(rig.At(0, 80), Shade(1));
}

TEST(PpuBackground, MaskAndPaletteWritesShowFromTheNextPixel) {
    PpuRig rig;
    StartSolid(rig);
    rig.ppu->nametables[0].fill(0);
    rig.Write(1, kBackgroundOn);
    rig.Finish();
    rig.RunTo(60, 100);
    rig.Write(1, kBackgroundOn | 0xE0);
    rig.RunTo(60, 130);
    rig.Write(1, kBackgroundOn | 0x01);
    rig.Finish();
    EXPECT_EQ(rig.At(100, 60), Shade(0));
    EXPECT_EQ(rig.At(101, 60), Shade(0, 7));
    EXPECT_EQ(rig.At(130, 60), Shade(0, 7));
    EXPECT_EQ(rig.At(131, 60), Shade(0, 0, true));
}

TEST(PpuBackground, TurnedOffInALineFetchesStopAtOnce) {
    for (const uint32_t dot : {40U, 41U, 257U, 300U}) {
        PpuRig rig;
        StartSolid(rig);
        rig.ppu->nametables[0].fill(1);
        std::fill_n(rig.ppu->nametables[0].begin() + 0x3C0, 64, uint8_t{0});
        rig.Write(1, kBackgroundOn);
        rig.Scroll(0, 0);
        rig.Finish();
        rig.RunTo(100, dot);
        rig.Write(1, 0x06);
        const uint16_t address = rig.ppu->vramAddress;
        rig.watching = true;
        rig.RunTo(102, 0);
        ASSERT_FALSE(rig.log.empty());
        for (const Watched& watched : rig.log) {
            ASSERT_EQ(watched.address, address & 0x3FFF) << watched.line << " " << watched.dot;
        }
        EXPECT_EQ(rig.ppu->vramAddress, address);
        EXPECT_EQ(rig.At(std::min(dot, 255U), 100), Shade(1));
        if (dot < 255) {
            EXPECT_EQ(rig.At(dot + 1, 100), Shade(0));
            EXPECT_EQ(rig.At(255, 100), Shade(0));
        }
        EXPECT_EQ(rig.At(0, 101), Shade(0));
    }
}

TEST(PpuBackground, WithoutRenderingAPaletteAddressChoosesTheBackdrop) {
    PpuRig rig;
    rig.SetPalette();
    rig.RunTo(10, 50);
    rig.Address(0x3F07);
    rig.RunTo(11, 99);
    rig.Address(0x3FF5); // one of the mirrors
    rig.RunTo(12, 0);
    rig.Address(0x3EFF);
    rig.RunTo(13, 0);
    EXPECT_EQ(rig.At(50, 10), Shade(0));
    EXPECT_EQ(rig.At(51, 10), Shade(7));
    EXPECT_EQ(rig.At(99, 11), Shade(7));
    EXPECT_EQ(rig.At(100, 11), Shade(0x15));
    EXPECT_EQ(rig.At(0, 12), Shade(0x15));
    EXPECT_EQ(rig.At(1, 12), Shade(0));
}

TEST(PpuBackground, ABackdropByAddressIsGrayAndTintedAsAnyPixel) {
    PpuRig rig;
    rig.SetPalette();
    rig.RunTo(10, 50);
    rig.Address(0x3F07);
    int32_t line = 11;
    for (const uint32_t bits : {0x00U, 0x01U, 0x20U, 0x41U, 0x80U, 0xE1U}) {
        rig.RunTo(line, 0);
        rig.Write(1, bits);
        rig.RunTo(line, 255);
        EXPECT_EQ(rig.At(128, static_cast<uint32_t>(line)), Shade(7, bits >> 5, (bits & 1) != 0))
            << bits;
        ++line;
    }
    EXPECT_NE(Shade(7), Shade(7, 0, true));
    EXPECT_NE(Shade(7), Shade(7, 1));
}

TEST(PpuBackground, ThePaletteAddressDoesntMatterWhileRendering) {
    PpuRig rig;
    StartSolid(rig);
    rig.Write(1, 0x10); // sprites on, none in the picture
    rig.Finish();
    rig.RunTo(10, 50);
    rig.Address(0x3F07);
    rig.RunTo(11, 0);
    EXPECT_EQ(rig.At(60, 10), Shade(0));
}

// One line, from the fetch table: 32 tiles, each drawn two tiles later, the last ones in the next row as X and Y
// are incremented by then; eight empty sprite slots; two tiles of the next line.
TEST(PpuBackground, ALineFetchesByTheTimetable) {
    PpuRig rig;
    for (uint32_t i = 0; i < 0x400; ++i) {
        rig.ppu->nametables[0][i] = static_cast<uint8_t>(i * 5 + 3);
        rig.ppu->nametables[1][i] = static_cast<uint8_t>(i * 9 + 1);
    }
    rig.Write(1, kBackgroundOn);
    rig.Scroll(0, 0, 0x08); // sprites at 0x1000
    rig.Finish();
    rig.RunTo(20, 340); // after the fetches of line 20
    rig.watching = true;
    rig.RunTo(21, 340);
    std::vector<Watched> expected;
    const auto watch = [&expected](uint32_t dot, uint32_t address) {
        expected.push_back({21, dot, static_cast<uint16_t>(address)});
    };
    // Line 21 is line 5 of tile row 2.
    const auto background = [&](uint32_t dot, uint32_t column, uint32_t row, uint32_t patternRow) {
        const uint32_t page = column / 32;
        const uint32_t index = 2 * 32 + column % 32;
        const uint32_t tile = rig.ppu->nametables[page][index];
        const uint32_t table = 0x2000 + page * 0x400;
        watch(dot, table + index);
        watch(dot + 2, table + 0x3C0 + row / 4 * 8 + column % 32 / 4);
        watch(dot + 4, tile * 16 + patternRow);
        watch(dot + 6, tile * 16 + 8 + patternRow);
    };
    for (uint32_t i = 0; i < 32; ++i) {
        background(i * 8, i + 2, 2, i == 31 ? 6 : 5);
    }
    // Line 6 by now, in column 34; from dot 257 on in column 0.
    for (uint32_t slot = 0; slot < 8; ++slot) {
        const uint32_t dot = 256 + slot * 8;
        watch(dot, slot == 0 ? 0x2000 + 0x400 + 2 * 32 + 2 : 0x2000 + 2 * 32);
        watch(dot + 2, 0x2000 + 2 * 32);
        // Tile 0xFF. The first empty slot has the last Y read, here 0xFF like all of them.
        const uint32_t patternRow = (21U - 0xFFU) & 7U;
        const uint32_t flipped = patternRow ^ 7; // attributes are 0xFF too
        watch(dot + 4, 0x1FF0 + flipped);
        watch(dot + 6, 0x1FF8 + flipped);
    }
    background(320, 0, 2, 6);
    background(328, 1, 2, 6);
    watch(336, 0x2000 + 2 * 32 + 2);
    watch(338, 0x2000 + 2 * 32 + 2);
    ASSERT_EQ(rig.log.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rig.log[i].line, expected[i].line) << i;
        EXPECT_EQ(rig.log[i].dot, expected[i].dot) << i;
        EXPECT_EQ(rig.log[i].address, expected[i].address) << i << " dot " << expected[i].dot;
    }
}

// Address bit 12 rises once per sprite slot or per tile, and counts once per line with a board's filter.
TEST(PpuBackground, PatternTablesMoveAddressBit12) {
    struct Row {
        uint32_t control;
        uint32_t rises;
        uint32_t countingDot;
    };
    for (const Row& row : {
             Row{0x08, 8,  260},
             Row{0x10, 34, 324}
    }) {
        PpuRig rig;
        rig.Write(1, 0x18);
        rig.Scroll(0, 0, row.control);
        rig.Finish();
        rig.RunTo(10, 340);
        rig.watching = true;
        rig.RunTo(110, 340);
        uint32_t rises = 0;
        uint32_t filter = 8; // as line 10 left it
        uint16_t last = 0;
        std::vector<std::pair<int32_t, uint32_t>> counted;
        for (const Watched& watched : rig.log) {
            rises += (watched.address & 0x1000) != 0 && (last & 0x1000) == 0 ? 1 : 0;
            last = watched.address;
            if (Counts(filter, watched.address)) {
                counted.emplace_back(watched.line, watched.dot);
            }
        }
        EXPECT_EQ(rises, row.rises * 100);
        ASSERT_EQ(counted.size(), 100U);
        for (uint32_t i = 0; i < 100; ++i) {
            EXPECT_EQ(counted[i], (std::pair<int32_t, uint32_t>{11 + i, row.countingDot}));
        }
    }
}

TEST(PpuBackground, FetchesRunOnThePreRenderLineToo) {
    PpuRig rig;
    rig.Write(1, 0x18);
    rig.Finish();
    rig.RunTo(260, 340);
    rig.watching = true;
    rig.RunTo(-1, 338);
    EXPECT_EQ(rig.log.size(), 170U); // one on each even dot up to 338
}

TEST(PpuBackground, TheWholeScrollPositionIsTakenAtDot304OfThePreRenderLine) {
    PpuRig rig;
    rig.Write(1, 0x18);
    rig.RunTo(-1, 303);
    rig.Write(6, 0x2D);
    rig.Write(5, 0x5E); // a second write: fine and coarse Y
    const uint16_t temp = rig.ppu->tempAddress;
    ASSERT_NE(rig.ppu->vramAddress & 0x7BE0, temp & 0x7BE0);
    rig.Dot();
    EXPECT_EQ(rig.ppu->vramAddress, temp);
    rig.Write(1, 0x00); // and not at all without rendering
    rig.Write(6, 0x00);
    rig.Write(5, 0x00);
    rig.RunTo(-1, 310);
    EXPECT_EQ(rig.ppu->vramAddress, temp);
}
