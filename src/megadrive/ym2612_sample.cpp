// One sample of the YM2612: SSG ramps, operators and phases, LFO, envelopes, mix and timers.
#include "megadrive/ym2612_private.h"
#include "megadrive/ym2612_tables.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint32_t kEnvelopeLimit = 832; // from this attenuation on an operator is silent
constexpr uint32_t kPhaseShift = 16;
constexpr uint32_t kWholePhase = 0xFFFF0000; // without the fraction
constexpr int32_t kFrequencyWrap = 1 << 23;  // a pitch that detune takes below 0 wraps to the top
constexpr uint32_t kModulationShift = 15;    // a full level modulates by four turns

static_assert(kEnvelopeLimit * 8 == kYm2612Levels);

// --- pitches ------------------------------------------------------------------------------------

uint32_t PhaseStep(const YM2612_SLOT& slot, uint32_t fc, uint32_t keyCode) {
    int32_t frequency = static_cast<int32_t>(fc) + kYm2612Detune[slot.dt][keyCode];
    if (frequency < 0) {
        frequency += kFrequencyWrap;
    }
    return static_cast<uint32_t>(frequency) * slot.mul >> 1;
}

void RecalculateSlot(YM2612_SLOT& slot, const YM2612_PITCH& pitch) {
    slot.phaseStep = static_cast<int32_t>(PhaseStep(slot, pitch.fc, pitch.keyCode));
    const auto ksr = static_cast<uint8_t>(pitch.keyCode >> slot.ksrShift);
    if (ksr != slot.ksr) {
        slot.ksr = ksr;
        Ym2612RefreshAttack(slot);
        Ym2612RefreshDecay(slot);
        Ym2612RefreshSustain(slot);
        Ym2612RefreshRelease(slot);
    }
}

[[gnu::noinline]] void RecalculateMarked(YM2612& ym) {
    for (size_t i = 0; i < kYm2612Channels; ++i) {
        YM2612_CHANNEL& channel = ym.channels[i];
        if (channel.slots[0].phaseStep != kYm2612Recalculate) {
            continue;
        }
        for (size_t slot = 0; slot < kYm2612Slots; ++slot) {
            RecalculateSlot(channel.slots[slot], Ym2612SlotPitch(ym, i, slot));
        }
    }
    ym.recalculate = false;
    ym.egQuiet = 0;
}

// The LFO's offset may carry into the block.
uint32_t VibratoStep(const YM2612& ym, const YM2612_CHANNEL& channel, const YM2612_SLOT& slot,
                     const YM2612_PITCH& pitch) {
    const uint32_t fnumTop = pitch.blockFnum >> 4 & 127;
    const int32_t offset = kYm2612Tables.lfoPhase[fnumTop * kYm2612LfoRow + channel.pms + ym.lfoPm];
    if (offset == 0) {
        return static_cast<uint32_t>(slot.phaseStep);
    }
    const uint32_t moved = pitch.blockFnum * 2 + static_cast<uint32_t>(offset);
    const uint32_t halfFnum = moved & 4095;
    const uint32_t block = moved >> 12 & 7;
    return PhaseStep(slot, Ym2612PhaseStepOf(halfFnum, block),
                     block << 2 | kYm2612KeyTable[halfFnum >> 8]);
}

[[gnu::noinline]] void AdvanceWithVibrato(YM2612& ym, size_t index) {
    YM2612_CHANNEL& channel = ym.channels[index];
    for (size_t i = 0; i < kYm2612Slots; ++i) {
        YM2612_SLOT& slot = channel.slots[i];
        slot.phase += VibratoStep(ym, channel, slot, Ym2612SlotPitch(ym, index, i));
    }
}

// --- SSG envelopes ------------------------------------------------------------------------------

// At the end of a ramp: holds it, or begins the next one.
void EndRamp(YM2612_SLOT& slot) {
    const bool alternate = (slot.ssg & kYm2612SsgAlternate) != 0;
    if ((slot.ssg & kYm2612SsgHold) != 0) {
        if (alternate) {
            slot.ssgInverted = kYm2612SsgAttack;
        }
        if (slot.state != Ym2612Envelope::kAttack &&
            slot.ssgInverted == (slot.ssg & kYm2612SsgAttack)) {
            slot.volume = kYm2612Silent;
        }
    } else {
        if (alternate) {
            slot.ssgInverted ^= kYm2612SsgAttack;
        } else {
            slot.phase = 0;
        }
        if (slot.state != Ym2612Envelope::kAttack) {
            if (Ym2612AttacksAtOnce(slot) || slot.volume <= 0) {
                Ym2612BeginDecay(slot);
            } else {
                slot.state = Ym2612Envelope::kAttack;
            }
        }
    }
    Ym2612RefreshLevel(slot);
}

[[gnu::noinline]] void EndRamps(YM2612& ym) {
    for (YM2612_CHANNEL& channel : ym.channels) {
        for (YM2612_SLOT& slot : channel.slots) {
            if ((slot.ssg & kYm2612SsgOn) != 0 && slot.volume >= kYm2612SsgEnd &&
                slot.state > Ym2612Envelope::kRelease) {
                EndRamp(slot);
            }
        }
    }
}

// --- operators ----------------------------------------------------------------------------------

// `modulation` is added to the phase, whose fraction is dropped before: a modulator moves whole steps.
inline int32_t OperatorOutput(const YM2612_SLOT& slot, uint32_t modulation,
                              uint32_t lfoAttenuation) {
    const uint32_t envelope = slot.volOut + (slot.amMask & lfoAttenuation);
    if (envelope >= kEnvelopeLimit) {
        return 0;
    }
    const uint32_t angle = (slot.phase & kWholePhase) + modulation;
    const uint32_t p =
        kYm2612Tables.sine[angle >> kPhaseShift & (kYm2612SineLength - 1)] + envelope * 8;
    return p < kYm2612Levels ? kYm2612Tables.level[p] : 0;
}

// The eight algorithms, after operator 1: `two` to `four` run an operator with the sum that modulates it. Each case
// runs a modulator before the operators that it modulates, so its output is always that of the same sample.
template <typename Run>
[[gnu::always_inline]] inline int32_t RunAlgorithm(uint32_t algorithm, int32_t one, Run run) {
    const auto two = [&](int32_t modulator) { return run(kYm2612Operator2, modulator); };
    const auto three = [&](int32_t modulator) { return run(kYm2612Operator3, modulator); };
    const auto four = [&](int32_t modulator) { return run(kYm2612Operator4, modulator); };
    switch (algorithm) {
    case 0: return four(three(two(one)));
    case 1: return four(three(one + two(0)));
    case 2: return four(one + three(two(0)));
    case 3: return four(two(one) + three(0));
    case 4: return two(one) + four(three(0));
    case 5: return two(one) + three(one) + four(one);
    case 6: return two(one) + three(0) + four(0);
    default: return one + two(0) + three(0) + four(0);
    }
}

// What operator 1 modulates itself by.
[[nodiscard]] inline uint32_t Feedback(uint32_t shift, int32_t older, int32_t newer) {
    const uint32_t sum = static_cast<uint32_t>(older) + static_cast<uint32_t>(newer);
    return shift != 0 ? sum << shift : 0;
}

inline int32_t ChannelOutput(YM2612_CHANNEL& channel, uint32_t lfoAm) {
    const uint32_t lfoAttenuation = lfoAm >> channel.ams;
    auto& [older, newer] = channel.operator1Out;
    const int32_t one = OperatorOutput(channel.slots[kYm2612Operator1],
                                       Feedback(channel.feedback, older, newer), lfoAttenuation);
    older = newer;
    newer = one;
    return RunAlgorithm(channel.algorithm, one, [&](size_t place, int32_t modulator) {
        return OperatorOutput(channel.slots[place],
                              static_cast<uint32_t>(modulator) << kModulationShift, lfoAttenuation);
    });
}

void RunChannels(YM2612& ym) {
    for (size_t i = 0; i < kYm2612Channels; ++i) {
        YM2612_CHANNEL& channel = ym.channels[i];
        ym.channelOut[i] = ChannelOutput(channel, ym.lfoAm);
        if (channel.pms != 0) {
            AdvanceWithVibrato(ym, i);
        } else {
            for (YM2612_SLOT& slot : channel.slots) {
                slot.phase += static_cast<uint32_t>(slot.phaseStep);
            }
        }
    }
    if (ym.dacEnabled != 0) {
        ym.channelOut[kYm2612Dac] = ym.dacOut;
    }
}

// The attenuation is a triangle; the pitch goes through the 32 positions of its wave in the same time.
constexpr uint32_t kLfoFraction = 24; // bits of the counter
constexpr uint32_t kLfoPositions = 128;

uint32_t LfoAmAt(uint32_t counter) {
    constexpr uint32_t kTop = kLfoPositions / 2 - 1;
    const uint32_t position = counter >> kLfoFraction & (kLfoPositions - 1);
    return (position <= kTop ? position : kLfoPositions - 1 - position) * 2;
}

uint32_t LfoPmAt(uint32_t counter) {
    return (counter >> kLfoFraction & (kLfoPositions - 1)) >> 2;
}

void AdvanceLfo(YM2612& ym) {
    if (ym.lfoIncrement == 0) {
        return;
    }
    ym.lfoCounter += ym.lfoIncrement;
    ym.lfoAm = LfoAmAt(ym.lfoCounter);
    ym.lfoPm = LfoPmAt(ym.lfoCounter);
}

// --- envelopes ----------------------------------------------------------------------------------

// True if an envelope of this rate has a step at this clock; `increment` is then its size.
inline bool IsStepDue(uint32_t counter, YM2612_RATE rate, int32_t& increment) {
    if ((counter & ((1u << rate.shift) - 1)) != 0) {
        return false;
    }
    increment = kYm2612Steps[rate.select + (counter >> rate.shift & 7)];
    return true;
}

// Every step takes a sixteenth of the attenuation that is left, or more at higher rates.
inline void AdvanceAttack(uint32_t counter, YM2612_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.attack, increment)) {
        return;
    }
    slot.volume += (~slot.volume * increment) >> 4;
    if (slot.volume <= 0) {
        Ym2612BeginDecay(slot);
    }
}

// An SSG ramp goes four times as fast, and stops at its end.
inline void AddAttenuation(YM2612_SLOT& slot, int32_t increment) {
    if ((slot.ssg & kYm2612SsgOn) == 0) {
        slot.volume += increment;
    } else if (slot.volume < kYm2612SsgEnd) {
        slot.volume += increment * 4;
    }
}

inline void AdvanceDecay(uint32_t counter, YM2612_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.decay, increment)) {
        return;
    }
    AddAttenuation(slot, increment);
    if (slot.volume >= static_cast<int32_t>(slot.sl)) {
        slot.state = Ym2612Envelope::kSustain;
    }
}

inline void AdvanceSustain(uint32_t counter, YM2612_SLOT& slot) {
    int32_t increment = 0;
    if (IsStepDue(counter, slot.sustain, increment)) {
        AddAttenuation(slot, increment);
        slot.volume = std::min(slot.volume, kYm2612Silent);
    }
}

inline void AdvanceRelease(uint32_t counter, YM2612_SLOT& slot) {
    int32_t increment = 0;
    if (!IsStepDue(counter, slot.release, increment)) {
        return;
    }
    AddAttenuation(slot, increment);
    const bool ssg = (slot.ssg & kYm2612SsgOn) != 0;
    if (slot.volume >= (ssg ? kYm2612SsgEnd : kYm2612Silent)) {
        slot.volume = kYm2612Silent;
        slot.state = Ym2612Envelope::kOff;
    }
}

inline void AdvanceEnvelope(uint32_t counter, YM2612_SLOT& slot) {
    switch (slot.state) {
    case Ym2612Envelope::kOff: break;
    case Ym2612Envelope::kRelease: AdvanceRelease(counter, slot); break;
    case Ym2612Envelope::kSustain: AdvanceSustain(counter, slot); break;
    case Ym2612Envelope::kDecay: AdvanceDecay(counter, slot); break;
    case Ym2612Envelope::kAttack: AdvanceAttack(counter, slot); break;
    }
    auto volume = static_cast<uint32_t>(slot.volume);
    // Settled here: a running shape is inverted by the alternate bit alone, whatever its ramp.
    constexpr uint8_t kInverted = kYm2612SsgOn | kYm2612SsgAlternate;
    if ((slot.ssg & kInverted) == kInverted && slot.state > Ym2612Envelope::kRelease) {
        volume ^= static_cast<uint32_t>(kYm2612Silent);
    }
    slot.volOut = slot.tl + volume;
}

// The next envelope clock.
void ClockEnvelopes(YM2612& ym) {
    ++ym.egCounter;
    ym.egQuiet = 0;
    for (YM2612_CHANNEL& channel : ym.channels) {
        for (YM2612_SLOT& slot : channel.slots) {
            AdvanceEnvelope(ym.egCounter, slot);
        }
    }
}

void AdvanceEnvelopes(YM2612& ym) {
    ym.egTimer += ym.egTimerAdd;
    while (ym.egTimer >= ym.egTimerOverflow) {
        ym.egTimer -= ym.egTimerOverflow;
        ClockEnvelopes(ym);
    }
}

// --- timers -------------------------------------------------------------------------------------

void RaiseFlag(YM2612& ym, uint8_t timer) {
    ym.status |= timer;
    if ((ym.irqMask & timer) != 0) {
        ym.irq = 1;
    }
}

void CsmKeysOn(YM2612& ym) {
    ym.egQuiet = 0;
    for (YM2612_SLOT& slot : ym.channels[kYm2612Special].slots) {
        Ym2612KeyOn(ym, slot);
    }
    ym.csmKey = 1;
}

// `csmKey` in the sample after the one that set it.
constexpr uint8_t kCsmKeyEnds = 2;

void CsmKeysOff(YM2612& ym) {
    ym.egQuiet = 0;
    for (YM2612_SLOT& slot : ym.channels[kYm2612Special].slots) {
        if (slot.keyOn == 0) {
            Ym2612KeyOff(slot);
        }
    }
    ym.csmKey = 0;
}

void AdvanceTimers(YM2612& ym) {
    ym.csmKey = static_cast<uint8_t>(ym.csmKey << 1);
    if ((ym.mode & kYm2612RunA) != 0 && --ym.timerACount < 1) {
        if ((ym.mode & kYm2612FlagA) != 0) {
            RaiseFlag(ym, kYm2612TimerA);
        }
        ym.timerACount = static_cast<int32_t>(1024 - ym.timerA);
        if ((ym.mode & kYm2612SpecialBits) == kYm2612Csm) {
            CsmKeysOn(ym);
        }
    }
    if ((ym.csmKey & kCsmKeyEnds) != 0) {
        CsmKeysOff(ym);
    }
    if ((ym.mode & kYm2612RunB) != 0 && --ym.timerBCount < 1) {
        if ((ym.mode & kYm2612FlagB) != 0) {
            RaiseFlag(ym, kYm2612TimerB);
        }
        ym.timerBCount = static_cast<int32_t>((256 - ym.timerB) << 4);
    }
}

int16_t Clip(int32_t value) {
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

// --- spans --------------------------------------------------------------------------------------

constexpr uint32_t kMostSpan = 8; // samples
constexpr uint32_t kNever = 0xFFFFFFFF;

// Envelope clocks after this one in which the slot's envelope certainly stays, without SSG.
uint32_t QuietClocks(uint32_t counter, const YM2612_SLOT& slot) {
    const auto untilStep = [&](YM2612_RATE rate, bool zeroStepChanges) {
        if (rate.select == kYm2612StepNever) {
            return zeroStepChanges ? 0 : kNever;
        }
        const uint32_t last = (1u << rate.shift) - 1;
        return last - (counter & last);
    };
    switch (slot.state) {
    case Ym2612Envelope::kRelease: return untilStep(slot.release, slot.volume >= kYm2612Silent);
    case Ym2612Envelope::kSustain: return untilStep(slot.sustain, slot.volume > kYm2612Silent);
    case Ym2612Envelope::kDecay:
        return untilStep(slot.decay, slot.volume >= static_cast<int32_t>(slot.sl));
    case Ym2612Envelope::kAttack: return untilStep(slot.attack, slot.volume <= 0);
    default: return kNever;
    }
}

uint32_t QuietClocks(const YM2612& ym) {
    uint32_t quiet = kNever;
    for (const YM2612_CHANNEL& channel : ym.channels) {
        for (const YM2612_SLOT& slot : channel.slots) {
            quiet = std::min(quiet, QuietClocks(ym.egCounter, slot));
            if (quiet == 0) {
                return 0;
            }
        }
    }
    return quiet;
}

// The envelopes' part of a span. Only its last sample may have a clock in which one of them changes.
void AdvanceQuietEnvelopes(YM2612& ym, uint32_t samples) {
    ym.egTimer += samples * kYm2612EgTimerAdd;
    for (; ym.egTimer >= kYm2612EgTimerOverflow; ym.egTimer -= kYm2612EgTimerOverflow) {
        if (ym.egQuiet != 0) {
            ++ym.egCounter;
            --ym.egQuiet;
        } else {
            ClockEnvelopes(ym);
            ym.egQuiet = QuietClocks(ym);
        }
    }
}

// Of the next samples, at most `samples`, those in which operators change nothing but their phases: from one step of
// an envelope to the next, at the same position of the LFO. 0 if an SSG shape, CSM or a new pitch may change more.
uint32_t SpanLength(const YM2612& ym, uint32_t samples) {
    const bool isCsm = ym.csmKey != 0 || (ym.mode & kYm2612SpecialBits) == kYm2612Csm;
    if (ym.recalculate || ym.ssgSlots != 0 || isCsm) {
        return 0;
    }
    const uint32_t toClock =
        (kYm2612EgTimerOverflow - ym.egTimer + kYm2612EgTimerAdd - 1) / kYm2612EgTimerAdd;
    constexpr uint32_t kSamplesAClock = kYm2612EgTimerOverflow / kYm2612EgTimerAdd;
    const uint32_t toStep = toClock + std::min(ym.egQuiet, kMostSpan) * kSamplesAClock;
    const uint32_t span = std::min({samples, toStep, kMostSpan});
    if (ym.lfoIncrement == 0) {
        return span;
    }
    const uint32_t last = ym.lfoCounter + (span - 1) * ym.lfoIncrement;
    const bool stays = ym.lfoCounter >> kLfoFraction == last >> kLfoFraction;
    return stays && ym.lfoAm == LfoAmAt(last) && ym.lfoPm == LfoPmAt(last) ? span : 0;
}

struct SPAN_OPERATOR {
    uint32_t phase;
    uint32_t step;
    uint32_t attenuation; // as the level table counts

    int32_t Next(uint32_t modulation) {
        const uint32_t angle = (phase & kWholePhase) + modulation;
        phase += step;
        const uint32_t p =
            kYm2612Tables.sine[angle >> kPhaseShift & (kYm2612SineLength - 1)] + attenuation;
        return p < kYm2612Levels ? kYm2612Tables.level[p] : 0;
    }
};

using SPAN_OUTPUT = std::array<int32_t, kMostSpan>;

// Returns false if the channel is silent.
bool RunChannel(YM2612& ym, size_t index, uint32_t samples, SPAN_OUTPUT& output) {
    YM2612_CHANNEL& channel = ym.channels[index];
    const uint32_t lfoAttenuation = ym.lfoAm >> channel.ams;
    std::array<SPAN_OPERATOR, kYm2612Slots> operators;
    uint32_t least = kYm2612Levels;
    for (size_t i = 0; i < kYm2612Slots; ++i) {
        YM2612_SLOT& slot = channel.slots[i];
        const uint32_t step = channel.pms != 0
                                  ? VibratoStep(ym, channel, slot, Ym2612SlotPitch(ym, index, i))
                                  : static_cast<uint32_t>(slot.phaseStep);
        const uint32_t attenuation = (slot.volOut + (slot.amMask & lfoAttenuation)) * 8;
        operators[i] = {slot.phase, step, attenuation};
        slot.phase += step * samples;
        least = std::min(least, attenuation);
    }
    auto [older, newer] = channel.operator1Out;
    if (least >= kYm2612Levels) {
        channel.operator1Out = {samples == 1 ? newer : 0, 0};
        return false;
    }
    const uint32_t feedback = channel.feedback;
    const uint32_t algorithm = channel.algorithm;
    for (uint32_t i = 0; i < samples; ++i) {
        const int32_t one = operators[kYm2612Operator1].Next(Feedback(feedback, older, newer));
        older = newer;
        newer = one;
        output[i] = RunAlgorithm(algorithm, one, [&](size_t place, int32_t modulator) {
            return operators[place].Next(static_cast<uint32_t>(modulator) << kModulationShift);
        });
    }
    channel.operator1Out = {older, newer};
    return true;
}

void MakeSpan(YM2612& ym, uint32_t samples) {
    SPAN_OUTPUT left{};
    SPAN_OUTPUT right{};
    for (size_t i = 0; i < kYm2612Channels; ++i) {
        const YM2612_CHANNEL& channel = ym.channels[i];
        SPAN_OUTPUT output{};
        bool sounds = RunChannel(ym, i, samples, output);
        if (i == kYm2612Dac && ym.dacEnabled != 0) {
            output.fill(ym.dacOut);
            sounds = true;
        }
        ym.channelOut[i] = output[samples - 1];
        for (uint32_t at = 0; sounds && at < samples; ++at) {
            left[at] += output[at] & static_cast<int32_t>(channel.leftMask);
            right[at] += output[at] & static_cast<int32_t>(channel.rightMask);
        }
    }
    if (ym.lfoIncrement != 0) {
        ym.lfoCounter += (samples - 1) * ym.lfoIncrement;
        AdvanceLfo(ym);
    }
    AdvanceQuietEnvelopes(ym, samples);
    for (uint32_t at = 0; at < samples; ++at) {
        AdvanceTimers(ym);
        ym.pairs->Add(Clip(left[at]), Clip(right[at]));
    }
}

} // namespace

void Ym2612MakeSample(YM2612& ym) {
    if (ym.recalculate) {
        RecalculateMarked(ym);
    }
    if (ym.ssgSlots != 0) {
        EndRamps(ym);
    }
    RunChannels(ym);
    AdvanceLfo(ym);
    AdvanceEnvelopes(ym);

    int32_t left = 0;
    int32_t right = 0;
    for (size_t i = 0; i < kYm2612Channels; ++i) {
        const auto out = static_cast<uint32_t>(ym.channelOut[i]);
        left += static_cast<int32_t>(out & ym.channels[i].leftMask);
        right += static_cast<int32_t>(out & ym.channels[i].rightMask);
    }
    AdvanceTimers(ym);

    ym.pairs->Add(Clip(left), Clip(right));
}

void Ym2612MakeSamples(YM2612& ym, uint32_t samples) {
    while (samples != 0) {
        const uint32_t span = SpanLength(ym, samples);
        if (span != 0) {
            MakeSpan(ym, span);
        } else {
            Ym2612MakeSample(ym);
        }
        samples -= std::max(span, 1u);
    }
}
