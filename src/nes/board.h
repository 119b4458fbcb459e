// Cartridge boards (mappers): they map program and character memory into the page tables of the two buses.
//
// Nine are built, by the number in an image's header: 0 plain (NROM), 1 shift register (MMC1), 2 program bank
// (UxROM), 3 character bank (CNROM), 4 scanline counter (MMC3), 7 one-screen (AxROM), 9 latched (MMC2),
// 66 two banks (GxROM), 73 cycle counter (VRC3).
// Clock: `cpuClock` of a cartridge runs once per CPU cycle, `ppuAddressHook` of its page tables with the
//   addresses that the PPU puts on its bus.
// Owner: the cartridge (cartridge.h), on its session's thread.
// Order: CartridgeLoad makes the record; BoardReset at every reset of the machine; a loaded state applies
//   as soon as BoardLoadState returns.
// Reset: registers return to 0, except as a board's source says; RAM on a board keeps its bytes. A mirroring
//   register starts with the header's mirroring.
// Four screens: the header's flag applies to boards without a mirroring register, to 4 whatever is written
//   there, and to 9 until its register is written. 1 and 7 follow their register from reset on.
// Sources: nesdev wiki, "MMC1", "MMC2", "MMC3", "VRC3", "iNES".
// Differs: docs/HARDWARE.md, NES, Board.
#pragma once

#include "nes/cartridge.h"

#include <cstddef>
#include <cstdint>

inline constexpr size_t kNesBoardNumbers = 256;

// A row of the board table. A null `reset` means that the board is not built.
struct NES_BOARD_ROW {
    void (*create)(NES_CARTRIDGE& cartridge) = nullptr; // makes the state record; may be null
    void (*reset)(NES_CARTRIDGE& cartridge) = nullptr;
    void (*unused)(NES_CARTRIDGE& cartridge) = nullptr;
    void (*cpuClock)(NES_CARTRIDGE& cartridge) = nullptr;
    // NES_PAGES::ppuAddressHook, where `board` is the cartridge; null for most boards.
    void (*ppuAddressHook)(void* board, uint16_t address, uint32_t count) = nullptr;
    // Returns the size of the board's piece; writes the piece unless `out` is null.
    uint32_t (*saveState)(const NES_CARTRIDGE& cartridge, uint8_t* out) = nullptr;
    uint32_t (*loadState)(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size) = nullptr;
};

[[nodiscard]] const NES_BOARD_ROW& NesBoard(uint8_t number);

void BoardReset(NES_CARTRIDGE& cartridge);

// A CPU write to pages 5 to 15.
inline void BoardWrite(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    CartridgeWrite(cartridge, address, value);
}

// One CPU cycle.
inline void BoardCpuClock(NES_CARTRIDGE& cartridge) {
    if (cartridge.cpuClock != nullptr) {
        cartridge.cpuClock(cartridge);
    }
}

[[nodiscard]] uint32_t BoardStateSize(const NES_CARTRIDGE& cartridge);
// Writes BoardStateSize bytes; returns the byte after them.
uint8_t* BoardSaveState(const NES_CARTRIDGE& cartridge, uint8_t* out);
// Returns the bytes used, or 0 with nothing changed if the version or size is wrong. Any contents are safe.
[[nodiscard]] uint32_t BoardLoadState(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size);
