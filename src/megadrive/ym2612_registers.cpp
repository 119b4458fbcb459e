// Writes to the YM2612's registers, and the keys.
#include "megadrive/ym2612_private.h"
#include "megadrive/ym2612_tables.h"

namespace {

constexpr uint16_t kSecondPort = 0x100;
constexpr uint32_t kNoChannel = 3;       // in a register's or a key's low two bits
constexpr uint32_t kSlotRegister = 0xF0; // the bits of a register's number that are its kind
constexpr uint32_t kChannelRegister = 0xFC;
constexpr uint32_t kChannelBits = 0x03; // and its channel, of three a port
constexpr uint32_t kChannelsAPort = 3;

uint32_t RateOf(uint8_t value) {
    const uint32_t rate = value & kYm2612RateBits;
    return rate != 0 ? rate * 2 + 32 : 0;
}

// --- operators ----------------------------------------------------------------------------------

void WriteMultiple(YM2612& ym, YM2612_CHANNEL& channel, YM2612_SLOT& slot, uint8_t value) {
    const uint32_t multiple = value & kYm2612MultipleBits;
    slot.mul = multiple != 0 ? multiple * 2 : 1;
    slot.dt = value >> 4u & 7u;
    Ym2612Mark(ym, channel);
}

void WriteAttack(YM2612& ym, YM2612_CHANNEL& channel, YM2612_SLOT& slot, uint8_t value) {
    const auto shift = static_cast<uint8_t>(3 - (value >> 6u));
    slot.ar = RateOf(value);
    if (shift != slot.ksrShift) {
        slot.ksrShift = shift;
        Ym2612Mark(ym, channel);
    }
    Ym2612RefreshAttack(slot);
}

void WriteRelease(YM2612_SLOT& slot, uint8_t value) {
    slot.sl = kYm2612SustainLevel[value >> 4u];
    slot.rr = (value & kYm2612ReleaseBits) * 4 + 34;
    if (slot.state == Ym2612Envelope::kDecay && slot.volume >= static_cast<int32_t>(slot.sl)) {
        slot.state = Ym2612Envelope::kSustain;
    }
    Ym2612RefreshRelease(slot);
}

void WriteSsg(YM2612& ym, size_t channel, size_t index, uint8_t value) {
    YM2612_SLOT& slot = ym.channels[channel].slots[index];
    slot.ssg = value & kYm2612SsgBits;
    const uint32_t bit = 1u << (channel * kYm2612Slots + index);
    ym.ssgSlots = (slot.ssg & kYm2612SsgOn) != 0 ? ym.ssgSlots | bit : ym.ssgSlots & ~bit;
    if (slot.state > Ym2612Envelope::kRelease) {
        Ym2612RefreshLevel(slot);
    }
}

void WriteSlot(YM2612& ym, size_t channelIndex, size_t index, uint32_t reg, uint8_t value) {
    YM2612_CHANNEL& channel = ym.channels[channelIndex];
    YM2612_SLOT& slot = channel.slots[index];
    switch (reg & kSlotRegister) {
    case kYm2612RegMultiple: WriteMultiple(ym, channel, slot, value); break;
    case kYm2612RegLevel:
        slot.tl = (value & kYm2612LevelBits) * 8;
        Ym2612RefreshLevel(slot);
        break;
    case kYm2612RegAttack: WriteAttack(ym, channel, slot, value); break;
    case kYm2612RegDecay:
        slot.d1r = RateOf(value);
        slot.amMask = (value & kYm2612AmOn) != 0 ? ~0u : 0;
        Ym2612RefreshDecay(slot);
        break;
    case kYm2612RegSustain:
        slot.d2r = RateOf(value);
        Ym2612RefreshSustain(slot);
        break;
    case kYm2612RegRelease: WriteRelease(slot, value); break;
    default: WriteSsg(ym, channelIndex, index, value); break;
    }
}

// --- channels -----------------------------------------------------------------------------------

void SetPitch(YM2612_PITCH& pitch, uint8_t latch, uint8_t low) {
    const uint32_t block = latch >> 3u;
    const uint32_t fnum = (latch & kYm2612FnumHigh) << 8 | low;
    pitch.blockFnum = block << 11 | fnum;
    pitch.keyCode = static_cast<uint8_t>(block << 2 | kYm2612KeyTable[fnum >> 7]);
    pitch.fc = Ym2612PhaseStepOf(fnum * 2, block);
}

void WriteAlgorithm(YM2612_CHANNEL& channel, uint8_t value) {
    const auto feedback = static_cast<uint8_t>(value >> 3u & 7u);
    channel.algorithm = value & kYm2612AlgorithmBits;
    channel.feedback = feedback != 0 ? static_cast<uint8_t>(feedback + 6) : uint8_t{0};
}

void WriteSides(YM2612_CHANNEL& channel, uint8_t value) {
    constexpr std::array<uint8_t, 4> kAmShift{8, 3, 1, 0}; // 0, 1.4, 5.9, 11.8 dB
    channel.leftMask = (value & kYm2612Left) != 0 ? ~0u : 0;
    channel.rightMask = (value & kYm2612Right) != 0 ? ~0u : 0;
    channel.ams = kAmShift[value >> 4u & 3u];
    channel.pms = (value & kYm2612VibratoBits) * kYm2612LfoPositions;
}

void WriteChannel(YM2612& ym, size_t channelIndex, uint32_t reg, uint8_t value) {
    YM2612_CHANNEL& channel = ym.channels[channelIndex];
    const bool firstPort = channelIndex < kChannelsAPort;
    switch (reg & kChannelRegister) {
    case kYm2612RegPitchLow:
        SetPitch(channel.pitch, ym.fnHighLatch, value);
        Ym2612Mark(ym, channel);
        break;
    case kYm2612RegPitchHigh: ym.fnHighLatch = value & kYm2612PitchHighBits; break;
    case kYm2612RegChannel3Low:
        if (firstPort) {
            SetPitch(ym.channel3[reg & kChannelBits], ym.channel3Latch, value);
            Ym2612Mark(ym, ym.channels[kYm2612Special]);
        }
        break;
    case kYm2612RegChannel3High:
        if (firstPort) {
            ym.channel3Latch = value & kYm2612PitchHighBits;
        }
        break;
    case kYm2612RegAlgorithm: WriteAlgorithm(channel, value); break;
    case kYm2612RegSides: WriteSides(channel, value); break;
    default: break;
    }
}

// --- the chip -----------------------------------------------------------------------------------

void WriteLfo(YM2612& ym, uint8_t value) {
    if ((value & kYm2612LfoOn) == 0) {
        ym.lfoIncrement = 0;
        return;
    }
    if (ym.lfoIncrement == 0) {
        ym.lfoCounter = 0;
        ym.lfoAm = 0;
        ym.lfoPm = 0;
    }
    ym.lfoIncrement = kYm2612LfoSteps[value & 7u];
}

void WriteMode(YM2612& ym, uint8_t value) {
    if (((ym.mode ^ value) & kYm2612SpecialBits) != 0) {
        YM2612_CHANNEL& channel = ym.channels[kYm2612Special];
        Ym2612Mark(ym, channel);
        if ((value & kYm2612SpecialBits) != kYm2612Csm && ym.csmKey != 0) {
            for (YM2612_SLOT& slot : channel.slots) {
                if (slot.keyOn == 0) {
                    Ym2612KeyOff(slot);
                }
            }
            ym.csmKey = 0;
        }
    }
    if ((value & kYm2612ClearB) != 0) {
        ym.status &= static_cast<uint8_t>(~kYm2612TimerB);
    }
    if ((value & kYm2612ClearA) != 0) {
        ym.status &= static_cast<uint8_t>(~kYm2612TimerA);
    }
    if ((ym.status & ym.irqMask) == 0) {
        ym.irq = 0;
    }
    const auto rising = static_cast<uint8_t>(value & ~ym.mode);
    if ((rising & kYm2612RunB) != 0) {
        ym.timerBCount = static_cast<int32_t>((256 - ym.timerB) << 4);
    }
    if ((rising & kYm2612RunA) != 0) {
        ym.timerACount = static_cast<int32_t>(1024 - ym.timerA);
    }
    ym.mode = value;
}

void WriteKeys(YM2612& ym, uint8_t value) {
    if ((value & kYm2612KeyChannel) == kNoChannel) {
        return;
    }
    constexpr std::array<size_t, kYm2612Slots> kSlotOfBit{kYm2612Operator1, kYm2612Operator2,
                                                          kYm2612Operator3, kYm2612Operator4};
    const size_t first = (value & kYm2612KeySecondPort) != 0 ? kChannelsAPort : 0;
    YM2612_CHANNEL& channel = ym.channels[first + (value & kYm2612KeyChannel)];
    for (uint32_t i = 0; i < kYm2612Slots; ++i) {
        YM2612_SLOT& slot = channel.slots[kSlotOfBit[i]];
        if ((value >> (kYm2612KeyShift + i) & 1) != 0) {
            Ym2612KeyOn(ym, slot);
            slot.keyOn = 1;
        } else {
            if (slot.keyOn != 0 && ym.csmKey == 0) {
                Ym2612KeyOff(slot);
            }
            slot.keyOn = 0;
        }
    }
}

void WriteChip(YM2612& ym, uint32_t reg, uint8_t value) {
    switch (reg) {
    case kYm2612RegLfo: WriteLfo(ym, value); break;
    case kYm2612RegTimerAHigh:
        ym.timerA = (ym.timerA & kYm2612TimerALowBits) | uint32_t{value} << 2;
        break;
    case kYm2612RegTimerALow:
        ym.timerA = (ym.timerA & ~kYm2612TimerALowBits) | (value & kYm2612TimerALowBits);
        break;
    case kYm2612RegTimerB: ym.timerB = value; break;
    case kYm2612RegMode: WriteMode(ym, value); break;
    case kYm2612RegKeys: WriteKeys(ym, value); break;
    case kYm2612RegDac: ym.dacOut = (value - 128) * 64; break;
    case kYm2612RegDacEnable: ym.dacEnabled = value & kYm2612DacOn; break;
    default: break;
    }
}

void WriteData(YM2612& ym, uint8_t value) {
    const uint32_t reg = ym.address & 0xFFu;
    const bool secondPort = (ym.address & kSecondPort) != 0;
    if (reg >= kYm2612RegMultiple || reg == kYm2612RegKeys) {
        ym.egQuiet = 0;
    }
    if (reg < kYm2612RegMultiple) {
        if (!secondPort) {
            WriteChip(ym, reg, value);
        }
        return;
    }
    if ((reg & kChannelBits) == kNoChannel) {
        return;
    }
    const size_t channel = (reg & kChannelBits) + (secondPort ? kChannelsAPort : 0);
    if (reg < kYm2612RegPitchLow) {
        WriteSlot(ym, channel, reg >> 2 & 3, reg, value);
    } else {
        WriteChannel(ym, channel, reg, value);
    }
}

} // namespace

void Ym2612Write(YM2612& ym, uint32_t port, uint8_t value) {
    switch (port & 3) {
    case 0: ym.address = value; break;
    case 2: ym.address = static_cast<uint16_t>(value | kSecondPort); break;
    default: WriteData(ym, value); break;
    }
}

void Ym2612KeyOn(const YM2612& ym, YM2612_SLOT& slot) {
    if (slot.keyOn != 0 || ym.csmKey != 0) {
        return;
    }
    slot.phase = 0;
    slot.ssgInverted = 0;
    if (Ym2612AttacksAtOnce(slot) || slot.volume <= 0) {
        Ym2612BeginDecay(slot);
    } else {
        slot.state = Ym2612Envelope::kAttack;
    }
    Ym2612RefreshLevel(slot);
}

// A release starts from the level that is heard, so an inverted SSG shape is inverted back.
void Ym2612KeyOff(YM2612_SLOT& slot) {
    if (slot.state <= Ym2612Envelope::kRelease) {
        return;
    }
    slot.state = Ym2612Envelope::kRelease;
    if ((slot.ssg & kYm2612SsgOn) != 0) {
        if (slot.ssgInverted != (slot.ssg & kYm2612SsgAttack)) {
            slot.volume = (kYm2612SsgEnd - slot.volume) & kYm2612Silent;
        }
        if (slot.volume >= kYm2612SsgEnd) {
            slot.volume = kYm2612Silent;
            slot.state = Ym2612Envelope::kOff;
        }
    }
    Ym2612RefreshLevel(slot);
}

// At the rates where a key on jumps to full volume, an attack that is going on never steps.
void Ym2612RefreshAttack(YM2612_SLOT& slot) {
    slot.attack = Ym2612AttacksAtOnce(slot) ? YM2612_RATE{0, kYm2612StepNever}
                                            : kYm2612RateTable[slot.ar + slot.ksr];
}

void Ym2612RefreshDecay(YM2612_SLOT& slot) {
    slot.decay = kYm2612RateTable[slot.d1r + slot.ksr];
}

void Ym2612RefreshSustain(YM2612_SLOT& slot) {
    slot.sustain = kYm2612RateTable[slot.d2r + slot.ksr];
}

void Ym2612RefreshRelease(YM2612_SLOT& slot) {
    slot.release = kYm2612RateTable[slot.rr + slot.ksr];
}
