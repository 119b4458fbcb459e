#include "nes/cartridge_rig.h"

#include <algorithm>

namespace {

bool Loads(const std::vector<uint8_t>& image, std::string& error) {
    const auto cartridge = std::make_unique<NES_CARTRIDGE>();
    const bool loaded = CartridgeLoad(*cartridge, image, error);
    EXPECT_EQ(loaded, cartridge->board != nullptr);
    return loaded;
}

constexpr std::array<int, 9> kBuilt{0, 1, 2, 3, 4, 7, 9, 66, 73};

} // namespace

TEST(Cartridge, BoardNumberComesFromBothHeaderBytes) {
    for (const int board : kBuilt) {
        const CartridgeRig rig({board, 2, 1, 1});
        EXPECT_EQ(rig.cartridge->boardNumber, board);
        EXPECT_EQ(rig.cartridge->flags, kNesVerticalMirroring);
    }
}

TEST(Cartridge, FlagsJoinTheLowNibbles) {
    std::vector<uint8_t> image = MakeImage({66, 1, 0, 3});
    image[7] |= 0x08;
    const auto cartridge = std::make_unique<NES_CARTRIDGE>();
    std::string error;
    ASSERT_TRUE(CartridgeLoad(*cartridge, image, error));
    EXPECT_EQ(cartridge->flags, 0x83);
    EXPECT_EQ(cartridge->boardNumber, 66);
}

TEST(Cartridge, EveryOtherBoardIsRefusedWithItsNumber) {
    for (int board = 0; board < 256; ++board) {
        std::string error = "old";
        const bool loaded = Loads(MakeImage({board, 1, 0, 0}), error);
        const bool built = std::find(kBuilt.begin(), kBuilt.end(), board) != kBuilt.end();
        EXPECT_EQ(loaded, built) << board;
        EXPECT_EQ(error, built ? std::string()
                               : "NES Mapper #" + std::to_string(board) +
                                     " not supported. Tell us on the forum to add support for it!");
    }
}

TEST(Cartridge, TrainerIsRefusedWithoutAMessage) {
    for (const int board : {0, 5}) { // refused before the board is looked up
        std::string error = "old";
        EXPECT_FALSE(Loads(MakeImage({board, 1, 1, kNesTrainer}), error));
        EXPECT_EQ(error, "");
    }
}

TEST(Cartridge, ImageWithoutTheMarkIsRefused) {
    for (size_t byte = 0; byte < 4; ++byte) {
        std::vector<uint8_t> image = MakeImage({0, 1, 1, 0});
        image[byte] ^= 0x20;
        std::string error;
        EXPECT_FALSE(Loads(image, error));
        EXPECT_EQ(error, "The image does not begin with an NES header.");
    }
    for (const size_t size : {0u, 3u, 15u}) {
        std::vector<uint8_t> image = MakeImage({0, 1, 1, 0});
        image.resize(size);
        std::string error;
        EXPECT_FALSE(Loads(image, error));
        EXPECT_EQ(error, "The image does not begin with an NES header.");
    }
}

TEST(Cartridge, HeaderThatPromisesMoreThanTheImageHoldsIsRefused) {
    std::vector<uint8_t> image = MakeImage({0, 2, 1, 0});
    std::string error;
    EXPECT_TRUE(Loads(image, error));
    image.push_back(0); // more than the header promises is fine
    EXPECT_TRUE(Loads(image, error));
    image.resize(image.size() - 2);
    EXPECT_FALSE(Loads(image, error));
    EXPECT_EQ(error, "The NES header speaks of 40976 bytes, but the image has only 40975.");
    image.resize(16);
    EXPECT_FALSE(Loads(image, error));
}

TEST(Cartridge, LoadingAgainForgetsTheOldImage) {
    CartridgeRig rig({3, 2, 4, 0});
    std::string error;
    ASSERT_TRUE(CartridgeLoad(*rig.cartridge, MakeImage({0, 1, 0, 0}), error));
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(0, 4)}));
    EXPECT_EQ(rig.cartridge->characterBanks, 0u);
    EXPECT_TRUE(rig.FillCharacterRam());
    ASSERT_TRUE(CartridgeLoad(*rig.cartridge, MakeImage({0, 1, 0, 0}), error));
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.PpuRead(0x0400), 0);
    EXPECT_TRUE(std::all_of(rig.cartridge->character.begin(), rig.cartridge->character.end(),
                            [](const auto& page) { return page == nullptr; }));
    EXPECT_FALSE(CartridgeLoad(*rig.cartridge, MakeImage({5, 1, 0, 0}), error));
    EXPECT_EQ(rig.cartridge->board, nullptr);
    EXPECT_EQ(rig.cartridge->program[0], nullptr);
}

// Four program pages and eight character pages per bank; the widest mask if the count is no power of two.
TEST(Cartridge, MasksFollowTheBankCounts) {
    struct ROW {
        int banks;
        uint32_t programMask;
        uint32_t characterMask;
    };
    for (const ROW row : {
             ROW{1,   3,    7   },
             ROW{2,   7,    15  },
             ROW{3,   2047, 4095},
             ROW{4,   15,   31  },
             ROW{24,  2047, 4095},
             ROW{32,  127,  255 },
             ROW{128, 511,  1023},
             ROW{255, 2047, 4095}
    }) {
        const CartridgeRig rig({0, row.banks, row.banks, 0});
        EXPECT_EQ(rig.cartridge->programMask, row.programMask) << row.banks;
        EXPECT_EQ(rig.cartridge->characterMask, row.characterMask) << row.banks;
    }
}

TEST(Cartridge, PagesBeyondAnImageOfThreeBanksAreAbsent) {
    CartridgeRig rig({2, 3, 0, 0});
    for (int bank = 0; bank < 3; ++bank) {
        rig.Write(0x8000, bank);
        EXPECT_EQ(rig.Program(), Join({Pages(bank * 4, 4), Pages(8, 4)})); // the last is the third
    }
    for (const int bank : {3, 4, 7, 100, 255}) {
        rig.Write(0x8000, bank);
        EXPECT_EQ(rig.Program(), Join({
                                     {kAbsent, kAbsent, kAbsent, kAbsent},
                                     Pages(8, 4)
        }))
            << bank;
        EXPECT_EQ(rig.Read(0x8FFF), 0xFF);
    }
}

TEST(Cartridge, AbsentCharacterPagesReadHighAndTakeNoWrite) {
    CartridgeRig rig({3, 2, 3, 0});
    rig.Write(0x8000, 2);
    EXPECT_EQ(rig.Characters(), Pages(16, 8));
    rig.Write(0x8000, 3);
    EXPECT_EQ(rig.Characters(), std::vector<int>(8, kAbsent));
    rig.PpuWrite(0x0000, 0x12);
    rig.PpuWrite(0x1FFF, 0x12);
    EXPECT_EQ(rig.PpuRead(0x0000), 0xFF);
    EXPECT_EQ(rig.PpuRead(0x1FFF), 0xFF);
}

TEST(Cartridge, ImageOfNoProgramReadsHigh) {
    const CartridgeRig rig({0, 0, 1, 0});
    EXPECT_EQ(rig.Program(), std::vector<int>(8, kAbsent));
}

TEST(Cartridge, ImageDataTakesNoWrites) {
    for (const int board : kBuilt) {
        CartridgeRig rig({board, 16, 4, 0});
        const std::vector<uint8_t> before = MakeImage({board, 16, 4, 0});
        for (int address = 0x8000; address < 0x10000; address += 0x100) {
            rig.cycles += 10;
            rig.Write(address, 0x00);
        }
        for (int address = 0; address < 0x2000; address += 0x100) {
            rig.PpuWrite(address, 0xEE);
        }
        for (size_t page = 0; page < 64; ++page) {
            ASSERT_TRUE(std::equal(before.begin() + 16 + static_cast<ptrdiff_t>(page) * 4096,
                                   before.begin() + 16 + static_cast<ptrdiff_t>(page + 1) * 4096,
                                   rig.cartridge->program[page].get()));
        }
        for (size_t page = 0; page < 32; ++page) {
            const auto* const data = before.data() + 16 + 64 * 4096 + page * 1024;
            ASSERT_TRUE(std::equal(data, data + 1024, rig.cartridge->character[page].get()));
        }
    }
}

TEST(Cartridge, NothingIsMappedBelowTheImageOnBoardsWithoutRam) {
    for (const int board : {0, 2, 3, 7, 9, 66, 73}) {
        CartridgeRig rig({board, 2, 1, 0});
        for (const int address : {0x5000, 0x5FFF, 0x6000, 0x7FFF}) {
            rig.Write(address, 0x12);
            EXPECT_EQ(rig.Read(address), 0xFF) << board;
        }
    }
}

TEST(Cartridge, HeaderSetsTheMirroring) {
    for (const int board : {0, 2, 3, 4, 9, 66, 73}) {
        EXPECT_EQ(CartridgeRig({board, 2, 1, 0}).Mirroring(), "AABB") << board;
        EXPECT_EQ(CartridgeRig({board, 2, 1, 1}).Mirroring(), "ABAB") << board;
        EXPECT_EQ(CartridgeRig({board, 2, 1, 8}).Mirroring(), "ABCD") << board;
        EXPECT_EQ(CartridgeRig({board, 2, 1, 9}).Mirroring(), "ABCD") << board;
    }
}

TEST(Cartridge, NametablesTakeWritesThroughTheirMirror) {
    CartridgeRig rig({0, 1, 1, 1});
    rig.PpuWrite(0x2800, 1); // A
    rig.PpuWrite(0x3455, 2); // B, by the mirror
    EXPECT_EQ(rig.nametables[0][0], 1);
    EXPECT_EQ(rig.nametables[1][0x55], 2);
    EXPECT_EQ(rig.PpuRead(0x2C55), 2);
}

TEST(Cartridge, OnlyTheBoardsThatHaveThemHaveClockAndHook) {
    for (const int board : kBuilt) {
        CartridgeRig rig({board, 2, 1, 0});
        EXPECT_EQ(rig.cartridge->cpuClock != nullptr, board == 73) << board;
        EXPECT_EQ(rig.cartridge->pages.ppuAddressHook != nullptr, board == 4) << board;
        rig.Hook(0x1000);
        BoardCpuClock(*rig.cartridge);
        EXPECT_FALSE(rig.Irq());
    }
}
