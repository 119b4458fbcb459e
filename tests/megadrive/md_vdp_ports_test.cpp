// Ports, registers, counters and what the geometry makes of registers.
#include "megadrive/md_vdp_colours.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

TEST(MdVdpReset, SetsThePowerOnValues) {
    MdVdpRig rig(kMdVdp50Hz);
    rig.Setup(true);
    rig.vdp->vram[5] = 1;
    rig.vdp->vsram[5] = 1;
    MdVdpReset(*rig.vdp);
    EXPECT_EQ(rig.vdp->vram[5], 0);
    EXPECT_EQ(rig.vdp->cram[1], 0);
    EXPECT_EQ(rig.vdp->vsram[5], 0);
    EXPECT_EQ(rig.vdp->status, 0x200);
    EXPECT_EQ(rig.vdp->regs[1], 4);
    EXPECT_EQ(rig.vdp->regs[10], 255);
    EXPECT_EQ(rig.vdp->regs[12], 0x81);
    EXPECT_EQ(rig.vdp->regs[15], 2);
    EXPECT_EQ(rig.vdp->activeHeight, 224U);
    EXPECT_EQ(rig.vdp->totalLines, 313U);
    EXPECT_EQ(rig.vdp->tvMode, kMdVdp50Hz);
}

TEST(MdVdpReset, KeepsTheCartridgesMarkAndDropsWhatWaits) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.vdp->svpDmaQuirk = 1;
    rig.vdp->hPending = 1;
    rig.vdp->vPending = 1;
    rig.zInt = 1;
    rig.Data(1);
    rig.Reg(1, 0x54);
    rig.Reg(19, 9);
    rig.Reg(23, 0);
    rig.Command(0x21, 0);
    rig.Control(0x8733);
    ASSERT_EQ(rig.stall, 1U);
    ASSERT_NE(rig.vdp->dmaPending, 0U);
    MdVdpReset(*rig.vdp);
    EXPECT_EQ(rig.vdp->svpDmaQuirk, 1U);
    EXPECT_EQ(rig.vdp->hPending, 0U);
    EXPECT_EQ(rig.vdp->vPending, 0U);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpNoDma);
    EXPECT_EQ(rig.vdp->dmaLength, 0U);
    EXPECT_EQ(rig.vdp->dmaPending, 0U);
    EXPECT_EQ(rig.vdp->fifoCount, 0U);
    EXPECT_EQ(rig.stall, 0U);
    EXPECT_EQ(rig.zInt, 0U);
    // Nothing goes on after it.
    rig.irqs.clear();
    rig.Steps(300);
    EXPECT_TRUE(rig.reads.empty());
    EXPECT_TRUE(rig.irqs.empty());
    EXPECT_EQ(rig.vdp->regs[7], 0);
}

TEST(MdVdpControl, TwoWordsMakeACommand) {
    MdVdpRig rig;
    rig.Control(0x5234); // code bits 1 and 0: 01, address low 0x1234
    EXPECT_EQ(rig.vdp->pendingSecond, 1U);
    EXPECT_EQ(rig.vdp->address, 0x1234U);
    rig.Control(0x0013); // code bits 5 to 2: 0001, address high 3
    EXPECT_EQ(rig.vdp->pendingSecond, 0U);
    EXPECT_EQ(rig.vdp->address, 0xD234U);
    EXPECT_EQ(rig.vdp->code, 5U);
    // The high part stays for the next first word.
    rig.Control(0x4010);
    EXPECT_EQ(rig.vdp->address, 0xC010U);
    EXPECT_EQ(rig.vdp->code, 5U);
}

TEST(MdVdpControl, ARegisterWriteDisturbsAddressAndCode) {
    MdVdpRig rig;
    rig.Command(kVramCode, 0x8000);
    rig.Control(0x8F02);
    EXPECT_EQ(rig.vdp->regs[15], 2);
    EXPECT_EQ(rig.vdp->pendingSecond, 0U);
    EXPECT_EQ(rig.vdp->address, 0x8F02U);
    EXPECT_EQ(rig.vdp->code, 2U);
}

TEST(MdVdpControl, EveryOtherPortForgetsTheFirstWord) {
    MdVdpRig rig;
    const auto pending = [&rig] {
        const uint32_t value = rig.vdp->pendingSecond;
        rig.vdp->pendingSecond = 1;
        return value;
    };
    rig.Control(0x4000);
    EXPECT_EQ(pending(), 1U);
    (void)MdVdpReadStatus(*rig.vdp);
    EXPECT_EQ(pending(), 0U);
    (void)MdVdpReadData(*rig.vdp);
    EXPECT_EQ(pending(), 0U);
    rig.Data(0);
    EXPECT_EQ(pending(), 0U);
    (void)MdVdpReadHV(*rig.vdp);
    EXPECT_EQ(pending(), 1U);
}

TEST(MdVdpControl, ASecondWordThatLooksLikeARegisterIsNone) {
    MdVdpRig rig;
    rig.Control(0x4000);
    rig.Control(0x8F33);
    EXPECT_EQ(rig.vdp->regs[15], 2);
    EXPECT_EQ(rig.vdp->address, 0xC000U);
}

TEST(MdVdpRegisters, FromElevenOnNeedBit2OfRegister1) {
    MdVdpRig rig;
    rig.Reg(1, 0);
    rig.Reg(10, 33);
    rig.Reg(11, 3);
    EXPECT_EQ(rig.vdp->regs[10], 33);
    EXPECT_EQ(rig.vdp->regs[11], 0);
    rig.Reg(1, 4);
    rig.Reg(11, 3);
    EXPECT_EQ(rig.vdp->regs[11], 3);
}

TEST(MdVdpRegisters, DriveTheInterruptLines) {
    MdVdpRig rig;
    rig.vdp->hPending = 1;
    rig.vdp->vPending = 1;
    const auto calls = [&rig](uint32_t index, uint32_t value) {
        rig.irqs.clear();
        rig.Reg(index, value);
        std::vector<std::pair<uint32_t, uint32_t>> lines;
        for (const IrqLog& irq : rig.irqs) {
            lines.emplace_back(irq.irq, irq.state);
        }
        return lines;
    };
    using Lines = std::vector<std::pair<uint32_t, uint32_t>>;
    EXPECT_EQ(calls(0, 0x10), (Lines{
                                  {4, 1},
                                  {6, 0}
    }));
    EXPECT_EQ(calls(0, 0x10), (Lines{
                                  {6, 0}
    })); // bit 4 as before
    EXPECT_EQ(calls(1, 0x24), (Lines{
                                  {4, 1},
                                  {6, 1}
    }));
    EXPECT_EQ(calls(1, 0x64), (Lines{
                                  {4, 1}
    }));
    EXPECT_EQ(calls(0, 0x00), (Lines{
                                  {4, 0},
                                  {6, 1}
    }));
    EXPECT_EQ(calls(1, 0x04), (Lines{
                                  {4, 0},
                                  {6, 0}
    }));
    EXPECT_EQ(calls(2, 0xFF), Lines{});
}

TEST(MdVdpGeometry, PlaneSizesFollowRegister16) {
    MdVdpRig rig;
    const uint32_t sizes[4] = {32, 64, 32, 128};
    for (uint32_t value = 0; value < 4; ++value) {
        rig.Reg(16, value | (3 - value) << 4);
        EXPECT_EQ(rig.vdp->planeWidth, sizes[value]);
        EXPECT_EQ(rig.vdp->planeHeight, sizes[3 - value]);
    }
}

TEST(MdVdpGeometry, BasesFollowTheirRegistersAndTheWidth) {
    MdVdpRig rig;
    rig.Reg(12, 0);
    for (const uint32_t index : {2U, 3U, 4U, 5U, 13U}) {
        rig.Reg(index, 0xFF);
    }
    EXPECT_EQ(rig.vdp->planeABase, 0xE000U);
    EXPECT_EQ(rig.vdp->planeBBase, 0xE000U);
    EXPECT_EQ(rig.vdp->windowBase, 0xF800U);
    EXPECT_EQ(rig.vdp->hscrollBase, 0xFC00U);
    EXPECT_EQ(rig.vdp->spriteBase, 0xFE00U);
    EXPECT_EQ(rig.vdp->windowWidth, 32U);
    rig.Reg(12, 0x80);
    EXPECT_EQ(rig.vdp->windowWidth, 64U);
    EXPECT_EQ(rig.vdp->windowBase, 0xF800U);
    rig.Reg(12, 0x01);
    EXPECT_EQ(rig.vdp->windowWidth, 64U);
    EXPECT_EQ(rig.vdp->windowBase, 0xF000U);
    EXPECT_EQ(rig.vdp->spriteBase, 0xFC00U);
    rig.Reg(12, 0x08);
    EXPECT_EQ(rig.vdp->shadowMode, 1U);
    for (const uint32_t mode : {0U, 2U, 4U, 6U}) {
        rig.Reg(12, mode);
        EXPECT_EQ(rig.vdp->interlace2, mode == 6 ? 1U : 0U);
    }
}

TEST(MdVdpGeometry, BorderFollowsHeightAndStandard) {
    struct Row {
        uint32_t tvMode;
        uint32_t reg1;
        uint32_t border;
    };
    for (const Row& row : {
             Row{kMdVdp60Hz, 0x04, 8 },
             Row{kMdVdp60Hz, 0x0C, 0 },
             Row{kMdVdp50Hz, 0x04, 16},
             Row{kMdVdp50Hz, 0x0C, 8 }
    }) {
        MdVdpRig rig(row.tvMode);
        rig.Reg(1, row.reg1);
        rig.Finish(); // the height is taken at the end of a frame
        rig.Reg(2, 0);
        EXPECT_EQ(rig.vdp->border, row.border);
        rig.Reg(12, 0x87);
        EXPECT_EQ(rig.vdp->border, 8U);
    }
}

TEST(MdVdpReadData, ReadsTheThreeMemories) {
    MdVdpRig rig;
    rig.Word(0x1234, 0xABCD);
    rig.vdp->vsram[3] = 0x345;
    rig.vdp->cram[3] = 7 << 6 | 3 << 3 | 5; // red 7, green 3, blue 5
    rig.Reg(15, 4);
    rig.Command(0, 0x1235);
    EXPECT_EQ(MdVdpReadData(*rig.vdp), 0xABCD);
    EXPECT_EQ(rig.vdp->address, 0x1239U);
    rig.Command(4, 0x86); // 0x86 & 126 = 6
    EXPECT_EQ(MdVdpReadData(*rig.vdp), 0x345);
    rig.Command(8, 0x86);
    EXPECT_EQ(MdVdpReadData(*rig.vdp), 0xA6E); // blue 5, green 3, red 7, each doubled
    rig.Command(kVramCode, 0x1234);
    EXPECT_EQ(MdVdpReadData(*rig.vdp), 0);
    EXPECT_EQ(rig.vdp->address, 0x1238U);
    rig.Command(0, 0xFFFE);
    (void)MdVdpReadData(*rig.vdp);
    EXPECT_EQ(rig.vdp->address, 2U);
}

TEST(MdVdpStatus, ReadsTenBitsAndForgetsCollisionAndOverflow) {
    MdVdpRig rig;
    rig.Reg(1, 0x44);
    rig.vdp->status = 0xFFFF & ~(kMdVdpVBlank | kMdVdpOddField | kMdVdpPal);
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp), 0x3E6);
    EXPECT_EQ(rig.vdp->status, 0xFFFF & ~(0x19 | 0x60));
}

TEST(MdVdpStatus, TellsFieldDisplayAndStandard) {
    MdVdpRig rig(kMdVdp50Hz);
    rig.vdp->status = 0;
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp), kMdVdpVBlank | kMdVdpPal);
    EXPECT_EQ(rig.vdp->status, 0);
    rig.Reg(1, 0x44);
    rig.vdp->field = 1;
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp), kMdVdpPal);
    rig.Reg(12, 0x06);
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp), kMdVdpPal | kMdVdpOddField);
    rig.vdp->field = 0;
    EXPECT_EQ(MdVdpReadStatus(*rig.vdp), kMdVdpPal);
}

namespace {

struct Range {
    uint32_t first;
    uint32_t last;
};

} // namespace

TEST(MdVdpHV, VCountsThroughItsRanges) {
    struct Row {
        uint32_t tvMode;
        uint32_t height;
        std::vector<Range> ranges;
    };
    const Row rows[] = {
        {kMdVdp60Hz, 224, {{0, 234}, {229, 255}}         },
        {kMdVdp60Hz, 240, {{0, 255}, {0, 5}}             },
        {kMdVdp50Hz, 224, {{0, 255}, {0, 2}, {202, 255}} },
        {kMdVdp50Hz, 240, {{0, 255}, {0, 10}, {210, 255}}}
    };
    for (const Row& row : rows) {
        MdVdpRig rig(row.tvMode);
        rig.vdp->activeHeight = row.height;
        uint32_t line = 0;
        for (const Range& range : row.ranges) {
            for (uint32_t v = range.first; v <= range.last; ++v, ++line) {
                rig.vdp->vCount = line;
                ASSERT_EQ(MdVdpReadHV(*rig.vdp) >> 8, v) << line;
            }
        }
        EXPECT_EQ(line, rig.vdp->totalLines);
    }
}

TEST(MdVdpHV, HJumpsOverTheSync) {
    MdVdpRig rig;
    const auto h = [&rig](uint32_t h40, uint32_t step) {
        rig.vdp->h40 = h40;
        rig.vdp->hCount = step;
        return MdVdpReadHV(*rig.vdp) & 255U;
    };
    for (uint32_t step = 0; step < 422; ++step) {
        ASSERT_EQ(h(1, step), step < 366 ? step / 2 : step / 2 + 45);
    }
    for (uint32_t step = 0; step < 342; ++step) {
        ASSERT_EQ(h(0, step), step < 296 ? step / 2 : step / 2 + 85);
    }
    EXPECT_EQ(h(1, 421), 255U);
    EXPECT_EQ(h(0, 341), 255U);
}

TEST(MdVdpHV, VIsRotatedInDoubleInterlace) {
    MdVdpRig rig;
    rig.Reg(12, 0x06);
    rig.vdp->vCount = 0xC1;
    EXPECT_EQ(MdVdpReadHV(*rig.vdp) >> 8, 0x83);
}

TEST(MdVdpColours, FollowTheirFormulas) {
    const auto tables = MdVdpBuildColourTables();
    for (uint32_t colour = 0; colour < 512; ++colour) {
        const double r = (colour >> 6) * 248 / 7; // whole numbers, cut off
        const double g = (colour >> 3 & 7) * 248 / 7;
        const double b = (colour & 7) * 248 / 7;
        const auto pixel = [](double red, double green, double blue) {
            const auto byte = [](double level) {
                return static_cast<uint32_t>(std::min(std::max(level, 0.0), 255.0));
            };
            return 0xFF000000U + byte(red) * 0x10000 + byte(green) * 0x100 + byte(blue);
        };
        const double y = 0.257 * r + 0.504 * g + 0.098 * b + 16;
        const double cb = -0.148 * r - 0.291 * g + 0.439 * b;
        const double cr = 0.439 * r - 0.368 * g - 0.071 * b;
        const auto back = [&](double luma) {
            const double base = 1.164 * (luma - 16);
            return pixel(base + 1.596 * cr, base - 0.813 * cr - 0.392 * cb, base + 2.018 * cb);
        };
        const auto near = [](uint32_t one, uint32_t other) {
            // The last digit of a sum may fall to the other side of a whole number.
            for (uint32_t shift = 0; shift < 32; shift += 8) {
                const uint32_t a = one >> shift & 255;
                const uint32_t c = other >> shift & 255;
                if (std::max(a, c) - std::min(a, c) > 1) {
                    return false;
                }
            }
            return true;
        };
        ASSERT_TRUE(near(tables[colour], back((y - 16) * 0.5))) << colour;
        ASSERT_EQ(tables[512 + colour], pixel(r, g, b)) << colour;
        ASSERT_TRUE(near(tables[1024 + colour], back(std::min(y * 2, 255.0)))) << colour;
    }
}

TEST(MdVdpColours, SomeByHand) {
    const auto tables = MdVdpBuildColourTables();
    EXPECT_EQ(tables[512], 0xFF000000U);
    EXPECT_EQ(tables[512 + 511], 0xFFF8F8F8U);
    EXPECT_EQ(tables[512 + (1 << 6 | 2 << 3 | 3)], 0xFF23466AU); // 35, 70 and 106
    // Black: Y 16; shadow 0 is 1.164 * -16, highlight 32 is 1.164 * 16 = 18.6.
    EXPECT_EQ(tables[0], 0xFF000000U);
    EXPECT_EQ(tables[1024], 0xFF121212U);
    // White: Y = 248 * 0.859 + 16 = 229.032; shadow 106.516 is 105.36, highlight 255 is 278.
    EXPECT_EQ(tables[511], 0xFF696969U);
    EXPECT_EQ(tables[1024 + 511], 0xFFFFFFFFU);
}
