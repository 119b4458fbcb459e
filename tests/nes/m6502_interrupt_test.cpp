// When an interrupt is taken. Every expectation follows from two rules: the lines are sampled at the start of a
// cycle, before the devices run, and the sample counts in the first cycle of an instruction only. A sequence
// has seven cycles and reads its vector in the sixth and seventh.
#include "nes/m6502_rig.h"
#include "nes/nes_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr uint32_t kNever = 99;
constexpr uint32_t kNopCycles = 2;
constexpr uint32_t kVectorAt = 6;     // cycle of a sequence
constexpr uint32_t kBreakFlagsAt = 5; // cycle of BRK that pushes P
constexpr uint32_t kBreakCycles = 7;

enum class Line { kNmi, kIrq };

void Raise(M6502& cpu, Line line) {
    if (line == Line::kNmi) {
        cpu.nmiLine |= 1;
    } else {
        cpu.irqLines |= kNesIrqFrame;
    }
}

uint32_t VectorOf(Line line) {
    return line == Line::kNmi ? 0xFFFA : 0xFFFE;
}

// Runs up to `cycles` cycles; a device raises the line in cycle `raisedIn` (0: before the first). Returns the
// cycle that reads the line's vector.
uint32_t VectorCycle(TEST_6502& test, Line line, uint32_t raisedIn, uint32_t cycles = 30) {
    const std::string wanted = AccessText('r', VectorOf(line));
    if (raisedIn == 0) {
        Raise(test.cpu, line);
    }
    for (uint32_t cycle = 1; cycle <= cycles; ++cycle) {
        test.bus.trace.clear();
        test.Cycle([&] {
            if (cycle == raisedIn) {
                Raise(test.cpu, line);
            }
        });
        if (test.bus.trace.starts_with(wanted)) {
            return cycle;
        }
    }
    return kNever;
}

struct KIND_ROW {
    const char* name;
    std::vector<uint8_t> program; // the instruction; NOPs follow
    uint32_t cycles;
};

TEST_6502 Start(const KIND_ROW& row) {
    TEST_6502 test;
    for (uint32_t i = 0; i < 0x20; ++i) {
        test.bus.memory[TEST_6502::kProgram + i] = TEST_6502::kNop;
        test.bus.memory[0x7FF0 + i % 0x10] = TEST_6502::kNop;
        test.bus.memory[0x8100 + i] = TEST_6502::kNop; // where jumps and returns go
    }
    test.Put(0x0010, {0xF8, 0x02});
    test.Put(0x01FE, {0x00, 0x81});
    uint32_t address = TEST_6502::kProgram;
    for (const uint8_t byte : row.program) {
        test.bus.memory[address++] = byte;
    }
    test.cpu.x = test.cpu.y = 0x10;
    return test;
}

const std::vector<KIND_ROW> kKinds{
    {"Implied",                   {0xE8},             2},
    {"Accumulator",               {0x0A},             2},
    {"Immediate",                 {0xA9, 0x00},       2},
    {"ImmediateWithoutEffect",    {0x0B, 0x00},       2},
    {"ZeroPageRead",              {0xA5, 0x20},       3},
    {"ZeroPageWrite",             {0x85, 0x20},       3},
    {"ZeroPageChange",            {0xE6, 0x20},       5},
    {"ZeroPageXRead",             {0xB5, 0x20},       4},
    {"ZeroPageXWrite",            {0x95, 0x20},       4},
    {"ZeroPageXChange",           {0xF6, 0x20},       6},
    {"AbsoluteRead",              {0xAD, 0x00, 0x03}, 4},
    {"AbsoluteWrite",             {0x8D, 0x00, 0x03}, 4},
    {"AbsoluteChange",            {0xEE, 0x00, 0x03}, 6},
    {"AbsoluteXRead",             {0xBD, 0x00, 0x03}, 4},
    {"AbsoluteXReadAcross",       {0xBD, 0xF8, 0x02}, 5},
    {"AbsoluteXWrite",            {0x9D, 0x00, 0x03}, 5},
    {"AbsoluteXChange",           {0xFE, 0x00, 0x03}, 7},
    {"IndexedIndirectRead",       {0xA1, 0x00},       6},
    {"IndexedIndirectChange",     {0x03, 0x00},       8},
    {"IndirectIndexedReadAcross", {0xB1, 0x10},       6},
    {"IndirectIndexedWrite",      {0x91, 0x10},       6},
    {"IndirectIndexedChange",     {0x13, 0x10},       8},
    {"JumpAbsolute",              {0x4C, 0x00, 0x81}, 3},
    {"JumpIndirect",              {0x6C, 0xFE, 0x01}, 5},
    {"JumpToSubroutine",          {0x20, 0x00, 0x81}, 6},
    {"ReturnFromSubroutine",      {0x60},             6},
    {"PushA",                     {0x48},             3},
    {"PullA",                     {0x68},             4},
    {"BranchNotTaken",            {0xF0, 0x02},       2},
    {"BranchTaken",               {0xD0, 0x02},       3},
    {"BranchTakenAcross",         {0xD0, 0xF0},       4},
    {"EmptyRow",                  {0x02},             1},
};

// An interrupt raised in any cycle of an instruction begins after its last.
TEST(M6502Interrupt, IsTakenAfterTheInstructionInWhichItComes) {
    for (const Line line : {Line::kNmi, Line::kIrq}) {
        for (const KIND_ROW& row : kKinds) {
            for (uint32_t raisedIn = 1; raisedIn <= row.cycles; ++raisedIn) {
                TEST_6502 test = Start(row);
                EXPECT_EQ(VectorCycle(test, line, raisedIn), row.cycles + kVectorAt)
                    << row.name << ", raised in cycle " << raisedIn;
            }
        }
    }
}

TEST(M6502Interrupt, RaisedBeforeAnInstructionIsTakenInItsPlace) {
    for (const Line line : {Line::kNmi, Line::kIrq}) {
        for (const KIND_ROW& row : kKinds) {
            TEST_6502 test = Start(row);
            EXPECT_EQ(VectorCycle(test, line, 0), kVectorAt) << row.name;
        }
    }
}

// The line is sampled before the device raises it.
TEST(M6502Interrupt, RaisedInTheFirstCycleOfAnInstructionWaitsForItsEnd) {
    for (const Line line : {Line::kNmi, Line::kIrq}) {
        for (const KIND_ROW& row : kKinds) {
            TEST_6502 test = Start(row);
            EXPECT_EQ(VectorCycle(test, line, row.cycles + 1), row.cycles + kNopCycles + kVectorAt)
                << row.name;
        }
    }
}

TEST(M6502Interrupt, SequenceOfAnNmiOnTheBus) {
    TEST_6502 test{0xE8};
    test.cpu.p |= kM6502FlagC;
    test.cpu.nmiLine = 1;
    test.Cycles(7);
    EXPECT_EQ(test.bus.trace, "r8000=E8 r8000=E8 w01FD=80 w01FC=00 w01FB=21 rFFFA=00 rFFFB=90");
    EXPECT_EQ(test.cpu.pc, TEST_6502::kNmiHandler);
    EXPECT_TRUE(test.HasFlag(kM6502FlagI));
}

TEST(M6502Interrupt, SequenceOfAnIrqOnTheBus) {
    TEST_6502 test{0xE8};
    test.cpu.p |= kM6502FlagN;
    test.cpu.irqLines = kNesIrqBoard;
    test.Cycles(7);
    EXPECT_EQ(test.bus.trace, "r8000=E8 r8000=E8 w01FD=80 w01FC=00 w01FB=A0 rFFFE=00 rFFFF=A0");
    EXPECT_EQ(test.cpu.pc, TEST_6502::kIrqHandler);
    EXPECT_TRUE(test.HasFlag(kM6502FlagI));
}

TEST(M6502Interrupt, NmiIsTakenBackAndComesOnce) {
    TEST_6502 test;
    test.Put(TEST_6502::kProgram, {0xEA, 0xEA});
    EXPECT_EQ(VectorCycle(test, Line::kNmi, 0), kVectorAt);
    EXPECT_EQ(test.cpu.nmiLine, 0U);
    EXPECT_EQ(test.cpu.nmiSeen, 0U);
    EXPECT_EQ(VectorCycle(test, Line::kNmi, kNever), kNever);
}

// A device must clear its IRQ; otherwise it comes again once interrupts are enabled.
TEST(M6502Interrupt, IrqKeepsItsLevel) {
    TEST_6502 test;
    test.Put(TEST_6502::kIrqHandler, {0x58}); // CLI
    EXPECT_EQ(VectorCycle(test, Line::kIrq, 0), kVectorAt);
    EXPECT_EQ(test.cpu.irqLines, uint32_t{kNesIrqFrame});
    // The rest of the sequence, CLI, and the sequence again.
    EXPECT_EQ(VectorCycle(test, Line::kIrq, kNever), 1 + 2 + kVectorAt);
}

TEST(M6502Interrupt, IrqThatIsTakenBackInTimeDoesNotCome) {
    TEST_6502 test;
    test.Put(TEST_6502::kProgram, {0xE6, 0x20, 0x4C, 0x02, 0x80}); // INC 20, then a jump to itself
    for (uint32_t cycle = 1; cycle <= 5; ++cycle) {
        test.Cycle([&] { test.cpu.irqLines = cycle < 5 ? kNesIrqSample : 0; });
    }
    EXPECT_EQ(VectorCycle(test, Line::kIrq, kNever), kNever);
}

TEST(M6502Interrupt, AnyBitOfTheIrqWordInterrupts) {
    for (const uint32_t bit : {kNesIrqFrame, kNesIrqSample, kNesIrqBoard}) {
        TEST_6502 test;
        test.cpu.irqLines = bit;
        test.Cycles(7);
        EXPECT_EQ(test.cpu.pc, TEST_6502::kIrqHandler) << bit;
    }
}

TEST(M6502Interrupt, DisableHoldsAnIrqBackButNotAnNmi) {
    for (const Line line : {Line::kNmi, Line::kIrq}) {
        TEST_6502 test;
        test.cpu.p |= kM6502FlagI;
        for (uint32_t i = 0; i < 32; ++i) {
            test.bus.memory[TEST_6502::kProgram + i] = TEST_6502::kNop;
        }
        EXPECT_EQ(VectorCycle(test, line, 1), line == Line::kNmi ? 2 + kVectorAt : kNever);
    }
}

TEST(M6502Interrupt, NmiGoesBeforeAnIrq) {
    TEST_6502 test;
    test.cpu.irqLines = kNesIrqFrame;
    test.cpu.nmiLine = 1;
    test.Cycles(7);
    EXPECT_EQ(test.cpu.pc, TEST_6502::kNmiHandler);
    EXPECT_EQ(test.cpu.irqLines, uint32_t{kNesIrqFrame});
}

// Only BRK tests the line again: the IRQ sequence ends with its own vector, and the NMI's follows before the
// first instruction of the handler.
TEST(M6502Interrupt, NmiDuringAnIrqsSequenceFollowsIt) {
    for (uint32_t raisedIn = 1; raisedIn <= 7; ++raisedIn) {
        TEST_6502 test;
        test.cpu.irqLines = kNesIrqFrame;
        for (uint32_t cycle = 1; cycle <= 14; ++cycle) {
            test.Cycle([&] {
                if (cycle == raisedIn) {
                    test.cpu.nmiLine = 1;
                }
            });
            if (cycle == 7) {
                EXPECT_EQ(test.cpu.pc, TEST_6502::kIrqHandler) << raisedIn;
                test.bus.trace.clear();
            }
        }
        EXPECT_EQ(test.bus.trace, "rA000=EA rA000=EA w01FA=A0 w01F9=00 w01F8=24 rFFFA=00 rFFFB=90")
            << raisedIn;
    }
}

TEST(M6502Interrupt, NmiAfterBreaksPushOfTheFlagsWaits) {
    for (uint32_t raisedIn = kBreakFlagsAt + 1; raisedIn <= kBreakCycles; ++raisedIn) {
        TEST_6502 test{0x00, 0x00};
        EXPECT_EQ(VectorCycle(test, Line::kNmi, raisedIn), kBreakCycles + kVectorAt) << raisedIn;
        EXPECT_EQ(test.bus.memory[0x01FB], kM6502FlagOne | kM6502FlagB); // by BRK
        EXPECT_EQ(test.bus.memory[0x01FA], TEST_6502::kIrqHandler >> 8); // by the NMI
    }
}

TEST(M6502Interrupt, NmiUpToBreaksPushOfTheFlagsTakesItsVectorOver) {
    for (uint32_t raisedIn = 1; raisedIn <= kBreakFlagsAt; ++raisedIn) {
        TEST_6502 test{0x00, 0x00};
        EXPECT_EQ(VectorCycle(test, Line::kNmi, raisedIn), kVectorAt) << raisedIn;
        test.Cycles(1);
        EXPECT_EQ(test.cpu.pc, TEST_6502::kNmiHandler) << raisedIn;
        EXPECT_EQ(test.cpu.nmiLine, 0U) << raisedIn;
        EXPECT_EQ(test.bus.memory[0x01FB], kM6502FlagOne | kM6502FlagB) << raisedIn;
        EXPECT_TRUE(test.HasFlag(kM6502FlagI)) << raisedIn;
        // It has been served: the handler's first instruction is next.
        test.bus.trace.clear();
        test.Cycles(2);
        EXPECT_EQ(test.bus.trace, "r9000=EA r9001=EA") << raisedIn;
    }
}

TEST(M6502Interrupt, IrqDuringBreakIsHeldBackByTheFlagThatItSets) {
    for (uint32_t raisedIn = 1; raisedIn <= kBreakCycles; ++raisedIn) {
        TEST_6502 test{0x00, 0x00};
        test.bus.trace.clear();
        for (uint32_t cycle = 1; cycle <= kBreakCycles + 2; ++cycle) {
            test.Cycle([&] {
                if (cycle == raisedIn) {
                    test.cpu.irqLines = kNesIrqFrame;
                }
            });
        }
        EXPECT_TRUE(test.bus.trace.ends_with("rFFFE=00 rFFFF=A0 rA000=EA rA001=EA")) << raisedIn;
    }
}

// CLI, SEI, PLP and RTI change the flag in a read cycle; the next sample uses the new flag.

TEST(M6502Interrupt, ClearedDisableActsAtOnce) {
    for (uint32_t raisedIn = 0; raisedIn <= 2; ++raisedIn) {
        TEST_6502 test{0x58, 0x78}; // CLI, SEI
        test.cpu.p |= kM6502FlagI;
        EXPECT_EQ(VectorCycle(test, Line::kIrq, raisedIn), 2 + kVectorAt) << raisedIn;
        EXPECT_EQ(test.bus.memory[0x01FC], 0x01); // returns to SEI
    }
}

TEST(M6502Interrupt, SetDisableActsAtOnce) {
    for (uint32_t raisedIn = 1; raisedIn <= 2; ++raisedIn) {
        TEST_6502 test;
        test.Put(TEST_6502::kProgram, {0x78, 0x4C, 0x01, 0x80}); // SEI, then a jump to itself
        EXPECT_EQ(VectorCycle(test, Line::kIrq, raisedIn), kNever) << raisedIn;
    }
}

TEST(M6502Interrupt, PulledDisableActsAtOnce) {
    constexpr uint32_t kPullCycles = 4;
    for (uint32_t raisedIn = 1; raisedIn <= kPullCycles; ++raisedIn) {
        TEST_6502 enables{0x28, 0x4C, 0x01, 0x80}; // PLP, then a jump to itself
        enables.cpu.p |= kM6502FlagI;
        EXPECT_EQ(VectorCycle(enables, Line::kIrq, raisedIn), kPullCycles + kVectorAt) << raisedIn;
        TEST_6502 disables{0x28, 0x4C, 0x01, 0x80};
        disables.bus.memory[0x01FE] = kM6502FlagI;
        EXPECT_EQ(VectorCycle(disables, Line::kIrq, raisedIn), kNever) << raisedIn;
    }
}

TEST(M6502Interrupt, ReturnFromInterruptActsAtOnce) {
    constexpr uint32_t kReturnCycles = 6;
    for (uint32_t raisedIn = 1; raisedIn <= kReturnCycles; ++raisedIn) {
        TEST_6502 enables{0x40, 0x4C, 0x01, 0x80}; // RTI to a jump to itself
        enables.Put(0x01FE, {0x00, 0x01});
        enables.Put(0x0100, {0x80});
        enables.cpu.p |= kM6502FlagI;
        EXPECT_EQ(VectorCycle(enables, Line::kIrq, raisedIn), kReturnCycles + kVectorAt)
            << raisedIn;
        TEST_6502 disables{0x40, 0x4C, 0x01, 0x80};
        disables.Put(0x01FE, {kM6502FlagI, 0x01});
        disables.Put(0x0100, {0x80});
        EXPECT_EQ(VectorCycle(disables, Line::kIrq, raisedIn), kNever) << raisedIn;
    }
}

TEST(M6502Interrupt, ReturnFromAnInterruptGoesOnWhereItCame) {
    TEST_6502 test{0xE8, 0xEA};
    test.bus.memory[TEST_6502::kNmiHandler] = 0x40;
    test.cpu.p |= kM6502FlagC | kM6502FlagD;
    test.cpu.nmiLine = 1;
    test.Cycles(7 + 6);
    EXPECT_EQ(test.cpu.pc, TEST_6502::kProgram);
    EXPECT_EQ(test.cpu.sp, 0xFD);
    EXPECT_EQ(test.cpu.p, kM6502FlagOne | kM6502FlagC | kM6502FlagD);
}

// On the real chip a taken branch within its page doesn't poll interrupts in its last cycles, so one raised
// there also waits for the next instruction. Here a branch is like any instruction.
TEST(M6502Interrupt, TakenBranchDelaysNothing) {
    TEST_6502 test{0xD0, 0x00, 0xEA};
    EXPECT_EQ(VectorCycle(test, Line::kIrq, 3), 3 + kVectorAt);
}

TEST(M6502Sample, TakesTheLinesAsTheyAre) {
    TEST_6502 test;
    test.cpu.nmiLine = 1;
    test.cpu.irqLines = kNesIrqBoard | kNesIrqFrame;
    M6502Sample(test.cpu);
    EXPECT_EQ(test.cpu.nmiSeen, 1U);
    EXPECT_EQ(test.cpu.irqSeen, 1U);
    test.cpu.p |= kM6502FlagI;
    M6502Sample(test.cpu);
    EXPECT_EQ(test.cpu.irqSeen, 0U);
    test.cpu.p = kM6502FlagOne;
    test.cpu.nmiLine = test.cpu.irqLines = 0;
    M6502Sample(test.cpu);
    EXPECT_EQ(test.cpu.nmiSeen, 0U);
    EXPECT_EQ(test.cpu.irqSeen, 0U);
}

} // namespace
