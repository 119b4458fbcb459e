#include "nes/cartridge_rig.h"

namespace {

constexpr int kControl = 0x8000;
constexpr int kChr0 = 0xA000;
constexpr int kChr1 = 0xC000;
constexpr int kPrg = 0xE000;

class ShiftRig : public CartridgeRig {
public:
    ShiftRig(int programBanks, int characterBanks)
        : CartridgeRig({1, programBanks, characterBanks, 0}) {}

    // One bit, more than a cycle after the one before.
    void Bit(int address, int value) {
        cycles += 2;
        Write(address, value);
    }

    void Set(int address, int value) {
        for (int bit = 0; bit < 5; ++bit) {
            Bit(address, value >> bit & 1);
        }
    }
};

} // namespace

TEST(ShiftBoard, StartsWithTheLastBankFixed) {
    const ShiftRig rig(16, 4);
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(60, 4)}));
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
    EXPECT_EQ(rig.Mirroring(), "AAAA");
}

TEST(ShiftBoard, ControlSetsTheMirroring) {
    ShiftRig rig(16, 4);
    const std::array<const char*, 4> expected{"AAAA", "BBBB", "ABAB", "AABB"};
    for (int value = 0; value < 4; ++value) {
        rig.Set(kControl, value | 12);
        EXPECT_EQ(rig.Mirroring(), expected[static_cast<size_t>(value)]);
    }
}

TEST(ShiftBoard, ControlRulesOverFourScreens) {
    CartridgeRig rig({1, 16, 4, 8});
    EXPECT_EQ(rig.Mirroring(), "AAAA");
    for (const int bit : {0, 1, 1, 1, 0}) { // lowest first: A B A B
        rig.cycles += 2;
        rig.Write(kControl, bit);
    }
    EXPECT_EQ(rig.Mirroring(), "ABAB");
}

TEST(ShiftBoard, ControlSetsTheProgramMode) {
    ShiftRig rig(16, 4);
    for (int bank = 0; bank < 32; ++bank) {
        const int page = (bank & 15) * 4;
        const int pair = (bank & 14) * 4;
        rig.Set(kPrg, bank);
        for (const int mode : {0, 4}) {
            rig.Set(kControl, mode);
            EXPECT_EQ(rig.Program(), Pages(pair, 8)) << bank;
        }
        rig.Set(kControl, 8);
        EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(page, 4)})) << bank;
        rig.Set(kControl, 12);
        EXPECT_EQ(rig.Program(), Join({Pages(page, 4), Pages(60, 4)})) << bank;
    }
}

TEST(ShiftBoard, CharactersComeWholeOrInHalves) {
    ShiftRig rig(16, 16); // 32 halves of 4 KB
    for (int bank = 0; bank < 32; ++bank) {
        rig.Set(kChr0, bank);
        rig.Set(kChr1, 31 - bank);
        rig.Set(kControl, 12);
        EXPECT_EQ(rig.Characters(), Pages((bank & 30) * 4, 8)) << bank;
        rig.Set(kControl, 12 | 16);
        EXPECT_EQ(rig.Characters(), Join({Pages(bank * 4, 4), Pages((31 - bank) * 4, 4)})) << bank;
    }
}

TEST(ShiftBoard, GameWithoutCharactersHasTwoHalvesOfRam) {
    ShiftRig rig(16, 0);
    EXPECT_TRUE(rig.FillCharacterRam());
    rig.Set(kChr0, 3);
    EXPECT_EQ(rig.Characters(), Pages(0, 8)); // 8 KB mode: both halves in order
    rig.Set(kControl, 12 | 16);
    rig.Set(kChr1, 4);
    EXPECT_EQ(rig.Characters(), Join({Pages(4, 4), Pages(0, 4)}));
    rig.Set(kChr0, 2);
    EXPECT_EQ(rig.Characters(), Join({Pages(0, 4), Pages(0, 4)}));
}

TEST(ShiftBoard, LargeImageHasAnOuterBank) {
    ShiftRig rig(32, 0);
    rig.Set(kPrg, 3);
    EXPECT_EQ(rig.Program(), Join({Pages(12, 4), Pages(60, 4)}));
    rig.Set(kChr0, 16);
    EXPECT_EQ(rig.Program(), Join({Pages(64 + 12, 4), Pages(64 + 60, 4)}));
    rig.Set(kControl, 8);
    EXPECT_EQ(rig.Program(), Join({Pages(64, 4), Pages(64 + 12, 4)}));
    rig.Set(kControl, 0);
    EXPECT_EQ(rig.Program(), Pages(64 + 8, 8));
}

TEST(ShiftBoard, OtherSizesHaveNoOuterBank) {
    ShiftRig rig(64, 0);
    rig.Set(kChr0, 16);
    rig.Set(kPrg, 3);
    EXPECT_EQ(rig.Program(), Join({Pages(12, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, PrgBitFourClosesTheRam) {
    ShiftRig rig(16, 1);
    rig.Write(0x6000, 1);
    rig.Write(0x7FFF, 2);
    EXPECT_EQ(rig.Read(0x6000), 1);
    EXPECT_EQ(rig.Read(0x7FFF), 2);
    rig.Set(kPrg, 16);
    EXPECT_EQ(rig.Read(0x6000), 0xFF);
    rig.Write(0x6000, 3);
    rig.Set(kPrg, 0);
    EXPECT_EQ(rig.Read(0x6000), 1);
    EXPECT_EQ(rig.Read(0x7FFF), 2);
}

TEST(ShiftBoard, TheFifthWritePicksTheRegister) {
    ShiftRig rig(16, 16);
    for (int bit = 0; bit < 4; ++bit) {
        rig.Bit(kControl + bit * 0x2000, 1);
    }
    rig.Bit(0xFFFF, 0); // PRG = 15
    EXPECT_EQ(rig.Program(), Join({Pages(60, 4), Pages(60, 4)}));
    EXPECT_EQ(rig.Mirroring(), "AAAA");
}

TEST(ShiftBoard, OnlyBitZeroIsShiftedIn) {
    ShiftRig rig(16, 4);
    for (const int value : {0x7F, 0x7E, 0x01, 0x40, 0x02}) {
        rig.Bit(kPrg, value);
    }
    EXPECT_EQ(rig.Program(), Join({Pages(5 * 4, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, BitSevenStartsOver) {
    ShiftRig rig(16, 4);
    rig.Bit(kPrg, 1);
    rig.Bit(kPrg, 1);
    rig.Bit(kPrg, 0x80);
    rig.Set(kPrg, 4); // would differ if the two bits were still there
    EXPECT_EQ(rig.Program(), Join({Pages(16, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, BitSevenSetsTheFixedBankWithTheNextRegister) {
    ShiftRig rig(16, 4);
    rig.Set(kPrg, 6);
    rig.Set(kControl, 0x13); // mirroring A A B B, 32 KB, halves
    EXPECT_EQ(rig.Program(), Pages(24, 8));
    rig.Bit(kControl, 0xFF);
    EXPECT_EQ(rig.Program(), Pages(24, 8)); // the page tables are unchanged
    rig.Set(kPrg, 6);
    EXPECT_EQ(rig.Program(), Join({Pages(24, 4), Pages(60, 4)}));
    EXPECT_EQ(rig.Mirroring(), "AABB"); // the other control bits stay
    EXPECT_EQ(rig.Characters(), Join({Pages(0, 4), Pages(0, 4)}));
}

// A write with bit 7 changes the page tables only with the next register write. A state in between keeps that:
// the fixed bank appears with the next write to any register, saved or loaded.
TEST(ShiftBoard, AStateSavedAfterBitSevenGoesOnAsTheRunDoes) {
    for (const int next : {kChr0, kChr1, kPrg}) {
        ShiftRig saved(16, 4);
        saved.Set(kPrg, 6);
        saved.Set(kControl, 0x02); // 32 KB
        saved.Bit(kControl, 0x80);
        ShiftRig loaded(16, 4);
        ASSERT_NE(loaded.Load(saved.Save()), 0U);
        loaded.cycles = saved.cycles;
        for (ShiftRig* rig : {&saved, &loaded}) {
            const bool isLoaded = rig == &loaded;
            EXPECT_EQ(rig->Program(), Pages(24, 8)) << isLoaded;
            rig->Set(next, 6);
            EXPECT_EQ(rig->Program(), Join({Pages(24, 4), Pages(60, 4)})) << isLoaded;
            EXPECT_EQ(rig->Mirroring(), "ABAB");
        }
        EXPECT_EQ(loaded.Save(), saved.Save());
    }
}

TEST(ShiftBoard, TwoWritesInConsecutiveCyclesCountAsOne) {
    ShiftRig rig(16, 4);
    for (int bit = 0; bit < 5; ++bit) {
        rig.cycles += 10;
        rig.Write(kPrg, 5 >> bit & 1);
        rig.cycles += 1; // as INC does: the old value, then the new one
        rig.Write(kPrg, ~5 >> bit & 1);
    }
    EXPECT_EQ(rig.Program(), Join({Pages(20, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, DroppedWriteDoesNotMoveTheCycle) {
    ShiftRig rig(16, 4);
    rig.Bit(kPrg, 1);
    rig.cycles += 1;
    rig.Write(kPrg, 0); // dropped
    rig.cycles += 1;
    rig.Write(kPrg, 1); // two cycles after the accepted one
    rig.Bit(kPrg, 0);
    rig.Bit(kPrg, 0);
    rig.Bit(kPrg, 0);
    EXPECT_EQ(rig.Program(), Join({Pages(12, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, CycleCounterMayWrap) {
    ShiftRig rig(16, 4);
    rig.cycles = 0xFFFFFFFF;
    rig.Write(kPrg, 1);
    rig.cycles = 0;
    rig.Write(kPrg, 0); // the cycle after: dropped
    rig.cycles = 1;
    rig.Write(kPrg, 1);
    rig.Bit(kPrg, 0);
    rig.Bit(kPrg, 0);
    rig.Bit(kPrg, 0);
    EXPECT_EQ(rig.Program(), Join({Pages(12, 4), Pages(60, 4)}));
}

TEST(ShiftBoard, ResetForgetsAHalfShiftedValue) {
    ShiftRig rig(16, 4);
    rig.Set(kControl, 3);
    rig.Bit(kPrg, 1);
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.Mirroring(), "AAAA");
    rig.Set(kPrg, 8);
    EXPECT_EQ(rig.Program(), Join({Pages(32, 4), Pages(60, 4)}));
}
