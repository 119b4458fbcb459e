// What the parts of the sound unit share: tables and the rules that registers and steps both follow.
#pragma once

#include "nes/apu.h"

// Index: rate of the noise register. Cycles.
inline constexpr std::array<uint16_t, 16> kApuNoisePeriods{
    4, 8, 16, 32, 64, 96, 128, 160, 202, 254, 380, 508, 762, 1016, 2034, 4068};

// Index: rate of the sample register. Cycles a bit.
inline constexpr std::array<uint16_t, 16> kApuSampleRates{428, 380, 340, 320, 286, 254, 226, 214,
                                                          190, 160, 142, 128, 106, 84,  72,  54};

// Index: duty, step.
inline constexpr std::array<std::array<int8_t, 8>, 4> kApuDuties{
    {{-4, 4, -4, -4, -4, -4, -4, -4},
     {-4, 4, 4, -4, -4, -4, -4, -4},
     {-4, 4, 4, 4, 4, -4, -4, -4},
     {4, -4, -4, 4, 4, 4, 4, 4}}
};

// Index: step.
inline constexpr std::array<int8_t, 32> kApuTriangleWave{-8, -7, -6, -5, -4, -3, -2, -1, 0,  1, 2,
                                                         3,  4,  5,  6,  7,  7,  6,  5,  4,  3, 2,
                                                         1,  0,  -1, -2, -3, -4, -5, -6, -7, -8};

// Index: bits 3 to 7 of a length register. Half frames.
inline constexpr std::array<uint8_t, 32> kApuLengthTable{
    10, 254, 20, 2,  40, 4,  80, 6,  160, 8,  60, 10, 14, 12, 26, 14,
    12, 16,  24, 18, 48, 20, 96, 22, 192, 24, 72, 26, 16, 28, 32, 30};

// Index: frame step, one behind the last for the round that follows without a write. Cycles before it.
inline constexpr std::array<uint16_t, 7> kApuFourSteps{7459, 7456, 7458, 7457, 1, 1, 7457};
inline constexpr std::array<uint16_t, 6> kApuFiveSteps{1, 7458, 7456, 7458, 7456, 7454};

inline constexpr uint16_t kApuTriangleLeastPeriod = 4;
inline constexpr int32_t kApuSampleFactor = 3;
inline constexpr int32_t kApuSampleOffset = -192;
inline constexpr int32_t kApuSampleOffsetWritten = -189;

[[nodiscard]] inline uint8_t ApuVolume(const APU_ENVELOPE& envelope) {
    return envelope.constant ? envelope.period : envelope.decay;
}

// To be called when period or sweep of a pulse channel change.
void ApuUpdateMuting(APU_PULSE& pulse);

// From the start of the sample that the registers name.
void ApuRestartSample(APU_SAMPLE& sample);

// Fetches a byte when the buffer is free and bytes are left, and asks for the stall.
void ApuFetchSample(APU& apu);

// The frame step that is due; sets the time to the next.
void ApuFrameStep(APU& apu);

// What was written to length registers since the last cycle.
void ApuTakePendingLengths(APU& apu);

void ApuClockSample(APU& apu);

// The sum of the channels as one pair.
void ApuMakePair(APU& apu);
