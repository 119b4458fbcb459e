// Exceptions, privilege, the two stacks, interrupts, STOP and RESET.
#include "megadrive/m68000_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kNop = 0x4E71;
constexpr uint32_t kStop = 0x4E72;
constexpr uint32_t kReset = 0x4E70;

void ExpectFrame(TEST_68000& rig, uint32_t status, uint32_t returnPc) {
    EXPECT_EQ(rig.A(7), kStack - 6);
    EXPECT_EQ(rig.Word(kStack - 6), status);
    EXPECT_EQ(rig.Long(kStack - 4), returnPc);
}

struct EXCEPTION {
    const char* name;
    uint32_t vector;
    uint32_t returnPc;
    uint32_t clocks; // of the instruction's own table byte
    std::vector<uint32_t> words;
};

const std::vector<EXCEPTION>& Exceptions() {
    static const std::vector<EXCEPTION> kExceptions{
        {"free pattern",      4,  kProgram,     0,   {0x4AFB}        },
        {"later processor's", 4,  kProgram,     0,   {0x4E74}        },
        {"ILLEGAL",           4,  kProgram,     4,   {0x4AFC}        },
        {"line A",            10, kProgram,     4,   {0xA123}        },
        {"line F",            11, kProgram,     4,   {0xF123}        },
        {"TRAP #0",           32, kProgram + 2, 4,   {0x4E40}        },
        {"TRAP #15",          47, kProgram + 2, 4,   {0x4E4F}        },
        {"DIVU #0,D0",        5,  kProgram + 4, 144, {0x80FC, 0}     },
        {"DIVS #0,D0",        5,  kProgram + 4, 162, {0x81FC, 0}     },
        {"CHK #-1,D0",        6,  kProgram + 4, 14,  {0x41BC, 0xFFFF}},
    };
    return kExceptions;
}

TEST(M68000Exception, EveryKindPushesItsAddressAndStatusAndTakesItsVector) {
    for (const EXCEPTION& kind : Exceptions()) {
        SCOPED_TRACE(kind.name);
        TEST_68000 rig{};
        for (uint32_t i = 0; i < kind.words.size(); ++i) {
            rig.SetWord(kProgram + 2 * i, kind.words[i]);
        }
        rig.cpu.prefetchAddr = 1;
        rig.SetStatus(0x2300);
        const uint32_t before = kind.vector == 6 ? 0x2304 : 0x2300; // CHK sets Z of D0 first
        EXPECT_EQ(rig.Tick(), kind.clocks);
        EXPECT_EQ(rig.cpu.pc, HandlerOf(kind.vector));
        ExpectFrame(rig, before, kind.returnPc);
        EXPECT_EQ(rig.cpu.intMask, 0x300U);
        EXPECT_EQ(rig.cpu.instrMode, 8U);
    }
}

TEST(M68000Exception, TrapvTakesItsVectorOnlyWhenVIsSet) {
    TEST_68000 rig{0x4E76, 0x4E76};
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.cpu.pc, kProgram + 2);
    rig.SetStatus(0x2702);
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.cpu.pc, HandlerOf(7));
    ExpectFrame(rig, 0x2702, kProgram + 4);
}

TEST(M68000Exception, ReadsItsVectorBeforeItPushesAddressAndStatus) {
    TEST_68000 rig{0x4E41};
    rig.Tick();
    EXPECT_EQ(rig.TakeLog(), "f 1002 0000; rl 84 00004210; wl 7FFC 00001002; ww 7FFA 2704; ");
}

TEST(M68000Exception, AVectorThatHoldsZeroFallsBackToTheUninitialisedOne) {
    struct ROW {
        uint32_t opcode;
        uint32_t vector;
        const char* bus;
    };
    for (const ROW& row : {
             ROW{0x4E41, 33,
                 "f 1002 0000; rl 84 00000000; rl 3C 000040F0; wl 7FFC 00001002; ww 7FFA 2700; "},
             ROW{0x4AFC, 4,
                 "f 1002 0000; rl 10 00000000; rl 3C 000040F0; wl 7FFC 00001000; ww 7FFA 2700; "},
             ROW{0xA000, 10,
                 "f 1002 0000; rl 28 00000000; rl 3C 000040F0; wl 7FFC 00001000; ww 7FFA "
                 "2700; "                                                                       }
    }) {
        TEST_68000 rig{row.opcode};
        rig.SetStatus(0x2700);
        rig.SetLong(row.vector * 4, 0);
        EXPECT_EQ(rig.Tick(), 4U);
        EXPECT_EQ(rig.cpu.pc, HandlerOf(15));
        EXPECT_EQ(rig.TakeLog(), row.bus);
    }
}

TEST(M68000Exception, FromUserStateItUsesTheSupervisorStackAndKeepsTheStatusAsItWas) {
    TEST_68000 rig{0x4E40};
    rig.EnterUserState();
    rig.SetStatus(0x0015);
    rig.Tick();
    ExpectFrame(rig, 0x0015, kProgram + 2);
    EXPECT_EQ(rig.cpu.s, 4U);
    EXPECT_EQ(rig.cpu.stackSlots[0], kUserStack);
}

TEST(M68000Exception, ClearsTheTraceBitAfterSavingTheStatus) {
    TEST_68000 rig{0x4E40};
    rig.SetStatus(0xA700);
    rig.Tick();
    ExpectFrame(rig, 0xA700, kProgram + 2);
    EXPECT_EQ(M68kStatus(rig.cpu), 0x2700U);
}

TEST(M68000Exception, PrivilegedInstructionsTrapInUserStateBeforeAnyEffect) {
    // To the status word, MOVE USP, RESET, RTE and STOP.
    constexpr std::array<uint32_t, 10> kPrivileged{0x007C, 0x027C, 0x0A7C, 0x46C0, 0x46DF,
                                                   0x4E60, 0x4E68, kReset, 0x4E73, kStop};
    for (const uint32_t opcode : kPrivileged) {
        SCOPED_TRACE(opcode);
        TEST_68000 rig{};
        rig.SetWord(kProgram, opcode);
        rig.SetWord(kProgram + 2, 0x2700);
        rig.cpu.prefetchAddr = 1;
        rig.EnterUserState();
        rig.A(0) = 0x12345678;
        rig.Tick();
        EXPECT_EQ(rig.cpu.pc, HandlerOf(8));
        ExpectFrame(rig, 0, kProgram);
        EXPECT_EQ(rig.A(0), 0x12345678U);
        EXPECT_EQ(rig.cpu.stackSlots[0], kUserStack);
        EXPECT_EQ(rig.cpu.stopped, 0U);
    }
}

TEST(M68000Exception, MoveFromStatusAndAllToTheConditionsAreFreeInUserState) {
    TEST_68000 rig{0x40C0, 0x44FC, 0x001F, 0x023C, 0x0011};
    rig.EnterUserState();
    rig.Tick();
    EXPECT_EQ(rig.D(0) & 0xFFFF, 0U);
    rig.Tick();
    EXPECT_EQ(M68kStatus(rig.cpu), 0x001FU);
    rig.Tick();
    EXPECT_EQ(M68kStatus(rig.cpu), 0x0011U);
}

TEST(M68000Exception, StatusHoldsOnlyImplementedBits) {
    TEST_68000 rig{0x46FC, 0xFFFF};
    EXPECT_EQ(rig.Tick(), 16U);
    EXPECT_EQ(M68kStatus(rig.cpu), 0xA71FU);
}

TEST(M68000Exception, LeavingSupervisorStateSwapsTheStackPointers) {
    TEST_68000 rig{0x4E60, 0x46FC, 0x0000, 0x40CF};
    rig.A(0) = kUserStack; // MOVE A0,USP
    rig.Tick();
    EXPECT_EQ(rig.A(7), kStack);
    rig.Tick();
    EXPECT_EQ(rig.A(7), kUserStack);
    EXPECT_EQ(rig.cpu.stackSlots[4], kStack);
    EXPECT_EQ(rig.cpu.s, 0U);
}

TEST(M68000Exception, RteToUserStatePullsBothFromTheSupervisorStack) {
    TEST_68000 rig{0x4E73};
    rig.cpu.stackSlots[0] = kUserStack;
    rig.A(7) = 0x7000;
    rig.SetWord(0x7000, 0x001F);
    rig.SetLong(0x7002, 0x00002000);
    EXPECT_EQ(rig.Tick(), 20U);
    EXPECT_EQ(rig.TakeLog(), "f 1002 0000; rw 7000 001F; rl 7002 00002000; ");
    EXPECT_EQ(rig.cpu.pc, 0x2000U);
    EXPECT_EQ(M68kStatus(rig.cpu), 0x001FU);
    EXPECT_EQ(rig.A(7), kUserStack);
    EXPECT_EQ(rig.cpu.stackSlots[4], 0x7006U);
}

TEST(M68000Exception, RtrRestoresTheConditionsAlone) {
    TEST_68000 rig{0x4E77};
    rig.A(7) = 0x7000;
    rig.SetWord(0x7000, 0x801F);
    rig.SetLong(0x7002, 0x00002000);
    rig.Tick();
    EXPECT_EQ(M68kStatus(rig.cpu), 0x271FU);
    EXPECT_EQ(rig.cpu.pc, 0x2000U);
    EXPECT_EQ(rig.A(7), 0x7006U);
}

TEST(M68000Exception, ResetLoadsStackAndProgramAndMasksAllInterrupts) {
    TEST_68000 rig{kNop};
    EXPECT_EQ(rig.cpu.pc, kProgram);
    EXPECT_EQ(rig.A(7), kStack);
    EXPECT_EQ(M68kStatus(rig.cpu) & 0xFF00, 0x2700U);
    EXPECT_EQ(rig.cpu.cpuType, 1U);
    EXPECT_EQ(rig.cpu.srMask, 0xA71FU);
    EXPECT_EQ(rig.cpu.prefetchAddr, kProgram);
    EXPECT_EQ(rig.cpu.prefetchData, kNop);
    EXPECT_EQ(rig.resetLog, "f 0 0000; f 2 8000; f 4 0000; f 6 1000; f 8 0000; f 1000 4E71; ");
}

TEST(M68000Exception, ResetClearsStopLinesAndAPositiveCounterAndParksTheStack) {
    TEST_68000 rig{kNop};
    rig.EnterUserState();
    rig.cpu.stopped = 1;
    rig.cpu.cyclesLeft = 7;
    rig.cpu.vbr = 0x100;
    M68kSetIrqLine(rig.cpu, 4, 1);
    M68kReset(rig.cpu);
    EXPECT_EQ(rig.cpu.stopped, 0U);
    EXPECT_EQ(rig.cpu.cyclesLeft, 0);
    EXPECT_EQ(rig.cpu.vbr, 0U);
    EXPECT_EQ(rig.cpu.irqLines, 0U);
    EXPECT_EQ(rig.cpu.intLevel, 0U);
    EXPECT_EQ(rig.cpu.stackSlots[0], kUserStack);
    rig.cpu.cyclesLeft = -7;
    M68kReset(rig.cpu);
    EXPECT_EQ(rig.cpu.cyclesLeft, -7);
}

TEST(M68000Exception, ResetInstructionCostsNothingAndCallsTheSecondHook) {
    TEST_68000 rig{kReset, kReset};
    EXPECT_EQ(rig.Tick(), 0U);
    EXPECT_EQ(rig.cpu.pc, kProgram + 2);
    rig.cpu.events[1] = [](void* owner) { static_cast<TEST_68000*>(owner)->answer = 1234; };
    EXPECT_EQ(rig.Tick(), 0U);
    EXPECT_EQ(rig.answer, 1234U);
}

TEST(M68000Exception, StopEndsOnlyWhenStoppedIsCleared) {
    TEST_68000 rig{kStop, 0x2000, kNop};
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(M68kStatus(rig.cpu), 0x2000U);
    for (uint32_t line = 1; line < 8; ++line) {
        M68kSetIrqLine(rig.cpu, line, 1);
        EXPECT_EQ(rig.Tick(), 4U);
    }
    rig.TakeLog();
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.TakeLog(), "");
    EXPECT_EQ(rig.cpu.pc, kProgram + 4);
    EXPECT_TRUE(rig.acknowledged.empty());
    rig.cpu.stopped = 0;
    EXPECT_EQ(rig.Tick(), 44U);
    EXPECT_EQ(rig.acknowledged, std::vector<uint32_t>{7});
}

TEST(M68000Exception, HeldOffTheBusItTakesALineAfterwards) {
    TEST_68000 rig{kNop, kNop};
    rig.SetStatus(0x2000);
    rig.cpu.stopped = 1;
    M68kSetIrqLine(rig.cpu, 6, 1);
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.cpu.pc, kProgram);
    rig.cpu.stopped = 0;
    EXPECT_EQ(rig.Tick(), 44U);
    EXPECT_EQ(rig.cpu.pc, HandlerOf(30));
}

TEST(M68000Interrupt, TakesTheAutovectorAndRaisesTheMask) {
    for (uint32_t level = 1; level < 7; ++level) {
        TEST_68000 rig{kNop};
        rig.SetStatus(0x201F);
        M68kSetIrqLine(rig.cpu, level, 1);
        EXPECT_EQ(rig.cpu.intLevel, level << 8);
        EXPECT_EQ(rig.Tick(), 44U);
        EXPECT_EQ(rig.acknowledged, std::vector<uint32_t>{level});
        EXPECT_EQ(rig.cpu.pc, HandlerOf(24 + level));
        EXPECT_EQ(rig.cpu.intMask, level << 8);
        ExpectFrame(rig, 0x201F, kProgram);
    }
}

TEST(M68000Interrupt, WaitsUntilTheMaskIsBelowItsLevel) {
    TEST_68000 rig{kNop, 0x46FC, 0x2300, kNop};
    rig.SetStatus(0x2400);
    M68kSetIrqLine(rig.cpu, 4, 1);
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.Tick(), 16U);
    EXPECT_EQ(rig.Tick(), 44U);
    EXPECT_EQ(rig.cpu.pc, HandlerOf(28));
}

TEST(M68000Interrupt, HighestRaisedLineWinsAndLineZeroIsNeverLookedAt) {
    TEST_68000 rig{kNop};
    M68kSetIrqLine(rig.cpu, 0, 1);
    EXPECT_EQ(rig.cpu.irqLines, 1U);
    EXPECT_EQ(rig.cpu.intLevel, 0U);
    M68kSetIrqLine(rig.cpu, 2, 1);
    M68kSetIrqLine(rig.cpu, 6, 1);
    M68kSetIrqLine(rig.cpu, 4, 1);
    EXPECT_EQ(rig.cpu.intLevel, 0x600U);
    M68kSetIrqLine(rig.cpu, 6, 2); // anything but 1 lowers
    EXPECT_EQ(rig.cpu.intLevel, 0x400U);
    M68kSetIrqLine(rig.cpu, 4, 0);
    M68kSetIrqLine(rig.cpu, 2, 0);
    EXPECT_EQ(rig.cpu.intLevel, 0U);
}

TEST(M68000Interrupt, VectorsComeFromTheAcknowledgement) {
    struct ROW {
        uint32_t answer;
        uint32_t vector;
        uint32_t clocks;
    };
    for (const ROW& row : {
             ROW{kM68kSpurious, 24,  44},
             ROW{64,            64,  4 },
             ROW{255,           255, 4 }
    }) {
        TEST_68000 rig{kNop};
        rig.SetStatus(0x2000);
        rig.answer = row.answer;
        M68kSetIrqLine(rig.cpu, 5, 1);
        EXPECT_EQ(rig.Tick(), row.clocks);
        EXPECT_EQ(rig.cpu.pc, HandlerOf(row.vector));
    }
}

TEST(M68000Interrupt, AnAnswerAbove255DropsItForOneClockAndItIsAskedAgain) {
    for (const uint32_t answer : {256U, 0x12345U, 0xFFFFFFFDU}) {
        TEST_68000 rig{kNop};
        rig.SetStatus(0x2000);
        rig.answer = answer;
        M68kSetIrqLine(rig.cpu, 5, 1);
        const std::array<uint32_t, 16> before = rig.cpu.regs;
        EXPECT_EQ(rig.Tick(), 1U);
        EXPECT_EQ(rig.Tick(), 1U);
        EXPECT_EQ(rig.cpu.regs, before);
        EXPECT_EQ(rig.cpu.pc, kProgram);
        EXPECT_EQ(rig.cpu.intLevel, 0x500U);
        EXPECT_EQ(M68kStatus(rig.cpu), 0x2000U);
        EXPECT_EQ(rig.TakeLog(), "");
        EXPECT_EQ(rig.acknowledged, (std::vector<uint32_t>{5, 5}));
    }
}

TEST(M68000Interrupt, AVectorThatHoldsZeroFallsBackToTheUninitialisedOne) {
    TEST_68000 rig{kNop};
    rig.SetStatus(0x2000);
    rig.SetLong(30 * 4, 0);
    M68kSetIrqLine(rig.cpu, 6, 1);
    EXPECT_EQ(rig.Tick(), 44U);
    EXPECT_EQ(rig.cpu.pc, HandlerOf(15));
    EXPECT_EQ(rig.TakeLog(), "rl 78 00000000; rl 3C 000040F0; wl 7FFC 00001000; ww 7FFA 2000; ");
}

TEST(M68000Interrupt, LineSevenIsAnEdgeThatNoMaskHolds) {
    TEST_68000 rig{kNop, kNop, kNop, kNop};
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.cpu.nmiPending, 1U);
    EXPECT_EQ(rig.Tick(), 44U); // although the mask is 7
    EXPECT_EQ(rig.cpu.nmiPending, 0U);
    EXPECT_EQ(rig.cpu.intMask, 0x700U);
    EXPECT_EQ(rig.cpu.pc, HandlerOf(31));
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.cpu.nmiPending, 0U);
    M68kSetIrqLine(rig.cpu, 7, 0);
    EXPECT_EQ(rig.cpu.nmiPending, 0U);
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.cpu.nmiPending, 1U);
}

// Before the interrupt is taken: the first rise sets nmiPending, and a second one adds nothing.
TEST(M68000Interrupt, LineSevenRaisedTwiceIsTakenOnce) {
    TEST_68000 rig{kNop, kNop};
    rig.SetWord(HandlerOf(31), kNop);
    M68kSetIrqLine(rig.cpu, 7, 1);
    M68kSetIrqLine(rig.cpu, 7, 1);
    M68kSetIrqLine(rig.cpu, 7, 0);
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.cpu.nmiPending, 1U);
    EXPECT_EQ(rig.Tick(), 44U);
    EXPECT_EQ(rig.Tick(), 4U); // the handler's first instruction, not the interrupt again
    EXPECT_EQ(rig.cpu.pc, HandlerOf(31) + 2);
    EXPECT_EQ(rig.acknowledged, (std::vector<uint32_t>{7}));
}

// The acknowledgement clears nmiPending, so a dropped level 7 isn't requested again. The line alone, still up,
// doesn't pass a mask of 7.
TEST(M68000Interrupt, ADroppedLevelSevenIsNotAskedAgain) {
    TEST_68000 rig{kNop, kNop};
    rig.answer = 256;
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.Tick(), 1U);
    EXPECT_EQ(rig.cpu.nmiPending, 0U);
    EXPECT_EQ(rig.cpu.pc, kProgram);
    EXPECT_EQ(rig.A(7), kStack);
    EXPECT_EQ(rig.Tick(), 4U);
    EXPECT_EQ(rig.cpu.pc, kProgram + 2);
    EXPECT_EQ(rig.acknowledged, (std::vector<uint32_t>{7}));
}

// A mask below 7 lets the line itself through, with nmiPending or without.
TEST(M68000Interrupt, ADroppedLevelSevenIsAskedAgainByItsLineUnderALowerMask) {
    TEST_68000 rig{kNop};
    rig.answer = 256;
    rig.SetStatus(0x2600);
    M68kSetIrqLine(rig.cpu, 7, 1);
    EXPECT_EQ(rig.Tick(), 1U);
    EXPECT_EQ(rig.Tick(), 1U);
    EXPECT_EQ(rig.acknowledged, (std::vector<uint32_t>{7, 7}));
}

TEST(M68000Interrupt, FromUserStateRteReturnsToIt) {
    TEST_68000 rig{kNop};
    rig.SetWord(HandlerOf(28), 0x4E73);
    rig.EnterUserState();
    M68kSetIrqLine(rig.cpu, 4, 1);
    rig.Tick();
    EXPECT_EQ(rig.A(7), kStack - 6);
    M68kSetIrqLine(rig.cpu, 4, 0);
    rig.Tick();
    EXPECT_EQ(rig.cpu.pc, kProgram);
    EXPECT_EQ(rig.A(7), kUserStack);
    EXPECT_EQ(M68kStatus(rig.cpu), 0U);
}

} // namespace
