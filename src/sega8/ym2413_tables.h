// The constant tables of the YM2413. Voices, multiples, key scale and oscillators are those of the
// chip as settled here; the multiples, the envelope times and the depths of tremolo and vibrato are
// in the application manual. The sine and level tables follow a formula and are built once, before
// `main`.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kYmLevelSteps = 512; // entries of a row of `tl`: 6 dB, both signs
inline constexpr uint32_t kYmLevels = 11 * kYmLevelSteps; // silence from this index on
inline constexpr uint32_t kYmSineLength = 1024;

// An attenuation is 2 x (256ths of 6 dB), with bit 0 set for a negative value.
struct YM_WAVES {
    YM_WAVES();
    std::array<int32_t, kYmLevels> tl;                    // by attenuation: the linear value
    std::array<uint32_t, size_t{2} * kYmSineLength> sine; // by phase: sine, then half sine
};
extern const YM_WAVES kYmWaves;

// Rows 1 to 15 are the fixed voices, 16 to 18 the rhythm (bass drum, snare and hi-hat, tom and
// cymbal). Row 0 is the user's voice until the program writes registers 0 to 7.
extern const std::array<std::array<uint8_t, 8>, 19> kYmVoices;

// Twice the frequency multiple, by the register's low nibble.
extern const std::array<uint8_t, 16> kYmMultiple;

// Key scale level: a row per block, by the F-number's top four bits.
extern const std::array<uint8_t, 128> kYmKeyScale;

// Envelope increments, a row of eight per kind of rate; 15 rows.
inline constexpr uint8_t kYmStepLast = 14 * 8;    // row that never steps
inline constexpr uint8_t kYmStepInstant = 13 * 8; // row of the fastest attack
extern const std::array<uint8_t, size_t{15} * 8> kYmSteps;

// By rate: the row (x 8) of kYmSteps, and the number of envelope counter bits that are 0 at a step.
inline constexpr uint32_t kYmRates = 96;
extern const std::array<uint8_t, kYmRates> kYmRateSelect;
extern const std::array<uint8_t, kYmRates> kYmRateShift;

// Vibrato, in half F-numbers: a row per top three bits of the F-number, by the oscillator's step.
extern const std::array<std::array<int32_t, 8>, 8> kYmVibrato;

// Tremolo: a triangle, by the top byte of its oscillator.
inline constexpr uint32_t kYmTremoloLength = 210;
extern const std::array<uint8_t, kYmTremoloLength> kYmTremolo;
