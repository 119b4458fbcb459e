#include "nes/apu.h"

#include "nes/apu_private.h"

namespace {

constexpr int32_t kMixFactor = 50;

// The sample level moves by 2. It no longer rises from the one, or falls from the other.
constexpr uint8_t kLevelTop = 126;
constexpr uint8_t kLevelBottom = 1;

// Steps of the frame sequencer.
constexpr uint8_t kFiveStepIdle = 4;     // clocks nothing
constexpr uint8_t kFourStepFirstIrq = 3; // the interrupt rises in three cycles in a row
constexpr uint8_t kFourStepHalfAtEnd = 4;
constexpr uint8_t kFourStepLast = 5;

void ClockEnvelope(APU_ENVELOPE& envelope) {
    if (envelope.start) {
        envelope.start = false;
        envelope.decay = 15;
        envelope.divider = envelope.period;
    } else if (envelope.divider != 0) {
        --envelope.divider;
    } else {
        envelope.divider = envelope.period;
        if (envelope.decay != 0) {
            --envelope.decay;
        } else if (envelope.loop) {
            envelope.decay = 15;
        }
    }
}

void ClockLinear(APU_TRIANGLE& triangle) {
    if (triangle.linearReload) {
        triangle.linear = triangle.linearPeriod;
    } else if (triangle.linear != 0) {
        --triangle.linear;
    }
    if (!triangle.control) {
        triangle.linearReload = false;
    }
}

// Pulse 1 subtracts by adding the one's complement, so its result is one less.
void ClockSweep(APU_PULSE& pulse, uint32_t negateExtra) {
    if (pulse.sweepDivider == 0 && pulse.sweepEnable && pulse.sweepShift != 0 && !pulse.muted) {
        const uint32_t change = uint32_t{pulse.period} >> pulse.sweepShift;
        const uint32_t target =
            pulse.sweepNegate ? pulse.period - change - negateExtra : pulse.period + change;
        pulse.period = static_cast<uint16_t>(target & kApuPeriodBits);
        ApuUpdateMuting(pulse);
    }
    if (pulse.sweepDivider == 0 || pulse.sweepReload) {
        pulse.sweepDivider = pulse.sweepPeriod;
        pulse.sweepReload = false;
    } else {
        --pulse.sweepDivider;
    }
}

void ClockQuarter(APU& apu) {
    ClockEnvelope(apu.pulses[0].envelope);
    ClockEnvelope(apu.pulses[1].envelope);
    ClockEnvelope(apu.noise.envelope);
    ClockLinear(apu.triangle);
}

void ClockHalf(APU& apu) {
    for (size_t i = 0; i < kApuLengths; ++i) {
        if (apu.length[i] != 0 && !apu.halted[i]) {
            --apu.length[i];
        }
    }
    ClockSweep(apu.pulses[0], 1);
    ClockSweep(apu.pulses[1], 0);
}

void FourStep(APU& apu, uint8_t step) {
    if (step < kFourStepFirstIrq || step == kFourStepHalfAtEnd) {
        ClockQuarter(apu);
    }
    if (step == 1 || step == kFourStepHalfAtEnd) {
        ClockHalf(apu);
    }
    if (step >= kFourStepFirstIrq && !apu.irqInhibit) {
        *apu.irqLines |= kNesIrqFrame;
    }
}

void FiveStep(APU& apu, uint8_t step) {
    if (step == kFiveStepIdle) {
        return;
    }
    ClockQuarter(apu);
    if (step == 0 || step == 2) {
        ClockHalf(apu);
    }
}

} // namespace

void ApuInit(APU& apu, uint8_t (*readByte)(void* owner, uint16_t address), void* owner) {
    apu.readByte = readByte;
    apu.owner = owner;
}

void ApuReset(APU& apu, [[maybe_unused]] bool hard, uint32_t* irqLines) {
    apu.sampleClock = 0;
    apu.frameCounter = kApuFourSteps[0];
    apu.frameStep = 0;
    apu.fiveSteps = false;
    apu.irqInhibit = false;
    apu.pulses = {};
    apu.triangle = {};
    apu.noise = {};
    apu.sample = {};
    apu.length.fill(0);
    apu.halted.fill(false);
    apu.enabled.fill(false);
    apu.pendingLength.fill(0);
    apu.lengthBeforeLoad.fill(0);
    apu.pendingLengths = 0;
    apu.stallCycles = 0;
    apu.irqLines = irqLines;
    *irqLines &= ~(kNesIrqFrame | kNesIrqSample);
}

// Muted: a period under 8, or one that the sweep would take beyond eleven bits, even with the sweep off.
void ApuUpdateMuting(APU_PULSE& pulse) {
    const uint32_t up = pulse.period + (uint32_t{pulse.period} >> pulse.sweepShift);
    pulse.muted = pulse.period < 8 || (!pulse.sweepNegate && up > kApuPeriodBits);
}

void ApuClockFrameCounter(APU& apu) {
    const uint8_t step = apu.frameStep++;
    if (apu.fiveSteps) {
        FiveStep(apu, step);
        apu.frameCounter = kApuFiveSteps[apu.frameStep];
        if (step == kFiveStepIdle) {
            apu.frameStep = 0;
        }
    } else {
        FourStep(apu, step);
        apu.frameCounter = kApuFourSteps[apu.frameStep];
        if (step == kFourStepLast) {
            apu.frameStep = 0;
        }
    }
}

// A half frame that clocks the counter in the same cycle wins over the load.
void ApuTakePendingLengths(APU& apu) {
    for (size_t i = 0; i < kApuLengths; ++i) {
        if ((apu.pendingLengths >> i & 1) != 0 && apu.length[i] == apu.lengthBeforeLoad[i]) {
            apu.length[i] = apu.pendingLength[i];
        }
    }
    apu.pendingLengths = 0;
}

void ApuRestartSample(APU_SAMPLE& sample) {
    sample.address = static_cast<uint16_t>(0xC000 + sample.startAddress * 64);
    sample.bytesLeft = static_cast<uint16_t>(sample.length * 16 + 1);
}

void ApuFetchSample(APU& apu) {
    APU_SAMPLE& sample = apu.sample;
    if (!sample.bufferEmpty || sample.bytesLeft == 0) {
        return;
    }
    sample.buffer = apu.readByte(apu.owner, sample.address);
    sample.bufferEmpty = false;
    sample.address = static_cast<uint16_t>((sample.address + 1) | kApuSampleSpace);
    apu.stallCycles = kApuStallCycles;
    if (--sample.bytesLeft != 0) {
        return;
    }
    if (sample.loop) {
        ApuRestartSample(sample);
    } else if (sample.irqEnable) {
        *apu.irqLines |= kNesIrqSample;
    }
}

void ApuClockSample(APU& apu) {
    APU_SAMPLE& sample = apu.sample;
    sample.counter = kApuSampleRates[sample.rate];
    if (!sample.silent) {
        const bool up = (sample.shift & 1) != 0;
        if (up && sample.level < kLevelTop) {
            sample.level = static_cast<uint8_t>(sample.level + 2);
        } else if (!up && sample.level > kLevelBottom) {
            sample.level = static_cast<uint8_t>(sample.level - 2);
        }
        sample.output = sample.level * kApuSampleFactor + kApuSampleOffset;
    }
    sample.shift >>= 1;
    if (--sample.bitsLeft != 0) {
        return;
    }
    sample.bitsLeft = 8;
    sample.silent = sample.bufferEmpty;
    if (!sample.bufferEmpty) {
        sample.shift = sample.buffer;
        sample.bufferEmpty = true;
        ApuFetchSample(apu);
    }
}

void ApuMakePair(APU& apu) {
    apu.sampleClock = 0;
    const int32_t sum = apu.pulses[0].output + apu.pulses[1].output + apu.triangle.output +
                        apu.noise.output + apu.sample.output;
    const auto value = static_cast<int16_t>(sum * kMixFactor);
    apu.pairs->Add(value, value);
}
