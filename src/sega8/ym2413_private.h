// Names that the YM2413's clocking and its registers share.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr uint8_t kYmRhythmOn = 0x20; // of register 0x0E

// The channels of the rhythm.
inline constexpr size_t kYmBassDrum = 6;
inline constexpr size_t kYmHatAndSnare = 7;  // hi-hat in the modulator, snare in the carrier
inline constexpr size_t kYmTomAndCymbal = 8; // tom in the modulator, cymbal in the carrier

inline constexpr size_t kYmModulator = 0;
inline constexpr size_t kYmCarrier = 1;
