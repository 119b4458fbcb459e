// The NES as a board of chips: processor, picture unit, sound unit, work RAM, two pads, a cartridge.
//
// Clock: one cycle of the 6502 (1,789,773 Hz) is three dots and one step of the sound unit; a frame has
//   29,780.5 of them on average while a picture is drawn. The stretches in which the sound unit holds the
//   processor are no cycles of its counter.
// Owner: CNES, on its session's thread, with no lock. Not movable, for the chips point at each other.
// Order: NesConnect once a cartridge is in (CartridgeLoad), NesReset, then a frame after the other with
//   PpuBeginFrame and NesRunFrame.
// Differs, and kept so on purpose: sprite DMA takes no time; each write to 0x4016 restarts the pads, and
//   they go on after eight reads with zeroes and after 32 with the buttons again.
#pragma once

#include "machine/chip_sound.h"
#include "nes/apu.h"
#include "nes/cartridge.h"
#include "nes/m6502.h"
#include "nes/ppu.h"

#include <array>
#include <cstddef>
#include <cstdint>

// Bits of a pad's byte, in the order in which they are read.
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
    bool stepByStep = false; // every chip in every cycle, for comparison; in no state
};

// Wires the chips and the cartridge to each other.
void NesConnect(NES_CONSOLE& nes);

// Power-on values of everything but memory on the cartridge. Reads the sound settings.
void NesReset(NES_CONSOLE& nes);

// Cycles until the picture unit reports its frame done.
void NesRunFrame(NES_CONSOLE& nes);

// What the processor would read at an address, with no side effect.
[[nodiscard]] uint8_t NesPeek(const NES_CONSOLE& nes, uint16_t address);
