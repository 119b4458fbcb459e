// The APU's tick, one CPU cycle, to be inlined into a machine's frame loop: a few counters that rarely run
// out. ApuRun runs many.
#pragma once

#include "nes/apu_private.h"

#include <algorithm>
#include <cstdint>

inline void ApuSetPulseOutput(APU_PULSE& pulse, uint8_t length) {
    pulse.output = length != 0 && !pulse.muted
                       ? kApuDuties[pulse.duty][pulse.position] * ApuVolume(pulse.envelope)
                       : 0;
}

inline void ApuClockPulse(APU_PULSE& pulse, uint8_t length) {
    pulse.counter = pulse.period * 2u + 2;
    pulse.position = static_cast<uint8_t>((pulse.position + 1u) % kApuDutySteps);
    ApuSetPulseOutput(pulse, length);
}

// A stopped channel keeps its level, so it stops and starts without a click.
[[nodiscard]] inline bool ApuTriangleRuns(const APU_TRIANGLE& triangle, uint8_t length) {
    return length != 0 && triangle.linear != 0;
}

inline void ApuSetTriangleOutput(APU_TRIANGLE& triangle) {
    triangle.output =
        triangle.period < kApuTriangleLeastPeriod ? 0 : kApuTriangleWave[triangle.position] * 8;
}

inline void ApuClockTriangle(APU_TRIANGLE& triangle, uint8_t length) {
    triangle.counter = triangle.period + 1u;
    if (ApuTriangleRuns(triangle, length)) {
        triangle.position = static_cast<uint8_t>((triangle.position + 1u) % kApuTriangleSteps);
        ApuSetTriangleOutput(triangle);
    }
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

// Counts these cycles of a pair; the last of it adds the sum of the channels.
inline void ApuCountPair(APU& apu, uint32_t cycles) {
    apu.sampleClock += cycles;
    if (apu.sampleClock == kApuCyclesPerPair) {
        ApuMakePair(apu);
    }
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
    ApuCountPair(apu, 1);
}

// Cycles until the next one in which the frame sequencer may interrupt, or the sample channel interrupt or take
// the bus; at least 1.
[[nodiscard]] inline uint32_t ApuCyclesToEvent(const APU& apu) {
    return std::min(apu.frameCounter, apu.sample.counter);
}

// How often a counter that is reloaded with `period` ends within these cycles.
[[nodiscard]] inline uint32_t ApuCountDown(uint32_t& counter, uint32_t period, uint32_t cycles) {
    if (cycles < counter) {
        counter -= cycles;
        return 0;
    }
    const uint32_t past = cycles - counter;
    counter = period - past % period;
    return 1 + past / period;
}

// Cycles in which the frame sequencer and the sample channel do nothing, up to the end of one pair at most.
inline void ApuRunChannels(APU& apu, uint32_t cycles) {
    for (const ApuLength number : {kApuPulse1, kApuPulse2}) {
        APU_PULSE& pulse = apu.pulses[number];
        const uint32_t period = pulse.period * 2u + 2;
        if (const uint32_t steps = ApuCountDown(pulse.counter, period, cycles); steps != 0) {
            pulse.position = static_cast<uint8_t>((pulse.position + steps) % kApuDutySteps);
            ApuSetPulseOutput(pulse, apu.length[number]);
        }
    }
    APU_TRIANGLE& triangle = apu.triangle;
    if (const uint32_t steps = ApuCountDown(triangle.counter, triangle.period + 1u, cycles);
        steps != 0 && ApuTriangleRuns(triangle, apu.length[kApuTriangle])) {
        triangle.position = static_cast<uint8_t>((triangle.position + steps) % kApuTriangleSteps);
        ApuSetTriangleOutput(triangle);
    }
    uint32_t left = cycles;
    while (left >= apu.noise.counter) {
        left -= apu.noise.counter;
        ApuClockNoise(apu.noise, apu.length[kApuNoise]);
    }
    apu.noise.counter -= left;
}

// The same as `cycles` calls of ApuTick, from pair to pair.
inline void ApuRun(APU& apu, uint32_t cycles) {
    while (cycles != 0) {
        const uint32_t toEvent = apu.pendingLengths == 0 ? ApuCyclesToEvent(apu) - 1 : 0;
        uint32_t quiet = std::min(toEvent, cycles);
        cycles -= quiet;
        apu.frameCounter -= quiet;
        apu.sample.counter -= quiet;
        while (quiet != 0) {
            const uint32_t toPair = std::min(kApuCyclesPerPair - apu.sampleClock, quiet);
            ApuRunChannels(apu, toPair);
            ApuCountPair(apu, toPair);
            quiet -= toPair;
        }
        if (cycles != 0) {
            ApuTick(apu);
            --cycles;
        }
    }
}
