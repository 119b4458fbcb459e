// NES cartridge: the image's pages, the board that maps them into the two buses, and the board's memory.
//
// An image is a header of 16 bytes, program banks of 16 KB and character banks of 8 KB. It is kept as program
// pages of 4 KB and character pages of 1 KB; a board only changes the page tables.
// Units: bank and page numbers count units of the size in the name. `cpuCycles` is in CPU cycles.
// Owner: one machine, on its session's thread, without a lock. Not copyable or movable: the page tables point
//   into it.
// Pins: CartridgeConnect takes the CPU's cycle counter and interrupt word and the PPU's four nametable pages;
//   the machine owns them.
// Order: CartridgeLoad, CartridgeConnect, BoardReset (board.h), then reads and writes.
// Absent pages: bank numbers wrap at the image's size if the number of banks is a power of two. Otherwise they
//   can run past its end: such a page reads as kNesUnreadable and ignores writes.
#pragma once

#include "nes/nes_lines.h"
#include "nes/nes_pages.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

inline constexpr size_t kNesHeaderBytes = 16;
inline constexpr uint32_t kNesMostProgramPages = 2048;
inline constexpr uint32_t kNesMostCharacterPages = 4096;
inline constexpr size_t kNesBoardRamBytes = 8192;

inline constexpr uint32_t kNesNoInterrupt = 1 << 20; // rises; a frame has fewer

using NesBoardRam = std::array<uint8_t, kNesBoardRamBytes>;

// Bits of NES_CARTRIDGE::flags.
inline constexpr uint8_t kNesVerticalMirroring = 1;
inline constexpr uint8_t kNesBattery = 2;
inline constexpr uint8_t kNesTrainer = 4;
inline constexpr uint8_t kNesFourScreens = 8;

struct NES_BOARD_ROW;
struct NES_CARTRIDGE;

// A board's registers and RAM; each kind of board derives its own record.
struct NES_BOARD_STATE {
    NES_BOARD_STATE() = default;
    NES_BOARD_STATE(const NES_BOARD_STATE&) = delete;
    NES_BOARD_STATE& operator=(const NES_BOARD_STATE&) = delete;
    virtual ~NES_BOARD_STATE() = default;
};

using NesWriteHandler = void (*)(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value);

struct NES_CARTRIDGE {
    NES_CARTRIDGE() = default;
    NES_CARTRIDGE(const NES_CARTRIDGE&) = delete;
    NES_CARTRIDGE& operator=(const NES_CARTRIDGE&) = delete;

    // The image, each page a block of its own; null past its end.
    std::array<std::unique_ptr<uint8_t[]>, kNesMostProgramPages> program;
    std::array<std::unique_ptr<uint8_t[]>, kNesMostCharacterPages> character;
    uint32_t programBanks = 0;   // of 16 KB, as the header says
    uint32_t characterBanks = 0; // of 8 KB; 0: character RAM on most boards
    uint32_t programMask = 0;    // for 4 KB page numbers, up to 2047
    uint32_t characterMask = 0;  // for 1 KB page numbers, up to 4095
    uint8_t flags = 0;           // low nibbles of header bytes 7 and 6
    uint8_t boardNumber = 0;

    const NES_BOARD_ROW* board = nullptr;
    std::unique_ptr<NES_BOARD_STATE> state; // null for a board without registers
    NES_PAGES pages;
    // Index: CPU page. Null: writes go to the page table. Boards set those of pages 6 to 15.
    std::array<NesWriteHandler, kNesCpuPages> write{};
    // Once per CPU cycle; null for most boards, so that a frame loop can leave out the call.
    void (*cpuClock)(NES_CARTRIDGE& cartridge) = nullptr;

    // For a board that interrupts by PPU addresses: the number of rises of bit 12 (nes_pages.h) with the last of
    // which it may, if nothing is written to the board; at least 1. Null for all other boards.
    uint32_t (*risesToInterrupt)(const NES_CARTRIDGE& cartridge) = nullptr;

    // Character RAM of the plain board, whose piece of a state has no fields: the machine saves this RAM in a
    // piece of its own.
    NesBoardRam plainRam{};

    const uint32_t* cpuCycles = nullptr;
    uint32_t* irqLines = nullptr; // kNesIrqBoard is the board's
    std::array<uint8_t*, 4> nametables{};
};

// Copies the image and makes the board's record. Bytes after those that the header promises are ignored.
// Returns false for an image without the header's mark, shorter than its header says, with a trainer, or for
// a board that isn't built. The cartridge is then empty and `error` holds a line for the user; for a trainer
// `error` stays empty. The wiring of CartridgeConnect stays.
[[nodiscard]] bool CartridgeLoad(NES_CARTRIDGE& cartridge, std::span<const uint8_t> image,
                                 std::string& error);

void CartridgeConnect(NES_CARTRIDGE& cartridge, const uint32_t* cpuCycles, uint32_t* irqLines,
                      const std::array<uint8_t*, 4>& nametables);

// CPU pages 5 to 15.
[[nodiscard]] inline uint8_t CartridgeRead(const NES_CARTRIDGE& cartridge, uint16_t address) {
    const NES_CPU_PAGE& page = cartridge.pages.cpu[address >> 12];
    return page.readable ? page.data[address & (kNesCpuPageBytes - 1)] : kNesUnreadable;
}

inline void CartridgeWrite(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    if (const NesWriteHandler handler = cartridge.write[address >> 12]; handler != nullptr) {
        handler(cartridge, address, value);
        return;
    }
    const NES_CPU_PAGE& page = cartridge.pages.cpu[address >> 12];
    if (page.writable) {
        page.data[address & (kNesCpuPageBytes - 1)] = value;
    }
}
