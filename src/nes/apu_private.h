// What the APU's sources share: tables (nesdev wiki, "APU") and the rules that registers and ticks both need.
#pragma once

#include "nes/apu.h"

// Index: `rate` of the noise channel. Cycles per shift.
inline constexpr std::array<uint16_t, 16> kApuNoisePeriods{
    4, 8, 16, 32, 64, 96, 128, 160, 202, 254, 380, 508, 762, 1016, 2034, 4068};

// Index: `rate` of the sample channel. Cycles per bit.
inline constexpr std::array<uint16_t, 16> kApuSampleRates{428, 380, 340, 320, 286, 254, 226, 214,
                                                          190, 160, 142, 128, 106, 84,  72,  54};

inline constexpr uint32_t kApuDutySteps = 8;
inline constexpr uint32_t kApuTriangleSteps = 32;

// Index: duty, step.
inline constexpr std::array<std::array<int8_t, kApuDutySteps>, 4> kApuDuties{
    {{-4, 4, -4, -4, -4, -4, -4, -4},
     {-4, 4, 4, -4, -4, -4, -4, -4},
     {-4, 4, 4, 4, 4, -4, -4, -4},
     {4, -4, -4, 4, 4, 4, 4, 4}}
};

// Index: step.
inline constexpr std::array<int8_t, kApuTriangleSteps> kApuTriangleWave{
    -8, -7, -6, -5, -4, -3, -2, -1, 0,  1,  2,  3,  4,  5,  6,  7,
    7,  6,  5,  4,  3,  2,  1,  0,  -1, -2, -3, -4, -5, -6, -7, -8};

// Index: the length bits (3 to 7) of a length register. Half frames.
inline constexpr std::array<uint8_t, 32> kApuLengthTable{
    10, 254, 20, 2,  40, 4,  80, 6,  160, 8,  60, 10, 14, 12, 26, 14,
    12, 16,  24, 18, 48, 20, 96, 22, 192, 24, 72, 26, 16, 28, 32, 30};

// Index: step of the frame sequencer. Cycles before the step. The extra last entry replaces the first
// when the sequence repeats without a write to 0x4017.
inline constexpr std::array<uint16_t, 7> kApuFourSteps{7459, 7456, 7458, 7457, 1, 1, 7457};
inline constexpr std::array<uint16_t, 6> kApuFiveSteps{1, 7458, 7456, 7458, 7456, 7454};

inline constexpr uint16_t kApuPeriodBits = 0x07FF; // of the pulses and the triangle

// The noise channel's shift register: 15 bits, of which the top one is heard.
inline constexpr uint16_t kApuNoiseBits = 0x7FFF;
inline constexpr uint16_t kApuNoiseOut = 0x4000;
// The two bits that are compared for the next one: the highest and, in the two modes, a lower one.
inline constexpr uint32_t kApuNoiseFirstTap = 14;
inline constexpr uint32_t kApuNoiseLongTap = 13;
inline constexpr uint32_t kApuNoiseShortTap = 8;

// Samples lie in the upper half of the CPU's memory; the address wraps to its start.
inline constexpr uint16_t kApuSampleSpace = 0x8000;

inline constexpr uint16_t kApuTriangleLeastPeriod = 4;
inline constexpr int32_t kApuSampleFactor = 3;
inline constexpr int32_t kApuSampleOffset = -192;
inline constexpr int32_t kApuSampleOffsetWritten = -189;

[[nodiscard]] inline uint8_t ApuVolume(const APU_ENVELOPE& envelope) {
    return envelope.constant ? envelope.period : envelope.decay;
}

// Call it when the period or sweep of a pulse channel changes.
void ApuUpdateMuting(APU_PULSE& pulse);

// Back to the start of the sample that the registers select.
void ApuRestartSample(APU_SAMPLE& sample);

// Fetches a byte if the buffer is empty and bytes are left, and requests the stall.
void ApuFetchSample(APU& apu);

// Runs the due step of the frame sequencer and sets the cycles to the next.
void ApuClockFrameCounter(APU& apu);

// Loads the length counters that were written since the last cycle.
void ApuTakePendingLengths(APU& apu);

// The sample channel's timer has run out: plays one bit.
void ApuClockSample(APU& apu);

// Adds the sum of the channels as one pair.
void ApuMakePair(APU& apu);
