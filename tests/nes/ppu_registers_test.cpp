// The PPU's registers, outside rendering.
#include "nes/ppu_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

struct RegisterWrite {
    uint32_t address;
    uint32_t value;
};

void WriteAll(PpuRig& rig, const std::vector<RegisterWrite>& writes) {
    for (const RegisterWrite& write : writes) {
        rig.Write(write.address, write.value);
    }
}

} // namespace

TEST(PpuRegisters, StartWithTheirResetValues) {
    NES_PAGES pages;
    uint32_t nmi = 3;
    const auto ppu = std::make_unique<PPU>();
    PpuInit(*ppu, &pages);
    ppu->totalLines = 1;
    ppu->line = 7;
    ppu->firstWrite = 0;
    PpuReset(*ppu, true, &nmi);
    EXPECT_EQ(ppu->totalLines, 262);
    EXPECT_EQ(ppu->line, 241);
    EXPECT_EQ(ppu->firstWrite, 1);
    EXPECT_EQ(ppu->oam[0], 0xFF);
    EXPECT_EQ(ppu->oam[255], 0xFF);
    EXPECT_EQ(ppu->secondaryOam[31], 0xFF);
    EXPECT_EQ(ppu->palette[0], 0x3F);
    EXPECT_EQ(ppu->palette[31], 0x3F);
    for (uint32_t page = 0; page < 4; ++page) {
        EXPECT_EQ(PpuNametable(*ppu, page), ppu->nametables[page].data());
        EXPECT_EQ(ppu->nametables[page][0], 0xFF);
        EXPECT_EQ(ppu->nametables[page][1023], 0xFF);
    }
    EXPECT_EQ(nmi, 2U); // only bit 0 is cleared
}

TEST(PpuRegisters, ASoftResetLeavesTheTwoAddresses) {
    for (const bool hard : {false, true}) {
        PpuRig rig;
        rig.Address(0x1234);
        rig.Write(3, 0x56);
        rig.Write(0, 0x80);
        PpuReset(*rig.ppu, hard, &rig.nmi);
        EXPECT_EQ(rig.ppu->vramAddress, hard ? 0 : 0x1234);
        EXPECT_EQ(rig.ppu->oamAddress, hard ? 0 : 0x56);
        EXPECT_EQ(rig.ppu->control, 0);
    }
}

TEST(PpuRegisters, AnswerByTheLowThreeBitsOfTheAddress) {
    PpuRig rig;
    rig.Write(0x2003, 0x10);
    rig.Write(0x3FFC, 0x77);
    rig.Write(0x2EF3, 0x10);
    EXPECT_EQ(rig.Read(0x2004), 0x77);
    EXPECT_EQ(rig.Read(0x3014), 0x77);
}

TEST(PpuRegisters, ScrollAndAddressWritesFillTheTemporaryAddress) {
    struct Row {
        std::vector<RegisterWrite> writes;
        uint16_t temp;
        uint16_t vram;
        uint8_t fineX;
        uint8_t firstWrite;
    };
    // Coarse X 15 and fine X 5 of 0x7D; coarse Y 11 and fine Y 6 of 0x5E.
    const std::vector<Row> rows{
        {{{5, 0x7D}},                                  0x000F, 0,      5, 0},
        {{{5, 0x7D}, {5, 0x5E}},                       0x616F, 0,      5, 1},
        {{{0, 0x03}},                                  0x0C00, 0,      0, 1},
        {{{0, 0xFD}},                                  0x0400, 0,      0, 1},
        {{{0, 0x02}, {5, 0x7D}, {5, 0x5E}},            0x696F, 0,      5, 1},
        {{{6, 0x3D}},                                  0x3D00, 0,      0, 0},
        {{{6, 0x3D}, {6, 0xF0}},                       0x3DF0, 0x3DF0, 0, 1},
        {{{6, 0xFF}, {6, 0xFF}},                       0x3FFF, 0x3FFF, 0, 1}, // the top two bits are dropped
        {{{5, 0}, {5, 0xFF}, {6, 0x21}},               0x21E0, 0,      0, 0}, // and bit 14 cleared
        {{{6, 0x04}, {5, 0x3E}, {5, 0x7D}, {6, 0xEF}}, 0x64EF, 0x64EF, 5, 1},
        {{{0, 0x03}, {0, 0x00}, {5, 0xFF}, {5, 0xFF}}, 0x73FF, 0,      7, 1},
    };
    for (size_t i = 0; i < rows.size(); ++i) {
        PpuRig rig;
        WriteAll(rig, rows[i].writes);
        EXPECT_EQ(rig.ppu->tempAddress, rows[i].temp) << i;
        EXPECT_EQ(rig.ppu->vramAddress, rows[i].vram) << i;
        EXPECT_EQ(rig.ppu->fineX, rows[i].fineX) << i;
        EXPECT_EQ(rig.ppu->firstWrite, rows[i].firstWrite) << i;
    }
}

TEST(PpuRegisters, ReadingTheStatusMakesTheNextWriteTheFirst) {
    PpuRig rig;
    rig.Write(6, 0x21);
    EXPECT_EQ(rig.ppu->firstWrite, 0);
    (void)rig.Read(2);
    EXPECT_EQ(rig.ppu->firstWrite, 1);
    rig.Write(5, 0x08);
    rig.Write(6, 0x55); // the second write, whichever register the first one went to
    EXPECT_EQ(rig.ppu->vramAddress, 0x2155);
}

TEST(PpuRegisters, DataAccessesStepTheAddress) {
    struct Row {
        uint32_t control;
        uint16_t from;
        uint16_t to;
    };
    for (const Row& row : {
             Row{0x00, 0x2000, 0x2001},
             Row{0x04, 0x2000, 0x2020},
             Row{0x00, 0x3FFF, 0x4000},
             Row{0x04, 0x3FE1, 0x4001},
             Row{0x00, 0x3F1F, 0x3F20}
    }) {
        for (const bool write : {false, true}) {
            PpuRig rig;
            rig.Write(0, row.control);
            rig.Address(row.from);
            if (write) {
                rig.Write(7, 0);
            } else {
                (void)rig.Read(7);
            }
            EXPECT_EQ(rig.ppu->vramAddress, row.to) << row.from << write;
        }
    }
}

TEST(PpuRegisters, TheAddressHas15Bits) {
    PpuRig rig;
    // Second write to PPUSCROLL, then second write to PPUADDR: the only way to a fine Y of 4 or more.
    WriteAll(rig, {
                      {6, 0x3F},
                      {5, 0xFF},
                      {5, 0xFF},
                      {6, 0xFF}
    });
    ASSERT_EQ(rig.ppu->vramAddress, 0x7FFF);
    (void)rig.Read(7);
    EXPECT_EQ(rig.ppu->vramAddress, 0);
    // The bus has 14 bits: with fine Y 4 the address of a data access is still 0x23FF.
    WriteAll(rig, {
                      {6, 0x03},
                      {5, 0xFE},
                      {5, 0xFF},
                      {6, 0xFF}
    });
    ASSERT_EQ(rig.ppu->vramAddress, 0x63FF);
    rig.Write(7, 0x5A);
    rig.Dots(3);
    EXPECT_EQ(rig.ppu->nametables[0][0x3FF], 0x5A);
}

TEST(PpuRegisters, PaletteHas32EntriesOfSixBits) {
    PpuRig rig;
    for (uint32_t entry = 0; entry < 16; ++entry) {
        rig.WriteMemory(0x3F00 + entry, 0xC0 + entry);
    }
    for (uint32_t entry = 17; entry < 32; ++entry) {
        if ((entry & 3) != 0) {
            rig.WriteMemory(0x3F00 + entry, 0xC0 + entry);
        }
    }
    for (uint32_t entry = 0; entry < 32; ++entry) {
        const uint32_t expected = (entry & 3) == 0 ? entry & 15 : entry;
        EXPECT_EQ(rig.ReadPalette(0x3F00 + entry), expected);
        EXPECT_EQ(rig.ReadPalette(0x3FE0 + entry), expected);
    }
}

// The bus has 14 of the address's 15 bits, so 0x7F00 to 0x7FFF is the palette too.
TEST(PpuRegisters, PaletteIsAlsoAt0x7F00) {
    PpuRig rig;
    rig.WriteMemory(0x2F05, 0x66);
    const std::vector<RegisterWrite> to0x7F05{
        {6, 0x3F},
        {5, 0xC7},
        {5, 0x00},
        {6, 0x05}
    };
    WriteAll(rig, to0x7F05);
    ASSERT_EQ(rig.ppu->vramAddress, 0x7F05);
    rig.Write(7, 0x2C);
    EXPECT_EQ(rig.ppu->palette[5], 0x2C);
    EXPECT_EQ(rig.ppu->ioState, 0);
    EXPECT_EQ(rig.ppu->vramAddress, 0x7F06);
    WriteAll(rig, to0x7F05);
    EXPECT_EQ(rig.Read(7), 0x2C);
    rig.Dots(3);
    EXPECT_EQ(rig.ppu->readBuffer, 0x66) << "from beneath";
}

TEST(PpuRegisters, FirstEntriesOfThePalettesMirrorBothWays) {
    for (uint32_t entry = 0; entry < 16; entry += 4) {
        PpuRig rig;
        rig.WriteMemory(0x3F10 + entry, 0x21);
        EXPECT_EQ(rig.ReadPalette(0x3F00 + entry), 0x21) << entry;
        rig.WriteMemory(0x3F00 + entry, 0x12);
        EXPECT_EQ(rig.ReadPalette(0x3F10 + entry), 0x12) << entry;
    }
    PpuRig rig;
    rig.WriteMemory(0x3F11, 0x21);
    EXPECT_EQ(rig.ReadPalette(0x3F01), 0x3F); // other entries have no mirror
}

TEST(PpuRegisters, PaletteWritesDontReachTheMemoryBeneath) {
    PpuRig rig;
    rig.WriteMemory(0x2F05, 0x66);
    rig.WriteMemory(0x3F05, 0x11);
    EXPECT_EQ(rig.ppu->nametables[1][0x305], 0x66);
    EXPECT_EQ(rig.ppu->palette[5], 0x11);
}

TEST(PpuRegisters, MemoryReadsAreDelayedByOne) {
    PpuRig rig;
    rig.WriteMemory(0x2005, 0xAA);
    rig.WriteMemory(0x2006, 0xBB);
    rig.WriteMemory(0x0123, 0xCC);
    rig.Address(0x2005);
    (void)rig.Read(7);
    rig.Dots(3);
    EXPECT_EQ(rig.Read(7), 0xAA);
    rig.Dots(3);
    rig.Address(0x0123);
    EXPECT_EQ(rig.Read(7), 0xBB); // a new address leaves the buffer unchanged
    rig.Dots(3);
    EXPECT_EQ(rig.Read(7), 0xCC);
}

TEST(PpuRegisters, PaletteReadsComeAtOnceAndFillTheBufferFromBeneath) {
    PpuRig rig;
    rig.WriteMemory(0x2F05, 0x77);
    rig.WriteMemory(0x3F05, 0x2C);
    rig.Address(0x3F05);
    EXPECT_EQ(rig.Read(7), 0x2C);
    rig.Dots(3);
    rig.Address(0x2000);
    EXPECT_EQ(rig.Read(7), 0x77);
}

TEST(PpuRegisters, GrayMasksPaletteReadsAndKeepsTheEntries) {
    PpuRig rig;
    rig.WriteMemory(0x3F05, 0x2C);
    rig.Write(1, 0x01);
    EXPECT_EQ(rig.ReadPalette(0x3F05), 0x20);
    rig.Write(1, 0x00);
    EXPECT_EQ(rig.ReadPalette(0x3F05), 0x2C);
}

TEST(PpuRegisters, UnreadableOnesGiveTheLastValueOfThePort) {
    PpuRig rig;
    for (const uint32_t address : {0U, 1U, 3U, 5U, 6U}) {
        rig.Write(2, 0x5A);
        EXPECT_EQ(rig.Read(address), 0x5A);
        EXPECT_EQ(rig.Read(address), 0x5A);
    }
    for (uint32_t address = 0; address < 8; ++address) { // every write sets the port's last value
        rig.Write(address, 0x90 + address);
        EXPECT_EQ(rig.Read(0), 0x90 + address);
    }
    rig.Write(1, 0x00);
    rig.WriteMemory(0x3F01, 0x15);
    EXPECT_EQ(rig.ReadPalette(0x3F01), 0x15);
    EXPECT_EQ(rig.Read(0), 0x15); // and so does every read
}

TEST(PpuRegisters, StatusHasTheLowFiveBitsOfThePort) {
    PpuRig rig;
    rig.Write(2, 0xF5);
    EXPECT_EQ(rig.Read(2), 0x15);
    rig.Finish();
    rig.RunTo(241, 10);
    rig.Write(2, 0x0A);
    EXPECT_EQ(rig.Read(2), 0x8A);
}

TEST(PpuRegisters, TheStatusCantBeWritten) {
    PpuRig rig;
    rig.Write(2, 0xE0);
    EXPECT_EQ(rig.Status(), 0);
}

TEST(PpuRegisters, OamWritesStepAndWrap) {
    PpuRig rig;
    rig.Write(3, 0xFE);
    for (const uint32_t value : {0xFFU, 0x12U, 0x34U}) {
        rig.Write(4, value);
    }
    EXPECT_EQ(rig.ppu->oam[0xFE], 0xE3); // three bits of the attributes don't exist
    EXPECT_EQ(rig.ppu->oam[0xFF], 0x12);
    EXPECT_EQ(rig.ppu->oam[0x00], 0x34);
    EXPECT_EQ(rig.ppu->oamAddress, 1);
}

TEST(PpuRegisters, OnlyAttributesLoseBits) {
    PpuRig rig;
    rig.Write(3, 0);
    for (uint32_t i = 0; i < 256; ++i) {
        rig.Write(4, 0xFF);
    }
    for (uint32_t i = 0; i < 256; ++i) {
        EXPECT_EQ(rig.ppu->oam[i], i % 4 == 2 ? 0xE3 : 0xFF) << i;
    }
}

TEST(PpuRegisters, OamReadsDontStep) {
    PpuRig rig;
    rig.Write(3, 0x40);
    rig.Write(4, 0x12);
    rig.Write(4, 0x34);
    rig.Write(3, 0x41);
    EXPECT_EQ(rig.Read(4), 0x34);
    EXPECT_EQ(rig.Read(4), 0x34);
}
