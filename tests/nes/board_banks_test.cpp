#include "nes/cartridge_rig.h"

TEST(PlainBoard, ShowsTheWholeImage) {
    EXPECT_EQ(CartridgeRig({0, 2, 1, 0}).Program(), Pages(0, 8));
    EXPECT_EQ(CartridgeRig({0, 1, 1, 0}).Program(), Join({Pages(0, 4), Pages(0, 4)}));
    EXPECT_EQ(CartridgeRig({0, 2, 1, 0}).Characters(), Pages(0, 8));
}

TEST(PlainBoard, WritesChangeNothing) {
    CartridgeRig rig({0, 4, 2, 0});
    for (int address = 0x8000; address < 0x10000; address += 0x1000) {
        rig.Write(address, 1);
    }
    EXPECT_EQ(rig.Program(), Pages(0, 8));
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
}

TEST(PlainBoard, GameWithoutCharactersHasRamOfItsOwnMachine) {
    CartridgeRig one({0, 1, 0, 0});
    const CartridgeRig two({0, 1, 0, 0});
    EXPECT_TRUE(one.FillCharacterRam());
    EXPECT_EQ(two.PpuRead(0x0400), 0);
}

TEST(ProgramBankBoard, ValuePicksTheLowerHalf) {
    CartridgeRig rig({2, 8, 0, 0});
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(28, 4)}));
    for (int bank = 0; bank < 20; ++bank) {
        rig.Write(0x8000 + bank * 0x600, bank);
        EXPECT_EQ(rig.Program(), Join({Pages(bank % 8 * 4, 4), Pages(28, 4)})) << bank;
    }
}

TEST(ProgramBankBoard, HasCharacterRam) {
    CartridgeRig rig({2, 8, 0, 0});
    EXPECT_TRUE(rig.FillCharacterRam());
    rig.Write(0x8000, 3);
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
}

// 2, 7 and 73 have character RAM even if the image has characters.
TEST(BankBoards, RamReplacesACharacterImage) {
    for (const int board : {2, 7, 73}) {
        CartridgeRig rig({board, 8, 2, 0});
        EXPECT_EQ(rig.PpuRead(0x0001), 0) << board << ": the image's pages have 0x80 here";
        EXPECT_TRUE(rig.FillCharacterRam()) << board;
        rig.PpuWrite(0x1FFF, 0x5A);
        rig.Write(0xF000, 1);
        EXPECT_EQ(rig.Characters(), Pages(0, 8)) << board;
        EXPECT_EQ(rig.PpuRead(0x1FFF), 0x5A) << board;
        BoardReset(*rig.cartridge);
        EXPECT_EQ(rig.PpuRead(0x1FFF), 0x5A) << board;
    }
}

TEST(CharacterBankBoard, ValuePicksTheCharacters) {
    CartridgeRig rig({3, 2, 4, 0});
    for (int bank = 0; bank < 9; ++bank) {
        rig.Write(0xF000 - bank * 0x700, bank);
        EXPECT_EQ(rig.Characters(), Pages(bank % 4 * 8, 8)) << bank;
        EXPECT_EQ(rig.Program(), Pages(0, 8));
    }
}

TEST(CharacterBankBoard, GameWithoutCharactersHasRam) {
    for (const int board : {3, 66}) {
        CartridgeRig rig({board, 2, 0, 0});
        EXPECT_TRUE(rig.FillCharacterRam()) << board;
        rig.Write(0x8000, 3);
        EXPECT_EQ(rig.Characters(), Pages(0, 8)) << board;
    }
}

TEST(OneScreenBoard, ValuePicksProgramAndNametable) {
    CartridgeRig rig({7, 32, 0, 1});    // more banks than the three bits reach
    EXPECT_EQ(rig.Mirroring(), "AAAA"); // ignores the header
    for (int value = 0; value < 256; ++value) {
        rig.Write(0x8000 + value * 0x71, value);
        EXPECT_EQ(rig.Program(), Pages((value & 7) * 8, 8)) << value;
        EXPECT_EQ(rig.Mirroring(), (value & 0x10) != 0 ? "BBBB" : "AAAA") << value;
    }
    EXPECT_TRUE(rig.FillCharacterRam());
}

TEST(OneScreenBoard, ValueRulesOverFourScreens) {
    CartridgeRig rig({7, 4, 0, 8});
    EXPECT_EQ(rig.Mirroring(), "AAAA");
    rig.Write(0x8000, 0x10);
    EXPECT_EQ(rig.Mirroring(), "BBBB");
}

TEST(OneScreenBoard, SmallImageWraps) {
    CartridgeRig rig({7, 4, 0, 0}); // two banks of 32 KB
    rig.Write(0x8000, 5);
    EXPECT_EQ(rig.Program(), Pages(8, 8));
}

TEST(TwoBankBoard, ValuePicksBoth) {
    CartridgeRig rig({66, 16, 8, 0}); // more banks than two bits reach
    for (int value = 0; value < 256; ++value) {
        rig.Write(0x8000 + value * 0x71, value);
        EXPECT_EQ(rig.Program(), Pages((value >> 4 & 3) * 8, 8)) << value;
        EXPECT_EQ(rig.Characters(), Pages((value & 3) * 8, 8)) << value;
    }
}

TEST(BankBoards, ResetReturnsToTheFirstBankAndKeepsTheRam) {
    CartridgeRig rig({2, 8, 0, 0});
    EXPECT_TRUE(rig.FillCharacterRam());
    rig.Write(0x8000, 5);
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(28, 4)}));
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
}

TEST(BankBoards, ResetClearsTheInterruptLine) {
    CartridgeRig rig({0, 1, 1, 0});
    rig.irqLines = kNesIrqBoard | kNesIrqFrame;
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.irqLines, kNesIrqFrame);
}
