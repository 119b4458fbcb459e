// The page tables of the two NES buses, which a cartridge board fills and processor and picture unit
// read.
//
// CPU pages are 4 KB and stand for 0x0000 to 0xFFFF; the machine answers the first five by itself. PPU
// pages are 1 KB and stand for 0x0000 to 0x3FFF: eight of patterns, four nametables and their mirror.
// Owner: the cartridge of one machine, on its session's thread. A page that a bank number leads
// beyond the image has no data.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr size_t kNesCpuPages = 16;
inline constexpr size_t kNesCpuPageBytes = 4096;
inline constexpr size_t kNesPpuPages = 16;
inline constexpr size_t kNesPpuPageBytes = 1024;
inline constexpr uint8_t kNesUnreadable = 0xFF; // what an unreadable page puts on the bus

struct NES_CPU_PAGE {
    uint8_t* data = nullptr; // kNesCpuPageBytes, or null
    bool readable = false;
    bool writable = false;
};

struct NES_PPU_PAGE {
    uint8_t* data = nullptr; // kNesPpuPageBytes, or null: reads as kNesUnreadable
    uint8_t writable = 0;    // 1 for RAM, 0 for image data
    // What a board watches; null for a plain page. `address` has 14 bits. A watching reader gives the
    // byte as it stood before it acts.
    uint8_t (*read)(void* board, uint16_t address) = nullptr;
    void (*write)(void* board, uint16_t address, uint8_t value) = nullptr;
};

struct NES_PAGES {
    std::array<NES_CPU_PAGE, kNesCpuPages> cpu{};
    std::array<NES_PPU_PAGE, kNesPpuPages> ppu{};
    void* board = nullptr; // handed to readers and writers and to the hook
    // Called with every address the picture unit puts on its bus; never null while it runs.
    void (*ppuAddressHook)(void* board, uint16_t address) = nullptr;
};

// The hook of boards that watch no addresses: the picture unit compares with it and saves the call.
void NesIgnoreAddress(void* board, uint16_t address);

[[nodiscard]] inline uint8_t NesReadPpuPage(const NES_PAGES& pages, uint16_t address) {
    const NES_PPU_PAGE& page = pages.ppu[address >> 10 & 15];
    if (page.read != nullptr) [[unlikely]] {
        return page.read(pages.board, address);
    }
    return page.data != nullptr ? page.data[address & 0x3FF] : kNesUnreadable;
}

inline void NesWritePpuPage(NES_PAGES& pages, uint16_t address, uint8_t value) {
    const NES_PPU_PAGE& page = pages.ppu[address >> 10 & 15];
    if (page.write != nullptr) [[unlikely]] {
        page.write(pages.board, address, value);
    } else if (page.writable != 0 && page.data != nullptr) {
        page.data[address & 0x3FF] = value;
    }
}
