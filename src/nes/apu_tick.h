// The APU's tick, one CPU cycle, to be inlined into a machine's frame loop: a few counters that rarely run
// out. ApuRun runs many cycles, from one counter's end to the next.
#pragma once

#include "nes/apu_private.h"

#include <algorithm>
#include <cstdint>

inline void ApuClockPulse(APU_PULSE& pulse, uint8_t length) {
    pulse.counter = pulse.period * 2u + 2;
    pulse.position = static_cast<uint8_t>((pulse.position + 1u) % kApuDutySteps);
    pulse.output = length != 0 && !pulse.muted
                       ? kApuDuties[pulse.duty][pulse.position] * ApuVolume(pulse.envelope)
                       : 0;
}

// A stopped channel keeps its level, so it stops and starts without a click.
inline void ApuClockTriangle(APU_TRIANGLE& triangle, uint8_t length) {
    triangle.counter = triangle.period + 1u;
    if (length == 0 || triangle.linear == 0) {
        return;
    }
    triangle.position = static_cast<uint8_t>((triangle.position + 1u) % kApuTriangleSteps);
    triangle.output =
        triangle.period < kApuTriangleLeastPeriod ? 0 : kApuTriangleWave[triangle.position] * 8;
}

inline void ApuClockNoise(APU_NOISE& noise, uint8_t length) {
    noise.counter = kApuNoisePeriods[noise.rate];
    const uint32_t shift = noise.shift;
    const uint32_t tap = noise.shortMode ? kApuNoiseShortTap : kApuNoiseLongTap;
    const uint32_t bit = (shift >> kApuNoiseFirstTap ^ shift >> tap) & 1;
    noise.shift = static_cast<uint16_t>((shift << 1 | bit) & kApuNoiseBits);
    const int32_t volume = length != 0 ? ApuVolume(noise.envelope) : 0;
    noise.output = (noise.shift & kApuNoiseOut) != 0 ? volume * -2 : volume * 2;
}

// One CPU cycle.
inline void ApuTick(APU& apu) {
    if (--apu.frameCounter == 0) [[unlikely]] {
        ApuClockFrameCounter(apu);
    }
    if (apu.pendingLengths != 0) [[unlikely]] {
        ApuTakePendingLengths(apu);
    }
    if (--apu.pulses[0].counter == 0) {
        ApuClockPulse(apu.pulses[0], apu.length[kApuPulse1]);
    }
    if (--apu.pulses[1].counter == 0) {
        ApuClockPulse(apu.pulses[1], apu.length[kApuPulse2]);
    }
    if (--apu.triangle.counter == 0) {
        ApuClockTriangle(apu.triangle, apu.length[kApuTriangle]);
    }
    if (--apu.noise.counter == 0) {
        ApuClockNoise(apu.noise, apu.length[kApuNoise]);
    }
    if (--apu.sample.counter == 0) [[unlikely]] {
        ApuClockSample(apu);
    }
    ApuRunPairs(apu, 1);
}

// Cycles until the next one in which the frame sequencer may interrupt, or the sample channel interrupt or take
// the bus; at least 1.
[[nodiscard]] inline uint32_t ApuCyclesToEvent(const APU& apu) {
    return std::min(apu.frameCounter, apu.sample.counter);
}

// Cycles before the next one in which anything but a pair happens.
[[nodiscard]] inline uint32_t ApuQuietCycles(const APU& apu) {
    if (apu.pendingLengths != 0) {
        return 0;
    }
    const uint32_t toPulse = std::min(apu.pulses[0].counter, apu.pulses[1].counter);
    const uint32_t toWave = std::min(apu.triangle.counter, apu.noise.counter);
    return std::min({toPulse, toWave, ApuCyclesToEvent(apu)}) - 1;
}

// The same as `cycles` calls of ApuTick. While no channel steps, the pairs are all the same.
inline void ApuRun(APU& apu, uint32_t cycles) {
    while (cycles != 0) {
        const uint32_t quiet = std::min(ApuQuietCycles(apu), cycles);
        apu.frameCounter -= quiet;
        apu.pulses[0].counter -= quiet;
        apu.pulses[1].counter -= quiet;
        apu.triangle.counter -= quiet;
        apu.noise.counter -= quiet;
        apu.sample.counter -= quiet;
        ApuRunPairs(apu, quiet);
        cycles -= quiet;
        if (cycles != 0) {
            ApuTick(apu);
            --cycles;
        }
    }
}
