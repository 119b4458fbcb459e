#include "nes/apu.h"
#include "nes/apu_private.h"

namespace {

// Registers are offsets from 0x4000.
constexpr uint32_t kOffsetMask = 0x1F;

enum Offset : uint32_t {
    kPulse1Volume,
    kPulse1Sweep,
    kPulse1Low,
    kPulse1High,
    kPulse2Volume,
    kPulse2Sweep,
    kPulse2Low,
    kPulse2High,
    kTriangleLinear,
    kTriangleUnused,
    kTriangleLow,
    kTriangleHigh,
    kNoiseVolume,
    kNoiseUnused,
    kNoisePeriod,
    kNoiseLength,
    kSampleRate,
    kSampleLevel,
    kSampleAddress,
    kSampleLength,
    kStatus = 0x15,
    kFrame = 0x17,
};

// 0x4000, 0x4004, 0x400C. Pulse channels have the duty in the upper two bits.
constexpr uint8_t kEnvelopePeriod = 0x0F;
constexpr uint8_t kEnvelopeConstant = 0x10;
constexpr uint8_t kEnvelopeLoop = 0x20;
constexpr uint32_t kDutyShift = 6;

// 0x4001, 0x4005.
constexpr uint8_t kSweepShift = 0x07;
constexpr uint8_t kSweepNegate = 0x08;
constexpr uint8_t kSweepPeriod = 0x70;
constexpr uint32_t kSweepPeriodShift = 4;
constexpr uint8_t kSweepEnable = 0x80;

// 0x4003, 0x4007, 0x400B, 0x400F.
constexpr uint8_t kPeriodHigh = 0x07;
constexpr uint32_t kLengthShift = 3;

// 0x4008.
constexpr uint8_t kLinearPeriod = 0x7F;
constexpr uint8_t kLinearControl = 0x80;

// 0x400E.
constexpr uint8_t kNoiseRate = 0x0F;
constexpr uint8_t kNoiseShortMode = 0x80;

// 0x4010 and 0x4011.
constexpr uint8_t kSampleRateIndex = 0x0F;
constexpr uint8_t kSampleLoop = 0x40;
constexpr uint8_t kSampleIrqEnable = 0x80;
constexpr uint8_t kSampleLevelBits = 0x7F;

// 0x4015. The low four bits are the channels of ApuLength.
constexpr uint8_t kStatusSample = 0x10;
constexpr uint8_t kStatusFrameIrq = 0x40;
constexpr uint8_t kStatusSampleIrq = 0x80;

// 0x4017.
constexpr uint8_t kFrameIrqInhibit = 0x40;
constexpr uint8_t kFrameFiveSteps = 0x80;

uint16_t WithLowBits(uint16_t period, uint8_t value) {
    return static_cast<uint16_t>((period & kPeriodHigh << 8) | value);
}

uint16_t WithHighBits(uint16_t period, uint8_t value) {
    return static_cast<uint16_t>((period & 0xFF) | (value & kPeriodHigh) << 8);
}

void WriteEnvelope(APU& apu, APU_ENVELOPE& envelope, ApuLength channel, uint8_t value) {
    envelope.period = value & kEnvelopePeriod;
    envelope.constant = (value & kEnvelopeConstant) != 0;
    envelope.loop = (value & kEnvelopeLoop) != 0;
    apu.halted[channel] = envelope.loop;
}

// The load waits for the next cycle, after a half frame that may clock the counter there.
void WriteLength(APU& apu, ApuLength channel, uint8_t value) {
    if (apu.enabled[channel]) {
        apu.pendingLength[channel] = kApuLengthTable[value >> kLengthShift];
        apu.lengthBeforeLoad[channel] = apu.length[channel];
        apu.pendingLengths = static_cast<uint8_t>(apu.pendingLengths | 1u << channel);
    }
}

void WriteSweep(APU_PULSE& pulse, uint8_t value) {
    pulse.sweepEnable = (value & kSweepEnable) != 0;
    pulse.sweepPeriod = (value & kSweepPeriod) >> kSweepPeriodShift;
    pulse.sweepNegate = (value & kSweepNegate) != 0;
    pulse.sweepShift = value & kSweepShift;
    pulse.sweepReload = true;
    ApuUpdateMuting(pulse);
}

void WritePulse(APU& apu, ApuLength channel, uint32_t offset, uint8_t value) {
    APU_PULSE& pulse = apu.pulses[channel];
    switch (offset) {
    case kPulse1Volume:
        pulse.duty = value >> kDutyShift;
        WriteEnvelope(apu, pulse.envelope, channel, value);
        break;
    case kPulse1Sweep: WriteSweep(pulse, value); break;
    case kPulse1Low:
        pulse.period = WithLowBits(pulse.period, value);
        ApuUpdateMuting(pulse);
        break;
    default:
        pulse.period = WithHighBits(pulse.period, value);
        pulse.position = 0;
        pulse.envelope.start = true;
        ApuUpdateMuting(pulse);
        WriteLength(apu, channel, value);
        break;
    }
}

void WriteTriangle(APU& apu, uint32_t offset, uint8_t value) {
    APU_TRIANGLE& triangle = apu.triangle;
    switch (offset) {
    case kTriangleLinear:
        triangle.control = (value & kLinearControl) != 0;
        triangle.linearPeriod = value & kLinearPeriod;
        apu.halted[kApuTriangle] = triangle.control;
        break;
    case kTriangleLow: triangle.period = WithLowBits(triangle.period, value); break;
    case kTriangleHigh:
        triangle.period = WithHighBits(triangle.period, value);
        triangle.linearReload = true;
        WriteLength(apu, kApuTriangle, value);
        break;
    default: break;
    }
}

void WriteNoise(APU& apu, uint32_t offset, uint8_t value) {
    APU_NOISE& noise = apu.noise;
    switch (offset) {
    case kNoiseVolume: WriteEnvelope(apu, noise.envelope, kApuNoise, value); break;
    case kNoisePeriod:
        noise.shortMode = (value & kNoiseShortMode) != 0;
        noise.rate = value & kNoiseRate;
        break;
    case kNoiseLength:
        noise.envelope.start = true;
        WriteLength(apu, kApuNoise, value);
        break;
    default: break;
    }
}

void WriteSampleRate(APU& apu, uint8_t value) {
    apu.sample.irqEnable = (value & kSampleIrqEnable) != 0;
    apu.sample.loop = (value & kSampleLoop) != 0;
    apu.sample.rate = value & kSampleRateIndex;
    if (!apu.sample.irqEnable) {
        *apu.irqLines &= ~kNesIrqSample;
    }
}

void WriteSample(APU& apu, uint32_t offset, uint8_t value) {
    APU_SAMPLE& sample = apu.sample;
    switch (offset) {
    case kSampleRate: WriteSampleRate(apu, value); break;
    case kSampleLevel:
        sample.level = value & kSampleLevelBits;
        sample.output = sample.level * kApuSampleFactor + kApuSampleOffsetWritten;
        break;
    case kSampleAddress: sample.startAddress = value; break;
    default: sample.length = value; break;
    }
}

void WriteStatus(APU& apu, uint8_t value) {
    for (uint32_t i = 0; i < kApuLengths; ++i) {
        apu.enabled[i] = (value >> i & 1) != 0;
        if (!apu.enabled[i]) {
            apu.length[i] = 0;
            apu.pendingLengths = static_cast<uint8_t>(apu.pendingLengths & ~(1u << i));
        }
    }
    *apu.irqLines &= ~kNesIrqSample;
    if ((value & kStatusSample) == 0) {
        apu.sample.bytesLeft = 0;
    } else if (apu.sample.bytesLeft == 0) {
        ApuRestartSample(apu.sample);
        ApuFetchSample(apu);
    }
}

void WriteFrame(APU& apu, uint8_t value) {
    const bool oddCycle = (apu.sampleClock & 1) != 0;
    apu.fiveSteps = (value & kFrameFiveSteps) != 0;
    apu.irqInhibit = (value & kFrameIrqInhibit) != 0;
    apu.frameStep = 0;
    apu.frameCounter = (apu.fiveSteps ? kApuFiveSteps[0] : kApuFourSteps[0]) + (oddCycle ? 2u : 1u);
    if (apu.irqInhibit) {
        *apu.irqLines &= ~kNesIrqFrame;
    }
}

} // namespace

void ApuWrite(APU& apu, uint16_t address, uint8_t value) {
    const uint32_t offset = address & kOffsetMask;
    if (offset <= kPulse1High) {
        WritePulse(apu, kApuPulse1, offset, value);
    } else if (offset <= kPulse2High) {
        WritePulse(apu, kApuPulse2, offset - kPulse2Volume, value);
    } else if (offset <= kTriangleHigh) {
        WriteTriangle(apu, offset, value);
    } else if (offset <= kNoiseLength) {
        WriteNoise(apu, offset, value);
    } else if (offset <= kSampleLength) {
        WriteSample(apu, offset, value);
    } else if (offset == kStatus) {
        WriteStatus(apu, value);
    } else if (offset == kFrame) {
        WriteFrame(apu, value);
    }
}

uint8_t ApuPeekStatus(const APU& apu) {
    uint32_t status = 0;
    for (uint32_t i = 0; i < kApuLengths; ++i) {
        status |= (apu.length[i] != 0 ? 1u : 0u) << i;
    }
    status |= apu.sample.bytesLeft != 0 ? kStatusSample : 0u;
    status |= (*apu.irqLines & kNesIrqFrame) != 0 ? kStatusFrameIrq : 0u;
    status |= (*apu.irqLines & kNesIrqSample) != 0 ? kStatusSampleIrq : 0u;
    return static_cast<uint8_t>(status);
}

uint8_t ApuReadStatus(APU& apu) {
    const uint8_t status = ApuPeekStatus(apu);
    *apu.irqLines &= ~(kNesIrqFrame | kNesIrqSample);
    return status;
}
