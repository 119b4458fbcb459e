// The page tables of the two NES buses. A cartridge board fills them; CPU and PPU read them.
//
// CPU pages have 4 KB and cover 0x0000 to 0xFFFF; the machine answers the first five itself. PPU pages have
// 1 KB and cover 0x0000 to 0x3FFF: eight pages of patterns, four nametables and their mirror.
// Owner: the cartridge of one machine, on its session's thread. A page past the end of the image has no data.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr size_t kNesCpuPages = 16;
inline constexpr size_t kNesCpuPageBytes = 4096;
inline constexpr size_t kNesPpuPages = 16;
inline constexpr size_t kNesPpuPageBytes = 1024;
inline constexpr uint32_t kNesCpuPageShift = 12; // of an address to its page
inline constexpr uint32_t kNesPpuPageShift = 10;
inline constexpr uint8_t kNesUnreadable = 0xFF; // what an unreadable page puts on the bus

struct NES_CPU_PAGE {
    uint8_t* data = nullptr; // kNesCpuPageBytes, or null
    bool readable = false;
    bool writable = false;
};

struct NES_PPU_PAGE {
    uint8_t* data =
        nullptr; // kNesPpuPageBytes, or null: reads as kNesUnreadable; not null for nametables
    uint8_t writable = 0; // 1 for RAM, 0 for image data
    // For a board that watches a page of patterns, otherwise null. `address` has 14 bits. `read` returns the byte
    // from before any bank that it switches.
    uint8_t (*read)(void* board, uint16_t address) = nullptr;
    void (*write)(void* board, uint16_t address, uint8_t value) = nullptr;
};

struct NES_PAGES {
    std::array<NES_CPU_PAGE, kNesCpuPages> cpu{};
    std::array<NES_PPU_PAGE, kNesPpuPages> ppu{};
    void* board = nullptr; // passed to `read`, `write` and the hook
    // For a board that watches bit 12 of the addresses that the PPU puts on its bus, otherwise null. The next `count`
    // of them have the bit as in `address`.
    void (*ppuAddressHook)(void* board, uint16_t address, uint32_t count) = nullptr;
};

// A board that counts rises of bit 12 counts an address with the bit if it is at least this many after the last one
// with it.
inline constexpr uint32_t kNesRiseAddresses = 8;

// The page of an address, and the place in it.
[[nodiscard]] constexpr size_t NesPpuPageOf(uint32_t address) {
    return address >> kNesPpuPageShift & (kNesPpuPages - 1);
}
[[nodiscard]] constexpr size_t NesPpuPlace(uint32_t address) {
    return address & (kNesPpuPageBytes - 1);
}

[[nodiscard]] inline uint8_t NesReadPpuPage(const NES_PAGES& pages, uint16_t address) {
    const NES_PPU_PAGE& page = pages.ppu[NesPpuPageOf(address)];
    if (page.read != nullptr) [[unlikely]] {
        return page.read(pages.board, address);
    }
    return page.data != nullptr ? page.data[NesPpuPlace(address)] : kNesUnreadable;
}

inline void NesWritePpuPage(NES_PAGES& pages, uint16_t address, uint8_t value) {
    const NES_PPU_PAGE& page = pages.ppu[NesPpuPageOf(address)];
    if (page.write != nullptr) [[unlikely]] {
        page.write(pages.board, address, value);
    } else if (page.writable != 0 && page.data != nullptr) {
        page.data[NesPpuPlace(address)] = value;
    }
}
