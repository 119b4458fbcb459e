// Sprites: position, priority, sprite 0 hit, and evaluation.
#include "nes/ppu_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kAllOn = 0x1E;
constexpr uint32_t kSpritesOn = 0x14;
constexpr uint8_t kFar = 200; // a Y outside the tested lines, and an arbitrary byte

// Sets the palette; tile n (1 to 3) solid in colour n, tile 0 empty, no sprite in the upper part of the picture.
void Start(PpuRig& rig, uint32_t mask, uint32_t control = 0) {
    rig.SetPalette();
    rig.Tile(1, 0xFF, 0x00);
    rig.Tile(2, 0x00, 0xFF);
    rig.Tile(3, 0xFF, 0xFF);
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Sprite(i, 0, kFar, kFar, 0);
    }
    rig.Write(1, mask);
    rig.Scroll(0, 0, control);
}

void FillBackground(PpuRig& rig, uint8_t tile) {
    auto& page = rig.ppu->nametables[0];
    std::fill(page.begin(), page.begin() + 0x3C0, tile);
}

// The palette entries of a span of a line: a hexadecimal digit for each sprite entry, '.' for entry 0.
std::string Entries(PpuRig& rig, uint32_t x, uint32_t y, uint32_t count) {
    std::string text;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t pixel = rig.At(x + i, y);
        char letter = '?';
        if (pixel == Shade(0)) {
            letter = '.';
        }
        for (uint32_t entry = 0; entry < 16; ++entry) {
            if ((entry & 3) != 0 && pixel == Shade(16 + entry)) {
                letter = "0123456789ABCDEF"[entry];
            }
        }
        text += letter;
    }
    return text;
}

// Eight sprites on lines 50 to 57 and nothing else there.
void StartEight(PpuRig& rig) {
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 8; ++i) {
        rig.Sprite(i, i * 16, 50, 1, 0);
    }
}

bool OverflowOnLine50(PpuRig& rig) {
    rig.Finish();
    rig.RunTo(50, 256);
    return (rig.Status() & 0x20) != 0;
}

} // namespace

TEST(PpuSprite, AppearsOneLineBelowItsY) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Tile(9, 0b11110000, 0b11001100);
    rig.TileRow(9, 7, 0xFF, 0xFF);
    rig.Sprite(5, 100, 60, 9, 0x02);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 99, 60, 10), "..........");
    EXPECT_EQ(Entries(rig, 99, 61, 10), ".BB99AA...");
    EXPECT_EQ(Entries(rig, 99, 67, 10), ".BB99AA...");
    EXPECT_EQ(Entries(rig, 99, 68, 10), ".BBBBBBBB.");
    EXPECT_EQ(Entries(rig, 99, 69, 10), "..........");
}

TEST(PpuSprite, TurnsRoundByItsFlipBits) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.TileRow(9, 0, 0b11110000, 0b11001100);
    rig.TileRow(9, 7, 0b10000000, 0b00000000);
    for (uint32_t flips = 0; flips < 4; ++flips) {
        rig.Sprite(flips, flips * 32, 60, 9, flips << 6);
    }
    rig.Frame();
    const std::string top = "331122..";
    const std::string topTurned = "..221133";
    EXPECT_EQ(Entries(rig, 0, 61, 8), top);
    EXPECT_EQ(Entries(rig, 32, 61, 8), topTurned);
    EXPECT_EQ(Entries(rig, 64, 61, 8), "1.......");
    EXPECT_EQ(Entries(rig, 96, 61, 8), ".......1");
    EXPECT_EQ(Entries(rig, 0, 68, 8), "1.......");
    EXPECT_EQ(Entries(rig, 32, 68, 8), ".......1");
    EXPECT_EQ(Entries(rig, 64, 68, 8), top);
    EXPECT_EQ(Entries(rig, 96, 68, 8), topTurned);
}

TEST(PpuSprite, TakesItsPatternsFromTheTableOfControlBit3) {
    PpuRig rig;
    Start(rig, kSpritesOn, 0x08);
    rig.Tile(256 + 1, 0x00, 0xFF);
    rig.Sprite(0, 10, 60, 1, 0);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 10, 61, 1), "2");
    rig.Scroll(0, 0, 0x10); // the background's table bit doesn't matter
    rig.Frame();
    EXPECT_EQ(Entries(rig, 10, 61, 1), "1");
}

TEST(PpuSprite, OfSixteenLinesTakesTheTableFromTheTilesLowestBit) {
    for (const uint32_t control : {0x20U, 0x28U}) { // the table bit doesn't matter
        PpuRig rig;
        Start(rig, kSpritesOn, control);
        rig.Tile(0x40, 0xFF, 0x00);
        rig.Tile(0x41, 0x00, 0xFF);
        rig.Tile(256 + 0x40, 0xFF, 0xFF);
        rig.Tile(256 + 0x41, 0xF0, 0x00);
        rig.TileRow(0x41, 7, 0xFF, 0xFF);
        rig.Sprite(0, 0, 60, 0x40, 0);
        rig.Sprite(1, 16, 60, 0x41, 0);
        rig.Sprite(2, 32, 60, 0x40, 0x80);
        rig.Frame();
        const auto column = [&rig](uint32_t x) {
            std::string text;
            for (uint32_t y = 60; y < 79; ++y) {
                text += Entries(rig, x, y, 1);
            }
            return text;
        };
        EXPECT_EQ(column(0), ".1111111122222223..");
        EXPECT_EQ(column(16), ".3333333311111111..");
        EXPECT_EQ(column(32), ".3222222211111111..");
    }
}

TEST(PpuSprite, NoneIsOnLineZero) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Sprite(0, 10, 0xFF, 1, 0);
    rig.Sprite(1, 30, 0, 1, 0);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 10, 0, 30), std::string(30, '.'));
    EXPECT_EQ(Entries(rig, 30, 1, 8), "11111111");
    EXPECT_EQ(Entries(rig, 10, 1, 8), "........");
}

TEST(PpuSprite, HangsOverTheRightEdge) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Sprite(0, 252, 60, 1, 0);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 250, 61, 6), "..1111");
    EXPECT_EQ(Entries(rig, 0, 61, 8), "........");
    EXPECT_EQ(Entries(rig, 0, 62, 8), "........");
}

TEST(PpuSprite, FirstInTheListIsInFront) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Tile(9, 0xF0, 0x00);
    rig.Sprite(3, 100, 60, 9, 1); // its right half is empty
    rig.Sprite(4, 100, 60, 2, 2);
    rig.Sprite(7, 96, 60, 3, 3);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 94, 61, 16), "..FFFF5555AAAA..");
}

TEST(PpuSprite, PriorityBitPutsItBehindASolidBackground) {
    PpuRig rig;
    Start(rig, kAllOn);
    rig.ppu->nametables[0][8 * 32 + 10] = 3; // x 80, y 64
    rig.Sprite(0, 76, 63, 1, 0x20);
    rig.Sprite(1, 84, 70, 1, 0x00);
    rig.Frame();
    EXPECT_EQ(Entries(rig, 76, 65, 4), "1111");
    EXPECT_EQ(rig.At(80, 65), Shade(3));
    EXPECT_EQ(rig.At(83, 65), Shade(3));
    EXPECT_EQ(Entries(rig, 84, 71, 8), "11111111");
}

TEST(PpuSprite, OneBehindTheBackgroundHidesThoseAfterItEvenWhereItIsCovered) {
    PpuRig rig;
    Start(rig, kAllOn);
    FillBackground(rig, 3);
    rig.Sprite(0, 80, 63, 1, 0x20);
    rig.Sprite(1, 80, 63, 2, 0x00);
    rig.Frame();
    EXPECT_EQ(rig.At(80, 65), Shade(3));
}

TEST(PpuSprite, LeftColumnNeedsItsBit) {
    for (const uint32_t mask : {0x10U, 0x14U}) {
        PpuRig rig;
        Start(rig, mask);
        rig.Sprite(0, 4, 60, 1, 0);
        rig.Frame();
        EXPECT_EQ(Entries(rig, 0, 61, 16), mask == 0x10 ? "........1111...." : "....11111111....");
    }
}

TEST(PpuSprite, EightOfALineAreShown) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 10; ++i) {
        rig.Sprite(i * 3, i * 16, 60 + (i == 9 ? 1 : 0), 1, 0);
    }
    rig.Frame();
    for (uint32_t i = 0; i < 10; ++i) {
        EXPECT_EQ(Entries(rig, i * 16, 61, 1), i < 8 ? "1" : ".") << i;
        EXPECT_EQ(Entries(rig, i * 16, 69, 1), i == 9 ? "1" : ".") << i;
    }
}

TEST(PpuSprite, ZeroHitsWhereBothAreSolid) {
    PpuRig rig;
    Start(rig, kAllOn);
    rig.ppu->nametables[0][8 * 32 + 10] = 1; // x 80 to 87, y 64 to 71
    rig.Tile(9, 0x00, 0x01);
    rig.Sprite(0, 76, 66, 9, 0); // its only column is x 83, from line 67 on
    rig.Finish();
    rig.RunTo(67, 82);
    EXPECT_EQ(rig.Read(2) & 0x40, 0);
    rig.Dot();
    EXPECT_EQ(rig.Read(2) & 0x40, 0x40);
    rig.RunTo(-1, 0);
    EXPECT_EQ(rig.Read(2) & 0x40, 0x40); // until dot 1 of the pre-render line
    rig.Dot();
    EXPECT_EQ(rig.Read(2) & 0x40, 0);
}

TEST(PpuSprite, ZeroHitConditions) {
    struct Row {
        const char* what;
        uint32_t mask;
        uint32_t number;
        uint32_t x;
        uint32_t spriteTile;
        uint32_t attributes;
        uint32_t backgroundTile;
        bool hit;
    };
    for (const Row& row : std::vector<Row>{
             {"plain",                            0x1E, 0, 100, 1, 0x00, 1, true },
             {"behind",                           0x1E, 0, 100, 1, 0x20, 1, true },
             {"other sprite",                     0x1E, 1, 100, 1, 0x00, 1, false},
             {"empty sprite",                     0x1E, 0, 100, 0, 0x00, 1, false},
             {"empty background",                 0x1E, 0, 100, 1, 0x00, 0, false},
             {"no background",                    0x16, 0, 100, 1, 0x00, 1, false},
             {"no sprites",                       0x0E, 0, 100, 1, 0x00, 1, false},
             {"last column",                      0x1E, 0, 255, 1, 0x00, 1, false},
             {"last but one",                     0x1E, 0, 254, 1, 0x00, 1, true },
             {"right column of the tile on 255",  0x1E, 0, 248, 9, 0x00, 1, false},
             {"right column of the tile on 254",  0x1E, 0, 247, 9, 0x00, 1, true },
             {"left column",                      0x1E, 0, 0,   1, 0x00, 1, true },
             {"left column without background",   0x1C, 0, 0,   1, 0x00, 1, false},
             {"left column without sprites",      0x1A, 0, 0,   1, 0x00, 1, false},
             {"one pixel beyond the left column", 0x18, 0, 1,   1, 0x00, 1, true },
    }) {
        PpuRig rig;
        Start(rig, row.mask);
        rig.Tile(9, 0x01, 0x00);
        FillBackground(rig, static_cast<uint8_t>(row.backgroundTile));
        rig.Sprite(row.number, row.x, 100, row.spriteTile, row.attributes);
        rig.Finish();
        rig.RunTo(240, 0);
        EXPECT_EQ((rig.Status() & 0x40) != 0, row.hit) << row.what;
    }
}

TEST(PpuSprite, NoHitInALineWhereItIsNotAmongTheEight) {
    PpuRig rig;
    Start(rig, kAllOn);
    FillBackground(rig, 1);
    rig.Sprite(0, 100, 60, 1, 0);
    rig.Sprite(1, 100, 90, 1, 0); // first on its lines, but not sprite 0
    rig.Finish();
    rig.RunTo(69, 0);
    EXPECT_EQ(rig.Read(2) & 0x40, 0x40);
    rig.ppu->status = 0;
    rig.RunTo(240, 0);
    EXPECT_EQ(rig.Status() & 0x40, 0);
}

TEST(PpuSprite, EightDontOverflow) {
    PpuRig rig;
    StartEight(rig);
    EXPECT_FALSE(OverflowOnLine50(rig));
}

// Sprites 0 to 7 take eight dots each from dot 64 on; the ninth is read on dot 128 and compared on 129.
TEST(PpuSprite, ANinthRightAfterTheEightOverflows) {
    PpuRig rig;
    StartEight(rig);
    rig.Sprite(8, 0, 50, 1, 0);
    rig.Finish();
    rig.RunTo(50, 128);
    EXPECT_EQ(rig.Read(2) & 0x20, 0);
    rig.Dot();
    EXPECT_EQ(rig.Read(2) & 0x20, 0x20);
    rig.RunTo(-1, 0);
    EXPECT_EQ(rig.Read(2) & 0x20, 0x20);
    rig.Dot();
    EXPECT_EQ(rig.Read(2) & 0x20, 0);
}

// Of the sprites after the eighth, bytes 0, 1, 2, 3, 0 … are compared as a Y, one each.
TEST(PpuSprite, SearchForANinthRunsDiagonally) {
    struct Row {
        uint32_t sprite;
        uint32_t byte;
        bool overflow;
    };
    for (const Row& row : std::vector<Row>{
             {8,  0, true },
             {9,  0, false}, // a real ninth that is missed
             {9,  1, true }, // a tile number
             {10, 0, false},
             {10, 2, true }, // attributes
             {11, 3, true }, // an X
             {11, 0, false},
             {12, 0, true },
             {12, 1, false},
             {60, 0, true },
             {63, 3, true },
             {63, 0, false}
    }) {
        PpuRig rig;
        StartEight(rig);
        for (uint32_t i = 8; i < 64; ++i) {
            rig.Sprite(i, kFar, kFar, kFar, kFar);
        }
        rig.ppu->oam[row.sprite * 4 + row.byte] = 50;
        EXPECT_EQ(OverflowOnLine50(rig), row.overflow) << row.sprite << " " << row.byte;
    }
}

TEST(PpuSprite, ANinthIsLookedForOverTheLinesThatSpritesHave) {
    struct Row {
        uint32_t control;
        uint32_t above; // lines from the ninth's Y to line 50
        bool overflow;
    };
    for (const Row& row : {
             Row{0x00, 7,  true },
             Row{0x00, 8,  false},
             Row{0x20, 8,  true },
             Row{0x20, 15, true },
             Row{0x20, 16, false}
    }) {
        PpuRig rig;
        StartEight(rig);
        rig.Scroll(0, 0, row.control);
        rig.Sprite(8, 0, 50 - row.above, 1, 0);
        EXPECT_EQ(OverflowOnLine50(rig), row.overflow) << row.control << " " << row.above;
    }
}

TEST(PpuSprite, EmptySpritesBetweenTheEightDontCount) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 8; ++i) {
        rig.Sprite(i * 5, i * 16, 50, 1, 0);
    }
    rig.Sprite(36, 0, 50, 1, 0); // right after the eighth, which is 35
    EXPECT_TRUE(OverflowOnLine50(rig));
}

TEST(PpuSprite, SearchStartsAtOamAddress) {
    struct Row {
        uint32_t oamAddress;
        uint32_t first; // sprite
    };
    for (const Row& row : {
             Row{0,    0 },
             Row{0x03, 0 },
             Row{0x04, 0 },
             Row{0x08, 2 },
             Row{0x0C, 2 },
             Row{0x13, 4 },
             Row{0xFF, 62}
    }) {
        PpuRig rig;
        Start(rig, kAllOn);
        FillBackground(rig, 1);
        for (uint32_t i = 0; i < 64; ++i) {
            rig.Sprite(i, i * 4, i < 5 || i > 60 ? 50 : kFar, 2, 0);
        }
        rig.Finish();
        rig.RunTo(50, 63);
        rig.Write(3, row.oamAddress);
        rig.RunTo(50, 256);
        std::vector<uint8_t> expected;
        for (uint32_t i = row.first; i < 64 && expected.size() < 8; ++i) {
            if (i < 5 || i > 60) {
                expected.push_back(static_cast<uint8_t>(i * 4));
            }
        }
        ASSERT_EQ(rig.ppu->spriteCount, expected.size()) << row.oamAddress;
        for (size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(rig.ppu->secondaryOam[i * 4 + 3], expected[i]) << row.oamAddress;
        }
        rig.RunTo(52, 0);
        EXPECT_EQ((rig.Status() & 0x40) != 0, row.first == 0) << row.oamAddress;
    }
}

TEST(PpuSprite, LinesListIsClearedInTheFirst64Dots) {
    PpuRig rig;
    StartEight(rig);
    rig.Finish();
    rig.RunTo(51, 31);
    PpuCatchUp(*rig.ppu);
    for (uint32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(rig.ppu->secondaryOam[i], 0xFF);
    }
    EXPECT_EQ(rig.ppu->secondaryOam[16], 50);
    rig.RunTo(51, 63);
    PpuCatchUp(*rig.ppu);
    for (const uint8_t byte : rig.ppu->secondaryOam) {
        EXPECT_EQ(byte, 0xFF);
    }
}

TEST(PpuSprite, OamWritesWhileRenderingStoreAllOnes) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Finish();
    rig.RunTo(100, 10);
    rig.Write(3, 0x41);
    rig.Write(4, 0x12);
    rig.Write(4, 0x34);
    EXPECT_EQ(rig.ppu->oam[0x41], 0xFF);
    EXPECT_EQ(rig.ppu->oam[0x42], 0xE3);
    EXPECT_EQ(rig.ppu->oamAddress, 0x43);
    rig.RunTo(240, 10);
    rig.Write(3, 0x41);
    rig.Write(4, 0x12);
    EXPECT_EQ(rig.ppu->oam[0x41], 0x12);
}

// A sprite out of range takes two dots: the even one reads, the odd one goes to the next.
TEST(PpuSprite, OamReadsWhileRenderingSeeTheSearch) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Sprite(i, 0, 128 + i, 0, 0);
    }
    rig.Finish();
    rig.RunTo(20, 0);
    rig.Write(3, 0x00);
    rig.RunTo(20, 64);
    EXPECT_EQ(rig.Read(4), 128);
    rig.Dot();
    EXPECT_EQ(rig.Read(4), 129);
    rig.Dot();
    EXPECT_EQ(rig.Read(4), 129);
    rig.RunTo(20, 90);
    EXPECT_EQ(rig.Read(4), 128 + 13);
    rig.RunTo(20, 190); // all 64 sprites are done by dot 191; then every Y is read again
    EXPECT_EQ(rig.Read(4), 128 + 63);
    rig.RunTo(20, 200);
    EXPECT_EQ(rig.Read(4), 128 + 4);
}

namespace {

// Index: dot of a line. The OAM index of the byte that 0x2004 returns.
std::vector<uint8_t> OamReads(PpuRig& rig, int32_t line) {
    rig.RunTo(line, 0);
    std::vector<uint8_t> values{rig.Read(4)};
    while (values.size() < 340) {
        rig.Dot();
        values.push_back(rig.Read(4));
    }
    return values;
}

} // namespace

// A sprite in range takes eight dots: the odd dot that finds it and the next three odd dots each advance by a byte,
// so 0x2004 returns its Y, tile, attributes and X, then the next sprite's Y.
TEST(PpuSprite, OamReadsSeeTheBytesOfASpriteThatIsCopied) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Sprite(i, 0, 128 + i, 0, 0);
    }
    rig.Sprite(1, 0x44, 18, 0x22, 0x33);
    rig.Finish();
    const std::vector<uint8_t> reads = OamReads(rig, 20);
    EXPECT_EQ(
        std::vector<uint8_t>(reads.begin() + 64, reads.begin() + 76),
        (std::vector<uint8_t>{128, 18, 18, 0x22, 0x22, 0x33, 0x33, 0x44, 0x44, 130, 130, 131}));
}

// After eight sprites, 64 dots, sprite and byte advance together: bytes 32, 37, 42, 47, 48. The byte at 37 is
// compared as a Y in range, so the next three bytes are read as well; then every Y from sprite 10 on.
TEST(PpuSprite, OamReadsSeeTheSearchForANinth) {
    for (const bool hasNinth : {false, true}) {
        PpuRig rig;
        Start(rig, kSpritesOn);
        for (uint32_t i = 0; i < 256; ++i) {
            rig.ppu->oam[i] = static_cast<uint8_t>(0x80 | i); // no Y near the line
        }
        for (uint32_t i = 0; i < 8; ++i) {
            rig.Sprite(i, 0, 18, 0, 0);
        }
        rig.ppu->oam[37] = hasNinth ? 18 : 0xA5;
        rig.Finish();
        const std::vector<uint8_t> reads = OamReads(rig, 20);
        const std::vector<uint32_t> indices = hasNinth
                                                  ? std::vector<uint32_t>{37, 38, 39, 40, 40, 44}
                                                  : std::vector<uint32_t>{37, 42, 47, 48, 53, 58};
        EXPECT_EQ(reads[127], 0xA0);
        EXPECT_EQ(reads[128], 0xA0);
        for (uint32_t i = 0; i < indices.size(); ++i) {
            EXPECT_EQ(reads[129 + i * 2], rig.ppu->oam[indices[i]]) << hasNinth << i;
            EXPECT_EQ(reads[130 + i * 2], rig.ppu->oam[indices[i]]) << hasNinth << i;
        }
    }
}

// Outside evaluation its index stays. With no sprite found, 96 pairs of dots have advanced it by one sprite each:
// once around and to sprite 32. It stays there up to dot 63 of the next line, whatever oamAddress is.
TEST(PpuSprite, OamReadsOutsideTheSearchSeeWhereItEnded) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Sprite(i, 0, 128 + i, 0, 0);
    }
    rig.Finish();
    rig.RunTo(20, 0);
    const std::vector<uint8_t> reads = OamReads(rig, 21);
    for (uint32_t dot = 0; dot < 64; ++dot) {
        EXPECT_EQ(reads[dot], 128 + 32) << dot;
    }
    EXPECT_EQ(reads[64], 128);
    EXPECT_EQ(reads[254], 128 + 31);
    for (uint32_t dot = 255; dot < 340; ++dot) {
        EXPECT_EQ(reads[dot], 128 + 32) << dot;
    }
    rig.RunTo(22, 10);
    rig.Write(3, 0x10);
    EXPECT_EQ(rig.Read(4), 128 + 32);
    rig.Write(1, 0);
    EXPECT_EQ(rig.Read(4), 128 + 4);
}

TEST(PpuSprite, NoneAreShownWhereRenderingWasOffAtTheEndOfTheSearch) {
    PpuRig rig;
    Start(rig, kSpritesOn);
    rig.Sprite(0, 10, 60, 1, 0);
    rig.Finish();
    rig.RunTo(62, 250);
    rig.Write(1, 0x00);
    rig.RunTo(63, 0);
    rig.Write(1, kSpritesOn);
    rig.RunTo(64, 256);
    EXPECT_EQ(Entries(rig, 10, 62, 8), "11111111");
    EXPECT_EQ(Entries(rig, 10, 63, 8), "........");
    EXPECT_EQ(Entries(rig, 10, 64, 8), "11111111");
}
