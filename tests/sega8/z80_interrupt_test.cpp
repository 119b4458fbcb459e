#include "z80_support.h"
#include <gtest/gtest.h>

#include <algorithm>

namespace {

// Runs one NOP, at whose end interrupts are sampled.
void NopThenInterrupt(TEST_Z80& test) {
    test.Instruction();
    test.bus.clock = 0;
    test.bus.trace.clear();
}

uint32_t R(const TEST_Z80& test) {
    return (test.z80.r7 & 0x7F) | test.z80.r8;
}

} // namespace

TEST(Z80Interrupt, NmiTakesThirteenClocksAndKeepsIff2) {
    TEST_Z80 test;
    test.z80.iff1 = test.z80.iff2 = 1;
    test.z80.nmiEdge = 1;
    NopThenInterrupt(test);
    EXPECT_EQ(test.z80.nmiEdge, 0U);
    EXPECT_EQ(test.Instruction(), 13U);
    EXPECT_EQ(test.bus.trace, "9w5FFF=40 12w5FFE=01");
    EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
    EXPECT_EQ(test.z80.iff1, 0U);
    EXPECT_EQ(test.z80.iff2, 1U);
    EXPECT_EQ(test.z80.pendingInterrupt, kZ80NoInterrupt + 0U);
}

TEST(Z80Interrupt, NmiNeedsNoFlipFlopAndComesBeforeTheLine) {
    TEST_Z80 test;
    test.z80.nmiEdge = 1;
    test.z80.irqLine = 1;
    NopThenInterrupt(test);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
}

TEST(Z80Interrupt, NmiComesOnceForAnEdge) {
    TEST_Z80 test;
    test.z80.nmiEdge = 1;
    test.Instructions(3); // NOP, the start, the handler's first NOP
    EXPECT_EQ(test.Word(kZ80Pc), 0x0067U);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0068U);
}

TEST(Z80Interrupt, ModeOneTakesThirteenClocks) {
    TEST_Z80 test;
    test.z80.iff1 = test.z80.iff2 = 1;
    test.z80.im = 1;
    test.z80.irqLine = 1;
    NopThenInterrupt(test);
    EXPECT_EQ(test.Instruction(), 13U);
    EXPECT_EQ(test.bus.trace, "9w5FFF=40 12w5FFE=01");
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
    EXPECT_EQ(test.z80.iff1, 0U);
    EXPECT_EQ(test.z80.iff2, 0U);
}

TEST(Z80Interrupt, ModeZeroRunsTheSameRestart) {
    TEST_Z80 test;
    test.z80.iff1 = test.z80.iff2 = 1;
    test.z80.im = 0;
    test.z80.irqLine = 1;
    NopThenInterrupt(test);
    EXPECT_EQ(test.Instruction(), 13U);
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
}

TEST(Z80Interrupt, ModeTwoTakesNineteenClocksAndReadsItsVectorAtFf) {
    TEST_Z80 test;
    test.z80.iff1 = test.z80.iff2 = 1;
    test.z80.im = 2;
    test.z80.i = 0x70;
    test.z80.irqLine = 1;
    test.bus.memory[0x70FF] = 0x34;
    test.bus.memory[0x7100] = 0x12;
    NopThenInterrupt(test);
    EXPECT_EQ(test.Instruction(), 19U);
    EXPECT_EQ(test.bus.trace, "8w5FFF=40 11w5FFE=01 15r70FF 18r7100");
    EXPECT_EQ(test.Word(kZ80Pc), 0x1234U);
}

TEST(Z80Interrupt, LineIsLeftAloneWhileInterruptsAreOff) {
    TEST_Z80 test;
    test.z80.irqLine = 1;
    test.Instructions(4);
    EXPECT_EQ(test.Word(kZ80Pc), 0x4004U);
}

TEST(Z80Interrupt, LineThatDropsBeforeTheInstructionEndsIsNotSeen) {
    TEST_Z80 test;
    test.z80.iff1 = 1;
    test.z80.irqLine = 1;
    test.Clocks(3);
    test.z80.irqLine = 0;
    test.Clocks(1);
    EXPECT_EQ(test.z80.pendingInterrupt, kZ80NoInterrupt + 0U);
}

TEST(Z80Interrupt, InterruptWaitsOneInstructionAfterEi) {
    TEST_Z80 test{0xFB, 0x00, 0x00};
    test.z80.im = 1;
    test.z80.irqLine = 1;
    test.Instruction(); // EI
    EXPECT_EQ(test.z80.pendingInterrupt, kZ80NoInterrupt + 0U);
    test.Instruction(); // NOP
    EXPECT_EQ(test.Word(kZ80Pc), 0x4002U);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x02);
}

TEST(Z80Interrupt, RunOfEiHoldsTheInterruptOff) {
    TEST_Z80 test{0xFB, 0xFB, 0xFB, 0x00};
    test.z80.irqLine = 1;
    test.Instructions(4);
    EXPECT_EQ(test.Word(kZ80Pc), 0x4004U);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
}

// EI delays interrupts by a whole instruction, prefixes included.
TEST(Z80Interrupt, InterruptWaitsForThePrefixedInstructionAfterEi) {
    struct PREFIX_ROW {
        std::vector<uint8_t> program;
        uint8_t back; // low byte of the return address
    };
    const std::vector<PREFIX_ROW> rows = {
        {{0xFB, 0xCB, 0x00},             0x03},
        {{0xFB, 0xDD, 0x23},             0x03},
        {{0xFB, 0xFD, 0x23},             0x03},
        {{0xFB, 0xED, 0x44},             0x03},
        {{0xFB, 0xDD, 0xDD, 0xFD, 0x23}, 0x05},
        {{0xFB, 0xDD, 0x00},             0x03}, // an opcode that ignores the prefix
        {{0xFB, 0xDD, 0xCB, 0x00, 0xC6}, 0x05},
        {{0xFB, 0xFD, 0xCB, 0x00, 0x46}, 0x05},
        {{0xFB, 0xED, 0xB0},             0x01}, // LDIR after its first repetition
    };
    for (const PREFIX_ROW& row : rows) {
        TEST_Z80 test;
        std::copy(row.program.begin(), row.program.end(),
                  test.bus.memory.begin() + TEST_Z80::kProgram);
        test.z80.im = 1;
        test.z80.irqLine = 1;
        EXPECT_EQ(test.Instruction(), 4U);
        EXPECT_EQ(test.z80.iff1, 1U);
        EXPECT_EQ(test.z80.pendingInterrupt, kZ80NoInterrupt + 0U);
        test.Clocks(4); // the prefix
        EXPECT_EQ(test.z80.pendingInterrupt, kZ80NoInterrupt + 0U) << uint32_t{row.program[1]};
        test.Instruction();
        EXPECT_EQ(test.z80.pendingInterrupt, kZ80Maskable + 0U) << uint32_t{row.program[1]};
        EXPECT_EQ(test.Word(kZ80Pc), 0x4000U + row.back);
        test.Instruction();
        EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
        EXPECT_EQ(test.bus.memory[0x5FFE], row.back);
    }
}

// EI delays only irqLine. The NMI leaves the second flip-flop as EI has set it; RETN copies it
// back, so the interrupt is taken before the next instruction of the program.
TEST(Z80Interrupt, NmiComesRightAfterEi) {
    TEST_Z80 test{0xFB, 0x00};
    test.z80.im = 1;
    test.z80.irqLine = 1;
    test.bus.memory[0x0066] = 0xED; // RETN
    test.bus.memory[0x0067] = 0x45;
    test.Clocks(3);
    test.z80.nmiEdge = 1;
    test.Clocks(1);
    EXPECT_EQ(test.z80.pendingInterrupt, kZ80Nmi + 0U);
    EXPECT_EQ(test.Instruction(), 13U);
    EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x01);
    EXPECT_EQ(test.z80.iff1, 0U);
    EXPECT_EQ(test.z80.iff2, 1U);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x4001U);
    EXPECT_EQ(test.z80.iff1, 1U);
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x01);
}

TEST(Z80Interrupt, PrefixLetsNoInterruptIn) {
    // Every prefix with an opcode: the interrupt is taken after the whole instruction.
    struct PREFIX_ROW {
        std::array<uint8_t, 4> program;
        uint32_t length;
    };
    for (const PREFIX_ROW& row : {
             PREFIX_ROW{{0xCB, 0x00},             2},
             PREFIX_ROW{{0xDD, 0x23},             2},
             PREFIX_ROW{{0xFD, 0x23},             2},
             PREFIX_ROW{{0xED, 0x44},             2},
             PREFIX_ROW{{0xDD, 0xFD, 0x00},       3},
             PREFIX_ROW{{0xDD, 0xCB, 0x00, 0xC6}, 4},
             PREFIX_ROW{{0xFD, 0xCB, 0x00, 0x46}, 4}
    }) {
        TEST_Z80 test;
        for (uint32_t i = 0; i < row.program.size(); ++i) {
            test.bus.memory[TEST_Z80::kProgram + i] = row.program[i];
        }
        test.z80.iff1 = test.z80.iff2 = 1;
        test.z80.nmiEdge = 1;
        test.Instruction();
        EXPECT_EQ(test.Word(kZ80Pc), TEST_Z80::kProgram + row.length);
        EXPECT_EQ(test.z80.pendingInterrupt, kZ80Nmi + 0U);
        test.Instruction();
        EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
        EXPECT_EQ(test.bus.memory[0x5FFE], row.length);
    }
}

TEST(Z80Interrupt, HaltStaysOnItsOpcodeUntilAnInterrupt) {
    TEST_Z80 test{0x76};
    test.z80.iff1 = test.z80.iff2 = 1;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(test.Instruction(), 4U);
        EXPECT_EQ(test.Word(kZ80Pc), 0x4000U);
    }
    EXPECT_EQ(test.z80.halted, 1U);
    EXPECT_EQ(R(test), 5U);
    test.z80.irqLine = 1;
    test.Instruction();
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x0038U);
    EXPECT_EQ(test.z80.halted, 0U);
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x01); // the instruction after HALT
    EXPECT_EQ(test.bus.memory[0x5FFF], 0x40);
}

TEST(Z80Interrupt, NmiWakesHaltToo) {
    TEST_Z80 test{0x76};
    test.z80.nmiEdge = 1;
    test.Instructions(2);
    EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
    EXPECT_EQ(test.z80.halted, 0U);
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x01);
}

TEST(Z80Interrupt, BlockMoveIsInterruptedBetweenRepetitionsAndContinues) {
    TEST_Z80 test{0xED, 0xB0, 0x00};
    test.z80.regs[kZ80Bc] = 3;
    test.bus.memory[0x5000] = 0x11;
    test.bus.memory[0x5001] = 0x22;
    test.bus.memory[0x5002] = 0x33;
    test.bus.memory[0x0066] = 0xED; // RETN
    test.bus.memory[0x0067] = 0x45;
    EXPECT_EQ(test.Instruction(), 21U);
    test.z80.nmiEdge = 1;
    EXPECT_EQ(test.Instruction(), 21U);
    EXPECT_EQ(test.Word(kZ80Pc), 0x4000U);
    EXPECT_EQ(R(test), 4U);
    test.Instruction(); // the start of the NMI
    EXPECT_EQ(test.bus.memory[0x5FFE], 0x00);
    EXPECT_EQ(test.Word(kZ80Bc), 1U);
    test.Instruction(); // RETN
    EXPECT_EQ(test.Instruction(), 16U);
    EXPECT_EQ(test.Word(kZ80Pc), 0x4002U);
    EXPECT_EQ(test.bus.memory[0x5100], 0x11);
    EXPECT_EQ(test.bus.memory[0x5101], 0x22);
    EXPECT_EQ(test.bus.memory[0x5102], 0x33);
}

TEST(Z80Interrupt, RetnAndRetiCopyIff2) {
    for (uint8_t opcode = 0x45; opcode < 0x80; opcode = static_cast<uint8_t>(opcode + 8)) {
        TEST_Z80 test{0xED, opcode};
        test.z80.iff2 = 1;
        test.Instruction();
        EXPECT_EQ(test.z80.iff1, 1U) << uint32_t{opcode};
    }
}

TEST(Z80Interrupt, RefreshCountsFetchesAndRestartsOnly) {
    TEST_Z80 maskable;
    maskable.z80.iff1 = maskable.z80.irqLine = 1;
    maskable.Instructions(2);
    EXPECT_EQ(R(maskable), 2U); // the NOP and the restart

    TEST_Z80 nmi;
    nmi.z80.nmiEdge = 1;
    nmi.Instructions(2);
    EXPECT_EQ(R(nmi), 1U);

    TEST_Z80 mode2;
    mode2.z80.iff1 = mode2.z80.irqLine = 1;
    mode2.z80.im = 2;
    mode2.Instructions(2);
    EXPECT_EQ(R(mode2), 1U);

    TEST_Z80 indexed{0xDD, 0xCB, 0x00, 0xC6};
    indexed.Instruction();
    EXPECT_EQ(R(indexed), 2U);
}

TEST(Z80Interrupt, RefreshKeepsItsTopBit) {
    TEST_Z80 test{0x3E, 0xFF, 0xED, 0x4F, 0x00, 0xED, 0x5F}; // LD A,FF; LD R,A; NOP; LD A,R
    test.Instructions(4);
    EXPECT_EQ(test.A(), 0x82U); // FF plus three fetches, in seven bits
}

TEST(Z80Bus, HoldStopsAtTheNextSamplingPoint) {
    TEST_Z80 test{0x06, 0x7F}; // LD B,n samples on clocks 4 and 7
    test.Clocks(1);
    test.z80.busHold = 1;
    test.Clocks(2);
    EXPECT_EQ(test.z80.running, 1U);
    test.Clocks(1);
    EXPECT_EQ(test.z80.running, 0U);
    test.Clocks(100);
    EXPECT_EQ(test.bus.trace, "2f4000");
    test.z80.busHold = 0;
    test.bus.clock = 4;
    test.Clocks(1); // the restart
    EXPECT_EQ(test.z80.running, 1U);
    EXPECT_EQ(test.bus.trace, "2f4000");
    test.Clocks(3);
    EXPECT_EQ(test.bus.trace, "2f4000 7r4001");
    EXPECT_EQ(test.z80.queueIndex, 0U);
}

TEST(Z80Bus, HoldStopsAtAnInstructionsEndWithEverySamplingStep) {
    // Clocks until the processor stops, with the request present from the start.
    struct HOLD_ROW {
        std::vector<uint8_t> program;
        uint32_t stop;
    };
    const std::vector<HOLD_ROW> rows{
        {{0x00},       4}, // the end of a short instruction
        {{0x03},       6}, // the end after idle clocks
        {{0x7E},       4}, // the point before the first access
        {{0xC5},       5}, // as before, after one more clock
        {{0xDD, 0x00}, 4}, // a prefix
        {{0xED, 0x57}, 4}, // likewise
    };
    for (const HOLD_ROW& row : rows) {
        TEST_Z80 test;
        std::copy(row.program.begin(), row.program.end(),
                  test.bus.memory.begin() + TEST_Z80::kProgram);
        test.z80.busHold = 1;
        uint32_t clocks = 0;
        while (test.z80.running != 0 && clocks < 64) {
            test.Clocks(1);
            ++clocks;
        }
        EXPECT_EQ(clocks, row.stop) << uint32_t{row.program[0]};
    }
}

TEST(Z80Bus, HoldStopsBetweenTheAccessesOfAnInstruction) {
    TEST_Z80 test{0x22, 0x00, 0x70}; // LD (nn),HL samples on 4, 7, 10, 13 and 16
    test.Clocks(12);
    test.z80.busHold = 1;
    test.Clocks(10);
    EXPECT_EQ(test.bus.trace, "2f4000 6r4001 9r4002 12w7000=00");
    test.z80.busHold = 0;
    test.Clocks(2); // the restart, and clock 14
    EXPECT_EQ(test.bus.memory[0x7001], 0x00);
    test.Clocks(1);
    EXPECT_EQ(test.bus.memory[0x7001], 0x50);
}

TEST(Z80Bus, HoldStopsInTheMiddleOfABlockRepetition) {
    struct BLOCK_ROW {
        uint8_t opcode;
        uint32_t from; // clocks that pass before the request
        uint32_t stop; // clock that it stops on
    };
    // LDIR samples on clocks 11 and 14, and on 16 if it repeats.
    for (const BLOCK_ROW& row : {
             BLOCK_ROW{0xB0, 10, 11},
             BLOCK_ROW{0xB0, 11, 14},
             BLOCK_ROW{0xB0, 14, 16},
             BLOCK_ROW{0xB0, 16, 21},
             BLOCK_ROW{0xB1, 11, 16}
    }) {
        TEST_Z80 test{0xED, row.opcode};
        test.Clocks(row.from);
        test.z80.busHold = 1;
        while (test.z80.running != 0 && test.bus.clock < 64) {
            test.Clocks(1);
        }
        EXPECT_EQ(test.bus.clock, row.stop) << uint32_t{row.opcode};
    }
}

// The start of an interrupt releases the bus where an instruction does: before each access and at
// the end. It continues one clock after the bus is returned.
TEST(Z80Bus, HoldStopsWhileAnInterruptStarts) {
    struct START_ROW {
        const char* what;
        bool nmi;
        uint32_t im;
        uint32_t vector;
        std::vector<uint32_t> stops; // sampling clocks, then the last clock of the start
        std::vector<uint32_t> accesses;
    };
    const std::vector<START_ROW> rows = {
        {"nmi",         true,  0, 0x0066, {7, 10, 13},        {9, 12}        },
        {"mode 0 or 1", false, 1, 0x0038, {7, 10, 13},        {9, 12}        },
        {"mode 2",      false, 2, 0x1234, {6, 9, 13, 16, 19}, {8, 11, 15, 18}},
    };
    for (const START_ROW& row : rows) {
        uint32_t before = 0;
        for (const uint32_t stop : row.stops) {
            SCOPED_TRACE(testing::Message() << row.what << " " << stop);
            TEST_Z80 test;
            test.z80.im = row.im;
            test.z80.i = 0x70;
            test.bus.memory[0x70FF] = 0x34;
            test.bus.memory[0x7100] = 0x12;
            test.z80.iff1 = test.z80.iff2 = 1;
            (row.nmi ? test.z80.nmiEdge : test.z80.irqLine) = 1;
            NopThenInterrupt(test);
            test.Clocks(before);
            test.z80.busHold = 1;
            test.Clocks(stop - before - 1);
            EXPECT_EQ(test.z80.running, 1U);
            test.Clocks(1);
            EXPECT_EQ(test.z80.running, 0U);
            test.Clocks(50);
            const auto done = std::count(test.bus.trace.begin(), test.bus.trace.end(), '=') +
                              std::count(test.bus.trace.begin(), test.bus.trace.end(), 'r');
            const auto due = std::count_if(row.accesses.begin(), row.accesses.end(),
                                           [&](uint32_t clock) { return clock < stop; });
            EXPECT_EQ(done, due);
            test.z80.busHold = 0;
            test.Clocks(1 + row.stops.back() - stop);
            EXPECT_EQ(test.z80.queueIndex, 0U);
            EXPECT_EQ(test.Word(kZ80Pc), row.vector);
            EXPECT_EQ(test.bus.memory[0x5FFF], 0x40);
            EXPECT_EQ(test.bus.memory[0x5FFE], 0x01);
            before = stop;
        }
    }
}

TEST(Z80Bus, InterruptThatWasSeenOutlivesAHold) {
    TEST_Z80 test;
    test.z80.nmiEdge = 1;
    test.z80.busHold = 1;
    test.Clocks(4); // the NOP's end releases the bus and samples the edge
    EXPECT_EQ(test.z80.running, 0U);
    EXPECT_EQ(test.z80.pendingInterrupt, kZ80Nmi + 0U);
    test.Clocks(50);
    EXPECT_EQ(test.bus.trace, "2f4000");
    test.z80.busHold = 0;
    test.Clocks(1 + 13);
    EXPECT_EQ(test.Word(kZ80Pc), 0x0066U);
    EXPECT_EQ(test.z80.queueIndex, 0U);
}

TEST(Z80Bus, IndexedBitOpcodeSamplesAtItsSecondDecode) {
    TEST_Z80 test{0xDD, 0xCB, 0x00, 0xC6};
    test.Clocks(13); // after the sampling point on clock 13
    test.z80.busHold = 1;
    test.Clocks(3);
    EXPECT_EQ(test.z80.running, 0U);
    EXPECT_EQ(test.z80.opcode, 0xC6U);
}

TEST(Z80Bus, DisabledProcessorFreezesAtAnyClock) {
    for (uint32_t at = 0; at < 16; ++at) {
        TEST_Z80 test{0x22, 0x00, 0x70};
        test.Clocks(at);
        test.z80.enabled = 0;
        std::array<uint8_t, kZ80StateSize> before{};
        std::array<uint8_t, kZ80StateSize> after{};
        Z80SaveState(test.z80, before.data());
        test.Clocks(50);
        Z80SaveState(test.z80, after.data());
        EXPECT_EQ(before, after);
        test.z80.enabled = 1;
        test.Clocks(16 - at);
        EXPECT_EQ(test.z80.queueIndex, 0U);
        EXPECT_EQ(test.bus.memory[0x7001], 0x50);
    }
}
