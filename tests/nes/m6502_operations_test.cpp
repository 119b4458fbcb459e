// What the operations do to registers, flags and memory, computed by hand from the published rules, and the
// accesses of the NOPs with an absolute operand.
#include "nes/m6502_rig.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

namespace {

constexpr uint8_t kC = kM6502FlagC;
constexpr uint8_t kZ = kM6502FlagZ;
constexpr uint8_t kV = kM6502FlagV;
constexpr uint8_t kN = kM6502FlagN;

constexpr uint8_t kCell = 0x40; // in page zero: the memory operand

struct VALUES {
    uint8_t a;
    uint8_t x;
    uint8_t y;
    uint8_t memory;
    uint8_t flags; // of C, Z, V and N

    bool operator==(const VALUES&) const = default;
};

void PrintTo(const VALUES& values, std::ostream* out) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "a %02X x %02X y %02X memory %02X flags %02X",
                  values.a + 0U, values.x + 0U, values.y + 0U, values.memory + 0U,
                  values.flags + 0U);
    *out << text.data();
}

struct OPERATION_ROW {
    uint8_t opcode; // with a zero-page operand or none
    VALUES before;
    VALUES after;
};

void ExpectRows(const std::vector<OPERATION_ROW>& rows) {
    for (size_t i = 0; i < rows.size(); ++i) {
        const OPERATION_ROW& row = rows[i];
        TEST_6502 test{row.opcode, kCell};
        test.cpu.a = row.before.a;
        test.cpu.x = row.before.x;
        test.cpu.y = row.before.y;
        test.cpu.p = static_cast<uint8_t>(kM6502FlagOne | row.before.flags);
        test.bus.memory[kCell] = row.before.memory;
        test.Instruction();
        const VALUES after{test.cpu.a, test.cpu.x, test.cpu.y, test.bus.memory[kCell],
                           static_cast<uint8_t>(test.cpu.p & ~kM6502FlagOne)};
        EXPECT_EQ(after, row.after) << "row " << i << ", opcode " << row.opcode + 0;
        EXPECT_EQ(test.cpu.sp, 0xFD) << i;
        EXPECT_TRUE(test.HasFlag(kM6502FlagOne)) << i;
    }
}

// The fields of a row: A, X, Y, memory, flags, before and after.

TEST(M6502Operations, AndOrXorSetZeroAndNegative) {
    ExpectRows({
        {0x25, {0xF0, 1, 2, 0x3C, kC | kZ | kV | kN}, {0x30, 1, 2, 0x3C, kC | kV}     }, // AND
        {0x25, {0x0F, 1, 2, 0xF0, kN},                {0x00, 1, 2, 0xF0, kZ}          },
        {0x25, {0xFF, 1, 2, 0x81, kZ},                {0x81, 1, 2, 0x81, kN}          },
        {0x05, {0x50, 1, 2, 0x0F, kC | kZ | kN},      {0x5F, 1, 2, 0x0F, kC}          }, // ORA
        {0x05, {0x00, 1, 2, 0x00, kV | kN},           {0x00, 1, 2, 0x00, kZ | kV}     },
        {0x05, {0x01, 1, 2, 0x80, 0},                 {0x81, 1, 2, 0x80, kN}          },
        {0x45, {0xFF, 1, 2, 0x0F, kZ},                {0xF0, 1, 2, 0x0F, kN}          }, // EOR
        {0x45, {0xA5, 1, 2, 0xA5, kC | kV | kN},      {0x00, 1, 2, 0xA5, kC | kZ | kV}},
        {0x45, {0x12, 1, 2, 0x34, kZ | kN},           {0x26, 1, 2, 0x34, 0}           },
    });
}

// Carry means "not below", unsigned; overflow stays.
TEST(M6502Operations, ComparesSubtractWithoutKeepingTheResult) {
    ExpectRows({
        {0xC5, {0x40, 1, 2, 0x40, kN},      {0x40, 1, 2, 0x40, kC | kZ}     }, // CMP
        {0xC5, {0x40, 1, 2, 0x41, kC | kV}, {0x40, 1, 2, 0x41, kV | kN}     },
        {0xC5, {0x80, 1, 2, 0x7F, kZ},      {0x80, 1, 2, 0x7F, kC}          },
        {0xC5, {0x00, 1, 2, 0x80, kC | kZ}, {0x00, 1, 2, 0x80, kN}          },
        {0xC5, {0xFF, 1, 2, 0x01, 0},       {0xFF, 1, 2, 0x01, kC | kN}     },
        {0xE4, {1, 0x40, 2, 0x40, kV},      {1, 0x40, 2, 0x40, kC | kZ | kV}}, // CPX
        {0xE4, {1, 0x3F, 2, 0x40, kC},      {1, 0x3F, 2, 0x40, kN}          },
        {0xE4, {1, 0x90, 2, 0x10, 0},       {1, 0x90, 2, 0x10, kC | kN}     },
        {0xC4, {1, 2, 0x40, 0x40, kN},      {1, 2, 0x40, 0x40, kC | kZ}     }, // CPY
        {0xC4, {1, 2, 0x00, 0xFF, kC | kZ}, {1, 2, 0x00, 0xFF, 0}           },
        {0xC4, {1, 2, 0xFF, 0x7E, kV},      {1, 2, 0xFF, 0x7E, kC | kV | kN}},
    });
}

TEST(M6502Operations, BitTakesTwoFlagsFromMemoryAndZeroFromTheAnd) {
    ExpectRows({
        {0x24, {0x0F, 1, 2, 0xF0, kC},           {0x0F, 1, 2, 0xF0, kC | kZ | kV | kN}},
        {0x24, {0x01, 1, 2, 0x41, kC | kZ | kN}, {0x01, 1, 2, 0x41, kC | kV}          },
        {0x24, {0x80, 1, 2, 0x80, kV},           {0x80, 1, 2, 0x80, kN}               },
    });
}

TEST(M6502Operations, ShiftsAndRotatesOfMemory) {
    ExpectRows({
        {0x06, {1, 2, 3, 0x81, kZ | kN},      {1, 2, 3, 0x02, kC}          }, // ASL
        {0x06, {1, 2, 3, 0x40, kC | kV},      {1, 2, 3, 0x80, kV | kN}     },
        {0x06, {1, 2, 3, 0x80, kC},           {1, 2, 3, 0x00, kC | kZ}     },
        {0x46, {1, 2, 3, 0x01, kN},           {1, 2, 3, 0x00, kC | kZ}     }, // LSR
        {0x46, {1, 2, 3, 0xFE, kC | kZ | kN}, {1, 2, 3, 0x7F, 0}           },
        {0x46, {1, 2, 3, 0x81, kV},           {1, 2, 3, 0x40, kC | kV}     },
        {0x26, {1, 2, 3, 0x80, kN},           {1, 2, 3, 0x00, kC | kZ}     }, // ROL
        {0x26, {1, 2, 3, 0x80, kC | kZ},      {1, 2, 3, 0x01, kC}          },
        {0x26, {1, 2, 3, 0x40, kC},           {1, 2, 3, 0x81, kN}          },
        {0x66, {1, 2, 3, 0x01, kV},           {1, 2, 3, 0x00, kC | kZ | kV}}, // ROR
        {0x66, {1, 2, 3, 0x01, kC | kZ},      {1, 2, 3, 0x80, kC | kN}     },
        {0x66, {1, 2, 3, 0x02, kN},           {1, 2, 3, 0x01, 0}           },
    });
}

TEST(M6502Operations, ShiftsAndRotatesOfTheAccumulator) {
    ExpectRows({
        {0x0A, {0x81, 2, 3, 0x55, kZ | kN}, {0x02, 2, 3, 0x55, kC}     }, // ASL
        {0x0A, {0x40, 2, 3, 0x55, kC},      {0x80, 2, 3, 0x55, kN}     },
        {0x4A, {0x01, 2, 3, 0x55, kN},      {0x00, 2, 3, 0x55, kC | kZ}}, // LSR
        {0x4A, {0x80, 2, 3, 0x55, kC | kN}, {0x40, 2, 3, 0x55, 0}      },
        {0x2A, {0x80, 2, 3, 0x55, kC},      {0x01, 2, 3, 0x55, kC}     }, // ROL
        {0x2A, {0x80, 2, 3, 0x55, kN},      {0x00, 2, 3, 0x55, kC | kZ}},
        {0x6A, {0x00, 2, 3, 0x55, kC | kZ}, {0x80, 2, 3, 0x55, kN}     }, // ROR
        {0x6A, {0x03, 2, 3, 0x55, kV},      {0x01, 2, 3, 0x55, kC | kV}},
    });
}

TEST(M6502Operations, IncrementsAndDecrementsTouchZeroAndNegativeOnly) {
    ExpectRows({
        {0xE6, {1, 2, 3, 0x7F, kC | kZ},      {1, 2, 3, 0x80, kC | kN}     }, // INC
        {0xE6, {1, 2, 3, 0xFF, kV | kN},      {1, 2, 3, 0x00, kZ | kV}     },
        {0xE6, {1, 2, 3, 0x00, kZ | kN},      {1, 2, 3, 0x01, 0}           },
        {0xC6, {1, 2, 3, 0x00, kZ},           {1, 2, 3, 0xFF, kN}          }, // DEC
        {0xC6, {1, 2, 3, 0x01, kC},           {1, 2, 3, 0x00, kC | kZ}     },
        {0xC6, {1, 2, 3, 0x80, kC | kV | kN}, {1, 2, 3, 0x7F, kC | kV}     },
        {0xE8, {1, 0xFF, 3, 4, kN},           {1, 0x00, 3, 4, kZ}          }, // INX
        {0xE8, {1, 0x7F, 3, 4, kC | kZ},      {1, 0x80, 3, 4, kC | kN}     },
        {0xCA, {1, 0x00, 3, 4, kV | kZ},      {1, 0xFF, 3, 4, kV | kN}     }, // DEX
        {0xCA, {1, 0x01, 3, 4, kC | kN},      {1, 0x00, 3, 4, kC | kZ}     },
        {0xC8, {1, 2, 0xFF, 4, kC | kV},      {1, 2, 0x00, 4, kC | kZ | kV}}, // INY
        {0xC8, {1, 2, 0x41, 4, kZ | kN},      {1, 2, 0x42, 4, 0}           },
        {0x88, {1, 2, 0x00, 4, kC},           {1, 2, 0xFF, 4, kC | kN}     }, // DEY
        {0x88, {1, 2, 0x80, 4, kN},           {1, 2, 0x7F, 4, 0}           },
    });
}

TEST(M6502Operations, LoadOfTwoRegisters) {
    ExpectRows({
        {0xA7, {1, 2, 3, 0x80, kC | kZ | kV}, {0x80, 0x80, 3, 0x80, kC | kV | kN}}, // LAX
        {0xA7, {1, 2, 3, 0x00, kN},           {0x00, 0x00, 3, 0x00, kZ}          },
    });
}

// Carry is from the shift, zero and negative from the accumulator.
TEST(M6502Operations, ShiftsOfMemoryJoinedWithLogic) {
    ExpectRows({
        {0x07, {0x04, 2, 3, 0xC1, kZ},           {0x86, 2, 3, 0x82, kC | kN}     }, // SLO
        {0x07, {0x01, 2, 3, 0x20, kC | kZ | kN}, {0x41, 2, 3, 0x40, 0}           },
        {0x07, {0x00, 2, 3, 0x80, kV},           {0x00, 2, 3, 0x00, kC | kZ | kV}},
        {0x27, {0xFE, 2, 3, 0x81, kC | kN},      {0x02, 2, 3, 0x03, kC}          }, // RLA
        {0x27, {0x7F, 2, 3, 0x40, kN},           {0x00, 2, 3, 0x80, kZ}          },
        {0x27, {0xC0, 2, 3, 0x40, kC | kV},      {0x80, 2, 3, 0x81, kV | kN}     },
        {0x47, {0x01, 2, 3, 0x03, kN},           {0x00, 2, 3, 0x01, kC | kZ}     }, // SRE
        {0x47, {0xC0, 2, 3, 0x80, kC | kZ | kV}, {0x80, 2, 3, 0x40, kV | kN}     },
    });
}

// The carry of the addition is the bit that was rotated out.
TEST(M6502Operations, RotationOfMemoryJoinedWithAnAddition) {
    ExpectRows({
        {0x67, {0x10, 2, 3, 0x03, kN},      {0x12, 2, 3, 0x01, 0}      }, // RRA: 10 + 01 + 1
        {0x67, {0x7F, 2, 3, 0x02, kC | kV}, {0x00, 2, 3, 0x81, kC | kZ}}, // 7F + 81
        {0x67, {0x7F, 2, 3, 0x01, kZ},      {0x80, 2, 3, 0x00, kV | kN}}, // 7F + 00 + 1
    });
}

TEST(M6502Operations, StepsOfMemoryJoinedWithAComparisonOrASubtraction) {
    ExpectRows({
        {0xC7, {0x40, 2, 3, 0x41, kV},      {0x40, 2, 3, 0x40, kC | kZ | kV}}, // DCP
        {0xC7, {0x01, 2, 3, 0x00, kC | kN}, {0x01, 2, 3, 0xFF, 0}           },
        {0xC7, {0x90, 2, 3, 0x11, kZ},      {0x90, 2, 3, 0x10, kC | kN}     },
        {0xE7, {0x20, 2, 3, 0x0F, kC | kN}, {0x10, 2, 3, 0x10, kC}          }, // ISC: 20 - 10
        {0xE7, {0x00, 2, 3, 0xFF, kV | kZ}, {0xFF, 2, 3, 0x00, kN}          }, // 00 - 00 - 1
        {0xE7, {0x00, 2, 3, 0x7F, kC},      {0x80, 2, 3, 0x80, kV | kN}     }, // 0 - -128
    });
}

// With X 5: from 0300 to 0305, and from 02FB to 0300 with a read at 0200 before it.
TEST(M6502Operations, NoOperationsWithAnIndexTakeACycleMoreAcrossAPage) {
    for (const uint8_t opcode : BYTES{0x1C, 0x3C, 0x5C, 0x7C, 0xDC, 0xFC}) {
        for (const bool isAcross : {false, true}) {
            TEST_6502 test{opcode, static_cast<uint8_t>(isAcross ? 0xFB : 0x00),
                           static_cast<uint8_t>(isAcross ? 0x02 : 0x03)};
            test.Put(0x0200, {0x77});
            test.Put(0x0300, {0x11});
            test.Put(0x0305, {0x80});
            test.cpu.a = 0x42;
            test.cpu.x = 5;
            test.cpu.y = 0x21;
            EXPECT_EQ(test.Instruction(), isAcross ? 5U : 4U) << opcode + 0;
            EXPECT_TRUE(test.bus.trace.ends_with(isAcross ? " r8001=FB r8002=02 r0200=77 r0300=11"
                                                          : " r8001=00 r8002=03 r0305=80"))
                << test.bus.trace;
            EXPECT_EQ(test.cpu.pc, TEST_6502::kProgram + 3);
            EXPECT_EQ(test.cpu.a, 0x42);
            EXPECT_EQ(test.cpu.x, 5);
            EXPECT_EQ(test.cpu.y, 0x21);
            EXPECT_EQ(test.cpu.p, kM6502FlagOne);
        }
    }
}

} // namespace
