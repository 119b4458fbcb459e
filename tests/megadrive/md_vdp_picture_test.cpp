// Changes in the middle of a line, display off, and shadow and highlight.
#include "megadrive/md_vdp_colours.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// Steps of the fetches: pixels 16 * n and on come with the n-th.
uint32_t FetchStep(bool h40, uint32_t n) {
    return (h40 ? 61U : 47U) + 16 * n;
}

void FillPlaneA(MdVdpRig& rig, uint32_t word) {
    for (uint32_t row = 0; row < 32; ++row) {
        for (uint32_t column = 0; column < 32; ++column) {
            rig.CellA(column, row, word);
        }
    }
}

} // namespace

TEST(MdVdpMidLine, CramChangesFromTheNextFetchOn) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        FillPlaneA(rig, 2);
        rig.Finish();
        rig.RunTo(50, FetchStep(h40, 6));
        rig.vdp->cram[2] = 0x1FF;
        rig.Finish();
        EXPECT_EQ(rig.At(16 * 6 - 1, 50), EntryPixel(2));
        EXPECT_EQ(rig.At(16 * 6, 50), PlainPixel(0x1FF));
        EXPECT_EQ(rig.At(0, 51), PlainPixel(0x1FF));
    }
}

// A colour through the ports takes its slot: 123 lies before the fetch of step 125 at 40 cells.
TEST(MdVdpMidLine, CramThroughThePortWaitsForItsSlot) {
    MdVdpRig rig;
    rig.Setup(true);
    FillPlaneA(rig, 2);
    rig.Finish();
    rig.RunTo(50, 108);
    rig.Command(kCramCode, 4);
    rig.Data(0x0EEE);
    rig.Finish();
    ASSERT_EQ(FetchStep(true, 4), 125U);
    EXPECT_EQ(rig.At(63, 50), EntryPixel(2));
    EXPECT_EQ(rig.At(64, 50), PlainPixel(0x1FF));
}

TEST(MdVdpMidLine, ARegisterChangesFromTheNextFetchOn) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        FillPlaneA(rig, 2);
        rig.Reg(7, 9);
        rig.Finish();
        rig.RunTo(50, FetchStep(h40, 3));
        rig.Reg(2, 0x6000 >> 10); // an empty table
        rig.RunTo(50, FetchStep(h40, 8));
        rig.Reg(7, 10);
        rig.Finish();
        EXPECT_EQ(rig.At(47, 50), EntryPixel(2));
        EXPECT_EQ(rig.At(48, 50), EntryPixel(9));
        EXPECT_EQ(rig.At(127, 50), EntryPixel(9));
        EXPECT_EQ(rig.At(128, 50), EntryPixel(10));
    }
}

TEST(MdVdpMidLine, VsramOfAColumnPairChangesAtOnceAndOfThePlaneOnTheNextLine) {
    for (const bool byColumn : {true, false}) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Reg(11, byColumn ? 4 : 0);
        for (uint32_t column = 0; column < 32; ++column) {
            rig.CellA(column, 6, 2);  // lines 48 to 55
            rig.CellA(column, 16, 3); // what a scroll of 80 brings there
        }
        rig.Finish();
        rig.RunTo(50, FetchStep(true, 5));
        for (uint32_t pair = 0; pair < 20; ++pair) {
            rig.vdp->vsram[pair * 2] = 80;
        }
        rig.Finish();
        EXPECT_EQ(rig.At(79, 50), EntryPixel(2));
        EXPECT_EQ(rig.At(80, 50), EntryPixel(byColumn ? 3 : 2));
        EXPECT_EQ(rig.At(0, 51), EntryPixel(3));
        EXPECT_EQ(rig.At(319, 51), EntryPixel(3));
    }
}

TEST(MdVdpMidLine, DisplaySwitchedOffShowsTheBackdropAndOnAgainThePlane) {
    struct Pixel {
        uint32_t x;
        uint32_t entry;
    };
    const std::vector<Pixel> wide{
        {49,  2},
        {50,  9},
        {149, 9},
        {150, 7},
        {151, 8},
        {152, 1},
        {319, 8}
    };
    // 32 cells show what was fetched up to dot 49, pixels 64 to 79 at the last, and draw again what is fetched
    // after dot 149; pixels 160 to 175 would have been fetched six steps before.
    const std::vector<Pixel> narrow{
        {49,  2},
        {50,  3},
        {79,  8},
        {80,  9},
        {175, 9},
        {176, 1},
        {255, 8}
    };
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        rig.TileRow(16, 0, 0x12345678);
        FillPlaneA(rig, 16);
        rig.Reg(7, 9);
        rig.Finish();
        const uint32_t first = h40 ? 77 : 63;
        rig.RunTo(48, first + 50);
        rig.Reg(1, 0x04);
        rig.RunTo(48, first + 150);
        rig.Reg(1, 0x44);
        rig.Finish();
        for (const Pixel& pixel : h40 ? wide : narrow) {
            EXPECT_EQ(rig.At(pixel.x, 48), EntryPixel(pixel.entry)) << h40 << " " << pixel.x;
        }
    }
}

// The display comes on at dot 2 of a line that began without it and is scrolled by 5 pixels.
TEST(MdVdpMidLine, DisplaySwitchedOnShowsThePartialFirstCellAt40Cells) {
    struct Pixel {
        uint32_t x;
        uint32_t entry;
    };
    const std::vector<Pixel> wide{
        {1, 9},
        {2, 6},
        {4, 8},
        {5, 1}
    };
    // The next fetch of 32 cells has pixels 32 and on, with their planes 5 pixels to the right.
    const std::vector<Pixel> narrow{
        {1,  9},
        {2,  9},
        {5,  9},
        {36, 9},
        {37, 1}
    };
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        rig.TileRow(16, 0, 0x12345678);
        FillPlaneA(rig, 16);
        rig.Word(0x5400, 5);
        rig.Reg(7, 9);
        rig.Finish();
        rig.RunTo(48, 0);
        rig.Reg(1, 0x04);
        rig.RunTo(48, (h40 ? 77 : 63) + 2);
        rig.Reg(1, 0x44);
        rig.Finish();
        for (const Pixel& pixel : h40 ? wide : narrow) {
            EXPECT_EQ(rig.At(pixel.x, 48), EntryPixel(pixel.entry)) << h40 << " " << pixel.x;
        }
    }
}

// The fetch writes its 16 backdrop pixels whether or not the display is on: those of dots 52 to 63 come with
// dot 32 of their own line.
TEST(MdVdpMidLine, DisplaySwitchedOnShowsTheBackdropOfItsOwnLine) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        rig.Finish();
        const uint32_t first = h40 ? 77 : 63;
        for (const uint32_t line : {48U, 49U}) {
            rig.RunTo(line, 20);
            rig.Reg(1, 0x04);
            rig.Reg(7, line - 48 + 9);
            rig.RunTo(line, first + 52);
            rig.Reg(1, 0x44);
        }
        rig.Finish();
        for (const uint32_t x : {0U, 51U, 52U, 63U, 64U, 255U}) {
            EXPECT_EQ(rig.At(x, 48), EntryPixel(9)) << h40 << " " << x;
            EXPECT_EQ(rig.At(x, 49), EntryPixel(10)) << h40 << " " << x;
        }
    }
}

TEST(MdVdpMidLine, AFrameWithoutDisplayIsAllBackdrop) {
    for (const bool h40 : {false, true}) {
        MdVdpRig rig;
        rig.Setup(h40);
        FillPlaneA(rig, 2 | 0x8000);
        for (uint32_t i = 0; i < 32 * 32; ++i) {
            rig.Word(0x4000 + i * 2, 3);
            rig.Word(0x3000 + i * 2, 4);
        }
        rig.Reg(17, 0x85); // the window from column 10 on
        rig.Word(0x5400, 5);
        rig.Word(0x5402, 3);
        rig.Sprite(0, 20, 20, 15, 0, 5 | 0x8000);
        rig.Reg(7, 9);
        rig.Reg(1, 0x04);
        rig.Finish();
        rig.Finish();
        for (uint32_t y = 0; y < 224; ++y) {
            for (uint32_t x = 0; x < (h40 ? 320U : 256U); ++x) {
                ASSERT_EQ(rig.At(x, y), EntryPixel(9)) << h40 << " " << x << " " << y;
            }
        }
    }
}

namespace {

// Pixel 0 of the picture with the given planes and sprites in shadow mode.
struct Scene {
    uint32_t plane;  // word of plane A's cell
    uint32_t sprite; // first sprite's attributes, 0 for none
    uint32_t second; // the next sprite of the list
};

constexpr uint32_t kHigh = 0x8000;
constexpr uint32_t kPalette3 = 3 << 13;

uint32_t ShadowPixel(const Scene& scene) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x89);
    rig.CellA(0, 0, scene.plane);
    if (scene.sprite != 0) {
        rig.Sprite(0, 0, 0, 0, 1, scene.sprite);
    } else {
        rig.Sprite(0, 100, 0, 0, 1, 1);
    }
    if (scene.second != 0) {
        rig.Sprite(1, 0, 0, 0, 0x7F, scene.second);
    } else {
        rig.Sprite(1, 100, 100, 0, 0x7F, 1);
    }
    rig.Finish();
    rig.Finish();
    return rig.At(3, 3);
}

uint32_t Shade(uint32_t table, uint32_t entry) {
    static const auto kTables = MdVdpBuildColourTables();
    return kTables[table * 512 + RigColour(entry)];
}
uint32_t Shadowed(uint32_t entry) {
    return Shade(0, entry);
}
uint32_t Normal(uint32_t entry) {
    return Shade(1, entry);
}
uint32_t Bright(uint32_t entry) {
    return Shade(2, entry);
}

constexpr uint32_t kHighlight = 14 | kPalette3; // tile 14 is all of colour 14
constexpr uint32_t kShadow = 15 | kPalette3;

} // namespace

TEST(MdVdpShadow, IsTakenOffByAHighCell) {
    EXPECT_EQ(ShadowPixel({0, 0, 0}), Shadowed(0));
    EXPECT_EQ(ShadowPixel({2, 0, 0}), Shadowed(2));
    EXPECT_EQ(ShadowPixel({2 | kHigh, 0, 0}), Normal(2));
    EXPECT_EQ(ShadowPixel({0 | kHigh, 0, 0}), Normal(0)); // transparent
}

// Plane B and the window take it off as plane A does, seen or not; a cell of plane A under the window doesn't.
TEST(MdVdpShadow, IsTakenOffByAHighCellOfPlaneBOrTheWindow) {
    struct Cells {
        uint32_t b, a;
        bool window;
        uint32_t windowWord;
        uint32_t pixel;
    };
    const Cells rows[] = {
        {3,         0,         false, 0,         Shadowed(3)},
        {3 | kHigh, 0,         false, 0,         Normal(3)  },
        {kHigh,     2,         false, 0,         Normal(2)  },
        {3 | kHigh, 2 | kHigh, false, 0,         Normal(2)  },
        {0,         0,         true,  4,         Shadowed(4)},
        {0,         0,         true,  4 | kHigh, Normal(4)  },
        {3,         0,         true,  kHigh,     Normal(3)  },
        {3,         2 | kHigh, true,  0,         Shadowed(3)},
        {kHigh,     0,         true,  4,         Normal(4)  },
    };
    for (const Cells& row : rows) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Reg(12, 0x89);
        rig.Reg(17, row.window ? 1 : 0);
        rig.CellB(0, 0, row.b);
        rig.CellA(0, 0, row.a);
        rig.CellWindow(0, 0, row.windowWord);
        rig.Finish();
        rig.Finish();
        EXPECT_EQ(rig.At(3, 3), row.pixel)
            << row.b << " " << row.a << " " << row.window << " " << row.windowWord;
    }
}

TEST(MdVdpShadow, OfSpritesFollowsTheirPriority) {
    EXPECT_EQ(ShadowPixel({2, 3, 0}), Shadowed(3));
    EXPECT_EQ(ShadowPixel({2, 3 | kHigh, 0}), Normal(3));
    EXPECT_EQ(ShadowPixel({0 | kHigh, 3, 0}), Normal(3)); // the cell's
}

TEST(MdVdpShadow, SpriteColour14OfPalettes0To2IsNeverShadowed) {
    for (uint32_t palette = 0; palette < 3; ++palette) {
        EXPECT_EQ(ShadowPixel({2, 14 | palette << 13, 0}), Normal(palette * 16 + 14));
    }
}

// Every row of the table: operator, what it lies on, and whether that is shadowed.
TEST(MdVdpShadow, OperatorsByTheirTable) {
    // Low shadow operator: layers up to the low sprites are shadowed, those above as they are.
    EXPECT_EQ(ShadowPixel({2, kShadow, 0}), Shadowed(2));
    EXPECT_EQ(ShadowPixel({0 | kHigh, kShadow, 0}), Shadowed(0));
    EXPECT_EQ(ShadowPixel({2 | kHigh, kShadow, 0}), Normal(2));
    // High shadow operator: everything.
    EXPECT_EQ(ShadowPixel({2, kShadow | kHigh, 0}), Shadowed(2));
    EXPECT_EQ(ShadowPixel({2 | kHigh, kShadow | kHigh, 0}), Shadowed(2));
    // Low highlight operator.
    EXPECT_EQ(ShadowPixel({2, kHighlight, 0}), Normal(2));
    EXPECT_EQ(ShadowPixel({0 | kHigh, kHighlight, 0}), Bright(0));
    EXPECT_EQ(ShadowPixel({2 | kHigh, kHighlight, 0}), Normal(2));
    // High highlight operator.
    EXPECT_EQ(ShadowPixel({2, kHighlight | kHigh, 0}), Normal(2));
    EXPECT_EQ(ShadowPixel({2 | kHigh, kHighlight | kHigh, 0}), Bright(2));
}

TEST(MdVdpShadow, AnOperatorCountsNoDotAndHidesTheSpriteBehind) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x89);
    rig.Sprite(0, 0, 40, 0, 1, kShadow);
    rig.Sprite(1, 0, 40, 0, 0x7F, 3);
    rig.ScanFor(40);
    EXPECT_EQ(rig.vdp->shadowOp[3], 5);
    EXPECT_EQ(rig.vdp->spriteDots[3], 0);
    EXPECT_EQ(rig.vdp->layerCode[3], 0);
    EXPECT_EQ(ShadowPixel({2, kShadow, 3}), Shadowed(2));
}

TEST(MdVdpShadow, OperatorCodesFollowPriority) {
    const uint32_t rows[4][2] = {
        {kShadow,            5 },
        {kShadow | kHigh,    9 },
        {kHighlight,         6 },
        {kHighlight | kHigh, 10}
    };
    for (const auto& row : rows) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Reg(12, 0x89);
        rig.Sprite(0, 0, 40, 0, 0x7F, row[0]);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->shadowOp[3], row[1]);
    }
}

// An operator under a sprite pixel is a collision and does nothing.
TEST(MdVdpShadow, AnOperatorBehindASpriteDoesNothing) {
    EXPECT_EQ(ShadowPixel({2, 3 | kHigh, kShadow}), Normal(3));
    EXPECT_EQ(ShadowPixel({2, 3, kHighlight | kHigh}), Shadowed(3));
}

TEST(MdVdpShadow, WithoutItsModeTheyAreColours) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.CellA(0, 0, 2);
    rig.Sprite(0, 0, 0, 0, 0x7F, kShadow);
    rig.Finish();
    rig.Finish();
    EXPECT_EQ(rig.At(3, 3), EntryPixel(63));
    EXPECT_EQ(rig.At(12, 3), EntryPixel(0));
}

TEST(MdVdpShadow, AnUnknownOperatorPutsOutNothing) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x89);
    rig.RunTo(60, 80);
    rig.pixels[(60 + 8) * 320 + 40] = 0x1234;
    rig.vdp->shadowOp[40] = 3;
    rig.RunTo(61, 0);
    EXPECT_EQ(rig.At(40, 60), 0x1234U);
    EXPECT_EQ(rig.At(41, 60), Shadowed(0));
}

TEST(MdVdpShadow, BordersAreNotShadowed) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x89);
    rig.Reg(7, 3);
    rig.Finish();
    rig.Finish();
    EXPECT_EQ(rig.pixels[5], Normal(3));
    EXPECT_EQ(rig.At(5, 5), Shadowed(3));
}
