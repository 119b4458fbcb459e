// The interrupt lines of the NES: bits of the word that the processor samples in every cycle.
//
// Owner: the machine's processor holds the word. Each bit has one writer, which raises it and takes it
// back; the processor only looks whether any is up.
#pragma once

#include <cstdint>

inline constexpr uint32_t kNesIrqFrame = 1;  // frame sequencer of the sound unit
inline constexpr uint32_t kNesIrqSample = 2; // sample channel of the sound unit
inline constexpr uint32_t kNesIrqBoard = 4;  // cartridge board
