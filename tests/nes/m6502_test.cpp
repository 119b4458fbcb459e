#include "nes/m6502_rig.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

constexpr std::array<uint32_t, 12> kEmptyRows{0x02, 0x12, 0x22, 0x32, 0x42, 0x52,
                                              0x62, 0x72, 0x92, 0xB2, 0xD2, 0xF2};

TEST(M6502Reset, ReadsItsVectorAfterThreeStackReads) {
    TEST_6502 test;
    test.Put(0xFFFC, {0x34, 0x12});
    test.Put(0x0000, {0x5A});
    M6502ResetOn(test.cpu, test.bus);
    EXPECT_EQ(test.bus.trace, "r0000=5A r0000=5A r0100=00 r01FF=00 r01FE=00 rFFFC=34 rFFFD=12");
    EXPECT_EQ(test.cpu.pc, 0x1234);
    EXPECT_EQ(test.cpu.sp, 0xFD);
    EXPECT_EQ(test.cpu.p, kM6502FlagOne | kM6502FlagI);
    EXPECT_EQ(test.cpu.busValue, 0x12);
}

TEST(M6502Reset, ClearsRegistersLinesAndTheInstructionUnderWay) {
    TEST_6502 test{0xE6, 0x20};
    test.Cycles(3);
    test.cpu.a = test.cpu.x = test.cpu.y = 0x77;
    test.cpu.nmiLine = test.cpu.irqLines = test.cpu.nmiSeen = test.cpu.irqSeen = 1;
    M6502ResetOn(test.cpu, test.bus);
    EXPECT_EQ(test.cpu.a, 0);
    EXPECT_EQ(test.cpu.x, 0);
    EXPECT_EQ(test.cpu.y, 0);
    EXPECT_EQ(test.cpu.nmiLine, 0U);
    EXPECT_EQ(test.cpu.irqLines, 0U);
    EXPECT_EQ(test.cpu.cycles, 0U);
    test.bus.trace.clear();
    test.Cycles(1);
    EXPECT_EQ(test.bus.trace, "r8000=E6");
}

TEST(M6502Reset, KeepsTheCallbacksAndGoesThroughThem) {
    TEST_6502 test{0xA9, 0x42, 0x8D, 0x00, 0x03}; // LDA #42, STA 0300
    M6502 cpu;
    M6502Init(
        cpu, &test.bus,
        [](void* bus, uint16_t address) { return static_cast<RECORDING_BUS*>(bus)->Read(address); },
        [](void* bus, uint16_t address, uint8_t value) {
            static_cast<RECORDING_BUS*>(bus)->Write(address, value);
        });
    M6502Reset(cpu);
    EXPECT_EQ(cpu.pc, TEST_6502::kProgram);
    for (int i = 0; i < 6; ++i) {
        M6502Tick(cpu);
    }
    EXPECT_TRUE(test.bus.trace.ends_with("r8000=A9 r8001=42 r8002=8D r8003=00 r8004=03 w0300=42"));
    EXPECT_EQ(cpu.cycles, 6U);
}

TEST(M6502, EmptyRowsAreNoOperationsOfOneCycle) {
    for (const uint32_t opcode : kEmptyRows) {
        TEST_6502 test{static_cast<uint8_t>(opcode), 0xEA};
        test.cpu.a = 0x42;
        test.cpu.p |= kM6502FlagC;
        EXPECT_EQ(test.Instruction(), 1U) << opcode;
        EXPECT_EQ(test.cpu.pc, TEST_6502::kProgram + 1) << opcode;
        EXPECT_EQ(test.cpu.a, 0x42) << opcode;
        EXPECT_EQ(test.cpu.p, kM6502FlagOne | kM6502FlagC) << opcode;
        test.Cycles(1);
        EXPECT_TRUE(test.bus.trace.ends_with("r8001=EA")) << opcode;
    }
}

// The cycles of every opcode with all flags clear and index registers of 0: nothing crosses a page, and branches
// on a clear flag are taken, which adds a cycle. From the published opcode map (64doc), except for the twelve
// opcodes that stop the real chip and take one cycle here.
constexpr std::array<uint8_t, 256> kCycles{
    7, 6, 1, 8, 3, 3, 5, 5, 3, 2, 2, 2, 4, 4, 6, 6, // 0x
    3, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // 1x: BPL is taken
    6, 6, 1, 8, 3, 3, 5, 5, 4, 2, 2, 2, 4, 4, 6, 6, // 2x
    2, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // 3x
    6, 6, 1, 8, 3, 3, 5, 5, 3, 2, 2, 2, 3, 4, 6, 6, // 4x
    3, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // 5x: BVC is taken
    6, 6, 1, 8, 3, 3, 5, 5, 4, 2, 2, 2, 5, 4, 6, 6, // 6x
    2, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // 7x
    2, 6, 2, 6, 3, 3, 3, 3, 2, 2, 2, 2, 4, 4, 4, 4, // 8x
    3, 6, 1, 6, 4, 4, 4, 4, 2, 5, 2, 5, 5, 5, 5, 5, // 9x: BCC is taken
    2, 6, 2, 6, 3, 3, 3, 3, 2, 2, 2, 2, 4, 4, 4, 4, // Ax
    2, 5, 1, 5, 4, 4, 4, 4, 2, 4, 2, 4, 4, 4, 4, 4, // Bx
    2, 6, 2, 8, 3, 3, 5, 5, 2, 2, 2, 2, 4, 4, 6, 6, // Cx
    3, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // Dx: BNE is taken
    2, 6, 2, 8, 3, 3, 5, 5, 2, 2, 2, 2, 4, 4, 6, 6, // Ex
    2, 5, 1, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7, // Fx
};

TEST(M6502, EveryOpcodeTakesItsCyclesAndEachIsAnAccess) {
    for (uint32_t opcode = 0; opcode < 256; ++opcode) {
        TEST_6502 test{static_cast<uint8_t>(opcode), 0x10, 0x02};
        EXPECT_EQ(test.Instruction(), kCycles[opcode]) << std::hex << opcode;
        EXPECT_EQ(test.cpu.cycles, kCycles[opcode]);
        size_t accesses = 0;
        for (const char letter : test.bus.trace) {
            accesses += letter == '=' ? 1 : 0;
        }
        EXPECT_EQ(accesses, kCycles[opcode]) << std::hex << opcode;
    }
}

struct BRANCH_ROW {
    uint8_t opcode;
    M6502Flag flag;
    bool isTakenWhenSet;
};

TEST(M6502, BranchesGoByTheirFlagInTwoThreeOrFourCycles) {
    constexpr std::array<BRANCH_ROW, 8> kRows{
        {
         {0x10, kM6502FlagN, false},
         {0x30, kM6502FlagN, true},
         {0x50, kM6502FlagV, false},
         {0x70, kM6502FlagV, true},
         {0x90, kM6502FlagC, false},
         {0xB0, kM6502FlagC, true},
         {0xD0, kM6502FlagZ, false},
         {0xF0, kM6502FlagZ, true},
         }
    };
    for (const BRANCH_ROW& row : kRows) {
        const uint8_t taken = row.isTakenWhenSet ? row.flag : 0;
        const uint8_t notTaken = row.isTakenWhenSet ? 0 : row.flag;
        const auto cycles = [&](uint8_t flags, uint8_t offset, uint16_t target) {
            TEST_6502 test{row.opcode, offset};
            test.cpu.p |= flags;
            const uint32_t count = test.Instruction();
            EXPECT_EQ(test.cpu.pc, target) << std::hex << uint32_t{row.opcode};
            return count;
        };
        EXPECT_EQ(cycles(notTaken, 0x7F, 0x8002), 2U);
        EXPECT_EQ(cycles(taken, 0x7F, 0x8081), 3U);
        EXPECT_EQ(cycles(taken, 0xFE, 0x8000), 3U);
        EXPECT_EQ(cycles(taken, 0x80, 0x7F82), 4U);
    }
}

TEST(M6502, BranchCarriesIntoTheNextPageAndAroundTheMemory) {
    TEST_6502 test;
    test.cpu.pc = 0x80F0;
    test.Put(0x80F0, {0xD0, 0x7F});
    EXPECT_EQ(test.Instruction(), 4U);
    EXPECT_EQ(test.cpu.pc, 0x8171);
    test.cpu.pc = 0xFFF0;
    test.Put(0xFFF0, {0xD0, 0x20});
    EXPECT_EQ(test.Instruction(), 4U);
    EXPECT_EQ(test.cpu.pc, 0x0012);
}

TEST(M6502, JumpIndirectReadsItsHighByteFromTheSamePage) {
    TEST_6502 test{0x6C, 0xFF, 0x12};
    test.Put(0x12FF, {0x78, 0x99}); // 1300 is not read
    test.Put(0x1200, {0x56});
    EXPECT_EQ(test.Instruction(), 5U);
    EXPECT_EQ(test.cpu.pc, 0x5678);
}

struct SUM_ROW {
    uint8_t a;
    uint8_t value;
    bool carry;
    uint8_t result;
    uint8_t flags; // of C, Z, V and N
};

// In decimal mode, 15 + 27 would be 42 and 42 - 15 would be 27.
TEST(M6502, DecimalFlagIsKeptAndIgnored) {
    constexpr uint8_t kC = kM6502FlagC;
    constexpr uint8_t kV = kM6502FlagV;
    constexpr uint8_t kN = kM6502FlagN;
    constexpr uint8_t kZ = kM6502FlagZ;
    constexpr std::array<SUM_ROW, 6> kSums{
        {
         {0x15, 0x27, false, 0x3C, 0},
         {0x99, 0x01, false, 0x9A, kN},
         {0x7F, 0x01, false, 0x80, kN | kV},
         {0x80, 0x80, false, 0x00, kC | kZ | kV},
         {0xFF, 0x00, true, 0x00, kC | kZ},
         {0x58, 0x46, true, 0x9F, kN | kV},
         }
    };
    for (const SUM_ROW& row : kSums) {
        for (const bool isSubtraction : {false, true}) {
            const auto operand = static_cast<uint8_t>(isSubtraction ? ~row.value : row.value);
            TEST_6502 test{0xF8, static_cast<uint8_t>(isSubtraction ? 0xE9 : 0x69), operand};
            test.cpu.a = row.a;
            test.cpu.p |= row.carry ? kC : 0;
            test.Instruction();
            test.Instruction();
            EXPECT_EQ(test.cpu.a, row.result);
            EXPECT_EQ(test.cpu.p, kM6502FlagOne | kM6502FlagD | row.flags);
        }
    }
}

TEST(M6502, PulledFlagsIgnoreBitsFourAndFive) {
    for (const uint8_t opcode : BYTES{0x28, 0x40}) { // PLP, RTI
        for (const uint8_t pulled : BYTES{0x00, 0xFF, 0x10}) {
            TEST_6502 test{opcode};
            test.bus.memory[0x01FE] = pulled;
            test.Instruction();
            EXPECT_EQ(test.cpu.p, (pulled & 0xCF) | kM6502FlagOne);
        }
    }
}

TEST(M6502, StackStaysInItsPage) {
    TEST_6502 test{0x48, 0x48, 0x68, 0x68}; // PHA, PHA, PLA, PLA
    test.cpu.a = 0x42;
    test.cpu.sp = 0x00;
    test.Instruction();
    test.Instruction();
    EXPECT_EQ(test.cpu.sp, 0xFE);
    EXPECT_EQ(test.bus.memory[0x0100], 0x42);
    EXPECT_EQ(test.bus.memory[0x01FF], 0x42);
    test.bus.trace.clear();
    test.Instruction();
    test.Instruction();
    EXPECT_EQ(test.bus.trace, "r8002=68 r8003=68 r01FE=00 r01FF=42 r8003=68 r8004=00 r01FF=42 "
                              "r0100=42");
}

TEST(M6502, TransfersSetZeroAndNegativeButNotIntoTheStackPointer) {
    TEST_6502 test{0xAA, 0xA8, 0x9A, 0xBA}; // TAX, TAY, TXS, TSX
    test.cpu.a = 0x80;
    test.Instruction();
    EXPECT_TRUE(test.HasFlag(kM6502FlagN));
    test.cpu.a = 0;
    test.Instruction();
    EXPECT_TRUE(test.HasFlag(kM6502FlagZ));
    EXPECT_FALSE(test.HasFlag(kM6502FlagN));
    test.Instruction();
    EXPECT_EQ(test.cpu.sp, 0x80);
    EXPECT_TRUE(test.HasFlag(kM6502FlagZ));
    test.Instruction();
    EXPECT_EQ(test.cpu.x, 0x80);
    EXPECT_TRUE(test.HasFlag(kM6502FlagN));
}

TEST(M6502, ImmediatesWithoutEffectReadTheirOperand) {
    for (const uint8_t opcode : BYTES{0x0B, 0x2B, 0x4B, 0x6B, 0x8B, 0xAB, 0xCB}) {
        TEST_6502 test{opcode, 0x5A};
        test.cpu.a = 0x81;
        test.cpu.x = 0x42;
        test.cpu.p |= kM6502FlagC;
        EXPECT_EQ(test.Instruction(), 2U);
        EXPECT_TRUE(test.bus.trace.ends_with("r8001=5A"));
        EXPECT_EQ(test.cpu.pc, 0x8002);
        EXPECT_EQ(test.cpu.a, 0x81);
        EXPECT_EQ(test.cpu.x, 0x42);
        EXPECT_EQ(test.cpu.p, kM6502FlagOne | kM6502FlagC);
    }
}

TEST(M6502, OpcodesThatOnlyFormTheirAddressChangeNothing) {
    for (const uint8_t opcode : BYTES{0x9B, 0xBB}) {
        TEST_6502 test{opcode, 0xFE, 0x02};
        test.Put(0x0304, {0x77});
        test.cpu.a = 0x81;
        test.cpu.x = 0x43;
        test.cpu.y = 0x06;
        EXPECT_EQ(test.Instruction(), 5U);
        EXPECT_TRUE(test.bus.trace.ends_with("r8001=FE r8002=02 r0204=00 r0304=77"));
        EXPECT_EQ(test.cpu.a, 0x81);
        EXPECT_EQ(test.cpu.x, 0x43);
        EXPECT_EQ(test.cpu.sp, 0xFD);
        EXPECT_EQ(test.cpu.p, kM6502FlagOne);
    }
}

// SHA, SHX, SHY with a base in page FF: the high byte + 1 is 0, and so is the stored value.
TEST(M6502, StoresWithTheHighByteWrapAroundTheMemory) {
    TEST_6502 test{0x9E, 0xF0, 0xFF};
    test.cpu.x = 0xFF;
    test.cpu.y = 0x20;
    test.Put(0x0010, {0x55});
    EXPECT_EQ(test.Instruction(), 5U);
    EXPECT_TRUE(test.bus.trace.ends_with("rFF10=00 w0010=00"));
}

// SHA: if the index carries, A AND X AND (high byte + 1) is both the stored value and the page.
TEST(M6502, StoreOfBothRegistersReplacesThePageOnlyWhereTheIndexCarries) {
    struct ROW {
        uint8_t y;
        const char* lastAccesses;
    };
    for (const ROW& row : {
             ROW{0x0F, "r45FF=00 w45FF=42"},
             ROW{0x10, "r4500=00 w4200=42"},
    }) {
        for (const bool isIndirect : {false, true}) {
            TEST_6502 test = isIndirect ? TEST_6502{0x93, 0x10} : TEST_6502{0x9F, 0xF0, 0x45};
            test.Put(0x0010, {0xF0, 0x45});
            test.cpu.a = 0xF3;
            test.cpu.x = 0x5A; // F3 AND 5A AND 46 is 42
            test.cpu.y = row.y;
            EXPECT_EQ(test.Instruction(), isIndirect ? 6U : 5U);
            EXPECT_TRUE(test.bus.trace.ends_with(row.lastAccesses)) << test.bus.trace;
            EXPECT_EQ(test.cpu.p, kM6502FlagOne);
        }
    }
}

TEST(M6502, IndexedReadWrapsAroundTheMemory) {
    TEST_6502 test{0xBD, 0xF0, 0xFF};
    test.cpu.x = 0x20;
    test.Put(0x0010, {0x55});
    EXPECT_EQ(test.Instruction(), 5U);
    EXPECT_EQ(test.cpu.a, 0x55);
}

TEST(M6502, BusValueIsThatOfTheLastAccess) {
    TEST_6502 test{0xEE, 0x00, 0x03}; // INC 0300
    test.bus.memory[0x0300] = 0x41;
    for (const uint8_t value : BYTES{0xEE, 0x00, 0x03, 0x41, 0x41, 0x42}) {
        test.Cycles(1);
        EXPECT_EQ(test.cpu.busValue, value);
    }
}

// What a bus finds in busValue: at a read the value of the access before, at a write the value written.
struct OPEN_BUS {
    M6502& cpu;
    RECORDING_BUS& memory;
    std::vector<uint8_t> seen;

    uint8_t Read(uint16_t address) {
        seen.push_back(cpu.busValue);
        return address >= 0x8000 ? memory.Read(address) : cpu.busValue;
    }
    void Write(uint16_t, uint8_t) { seen.push_back(cpu.busValue); }
};

TEST(M6502, ReadOfNothingReturnsTheLastByteOfTheAddress) {
    TEST_6502 test{0xAD, 0x34, 0x41, 0x8D, 0x00, 0x60}; // LDA 4134, STA 6000
    OPEN_BUS bus{test.cpu, test.bus, {}};
    for (int i = 0; i < 8; ++i) {
        M6502Sample(test.cpu);
        M6502Cycle(test.cpu, bus);
    }
    EXPECT_EQ(test.cpu.a, 0x41);
    EXPECT_EQ(bus.seen, (std::vector<uint8_t>{0x00, 0xAD, 0x34, 0x41, 0x41, 0x8D, 0x00, 0x41}));
}

TEST(M6502, CycleCountWraps) {
    TEST_6502 test{0xEA};
    test.cpu.cycles = 0xFFFFFFFF;
    test.Cycles(2);
    EXPECT_EQ(test.cpu.cycles, 1U);
}

TEST(M6502, ZeroAndNegativeOfEveryByte) {
    for (uint32_t value = 0; value < 256; ++value) {
        TEST_6502 test{0xA9, static_cast<uint8_t>(value)};
        test.Instruction();
        EXPECT_EQ(test.HasFlag(kM6502FlagZ), value == 0);
        EXPECT_EQ(test.HasFlag(kM6502FlagN), value >= 128);
    }
}

} // namespace
