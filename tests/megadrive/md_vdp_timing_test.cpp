// The timetable's counters and interrupts, the rows of the picture and what the frame record says.
#include "machine/emu_system.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

struct Width {
    bool h40;
    uint32_t steps;
    uint32_t first; // step of pixel 0
    uint32_t dots;
    uint32_t lineEnd;
};
constexpr Width kWidths[] = {
    {false, 342, 63, 256, 319},
    {true,  422, 77, 320, 397}
};

} // namespace

TEST(MdVdpTiming, ALineHas3420MasterClocks) {
    for (const Width& width : kWidths) {
        MdVdpRig rig;
        rig.Setup(width.h40);
        rig.RunTo(5, 0);
        uint32_t clocks = 0;
        uint32_t steps = 0;
        do {
            clocks += rig.vdp->stepTable[rig.vdp->hCount];
            rig.Step();
            ++steps;
        } while (rig.vdp->hCount != 0);
        EXPECT_EQ(clocks, 3420U);
        EXPECT_EQ(steps, width.steps);
    }
}

TEST(MdVdpTiming, LongStepsOf40CellsLieInTheSync) {
    for (uint32_t step = 0; step < 422; ++step) {
        EXPECT_EQ(kMdVdpLengthsH40[step], step >= 373 && step <= 394 ? 10 : 8) << step;
    }
}

TEST(MdVdpTiming, AFrameHasItsLines) {
    for (const Width& width : kWidths) {
        for (const uint32_t tvMode : {kMdVdp60Hz, kMdVdp50Hz}) {
            MdVdpRig rig(tvMode);
            rig.Setup(width.h40);
            const uint32_t lines = tvMode == kMdVdp60Hz ? 262 : 313;
            EXPECT_EQ(rig.Finish(), lines * width.steps);
            EXPECT_EQ(rig.vdp->line, 0U);
            EXPECT_EQ(rig.vdp->hCount, width.lineEnd + 1);
        }
    }
}

TEST(MdVdpTiming, TheClockRunsAStepWhenItsTimeIsOwed) {
    for (const Width& width : kWidths) {
        MdVdpRig rig;
        rig.Setup(width.h40);
        rig.RunTo(7, 0);
        rig.vdp->stepDebt = 0;
        // 7 * 3420 clocks of 7 are 7 lines, to the clock.
        for (uint32_t clock = 0; clock < 3420; ++clock) {
            MdVdpTick(*rig.vdp);
        }
        EXPECT_EQ(rig.vdp->line, 14U);
        EXPECT_EQ(rig.vdp->hCount, 0U);
        EXPECT_EQ(rig.vdp->stepDebt, 0);
        MdVdpTick(*rig.vdp);
        EXPECT_EQ(rig.vdp->hCount, 1U);
        EXPECT_EQ(rig.vdp->stepDebt, width.h40 ? -1 : -3);
    }
}

TEST(MdVdpTiming, TheWidthChangesAtTheWrapOnly) {
    MdVdpRig rig;
    rig.Setup(false);
    rig.RunTo(10, 100);
    rig.Reg(12, 0x81);
    rig.RunTo(11, 341);
    EXPECT_EQ(rig.vdp->h40, 0U);
    rig.Step();
    EXPECT_EQ(rig.vdp->h40, 1U);
    EXPECT_EQ(rig.vdp->hCount, 0U);
    EXPECT_EQ(rig.vdp->stepTable[373], 10);
    EXPECT_EQ(rig.vdp->stepTable[0], 8);
    rig.RunTo(11, 100);
    rig.Reg(12, 0);
    rig.RunTo(12, 421);
    EXPECT_EQ(rig.vdp->h40, 1U);
    rig.Step();
    EXPECT_EQ(rig.vdp->h40, 0U);
}

TEST(MdVdpTiming, VInterruptComesOneLineBelowThePicture) {
    for (const Width& width : kWidths) {
        const uint32_t step = width.h40 ? 52 : 0;
        const uint32_t vStep = width.h40 ? 330 : 266;
        MdVdpRig rig;
        rig.Setup(width.h40);
        rig.Reg(1, 0x64);
        rig.vdp->status = 0; // as a machine acknowledges the last one
        rig.vdp->vPending = 0;
        rig.RunTo(223, vStep);
        EXPECT_EQ(rig.vdp->vCount, 223U);
        EXPECT_EQ(rig.vdp->status & kMdVdpVBlank, 0);
        rig.Step();
        EXPECT_EQ(rig.vdp->vCount, 224U);
        EXPECT_NE(rig.vdp->status & kMdVdpVBlank, 0);
        EXPECT_EQ(rig.vdp->status & kMdVdpVInterruptOccurred, 0);
        rig.RunTo(224, width.lineEnd + 1);
        EXPECT_NE(rig.vdp->status & kMdVdpVInterruptOccurred, 0);
        EXPECT_EQ(rig.vdp->vPending, 0U);
        rig.irqs.clear();
        rig.RunTo(224, step);
        EXPECT_EQ(rig.zInt, 0U);
        rig.Step();
        EXPECT_EQ(rig.vdp->vPending, 1U);
        EXPECT_EQ(rig.zInt, 1U);
        EXPECT_EQ(rig.irqs, (std::vector<IrqLog>{
                                {step + 1, 224, 6, 1}
        }));
        rig.RunTo(225, step);
        EXPECT_EQ(rig.zInt, 1U);
        rig.Step();
        EXPECT_EQ(rig.zInt, 0U);
        EXPECT_EQ(rig.irqs.size(), 1U);
        rig.RunTo(261, vStep);
        EXPECT_NE(rig.vdp->status & kMdVdpVBlank, 0);
        rig.Step();
        EXPECT_EQ(rig.vdp->vCount, 0U);
        EXPECT_EQ(rig.vdp->status & kMdVdpVBlank, 0);
    }
}

// The blank and its interrupt follow the height of the picture, and the blank ends with the frame.
TEST(MdVdpTiming, VBlankFollowsHeightAndStandard) {
    struct Row {
        uint32_t tvMode;
        uint32_t reg1;
        uint32_t height;
        uint32_t lines;
    };
    for (const Width& width : kWidths) {
        for (const Row& row : {
                 Row{kMdVdp60Hz, 0x6C, 240, 262},
                 Row{kMdVdp50Hz, 0x64, 224, 313},
                 Row{kMdVdp50Hz, 0x6C, 240, 313}
        }) {
            const uint32_t step = width.h40 ? 52 : 0;
            const uint32_t vStep = width.h40 ? 330 : 266;
            MdVdpRig rig(row.tvMode);
            rig.Setup(width.h40);
            rig.Reg(1, row.reg1);
            rig.Finish();
            rig.vdp->status = 0;
            rig.vdp->vPending = 0;
            rig.RunTo(row.height - 1, vStep);
            EXPECT_EQ(rig.vdp->status & kMdVdpVBlank, 0);
            rig.Step();
            EXPECT_NE(rig.vdp->status & kMdVdpVBlank, 0);
            rig.irqs.clear();
            rig.RunTo(row.height, step);
            EXPECT_EQ(rig.vdp->vPending, 0U);
            EXPECT_EQ(rig.zInt, 0U);
            rig.Step();
            EXPECT_EQ(rig.vdp->vPending, 1U);
            EXPECT_EQ(rig.zInt, 1U);
            EXPECT_EQ(rig.irqs, (std::vector<IrqLog>{
                                    {step + 1, row.height, 6, 1}
            }));
            rig.RunTo(row.height + 1, step + 1);
            EXPECT_EQ(rig.zInt, 0U);
            rig.RunTo(row.lines - 1, vStep);
            EXPECT_NE(rig.vdp->status & kMdVdpVBlank, 0);
            rig.Step();
            EXPECT_EQ(rig.vdp->vCount, 0U);
            EXPECT_EQ(rig.vdp->status & kMdVdpVBlank, 0);
            EXPECT_EQ(rig.irqs.size(), 1U);
        }
    }
}

TEST(MdVdpTiming, VInterruptStaysPendingWhenItIsOff) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.irqs.clear();
    rig.RunTo(226, 0);
    EXPECT_EQ(rig.vdp->vPending, 1U);
    EXPECT_TRUE(rig.irqs.empty());
    EXPECT_NE(rig.vdp->status & kMdVdpVInterruptOccurred, 0);
    rig.Reg(1, 0x64);
    ASSERT_FALSE(rig.irqs.empty());
    EXPECT_EQ(rig.irqs.back().irq, 6U);
    EXPECT_EQ(rig.irqs.back().state, 1U);
}

TEST(MdVdpTiming, HBlankLiesBetweenItsSteps) {
    for (const Width& width : kWidths) {
        MdVdpRig rig;
        rig.Setup(width.h40);
        rig.RunTo(3, 0);
        for (uint32_t step = 0; step < width.steps; ++step) {
            rig.Step();
            const bool blank = step < (width.h40 ? 16U : 10U) || step >= (width.h40 ? 366U : 295U);
            ASSERT_EQ((rig.vdp->status & kMdVdpHBlank) != 0, blank) << step;
        }
    }
}

// From the first line on, an H interrupt comes after register 10's number of lines plus one.
TEST(MdVdpTiming, HInterruptCountsLines) {
    for (const Width& width : kWidths) {
        for (const uint32_t every : {0U, 1U, 5U, 100U, 223U, 224U, 255U}) {
            MdVdpRig rig;
            rig.Setup(width.h40);
            rig.Reg(10, every);
            rig.Reg(0, 0x10);
            rig.Finish(); // the V blank takes the new number
            rig.irqs.clear();
            rig.Finish();
            std::vector<IrqLog> expected;
            // vCount is a line ahead of the line here: it is 1 on line 0, 224 on line 223 and 0 on 261.
            const uint32_t step = width.h40 ? 367 : 296;
            for (uint32_t v = every; v <= 224; v += every + 1) {
                const uint32_t line = v == 0 ? 261 : v - 1;
                expected.push_back({step, line, 4, 1});
            }
            if (every == 0) { // line 261 is this frame's last
                std::rotate(expected.begin(), expected.begin() + 1, expected.end());
            }
            EXPECT_EQ(rig.irqs, expected) << every;
        }
    }
}

TEST(MdVdpTiming, HInterruptWaitsWhenItIsOff) {
    MdVdpRig rig;
    rig.Setup(false);
    rig.Reg(10, 3);
    rig.Finish();
    rig.irqs.clear();
    rig.RunTo(20, 0);
    EXPECT_EQ(rig.vdp->hPending, 1U);
    EXPECT_TRUE(rig.irqs.empty());
}

TEST(MdVdpTiming, HeightAndFieldChangeAtTheEndOfAFrame) {
    MdVdpRig rig;
    rig.Setup(false);
    const uint32_t field = rig.vdp->field;
    rig.RunTo(100, 0);
    rig.Reg(1, 0x4C);
    rig.RunTo(261, 319);
    EXPECT_EQ(rig.vdp->activeHeight, 224U);
    EXPECT_EQ(rig.vdp->field, field);
    rig.Step();
    EXPECT_EQ(rig.vdp->activeHeight, 240U);
    EXPECT_EQ(rig.vdp->field, field ^ 1);
}

namespace {

// Which rows of the picture a frame writes; every row stays the colour it was otherwise.
std::vector<uint32_t> UnwrittenRows(MdVdpRig& rig, uint32_t rowLength, uint32_t rows) {
    std::fill(rig.pixels.begin(), rig.pixels.end(), 1U);
    rig.Finish();
    std::vector<uint32_t> unwritten;
    for (uint32_t row = 0; row < rows; ++row) {
        for (uint32_t x = 0; x < rowLength; ++x) {
            if (rig.pixels[row * rowLength + x] == 1) {
                unwritten.push_back(row);
                break;
            }
        }
    }
    for (size_t i = size_t{rows} * rowLength; i < rig.pixels.size(); ++i) {
        EXPECT_EQ(rig.pixels[i], 1U) << i;
    }
    return unwritten;
}

} // namespace

TEST(MdVdpPicture, HasItsBordersAboveAndBelow) {
    struct Row {
        uint32_t tvMode;
        uint32_t reg1;
        uint32_t rows;
    };
    for (const Width& width : kWidths) {
        for (const Row& row : {
                 Row{kMdVdp60Hz, 0x44, 240},
                 Row{kMdVdp60Hz, 0x4C, 240},
                 Row{kMdVdp50Hz, 0x44, 256},
                 Row{kMdVdp50Hz, 0x4C, 256}
        }) {
            MdVdpRig rig(row.tvMode);
            rig.Setup(width.h40);
            rig.Reg(1, row.reg1);
            rig.Finish();
            rig.Reg(1, row.reg1);
            rig.Reg(7, 0x15);
            rig.Finish();
            EXPECT_EQ(UnwrittenRows(rig, width.dots, row.rows), std::vector<uint32_t>{});
            EXPECT_EQ(rig.pixels[0], EntryPixel(0x15));
            EXPECT_EQ(rig.pixels[row.rows * width.dots - 1], EntryPixel(0x15));
        }
    }
}

// The border above is drawn in the last lines of the frame, the one below after the picture.
TEST(MdVdpPicture, BorderRowsComeFromTheirLines) {
    for (const uint32_t tvMode : {kMdVdp60Hz, kMdVdp50Hz}) {
        MdVdpRig rig(tvMode);
        rig.Setup(true);
        const uint32_t border = tvMode == kMdVdp60Hz ? 8 : 16;
        const uint32_t lines = tvMode == kMdVdp60Hz ? 262 : 313;
        const auto offset = [&rig](uint32_t line) {
            rig.RunTo(line, 77);
            return rig.vdp->rowOffset;
        };
        EXPECT_EQ(offset(0), border * 320);
        EXPECT_EQ(offset(223), (border + 223) * 320);
        EXPECT_EQ(offset(223 + border), (2 * border + 223) * 320);
        EXPECT_EQ(offset(224 + border), kMdVdpNoRow);
        EXPECT_EQ(offset(lines - border - 1), kMdVdpNoRow);
        EXPECT_EQ(offset(lines - border), 0U);
        EXPECT_EQ(offset(lines - 1), (border - 1) * 320);
    }
}

TEST(MdVdpPicture, IsNotNeeded) {
    MdVdpRig rig;
    rig.Setup(true);
    MdVdpBeginFrame(*rig.vdp, nullptr);
    std::fill(rig.pixels.begin(), rig.pixels.end(), 1U);
    for (uint32_t steps = 262 * 422; steps != 0; --steps) {
        rig.Step();
    }
    EXPECT_EQ(rig.vdp->frameDone, 1U);
    EXPECT_EQ(std::count(rig.pixels.begin(), rig.pixels.end(), 1U),
              static_cast<std::ptrdiff_t>(rig.pixels.size()));
}

TEST(MdVdpPicture, RecordTellsSizes) {
    struct Row {
        uint32_t tvMode, reg1, reg12;
        uint32_t width, height, visibleHeight, visibleY;
    };
    // 240 doubled lines are cut off where the picture ends, at 464 rows.
    const Row rows[] = {
        {kMdVdp60Hz, 0x44, 0x00, 256, 240, 224, 8 },
        {kMdVdp60Hz, 0x44, 0x81, 320, 240, 224, 8 },
        {kMdVdp60Hz, 0x4C, 0x81, 320, 240, 240, 0 },
        {kMdVdp50Hz, 0x44, 0x81, 320, 256, 224, 16},
        {kMdVdp50Hz, 0x4C, 0x00, 256, 256, 240, 8 },
        {kMdVdp60Hz, 0x44, 0x87, 320, 464, 448, 8 },
        {kMdVdp50Hz, 0x44, 0x06, 256, 464, 448, 8 },
        {kMdVdp50Hz, 0x4C, 0x87, 320, 464, 456, 8 },
    };
    for (const Row& row : rows) {
        MdVdpRig rig(row.tvMode);
        rig.Reg(1, row.reg1);
        rig.Finish();
        rig.Reg(12, row.reg12);
        rig.Finish();
        EMU_VIDEO_FRAME video{};
        video.visibleX = 9;
        MdVdpFinishFrame(*rig.vdp, &video);
        EXPECT_EQ(video.width, row.width);
        EXPECT_EQ(video.visibleWidth, row.width);
        EXPECT_EQ(video.height, row.height);
        EXPECT_EQ(video.visibleHeight, row.visibleHeight);
        EXPECT_EQ(video.visibleX, 0U);
        EXPECT_EQ(video.visibleY, row.visibleY);
        EXPECT_EQ(video.aspect, 1.33F);
        EXPECT_EQ(video.visibleAspect, 1.4F);
    }
}

// Both widths: the dot that goes out with its step has what was written just before.
TEST(MdVdpPicture, BackdropOfABlankedLineChangesFromItsDotOn) {
    for (const Width& width : kWidths) {
        MdVdpRig rig;
        rig.Setup(width.h40);
        rig.Reg(1, 0x04);
        rig.Reg(7, 3);
        rig.RunTo(50, width.first + 100);
        rig.Reg(7, 4);
        rig.RunTo(51, width.first);
        EXPECT_EQ(rig.At(0, 50), EntryPixel(3));
        EXPECT_EQ(rig.At(99, 50), EntryPixel(3));
        EXPECT_EQ(rig.At(100, 50), EntryPixel(4));
        EXPECT_EQ(rig.At(width.dots - 1, 50), EntryPixel(4));
    }
}

TEST(MdVdpPicture, LinesOfDoubleInterlaceGoToTheirFieldWithDarkOnesBetween) {
    for (const uint32_t field : {0U, 1U}) {
        MdVdpRig rig;
        rig.Setup(true);
        rig.Reg(12, 0x87);
        rig.Reg(7, 5);
        std::fill_n(rig.vdp->vram.begin(), 64, uint8_t{0}); // tile 0 is empty
        rig.Finish();
        if (rig.vdp->field != field) {
            rig.Finish();
        }
        std::fill(rig.pixels.begin(), rig.pixels.end(), 1U);
        rig.RunTo(20, 75);
        rig.RunTo(20, 77);
        // Line 20 is rows 48 and 49 of the picture with its 8 rows of border.
        EXPECT_EQ(rig.vdp->rowOffset, (48 + field) * 320);
        const uint32_t dark = (48 - field) * 320;
        EXPECT_EQ(rig.pixels[dark + 1], 0x20202020U);
        EXPECT_EQ(rig.pixels[dark + 319], 0x20202020U);
        EXPECT_EQ(rig.pixels[dark + 320 + (field == 0 ? 0 : 320) + 5], 1U);
        rig.RunTo(20, 398 - 1);
        EXPECT_EQ(rig.pixels[(48 + field) * 320 + 319], EntryPixel(5));
    }
}

namespace {

// A frame of double interlace in the given field, over a picture of ones, up to the given line's first dot.
void RunInterlaced(MdVdpRig& rig, uint32_t reg12, uint32_t field, uint32_t line) {
    rig.Setup((reg12 & 1) != 0);
    rig.Reg(12, reg12);
    rig.Reg(7, 5);
    std::fill_n(rig.vdp->vram.begin(), 64, uint8_t{0}); // tile 0 is empty
    rig.Finish();
    if (rig.vdp->field != field) {
        rig.Finish();
    }
    std::fill(rig.pixels.begin(), rig.pixels.end(), 1U);
    rig.RunTo(line, (reg12 & 1) != 0 ? 77 : 63);
}

} // namespace

// The border of 8 rows counts doubled lines: four lines at the end of the frame are above the picture, four
// after it below.
TEST(MdVdpPicture, BorderRowsOfDoubleInterlaceAreFourLines) {
    struct Row {
        uint32_t line;
        uint32_t row; // of field 0
    };
    for (const uint32_t field : {0U, 1U}) {
        for (const Row& row : {
                 Row{0,   8  },
                 Row{223, 454},
                 Row{224, 456},
                 Row{227, 462},
                 Row{258, 0  },
                 Row{261, 6  }
        }) {
            MdVdpRig rig;
            RunInterlaced(rig, 0x87, field, row.line);
            EXPECT_EQ(rig.vdp->rowOffset, (row.row + field) * 320) << row.line;
        }
        for (const uint32_t line : {228U, 257U}) {
            MdVdpRig rig;
            RunInterlaced(rig, 0x87, field, line);
            EXPECT_EQ(rig.vdp->rowOffset, kMdVdpNoRow) << line;
        }
    }
}

// The odd field has no row above its first; the one of the even field is its own, and drawn over.
TEST(MdVdpPicture, FirstRowOfDoubleInterlaceDarkensNothingAboveThePicture) {
    for (const uint32_t field : {0U, 1U}) {
        MdVdpRig rig;
        RunInterlaced(rig, 0x87, field, 257);
        std::fill(rig.pixels.begin(), rig.pixels.end(), 1U);
        rig.RunTo(258, 397);
        const size_t drawn = size_t{field} * 320;
        for (size_t i = 0; i < rig.pixels.size(); ++i) {
            const bool inRow = i >= drawn && i < drawn + 320;
            ASSERT_EQ(rig.pixels[i], inRow ? EntryPixel(5) : 1U) << field << " " << i;
        }
    }
}

// 32 cells are drawn as without interlace, in rows of the same eight lines of border, and nothing is dark.
TEST(MdVdpPicture, DoubleInterlaceOf32CellsHasSingleRows) {
    struct Row {
        uint32_t line;
        uint32_t row;
    };
    for (const uint32_t field : {0U, 1U}) {
        for (const Row& row : {
                 Row{0,   8  },
                 Row{20,  28 },
                 Row{231, 239},
                 Row{254, 0  },
                 Row{261, 7  }
        }) {
            MdVdpRig rig;
            RunInterlaced(rig, 0x06, field, row.line);
            EXPECT_EQ(rig.vdp->rowOffset, row.row * 256) << row.line;
            EXPECT_EQ(std::count(rig.pixels.begin(), rig.pixels.end(), 0x20202020U), 0);
        }
        MdVdpRig rig;
        RunInterlaced(rig, 0x06, field, 232);
        EXPECT_EQ(rig.vdp->rowOffset, kMdVdpNoRow);
    }
}
