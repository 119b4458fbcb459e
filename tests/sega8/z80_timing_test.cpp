// The accesses of every template by their clocks, written by hand. An access of three clocks is
// logged on its last; the number after the colon is the last clock of the instruction.
#include "z80_support.h"
#include <gtest/gtest.h>

namespace {

struct ROW {
    const char* name;
    std::vector<uint8_t> program;
    std::string expected; // accesses, then the clocks
};

void Check(const std::vector<ROW>& rows) {
    for (const ROW& row : rows) {
        TEST_Z80 test;
        uint32_t address = TEST_Z80::kProgram;
        for (const uint8_t byte : row.program) {
            test.bus.memory[address++] = byte;
        }
        const uint32_t clocks = test.Instruction();
        EXPECT_EQ(test.bus.trace + " : " + std::to_string(clocks), row.expected) << row.name;
    }
}

} // namespace

TEST(Z80Timing, InstructionsWithoutOperandsEndAfterTheirFetch) {
    Check({
        {"NOP",       {0x00}, "2f4000 : 4" },
        {"LD B,C",    {0x41}, "2f4000 : 4" },
        {"ADD A,B",   {0x80}, "2f4000 : 4" },
        {"RLCA",      {0x07}, "2f4000 : 4" },
        {"EX DE,HL",  {0xEB}, "2f4000 : 4" },
        {"JP (HL)",   {0xE9}, "2f4000 : 4" },
        {"HALT",      {0x76}, "2f4000 : 4" },
        {"INC BC",    {0x03}, "2f4000 : 6" },
        {"DEC SP",    {0x3B}, "2f4000 : 6" },
        {"LD SP,HL",  {0xF9}, "2f4000 : 6" },
        {"ADD HL,BC", {0x09}, "2f4000 : 11"},
    });
}

TEST(Z80Timing, LoadsReadAndWriteOnTheLastClockOfEachAccess) {
    Check({
        {"LD B,n",     {0x06, 0x7F},       "2f4000 6r4001 : 7"                               },
        {"LD C,n",     {0x0E, 0x7F},       "2f4000 6r4001 : 7"                               },
        {"LD B,(HL)",  {0x46},             "2f4000 6r5000 : 7"                               },
        {"LD C,(HL)",  {0x4E},             "2f4000 6r5000 : 7"                               },
        {"LD (HL),B",  {0x70},             "2f4000 6w5000=02 : 7"                            },
        {"LD (HL),C",  {0x71},             "2f4000 6w5000=10 : 7"                            },
        {"LD (HL),n",  {0x36, 0x5A},       "2f4000 6r4001 9w5000=5A : 10"                    },
        {"LD BC,nn",   {0x01, 0x34, 0x12}, "2f4000 6r4001 9r4002 : 10"                       },
        {"LD A,(BC)",  {0x0A},             "2f4000 6r0210 : 7"                               },
        {"LD (DE),A",  {0x12},             "2f4000 6w5100=12 : 7"                            },
        {"LD A,(nn)",  {0x3A, 0x00, 0x70}, "2f4000 6r4001 9r4002 12r7000 : 13"               },
        {"LD (nn),A",  {0x32, 0x00, 0x70}, "2f4000 6r4001 9r4002 12w7000=12 : 13"            },
        {"LD (nn),HL", {0x22, 0x00, 0x70}, "2f4000 6r4001 9r4002 12w7000=00 15w7001=50 : 16" },
        {"LD HL,(nn)", {0x2A, 0x00, 0x70}, "2f4000 6r4001 9r4002 12r7000 15r7001 : 16"       },
        {"PUSH BC",    {0xC5},             "2f4000 7w5FFF=02 10w5FFE=10 : 11"                },
        {"POP BC",     {0xC1},             "2f4000 6r6000 9r6001 : 10"                       },
        {"EX (SP),HL", {0xE3},             "2f4000 6r6000 10w6000=00 13r6001 18w6001=50 : 19"},
    });
}

TEST(Z80Timing, ArithmeticOnMemoryWritesBackLater) {
    Check({
        {"ADD A,n",  {0xC6, 0x01}, "2f4000 6r4001 : 7"            },
        {"CP (HL)",  {0xBE},       "2f4000 6r5000 : 7"            },
        {"INC (HL)", {0x34},       "2f4000 6r5000 10w5000=01 : 11"},
        {"DEC (HL)", {0x35},       "2f4000 6r5000 10w5000=FF : 11"},
    });
}

TEST(Z80Timing, JumpsAndCallsTakeLongerWhenTheyGo) {
    Check({
        {"JP nn",               {0xC3, 0x00, 0x70}, "2f4000 6r4001 9r4002 : 10"       },
        {"JP NZ,nn taken",      {0xC2, 0x00, 0x70}, "2f4000 6r4001 9r4002 : 10"       },
        {"JP Z,nn not taken",   {0xCA, 0x00, 0x70}, "2f4000 6r4001 9r4002 : 10"       },
        {"JR e",                {0x18, 0x10},       "2f4000 6r4001 : 12"              },
        {"JR NZ,e taken",       {0x20, 0x10},       "2f4000 6r4001 : 12"              },
        {"JR Z,e not taken",    {0x28, 0x10},       "2f4000 6r4001 : 7"               },
        {"DJNZ taken",          {0x10, 0x10},       "2f4000 7r4001 : 13"              },
        {"RET",                 {0xC9},             "2f4000 6r6000 9r6001 : 10"       },
        {"RET NZ taken",        {0xC0},             "2f4000 7r6000 10r6001 : 11"      },
        {"RET Z not taken",     {0xC8},             "2f4000 : 5"                      },
        {"CALL Z,nn not taken", {0xCC, 0x00, 0x70}, "2f4000 6r4001 9r4002 : 10"       },
        {"RST 08",              {0xCF},             "2f4000 7w5FFF=40 10w5FFE=01 : 11"},
    });
}

TEST(Z80Timing, LoopThatRunsOutTakesEightClocks) {
    TEST_Z80 test{0x10, 0x10};
    test.z80.regs[kZ80Bc] = 0x0110;
    EXPECT_EQ(test.Instruction(), 8U);
    EXPECT_EQ(test.bus.trace, "2f4000 7r4001");
    EXPECT_EQ(test.Word(kZ80Pc), 0x4002U);
}

TEST(Z80Timing, CallPushesBeforeItReadsItsTarget) {
    Check({
        {"CALL nn",    {0xCD, 0x00, 0x70}, "2f4000 6w5FFF=40 9w5FFE=03 13r4001 16r4002 : 17"},
        {"CALL NZ,nn", {0xC4, 0x00, 0x70}, "2f4000 6w5FFF=40 9w5FFE=03 13r4001 16r4002 : 17"},
    });
}

TEST(Z80Timing, CallReadsATargetThatItsOwnPushHasChanged) {
    TEST_Z80 test{0xCD, 0x00, 0x70};
    test.z80.regs[kZ80Sp] = 0x4003; // the return address 4003 falls on the target's two bytes
    test.Instruction();
    EXPECT_EQ(test.Word(kZ80Pc), 0x4003U);
}

TEST(Z80Timing, PortsFormTheirAddressBeforeTheAccess) {
    Check({
        {"IN A,(n)",  {0xDB, 0x34}, "2f4000 6r4001 10i1234 : 11"   },
        {"OUT (n),A", {0xD3, 0x34}, "2f4000 6r4001 10o1234=12 : 11"},
        {"IN B,(C)",  {0xED, 0x40}, "2f4000 6f4001 10i0210 : 12"   },
        {"IN C,(C)",  {0xED, 0x48}, "2f4000 6f4001 10i0210 : 12"   },
        {"IN F,(C)",  {0xED, 0x70}, "2f4000 6f4001 10i0210 : 12"   },
        {"OUT (C),B", {0xED, 0x41}, "2f4000 6f4001 10o0210=02 : 12"},
        {"OUT (C),0", {0xED, 0x71}, "2f4000 6f4001 10o0210=00 : 12"},
    });
}

TEST(Z80Timing, BitTableFetchesItsSecondByteAsAnOpcode) {
    Check({
        {"RLC B",      {0xCB, 0x00}, "2f4000 6f4001 : 8"                    },
        {"BIT 0,(HL)", {0xCB, 0x46}, "2f4000 6f4001 10r5000 : 12"           },
        {"SRL (HL)",   {0xCB, 0x3E}, "2f4000 6f4001 10r5000 14w5000=00 : 15"},
        {"SET 0,(HL)", {0xCB, 0xC6}, "2f4000 6f4001 10r5000 14w5000=01 : 15"},
    });
}

TEST(Z80Timing, IndexedFormsTakeTheirDisplacementFirst) {
    Check({
        {"LD B,(IX+5)",     {0xDD, 0x46, 0x05},       "2f4000 6f4001 10r4002 18r5205 : 19"                      },
        {"LD (IX-2),B",     {0xDD, 0x70, 0xFE},       "2f4000 6f4001 10r4002 18w51FE=02 : 19"                   },
        {"LD (IY+5),n",     {0xFD, 0x36, 0x05, 0x5A}, "2f4000 6f4001 10r4002 13r4003 18w5305=5A : 19"           },
        {"ADD A,(IX+5)",    {0xDD, 0x86, 0x05},       "2f4000 6f4001 10r4002 18r5205 : 19"                      },
        {"INC (IY+5)",      {0xFD, 0x34, 0x05},       "2f4000 6f4001 10r4002 18r5305 22w5305=01 : 23"           },
        {"LD IX,nn",        {0xDD, 0x21, 0x34, 0x12}, "2f4000 6f4001 10r4002 13r4003 : 14"                      },
        {"LD IXH,n",        {0xDD, 0x26, 0x12},       "2f4000 6f4001 10r4002 : 11"                              },
        {"ADD IX,BC",       {0xDD, 0x09},             "2f4000 6f4001 : 15"                                      },
        {"EX (SP),IX",      {0xDD, 0xE3},             "2f4000 6f4001 10r6000 14w6000=00 17r6001 22w6001=52 : 23"},
        {"LD B,C after DD", {0xDD, 0x41},             "2f4000 6f4001 : 8"                                       },
        {"three prefixes",
         {0xDD, 0xDD, 0xFD, 0x46, 0x05},
         "2f4000 6f4001 10f4002 14f4003 18r4004 26r5305 : 27"                                                   },
    });
}

TEST(Z80Timing, IndexedBitTableReadsItsOpcodeAsData) {
    Check({
        {"BIT 0,(IX+5)", {0xDD, 0xCB, 0x05, 0x46}, "2f4000 6f4001 10r4002 15r4003 18r5205 : 20"},
        {"SET 0,(IY+5)",
         {0xFD, 0xCB, 0x05, 0xC6},
         "2f4000 6f4001 10r4002 15r4003 18r5305 22w5305=01 : 23"                               },
        {"RRC (IX+5),B",
         {0xDD, 0xCB, 0x05, 0x08},
         "2f4000 6f4001 10r4002 15r4003 18r5205 22w5205=00 : 23"                               },
    });
}

TEST(Z80Timing, ExtendedTable) {
    Check({
        {"undefined",  {0xED, 0x00}, "2f4000 6f4001 : 8"                    },
        {"NEG",        {0xED, 0x44}, "2f4000 6f4001 : 8"                    },
        {"IM 1",       {0xED, 0x56}, "2f4000 6f4001 : 8"                    },
        {"LD I,A",     {0xED, 0x47}, "2f4000 6f4001 : 9"                    },
        {"LD A,R",     {0xED, 0x5F}, "2f4000 6f4001 : 9"                    },
        {"SBC HL,BC",  {0xED, 0x42}, "2f4000 6f4001 : 15"                   },
        {"LD (nn),BC",
         {0xED, 0x43, 0x00, 0x70},
         "2f4000 6f4001 10r4002 13r4003 16w7000=10 19w7001=02 : 20"         },
        {"LD BC,(nn)",
         {0xED, 0x4B, 0x00, 0x70},
         "2f4000 6f4001 10r4002 13r4003 16r7000 19r7001 : 20"               },
        {"RETN",       {0xED, 0x45}, "2f4000 6f4001 10r6000 13r6001 : 14"   },
        {"RETI",       {0xED, 0x4D}, "2f4000 6f4001 10r6000 13r6001 : 14"   },
        {"RLD",        {0xED, 0x6F}, "2f4000 6f4001 10r5000 17w5000=02 : 18"},
        {"RRD",        {0xED, 0x67}, "2f4000 6f4001 10r5000 17w5000=20 : 18"},
    });
}

TEST(Z80Timing, BlockInstructionsTakeFiveMoreClocksToRepeat) {
    Check({
        {"LDI",  {0xED, 0xA0}, "2f4000 6f4001 10r5000 13w5100=00 : 16"},
        {"LDD",  {0xED, 0xA8}, "2f4000 6f4001 10r5000 13w5100=00 : 16"},
        {"LDIR", {0xED, 0xB0}, "2f4000 6f4001 10r5000 13w5100=00 : 21"},
        {"LDDR", {0xED, 0xB8}, "2f4000 6f4001 10r5000 13w5100=00 : 21"},
        {"CPI",  {0xED, 0xA1}, "2f4000 6f4001 10r5000 : 16"           },
        {"CPD",  {0xED, 0xA9}, "2f4000 6f4001 10r5000 : 16"           },
        {"CPIR", {0xED, 0xB1}, "2f4000 6f4001 10r5000 : 21"           },
        {"CPDR", {0xED, 0xB9}, "2f4000 6f4001 10r5000 : 21"           },
        {"INI",  {0xED, 0xA2}, "2f4000 6f4001 11i0210 15w5000=AA : 16"},
        {"IND",  {0xED, 0xAA}, "2f4000 6f4001 11i0210 15w5000=AA : 16"},
        {"INIR", {0xED, 0xB2}, "2f4000 6f4001 11i0210 15w5000=AA : 21"},
        {"INDR", {0xED, 0xBA}, "2f4000 6f4001 11i0210 15w5000=AA : 21"},
        {"OUTI", {0xED, 0xA3}, "2f4000 6f4001 11r5000 15o0110=00 : 16"},
        {"OUTD", {0xED, 0xAB}, "2f4000 6f4001 11r5000 15o0110=00 : 16"},
        {"OTIR", {0xED, 0xB3}, "2f4000 6f4001 11r5000 15o0110=00 : 21"},
        {"OTDR", {0xED, 0xBB}, "2f4000 6f4001 11r5000 15o0110=00 : 21"},
    });
}

TEST(Z80Timing, BlockInstructionsEndWithTheirCount) {
    struct END_ROW {
        uint8_t opcode;
        uint32_t bc;
    };
    for (const END_ROW& row : {
             END_ROW{0xB0, 0x0001},
             END_ROW{0xB8, 0x0001},
             END_ROW{0xB1, 0x0001},
             END_ROW{0xB9, 0x0001},
             END_ROW{0xB2, 0x0110},
             END_ROW{0xB3, 0x0110},
             END_ROW{0xBA, 0x0110},
             END_ROW{0xBB, 0x0110}
    }) {
        TEST_Z80 test{0xED, row.opcode};
        test.z80.regs[kZ80Bc] = row.bc;
        EXPECT_EQ(test.Instruction(), 16U) << uint32_t{row.opcode};
        EXPECT_EQ(test.Word(kZ80Pc), 0x4002U) << uint32_t{row.opcode};
    }
}

TEST(Z80Timing, SearchEndsWhenTheByteIsFound) {
    TEST_Z80 test{0xED, 0xB1};
    test.bus.memory[0x5000] = 0x12; // as A
    EXPECT_EQ(test.Instruction(), 16U);
    EXPECT_EQ(test.Word(kZ80Hl), 0x5001U);
    EXPECT_EQ(test.Word(kZ80Bc), 0x020FU);
}
