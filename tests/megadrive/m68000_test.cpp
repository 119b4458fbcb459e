// What instructions do, where the published cases leave a point open or a rule deserves its own name.
#include "megadrive/m68000_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kX = 0x10;
constexpr uint32_t kN = 0x08;
constexpr uint32_t kZ = 0x04;
constexpr uint32_t kV = 0x02;
constexpr uint32_t kC = 0x01;

// An instruction on D0 and D1, with the conditions before and after.
struct ROW {
    const char* name;
    std::vector<uint32_t> words;
    uint32_t d0;
    uint32_t d1;
    uint32_t before;
    uint32_t result; // in D1
    uint32_t after;
};

void RunRows(const std::vector<ROW>& rows) {
    for (const ROW& row : rows) {
        SCOPED_TRACE(row.name);
        TEST_68000 rig(row.words);
        rig.D(0) = row.d0;
        rig.D(1) = row.d1;
        rig.SetStatus(0x2700 | row.before);
        rig.Tick();
        EXPECT_EQ(rig.D(1), row.result);
        EXPECT_EQ(rig.Conditions(), row.after);
    }
}

// As measured on a console: N is the result's top bit, V shows that the correction changed it.
TEST(M68000, DecimalArithmeticSetsNAndVByTheCorrection) {
    constexpr uint32_t kAbcd = 0xC300; // D0 to D1
    constexpr uint32_t kSbcd = 0x8300;
    RunRows({
        {"40+40",          {kAbcd}, 0x40, 0x40, 0,  0x80, kN          },
        {"40+3F",          {kAbcd}, 0x40, 0x3F, 0,  0x85, kN | kV     },
        {"40+3A",          {kAbcd}, 0x40, 0x3A, 0,  0x80, kN | kV     },
        {"78+02",          {kAbcd}, 0x78, 0x02, 0,  0x80, kN | kV     },
        {"99+01",          {kAbcd}, 0x99, 0x01, kZ, 0x00, kX | kZ | kC},
        {"99+01, Z clear", {kAbcd}, 0x99, 0x01, 0,  0x00, kX | kC     },
        {"67-91",          {kSbcd}, 0x91, 0x67, 0,  0x76, kX | kV | kC},
        {"90-0F",          {kSbcd}, 0x0F, 0x90, 0,  0x7B, kV          },
        {"0F-10",          {kSbcd}, 0x10, 0x0F, 0,  0x9F, kX | kN | kC},
        {"0F-A0",          {kSbcd}, 0xA0, 0x0F, 0,  0x0F, kX | kC     }
    });
}

TEST(M68000, DivisionThatOverflowsKeepsItsRegisterAndSetsNAndV) {
    constexpr uint32_t kDivu = 0x82C0; // D0 into D1
    constexpr uint32_t kDivs = 0x83C0;
    RunRows({
        {"10000/1",                                  {kDivu}, 1,      0x10000,    kX | kZ | kC, 0x10000,    kX | kN | kV},
        {"FFFF/1",                                   {kDivu}, 1,      0xFFFF,     kX,           0x0000FFFF, kX | kN     },
        {"7/2",                                      {kDivu}, 2,      7,          0,            0x00010003, 0           },
        {"8000/1 signed",                            {kDivs}, 1,      0x8000,     0,            0x8000,     kN | kV     },
        {"-8000/1 signed",                           {kDivs}, 1,      0xFFFF8000, 0,            0x00008000, kN          },
        {"lowest/-1",                                {kDivs}, 0xFFFF, 0x80000000, 0,            0x80000000, kN | kV     },
        {"-7/2: the remainder follows the dividend", {kDivs}, 2,      0xFFFFFFF9, 0,            0xFFFFFFFD, kN          },
        {"0/5",                                      {kDivs}, 5,      0,          0,            0,          kZ          }
    });
}

TEST(M68000, ChkSetsZByItsRegisterAndNByTheSideItLeavesOn) {
    constexpr uint32_t kChk = 0x4380; // D0 bounds D1
    RunRows({
        {"in range keeps N", {kChk}, 5, 3,      kX | kN | kV | kC, 3,      kX | kN},
        {"zero",             {kChk}, 5, 0,      kX,                0,      kX | kZ},
        {"below",            {kChk}, 5, 0xFFFF, kX,                0xFFFF, kX | kN},
        {"above",            {kChk}, 5, 6,      kX | kN,           6,      kX     }
    });
}

TEST(M68000, ShiftsByZeroAndPastTheWidth) {
    constexpr uint32_t kAslB = 0xE121; // by D0, of D1
    constexpr uint32_t kAsrW = 0xE061;
    constexpr uint32_t kLslW = 0xE169;
    constexpr uint32_t kLsrL = 0xE0A9;
    constexpr uint32_t kRoxlB = 0xE131;
    constexpr uint32_t kRolB = 0xE139;
    constexpr uint32_t kRorW = 0xE079;
    RunRows({
        {"ASL.B 0",                        {kAslB},  0,  0x180,      kX | kV | kC, 0x180,  kX | kN          },
        {"ASL.B 64 is 0",                  {kAslB},  64, 0x40,       kX,           0x40,   kX               },
        {"ASL.B 1, sign changes",          {kAslB},  1,  0x40,       0,            0x80,   kN | kV          },
        {"ASL.B 2, sign changes and back", {kAslB},  2,  0xA0,       0,            0x80,   kN | kV          },
        {"ASL.B 1, sign stays",            {kAslB},  1,  0xC0,       0,            0x80,   kX | kN | kC     },
        {"ASL.B 8",                        {kAslB},  8,  0x01,       0,            0x00,   kX | kZ | kV | kC},
        {"ASL.B 9",                        {kAslB},  9,  0x01,       kX,           0x00,   kZ | kV          },
        {"ASR.W 40",                       {kAsrW},  40, 0x8000,     0,            0xFFFF, kX | kN | kC     },
        {"LSL.W 16",                       {kLslW},  16, 0x0001,     0,            0x0000, kX | kZ | kC     },
        {"LSL.W 17",                       {kLslW},  17, 0x0001,     kX,           0x0000, kZ               },
        {"LSR.L 32",                       {kLsrL},  32, 0x80000000, 0,            0,      kX | kZ | kC     },
        {"LSR.L 33",                       {kLsrL},  33, 0x80000000, kX,           0,      kZ               },
        {"ROXL.B 0 gives C = X",           {kRoxlB}, 0,  0x01,       kX,           0x01,   kX | kC          },
        {"ROXL.B 9 is a whole round",      {kRoxlB}, 9,  0x5A,       kX,           0x5A,   kX | kC          },
        {"ROXL.B 1",                       {kRoxlB}, 1,  0x80,       kX,           0x01,   kX | kC          },
        {"ROL.B 8",                        {kRolB},  8,  0x81,       0,            0x81,   kN | kC          },
        {"ROR.W 16",                       {kRorW},  16, 0x7FFF,     kX | kC,      0x7FFF, kX               }
    });
}

TEST(M68000, ALiteralShiftCountOfZeroIsEight) {
    RunRows({
        {"LSL.W #8", {0xE149}, 0, 0x00FF, 0, 0xFF00, kN}
    });
}

TEST(M68000, ExtendedFormsOnlyEverClearZ) {
    constexpr uint32_t kAddxL = 0xD380; // D0 to D1
    constexpr uint32_t kSubxB = 0x9300;
    constexpr uint32_t kNegxW = 0x4041; // D1
    RunRows({
        {"ADDX 0, Z set",    {kAddxL}, 0xFFFFFFFF, 0,    kX | kZ, 0,      kX | kZ | kC},
        {"ADDX 0, Z clear",  {kAddxL}, 0xFFFFFFFF, 0,    kX,      0,      kX | kC     },
        {"ADDX 1",           {kAddxL}, 0,          0,    kX | kZ, 1,      0           },
        {"SUBX 0, Z set",    {kSubxB}, 0x7F,       0x80, kX | kZ, 0,      kZ | kV     },
        {"NEGX of 0 with X", {kNegxW}, 0,          0,    kX | kZ, 0xFFFF, kX | kN | kC}
    });
}

TEST(M68000, TasWritesMemoryBack) {
    TEST_68000 rig{0x4AD0};
    rig.A(0) = 0x2001;
    rig.Tick();
    EXPECT_EQ(rig.Byte(0x2001), 0x80U);
    EXPECT_EQ(rig.Conditions() & (kN | kZ), kZ);
}

// The flags are those of the byte as it was; X stays.
TEST(M68000, TasTestsTheByteBeforeItSetsItsTopBit) {
    constexpr uint32_t kTas = 0x4AC1; // of D1
    RunRows({
        {"zero",     {kTas}, 0, 0x12345600, kX | kN | kV | kC, 0x12345680, kX | kZ},
        {"positive", {kTas}, 0, 0xFFFFFF7F, kZ | kV | kC,      0xFFFFFFFF, 0      },
        {"negative", {kTas}, 0, 0x00000081, kX | kZ,           0x00000081, kX | kN}
    });
}

TEST(M68000, TasThroughA7MovesItByTwoAndWritesTheHighByte) {
    struct STEP {
        uint32_t opcode;
        uint32_t from;
        uint32_t to;
        const char* bus;
    };
    for (const STEP& step : {
             STEP{0x4ADF, 0x2000, 0x2002, "f 1002 0000; rb 2000 47; wb 2000 C7; "}, // (A7)+
             STEP{0x4AE7, 0x2002, 0x2000, "f 1002 0000; rb 2000 47; wb 2000 C7; "}  // -(A7)
    }) {
        TEST_68000 rig{step.opcode};
        rig.SetStatus(0x271F);
        rig.A(7) = step.from;
        rig.SetWord(0x2000, 0x4755);
        rig.Tick();
        EXPECT_EQ(rig.A(7), step.to);
        EXPECT_EQ(rig.Word(0x2000), 0xC755U);
        EXPECT_EQ(rig.Conditions(), kX);
        EXPECT_EQ(rig.TakeLog(), step.bus);
    }
}

// The frame register is pushed with its value from before the push; the chip does so with A7, too.
TEST(M68000, LinkOfA7PushesItAsItWas) {
    TEST_68000 rig{0x4E57, 0xFFF8}; // LINK A7,#-8
    EXPECT_EQ(rig.Tick(), 16U);
    EXPECT_EQ(rig.Long(kStack - 4), kStack);
    EXPECT_EQ(rig.A(7), kStack - 4 - 8);
}

TEST(M68000, UnlkOfA7LoadsItFromItsTopWithoutTheStep) {
    TEST_68000 rig{0x4E5F};
    rig.SetLong(kStack, 0x00012344);
    EXPECT_EQ(rig.Tick(), 12U);
    EXPECT_EQ(rig.A(7), 0x00012344U);
}

TEST(M68000, UnlkUndoesLink) {
    TEST_68000 rig{0x4E56, 0xFF00, 0x4E5E}; // LINK A6,#-256; UNLK A6
    rig.A(6) = 0x89ABCDEF;
    rig.Tick();
    EXPECT_EQ(rig.A(6), kStack - 4);
    EXPECT_EQ(rig.A(7), kStack - 4 - 256);
    rig.Tick();
    EXPECT_EQ(rig.A(6), 0x89ABCDEFU);
    EXPECT_EQ(rig.A(7), kStack);
}

// Every second byte, from the displaced address on; a word leaves the upper half of its register.
TEST(M68000, MovepLoadsEverySecondByteTheHighestFirst) {
    struct LOAD {
        uint32_t opcode;
        uint32_t displacement;
        uint32_t clocks;
        uint32_t result;
        const char* bus;
    };
    for (const LOAD& load : {
             LOAD{0x0308, 0x0001, 16, 0xFFFF22AA, "rb 2001 22; rb 2003 AA; "},
             LOAD{0x0348, 0x0001, 24, 0x22AA4466,
                  "rb 2001 22; rb 2003 AA; rb 2005 44; rb 2007 66; "        },
             LOAD{0x0308, 0xFFFE, 16, 0xFFFF7711, "rb 1FFE 77; rb 2000 11; "}
    }) {
        TEST_68000 rig{load.opcode, load.displacement};
        rig.SetWord(0x1FFE, 0x7788);
        rig.SetLong(0x2000, 0x112299AA);
        rig.SetLong(0x2004, 0x33445566);
        rig.SetStatus(0x271F);
        rig.A(0) = 0x2000;
        rig.D(1) = 0xFFFFFFFF;
        EXPECT_EQ(rig.Tick(), load.clocks);
        EXPECT_EQ(rig.D(1), load.result);
        EXPECT_EQ(rig.A(0), 0x2000U);
        EXPECT_EQ(rig.Conditions(), 0x1FU);
        const std::string bus = rig.TakeLog();
        EXPECT_EQ(bus.substr(bus.find("rb")), load.bus);
    }
}

TEST(M68000, ExgSwapsWholeRegistersOfBothKinds) {
    struct SWAP {
        uint32_t opcode;
        uint32_t first; // of D0 to A7
        uint32_t second;
    };
    for (const SWAP& swap : {
             SWAP{0xC741, 3,  1 }, // D3,D1
             SWAP{0xC74F, 11, 15}, // A3,A7
             SWAP{0xC78A, 3,  10}  // D3,A2
    }) {
        TEST_68000 rig{swap.opcode};
        for (uint32_t i = 0; i < 16; ++i) {
            rig.cpu.regs[i] = 0x80010000 + i * 0x101;
        }
        std::array<uint32_t, 16> expected = rig.cpu.regs;
        expected[swap.first] = 0x80010000 + swap.second * 0x101;
        expected[swap.second] = 0x80010000 + swap.first * 0x101;
        rig.SetStatus(0x271F);
        EXPECT_EQ(rig.Tick(), 6U);
        EXPECT_EQ(rig.cpu.regs, expected);
        EXPECT_EQ(rig.Conditions(), 0x1FU);
    }
}

TEST(M68000, MovemStoresItsPointerAsItWasAndLoadsEndAtTheFinalAddress) {
    TEST_68000 rig{0x48E0, 0x0080, 0x4CD8, 0x0301}; // MOVEM.L A0,-(A0); MOVEM.L (A0)+,D0/A0-A1
    rig.A(0) = 0x2004;
    rig.Tick();
    EXPECT_EQ(rig.A(0), 0x2000U);
    EXPECT_EQ(rig.Long(0x2000), 0x2004U);
    rig.SetLong(0x2004, 0x11111111);
    rig.SetLong(0x2008, 0x22222222);
    rig.Tick();
    EXPECT_EQ(rig.D(0), 0x2004U);
    EXPECT_EQ(rig.A(1), 0x22222222U);
    EXPECT_EQ(rig.A(0), 0x200CU);
}

TEST(M68000, MovemWordsFillWholeRegisters) {
    TEST_68000 rig{0x4C90, 0x0101}; // MOVEM.W (A0),D0/A0
    rig.A(0) = 0x2000;
    rig.SetLong(0x2000, 0x80007FFF);
    rig.Tick();
    EXPECT_EQ(rig.D(0), 0xFFFF8000U);
    EXPECT_EQ(rig.A(0), 0x00007FFFU);
}

TEST(M68000, DbccCountsTheLowWordAndFallsThroughAfterZero) {
    TEST_68000 rig{0x51C8, 0xFFFE}; // DBF D0,*
    rig.D(0) = 0xABCD0001;
    rig.Tick();
    EXPECT_EQ(rig.D(0), 0xABCD0000U);
    EXPECT_EQ(rig.cpu.pc, kProgram);
    rig.Tick();
    EXPECT_EQ(rig.D(0), 0xABCDFFFFU);
    EXPECT_EQ(rig.cpu.pc, kProgram + 4);
}

TEST(M68000, ConditionsAreTheSixteenOfTheManual) {
    for (uint32_t flags = 0; flags < 16; ++flags) {
        const bool n = (flags & kN) != 0;
        const bool z = (flags & kZ) != 0;
        const bool v = (flags & kV) != 0;
        const bool c = (flags & kC) != 0;
        const bool expected[] = {true,   false,  !c && !z,     c || z,     !c, c,
                                 !z,     z,      !v,           v,          !n, n,
                                 n == v, n != v, n == v && !z, n != v || z};
        for (uint32_t condition = 0; condition < 16; ++condition) {
            TEST_68000 rig{0x50C0 | condition << 8}; // Scc D0
            rig.SetStatus(0x2700 | flags);
            EXPECT_EQ(rig.Tick(), 4U);
            EXPECT_EQ(rig.D(0), expected[condition] ? 0xFFU : 0U) << condition << " " << flags;
        }
    }
}

TEST(M68000, ExtraClocksReachTheCounterAlone) {
    struct EXTRA {
        const char* name;
        std::vector<uint32_t> words;
        uint32_t clocks;
        int32_t spent;
    };
    const std::vector<EXTRA> extras{
        {"LSL.L by 63",     {0xE1A9},         8,  126},
        {"MOVEM.L of 16",   {0x4CD1, 0xFFFF}, 12, 128},
        {"MOVEM.W of 4",    {0x4891, 0x000F}, 8,  16 },
        {"BRA",             {0x6002},         10, 0  },
        {"BEQ.B not taken", {0x6702},         10, -2 },
        {"BEQ.W not taken", {0x6700, 2},      10, 2  },
        {"DBF",             {0x51C8, 0xFFFE}, 12, -2 },
        {"ST D0",           {0x50C0},         4,  2  },
        {"TRAP",            {0x4E40},         4,  34 },
        {"RESET",           {0x4E70},         0,  132}
    };
    for (const EXTRA& extra : extras) {
        SCOPED_TRACE(extra.name);
        TEST_68000 rig(extra.words);
        rig.SetStatus(0x2700);
        rig.D(0) = 63;
        rig.A(1) = 0x2000;
        EXPECT_EQ(rig.Tick(), extra.clocks);
        EXPECT_EQ(rig.cpu.cyclesLeft, -extra.spent);
    }
}

TEST(M68000, TheCounterWraps) {
    TEST_68000 rig{0x4E70};
    rig.cpu.cyclesLeft = INT32_MIN;
    rig.Tick();
    EXPECT_EQ(rig.cpu.cyclesLeft, INT32_MAX - 131);
}

TEST(M68000, TablesAreBuiltOnce) {
    M68kBuildTables();
    const M68kHandler before = m68kHandlers[0x4E71];
    m68kCycles[0x4E71] = 99;
    M68kBuildTables();
    EXPECT_EQ(m68kCycles[0x4E71], 99);
    m68kCycles[0x4E71] = 4;
    EXPECT_EQ(m68kHandlers[0x4E71], before);
}

} // namespace
