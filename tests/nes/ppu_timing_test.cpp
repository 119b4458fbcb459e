// Lines, frames, vblank with its NMI, and memory accesses, dot by dot.
#include "nes/ppu_rig.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <vector>

TEST(PpuTiming, AFrameHas262LinesOf341Dots) {
    PpuRig rig;
    rig.Finish();
    std::map<int32_t, uint32_t> dots;
    for (uint32_t i = 0; i < 262 * 341; ++i) {
        rig.Dot();
        ++dots[rig.ppu->line];
    }
    ASSERT_EQ(dots.size(), 262U);
    EXPECT_EQ(dots.begin()->first, -1);
    EXPECT_EQ(dots.rbegin()->first, 260);
    for (const auto& [line, count] : dots) {
        EXPECT_EQ(count, 341U) << line;
    }
}

TEST(PpuTiming, AFrameEndsAtDot256OfThePreRenderLine) {
    PpuRig rig;
    for (uint32_t frame = 0; frame < 3; ++frame) {
        rig.Finish();
        EXPECT_EQ(rig.ppu->line, -1);
        EXPECT_EQ(rig.ppu->dot, 256U);
    }
}

TEST(PpuTiming, EverySecondFrameIsADotShorterWhileRendering) {
    for (const uint32_t mask : {0x00U, 0x08U, 0x10U, 0x18U, 0xE7U}) {
        PpuRig rig;
        rig.Write(1, mask);
        rig.Finish();
        const uint32_t first = rig.Finish();
        const uint32_t second = rig.Finish();
        const bool shown = (mask & 0x18) != 0;
        EXPECT_EQ(first + second, 2U * 89342 - (shown ? 1 : 0)) << mask;
        EXPECT_EQ(rig.Finish(), first) << mask;
        EXPECT_EQ(rig.Finish(), second) << mask;
        EXPECT_EQ(first != second, shown) << mask;
    }
}

TEST(PpuTiming, TheShortLineIsThePreRenderLine) {
    PpuRig rig;
    rig.Write(1, 0x18);
    rig.Finish();
    std::map<int32_t, uint32_t> shortLines;
    for (uint32_t i = 0; i < 4 * 89342; ++i) {
        const int32_t line = rig.ppu->line;
        const uint32_t last = rig.ppu->dot;
        rig.Dot();
        if (rig.ppu->dot == 0 && last != 340) {
            EXPECT_EQ(last, 339U);
            ++shortLines[line];
        }
    }
    EXPECT_EQ(shortLines, (std::map<int32_t, uint32_t>{
                              {-1, 2}
    }));
}

TEST(PpuTiming, WhetherTheLineIsShortIsDecidedAtItsDot256) {
    for (const uint32_t dot : {255U, 256U}) {
        PpuRig rig;
        uint32_t shortLines = 0;
        for (uint32_t frame = 0; frame < 2; ++frame) {
            rig.Write(1, 0);
            rig.RunTo(-1, dot);
            rig.Write(1, 0x08);
            rig.RunTo(-1, 339);
            rig.Dot();
            shortLines += rig.ppu->dot == 0 ? 1U : 0U;
        }
        EXPECT_EQ(shortLines, dot == 255 ? 1U : 0U);
    }
}

TEST(PpuTiming, ALineThatIsShortAlreadyIsMadeWhole) {
    PpuRig rig;
    rig.Write(1, 0x18);
    rig.RunTo(-1, 100);
    if (!rig.ppu->oddFrame) {
        rig.RunTo(-1, 100);
    }
    rig.ppu->lineLength = kPpuShortLineDots;
    rig.RunTo(-1, 256);
    EXPECT_EQ(rig.ppu->lineLength, kPpuLineDots);
}

TEST(PpuTiming, VblankFlagIsSetFromLine241ToDot1OfThePreRenderLine) {
    PpuRig rig;
    rig.RunTo(-1, 1);
    EXPECT_EQ(rig.Status(), 0);
    rig.RunTo(240, 340);
    EXPECT_EQ(rig.Status(), 0);
    rig.Dot();
    EXPECT_EQ(rig.ppu->line, 241);
    EXPECT_EQ(rig.Status(), 0x80);
    rig.RunTo(-1, 0);
    EXPECT_EQ(rig.Status(), 0x80);
    rig.Dot();
    EXPECT_EQ(rig.Status(), 0);
}

TEST(PpuTiming, RenderingAndVisibleFollowTheLines) {
    PpuRig rig;
    rig.Write(1, 0x08);
    EXPECT_FALSE(rig.ppu->rendering); // line 241
    for (uint32_t i = 0; i < 2 * 89342; ++i) {
        rig.Dot();
        ASSERT_EQ(rig.ppu->rendering, rig.ppu->line < 240) << rig.ppu->line;
        ASSERT_EQ(rig.ppu->visible, rig.ppu->line >= 0 && rig.ppu->line < 240) << rig.ppu->line;
    }
    rig.RunTo(100, 100);
    rig.Write(1, 0x07);
    EXPECT_FALSE(rig.ppu->rendering);
    rig.Write(1, 0x10);
    EXPECT_TRUE(rig.ppu->rendering);
    rig.RunTo(240, 5);
    rig.Write(1, 0x18);
    EXPECT_FALSE(rig.ppu->rendering);
}

TEST(PpuTiming, OamAddressIsClearedAsVblankBegins) {
    PpuRig rig;
    rig.RunTo(240, 0);
    rig.Write(3, 0x44);
    rig.RunTo(240, 340);
    EXPECT_EQ(rig.ppu->oamAddress, 0x44);
    rig.Dot();
    EXPECT_EQ(rig.ppu->oamAddress, 0);
}

TEST(PpuTiming, VblankRaisesTheNmiIfEnabled) {
    for (const uint32_t control : {0x00U, 0x7FU, 0x80U}) {
        PpuRig rig;
        rig.Write(0, control);
        rig.RunTo(240, 340);
        EXPECT_EQ(rig.nmi, 0U);
        rig.Dot();
        EXPECT_EQ(rig.nmi, control >> 7) << control;
    }
}

TEST(PpuTiming, StatusReadsAroundTheFlag) {
    struct Row {
        int32_t line;
        uint32_t dot;
        uint8_t seen;
        uint32_t nmiNow;
        uint8_t laterStatus; // ten dots into vblank
        uint32_t nmiLater;
    };
    const std::vector<Row> rows{
        {240, 340, 0x00, 0, 0x80, 1}, // too early to have an effect
        {241, 0,   0x00, 0, 0x00, 0}, // doesn't see the flag and clears it
        {241, 1,   0x80, 0, 0x00, 0}, // sees it and cancels the NMI
        {241, 2,   0x80, 0, 0x00, 0},
        {241, 3,   0x80, 1, 0x00, 1}, // the NMI can't be cancelled any more
        {241, 4,   0x80, 1, 0x00, 1},
    };
    for (const Row& row : rows) {
        PpuRig rig;
        rig.Write(0, 0x80);
        rig.Finish();
        rig.Write(2, 0x00); // clears the port's last value
        rig.RunTo(row.line, row.dot);
        EXPECT_EQ(rig.Read(2), row.seen) << row.dot;
        EXPECT_EQ(rig.nmi, row.nmiNow) << row.dot;
        rig.RunTo(241, 10);
        EXPECT_EQ(rig.Status(), row.laterStatus) << row.dot;
        EXPECT_EQ(rig.nmi, row.nmiLater) << row.dot;
    }
}

TEST(PpuTiming, AReadClearsTheFlagAndNothingElse) {
    PpuRig rig;
    rig.Finish();
    rig.RunTo(250, 0);
    rig.ppu->status |= 0x60;
    rig.Write(2, 0);
    EXPECT_EQ(rig.Read(2), 0xE0);
    rig.Write(2, 0);
    EXPECT_EQ(rig.Read(2), 0x60);
}

TEST(PpuTiming, EnablingTheNmiWhileTheFlagIsSetRaisesIt) {
    PpuRig rig;
    rig.Finish();
    rig.RunTo(245, 100);
    EXPECT_EQ(rig.nmi, 0U);
    rig.Write(0, 0x80);
    EXPECT_EQ(rig.nmi, 1U);
    rig.nmi = 0; // taken by the CPU
    rig.Write(0, 0x80);
    EXPECT_EQ(rig.nmi, 0U); // it was enabled before
    rig.Write(0, 0x00);
    rig.Write(0, 0x80);
    EXPECT_EQ(rig.nmi, 1U);
    rig.nmi = 0;
    (void)rig.Read(2);
    rig.Write(0, 0x00);
    rig.Write(0, 0x80);
    EXPECT_EQ(rig.nmi, 0U); // the flag is clear
}

TEST(PpuTiming, DisablingTheNmiClearsItInTheFirstThreeDots) {
    for (uint32_t dot = 0; dot < 6; ++dot) {
        PpuRig rig;
        rig.Write(0, 0x80);
        rig.Finish();
        rig.RunTo(241, dot);
        rig.Write(0, 0x00);
        EXPECT_EQ(rig.nmi, dot < 3 ? 0U : 1U) << dot;
    }
}

// Only line 241 has dots on which the NMI can be cancelled.
TEST(PpuTiming, FirstDotsOfLaterVblankLinesAreLikeAnyOthers) {
    for (const int32_t line : {242, 250, 260}) {
        for (uint32_t dot = 0; dot < 3; ++dot) {
            PpuRig rig;
            rig.Write(0, 0x80);
            rig.Finish();
            rig.RunTo(line, dot);
            rig.Write(0, 0x00);
            EXPECT_EQ(rig.nmi, 1U) << line << " " << dot;
            EXPECT_EQ(rig.Read(2), 0x80) << line << " " << dot;
            EXPECT_EQ(rig.nmi, 1U) << line << " " << dot;
            EXPECT_EQ(rig.Read(2), 0x00) << line << " " << dot;
        }
    }
}

TEST(PpuTiming, AWriteTakesThreeDots) {
    PpuRig rig;
    rig.RunTo(250, 0);
    rig.Address(0x2155);
    rig.watching = true;
    rig.Write(7, 0x99);
    for (uint32_t dot = 1; dot <= 3; ++dot) {
        EXPECT_EQ(rig.ppu->nametables[0][0x155], 0x00) << dot;
        rig.Dot();
    }
    EXPECT_EQ(rig.ppu->nametables[0][0x155], 0x99);
    rig.Dots(2);
    // The board sees the address of the access once, then the incremented address.
    EXPECT_EQ(rig.log, (std::vector<Watched>{
                           {250, 1, 0x2155},
                           {250, 4, 0x2156},
                           {250, 5, 0x2156}
    }));
}

TEST(PpuTiming, AReadTakesThreeDots) {
    PpuRig rig;
    rig.WriteMemory(0x1234, 0x42);
    rig.RunTo(250, 0);
    rig.Address(0x1234);
    rig.watching = true;
    (void)rig.Read(7);
    const uint8_t before = rig.ppu->readBuffer;
    ASSERT_NE(before, 0x42);
    rig.Dots(2);
    EXPECT_EQ(rig.ppu->readBuffer, before);
    rig.Dot();
    EXPECT_EQ(rig.ppu->readBuffer, 0x42);
    EXPECT_EQ(rig.ppu->ioState, 0);
    rig.Dot();
    EXPECT_EQ(rig.log, (std::vector<Watched>{
                           {250, 1, 0x1234},
                           {250, 4, 0x1235}
    }));
}

TEST(PpuTiming, PagesThatAreNotWritableKeepTheirBytes) {
    PpuRig rig;
    rig.pages.ppu[3].writable = 0;
    rig.WriteMemory(0x0C00, 0x55);
    rig.WriteMemory(0x0800, 0x55);
    EXPECT_EQ(rig.patterns[0x0C00], 0x00);
    EXPECT_EQ(rig.patterns[0x0800], 0x55);
}

TEST(PpuTiming, PagesWithoutDataReadAsAllOnes) {
    PpuRig rig;
    rig.pages.ppu[3].data = nullptr;
    rig.WriteMemory(0x0C00, 0x55);
    rig.Address(0x0C00);
    (void)rig.Read(7);
    rig.Dots(3);
    EXPECT_EQ(rig.ppu->readBuffer, 0xFF);
}

TEST(PpuTiming, BoardsCanAnswerAPageThemselves) {
    struct Answer {
        std::vector<uint16_t> read;
        std::vector<std::pair<uint16_t, uint8_t>> written;
    };
    PpuRig rig;
    Answer answer;
    rig.RunTo(250, 0);
    rig.pages.board = &answer;
    rig.pages.ppuAddressHook = nullptr;
    rig.pages.ppu[3].read = [](void* board, uint16_t address) {
        static_cast<Answer*>(board)->read.push_back(address);
        return uint8_t{0x3C};
    };
    rig.pages.ppu[3].write = [](void* board, uint16_t address, uint8_t value) {
        static_cast<Answer*>(board)->written.emplace_back(address, value);
    };
    rig.WriteMemory(0x0FD8, 0x11);
    rig.Address(0x0FE8);
    (void)rig.Read(7);
    rig.Dots(3);
    EXPECT_EQ(rig.ppu->readBuffer, 0x3C);
    EXPECT_EQ(answer.read, std::vector<uint16_t>{0x0FE8});
    EXPECT_EQ(answer.written, (std::vector<std::pair<uint16_t, uint8_t>>{
                                  {0x0FD8, 0x11}
    }));
}

TEST(PpuTiming, WithoutRenderingTheBoardSeesTheAddressOnEveryDot) {
    PpuRig rig;
    rig.RunTo(100, 0);
    rig.Address(0x3F05); // palette addresses too
    rig.watching = true;
    rig.Dots(341);
    ASSERT_EQ(rig.log.size(), 341U);
    for (uint32_t i = 0; i < 341; ++i) {
        EXPECT_EQ(rig.log[i].address, 0x3F05);
        EXPECT_EQ(rig.log[i].dot, (i + 1) % 341);
    }
}

TEST(PpuTiming, TheBoardSees14Bits) {
    PpuRig rig;
    rig.RunTo(250, 0);
    rig.Address(0x3FFF);
    (void)rig.Read(7);
    ASSERT_EQ(rig.ppu->vramAddress, 0x4000);
    rig.Dots(3);
    rig.watching = true;
    rig.Dot();
    EXPECT_EQ(rig.log.at(0).address, 0x0000);
}
