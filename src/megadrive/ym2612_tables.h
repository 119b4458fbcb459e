// The constant tables of the YM2612. Sine, level and LFO tables follow a rule and are built once, before
// `main`; the others are the chip's own figures (sources in ym2612.h).
#pragma once

#include "megadrive/ym2612.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kYm2612LevelSteps = 512; // entries of a row of `level`: 6 dB, both signs
inline constexpr uint32_t kYm2612Levels = 13 * kYm2612LevelSteps; // from here on all is silent
inline constexpr uint32_t kYm2612SineLength = 1024;

inline constexpr uint32_t kYm2612LfoDepths = 8;
inline constexpr uint32_t kYm2612LfoPositions = 32;
inline constexpr uint32_t kYm2612LfoRow = kYm2612LfoDepths * kYm2612LfoPositions;

// An attenuation is 2 x (256ths of 6 dB), with bit 0 set for a negative value.
struct YM2612_TABLES {
    std::array<int16_t, kYm2612Levels> level;     // by attenuation: the linear value
    std::array<uint16_t, kYm2612SineLength> sine; // by phase: the attenuation
    // Half F-numbers that the LFO adds: by the F-number's upper seven bits, depth and position.
    std::array<int16_t, size_t{128} * kYm2612LfoRow> lfoPhase;
};

[[nodiscard]] YM2612_TABLES Ym2612BuildTables();

extern const YM2612_TABLES kYm2612Tables;

// What the LFO adds at its first eight positions: a row per bit 4 to 10 of the F-number, by depth.
extern const std::array<std::array<std::array<uint8_t, 8>, kYm2612LfoDepths>, 7> kYm2612LfoOffsets;

// LFO counter per sample, with 24 bits of fraction, by the speed of register 0x22.
extern const std::array<uint32_t, 8> kYm2612LfoSteps;

// Detune in units of the phase step, by row and key code; rows 4 to 7 are negative.
extern const std::array<std::array<int32_t, 32>, 8> kYm2612Detune;

extern const std::array<uint16_t, 16> kYm2612SustainLevel;

// Envelope increments, a row of eight per kind of rate.
inline constexpr uint8_t kYm2612StepNever = 18 * 8;
extern const std::array<uint8_t, size_t{19} * 8> kYm2612Steps;

// By rate and key scale, which reach 94 + 31.
inline constexpr uint32_t kYm2612Rates = 128;
extern const std::array<YM2612_RATE, kYm2612Rates> kYm2612RateTable;

// Lower bits of the key code, by the F-number's upper four.
extern const std::array<uint8_t, 16> kYm2612KeyTable;
