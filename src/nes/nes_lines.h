// The IRQ lines of the NES: bits of the word that the CPU samples in every cycle.
//
// Owner: the CPU holds the word. Each bit has one writer, which sets and clears it; the CPU only tests whether
// any bit is set.
#pragma once

#include <cstdint>

inline constexpr uint32_t kNesIrqFrame = 1;  // frame sequencer of the APU
inline constexpr uint32_t kNesIrqSample = 2; // sample channel of the APU
inline constexpr uint32_t kNesIrqBoard = 4;  // cartridge board
