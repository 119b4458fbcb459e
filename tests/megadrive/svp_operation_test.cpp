#include "megadrive/svp_rig.h"

#include <array>
#include <functional>

namespace {

struct OPERATION_ROW {
    const char* name;
    int code; // the top 3 bits
    std::function<uint32_t(uint32_t, uint32_t)> result;
    bool stores;
};

const std::array<OPERATION_ROW, 6> kOperations{
    {{"SUB", 1, [](uint32_t a, uint32_t b) { return a - b; }, true},
     {"CMP", 3, [](uint32_t a, uint32_t b) { return a - b; }, false},
     {"ADD", 4, [](uint32_t a, uint32_t b) { return a + b; }, true},
     {"AND", 5, [](uint32_t a, uint32_t b) { return a & b; }, true},
     {"OR", 6, [](uint32_t a, uint32_t b) { return a | b; }, true},
     {"EOR", 7, [](uint32_t a, uint32_t b) { return a ^ b; }, true}}
};

constexpr int kValue = 0xF1;
constexpr uint32_t kA = 0x12345678;

// All operand forms find kValue: X, the cell at 5 through r0, cell 0x105, the next word, the program
// word at 0x80 through the cell at 6 and r1, r2 itself, and the opcode.
void Prepare(SvpRig& rig) {
    rig.SetA(kA);
    rig.Set(kSvpX, kValue);
    rig.svp->r = {5, 6, kValue, 0, 0, 0, 0, 0};
    rig.svp->ram[0][5] = kValue;
    rig.svp->ram[1][5] = kValue;
    rig.svp->ram[0][6] = 0x80;
    rig.svp->iramRom[0x80] = kValue;
}

uint32_t FlagsOf(uint32_t result) {
    return (result == 0 ? 0x2000u : 0u) | (result >> 31 != 0 ? 0x8000u : 0u);
}

constexpr std::array<int, 7> kForms{0x0001, 0x0200, 0x0705, 0x0800, 0x0A01, 0x1202, 0x18F1};

} // namespace

TEST(SvpOperation, EveryFormBringsItsSourceToTheHighHalf) {
    for (const OPERATION_ROW& row : kOperations) {
        for (const int form : kForms) {
            SvpRig rig;
            Prepare(rig);
            rig.Run({row.code << 13 | form, kValue});
            const uint32_t result = row.result(kA, uint32_t{kValue} << 16);
            EXPECT_EQ(rig.A(), row.stores ? result : kA) << row.name << std::hex << form;
            EXPECT_EQ(rig.Flags(), FlagsOf(result)) << row.name << std::hex << form;
            EXPECT_EQ(rig.Pc(), SvpRig::kProgram + (form == 0x0800 ? 2u : 1u)) << std::hex << form;
        }
    }
}

TEST(SvpOperation, ZeroAndNegativeFollowAllBitsOfTheResult) {
    struct ROW {
        int opcode;
        uint32_t a;
        uint32_t x;
        uint32_t flags;
    };

    constexpr std::array<ROW, 12> kRows{
        {{0x2001, 0x12340000, 0x1234, kSvpStZero}, // SUB
         {0x2001, 0x12340001, 0x1234, 0}, // the low half counts
         {0x2001, 0x12340000, 0x1235, kSvpStNegative},
         {0x6001, 0x12340000, 0x1234, kSvpStZero}, // CMP
         {0x6001, 0x00000000, 0x0001, kSvpStNegative},
         {0x8001, 0x7FFF0000, 0x0001, kSvpStNegative}, // ADD
         {0x8001, 0xFFFF0000, 0x0001, kSvpStZero},
         {0x8001, 0xFFFF0000, 0x0002, 0},
         {0xA001, 0xF0F0FFFF, 0x0F0F, kSvpStZero}, // AND clears AL
         {0xC001, 0x00000000, 0x8000, kSvpStNegative}, // OR
         {0xE001, 0x55550000, 0x5555, kSvpStZero}, // EOR
         {0xE001, 0x55550001, 0x5555, 0}}
    };
    for (const ROW& row : kRows) {
        for (const uint32_t before : {0x0000u, 0xFFFFu}) {
            SvpRig rig;
            rig.SetA(row.a);
            rig.Set(kSvpX, row.x);
            rig.Set(kSvpSt, before);
            rig.Run({row.opcode});
            // Only the two flags of ST change.
            EXPECT_EQ(rig.Get(kSvpSt), (before & 0x5FFF) | row.flags) << std::hex << row.opcode;
        }
    }
}

TEST(SvpOperation, PAndACountWithAllTheirBits) {
    SvpRig rig;
    rig.SetA(0x00010001);
    rig.Set(kSvpX, 3);
    rig.Set(kSvpY, 0x8001); // -32767
    rig.Run({0x8007});      // ADD A, P
    EXPECT_EQ(rig.A(), 0x00010001u + static_cast<uint32_t>(3 * -32767 * 2));
    rig.SetA(0x00018001);
    rig.Run({0x8003}); // ADD A, A
    EXPECT_EQ(rig.A(), 0x00030002u);
    rig.Run({0x2003}); // SUB A, A
    EXPECT_EQ(rig.A(), 0u);
    EXPECT_EQ(rig.Flags(), kSvpStZero);
}

TEST(SvpOperation, AndClearsTheLowHalfAndOthersKeepIt) {
    for (const auto& [opcode, low] : {
             std::pair{0xB8FF, 0u     },
             {0xD8FF, 0x5678u},
             {0xF8FF, 0x5678u},
             {0x98FF, 0x5678u},
             {0x38FF, 0x5678u}
    }) {
        SvpRig rig;
        rig.SetA(kA);
        rig.Run({opcode});
        EXPECT_EQ(rig.A() & 0xFFFF, low) << std::hex << opcode;
    }
}

TEST(SvpOperation, AlAsASourceComesInAtTheHighHalf) {
    SvpRig rig;
    rig.SetA(0x00010002);
    rig.Run({0x800F});
    EXPECT_EQ(rig.A(), 0x00030002u);
}

TEST(SvpOperation, LoadsSetNoFlags) {
    SvpRig rig;
    rig.Set(kSvpSt, kSvpStZero | kSvpStNegative);
    rig.Run({0x0830, 0x0001});
    EXPECT_EQ(rig.Flags(), kSvpStZero | kSvpStNegative);
}

TEST(SvpOperation, EveryPlainRegisterIsSourceAndDestination) {
    // X, Y, A, ST, PM0 to XST unprogrammed, EXT5, AL: what is loaded is read back, into a cell.
    for (const int number : {1, 2, 3, 4, 8, 9, 10, 11, 13, 15}) {
        SvpRig rig;
        const int value = 0x1204 + number * 0x100; // no bit that programs a PM register
        rig.Run({0x0800 | number << 4, value, 0x0400 | number << 4 | 0x03}, 2);
        // PM0's low bits are status and AL a half of A; neither matters here.
        EXPECT_EQ(rig.svp->ram[0][0], value) << number;
        // And from register to register.
        SvpRig copy;
        copy.Set(kSvpX, 0x1234);
        copy.Run({number << 4 | 1, 0x0020 | number}, 2);
        EXPECT_EQ(copy.Get(kSvpY), 0x1234u) << number;
    }
}

TEST(SvpOperation, BlindRegisterReadsAsOnesAndDropsWrites) {
    SvpRig rig;
    EXPECT_EQ(rig.svp->gr[kSvpBlind], 0xFFFF0000u);
    rig.Run({0x0800, 0x1234, 0x0010}, 2); // ld -, imm; ld X, -
    EXPECT_EQ(rig.Get(kSvpX), 0xFFFFu);
    EXPECT_EQ(rig.svp->gr[kSvpBlind], 0xFFFF0000u);
    rig.SetA(0x00020000);
    rig.Run({0x8000}); // ADD A, -
    EXPECT_EQ(rig.A(), 0x00010000u);
}

TEST(SvpOperation, LoadOfAKeepsItsLowHalf) {
    SvpRig rig;
    rig.SetA(kA);
    rig.Run({0x0830, 0xABCD});
    EXPECT_EQ(rig.A(), 0xABCD5678u);
    rig.Run({0x08F0, 0x1357}); // ld AL, imm
    EXPECT_EQ(rig.A(), 0xABCD1357u);
    rig.svp->ram[1][0x23] = 0x2468;
    rig.Run({0x0723}); // ld A, 123
    EXPECT_EQ(rig.A(), 0x24681357u);
    rig.Run({0x0033}); // ld A, A
    EXPECT_EQ(rig.A(), 0x24681357u);
}

TEST(SvpOperation, LoadOfAFromPTakesAllBits) {
    SvpRig rig;
    rig.SetA(kA);
    rig.Set(kSvpX, 0x4001);
    rig.Set(kSvpY, 3);
    rig.Run({0x0037});
    EXPECT_EQ(rig.A(), 0x4001u * 6);
    rig.Set(kSvpX, 0xFFFF);
    rig.Run({0x0027}); // ld Y, P: the high half of -6
    EXPECT_EQ(rig.Get(kSvpY), 0xFFFFu);
}

TEST(SvpOperation, PIsTheSignedProductDoubled) {
    struct ROW {
        uint32_t x;
        uint32_t y;
        uint32_t p;
    };

    constexpr std::array<ROW, 5> kRows{
        {{2, 3, 12},
         {0xFFFF, 1, 0xFFFFFFFE},
         {0x7FFF, 0x7FFF, 0x7FFE0002},
         {0x8000, 0x7FFF, 0x80010000},
         {0x8000, 0x8000, 0x80000000}}
    };
    for (const ROW& row : kRows) {
        SvpRig rig;
        rig.Set(kSvpX, row.x);
        rig.Set(kSvpY, row.y);
        rig.Run({0x0870, 0x1234}); // P can't be written
        EXPECT_EQ(rig.svp->gr[kSvpP], row.p) << row.x;
        rig.Run({0x0037});
        EXPECT_EQ(rig.A(), row.p) << row.x;
    }
}

TEST(SvpOperation, CellsTakeAndGive) {
    SvpRig rig;
    rig.SetA(0xBEEF1234);
    rig.Run({0x0F42}); // ld 142, A
    EXPECT_EQ(rig.svp->ram[1][0x42], 0xBEEF);
    rig.Run({0x0E42}); // ld 042, A
    EXPECT_EQ(rig.svp->ram[0][0x42], 0xBEEF);
    rig.svp->r[5] = 0x42;
    rig.svp->r[2] = 0x43;
    rig.Run({0x0311}); // ld X, (r5)
    EXPECT_EQ(rig.Get(kSvpX), 0xBEEFu);
    rig.Run({0x0412}); // ld (r2), X
    EXPECT_EQ(rig.svp->ram[0][0x43], 0xBEEF);
    rig.Run({0x0D01, 0x7777}); // ld (r5), imm
    EXPECT_EQ(rig.svp->ram[1][0x42], 0x7777);
    EXPECT_EQ(rig.Pc(), SvpRig::kProgram + 2);
}

TEST(SvpOperation, ProgramWordAtAIsLoaded) {
    SvpRig rig;
    rig.SetA(0x12340000);
    rig.Run({0x4A10}); // ld X, (A)
    EXPECT_EQ(rig.Get(kSvpX), SvpRig::RomWord(0x1234));
    rig.svp->iramRom[7] = 0x4321;
    rig.SetA(0x0007FFFF);
    rig.Run({0x4A20});
    EXPECT_EQ(rig.Get(kSvpY), 0x4321u);
}

TEST(SvpOperation, ModifiersOfA) {
    struct ROW {
        int operation;
        uint32_t before;
        uint32_t after;
        uint32_t flags;
    };

    constexpr std::array<ROW, 15> kRows{
        {{0, 0x00000003, 0x80000001, kSvpStNegative}, // rotate right
         {1, 0x80000001, 0x00000003, 0}, // rotate left
         {2, 0x80000003, 0xC0000001, kSvpStNegative}, // shift right
         {2, 0x40000001, 0x20000000, 0},
         {2, 0x00000001, 0x00000000, kSvpStZero},
         {3, 0x40000001, 0x80000002, kSvpStNegative}, // shift left
         {3, 0x80000000, 0x00000000, kSvpStZero},
         {4, 0xFFFFFFFF, 0x00000000, kSvpStZero}, // increment
         {5, 0x00000000, 0xFFFFFFFF, kSvpStNegative}, // decrement
         {6, 0x00010000, 0xFFFF0000, kSvpStNegative}, // negate
         {6, 0x80000000, 0x80000000, kSvpStNegative},
         {6, 0x00000000, 0x00000000, kSvpStZero},
         {7, 0xFFFF0000, 0x00010000, 0}, // absolute
         {7, 0x00010000, 0x00010000, 0},
         {7, 0x80000000, 0x80000000, kSvpStNegative}}
    };
    for (const ROW& row : kRows) {
        SvpRig rig;
        rig.SetA(row.before);
        rig.Run({0x9000 | row.operation});
        EXPECT_EQ(rig.A(), row.after) << row.operation << ' ' << std::hex << row.before;
        EXPECT_EQ(rig.Flags(), row.flags) << row.operation << ' ' << std::hex << row.before;
    }
}

TEST(SvpOperation, ConditionsInBothSenses) {
    struct ROW {
        int condition; // with the sense in bit 8
        uint32_t st;
        bool holds;
    };

    constexpr std::array<ROW, 12> kRows{
        {{0x000, 0, true},
         {0x100, 0, true},
         {0x150, kSvpStZero, true},
         {0x150, kSvpStNegative, false},
         {0x050, kSvpStZero, false},
         {0x050, kSvpStNegative, true},
         {0x170, kSvpStNegative, true},
         {0x170, kSvpStZero, false},
         {0x070, kSvpStNegative, false},
         {0x070, kSvpStZero, true},
         {0x120, 0xFFFF, false}, // none that this processor has
         {0x020, 0x0000, false}}
    };
    for (const ROW& row : kRows) {
        SvpRig rig;
        rig.Set(kSvpSt, row.st);
        rig.SetA(1);
        rig.Run({0x9000 | row.condition | 6});
        EXPECT_EQ(rig.A(), row.holds ? 0xFFFFFFFF : 1u) << std::hex << row.condition;
        if (!row.holds) {
            EXPECT_EQ(rig.Get(kSvpSt), row.st);
        }
        rig.Set(kSvpSt, row.st);
        rig.Run({0x4C00 | row.condition, 0x0234}); // bra
        EXPECT_EQ(rig.Pc(), row.holds ? 0x234 : SvpRig::kProgram + 2) << std::hex << row.condition;
        EXPECT_EQ(rig.Get(kSvpStack), 0u);
        rig.Set(kSvpSt, row.st);
        rig.Run({0x4800 | row.condition, 0x0234}); // call
        EXPECT_EQ(rig.Pc(), row.holds ? 0x234 : SvpRig::kProgram + 2) << std::hex << row.condition;
        EXPECT_EQ(rig.Get(kSvpStack), row.holds ? 1u : 0u);
    }
}

TEST(SvpOperation, CallsReturnToTheWordAfterThem) {
    SvpRig rig;
    // Six deep: each routine calls the next, the last one returns.
    for (uint32_t i = 0; i < 6; ++i) {
        const uint32_t at = 0x200 + i * 0x10;
        rig.svp->iramRom[at] = 0x4800;
        rig.svp->iramRom[at + 1] = static_cast<uint16_t>(at + 0x10);
        rig.svp->iramRom[at + 2] = 0x0065;
    }
    rig.svp->iramRom[0x260] = 0x0065; // ret
    rig.Go(0x200, 6);
    EXPECT_EQ(rig.Pc(), 0x260u);
    for (uint32_t i = 6; i > 0; --i) {
        rig.Go(rig.Pc(), 1);
        EXPECT_EQ(rig.Pc(), 0x202 + (i - 1) * 0x10);
    }
}

TEST(SvpOperation, SeventhCallOverwritesTheFirst) {
    SvpRig rig;
    for (int i = 0; i < 7; ++i) {
        rig.Run({0x0850, 0x1000 + i}); // ld STACK, imm
    }
    for (int i = 6; i > 0; --i) {
        rig.Run({0x0015}); // ld X, STACK
        EXPECT_EQ(rig.Get(kSvpX), static_cast<uint32_t>(0x1000 + i));
    }
    rig.Run({0x0015});
    EXPECT_EQ(rig.Get(kSvpX), 0x1006u);
}

TEST(SvpOperation, PcReadsAsTheFollowingWordAndJumpsWhenWritten) {
    SvpRig rig;
    rig.Run({0x0016}); // ld X, PC
    EXPECT_EQ(rig.Get(kSvpX), SvpRig::kProgram + 1);
    rig.Run({0x0860, 0x0321}); // ld PC, imm
    EXPECT_EQ(rig.Pc(), 0x321u);
    rig.svp->ram[0][0] = 0x0222;
    rig.Run({0x0263}); // ld PC, |00
    EXPECT_EQ(rig.Pc(), 0x222u);
}

TEST(SvpOperation, MultiplyFormsAddSubtractOrClearThenLoad) {
    struct ROW {
        int opcode;
        uint32_t a;
        uint32_t flags;
    };

    // X = 3 and Y = 5 make P 30; A is 30 before.
    constexpr std::array<ROW, 4> kRows{
        {{0x9600, 60, 0}, {0x3600, 0, kSvpStZero}, {0xB600, 0, 0}, {0x9700, 60, 0}}
    };
    for (const ROW& row : kRows) {
        SvpRig rig;
        rig.SetA(30);
        rig.Set(kSvpX, 3);
        rig.Set(kSvpY, 5);
        rig.Set(kSvpSt, 0xF000);
        rig.svp->r = {0, 0x11, 0, 0, 0, 0, 0x22, 0};
        rig.svp->ram[0][0x11] = 0x0111;
        rig.svp->ram[1][0x22] = 0xF222;
        // (r6) with an increment as Y, (r1) with a decrement as X.
        rig.Run({row.opcode | 3 << 6 | 2 << 4 | 2 << 2 | 1});
        EXPECT_EQ(rig.A(), row.a) << std::hex << row.opcode;
        EXPECT_EQ(rig.Flags(), row.flags) << std::hex << row.opcode;
        EXPECT_EQ(rig.Get(kSvpX), 0x0111u);
        EXPECT_EQ(rig.Get(kSvpY), 0xF222u);
        EXPECT_EQ(rig.svp->r[1], 0x10);
        EXPECT_EQ(rig.svp->r[6], 0x23);
        EXPECT_EQ(rig.svp->gr[kSvpP], static_cast<uint32_t>(0x111 * (0xF222 - 0x10000) * 2));
    }
}

TEST(SvpOperation, ClearingMultiplyClearsFourFlags) {
    SvpRig rig;
    rig.Set(kSvpSt, 0xFFFF);
    rig.Run({0xB600});
    EXPECT_EQ(rig.Get(kSvpSt), 0x0FFFu);
}

TEST(SvpOperation, MultiplyFormsReachFixedCellsOfBothBanks) {
    SvpRig rig;
    rig.svp->ram[0][2] = 0x0202;
    rig.svp->ram[1][1] = 0x0101;
    rig.Run({0xB600 | 1 << 6 | 3 << 4 | 2 << 2 | 3});
    EXPECT_EQ(rig.Get(kSvpX), 0x0202u);
    EXPECT_EQ(rig.Get(kSvpY), 0x0101u);
}

TEST(SvpOperation, FreeOpcodesDoNothing) {
    // All opcodes with an instruction: each family of operations has seven forms.
    std::vector<int> used{0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x09, 0x0A, 0x0C,
                          0x0D, 0x0E, 0x0F, 0x24, 0x25, 0x26, 0x48, 0x1B, 0x4B, 0x5B};
    for (const OPERATION_ROW& row : kOperations) {
        for (const int form : {0, 1, 3, 4, 5, 9, 0xC}) {
            used.push_back(row.code << 4 | form);
        }
    }
    int free = 0;
    for (int high = 0; high < 0x80; ++high) {
        if (std::find(used.begin(), used.end(), high) != used.end()) {
            continue;
        }
        ++free;
        for (const int low : {0x000, 0x0FF, 0x1FF, 0x135}) {
            SvpRig rig;
            Prepare(rig);
            rig.svp->iramRom[SvpRig::kProgram] = static_cast<uint16_t>(high << 9 | low);
            const MD_SVP before = *rig.svp;
            rig.Go(SvpRig::kProgram, 1);
            EXPECT_EQ(rig.Pc(), SvpRig::kProgram + 1) << std::hex << high;
            EXPECT_EQ(rig.A(), kA) << std::hex << high;
            EXPECT_EQ(rig.svp->r, before.r) << std::hex << high;
            EXPECT_EQ(rig.svp->ram, before.ram) << std::hex << high;
            EXPECT_EQ(rig.Get(kSvpSt), 0u) << std::hex << high;
        }
    }
    EXPECT_EQ(free, 128 - 21 - 42);
}

TEST(SvpOperation, ProgramCounterWrapsAtTheEndOfProgramMemory) {
    SvpRig rig;
    rig.svp->iramRom[0xFFFF] = 0x0810;
    rig.svp->iramRom[0] = 0x1234;
    rig.Go(0xFFFF, 1);
    EXPECT_EQ(rig.Get(kSvpX), 0x1234u);
    EXPECT_EQ(rig.Pc(), 1u);
}
