// A cartridge wired as a machine would wire it, and images made for a test.
//
// Every page of an image starts with its own number, two bytes, low byte first: a program page with its 4 KB page
// number, a character page with its 1 KB page number with bit 15 set.
#pragma once

#include "nes/board.h"
#include "nes/cartridge.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

inline constexpr int kAbsent = 0xFFFF; // what two bytes of an absent page read as

struct IMAGE {
    int board = 0;
    int programBanks = 2;   // of 16 KB
    int characterBanks = 1; // of 8 KB
    int flags = 0;          // low nibble of byte 6
};

inline std::vector<uint8_t> MakeImage(const IMAGE& image) {
    std::vector<uint8_t> bytes{'N', 'E', 'S', 0x1A};
    bytes.push_back(static_cast<uint8_t>(image.programBanks));
    bytes.push_back(static_cast<uint8_t>(image.characterBanks));
    bytes.push_back(static_cast<uint8_t>((image.board & 15) << 4 | image.flags));
    bytes.push_back(static_cast<uint8_t>(image.board & 0xF0));
    bytes.resize(16);
    const auto addPages = [&](int count, size_t pageBytes, int mark) {
        for (int page = 0; page < count; ++page) {
            const size_t at = bytes.size();
            bytes.resize(at + pageBytes, 0x55);
            bytes[at] = static_cast<uint8_t>(page);
            bytes[at + 1] = static_cast<uint8_t>(page >> 8 | mark);
        }
    };
    addPages(image.programBanks * 4, 4096, 0);
    addPages(image.characterBanks * 8, 1024, 0x80);
    return bytes;
}

class CartridgeRig {
public:
    explicit CartridgeRig(const IMAGE& image) {
        std::string error;
        EXPECT_TRUE(CartridgeLoad(*cartridge, MakeImage(image), error)) << error;
        for (size_t page = 0; page < 4; ++page) {
            nametables[page].fill(static_cast<uint8_t>('A' + page));
        }
        CartridgeConnect(*cartridge, &cycles, &irqLines,
                         {nametables[0].data(), nametables[1].data(), nametables[2].data(),
                          nametables[3].data()});
        BoardReset(*cartridge);
    }

    void Write(int address, int value) {
        BoardWrite(*cartridge, static_cast<uint16_t>(address), static_cast<uint8_t>(value));
    }
    int Read(int address) const {
        return CartridgeRead(*cartridge, static_cast<uint16_t>(address));
    }
    void PpuWrite(int address, int value) {
        NesWritePpuPage(cartridge->pages, static_cast<uint16_t>(address),
                        static_cast<uint8_t>(value));
    }
    int PpuRead(int address) const {
        return NesReadPpuPage(cartridge->pages, static_cast<uint16_t>(address));
    }
    void Hook(int address) {
        const NES_PAGES& pages = cartridge->pages;
        if (pages.ppuAddressHook != nullptr) {
            pages.ppuAddressHook(pages.board, static_cast<uint16_t>(address), 1);
        }
    }

    // The numbers of the program pages at 0x8000 to 0xFFFF.
    std::vector<int> Program() const {
        std::vector<int> pages;
        for (int address = 0x8000; address < 0x10000; address += 0x1000) {
            pages.push_back(Read(address) | Read(address + 1) << 8);
        }
        return pages;
    }
    // The numbers of the character pages at 0x0000 to 0x1FFF.
    std::vector<int> Characters() const {
        std::vector<int> pages;
        for (int address = 0; address < 0x2000; address += 0x400) {
            const int number = PpuRead(address) | PpuRead(address + 1) << 8;
            pages.push_back(number == kAbsent ? kAbsent : number & 0x7FFF);
        }
        return pages;
    }
    // The letters of the nametable pages at 0x2000 to 0x2FFF; "?" if the mirror at 0x3000 differs.
    std::string Mirroring() const {
        std::string pages;
        for (int address = 0x2000; address < 0x3000; address += 0x400) {
            const int page = PpuRead(address + 0x123);
            pages.push_back(page == PpuRead(address + 0x1123) ? static_cast<char>(page) : '?');
        }
        return pages;
    }
    // Writes the image's page numbers to the 8 KB at PPU address 0; false if a page there is read-only.
    bool FillCharacterRam() {
        for (int page = 0; page < 8; ++page) {
            PpuWrite(page * 0x400, page);
            PpuWrite(page * 0x400 + 1, 0x80);
        }
        return Characters() == std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7};
    }

    std::vector<uint8_t> Save() const {
        std::vector<uint8_t> block(BoardStateSize(*cartridge) + 1, 0xA5);
        const uint8_t* end = BoardSaveState(*cartridge, block.data());
        EXPECT_EQ(end, block.data() + block.size() - 1);
        EXPECT_EQ(block.back(), 0xA5);
        block.pop_back();
        return block;
    }
    uint32_t Load(const std::vector<uint8_t>& block) {
        return BoardLoadState(*cartridge, block.data(), static_cast<uint32_t>(block.size()));
    }

    [[nodiscard]] bool Irq() const { return (irqLines & kNesIrqBoard) != 0; }

    std::unique_ptr<NES_CARTRIDGE> cartridge = std::make_unique<NES_CARTRIDGE>();
    uint32_t cycles = 1000;
    uint32_t irqLines = 0;
    std::array<std::array<uint8_t, 1024>, 4> nametables{};
};

// `count` numbers from `first` on.
inline std::vector<int> Pages(int first, int count) {
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i) {
        numbers.push_back(first + i);
    }
    return numbers;
}

// The lists in a row.
inline std::vector<int> Join(std::initializer_list<std::vector<int>> lists) {
    std::vector<int> all;
    for (const std::vector<int>& list : lists) {
        all.insert(all.end(), list.begin(), list.end());
    }
    return all;
}
