#include "formats/hand_made.h"
#include "library/nes_header.h"

#include <gtest/gtest.h>

namespace {

// The bytes from 4 on as published, before an image of that many bytes.
Bytes File(std::initializer_list<uint8_t> header, size_t bytes) {
    Bytes file = Text("NES\x1A") + Bytes(header);
    file.resize(kNesFileHeader + bytes);
    return file;
}

NES_HEADER Read(const Bytes& file) {
    NES_HEADER header;
    EXPECT_TRUE(ReadNesHeader(file, header));
    return header;
}

} // namespace

TEST(NesHeader, OneWithoutTheMarkIsNone) {
    NES_HEADER header;
    EXPECT_FALSE(ReadNesHeader(Text("NES"), header));
    EXPECT_FALSE(ReadNesHeader(Text("NES\x1A") + Bytes(11), header)) << "a byte short";
    EXPECT_FALSE(ReadNesHeader(Text("NES ") + Bytes(12), header));
    EXPECT_TRUE(ReadNesHeader(Text("NES\x1A") + Bytes(12), header));
}

TEST(NesHeader, BanksFlagsAndBoardAreAsPublished) {
    const NES_HEADER header = Read(File({8, 16, 0x43, 0x10}, 0));
    EXPECT_EQ(header.programBytes, 8u * 16384);
    EXPECT_EQ(header.characterBytes, 16u * 8192);
    EXPECT_EQ(header.mapper, 0x14);
    EXPECT_TRUE(header.hasBattery);
    EXPECT_FALSE(header.hasTrainer);
    EXPECT_EQ(header.mirroring, NesMirroring::kVertical);
    EXPECT_EQ(header.TotalBytes(), 16u + 8 * 16384 + 16 * 8192);
    EXPECT_EQ(Read(File({1, 0, 0x04}, 0)).TotalBytes(), 16u + 512 + 16384) << "with a trainer";
    EXPECT_EQ(Read(File({1, 0, 0x08}, 0)).mirroring, NesMirroring::kFourScreens);
}

TEST(NesHeader, Version2HasMoreBitsOfEverything) {
    // Board 0x523, variant 6; 2 banks of program and one of pictures; PAL.
    const NES_HEADER header = Read(File({2, 1, 0x30, 0x28, 0x65, 0, 0, 0, 1}, 3 * 16384));
    EXPECT_TRUE(header.isVersion2);
    EXPECT_EQ(header.mapper, 0x523);
    EXPECT_EQ(header.submapper, 6);
    EXPECT_EQ(header.timing, NesTiming::kPal);
    EXPECT_EQ(header.TotalBytes(), 16u + 2 * 16384 + 8192);
    // Banks over 255: 0x101 of them.
    EXPECT_EQ(Read(File({1, 0, 0, 0x08, 0, 1}, 0x101 * 16384)).programBytes, 0x101u * 16384);
    // A power of two, 13, and the factor 1: 8 KB.
    EXPECT_EQ(Read(File({13 << 2, 0, 0, 0x08, 0, 0x0F}, 8192)).programBytes, 8192u);
    EXPECT_EQ(Read(File({13 << 2 | 1, 0, 0, 0x08, 0, 0x0F}, 3 * 8192)).programBytes, 3u * 8192);
}

// Text in the upper half, of which a letter happens to have the bits of version 2.
TEST(NesHeader, SizeTellsOldTextFromVersion2) {
    const NES_HEADER header = Read(File({1, 1, 0, 'J', 'u', 'n', 'k'}, 16384 + 8192));
    EXPECT_FALSE(header.isVersion2);
    EXPECT_EQ(header.TotalBytes(), 16u + 16384 + 8192);
}
