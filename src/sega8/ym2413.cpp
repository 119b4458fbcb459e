// The sample of the YM2413: low-frequency oscillators, operators, rhythm, envelopes, phases and
// noise.
#include "sega8/ym2413.h"

#include "sega8/ym2413_private.h"
#include "sega8/ym2413_tables.h"

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr uint32_t kEnvelopeLimit = 176; // at this attenuation and above an operator is silent

constexpr uint32_t kTremoloStep = 262'144; // a table entry every 64 samples
constexpr uint32_t kVibratoStep = 16'384;  // a table column every 1,024 samples
constexpr uint32_t kWholeStep = 65'536;    // 1 with 16 bits of fraction
constexpr uint32_t kNoiseTaps = 0x800302;

constexpr uint32_t kPhaseShift = 16;

using ChannelNumbers = std::span<const uint8_t>; // rising

bool Bit(uint32_t value, uint32_t bit) {
    return (value >> bit & 1) != 0;
}

// --- operators --------------------------------------------------------------------------------

uint32_t Envelope(const YM2413& ym, const YM_SLOT& slot) {
    return slot.tll + static_cast<uint32_t>(slot.volume) + (ym.lfoAm & slot.amMask);
}

// `modulation` is added to the phase. The attenuation is under kEnvelopeLimit.
int32_t Operator(uint32_t phase, uint32_t modulation, uint32_t envelope, uint32_t wavetable) {
    const uint32_t angle = (phase & 0xFFFF0000u) + modulation;
    const uint32_t p =
        (envelope << 5) + kYmWaves.sine[(angle >> kPhaseShift & (kYmSineLength - 1)) + wavetable];
    return p >= kYmLevels ? 0 : kYmWaves.tl[p];
}

// Computes the modulator and returns the carrier's output. The carrier is modulated by the
// modulator's output of the sample before.
int32_t ChannelOutput(const YM2413& ym, YM_CHANNEL& channel) {
    YM_SLOT& modulator = channel.slots[kYmModulator];
    const auto sum =
        static_cast<uint32_t>(modulator.fbOut[0]) + static_cast<uint32_t>(modulator.fbOut[1]);
    modulator.fbOut[0] = modulator.fbOut[1];
    modulator.fbOut[1] = 0;
    const uint32_t first = Envelope(ym, modulator);
    if (first < kEnvelopeLimit) {
        const uint32_t feedback = channel.fb != 0 ? sum << channel.fb : 0;
        modulator.fbOut[1] = Operator(modulator.phase, feedback, first, modulator.wavetable);
    }

    const YM_SLOT& carrier = channel.slots[kYmCarrier];
    const uint32_t second = Envelope(ym, carrier);
    if (second >= kEnvelopeLimit) {
        return 0;
    }
    return Operator(carrier.phase, static_cast<uint32_t>(modulator.fbOut[0]) << 17, second,
                    carrier.wavetable);
}

// A rhythm operator at a ten-bit phase that does not come from its own oscillator alone.
int32_t RhythmOperator(const YM2413& ym, const YM_SLOT& slot, uint32_t phaseWord) {
    const uint32_t envelope = Envelope(ym, slot);
    return envelope < kEnvelopeLimit
               ? Operator(phaseWord << kPhaseShift, 0, envelope, slot.wavetable)
               : 0;
}

// Ten-bit phases of the square voices.
constexpr uint32_t kHatPhases[2][2] = {
    {0x0D0, 0x034},
    {0x234, 0x2D0}
}; // by metal, noise
constexpr uint32_t kSnarePhases[2][2] = {
    {0x100, 0x000},
    {0x200, 0x300}
};                  // by bit 24 of the hi-hat's phase, noise
constexpr uint32_t kCymbalPhases[2] = {0x100, 0x300}; // by metal

// Hi-hat, snare and cymbal are square waves, made from bits of two oscillators and the noise. The
// whole rhythm counts twice.
int32_t RhythmOutput(YM2413& ym) {
    const bool noise = Bit(ym.noiseRng, 0);
    const YM_SLOT& hat = ym.channels[kYmHatAndSnare].slots[kYmModulator];
    const YM_SLOT& snare = ym.channels[kYmHatAndSnare].slots[kYmCarrier];
    const YM_SLOT& tom = ym.channels[kYmTomAndCymbal].slots[kYmModulator];
    const YM_SLOT& cymbal = ym.channels[kYmTomAndCymbal].slots[kYmCarrier];
    const uint32_t a = hat.phase;
    const uint32_t b = cymbal.phase;
    const bool metal = Bit(b, 21) || Bit(b, 19) || Bit(a, 23) != Bit(a, 18) || Bit(a, 19);

    int32_t sum = ChannelOutput(ym, ym.channels[kYmBassDrum]);
    sum += RhythmOperator(ym, hat, kHatPhases[metal ? 1 : 0][noise ? 1 : 0]);
    sum += RhythmOperator(ym, snare, kSnarePhases[Bit(a, 24) ? 1 : 0][noise ? 1 : 0]);
    sum += RhythmOperator(ym, tom, tom.phase >> kPhaseShift);
    sum += RhythmOperator(ym, cymbal, kCymbalPhases[metal ? 1 : 0]);
    return sum * 2;
}

// --- envelopes --------------------------------------------------------------------------------

// True if an envelope of this rate has a step now; `increment` is then its size.
bool IsStepDue(uint32_t counter, const YM_RATE& rate, int32_t& increment) {
    if ((counter & ((1u << rate.shift) - 1)) != 0) {
        return false;
    }
    increment = kYmSteps[rate.select + (counter >> rate.shift & 7)];
    return true;
}

void AdvanceDump(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.dump, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= kYmSilent) {
        slot.volume = kYmSilent;
        slot.state = YmEnvelope::kAttack;
        slot.phase = 0;
    }
}

void AdvanceAttack(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.attack, increment)) {
        return;
    }
    slot.volume += (increment * ~slot.volume) >> 2;
    if (slot.volume < 1) {
        slot.volume = 0;
        slot.state = YmEnvelope::kDecay;
    }
}

void AdvanceDecay(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.decay, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= static_cast<int32_t>(slot.sl)) {
        slot.state = YmEnvelope::kSustain;
    }
}

void AdvanceSustain(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (slot.egType == 0 && IsStepDue(counter, slot.release, increment)) {
        slot.volume = std::min(slot.volume + increment, kYmSilent);
    }
}

void AdvanceRelease(uint32_t counter, YM_SLOT& slot, bool channelSustain) {
    const bool slow = slot.egType == 0 || channelSustain;
    int32_t increment = 0;
    if (!IsStepDue(counter, slow ? slot.sustainRelease : slot.release, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= kYmSilent) {
        slot.volume = kYmSilent;
        slot.state = YmEnvelope::kOff;
    }
}

// After a key off a modulator keeps its level, except in the channels of the rhythm.
void AdvanceEnvelope(const YM2413& ym, size_t channel, size_t index, YM_SLOT& slot) {
    switch (slot.state) {
    case YmEnvelope::kOff: break;
    case YmEnvelope::kRelease:
        if (index == kYmCarrier || (channel >= kYmBassDrum && (ym.rhythm & kYmRhythmOn) != 0)) {
            AdvanceRelease(ym.egCounter, slot, ym.channels[channel].sustain != 0);
        }
        break;
    case YmEnvelope::kSustain: AdvanceSustain(ym.egCounter, slot); break;
    case YmEnvelope::kDecay: AdvanceDecay(ym.egCounter, slot); break;
    case YmEnvelope::kAttack: AdvanceAttack(ym.egCounter, slot); break;
    case YmEnvelope::kDump: AdvanceDump(ym.egCounter, slot); break;
    }
}

void AdvanceEnvelopes(YM2413& ym, ChannelNumbers channels) {
    ym.egTimer += ym.egTimerAdd;
    while (ym.egTimer >= ym.egTimerOverflow) {
        ym.egTimer -= ym.egTimerOverflow;
        ++ym.egCounter;
        for (const uint8_t i : channels) {
            AdvanceEnvelope(ym, i, kYmModulator, ym.channels[i].slots[kYmModulator]);
            AdvanceEnvelope(ym, i, kYmCarrier, ym.channels[i].slots[kYmCarrier]);
        }
    }
}

// --- phases, noise, oscillators -----------------------------------------------------------------

// Vibrato moves the F-number by half steps, and may carry into the block.
uint32_t PhaseStep(const YM2413& ym, const YM_CHANNEL& channel, const YM_SLOT& slot) {
    if (slot.vib != 0) {
        const int32_t offset = kYmVibrato[channel.blockFnum >> 6 & 7][ym.lfoPm];
        if (offset != 0) {
            const uint32_t q = channel.blockFnum * 2 + static_cast<uint32_t>(offset);
            return (ym.fnTab[q & 1023] >> (7 - (q >> 10 & 7))) * slot.mul;
        }
    }
    return slot.incr;
}

void AdvancePhases(YM2413& ym, ChannelNumbers channels) {
    for (const uint8_t i : channels) {
        YM_CHANNEL& channel = ym.channels[i];
        for (YM_SLOT& slot : channel.slots) {
            slot.phase += PhaseStep(ym, channel, slot);
        }
    }
}

void AdvanceNoise(YM2413& ym) {
    ym.noiseP += ym.noiseF;
    for (uint32_t shifts = ym.noiseP >> 16; shifts > 0; --shifts) {
        if (Bit(ym.noiseRng, 0)) {
            ym.noiseRng ^= kNoiseTaps;
        }
        ym.noiseRng >>= 1;
    }
    ym.noiseP &= 0xFFFF;
}

void AdvanceOscillators(YM2413& ym) {
    ym.lfoAmCnt += ym.lfoAmInc;
    if (ym.lfoAmCnt >= kYmTremoloWrap) {
        ym.lfoAmCnt -= kYmTremoloWrap;
    }
    ym.lfoAm = kYmTremolo[ym.lfoAmCnt >> 24] >> 1u;
    ym.lfoPmCnt += ym.lfoPmInc;
    ym.lfoPm = ym.lfoPmCnt >> 24 & 7;
}

// --- the sample -------------------------------------------------------------------------------

// With only these channels. All others are asleep.
void MakeSample(YM2413& ym, ChannelNumbers channels) {
    ym.outMelody = 0;
    ym.outRhythm = 0;
    AdvanceOscillators(ym);

    const bool rhythm = (ym.rhythm & kYmRhythmOn) != 0;
    const size_t melodyChannels = rhythm ? kYmBassDrum : kYmChannels;
    for (const uint8_t i : channels) {
        ym.outMelody += i < melodyChannels ? ChannelOutput(ym, ym.channels[i]) : 0;
    }
    if (rhythm && !channels.empty() && channels.back() >= kYmBassDrum) {
        ym.outRhythm = RhythmOutput(ym);
    }
    const auto sample =
        static_cast<int16_t>(std::clamp((ym.outMelody + ym.outRhythm) * 4, -32768, 32767));
    ym.pairs->Add(sample, sample);

    AdvanceEnvelopes(ym, channels);
    AdvancePhases(ym, channels);
    AdvanceNoise(ym);
}

// True if an envelope stays as it is until the next write.
bool IsLevel(const YM_SLOT& slot, bool keepsLevel) {
    switch (slot.state) {
    case YmEnvelope::kOff: return true;
    case YmEnvelope::kRelease: return keepsLevel;
    case YmEnvelope::kSustain: return slot.egType != 0 || slot.volume == kYmSilent;
    default: return false;
    }
}

// True if nothing of an operator but its phase changes until the next write, and it is silent whatever the tremolo
// adds. Vibrato moves the phase in steps that differ.
bool IsStill(const YM_SLOT& slot, bool keepsLevel) {
    return IsLevel(slot, keepsLevel) && slot.vib == 0 &&
           slot.tll + static_cast<uint32_t>(slot.volume) >= kEnvelopeLimit && slot.fbOut[0] == 0 &&
           slot.fbOut[1] == 0;
}

// A modulator of the melody keeps its level after a key off (AdvanceEnvelope).
bool IsAsleep(const YM_CHANNEL& channel, bool isRhythm) {
    return IsStill(channel.slots[kYmModulator], !isRhythm) &&
           IsStill(channel.slots[kYmCarrier], false);
}

struct AWAKE_CHANNELS {
    std::array<uint8_t, kYmChannels> numbers;
    size_t count;
};

// The rhythm's last two channels use each other's phases, so they are awake together.
AWAKE_CHANNELS AwakeChannels(const YM2413& ym) {
    const bool rhythm = (ym.rhythm & kYmRhythmOn) != 0;
    std::array<bool, kYmChannels> asleep{};
    for (size_t i = 0; i < kYmChannels; ++i) {
        asleep[i] = IsAsleep(ym.channels[i], rhythm && i >= kYmBassDrum);
    }
    if (rhythm && asleep[kYmHatAndSnare] != asleep[kYmTomAndCymbal]) {
        asleep[kYmHatAndSnare] = false;
        asleep[kYmTomAndCymbal] = false;
    }
    AWAKE_CHANNELS awake{};
    for (size_t i = 0; i < kYmChannels; ++i) {
        if (!asleep[i]) {
            awake.numbers[awake.count++] = static_cast<uint8_t>(i);
        }
    }
    return awake;
}

} // namespace

void YmInit(YM2413& ym, uint32_t clock) {
    ym.clock = clock;
    ym.channels = {};
    ym.instVol = {};
    ym.instrument = {};
    ym.rhythm = 0;
    ym.tick = 0;
    for (uint32_t i = 0; i < ym.fnTab.size(); ++i) {
        ym.fnTab[i] = i * 4096;
    }
    ym.egCounter = 0;
    ym.egTimer = 0;
    ym.egTimerAdd = kWholeStep;
    ym.egTimerOverflow = kWholeStep;
    ym.lfoAmCnt = 0;
    ym.lfoAmInc = kTremoloStep;
    ym.lfoAm = 0;
    ym.lfoPmCnt = 0;
    ym.lfoPmInc = kVibratoStep;
    ym.lfoPm = 0;
    ym.noiseRng = 1;
    ym.noiseP = 0;
    ym.noiseF = kWholeStep;
    ym.outMelody = 0;
    ym.outRhythm = 0;
}

void YmReset(YM2413& ym) {
    ym.egCounter = 0;
    ym.egTimer = 0;
    ym.noiseRng = 1;
    ym.instrument = kYmVoices;
    YmWrite(ym, kYmRegTest, 0);
    for (uint8_t reg = kYmRegLast; reg >= kYmRegFnum; --reg) {
        YmWrite(ym, reg, 0);
    }
    for (YM_CHANNEL& channel : ym.channels) {
        for (YM_SLOT& slot : channel.slots) {
            slot.state = YmEnvelope::kOff;
            slot.volume = kYmSilent;
        }
    }
}

void YmMakeSample(YM2413& ym) {
    static constexpr std::array<uint8_t, kYmChannels> kAll{0, 1, 2, 3, 4, 5, 6, 7, 8};
    MakeSample(ym, kAll);
}

// A channel that is asleep adds 0 to every sample, and only its phases advance, by equal steps.
void YmRun(YM2413& ym, uint32_t clocks) {
    clocks += ym.tick;
    ym.tick = clocks % kYmClocksPerSample;
    const uint32_t samples = clocks / kYmClocksPerSample;
    if (samples == 0) {
        return;
    }
    const AWAKE_CHANNELS awake = AwakeChannels(ym);
    const ChannelNumbers numbers = ChannelNumbers(awake.numbers).first(awake.count);
    for (uint8_t i = 0; i < kYmChannels; ++i) {
        if (!std::ranges::binary_search(numbers, i)) {
            for (YM_SLOT& slot : ym.channels[i].slots) {
                slot.phase += slot.incr * samples;
            }
        }
    }
    for (uint32_t i = 0; i < samples; ++i) {
        MakeSample(ym, numbers);
    }
}
