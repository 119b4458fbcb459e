#include "nes/cartridge_rig.h"

namespace {

class LatchedRig : public CartridgeRig {
public:
    LatchedRig()
        : CartridgeRig({9, 8, 16, 0}) { // 16 banks of 8 KB, 32 halves of 4 KB
        Write(0xB000, 3);               // left, FD
        Write(0xC000, 5);               // left, FE
        Write(0xD000, 7);               // right, FD
        Write(0xE000, 9);               // right, FE
    }

    // The 4 KB bank of a half, read from an unwatched page.
    [[nodiscard]] int Half(int half) const {
        return (PpuRead(half * 0x1000) | (PpuRead(half * 0x1000 + 1) & 0x7F) << 8) / 4;
    }
};

} // namespace

TEST(LatchedBoard, ProgramBankAndThreeFixedOnes) {
    LatchedRig rig;
    for (int bank = 0; bank < 40; ++bank) {
        rig.Write(0xA000 + bank * 17, bank);
        EXPECT_EQ(rig.Program(), Join({Pages((bank & 15) * 2, 2), Pages(26, 6)})) << bank;
    }
}

TEST(LatchedBoard, MirroringRegister) {
    LatchedRig rig;
    for (const int value : {0, 1, 0xFE, 0xFF}) {
        rig.Write(0xF123, value);
        EXPECT_EQ(rig.Mirroring(), (value & 1) != 0 ? "AABB" : "ABAB") << value;
    }
}

// The header's four screens apply until the register is written, also in a loaded state.
TEST(LatchedBoard, MirroringRegisterRulesOverFourScreens) {
    for (const int flags : {8, 9}) {
        CartridgeRig rig({9, 8, 16, flags});
        CartridgeRig loaded({9, 8, 16, flags});
        rig.Write(0xA000, 3);
        EXPECT_EQ(rig.Mirroring(), "ABCD") << "no other register does it";
        loaded.Write(0xF000, 1);
        ASSERT_NE(loaded.Load(rig.Save()), 0U);
        EXPECT_EQ(loaded.Mirroring(), "ABCD") << flags;
        for (const int value : {0, 1, 0xFE, 0xFF, 2}) {
            rig.Write(0xF000, value);
            EXPECT_EQ(rig.Mirroring(), (value & 1) != 0 ? "AABB" : "ABAB") << flags;
            ASSERT_NE(loaded.Load(rig.Save()), 0U);
            EXPECT_EQ(loaded.Mirroring(), rig.Mirroring()) << flags;
        }
        BoardReset(*rig.cartridge);
        EXPECT_EQ(rig.Mirroring(), "ABCD") << flags;
    }
}

TEST(LatchedBoard, FirstTwoPagesAreNoRegisters) {
    LatchedRig rig;
    rig.Write(0x8000, 4);
    rig.Write(0x9FFF, 4);
    EXPECT_EQ(rig.Program(), Join({Pages(0, 2), Pages(26, 6)}));
    EXPECT_EQ(rig.Half(0), 3);
}

TEST(LatchedBoard, LatchesStartAtFd) {
    const LatchedRig rig;
    EXPECT_EQ(rig.Half(0), 3);
    EXPECT_EQ(rig.Half(1), 7);
}

TEST(LatchedBoard, CharacterRegistersHaveFiveBits) {
    LatchedRig rig;
    for (int bank = 0; bank < 256; bank += 5) {
        rig.Write(0xB000, bank);
        EXPECT_EQ(rig.Half(0), bank & 31);
        rig.Write(0xD000, bank);
        EXPECT_EQ(rig.Half(1), bank & 31);
    }
}

// Every address of both halves, from either latch: only the high planes of tiles FD and FE switch.
TEST(LatchedBoard, ReadsOfTheTwoTilesSwitchTheirHalf) {
    LatchedRig rig;
    const std::array<std::array<int, 2>, 2> banks{
        {{3, 5}, {7, 9}}  // by half: FD, FE
    };
    for (const bool fromFe : {false, true}) {
        for (int address = 0; address < 0x2000; ++address) {
            const auto half = static_cast<size_t>(address >> 12);
            const int within = address & 0xFFF;
            (void)rig.PpuRead(fromFe ? 0x0FE8 : 0x0FD8);
            (void)rig.PpuRead(fromFe ? 0x1FE8 : 0x1FD8);
            (void)rig.PpuRead(address);
            const bool toFd = within >= 0xFD8 && within <= 0xFDF;
            const bool toFe = within >= 0xFE8 && within <= 0xFEF;
            const bool fe = toFe || (fromFe && !toFd);
            ASSERT_EQ(rig.Half(static_cast<int>(half)), banks[half][fe ? 1 : 0]) << address;
            ASSERT_EQ(rig.Half(static_cast<int>(1 - half)), banks[1 - half][fromFe ? 1 : 0])
                << address;
        }
    }
}

TEST(LatchedBoard, TheReadItselfSeesTheOldBank) {
    LatchedRig rig;
    rig.cartridge->character[3 * 4 + 3][0x3E8] = 0x11; // last page of the left FD bank
    rig.cartridge->character[5 * 4 + 3][0x3E8] = 0x22;
    EXPECT_EQ(rig.PpuRead(0x0FE8), 0x11);
    EXPECT_EQ(rig.PpuRead(0x0FE8), 0x22);
}

TEST(LatchedBoard, RegisterOfTheOtherLatchShowsWhenItSwitches) {
    LatchedRig rig;
    rig.Write(0xC000, 20);
    EXPECT_EQ(rig.Half(0), 3);
    (void)rig.PpuRead(0x0FE8);
    EXPECT_EQ(rig.Half(0), 20);
    rig.Write(0xC000, 21);
    EXPECT_EQ(rig.Half(0), 21);
    rig.Write(0xB000, 1);
    EXPECT_EQ(rig.Half(0), 21);
}

TEST(LatchedBoard, WithoutCharactersEverythingReadsHigh) {
    CartridgeRig rig({9, 8, 0, 0});
    EXPECT_EQ(rig.PpuRead(0x0FE8), 0xFF);
    EXPECT_EQ(rig.PpuRead(0x1FD8), 0xFF);
    EXPECT_EQ(rig.Characters(), std::vector<int>(8, kAbsent));
}
