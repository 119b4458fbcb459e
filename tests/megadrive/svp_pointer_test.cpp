#include "megadrive/svp_rig.h"

#include <array>

namespace {

// `ld X, (ri)`, with bank bit, modifier and pointer.
int LoadX(int bank, int modifier, int pointer) {
    return 0x0210 | bank << 8 | modifier << 2 | pointer;
}

} // namespace

TEST(SvpPointer, EveryPointerReachesItsBank) {
    for (int number = 0; number < 8; ++number) {
        if (number % 4 == 3) {
            continue;
        }
        SvpRig rig;
        const int bank = number / 4;
        rig.svp->r[static_cast<size_t>(number)] = 0x80;
        rig.svp->ram[static_cast<size_t>(bank)][0x80] = 0x1234;
        rig.Run({LoadX(bank, 0, number % 4)});
        EXPECT_EQ(rig.Get(kSvpX), 0x1234u) << number;
        EXPECT_EQ(rig.svp->r[static_cast<size_t>(number)], 0x80);
    }
}

TEST(SvpPointer, ModifiersMoveWithinTheModulo) {
    struct ROW {
        int modifier;
        uint32_t modulo;
        int before;
        int after;
    };

    constexpr std::array<ROW, 20> kRows{
        {{0, 0, 0x10, 0x10},
         {0, 3, 0x10, 0x10},
         // Plain increment: the modulo doesn't count.
         {1, 0, 0x10, 0x11},
         {1, 3, 0x17, 0x18},
         {1, 0, 0xFF, 0x00},
         // Down.
         {2, 0, 0x10, 0x0F},
         {2, 0, 0x00, 0xFF},
         {2, 1, 0x10, 0x11},
         {2, 1, 0x11, 0x10},
         {2, 3, 0x10, 0x17},
         {2, 3, 0x17, 0x16},
         {2, 7, 0x80, 0xFF},
         // Up.
         {3, 0, 0x10, 0x11},
         {3, 0, 0xFF, 0x00},
         {3, 1, 0x11, 0x10},
         {3, 2, 0x13, 0x10},
         {3, 3, 0x17, 0x10},
         {3, 4, 0x1F, 0x10},
         {3, 5, 0x17, 0x18},
         {3, 7, 0xFF, 0x80}}
    };
    for (const ROW& row : kRows) {
        for (int number = 0; number < 8; ++number) {
            if (number % 4 == 3) {
                continue;
            }
            SvpRig rig;
            const auto pointer = static_cast<size_t>(number);
            rig.Set(kSvpSt, row.modulo);
            rig.svp->r[pointer] = static_cast<uint8_t>(row.before);
            rig.svp->ram[pointer / 4][static_cast<size_t>(row.before)] = 0x4321;
            rig.Run({LoadX(number / 4, row.modifier, number % 4)});
            // The access uses the pointer's old value.
            EXPECT_EQ(rig.Get(kSvpX), 0x4321u);
            EXPECT_EQ(rig.svp->r[pointer], row.after)
                << row.modifier << ' ' << row.modulo << ' ' << row.before;
        }
    }
}

TEST(SvpPointer, WritesTakeTheSameSteps) {
    SvpRig rig;
    rig.Set(kSvpSt, 2);
    rig.Set(kSvpX, 0x1111);
    rig.svp->r[4] = 0x23;
    rig.Run({0x0510 | 3 << 2, 0x0D00 | 2 << 2, 0x2222}, 2); // ld (r4+), X; ld (r4-), imm
    EXPECT_EQ(rig.svp->ram[1][0x23], 0x1111);
    EXPECT_EQ(rig.svp->ram[1][0x20], 0x2222);
    EXPECT_EQ(rig.svp->r[4], 0x23);
}

TEST(SvpPointer, ThirdPointersNameFixedCells) {
    for (int bank = 0; bank < 2; ++bank) {
        for (int cell = 0; cell < 4; ++cell) {
            SvpRig rig;
            rig.Set(kSvpSt, 3);
            rig.svp->r.fill(0x77);
            auto& ram = rig.svp->ram[static_cast<size_t>(bank)];
            ram[static_cast<size_t>(cell)] = 0x4321;
            rig.Run({LoadX(bank, cell, 3)});
            EXPECT_EQ(rig.Get(kSvpX), 0x4321u) << bank << cell;
            rig.Run({0x0C03 | bank << 8 | cell << 2, 0x1357});
            EXPECT_EQ(ram[static_cast<size_t>(cell)], 0x1357) << bank << cell;
            for (const uint8_t pointer : rig.svp->r) {
                EXPECT_EQ(pointer, 0x77);
            }
        }
    }
}

TEST(SvpPointer, DoubleIndirectionReadsTheProgramAndStepsTheCell) {
    for (int index = 0; index < 8; ++index) {
        SvpRig rig;
        const auto bank = static_cast<size_t>(index / 4);
        // Pointers 0 to 2 of a bank, then a fixed cell.
        const int opcode = 0x0A10 | index / 4 << 8 | (index % 4 == 3 ? 2 << 2 | 3 : index % 4);
        const size_t cell = index % 4 == 3 ? 2 : 0x60;
        rig.svp->r.fill(0x60);
        rig.svp->ram[bank][cell] = 0x2345;
        rig.Run({opcode});
        EXPECT_EQ(rig.Get(kSvpX), SvpRig::RomWord(0x2345)) << index;
        EXPECT_EQ(rig.svp->ram[bank][cell], 0x2346) << index;
        for (const uint8_t pointer : rig.svp->r) {
            EXPECT_EQ(pointer, 0x60);
        }
        rig.svp->ram[bank][cell] = 0xFFFF;
        rig.Run({opcode});
        EXPECT_EQ(rig.Get(kSvpX), SvpRig::RomWord(0xFFFF)) << index;
        EXPECT_EQ(rig.svp->ram[bank][cell], 0) << index;
    }
}

TEST(SvpPointer, PointersAreLoadedAndRead) {
    for (int number = 0; number < 8; ++number) {
        SvpRig rig;
        const auto pointer = static_cast<size_t>(number);
        const int bank = number / 4 << 8;
        rig.Run({0x1800 | number << 8 | 0x5A}); // ld ri, simm
        EXPECT_EQ(rig.svp->r[pointer], 0x5A) << number;
        rig.Run({0x1220 | bank | number % 4}); // ld Y, ri
        EXPECT_EQ(rig.Get(kSvpY), 0x5Au) << number;
        rig.Set(kSvpX, 0x12F3);
        rig.Run({0x1410 | bank | number % 4}); // ld ri, X
        EXPECT_EQ(rig.svp->r[pointer], 0xF3) << number;
        rig.SetA(0x00010000);
        rig.Run({0x9200 | bank | number % 4}); // ADD A, ri
        EXPECT_EQ(rig.A(), 0x00F40000u) << number;
        for (size_t other = 0; other < 8; ++other) {
            if (other != pointer) {
                EXPECT_EQ(rig.svp->r[other], 0) << number;
            }
        }
    }
}
