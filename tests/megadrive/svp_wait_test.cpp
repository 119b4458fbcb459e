// The waits of the game's idle loops, and what the 68000 sees and does.
#include "megadrive/md_cartridge_rig.h"
#include "megadrive/svp_rig.h"

#include <array>

namespace {

constexpr int kReadPm0 = 0x0018; // ld X, PM0
constexpr int kReadPm4 = 0x001C; // ld X, PM4

// Puts an instruction anywhere, and runs it with more to follow.
int RunAt(SvpRig& rig, uint32_t at, int word) {
    rig.svp->iramRom[at] = static_cast<uint16_t>(word);
    for (uint32_t i = 1; i < 8; ++i) {
        rig.svp->iramRom[at + i] = 0; // ld -, -
    }
    rig.Go(at, 5);
    return 5 - rig.svp->budget;
}

class SvpCartridge : public CartridgeRig {
public:
    SvpCartridge()
        : CartridgeRig(ImageRig(0x200000).Title("Virtua Racing")) {}

    MD_SVP& Svp() const { return *cart->svp; }
};

} // namespace

TEST(SvpReset, StartsAtItsFirstRomWord) {
    SvpRig rig;
    rig.Run({0x0830, 0x1234, 0x0850, 0x0001}, 2);
    rig.svp->dram.fill(0x5555);
    rig.svp->iramRom.fill(0x5555);
    rig.svp->r.fill(1);
    rig.svp->emuStatus = kSvpWaits;
    SvpReset(*rig.svp, rig.rom.data());
    EXPECT_EQ(rig.Pc(), 0x400u);
    EXPECT_EQ(rig.A(), 0u);
    EXPECT_EQ(rig.svp->gr[kSvpBlind], 0xFFFF0000u);
    EXPECT_EQ(rig.svp->gr[kSvpStack], 0u);
    EXPECT_EQ(rig.svp->emuStatus, 0u);
    EXPECT_EQ(rig.svp->dram[0x1234], 0);
    EXPECT_EQ(rig.svp->r[0], 0);
    // IRAM is empty; the ROM copy is at its own addresses, up to the end of program memory.
    EXPECT_EQ(rig.svp->iramRom[0x3FF], 0);
    EXPECT_EQ(rig.svp->iramRom[0x400], SvpRig::RomWord(0x400));
    EXPECT_EQ(rig.svp->iramRom[0xFFFF], SvpRig::RomWord(0xFFFF));
}

TEST(SvpWait, AnyWaitStopsTheRunBeforeItBegins) {
    for (const uint32_t wait :
         {kSvpWaitsForPm0, kSvpWaitsFor30Fe06, kSvpWaitsFor30Fe08, kSvpWaits}) {
        SvpRig rig;
        rig.svp->emuStatus = wait;
        rig.Run({0x0810, 0x1234}, 100);
        EXPECT_EQ(rig.Get(kSvpX), 0u);
        EXPECT_EQ(rig.Pc(), SvpRig::kProgram);
        EXPECT_EQ(rig.svp->budget, 100);
    }
}

TEST(SvpWait, BudgetCountsInstructions) {
    SvpRig rig;
    rig.Run({0x0810, 1, 0x0820, 2, 0x0830, 3}, 2);
    EXPECT_EQ(rig.Get(kSvpX), 1u);
    EXPECT_EQ(rig.Get(kSvpY), 2u);
    EXPECT_EQ(rig.A(), 0u);
    EXPECT_EQ(rig.svp->budget, 0);
    for (const int none : {0, -1}) {
        rig.Go(SvpRig::kProgram + 4, none);
        EXPECT_EQ(rig.A(), 0u);
    }
}

TEST(SvpWait, Pm0ReadWaitsAtTheLoopsAlone) {
    for (const uint32_t at : {0x400u, 0xC28Fu}) {
        SvpRig rig;
        EXPECT_EQ(RunAt(rig, at, kReadPm0), 1) << at;
        EXPECT_EQ(rig.svp->emuStatus, kSvpWaitsForPm0) << at;
        EXPECT_EQ(rig.Pc(), at + 1) << at;
    }
    for (const uint32_t at : {0x3FFu, 0x401u, 0xC28Eu, 0xC290u, 0x42Au}) {
        SvpRig rig;
        EXPECT_EQ(RunAt(rig, at, kReadPm0), 5) << at;
        EXPECT_EQ(rig.svp->emuStatus, 0u) << at;
    }
}

TEST(SvpWait, Pm0ReadThatFindsAMessageGoesOnAndTakesIt) {
    SvpRig rig;
    rig.Set(kSvpPm0, 0x1203);
    EXPECT_EQ(RunAt(rig, 0x400, kReadPm0), 5);
    EXPECT_EQ(rig.Get(kSvpX), 0x1203u);
    EXPECT_EQ(rig.Get(kSvpPm0), 0x1201u);
}

TEST(SvpWait, ProgrammedPm0ReadNeverWaits) {
    SvpRig rig;
    rig.Set(kSvpSt, 0x20);
    EXPECT_EQ(RunAt(rig, 0x400, kReadPm0), 5);
    EXPECT_EQ(rig.svp->emuStatus, 0u);
}

TEST(SvpWait, Pm4ReadOfZeroWaitsAtTheLoopsAlone) {
    struct ROW {
        uint32_t at;
        uint32_t wait;
    };

    for (const ROW& row : {
             ROW{0x42A,  kSvpWaitsFor30Fe08},
             ROW{0x2789, kSvpWaitsFor30Fe06},
             ROW{0x400,  0                 },
             ROW{0x42B,  0                 },
             ROW{0x2788, 0                 }
    }) {
        SvpRig rig;
        rig.Program(12, false, 0x7F03, 0x0018);
        EXPECT_EQ(RunAt(rig, row.at, kReadPm4), row.wait != 0 ? 1 : 5) << row.at;
        EXPECT_EQ(rig.svp->emuStatus, row.wait) << row.at;
        SvpRig other;
        other.Program(12, false, 0x7F03, 0x0018);
        other.svp->dram[0x7F03] = 1;
        EXPECT_EQ(RunAt(other, row.at, kReadPm4), 5) << row.at;
        EXPECT_EQ(other.Get(kSvpX), 1u);
        EXPECT_EQ(other.svp->emuStatus, 0u) << row.at;
    }
}

TEST(SvpWait, MessageOfThe68000EndsTheWaitForPm0) {
    SvpRig rig;
    rig.Set(kSvpPm0, 1);
    rig.svp->emuStatus = kSvpWaits | kSvpPmcHasAddress;
    SvpWriteXst(*rig.svp, 0x1234);
    EXPECT_EQ(rig.Get(kSvpXst), 0x1234u);
    EXPECT_EQ(rig.Get(kSvpPm0), 3u);
    EXPECT_EQ(rig.svp->emuStatus, kSvpWaitsFor30Fe06 | kSvpWaitsFor30Fe08 | kSvpPmcHasAddress);
}

TEST(SvpWait, MailboxWordsEndTheirWaitsUnlessZero) {
    SvpCartridge rig;
    rig.Svp().emuStatus = kSvpWaits;
    rig.PutWord(0x30FE06, 0);
    rig.PutWord(0x30FE08, 0);
    rig.PutWord(0x30FE04, 1);
    rig.PutWord(0x30FE0A, 1);
    rig.PutWord(0x31FE06, 1);
    EXPECT_EQ(rig.Svp().emuStatus, kSvpWaits);
    rig.PutWord(0x30FE06, 0x0100);
    EXPECT_EQ(rig.Svp().emuStatus, kSvpWaitsForPm0 | kSvpWaitsFor30Fe08);
    rig.PutWord(0x30FE08, 0x0001);
    EXPECT_EQ(rig.Svp().emuStatus, kSvpWaitsForPm0);
    EXPECT_EQ(rig.Svp().dram[0x7F03], 0x0100);
    EXPECT_EQ(rig.Svp().dram[0x7F04], 0x0001);
}

TEST(SvpCartridge, HookRunsThreeInstructionsForEachWholeCycle) {
    for (const uint32_t clocks : {0u, 6u, 7u, 13u, 28u, 140u}) {
        SvpCartridge rig;
        rig.Svp().iramRom.fill(0);
        rig.Svp().gr[kSvpPc] = 0x1000 << 16;
        MdCartRunSvp(*rig.cart, clocks);
        EXPECT_EQ(rig.Svp().gr[kSvpPc] >> 16, 0x1000 + clocks / 7 * 3) << clocks;
    }
}

TEST(SvpCartridge, DramIsSeenByBothAndRomAroundIt) {
    SvpCartridge rig;
    rig.PutWord(0x300000, 0x1234);
    rig.PutWord(0x31FFFE, 0x5678);
    EXPECT_EQ(rig.Svp().dram[0], 0x1234);
    EXPECT_EQ(rig.Svp().dram[0xFFFF], 0x5678);
    EXPECT_EQ(rig.Word(0x300000), 0x1234);
    EXPECT_EQ(rig.Word(0x31FFFE), 0x5678);
    for (const uint32_t address : {0x2FFFFEu, 0x320000u, 0x38FFFEu, 0x3B0000u, 0x000200u}) {
        EXPECT_EQ(rig.Word(address), rig.Rom(address) << 8 | rig.Rom(address + 1)) << address;
    }
}

TEST(SvpCartridge, ByteReadsAreRomEverywhereAndByteWritesNothing) {
    SvpCartridge rig;
    rig.PutWord(0x300000, 0x1234);
    rig.PutByte(0x300000, 0xFF);
    rig.PutByte(0x300001, 0xFF);
    EXPECT_EQ(rig.Word(0x300000), 0x1234);
    for (const uint32_t address : {0x300000u, 0x300001u, 0x390001u, 0x3A0001u, 0x000201u}) {
        EXPECT_EQ(rig.Byte(address), rig.Rom(address)) << address;
    }
}

TEST(SvpCartridge, WritesOutsideTheDramAreIgnored) {
    SvpCartridge rig;
    for (const uint32_t address :
         {0x000000u, 0x100000u, 0x2FFFFEu, 0x320000u, 0x390000u, 0x3A0000u}) {
        const int before = rig.Word(address);
        rig.PutWord(address, 0x1234);
        EXPECT_EQ(rig.Word(address), before) << address;
    }
    for (const uint16_t word : rig.Svp().dram) {
        ASSERT_EQ(word, 0);
    }
}

TEST(SvpCartridge, ViewsShowDramByCells) {
    SvpCartridge rig;
    for (uint32_t i = 0; i < kSvpMemoryWords; ++i) {
        rig.Svp().dram[i] = static_cast<uint16_t>(i);
    }

    // By hand: the narrow view takes row bits 5-1 of the word address to bits 11-7, keeps bits 14-12
    // and takes 11-6 to bits 6-1. The wide one takes bits 4-1 to bits 10-7, keeps 14-11 and takes 10-5
    // to bits 6-1.
    struct ROW {
        uint32_t address;
        uint32_t index;
    };

    constexpr std::array<ROW, 14> kRows{
        {{0x390000, 0x0000},
         {0x390004, 0x0080},
         {0x390008, 0x0100},
         {0x390040, 0x0800},
         {0x390080, 0x0002},
         {0x391000, 0x0040},
         {0x392000, 0x1000},
         {0x39FFFC, 0x7FFE},
         {0x3A0000, 0x0000},
         {0x3A0004, 0x0080},
         {0x3A0020, 0x0400},
         {0x3A0040, 0x0002},
         {0x3A1000, 0x0800},
         {0x3AFFFC, 0x7FFE}}
    };
    for (const ROW& row : kRows) {
        EXPECT_EQ(rig.Word(row.address), static_cast<int>(row.index)) << std::hex << row.address;
        // Both words of a pair show the first.
        EXPECT_EQ(rig.Word(row.address + 2), static_cast<int>(row.index))
            << std::hex << row.address;
    }
}
