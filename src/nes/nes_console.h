// The chips of the NES wired together: CPU, PPU, APU, work RAM, two pads, a cartridge.
//
// Clock: one cycle of the 6502 (1,789,773 Hz) is three ticks of the PPU and one of the APU. A frame has
//   29,780.5 cycles on average with rendering on. The CPU's cycle counter stops while the APU holds the CPU.
// Owner: CNES, on its session's thread, without a lock. Not movable: the chips point to each other.
// Order: CartridgeLoad, NesConnect, NesReset, then PpuBeginFrame and NesRunFrame for each frame.
// Differs: docs/HARDWARE.md, NES, Board.
#pragma once

#include "machine/chip_sound.h"
#include "nes/apu.h"
#include "nes/cartridge.h"
#include "nes/m6502.h"
#include "nes/ppu.h"

#include <array>
#include <cstddef>
#include <cstdint>

// Bits of a pad's byte, in the order in which reads return them.
enum NesButton : uint8_t {
    kNesButtonA = 1,
    kNesButtonB = 2,
    kNesSelect = 4,
    kNesStart = 8,
    kNesUp = 16,
    kNesDown = 32,
    kNesLeft = 64,
    kNesRight = 128
};

inline constexpr size_t kNesWorkRamBytes = 2048;
inline constexpr size_t kNesPads = 2;

struct NES_PAD {
    uint8_t buttons = 0;    // NesButton bits
    uint32_t readIndex = 0; // reads since the last strobe, wrapping
};

struct NES_CONSOLE {
    NES_CONSOLE() = default;
    NES_CONSOLE(const NES_CONSOLE&) = delete;
    NES_CONSOLE& operator=(const NES_CONSOLE&) = delete;

    M6502 cpu;
    PPU ppu;
    APU apu;
    ChipSound sound; // of the APU
    std::array<NES_PAD, kNesPads> pads;
    std::array<uint8_t, kNesWorkRamBytes> workRam{};
    NES_CARTRIDGE cartridge;
    bool plainLoop = false; // run the plain loop, for comparison; not part of a state
};

// Wires the chips and the cartridge to each other.
void NesConnect(NES_CONSOLE& nes);

// Power-on values of everything but the cartridge's memory. Reads the sound settings.
void NesReset(NES_CONSOLE& nes);

// Runs until the PPU sets frameDone.
void NesRunFrame(NES_CONSOLE& nes);

// What the CPU would read at an address, without side effects.
[[nodiscard]] uint8_t NesPeek(const NES_CONSOLE& nes, uint16_t address);
