// One sample of the YM2612: SSG ramps, operators and phases, LFO, envelopes, mix and timers.
#include "megadrive/ym2612_private.h"
#include "megadrive/ym2612_tables.h"

#include <algorithm>

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

// The eight algorithms, after operator 1. Each case runs a modulator before the operators that it modulates, so
// its output is always that of the same sample.
inline int32_t RunAlgorithm(const YM2612_CHANNEL& channel, uint32_t lfoAttenuation, int32_t one) {
    const auto run = [&](size_t place, int32_t modulator) {
        return OperatorOutput(channel.slots[place],
                              static_cast<uint32_t>(modulator) << kModulationShift, lfoAttenuation);
    };
    const auto two = [&](int32_t modulator) { return run(kYm2612Operator2, modulator); };
    const auto three = [&](int32_t modulator) { return run(kYm2612Operator3, modulator); };
    const auto four = [&](int32_t modulator) { return run(kYm2612Operator4, modulator); };
    switch (channel.algorithm) {
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

inline int32_t ChannelOutput(YM2612_CHANNEL& channel, uint32_t lfoAm) {
    const uint32_t lfoAttenuation = lfoAm >> channel.ams;
    const auto sum = static_cast<uint32_t>(channel.operator1Out[0]) +
                     static_cast<uint32_t>(channel.operator1Out[1]);
    const uint32_t feedback = channel.feedback != 0 ? sum << channel.feedback : 0;
    const int32_t one = OperatorOutput(channel.slots[kYm2612Operator1], feedback, lfoAttenuation);
    channel.operator1Out[0] = channel.operator1Out[1];
    channel.operator1Out[1] = one;
    return RunAlgorithm(channel, lfoAttenuation, one);
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
void AdvanceLfo(YM2612& ym) {
    if (ym.lfoIncrement == 0) {
        return;
    }
    ym.lfoCounter += ym.lfoIncrement;
    constexpr uint32_t kPositions = 128;
    constexpr uint32_t kTop = kPositions / 2 - 1;
    const uint32_t position = ym.lfoCounter >> 24 & (kPositions - 1);
    ym.lfoAm = (position <= kTop ? position : kPositions - 1 - position) * 2;
    ym.lfoPm = position >> 2;
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

void AdvanceEnvelopes(YM2612& ym) {
    ym.egTimer += ym.egTimerAdd;
    while (ym.egTimer >= ym.egTimerOverflow) {
        ym.egTimer -= ym.egTimerOverflow;
        ++ym.egCounter;
        for (YM2612_CHANNEL& channel : ym.channels) {
            for (YM2612_SLOT& slot : channel.slots) {
                AdvanceEnvelope(ym.egCounter, slot);
            }
        }
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
    for (YM2612_SLOT& slot : ym.channels[kYm2612Special].slots) {
        Ym2612KeyOn(ym, slot);
    }
    ym.csmKey = 1;
}

// `csmKey` in the sample after the one that set it.
constexpr uint8_t kCsmKeyEnds = 2;

void CsmKeysOff(YM2612& ym) {
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
