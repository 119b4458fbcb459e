// Clocking: low-frequency oscillators, operators, rhythm, envelopes, phases and noise.
#include "sega8/ym2413.h"

#include "machine/state_piece.h"
#include "sega8/ym2413_private.h"
#include "sega8/ym2413_tables.h"

#include <algorithm>
#include <memory>

namespace {

constexpr uint32_t kEnvelopeLimit = 176; // at this attenuation and above an operator is silent
constexpr int32_t kSilent = 255;

constexpr uint32_t kTremoloWrap = kYmTremoloLength << 24;
constexpr uint32_t kTremoloStep = 262'144; // an entry of the table every 64 samples
constexpr uint32_t kVibratoStep = 16'384;  // a column every 1,024 samples
constexpr uint32_t kWholeStep = 65'536;    // 1 with 16 bits of fraction
constexpr uint32_t kNoiseTaps = 0x800302;

constexpr uint32_t kPhaseShift = 16;

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

// Clocks the modulator and gives the carrier's output. The carrier hears what the modulator put out
// in the sample before.
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

// One of the rhythm's operators at a phase of ten bits of its own making.
int32_t RhythmOperator(const YM2413& ym, const YM_SLOT& slot, uint32_t phaseWord) {
    const uint32_t envelope = Envelope(ym, slot);
    return envelope < kEnvelopeLimit
               ? Operator(phaseWord << kPhaseShift, 0, envelope, slot.wavetable)
               : 0;
}

// Hi-hat, snare and cymbal have square phases, made from bits of two oscillators and the noise.
// Everything is counted twice.
int32_t RhythmOutput(YM2413& ym) {
    const bool noise = Bit(ym.noiseRng, 0);
    const YM_SLOT& hat = ym.channels[kYmHatAndSnare].slots[kYmModulator];
    const YM_SLOT& snare = ym.channels[kYmHatAndSnare].slots[kYmCarrier];
    const YM_SLOT& tom = ym.channels[kYmTomAndCymbal].slots[kYmModulator];
    const YM_SLOT& cymbal = ym.channels[kYmTomAndCymbal].slots[kYmCarrier];
    const uint32_t a = hat.phase;
    const uint32_t b = cymbal.phase;
    const bool metal = Bit(b, 21) || Bit(b, 19) || Bit(a, 23) != Bit(a, 18) || Bit(a, 19);

    uint32_t hatWord = metal ? 0x234 : 0xD0;
    if (noise) {
        hatWord = metal ? 0x2D0 : 0x34;
    }
    uint32_t snareWord = Bit(a, 24) ? 0x200 : 0x100;
    if (noise) {
        snareWord = Bit(a, 24) ? 0x300 : 0;
    }
    int32_t sum = ChannelOutput(ym, ym.channels[kYmBassDrum]);
    sum += RhythmOperator(ym, hat, hatWord);
    sum += RhythmOperator(ym, snare, snareWord);
    sum += RhythmOperator(ym, tom, tom.phase >> kPhaseShift);
    sum += RhythmOperator(ym, cymbal, metal ? 0x300 : 0x100);
    return sum * 2;
}

// --- envelopes --------------------------------------------------------------------------------

// Whether a rate steps now, and by how much.
bool Steps(uint32_t counter, const YM_RATE& rate, int32_t& increment) {
    if ((counter & ((1u << rate.shift) - 1)) != 0) {
        return false;
    }
    increment = kYmSteps[rate.select + (counter >> rate.shift & 7)];
    return true;
}

void StepDump(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!Steps(counter, slot.dump, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= kSilent) {
        slot.volume = kSilent;
        slot.state = YmEnvelope::kAttack;
        slot.phase = 0;
    }
}

void StepAttack(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!Steps(counter, slot.attack, increment)) {
        return;
    }
    slot.volume += (increment * ~slot.volume) >> 2;
    if (slot.volume < 1) {
        slot.volume = 0;
        slot.state = YmEnvelope::kDecay;
    }
}

void StepDecay(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (!Steps(counter, slot.decay, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= static_cast<int32_t>(slot.sl)) {
        slot.state = YmEnvelope::kSustain;
    }
}

void StepSustain(uint32_t counter, YM_SLOT& slot) {
    int32_t increment = 0;
    if (slot.egType == 0 && Steps(counter, slot.release, increment)) {
        slot.volume = std::min(slot.volume + increment, kSilent);
    }
}

void StepRelease(uint32_t counter, YM_SLOT& slot, bool channelSustain) {
    const bool slow = slot.egType == 0 || channelSustain;
    int32_t increment = 0;
    if (!Steps(counter, slow ? slot.sustainRelease : slot.release, increment)) {
        return;
    }
    slot.volume += increment;
    if (slot.volume >= kSilent) {
        slot.volume = kSilent;
        slot.state = YmEnvelope::kOff;
    }
}

// A modulator keeps its level when the key goes up, except in the channels of the rhythm.
void StepEnvelope(const YM2413& ym, size_t channel, size_t index, YM_SLOT& slot) {
    switch (slot.state) {
    case YmEnvelope::kOff: break;
    case YmEnvelope::kRelease:
        if (index == kYmCarrier || (channel >= kYmBassDrum && (ym.rhythm & kYmRhythmOn) != 0)) {
            StepRelease(ym.egCounter, slot, ym.channels[channel].sustain != 0);
        }
        break;
    case YmEnvelope::kSustain: StepSustain(ym.egCounter, slot); break;
    case YmEnvelope::kDecay: StepDecay(ym.egCounter, slot); break;
    case YmEnvelope::kAttack: StepAttack(ym.egCounter, slot); break;
    case YmEnvelope::kDump: StepDump(ym.egCounter, slot); break;
    }
}

void AdvanceEnvelopes(YM2413& ym) {
    ym.egTimer += ym.egTimerAdd;
    while (ym.egTimer >= ym.egTimerOverflow) {
        ym.egTimer -= ym.egTimerOverflow;
        ++ym.egCounter;
        for (size_t i = 0; i < kYmChannels; ++i) {
            StepEnvelope(ym, i, kYmModulator, ym.channels[i].slots[kYmModulator]);
            StepEnvelope(ym, i, kYmCarrier, ym.channels[i].slots[kYmCarrier]);
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

void AdvancePhases(YM2413& ym) {
    for (YM_CHANNEL& channel : ym.channels) {
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
    if (ym.lfoAmCnt >= kTremoloWrap) {
        ym.lfoAmCnt -= kTremoloWrap;
    }
    ym.lfoAm = kYmTremolo[ym.lfoAmCnt >> 24] >> 1u;
    ym.lfoPmCnt += ym.lfoPmInc;
    ym.lfoPm = ym.lfoPmCnt >> 24 & 7;
}

// --- state ------------------------------------------------------------------------------------

template <typename Visit>
void RateFields(YM_RATE& rate, Visit& visit) {
    visit(rate.shift);
    visit(rate.select);
}

template <typename Visit>
void SlotFields(YM_SLOT& slot, Visit& visit) {
    visit(slot.ar);
    visit(slot.dr);
    visit(slot.rr);
    visit(slot.ksr);
    visit(slot.ksl);
    visit(slot.kscale);
    visit(slot.mul);
    visit(slot.phase);
    visit(slot.incr);
    visit(slot.fbOut);
    visit(slot.egType);
    visit(slot.state);
    visit(slot.tl);
    visit(slot.tll);
    visit(slot.volume);
    visit(slot.sl);
    RateFields(slot.attack, visit);
    RateFields(slot.decay, visit);
    RateFields(slot.release, visit);
    RateFields(slot.sustainRelease, visit);
    RateFields(slot.dump, visit);
    visit(slot.key);
    visit(slot.amMask);
    visit(slot.vib);
    visit(slot.wavetable);
}

// Every field in the order of the piece. What YmInit alone sets isn't there.
template <typename Visit>
void Fields(YM2413& ym, Visit& visit) {
    visit(ym.instVol);
    visit(ym.instrument);
    visit(ym.rhythm);
    visit(ym.egCounter);
    visit(ym.egTimer);
    visit(ym.lfoAmCnt);
    visit(ym.lfoPmCnt);
    visit(ym.lfoAm);
    visit(ym.lfoPm);
    visit(ym.noiseRng);
    visit(ym.noiseP);
    visit(ym.tick);
    visit(ym.outMelody);
    visit(ym.outRhythm);
    for (YM_CHANNEL& channel : ym.channels) {
        visit(channel.blockFnum);
        visit(channel.fc);
        visit(channel.kslBase);
        visit(channel.kcode);
        visit(channel.sustain);
        visit(channel.fb);
        SlotFields(channel.slots[kYmModulator], visit);
        SlotFields(channel.slots[kYmCarrier], visit);
    }
}

void MakeSafe(YM_RATE& rate) {
    rate.shift &= 15;
    rate.select = std::min<uint8_t>(rate.select & 0x78, kYmStepLast);
}

void MakeSafe(YM_SLOT& slot) {
    constexpr uint32_t kHighestRate = 15 * 4 + 16;
    slot.ar = std::min(slot.ar, kHighestRate);
    slot.dr = std::min(slot.dr, kHighestRate);
    slot.rr = std::min(slot.rr, kHighestRate);
    slot.ksr &= 2;
    slot.ksl &= 31;
    slot.kscale &= 15;
    slot.egType &= 1;
    if (slot.state > YmEnvelope::kDump) {
        slot.state = YmEnvelope::kOff;
    }
    slot.tl &= 127;
    slot.tll &= 255;
    slot.volume = std::clamp(slot.volume, 0, kSilent);
    slot.sl &= 127;
    for (YM_RATE* rate :
         {&slot.attack, &slot.decay, &slot.release, &slot.sustainRelease, &slot.dump}) {
        MakeSafe(*rate);
    }
    slot.key &= kYmKeyMelody | kYmKeyRhythm;
    slot.wavetable &= kYmSineLength;
    for (int32_t& output : slot.fbOut) {
        output = std::clamp(output, -kYmWaves.tl[0], kYmWaves.tl[0]);
    }
}

// Brings whatever was loaded into the ranges that the chip itself keeps to.
void MakeSafe(YM2413& ym) {
    ym.rhythm &= 63;
    ym.egTimer %= ym.egTimerOverflow;
    ym.lfoAmCnt %= kTremoloWrap;
    ym.lfoPm &= 7;
    ym.noiseP &= 0xFFFF;
    ym.tick %= kYmClocksPerSample;
    for (YM_CHANNEL& channel : ym.channels) {
        channel.blockFnum &= 0xFFF;
        channel.kslBase &= 127;
        channel.kcode &= 15;
        channel.fb &= 15;
        MakeSafe(channel.slots[kYmModulator]);
        MakeSafe(channel.slots[kYmCarrier]);
    }
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
    YmWrite(ym, 15, 0);
    for (uint8_t reg = 63; reg >= 16; --reg) {
        YmWrite(ym, reg, 0);
    }
    for (YM_CHANNEL& channel : ym.channels) {
        for (YM_SLOT& slot : channel.slots) {
            slot.state = YmEnvelope::kOff;
            slot.volume = kSilent;
        }
    }
}

void YmMakeSample(YM2413& ym) {
    ym.outMelody = 0;
    ym.outRhythm = 0;
    AdvanceOscillators(ym);

    const bool rhythm = (ym.rhythm & kYmRhythmOn) != 0;
    const size_t melodyChannels = rhythm ? kYmBassDrum : kYmChannels;
    for (size_t i = 0; i < melodyChannels; ++i) {
        ym.outMelody += ChannelOutput(ym, ym.channels[i]);
    }
    if (rhythm) {
        ym.outRhythm = RhythmOutput(ym);
    }
    const auto sample =
        static_cast<int16_t>(std::clamp((ym.outMelody + ym.outRhythm) * 4, -32768, 32767));
    ym.pairs->Add(sample, sample);

    AdvanceEnvelopes(ym);
    AdvancePhases(ym);
    AdvanceNoise(ym);
}

uint32_t YmStateSize() {
    static const uint32_t kSize = [] {
        const auto ym = std::make_unique<YM2413>();
        return StatePieceSize([&](auto& visit) { Fields(*ym, visit); });
    }();
    return kSize;
}

uint8_t* YmSaveState(const YM2413& ym, uint8_t* out) {
    auto& fields =
        const_cast<YM2413&>(ym); // The visitor that only reads is the one that also writes.
    return StatePieceWrite(out, [&](auto& visit) { Fields(fields, visit); });
}

uint32_t YmLoadState(YM2413& ym, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { Fields(ym, visit); });
    if (used != 0) {
        MakeSafe(ym);
    }
    return used;
}
