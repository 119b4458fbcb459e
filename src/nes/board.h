// Cartridge boards: what decides which pages of program and character memory the two buses see.
//
// Nine are built, by the number in an image's header: 0 plain, 1 shift register, 2 program bank,
// 3 character bank, 4 scanline counter, 7 one-screen, 9 latched, 66 two banks, 73 cycle counter.
// Clock: `cpuClock` of a cartridge runs once a processor cycle, `ppuAddressHook` of its page tables
//   with every address that the picture unit puts on its bus.
// Owner: the cartridge (cartridge.h), on its session's thread.
// Order: CartridgeLoad makes the record; BoardReset at every reset of the machine; a loaded state is
//   in force as soon as BoardLoadState returns.
// Reset: registers return to zero but for those told with a board; RAM on a board keeps its bytes. A
//   board that sets the mirroring by a register starts with what the header says in it.
// Four screens: an image's four-screen flag holds on boards without a mirroring register, on 4 whatever
//   is written there, and on 9 until its register is written; 1 and 7 go by their register from reset on.
// Differs, and kept so on purpose: none of them has bus conflicts; 4 interrupts only where its counter
//   falls to 0 from another value; for a program bank 7 looks at three bits of the value and 66 at two,
//   and for a character bank 66 at another two; 73 has no program RAM at 0x6000, and its 8-bit counter
//   never interrupts.
#pragma once

#include "nes/cartridge.h"

#include <cstddef>
#include <cstdint>

inline constexpr size_t kNesBoardNumbers = 256;

// A row of the board table. One without `reset` is a board that is not built.
struct NES_BOARD_ROW {
    void (*create)(NES_CARTRIDGE& cartridge) = nullptr; // makes the state record; may be null
    void (*reset)(NES_CARTRIDGE& cartridge) = nullptr;
    void (*unused)(NES_CARTRIDGE& cartridge) = nullptr;
    void (*cpuClock)(NES_CARTRIDGE& cartridge) = nullptr;
    void (*ppuAddressHook)(void* board, uint16_t address) = nullptr; // `board`: the cartridge
    // Gives the bytes of the board's piece and writes them unless `out` is null.
    uint32_t (*saveState)(const NES_CARTRIDGE& cartridge, uint8_t* out) = nullptr;
    uint32_t (*loadState)(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size) = nullptr;
};

[[nodiscard]] const NES_BOARD_ROW& NesBoard(uint8_t number);

void BoardReset(NES_CARTRIDGE& cartridge);

// A processor's write to pages 5 to 15.
inline void BoardWrite(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    CartridgeWrite(cartridge, address, value);
}

// One processor cycle.
inline void BoardCpuClock(NES_CARTRIDGE& cartridge) {
    if (cartridge.cpuClock != nullptr) {
        cartridge.cpuClock(cartridge);
    }
}

[[nodiscard]] uint32_t BoardStateSize(const NES_CARTRIDGE& cartridge);
// Writes BoardStateSize bytes and gives the byte behind them.
uint8_t* BoardSaveState(const NES_CARTRIDGE& cartridge, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece does not fit. Any contents are safe.
[[nodiscard]] uint32_t BoardLoadState(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size);
