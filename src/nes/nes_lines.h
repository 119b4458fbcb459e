// The interrupt lines of the NES: bits of the two words that the CPU samples in every cycle.
//
// Owner: the CPU holds the words. Each IRQ bit has one writer, which sets and clears it; the CPU only tests
// whether any bit is set. The PPU sets and clears the NMI, and the CPU clears it as it takes it.
#pragma once

#include <cstdint>

inline constexpr uint32_t kNesNmiPpu = 1; // PPU

inline constexpr uint32_t kNesIrqFrame = 1;  // frame sequencer of the APU
inline constexpr uint32_t kNesIrqSample = 2; // sample channel of the APU
inline constexpr uint32_t kNesIrqBoard = 4;  // cartridge board
