// Register writes of the YM2413.
#include "sega8/ym2413.h"
#include "sega8/ym2413_private.h"
#include "sega8/ym2413_tables.h"

namespace {

constexpr size_t kFirstRhythmVoice = 16;

constexpr uint32_t kInstantAttack = 78; // rates from here on attack in one step
constexpr uint32_t kReleaseRate = 44;   // of percussive tones
constexpr uint32_t kSustainRate = 36;   // with the channel's sustain
constexpr uint32_t kDumpRate = 68;

YM_RATE RateAt(uint32_t rate) {
    return {kYmRateShift[rate], kYmRateSelect[rate]};
}

void RefreshLevel(const YM_CHANNEL& channel, YM_SLOT& slot) {
    slot.tll = slot.tl + (channel.kslBase >> slot.ksl);
}

void ReadAttack(YM_SLOT& slot) {
    const uint32_t rate = slot.ar + slot.kscale;
    slot.attack = rate >= kInstantAttack ? YM_RATE{0, kYmStepInstant} : RateAt(rate);
}

// A change of the channel's sustain bit counts from here on, not from its write on.
void RefreshRates(const YM_CHANNEL& channel, YM_SLOT& slot) {
    slot.incr = channel.fc * slot.mul;
    const auto kscale = static_cast<uint8_t>(channel.kcode >> slot.ksr);
    if (slot.kscale != kscale) {
        slot.kscale = kscale;
        ReadAttack(slot);
        slot.decay = RateAt(slot.dr + kscale);
        slot.release = RateAt(slot.rr + kscale);
    }
    slot.sustainRelease = RateAt((channel.sustain != 0 ? kSustainRate : kReleaseRate) + kscale);
    slot.dump = RateAt(kDumpRate + kscale);
}

// --- voices -------------------------------------------------------------------------------------

uint32_t RateOf(uint32_t nibble) {
    return nibble != 0 ? nibble * 4 + 16 : 0;
}

uint8_t KeyScaleShift(uint8_t value) {
    const uint32_t k = value >> 6u;
    return static_cast<uint8_t>(k != 0 ? 3 - k : 31);
}

void SetFlags(const YM_CHANNEL& channel, YM_SLOT& slot, uint8_t value) {
    slot.mul = kYmMultiple[value & kYmVoiceMultiple];
    slot.ksr = (value & kYmVoiceKeyScaleRate) != 0 ? 0 : 2;
    slot.egType = (value & kYmVoiceSustained) != 0 ? 1 : 0;
    slot.vib = value & kYmVoiceVibrato;
    slot.amMask = (value & kYmVoiceTremolo) != 0 ? ~0u : 0;
    RefreshRates(channel, slot);
}

void SetModulatorLevel(YM_CHANNEL& channel, uint8_t value) {
    YM_SLOT& slot = channel.slots[kYmModulator];
    slot.ksl = KeyScaleShift(value);
    slot.tl = (value & uint32_t{kYmVoiceLevel}) * 2;
    RefreshLevel(channel, slot);
}

void SetWavesAndFeedback(YM_CHANNEL& channel, uint8_t value) {
    YM_SLOT& carrier = channel.slots[kYmCarrier];
    channel.slots[kYmModulator].wavetable =
        (value & kYmVoiceModulatorHalfSine) != 0 ? kYmSineLength : 0;
    carrier.wavetable = (value & kYmVoiceCarrierHalfSine) != 0 ? kYmSineLength : 0;
    const uint8_t feedback = value & kYmVoiceFeedback;
    channel.fb = feedback != 0 ? static_cast<uint8_t>(feedback + 8) : uint8_t{0};
    carrier.ksl = KeyScaleShift(value);
    RefreshLevel(channel, carrier);
}

void SetAttackDecay(YM_SLOT& slot, uint8_t value) {
    slot.ar = RateOf(value >> 4u);
    slot.dr = RateOf(value & 15u);
    ReadAttack(slot);
    slot.decay = RateAt(slot.dr + slot.kscale);
}

void SetSustainRelease(YM_SLOT& slot, uint8_t value) {
    slot.sl = (value >> 4u) * 8;
    slot.rr = RateOf(value & 15u);
    slot.release = RateAt(slot.rr + slot.kscale);
}

// One of a voice's eight bytes.
void SetVoiceByte(YM_CHANNEL& channel, size_t index, uint8_t value) {
    YM_SLOT& modulator = channel.slots[kYmModulator];
    YM_SLOT& carrier = channel.slots[kYmCarrier];
    switch (index) {
    case 0: SetFlags(channel, modulator, value); break;
    case 1: SetFlags(channel, carrier, value); break;
    case 2: SetModulatorLevel(channel, value); break;
    case 3: SetWavesAndFeedback(channel, value); break;
    case 4: SetAttackDecay(modulator, value); break;
    case 5: SetAttackDecay(carrier, value); break;
    case 6: SetSustainRelease(modulator, value); break;
    default: SetSustainRelease(carrier, value); break;
    }
}

void LoadVoice(YM2413& ym, size_t channel, size_t row) {
    for (size_t i = 0; i < 8; ++i) {
        SetVoiceByte(ym.channels[channel], i, ym.instrument[row][i]);
    }
}

// --- keys ---------------------------------------------------------------------------------------

void KeyOn(YM_SLOT& slot, uint32_t holder) {
    if (slot.key == 0) {
        slot.state = YmEnvelope::kDump;
    }
    slot.key |= holder;
}

void KeyOff(YM_SLOT& slot, uint32_t holder) {
    if (slot.key == 0) {
        return;
    }
    slot.key &= ~holder;
    if (slot.key == 0 && slot.state > YmEnvelope::kRelease) {
        slot.state = YmEnvelope::kRelease;
    }
}

void SetKey(YM_SLOT& slot, uint32_t holder, bool down) {
    if (down) {
        KeyOn(slot, holder);
    } else {
        KeyOff(slot, holder);
    }
}

// --- registers ----------------------------------------------------------------------------------

void WriteUserVoice(YM2413& ym, size_t index, uint8_t value) {
    ym.instrument[0][index] = value;
    const size_t count = (ym.rhythm & kYmRhythmOn) != 0 ? kYmBassDrum : kYmChannels;
    for (size_t i = 0; i < count; ++i) {
        if (ym.instVol[i] < 16) {
            SetVoiceByte(ym.channels[i], index, value);
        }
    }
}

// Hi-hat and tom take their level from the bits that select the instrument of a melody channel.
void SetRhythmModulatorLevel(YM2413& ym, size_t channel) {
    YM_SLOT& slot = ym.channels[channel].slots[kYmModulator];
    slot.tl = (ym.instVol[channel] >> 4u) * 8;
    RefreshLevel(ym.channels[channel], slot);
}

void WriteRhythm(YM2413& ym, uint8_t value) {
    const bool on = (value & kYmRhythmOn) != 0;
    const bool wasOn = (ym.rhythm & kYmRhythmOn) != 0;
    if (on != wasOn) {
        for (size_t i = kYmBassDrum; i < kYmChannels; ++i) {
            LoadVoice(ym, i, on ? kFirstRhythmVoice + (i - kYmBassDrum) : ym.instVol[i] >> 4u);
        }
    }
    if (on && !wasOn) {
        SetRhythmModulatorLevel(ym, kYmHatAndSnare);
        SetRhythmModulatorLevel(ym, kYmTomAndCymbal);
    }
    const auto key = [&](size_t channel, size_t slot, uint8_t bit) {
        SetKey(ym.channels[channel].slots[slot], kYmKeyRhythm, on && (value & bit) != 0);
    };
    key(kYmBassDrum, kYmModulator, kYmRhythmBassDrum);
    key(kYmBassDrum, kYmCarrier, kYmRhythmBassDrum);
    key(kYmHatAndSnare, kYmModulator, kYmRhythmHat);
    key(kYmHatAndSnare, kYmCarrier, kYmRhythmSnare);
    key(kYmTomAndCymbal, kYmModulator, kYmRhythmTom);
    key(kYmTomAndCymbal, kYmCarrier, kYmRhythmCymbal);
    ym.rhythm = value & kYmRhythmBits;
}

void SetPitch(YM2413& ym, YM_CHANNEL& channel, uint32_t blockFnum) {
    if (channel.blockFnum == blockFnum) {
        return;
    }
    channel.blockFnum = blockFnum;
    channel.kcode = static_cast<uint8_t>(blockFnum >> 8);
    channel.kslBase = kYmKeyScale[blockFnum >> 5];
    channel.fc = ym.fnTab[size_t{2} * (blockFnum & kYmFnum)] >> (7 - (blockFnum >> 9));
    for (YM_SLOT& slot : channel.slots) {
        RefreshLevel(channel, slot);
        RefreshRates(channel, slot);
    }
}

void WriteKeyAndBlock(YM2413& ym, YM_CHANNEL& channel, uint8_t value) {
    const bool down = (value & kYmKeyOn) != 0;
    for (YM_SLOT& slot : channel.slots) {
        SetKey(slot, kYmKeyMelody, down);
    }
    channel.sustain = (value & kYmSustainOn) != 0 ? 1 : 0;
    SetPitch(ym, channel,
             (value & uint32_t{kYmBlockFnumHigh}) << 8 | (channel.blockFnum & kYmFnumLow));
}

void WriteInstrument(YM2413& ym, size_t channel, uint8_t value) {
    const uint8_t before = ym.instVol[channel];
    ym.instVol[channel] = value;
    YM_SLOT& carrier = ym.channels[channel].slots[kYmCarrier];
    carrier.tl = (value & 15u) * 8;
    RefreshLevel(ym.channels[channel], carrier);
    if (channel >= kYmBassDrum && (ym.rhythm & kYmRhythmOn) != 0) {
        if (channel >= kYmHatAndSnare) {
            SetRhythmModulatorLevel(ym, channel);
        }
        return;
    }
    if ((before ^ value) >= 16) {
        LoadVoice(ym, channel, value >> 4u);
    }
}

} // namespace

void YmWrite(YM2413& ym, uint8_t reg, uint8_t value) {
    // Numbers 9 to 15 of a group address channels 0 to 6 again.
    const size_t low = reg & 15u;
    const size_t channel = low >= kYmChannels ? low - kYmChannels : low;
    switch (reg & 0xF0u) {
    case kYmRegUserVoice:
        if (low < 8) {
            WriteUserVoice(ym, low, value);
        } else if (reg == kYmRegRhythm) {
            WriteRhythm(ym, value);
        }
        break;
    case kYmRegFnum: {
        YM_CHANNEL& changed = ym.channels[channel];
        SetPitch(ym, changed, (changed.blockFnum & ~kYmFnumLow) | value);
        break;
    }
    case kYmRegKey: WriteKeyAndBlock(ym, ym.channels[channel], value); break;
    case kYmRegInstrument: WriteInstrument(ym, channel, value); break;
    default: break;
    }
}
