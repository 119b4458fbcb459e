// The page tables and mappers of the Master System and the Game Gear.
#include "sega8/sega_memory.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr uint16_t kSlots[3] = {0x1000, 0x5000, 0x9000};

std::vector<uint8_t> NumberedBanks(uint32_t count) {
    std::vector<uint8_t> image(size_t{count} * kSegaBankBytes);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i / kSegaBankBytes);
    }
    return image;
}

std::unique_ptr<SEGA_MEMORY> WithCartridge(std::vector<uint8_t> image,
                                           SegaMapper mapper = SegaMapper::kSega) {
    auto memory = std::make_unique<SEGA_MEMORY>();
    memory->cartridge = MakeCartridge(std::move(image));
    memory->mapper = mapper;
    SegaMemoryReset(*memory);
    return memory;
}

std::array<int, 3> Banks(const SEGA_MEMORY& memory) {
    return {SegaMemoryRead(memory, kSlots[0]), SegaMemoryRead(memory, kSlots[1]),
            SegaMemoryRead(memory, kSlots[2])};
}

using Three = std::array<int, 3>;

} // namespace

TEST(SegaMemory, ResetMapsTheFirstThreeBanks) {
    EXPECT_EQ(Banks(*WithCartridge(NumberedBanks(8))), (Three{0, 1, 2}));
}

TEST(SegaMemory, SegaMapperHasItsSlotRegistersAtTheTop) {
    const auto memory = WithCartridge(NumberedBanks(8));
    SegaMemoryWrite(*memory, 0xFFFD, 5);
    SegaMemoryWrite(*memory, 0xFFFE, 6);
    SegaMemoryWrite(*memory, 0xFFFF, 7);
    EXPECT_EQ(Banks(*memory), (Three{5, 6, 7}));
}

TEST(SegaMemory, MapperRegistersAreAlsoStoredInRam) {
    const auto memory = WithCartridge(NumberedBanks(8));
    SegaMemoryWrite(*memory, 0xFFFF, 7);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xDFFF), 7);
    SegaMemoryWrite(*memory, 0xDFFF, 3);
    EXPECT_EQ(Banks(*memory)[2], 7) << "the mirror is no register";
}

TEST(SegaMemory, FirstKilobyteStaysInBankZero) {
    const auto memory = WithCartridge(NumberedBanks(8));
    SegaMemoryWrite(*memory, 0xFFFD, 5);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x0000), 0);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x03FF), 0);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x0400), 5);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x3FFF), 5);
}

TEST(SegaMemory, SlotsShowWholeBanksInOrder) {
    std::vector<uint8_t> image(0xC000);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i ^ i >> 8);
    }
    const auto memory = WithCartridge(image);
    for (uint32_t address = 0; address < 0xC000; ++address) {
        ASSERT_EQ(SegaMemoryRead(*memory, static_cast<uint16_t>(address)), image[address]);
    }
}

TEST(SegaMemory, BankPastTheEndMapsBankZero) {
    const auto memory = WithCartridge(NumberedBanks(6));
    SegaMemoryWrite(*memory, 0xFFFF, 6); // the mask is 7, and there is no bank 6
    EXPECT_EQ(Banks(*memory)[2], 0);
    SegaMemoryWrite(*memory, 0xFFFF, 7);
    EXPECT_EQ(Banks(*memory)[2], 0);
    SegaMemoryWrite(*memory, 0xFFFF, 8 + 5);
    EXPECT_EQ(Banks(*memory)[2], 5);
}

TEST(SegaMemory, MaskIsThePowerOfTwoAboveTheCount) {
    EXPECT_EQ(MakeCartridge(NumberedBanks(1)).bankMask, 1u);
    EXPECT_EQ(MakeCartridge(NumberedBanks(2)).bankMask, 3u);
    EXPECT_EQ(MakeCartridge(NumberedBanks(6)).bankMask, 7u);
    EXPECT_EQ(MakeCartridge(NumberedBanks(8)).bankMask, 15u);
    const auto memory = WithCartridge(NumberedBanks(8));
    SegaMemoryWrite(*memory, 0xFFFF, 9);
    EXPECT_EQ(Banks(*memory)[2], 0);
    SegaMemoryWrite(*memory, 0xFFFF, 16 + 3);
    EXPECT_EQ(Banks(*memory)[2], 3);
}

TEST(SegaMemory, EveryBankOfTheLargestImageIsReached) {
    const auto memory = WithCartridge(NumberedBanks(256));
    for (int bank = 0; bank < 256; ++bank) {
        SegaMemoryWrite(*memory, 0xFFFE, static_cast<uint8_t>(bank));
        ASSERT_EQ(Banks(*memory)[1], bank);
    }
}

TEST(SegaMemory, ImageOfOneByteIsFilledUp) {
    const auto memory = WithCartridge({0x42});
    EXPECT_EQ(SegaMemoryRead(*memory, 0), 0x42);
    EXPECT_EQ(SegaMemoryRead(*memory, 1), 0xFF);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x4000), 0x42) << "bank 1 is past the end";
}

TEST(SegaMemory, ImageThatEndsInsideABankIsFilledUp) {
    std::vector<uint8_t> image = NumberedBanks(3);
    image.resize(2 * kSegaBankBytes + 512);
    const auto memory = WithCartridge(image);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x81FF), 2);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x8200), 0xFF);
}

TEST(SegaMemory, CartridgeRamCoversSlotTwoAndRepeats) {
    const auto memory = WithCartridge(NumberedBanks(8));
    SegaMemoryWrite(*memory, 0xFFFF, 5);
    SegaMemoryWrite(*memory, 0xFFFC, 0x08);
    SegaMemoryWrite(*memory, 0x8123, 0x77);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x8123), 0x77);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xA123), 0x77);
    EXPECT_EQ(memory->cartridgeRam[0x123], 0x77);
    SegaMemoryWrite(*memory, 0xFFFC, 0xF7); // no other bit counts
    EXPECT_EQ(Banks(*memory), (Three{0, 1, 5}));
    SegaMemoryWrite(*memory, 0x8123, 0x78);
    EXPECT_EQ(memory->cartridgeRam[0x123], 0x77);
}

TEST(SegaMemory, CartridgeRamOutlivesAReset) {
    const auto memory = WithCartridge(NumberedBanks(4));
    SegaMemoryWrite(*memory, 0xFFFC, 0x08);
    SegaMemoryWrite(*memory, 0x8000, 0x55);
    SegaMemoryWrite(*memory, 0xC100, 0x56);
    SegaMemoryReset(*memory);
    EXPECT_EQ(memory->cartridgeRam[0], 0x55);
    EXPECT_EQ(SegaMemoryRead(*memory, 0x8000), 2) << "the mapper starts without it";
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC100), 0);
}

TEST(SegaMemory, CodemastersRegistersLieInTheSlots) {
    const auto memory = WithCartridge(NumberedBanks(8), SegaMapper::kCodemasters);
    SegaMemoryWrite(*memory, 0x0000, 3);
    SegaMemoryWrite(*memory, 0x4000, 4);
    SegaMemoryWrite(*memory, 0x8000, 5);
    EXPECT_EQ(Banks(*memory), (Three{3, 4, 5}));
    EXPECT_EQ(SegaMemoryRead(*memory, 0x0000), 3) << "no fixed kilobyte";
    SegaMemoryWrite(*memory, 0x0001, 6);
    SegaMemoryWrite(*memory, 0xC000, 6);
    SegaMemoryWrite(*memory, 0xFFFF, 6);
    EXPECT_EQ(Banks(*memory), (Three{3, 4, 5}));
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC000), 6) << "that is RAM";
}

TEST(SegaMemory, CodemastersStartsInBanksZeroOneTwo) {
    EXPECT_EQ(Banks(*WithCartridge(NumberedBanks(8), SegaMapper::kCodemasters)), (Three{0, 1, 2}));
}

TEST(SegaMemory, KoreanMapperHasOneRegister) {
    const auto memory = WithCartridge(NumberedBanks(8), SegaMapper::kKorean);
    SegaMemoryWrite(*memory, 0xA000, 6);
    EXPECT_EQ(Banks(*memory), (Three{0, 1, 6}));
    SegaMemoryWrite(*memory, 0xFFFE, 4);
    SegaMemoryWrite(*memory, 0x8000, 4);
    EXPECT_EQ(Banks(*memory), (Three{0, 1, 6}));
}

TEST(SegaMemory, UnknownBoardIsTheSegaMapper) {
    EXPECT_EQ(SegaMapperOf(0), SegaMapper::kSega);
    EXPECT_EQ(SegaMapperOf(1), SegaMapper::kSega);
    EXPECT_EQ(SegaMapperOf(2), SegaMapper::kCodemasters);
    EXPECT_EQ(SegaMapperOf(3), SegaMapper::kKorean);
    EXPECT_EQ(SegaMapperOf(99), SegaMapper::kSega);
}

TEST(SegaMemory, WithoutABiosTheConsoleLooksAsAfterOne) {
    const auto memory = WithCartridge(NumberedBanks(2));
    EXPECT_EQ(memory->control, 0xAB);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC000), 0xAB);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xDFFC), 0);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xDFFD), 0);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xDFFE), 1);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xDFFF), 2);
}

TEST(SegaMemory, WithABiosTheConsoleStartsInIt) {
    SEGA_MEMORY memory;
    memory.cartridge = MakeCartridge(NumberedBanks(4));
    memory.bios = MakeBios(std::vector<uint8_t>(2 * kSegaBankBytes, 0xB1));
    SegaMemoryReset(memory);
    EXPECT_EQ(memory.control, 0xE0);
    EXPECT_EQ(SegaMemoryRead(memory, 0x0000), 0xB1);
    EXPECT_EQ(SegaMemoryRead(memory, 0xC000), 0);
    SegaMemoryWriteControl(memory, 0xAB);
    EXPECT_EQ(Banks(memory), (Three{0, 1, 2}));
}

TEST(SegaMemory, CartridgeComesBeforeTheBios) {
    SEGA_MEMORY memory;
    memory.cartridge = MakeCartridge(NumberedBanks(4));
    memory.bios = MakeBios(std::vector<uint8_t>(kSegaBankBytes, 0xB1));
    SegaMemoryReset(memory);
    SegaMemoryWriteControl(memory, 0xA3); // both on
    EXPECT_EQ(Banks(memory), (Three{0, 1, 2}));
}

TEST(SegaMemory, SlotWritesGoToTheImageThatIsOn) {
    SEGA_MEMORY memory;
    memory.cartridge = MakeCartridge(NumberedBanks(8));
    std::vector<uint8_t> bios = NumberedBanks(8);
    for (uint8_t& byte : bios) {
        byte = static_cast<uint8_t>(byte | 0xB0);
    }
    memory.bios = MakeBios(bios);
    SegaMemoryReset(memory);
    SegaMemoryWrite(memory, 0xFFFF, 7);
    EXPECT_EQ(Banks(memory), (Three{0xB0, 0xB1, 0xB7}));
    SegaMemoryWriteControl(memory, 0xAB);
    EXPECT_EQ(Banks(memory), (Three{0, 1, 2}));
    SegaMemoryWrite(memory, 0xFFFF, 5);
    SegaMemoryWriteControl(memory, 0xE0);
    EXPECT_EQ(Banks(memory), (Three{0xB0, 0xB1, 0xB7}));
}

TEST(SegaMemory, BiosKeepsTheSegaMapperUnderAnyCartridge) {
    SEGA_MEMORY memory;
    memory.cartridge = MakeCartridge(NumberedBanks(8));
    memory.mapper = SegaMapper::kCodemasters;
    memory.bios = MakeBios(NumberedBanks(8));
    SegaMemoryReset(memory);
    SegaMemoryWrite(memory, 0x8000, 6);
    EXPECT_EQ(Banks(memory)[2], 2);
    SegaMemoryWrite(memory, 0xFFFF, 6);
    EXPECT_EQ(Banks(memory)[2], 6);
}

TEST(SegaMemory, SmallBiosIsRepeated) {
    SEGA_MEMORY memory;
    memory.bios = MakeBios({1, 2, 3});
    SegaMemoryReset(memory);
    for (uint32_t address = 0; address < 0xC000; ++address) {
        ASSERT_EQ(SegaMemoryRead(memory, static_cast<uint16_t>(address)), address % 3 + 1);
    }
    SegaMemoryWrite(memory, 0xFFFF, 1);
    EXPECT_EQ(SegaMemoryRead(memory, 0x8000), 0x8000 % 3 + 1);
}

TEST(SegaMemory, NoBiosWhereOneIsEnabledReadsOnes) {
    const auto memory = WithCartridge(NumberedBanks(4));
    SegaMemoryWriteControl(*memory, 0xE3); // cartridge off, BIOS and RAM on
    for (uint32_t address = 0; address < 0xC000; address += 0x101) {
        ASSERT_EQ(SegaMemoryRead(*memory, static_cast<uint16_t>(address)), 0xFF);
    }
}

TEST(SegaMemory, RamIsMirroredAndCanBeSwitchedOff) {
    const auto memory = WithCartridge(NumberedBanks(4));
    SegaMemoryWrite(*memory, 0xC345, 0x12);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xE345), 0x12);
    SegaMemoryWrite(*memory, 0xE346, 0x13);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC346), 0x13);
    SegaMemoryWriteControl(*memory, 0xBB);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC345), 0xFF);
    SegaMemoryWrite(*memory, 0xC345, 0x99);
    SegaMemoryWrite(*memory, 0xFFFF, 3);
    EXPECT_EQ(Banks(*memory)[2], 3) << "the registers listen without RAM too";
    SegaMemoryWriteControl(*memory, 0xAB);
    EXPECT_EQ(SegaMemoryRead(*memory, 0xC345), 0x12);
}

TEST(SegaMemory, WritesToRomGoNowhere) {
    const auto memory = WithCartridge(NumberedBanks(4));
    SegaMemoryWrite(*memory, 0x1000, 0x99);
    SegaMemoryWrite(*memory, 0x9000, 0x99);
    EXPECT_EQ(Banks(*memory), (Three{0, 1, 2}));
}

TEST(SegaMemory, RebuildBearsAnyBankNumber) {
    const auto memory = WithCartridge(NumberedBanks(4));
    memory->cartridgeWords.slots = {0xFFFFFFFF, 4, 3};
    SegaMemoryRebuild(*memory);
    EXPECT_EQ(Banks(*memory), (Three{0, 0, 3}));
}
