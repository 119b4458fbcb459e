// Sprites: sizes and flips, the list scan and its ends, masking, collision and overflow.
#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

constexpr uint32_t kFlipX = 0x0800;
constexpr uint32_t kFlipY = 0x1000;

// `count` sprites in a chain, all on line 40, `size` as in the list.
void Chain(MdVdpRig& rig, uint32_t count, uint32_t size, uint32_t lastLink = 0x7F) {
    for (uint32_t i = 0; i < count; ++i) {
        rig.Sprite(i, 4 + i * 3, 40, size, i + 1 < count ? i + 1 : lastLink, 1);
    }
}

uint32_t Overflow(const MdVdpRig& rig) {
    return rig.vdp->status & kMdVdpOverflow;
}

struct Mode {
    bool h40;
    uint32_t visible;
    uint32_t dots;
    uint32_t links;
    uint32_t budget;
};
constexpr Mode kModes[] = {
    {false, 16, 256, 64, 224},
    {true,  20, 320, 80, 280}
};

} // namespace

TEST(MdVdpSprites, OfAllSizesShowTheirCellsDownThenAcross) {
    for (uint32_t size = 0; size < 16; ++size) {
        for (const uint32_t flips : {0U, kFlipX, kFlipY, kFlipX | kFlipY}) {
            MdVdpRig rig;
            rig.Setup(true);
            // Every cell of the 16 has a colour number; pixels and rows within it by tile 0x40's pattern.
            for (uint32_t cell = 0; cell < 16; ++cell) {
                for (uint32_t row = 0; row < 8; ++row) {
                    rig.TileRow(0x40 + cell, row, row == 0 ? 0x0FFFFFFF : cell * 0x11111111);
                }
            }
            rig.Sprite(0, 100, 50, size, 0x7F, 0x40 | flips | 1 << 13);
            rig.Finish();
            rig.Finish();
            const uint32_t width = (size >> 2) * 8 + 8;
            const uint32_t height = (size & 3) * 8 + 8;
            for (uint32_t y = 0; y < height; ++y) {
                for (uint32_t x = 0; x < width; ++x) {
                    const uint32_t px = (flips & kFlipX) != 0 ? width - 1 - x : x;
                    const uint32_t py = (flips & kFlipY) != 0 ? height - 1 - y : y;
                    const uint32_t cell = px / 8 * (height / 8) + py / 8;
                    const uint32_t colour = py % 8 != 0 ? cell : px % 8 == 0 ? 0 : 15;
                    ASSERT_EQ(rig.At(100 + x, 50 + y), EntryPixel(colour == 0 ? 0 : 16 + colour))
                        << size << " " << flips << " " << x << " " << y;
                }
            }
            EXPECT_EQ(rig.At(99, 51), EntryPixel(0));
            EXPECT_EQ(rig.At(100 + width, 51), EntryPixel(0));
            EXPECT_EQ(rig.At(101, 49), EntryPixel(0));
            EXPECT_EQ(rig.At(101, 50 + height), EntryPixel(0));
        }
    }
}

TEST(MdVdpSprites, AreCutOffAtBothEdges) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.TileRow(1, 0, 0x12345678);
    rig.Sprite(0, 0U - 3, 0, 0, 1, 1);
    rig.Sprite(1, 316, 0, 0, 2, 1);
    rig.Sprite(2, 320, 0, 0, 0x7F, 1); // wholly outside, where it collides with nothing
    rig.Sprite(3, 320, 0, 0, 0x7F, 1);
    rig.Finish();
    rig.Finish();
    EXPECT_EQ(rig.At(0, 0), EntryPixel(4));
    EXPECT_EQ(rig.At(4, 0), EntryPixel(8));
    EXPECT_EQ(rig.At(5, 0), EntryPixel(0));
    EXPECT_EQ(rig.At(316, 0), EntryPixel(1));
    EXPECT_EQ(rig.At(319, 0), EntryPixel(4));
    EXPECT_EQ(rig.vdp->status & kMdVdpCollision, 0);
}

TEST(MdVdpSprites, AtTheTopShowTheirLowerPart) {
    MdVdpRig rig;
    rig.Setup(false);
    rig.TileRow(1, 5, 0x77777777);
    rig.Sprite(0, 10, 0U - 5, 0, 0x7F, 1);
    rig.Finish();
    rig.Finish();
    EXPECT_EQ(rig.At(10, 0), EntryPixel(7));
    EXPECT_EQ(rig.At(10, 2), EntryPixel(1));
    EXPECT_EQ(rig.At(10, 3), EntryPixel(0));
}

TEST(MdVdpSprites, TheFirstOfTwoStaysOnTopAndTheyCollide) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Sprite(0, 50, 40, 0, 1, 2);
    rig.Sprite(1, 54, 40, 0, 0x7F, 0x8003); // priority is nothing among sprites
    rig.Finish();
    rig.vdp->status &= static_cast<uint16_t>(~kMdVdpCollision);
    rig.RunTo(40, 77 + 54);
    EXPECT_EQ(rig.vdp->spriteDots[54], 2);
    EXPECT_EQ(rig.vdp->status & kMdVdpCollision, 0);
    rig.Step(); // dot 54
    EXPECT_NE(rig.vdp->status & kMdVdpCollision, 0);
    rig.Finish();
    EXPECT_EQ(rig.At(57, 40), EntryPixel(2));
    EXPECT_EQ(rig.At(58, 40), EntryPixel(3));
    EXPECT_NE(MdVdpReadStatus(*rig.vdp) & kMdVdpCollision, 0);
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp) & kMdVdpCollision, 0);
}

TEST(MdVdpSprites, TransparentPixelsDoNotCollide) {
    MdVdpRig rig;
    rig.Setup(true);
    for (uint32_t row = 0; row < 8; ++row) {
        rig.TileRow(1, row, 0x11110000);
        rig.TileRow(2, row, 0x00002222);
    }
    rig.Sprite(0, 50, 40, 0, 1, 1);
    rig.Sprite(1, 50, 40, 0, 0x7F, 2);
    rig.Finish();
    rig.Finish();
    EXPECT_EQ(rig.At(50, 40), EntryPixel(1));
    EXPECT_EQ(rig.At(54, 40), EntryPixel(2));
    EXPECT_EQ(rig.vdp->status & kMdVdpCollision, 0);
}

TEST(MdVdpSpriteScan, EndsAtTheVisibleLimitAndSetsOverflow) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        Chain(rig, mode.visible - 1, 0);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.visible, mode.visible - 1);
        EXPECT_EQ(Overflow(rig), 0U);
        Chain(rig, mode.visible + 3, 0);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.visible, mode.visible);
        EXPECT_EQ(rig.vdp->spriteScan.seen, mode.visible);
        EXPECT_NE(Overflow(rig), 0U);
        // The last one that counts is drawn, the next isn't: sprites begin every three pixels.
        EXPECT_NE(rig.vdp->spriteDots[4 + (mode.visible - 1) * 3 + 7], 0);
        EXPECT_EQ(rig.vdp->spriteDots[4 + (mode.visible - 1) * 3 + 8], 0);
    }
}

TEST(MdVdpSpriteScan, EndsWhenTheDotsRunOut) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        const uint32_t wide = 0xC; // 32 pixels
        Chain(rig, mode.dots / 32 - 1, wide);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.flags & kMdVdpScanDotsRanOut, 0U);
        Chain(rig, mode.dots / 32 + 2, wide);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.dots, mode.dots);
        EXPECT_EQ(rig.vdp->spriteScan.seen, mode.dots / 32);
        EXPECT_NE(rig.vdp->spriteScan.flags & kMdVdpScanDotsRanOut, 0U);
        EXPECT_EQ(Overflow(rig), 0U);
    }
}

TEST(MdVdpSpriteScan, DotsRunOutWithinASprite) {
    MdVdpRig rig;
    rig.Setup(false);
    Chain(rig, 9, 0xC);
    rig.Sprite(0, 200, 40, 0x8, 1, 1); // 24 pixels: 24 + 7 * 32 = 248, and 8 of the last
    rig.Sprite(8, 220, 40, 0xC, 0x7F, 1);
    rig.ScanFor(40);
    EXPECT_EQ(rig.vdp->spriteScan.dots, 256U);
    EXPECT_NE(rig.vdp->spriteDots[227], 0);
    EXPECT_EQ(rig.vdp->spriteDots[228], 0);
}

TEST(MdVdpSpriteScan, EndsAtALinkBeyondTheList) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        rig.Sprite(0, 10, 0, 0, mode.links - 1, 1); // not on the line
        rig.Sprite(mode.links - 1, 20, 40, 0, mode.links, 1);
        rig.Sprite(mode.links, 60, 40, 0, 0x7F, 1);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.seen, 2U);
        EXPECT_EQ(rig.vdp->spriteScan.visible, 1U);
        EXPECT_EQ(rig.vdp->spriteScan.index, mode.links - 1);
    }
}

TEST(MdVdpSpriteScan, EndsAfterSprite79WhateverItsLink) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Sprite(0, 10, 40, 0, 79, 1);
    rig.Sprite(79, 60, 40, 0, 1, 1);
    rig.Sprite(1, 100, 40, 0, 0x7F, 1);
    rig.ScanFor(40);
    EXPECT_EQ(rig.vdp->spriteScan.seen, 2U);
    EXPECT_EQ(rig.vdp->spriteScan.index, 79U);
    EXPECT_NE(rig.vdp->spriteDots[60], 0);
    EXPECT_EQ(rig.vdp->spriteDots[100], 0);
}

TEST(MdVdpSpriteScan, EndsWithItsTime) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        // Sprite 0 is not on the line and links to itself: two words each time.
        rig.Sprite(0, 10, 0, 0, 0, 1);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.seen, mode.budget / 2);
        EXPECT_EQ(rig.vdp->spriteScan.visible, 0U);
    }
}

// Y, size, attributes, X, then two words for each eight pixels.
TEST(MdVdpSpriteScan, TimeRunsOutInTheMiddleOfASprite) {
    const uint32_t dots[14] = {0, 0, 0, 0, 0, 0, 8, 8, 16, 16, 24, 24, 32, 32};
    for (uint32_t budget = 0; budget < 14; ++budget) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Sprite(0, 10, 40, 0xC, 0x7F, 1);
        rig.RunTo(39, 200);
        rig.vdp->spriteScan = {};
        MdVdpFetchSprites(*rig.vdp, budget);
        EXPECT_EQ(rig.vdp->spriteScan.seen, budget >= 1 ? 1U : 0U) << budget;
        EXPECT_EQ(rig.vdp->spriteScan.visible, budget >= 2 ? 1U : 0U) << budget;
        EXPECT_EQ(rig.vdp->spriteScan.dots, dots[budget]) << budget;
        for (uint32_t x = 0; x < 32; ++x) {
            ASSERT_EQ(rig.vdp->spriteDots[10 + x], x < dots[budget] ? 1 : 0) << budget;
        }
    }
}

TEST(MdVdpSpriteScan, ALinkOf0GoesRoundUntilALimit) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        rig.Sprite(0, 10, 40, 0, 0, 1);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteScan.seen, mode.visible);
        EXPECT_EQ(rig.vdp->spriteDots[10], mode.visible); // over itself
        EXPECT_NE(Overflow(rig), 0U);
    }
}

TEST(MdVdpSpriteScan, IsForActiveLinesOnly) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Sprite(0, 10, 220, 0, 0x7F, 1);
    rig.ScanFor(223);
    EXPECT_EQ(rig.vdp->spriteScan.visible, 1U);
    rig.ScanFor(224);
    EXPECT_EQ(rig.vdp->spriteScan.seen, 0U);
    rig.RunTo(261, 397);
    rig.Step();
    EXPECT_EQ(rig.vdp->spriteScan.seen, 1U);
}

TEST(MdVdpSpriteScan, CountsWithoutDrawingWhenTheDisplayIsOff) {
    MdVdpRig rig;
    rig.Setup(true);
    Chain(rig, 3, 0xC);
    rig.Reg(1, 4);
    rig.ScanFor(40);
    EXPECT_EQ(rig.vdp->spriteScan.dots, 96U);
    EXPECT_EQ(rig.vdp->spriteDots[10], 0);
    EXPECT_EQ(rig.vdp->layerCode[10], 0);
}

TEST(MdVdpSpriteMask, SpriteWithX0AfterAnotherHidesTheRest) {
    MdVdpRig rig;
    rig.Setup(true);
    const uint32_t masking = 0U - 128; // X of 0
    rig.Sprite(0, 10, 40, 0, 1, 1);
    rig.Sprite(1, masking, 40, 0, 2, 1);
    rig.Sprite(2, 60, 40, 0, 0x7F, 1);
    rig.ScanFor(40);
    EXPECT_NE(rig.vdp->spriteDots[10], 0);
    EXPECT_EQ(rig.vdp->spriteDots[60], 0);
    EXPECT_EQ(rig.vdp->spriteScan.dots, 24U); // all three
}

TEST(MdVdpSpriteMask, DoesNothingAsTheFirstOfALine) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Sprite(0, 0U - 128, 40, 0, 1, 1);
    rig.Sprite(1, 60, 40, 0, 2, 1);
    rig.Sprite(2, 80, 40, 0, 0x7F, 1);
    rig.ScanFor(40);
    EXPECT_NE(rig.vdp->spriteDots[60], 0);
    EXPECT_NE(rig.vdp->spriteDots[80], 0);
    // A sprite of another line doesn't count as seen.
    rig.Sprite(0, 10, 100, 0, 1, 1);
    rig.Sprite(1, 0U - 128, 40, 0, 2, 1);
    rig.ScanFor(40);
    EXPECT_NE(rig.vdp->spriteDots[80], 0);
}

TEST(MdVdpSpriteMask, HidesAtOnceWhenTheLineBeforeRanOutOfDots) {
    for (const Mode& mode : kModes) {
        MdVdpRig rig;
        rig.Setup(mode.h40);
        // Lines 32 to 39 are full, line 40 begins with X 0.
        const uint32_t count = mode.dots / 32;
        for (uint32_t i = 0; i < count; ++i) {
            rig.Sprite(i, 10 + i, 32, 0xC, i + 1, 1);
        }
        rig.Sprite(count, 0U - 128, 40, 0, count + 1, 1);
        rig.Sprite(count + 1, 60, 40, 0, 0x7F, 1);
        rig.ScanFor(40);
        EXPECT_EQ(rig.vdp->spriteDots[60], 0);
        EXPECT_EQ(rig.vdp->spriteScan.dots, 16U);
        rig.Step();
        rig.ScanFor(41); // line 40 didn't run out
        EXPECT_NE(rig.vdp->spriteDots[60], 0);
    }
}

TEST(MdVdpSprites, OfDoubleInterlaceHaveTenBitsOfYAndBothFields) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(12, 0x87);
    for (uint32_t row = 0; row < 32; ++row) {
        rig.Word(8 * 64 + row * 4, (row % 15 + 1) * 0x1111); // two cells, one below the other
    }
    rig.Sprite(0, 10, 0, 1, 0x7F, 8);
    rig.Word(0x5000, (150 + 128) * 2);
    for (uint32_t frame = 0; frame < 2; ++frame) {
        rig.ScanFor(150);
        EXPECT_NE(rig.vdp->spriteDots[10], 0);
        for (uint32_t y = 0; y < 16; ++y) {
            rig.ScanFor(150 + y);
            const uint32_t row = 2 * y + rig.vdp->field;
            ASSERT_EQ(rig.vdp->spriteLine[10], RigColour(row % 15 + 1)) << y;
        }
        rig.ScanFor(166);
        EXPECT_EQ(rig.vdp->spriteDots[10], 0);
        rig.Finish();
    }
}
