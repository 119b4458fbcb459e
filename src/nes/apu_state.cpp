// The APU's state. Loaded values are brought into the chip's own ranges: most become an index or a counter
// that must not be zero.
#include "machine/state_piece.h"
#include "nes/apu.h"
#include "nes/apu_private.h"

#include <algorithm>
#include <memory>

namespace {

template <typename Visit>
void EnvelopeFields(APU_ENVELOPE& envelope, Visit& visit) {
    visit(envelope.period);
    visit(envelope.constant);
    visit(envelope.loop);
    visit(envelope.start);
    visit(envelope.divider);
    visit(envelope.decay);
}

template <typename Visit>
void PulseFields(APU_PULSE& pulse, Visit& visit) {
    EnvelopeFields(pulse.envelope, visit);
    visit(pulse.duty);
    visit(pulse.position);
    visit(pulse.period);
    visit(pulse.counter);
    visit(pulse.sweepEnable);
    visit(pulse.sweepNegate);
    visit(pulse.sweepReload);
    visit(pulse.sweepPeriod);
    visit(pulse.sweepShift);
    visit(pulse.sweepDivider);
    visit(pulse.output);
}

template <typename Visit>
void TriangleFields(APU_TRIANGLE& triangle, Visit& visit) {
    visit(triangle.control);
    visit(triangle.linearReload);
    visit(triangle.linearPeriod);
    visit(triangle.linear);
    visit(triangle.position);
    visit(triangle.period);
    visit(triangle.counter);
    visit(triangle.output);
}

template <typename Visit>
void NoiseFields(APU_NOISE& noise, Visit& visit) {
    EnvelopeFields(noise.envelope, visit);
    visit(noise.shortMode);
    visit(noise.rate);
    visit(noise.shift);
    visit(noise.counter);
    visit(noise.output);
}

template <typename Visit>
void SampleFields(APU_SAMPLE& sample, Visit& visit) {
    visit(sample.irqEnable);
    visit(sample.loop);
    visit(sample.rate);
    visit(sample.startAddress);
    visit(sample.length);
    visit(sample.address);
    visit(sample.bytesLeft);
    visit(sample.buffer);
    visit(sample.bufferEmpty);
    visit(sample.shift);
    visit(sample.bitsLeft);
    visit(sample.silent);
    visit(sample.level);
    visit(sample.counter);
    visit(sample.output);
}

// `irqs`: the APU's bits of the interrupt word.
template <typename Visit>
void Fields(APU& apu, uint32_t& irqs, Visit& visit) {
    visit(apu.sampleClock);
    visit(apu.frameCounter);
    visit(apu.frameStep);
    visit(apu.fiveSteps);
    visit(apu.irqInhibit);
    for (APU_PULSE& pulse : apu.pulses) {
        PulseFields(pulse, visit);
    }
    TriangleFields(apu.triangle, visit);
    NoiseFields(apu.noise, visit);
    SampleFields(apu.sample, visit);
    visit(apu.length);
    visit(apu.halted);
    visit(apu.enabled);
    visit(apu.pendingLength);
    visit(apu.lengthBeforeLoad);
    visit(apu.pendingLengths);
    visit(apu.stallCycles);
    visit(irqs);
}

void Sanitize(APU_ENVELOPE& envelope) {
    envelope.period &= 15;
    envelope.divider &= 15;
    envelope.decay &= 15;
}

void Sanitize(APU_PULSE& pulse) {
    Sanitize(pulse.envelope);
    pulse.duty &= 3;
    pulse.position &= 7;
    pulse.period &= kApuPeriodBits;
    pulse.counter = std::clamp(pulse.counter, 1u, 0x1000u);
    pulse.sweepPeriod &= 7;
    pulse.sweepShift &= 7;
    pulse.sweepDivider &= 7;
    pulse.output = std::clamp(pulse.output, -60, 60);
    ApuUpdateMuting(pulse);
}

void Sanitize(APU_TRIANGLE& triangle) {
    triangle.linearPeriod &= 0x7F;
    triangle.linear &= 0x7F;
    triangle.position &= 31;
    triangle.period &= kApuPeriodBits;
    triangle.counter = std::clamp(triangle.counter, 1u, 0x800u);
    triangle.output = std::clamp(triangle.output, -64, 56);
}

void Sanitize(APU_NOISE& noise) {
    Sanitize(noise.envelope);
    noise.rate &= 15;
    noise.shift &= kApuNoiseBits;
    noise.shift = std::max<uint16_t>(noise.shift, 1);
    noise.counter = std::clamp<uint32_t>(noise.counter, 1, kApuNoisePeriods.back());
    noise.output = std::clamp(noise.output, -30, 30);
}

void Sanitize(APU_SAMPLE& sample) {
    sample.rate &= 15;
    sample.address |= kApuSampleSpace;
    sample.bytesLeft = std::min<uint16_t>(sample.bytesLeft, 255 * 16 + 1);
    sample.bitsLeft = std::clamp<uint8_t>(sample.bitsLeft, 1, 8);
    sample.level &= 0x7F;
    sample.counter = std::clamp<uint32_t>(sample.counter, 1, kApuSampleRates.front());
    sample.output = std::clamp(sample.output, kApuSampleOffset,
                               127 * kApuSampleFactor + kApuSampleOffsetWritten);
}

void Sanitize(APU& apu) {
    apu.sampleClock %= kApuCyclesPerPair;
    apu.frameCounter = std::clamp<uint32_t>(apu.frameCounter, 1, kApuFourSteps[0] + 2u);
    const size_t frameSteps = (apu.fiveSteps ? kApuFiveSteps.size() : kApuFourSteps.size()) - 1;
    apu.frameStep = static_cast<uint8_t>(apu.frameStep % frameSteps);
    for (APU_PULSE& pulse : apu.pulses) {
        Sanitize(pulse);
    }
    Sanitize(apu.triangle);
    Sanitize(apu.noise);
    Sanitize(apu.sample);
    apu.pendingLengths &= 15;
    apu.stallCycles = std::min(apu.stallCycles, kApuStallCycles);
}

constexpr uint32_t kOwnIrqs = kNesIrqFrame | kNesIrqSample;

} // namespace

uint32_t ApuStateSize() {
    static const uint32_t kSize = [] {
        const auto apu = std::make_unique<APU>();
        uint32_t irqs = 0;
        return StatePieceSize([&](auto& visit) { Fields(*apu, irqs, visit); });
    }();
    return kSize;
}

StateOut ApuSaveState(const APU& apu, StateOut out) {
    auto& fields =
        const_cast<APU&>(apu); // saving shares the field list with loading; it changes nothing
    uint32_t irqs = *apu.irqLines & kOwnIrqs;
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, irqs, visit); });
}

uint32_t ApuLoadState(APU& apu, const uint8_t* data, uint32_t size) {
    uint32_t irqs = 0;
    const uint32_t used =
        StatePieceRead(data, size, [&](auto& visit) { Fields(apu, irqs, visit); });
    if (used != 0) {
        Sanitize(apu);
        *apu.irqLines = (*apu.irqLines & ~kOwnIrqs) | (irqs & kOwnIrqs);
    }
    return used;
}
