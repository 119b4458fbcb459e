// The programmable registers: how they are given an access, and what each kind of access does.
#include "megadrive/svp_rig.h"

#include <array>

namespace {

constexpr uint32_t kPm0 = 0;
constexpr uint32_t kPm4 = 4;

constexpr uint32_t kDram = 0x18;
constexpr uint32_t kCells = 0x4018;
constexpr uint32_t kIram = 0x1C;
constexpr uint32_t kOverwrite = 0x0400;

constexpr uint32_t Step(uint32_t code) {
    return code << 11;
}

constexpr std::array<uint32_t, 5> kNumbers{8, 9, 10, 11, 12};

} // namespace

TEST(SvpMemory, BlindAccessProgramsARegisterWithPmc) {
    for (const uint32_t number : kNumbers) {
        for (const bool write : {false, true}) {
            SvpRig rig;
            rig.Program(number, write, 0x1234, 0x0818);
            const size_t slot = number - 8;
            EXPECT_EQ(rig.svp->pmacRead[slot], write ? 0u : 0x12340818u) << number;
            EXPECT_EQ(rig.svp->pmacWrite[slot], write ? 0x12340818u : 0u) << number;
            EXPECT_EQ(rig.svp->emuStatus, 0u) << number;
            // The access itself did nothing.
            EXPECT_EQ(rig.Get(number), 0u) << number;
            EXPECT_EQ(rig.svp->dram[0x1234], 0) << number;
        }
    }
}

TEST(SvpMemory, PmcTakesAddressThenMode) {
    SvpRig rig;
    rig.Run({0x08E0, 0x1234});
    EXPECT_EQ(rig.svp->gr[kSvpPmc], 0x12340000u);
    EXPECT_EQ(rig.svp->emuStatus, kSvpPmcHasAddress);
    rig.Run({0x08E0, 0x5678});
    EXPECT_EQ(rig.svp->gr[kSvpPmc], 0x12345678u);
    EXPECT_EQ(rig.svp->emuStatus, kSvpPmcSet);
}

TEST(SvpMemory, PmcReadsAsAddressThenModeWithItsNibblesTurned) {
    SvpRig rig;
    rig.svp->gr[kSvpPmc] = 0x12345678;
    rig.Run({0x001E}); // ld X, PMC
    EXPECT_EQ(rig.Get(kSvpX), 0x1234u);
    EXPECT_EQ(rig.svp->emuStatus, kSvpPmcHasAddress);
    rig.Run({0x001E});
    EXPECT_EQ(rig.Get(kSvpX), 0x6785u);
    EXPECT_EQ(rig.svp->emuStatus, kSvpPmcSet);
}

TEST(SvpMemory, BlindReadOfAlStartsTheSequenceAnew) {
    for (const uint32_t status : {kSvpPmcHasAddress, kSvpPmcSet}) {
        SvpRig rig;
        rig.svp->emuStatus = status;
        rig.Run({0x001F}); // ld X, AL isn't blind
        EXPECT_EQ(rig.svp->emuStatus, status);
        rig.Run({0x000F});
        EXPECT_EQ(rig.svp->emuStatus, 0u);
    }
}

TEST(SvpMemory, OtherAccessWithPmcSetTakesNothingAndReadsZero) {
    SvpRig rig;
    rig.Set(kSvpX, 0x7777);
    rig.Run({0x08E0, 0x1234, 0x08E0, 0x0818, 0x0019}, 3); // ld X, PM1
    EXPECT_EQ(rig.Get(kSvpX), 0u);
    EXPECT_EQ(rig.svp->pmacRead[1], 0u);
    EXPECT_EQ(rig.svp->emuStatus, 0u);
    // The same of a write.
    rig.Run({0x08E0, 0x1234, 0x08E0, 0x0818, 0x0891, 0x5555}, 3);
    EXPECT_EQ(rig.svp->pmacWrite[1], 0u);
    EXPECT_EQ(rig.Get(9), 0u);
}

// The word before the next instruction decides, which is the immediate of `ld PMx, imm`: 0 to 15 and those of
// the form 00n0 make the access a blind one, whatever register they would name.
TEST(SvpMemory, ImmediateOfTheBlindFormMakesTheAccessBlind) {
    struct ROW {
        int immediate;
        bool blind;
    };
    constexpr std::array<ROW, 7> kRows{
        {{0x0000, true},
         {0x000F, true},
         {0x0010, true},
         {0x00F0, true},
         {0x0011, false},
         {0x0100, false},
         {0x1000, false}}
    };
    for (const uint32_t number : kNumbers) {
        for (const ROW& row : kRows) {
            SvpRig rig;
            rig.Run({0x08E0, 0x1234, 0x08E0, 0x0818, static_cast<int>(0x0800 | number << 4),
                     row.immediate},
                    3);
            EXPECT_EQ(rig.svp->pmacWrite[number - 8], row.blind ? 0x12340818u : 0u)
                << number << " " << row.immediate;
            EXPECT_EQ(rig.svp->emuStatus, 0u);
            EXPECT_EQ(rig.Get(number), 0u);
            EXPECT_EQ(rig.svp->dram[0x1234], 0);
        }
    }
}

TEST(SvpMemory, AccessForgetsAnAddressWithoutAMode) {
    SvpRig rig;
    rig.svp->emuStatus = kSvpPmcHasAddress;
    rig.Run({0x0019});
    EXPECT_EQ(rig.svp->emuStatus, 0u);
    rig.Run({0x08E0, 0x4321});
    EXPECT_EQ(rig.svp->gr[kSvpPmc], 0x43210000u);
}

TEST(SvpMemory, RegistersAreCellsUntilStSwitchesThem) {
    for (const uint32_t number : {8u, 9u, 10u, 11u}) {
        SvpRig rig;
        rig.svp->pmacRead[number - 8] = 0x12340018;
        rig.svp->pmacWrite[number - 8] = 0x12350018;
        rig.svp->dram[0x1234] = 0x1111;
        rig.WriteRegister(number, 0x5555);
        EXPECT_EQ(rig.Get(number), 0x5555u) << number;
        EXPECT_EQ(rig.ReadRegister(number), 0x5555u) << number;
        for (const uint32_t st : {0x20u, 0x40u, 0x60u}) {
            rig.Set(kSvpSt, st);
            rig.WriteRegister(number, 0x2222);
            EXPECT_EQ(rig.svp->dram[0x1235], 0x2222) << number;
            rig.svp->dram[0x1235] = 0;
            EXPECT_EQ(rig.ReadRegister(number), 0x1111u) << number;
        }
        // Bits beside the two don't switch it.
        rig.Set(kSvpSt, 0xFF9F);
        EXPECT_EQ(rig.ReadRegister(number) & 0xFFFD, 0x5555u) << number;
    }
}

TEST(SvpMemory, FifthRegisterIsAlwaysProgrammed) {
    SvpRig rig;
    rig.Program(12, true, 0x40, kDram);
    rig.WriteRegister(12, 0x1234);
    EXPECT_EQ(rig.svp->dram[0x40], 0x1234);
    EXPECT_EQ(rig.Get(12), 0u);
    rig.Program(12, false, 0x40, kDram);
    EXPECT_EQ(rig.ReadRegister(12), 0x1234u);
}

TEST(SvpMemory, WrittenMailboxTellsItsSender) {
    SvpRig rig;
    rig.WriteRegister(11, 0x1234);
    EXPECT_EQ(rig.Get(kSvpXst), 0x1234u);
    EXPECT_EQ(rig.Get(kSvpPm0), kSvpPm0SentByDsp);
    rig.WriteRegister(9, 1);
    EXPECT_EQ(rig.Get(kSvpPm0), kSvpPm0SentByDsp);
}

TEST(SvpMemory, StepsOfReadsAndWrites) {
    struct ROW {
        uint32_t mode;
        uint32_t before;
        uint32_t after;
    };

    constexpr std::array<ROW, 16> kRows{
        {{Step(0), 0x100, 0x100},
         {Step(1), 0x100, 0x101},
         {Step(2), 0x100, 0x102},
         {Step(3), 0x100, 0x104},
         {Step(4), 0x100, 0x108},
         {Step(5), 0x100, 0x110},
         {Step(6), 0x100, 0x120},
         {Step(7), 0x100, 0x180},
         {0x8000 | Step(0), 0x100, 0x100},
         {0x8000 | Step(1), 0x100, 0x0FF},
         {0x8000 | Step(6), 0x100, 0x0E0},
         {0x8000 | Step(7), 0x100, 0x080},
         // A carry out of the address is lost.
         {Step(1), 0xFFFF, 0x0000},
         {Step(7), 0xFFC0, 0x0040},
         {0x8000 | Step(1), 0x0000, 0xFFFF},
         {0x8000 | Step(7), 0x0000, 0xFF80}}
    };
    for (const ROW& row : kRows) {
        const uint32_t mode = row.mode | kDram;
        const uint32_t slot = row.after << 16 | mode;
        SvpRig rig;
        rig.Program(12, false, row.before, mode);
        rig.svp->dram[row.before] = 0x1234;
        EXPECT_EQ(rig.ReadRegister(12), 0x1234u) << std::hex << mode;
        EXPECT_EQ(rig.svp->pmacRead[kPm4], slot) << std::hex << mode;
        // PMC follows the access.
        EXPECT_EQ(rig.svp->gr[kSvpPmc], slot) << std::hex << mode;
        rig.Program(12, true, row.before, mode);
        rig.WriteRegister(12, 0x4321);
        EXPECT_EQ(rig.svp->dram[row.before], 0x4321) << std::hex << mode;
        EXPECT_EQ(rig.svp->pmacWrite[kPm4], slot) << std::hex << mode;
        EXPECT_EQ(rig.svp->gr[kSvpPmc], slot) << std::hex << mode;
    }
}

TEST(SvpMemory, OverwriteStoresOnlyNibblesThatAreNotZero) {
    constexpr std::array<std::array<int, 2>, 6> kRows{
        {{0x0000, 0x1234},
         {0x5000, 0x5234},
         {0x0600, 0x1634},
         {0x0070, 0x1274},
         {0x0008, 0x1238},
         {0x9ABC, 0x9ABC}}
    };
    for (const uint32_t kind : {kDram, kCells}) {
        for (const auto& row : kRows) {
            SvpRig rig;
            rig.svp->dram[0x40] = 0x1234;
            rig.Program(12, true, 0x40, kind | kOverwrite);
            rig.WriteRegister(12, row[0]);
            EXPECT_EQ(rig.svp->dram[0x40], row[1]) << row[0];
        }
    }
}

TEST(SvpMemory, OverwriteModeReadsAsZero) {
    SvpRig rig;
    rig.svp->dram[0x40] = 0x1234;
    rig.Program(12, false, 0x40, kDram | kOverwrite | Step(1));
    EXPECT_EQ(rig.ReadRegister(12), 0u);
    EXPECT_EQ(rig.svp->pmacRead[kPm4] >> 16, 0x40u);
}

TEST(SvpMemory, CellStepGoesToTheNextRowAfterTheSecondWord) {
    SvpRig rig;
    rig.Program(12, true, 0x40, kCells);
    for (int i = 1; i <= 6; ++i) {
        rig.WriteRegister(12, i);
    }
    EXPECT_EQ(rig.svp->dram[0x40], 1);
    EXPECT_EQ(rig.svp->dram[0x41], 2);
    EXPECT_EQ(rig.svp->dram[0x60], 3);
    EXPECT_EQ(rig.svp->dram[0x61], 4);
    EXPECT_EQ(rig.svp->dram[0x80], 5);
    EXPECT_EQ(rig.svp->dram[0x81], 6);
    EXPECT_EQ(rig.svp->pmacWrite[kPm4], 0x00A04018u);
}

TEST(SvpMemory, CellModeIsForWritesAndWithoutAStepAlone) {
    SvpRig rig;
    rig.svp->dram[0x40] = 0x1234;
    rig.Program(12, false, 0x40, kCells);
    EXPECT_EQ(rig.ReadRegister(12), 0u);
    rig.Program(12, true, 0x40, kCells | Step(1));
    rig.WriteRegister(12, 0x5555);
    EXPECT_EQ(rig.svp->dram[0x40], 0x1234);
    EXPECT_EQ(rig.svp->pmacWrite[kPm4], 0x00404818u);
}

TEST(SvpMemory, IramTakesWritesAtTheLowTenBits) {
    SvpRig rig;
    rig.Program(12, true, 0x1FFF, kIram | Step(1));
    rig.WriteRegister(12, 0x1234);
    rig.WriteRegister(12, 0x5678);
    EXPECT_EQ(rig.svp->iramRom[0x3FF], 0x1234);
    EXPECT_EQ(rig.svp->iramRom[0x000], 0x5678);
    EXPECT_EQ(rig.svp->pmacWrite[kPm4] >> 16, 0x2001u);
    // The ROM copy stays, and IRAM isn't read this way.
    EXPECT_EQ(rig.svp->iramRom[0x1FFF], SvpRig::RomWord(0x1FFF));
    rig.Program(12, false, 0, kIram);
    EXPECT_EQ(rig.ReadRegister(12), 0u);
}

TEST(SvpMemory, WrittenProgramRuns) {
    SvpRig rig;
    rig.Program(12, true, 0x300, kIram | Step(1));
    rig.WriteRegister(12, 0x0810);
    rig.WriteRegister(12, 0xBEEF);
    rig.Go(0x300, 1);
    EXPECT_EQ(rig.Get(kSvpX), 0xBEEFu);
}

TEST(SvpMemory, RomReadsStepByOneWithACarryIntoTheMode) {
    SvpRig rig;
    rig.Program(12, false, 0xFFFE, 0x0803);
    for (const uint32_t index : {0x3FFFEu, 0x3FFFFu, 0x40000u, 0x40001u}) {
        EXPECT_EQ(rig.ReadRegister(12), SvpRig::RomWord(index)) << index;
    }
    EXPECT_EQ(rig.svp->pmacRead[kPm4], 0x00020804u);
    rig.Program(12, false, 0xFFFF, 0x080F);
    EXPECT_EQ(rig.ReadRegister(12), SvpRig::RomWord(0xFFFFF));
    // The carry leaves the ROM's mode.
    EXPECT_EQ(rig.svp->pmacRead[kPm4], 0x00000810u);
    EXPECT_EQ(rig.ReadRegister(12), 0u);
}

TEST(SvpMemory, OtherModesReadZeroAndDropWrites) {
    for (const uint32_t mode : {0x0000u, 0x0010u, 0x0900u, 0x0058u, 0x001Eu}) {
        SvpRig rig;
        const auto dram = rig.svp->dram;
        rig.Program(12, false, 0x40, mode);
        rig.Program(12, true, 0x40, mode);
        EXPECT_EQ(rig.ReadRegister(12), 0u) << mode;
        rig.WriteRegister(12, 0x1234);
        EXPECT_EQ(rig.svp->dram, dram) << mode;
        EXPECT_EQ(rig.svp->pmacRead[kPm4], 0x00400000u | mode);
        EXPECT_EQ(rig.svp->pmacWrite[kPm4], 0x00400000u | mode);
        EXPECT_EQ(rig.svp->gr[kSvpPmc], 0x00400000u | mode);
    }
}

TEST(SvpMemory, ReadsAndWritesHaveTheirOwnAddresses) {
    SvpRig rig;
    rig.Set(kSvpSt, 0x60);
    rig.Program(8, false, 0x100, kDram | Step(1));
    rig.Program(8, true, 0x200, kDram | Step(1));
    rig.svp->dram[0x100] = 1;
    rig.svp->dram[0x101] = 2;
    EXPECT_EQ(rig.ReadRegister(8), 1u);
    rig.WriteRegister(8, 0x11);
    EXPECT_EQ(rig.ReadRegister(8), 2u);
    rig.WriteRegister(8, 0x22);
    EXPECT_EQ(rig.svp->dram[0x200], 0x11);
    EXPECT_EQ(rig.svp->dram[0x201], 0x22);
    EXPECT_EQ(rig.svp->pmacRead[kPm0] >> 16, 0x102u);
    EXPECT_EQ(rig.svp->pmacWrite[kPm0] >> 16, 0x202u);
}

TEST(SvpMemory, OperationsAndCellsReachMemoryToo) {
    SvpRig rig;
    rig.Program(12, false, 0x100, kDram | Step(1));
    rig.svp->dram[0x100] = 3;
    rig.svp->dram[0x101] = 4;
    rig.SetA(0x00050000);
    rig.Run({0x800C}); // ADD A, PM4
    EXPECT_EQ(rig.A(), 0x00080000u);
    rig.svp->r[0] = 9;
    rig.Run({0x04C0}); // ld (r0), PM4
    EXPECT_EQ(rig.svp->ram[0][9], 4);
}
