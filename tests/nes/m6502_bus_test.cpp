// Every bus cycle of one instruction of each kind, written by hand from the published cycle tables (64doc).
#include "nes/m6502_rig.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace {

constexpr uint8_t kX = 0x05;
constexpr uint8_t kY = 0x06;

struct BUS_ROW {
    const char* name;
    std::vector<uint8_t> program; // at 8000
    const char* trace;
};

BUS_ROW Row(const char* name, BYTES program, const char* trace) {
    return {name, program, trace};
}

void PrintTo(const BUS_ROW& row, std::ostream* out) {
    *out << row.name;
}

class M6502Bus : public testing::TestWithParam<BUS_ROW> {};

// Page zero holds the pointers 0300 at 10, 0400 at 15 and 12FE at FF (its high byte at 00). With an index of 6
// they lead to 0306 and, across a page, to 1304.
TEST_P(M6502Bus, ShowsEveryAccess) {
    TEST_6502 test;
    uint32_t address = TEST_6502::kProgram;
    for (const uint8_t byte : GetParam().program) {
        test.bus.memory[address++] = byte;
    }
    test.Put(0x0010, {0x00, 0x03});
    test.Put(0x0015, {0x00, 0x04});
    test.Put(0x00FF, {0xFE});
    test.Put(0x0000, {0x12});
    test.Put(0x0200, {0x77});
    test.Put(0x0300, {0x11});
    test.Put(0x0304, {0x99});
    test.Put(0x0306, {0x66});
    test.Put(0x0400, {0x22});
    test.Put(0x1304, {0x99});
    test.Put(0x01FD, {0x3F});
    test.Put(0x01FE, {0x34, 0x12});
    test.cpu.x = kX;
    test.cpu.y = kY;
    test.cpu.a = 0x42;
    test.Instruction();
    EXPECT_EQ(test.bus.trace, GetParam().trace);
}

const std::vector<BUS_ROW> kRows{
    Row("Implied", {0xE8},
        "r8000=E8 r8001=00"), // INX
    Row("Accumulator", {0x0A, 0x55},
        "r8000=0A r8001=55"), // ASL A
    Row("Immediate", {0xA9, 0x55},
        "r8000=A9 r8001=55"), // LDA #
    Row("ZeroPageRead", {0xA5, 0x10},
        "r8000=A5 r8001=10 r0010=00"), // LDA zp
    Row("ZeroPageWrite", {0x85, 0x20},
        "r8000=85 r8001=20 w0020=42"), // STA zp
    Row("ZeroPageChange", {0xE6, 0x11},
        "r8000=E6 r8001=11 r0011=03 w0011=03 w0011=04"), // INC zp
    Row("ZeroPageXRead", {0xB5, 0x10},
        "r8000=B5 r8001=10 r0010=00 r0015=00"), // LDA zp,X
    Row("ZeroPageXWraps", {0xB5, 0xFB}, "r8000=B5 r8001=FB r00FB=00 r0000=12"),
    Row("ZeroPageYRead", {0xB6, 0xF9},
        "r8000=B6 r8001=F9 r00F9=00 r00FF=FE"), // LDX zp,Y
    Row("ZeroPageXWrite", {0x95, 0x10},
        "r8000=95 r8001=10 r0010=00 w0015=42"), // STA zp,X
    Row("ZeroPageYWrite", {0x96, 0x10},
        "r8000=96 r8001=10 r0010=00 w0016=05"), // STX zp,Y
    Row("ZeroPageXChange", {0xD6, 0x0B},
        "r8000=D6 r8001=0B r000B=00 r0010=00 w0010=00 w0010=FF"), // DEC zp,X
    Row("AbsoluteRead", {0xAD, 0x00, 0x03}, "r8000=AD r8001=00 r8002=03 r0300=11"),
    Row("AbsoluteWrite", {0x8D, 0x00, 0x03}, "r8000=8D r8001=00 r8002=03 w0300=42"),
    Row("AbsoluteChange", {0x0E, 0x00, 0x03},
        "r8000=0E r8001=00 r8002=03 r0300=11 w0300=11 w0300=22"), // ASL abs
    Row("AbsoluteXReadAcross", {0xBD, 0xFB, 0x03}, "r8000=BD r8001=FB r8002=03 r0300=11 r0400=22"),
    Row("AbsoluteYReadInPage", {0xB9, 0x00, 0x03}, "r8000=B9 r8001=00 r8002=03 r0306=66"),
    Row("AbsoluteYReadAcross", {0xB9, 0xFE, 0x02}, "r8000=B9 r8001=FE r8002=02 r0204=00 r0304=99"),
    Row("AbsoluteXWriteInPage", {0x9D, 0x00, 0x03}, "r8000=9D r8001=00 r8002=03 r0305=00 w0305=42"),
    Row("AbsoluteXWriteAcross", {0x9D, 0xFB, 0x02}, "r8000=9D r8001=FB r8002=02 r0200=77 w0300=42"),
    Row("AbsoluteYWrite", {0x99, 0x00, 0x03}, "r8000=99 r8001=00 r8002=03 r0306=66 w0306=42"),
    Row("AbsoluteXChangeAcross", {0xFE, 0xFB, 0x03},
        "r8000=FE r8001=FB r8002=03 r0300=11 r0400=22 w0400=22 w0400=23"), // INC abs,X
    Row("AbsoluteXChangeInPage", {0xFE, 0x00, 0x04},
        "r8000=FE r8001=00 r8002=04 r0405=00 r0405=00 w0405=00 w0405=01"),
    Row("AbsoluteYChange", {0xDB, 0xFE, 0x02},
        "r8000=DB r8001=FE r8002=02 r0204=00 r0304=99 w0304=99 w0304=98"), // DCP abs,Y
    Row("IndexedIndirectRead", {0xA1, 0x10},
        "r8000=A1 r8001=10 r0010=00 r0015=00 r0016=04 r0400=22"), // LDA (zp,X)
    Row("IndexedIndirectReadWraps", {0xA1, 0xFA},
        "r8000=A1 r8001=FA r00FA=00 r00FF=FE r0000=12 r12FE=00"),
    Row("IndexedIndirectWrite", {0x81, 0x0B},
        "r8000=81 r8001=0B r000B=00 r0010=00 r0011=03 w0300=42"),
    Row("IndexedIndirectChange", {0x03, 0x0B},
        "r8000=03 r8001=0B r000B=00 r0010=00 r0011=03 r0300=11 w0300=11 w0300=22"), // SLO (zp,X)
    Row("IndirectIndexedReadInPage", {0xB1, 0x10}, "r8000=B1 r8001=10 r0010=00 r0011=03 r0306=66"),
    Row("IndirectIndexedReadAcross", {0xB1, 0xFF},
        "r8000=B1 r8001=FF r00FF=FE r0000=12 r1204=00 r1304=99"),
    Row("IndirectIndexedWriteInPage", {0x91, 0x10},
        "r8000=91 r8001=10 r0010=00 r0011=03 r0306=66 w0306=42"),
    Row("IndirectIndexedWriteAcross", {0x91, 0xFF},
        "r8000=91 r8001=FF r00FF=FE r0000=12 r1204=00 w1304=42"),
    Row("IndirectIndexedChangeInPage", {0xF3, 0x10},
        "r8000=F3 r8001=10 r0010=00 r0011=03 r0306=66 r0306=66 w0306=66 w0306=67"), // ISC (zp),Y
    Row("IndirectIndexedChangeAcross", {0xF3, 0xFF},
        "r8000=F3 r8001=FF r00FF=FE r0000=12 r1204=00 r1304=99 w1304=99 w1304=9A"),
    Row("JumpAbsolute", {0x4C, 0x34, 0x12}, "r8000=4C r8001=34 r8002=12"),
    Row("JumpIndirect", {0x6C, 0x10, 0x00}, "r8000=6C r8001=10 r8002=00 r0010=00 r0011=03"),
    Row("JumpIndirectInItsPage", {0x6C, 0xFF, 0x12},
        "r8000=6C r8001=FF r8002=12 r12FF=00 r1200=00"),
    Row("JumpToSubroutine", {0x20, 0x34, 0x12},
        "r8000=20 r8001=34 r01FD=3F w01FD=80 w01FC=02 r8002=12"),
    Row("ReturnFromSubroutine", {0x60, 0x55},
        "r8000=60 r8001=55 r01FD=3F r01FE=34 r01FF=12 r1234=00"),
    Row("PushA", {0x48, 0x55}, "r8000=48 r8001=55 w01FD=42"),
    Row("PushFlags", {0x08, 0x55}, "r8000=08 r8001=55 w01FD=30"),
    Row("Pull", {0x68, 0x55}, "r8000=68 r8001=55 r01FD=3F r01FE=34"),
    Row("BranchNotTaken", {0xF0, 0x10},
        "r8000=F0 r8001=10"), // BEQ, Z clear
    Row("BranchTaken", {0xD0, 0x10},
        "r8000=D0 r8001=10 r8002=00"), // BNE
    Row("BranchBack", {0xD0, 0xFE},
        "r8000=D0 r8001=FE r8002=00"), // to itself
    Row("BranchToPageBefore", {0xD0, 0xFD}, "r8000=D0 r8001=FD r8002=00 r80FF=00"),
    Row("Break", {0x00, 0x55}, "r8000=00 r8001=55 w01FD=80 w01FC=02 w01FB=30 rFFFE=00 rFFFF=A0"),
    Row("StoreHighInPage", {0x9F, 0x00, 0x03},
        "r8000=9F r8001=00 r8002=03 r0306=66 w0306=00"), // SHA abs,Y: 42 AND 05 AND 04
    Row("StoreHighXInPage", {0x9E, 0x00, 0x03},
        "r8000=9E r8001=00 r8002=03 r0306=66 w0306=04"), // SHX abs,Y: 05 AND 04
    Row("StoreHighY", {0x9C, 0x00, 0x03},
        "r8000=9C r8001=00 r8002=03 r0305=00 w0305=04"), // SHY abs,X: 06 AND 04
    // If the index carries, the stored value is also the high byte of the address.
    Row("StoreHighXAcross", {0x9E, 0xFE, 0x02},
        "r8000=9E r8001=FE r8002=02 r0204=00 w0104=01"), // SHX abs,Y: 05 AND 03
    Row("StoreHighYAcross", {0x9C, 0xFE, 0x03},
        "r8000=9C r8001=FE r8002=03 r0303=00 w0403=04"), // SHY abs,X: 06 AND 04
    Row("StoreHighYAcrossIntoPageZero", {0x9C, 0xFE, 0x07},
        "r8000=9C r8001=FE r8002=07 r0703=00 w0003=00"), // SHY abs,X: 06 AND 08
    Row("StoreHighAcross", {0x9F, 0xFE, 0x42},
        "r8000=9F r8001=FE r8002=42 r4204=00 w0004=00"), // SHA abs,Y: 42 AND 05 AND 43
    Row("StoreHighIndirectInPage", {0x93, 0x10},
        "r8000=93 r8001=10 r0010=00 r0011=03 r0306=66 w0306=00"), // SHA (zp),Y: 42 AND 05 AND 04
    Row("StoreHighIndirectAcross", {0x93, 0xFF},
        "r8000=93 r8001=FF r00FF=FE r0000=12 r1204=00 w0004=00"), // SHA (zp),Y: 42 AND 05 AND 13
    Row("NoOperationAbsolute", {0x0C, 0x00, 0x03}, "r8000=0C r8001=00 r8002=03 r0300=11"),
    Row("NoOperationAbsoluteXAcross", {0x1C, 0xFB, 0x02},
        "r8000=1C r8001=FB r8002=02 r0200=77 r0300=11"),
};

INSTANTIATE_TEST_SUITE_P(Kinds, M6502Bus, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<BUS_ROW>& row) {
                             return std::string(row.param.name);
                         });

} // namespace
