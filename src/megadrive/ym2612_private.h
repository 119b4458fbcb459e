// What the YM2612's registers and its samples share: register bits, places of operators, keys and levels.
#pragma once

#include "megadrive/ym2612.h"

#include <cstddef>
#include <cstdint>

// Places in the order of the registers.
inline constexpr size_t kYm2612Operator1 = 0;
inline constexpr size_t kYm2612Operator3 = 1;
inline constexpr size_t kYm2612Operator2 = 2;
inline constexpr size_t kYm2612Operator4 = 3;

inline constexpr size_t kYm2612Special = 2; // channel 3: CSM and a pitch per operator
inline constexpr size_t kYm2612Dac = 5;     // channel 6

// Numbers of the registers of the whole chip.
inline constexpr uint32_t kYm2612RegLfo = 0x22;
inline constexpr uint32_t kYm2612RegTimerAHigh = 0x24;
inline constexpr uint32_t kYm2612RegTimerALow = 0x25;
inline constexpr uint32_t kYm2612RegTimerB = 0x26;
inline constexpr uint32_t kYm2612RegMode = 0x27;
inline constexpr uint32_t kYm2612RegKeys = 0x28;
inline constexpr uint32_t kYm2612RegDac = 0x2A;
inline constexpr uint32_t kYm2612RegDacEnable = 0x2B;

// Registers of slots, from here on: bits 4 to 7 are the kind, 2 and 3 the slot, 0 and 1 the channel.
inline constexpr uint32_t kYm2612RegMultiple = 0x30; // and detune
inline constexpr uint32_t kYm2612RegLevel = 0x40;
inline constexpr uint32_t kYm2612RegAttack = 0x50; // and key scale
inline constexpr uint32_t kYm2612RegDecay = 0x60;  // and the LFO's attenuation
inline constexpr uint32_t kYm2612RegSustain = 0x70;
inline constexpr uint32_t kYm2612RegRelease = 0x80; // and sustain level
inline constexpr uint32_t kYm2612RegSsg = 0x90;

// Registers of channels, from here on: bits 2 to 7 are the kind, 0 and 1 the channel.
inline constexpr uint32_t kYm2612RegPitchLow = 0xA0;
inline constexpr uint32_t kYm2612RegPitchHigh = 0xA4;
inline constexpr uint32_t kYm2612RegChannel3Low = 0xA8;
inline constexpr uint32_t kYm2612RegChannel3High = 0xAC;
inline constexpr uint32_t kYm2612RegAlgorithm = 0xB0; // and feedback
inline constexpr uint32_t kYm2612RegSides = 0xB4;     // and the LFO's depths

inline constexpr uint8_t kYm2612LfoOn = 0x08; // of register 0x22
inline constexpr uint8_t kYm2612DacOn = 0x80; // of register 0x2B
inline constexpr uint8_t kYm2612AmOn = 0x80;  // of registers 0x60
inline constexpr uint8_t kYm2612Left = 0x80;  // of registers 0xB4
inline constexpr uint8_t kYm2612Right = 0x40;

// Bits of register 0x27.
inline constexpr uint8_t kYm2612RunA = 0x01;
inline constexpr uint8_t kYm2612RunB = 0x02;
inline constexpr uint8_t kYm2612FlagA = 0x04;
inline constexpr uint8_t kYm2612FlagB = 0x08;
inline constexpr uint8_t kYm2612ClearA = 0x10;
inline constexpr uint8_t kYm2612ClearB = 0x20;
inline constexpr uint8_t kYm2612OwnPitches = 0x40;
inline constexpr uint8_t kYm2612SpecialBits = 0xC0;
inline constexpr uint8_t kYm2612Csm = 0x80; // of the bits above

// Register 0x28: a channel of its port, the second port, and a key for each operator.
inline constexpr uint8_t kYm2612KeyChannel = 0x03;
inline constexpr uint8_t kYm2612KeySecondPort = 0x04;
inline constexpr uint32_t kYm2612KeyShift = 4;

// The fields of the registers of slots and channels.
inline constexpr uint32_t kYm2612MultipleBits = 0x0F;  // of 0x30; detune is above
inline constexpr uint32_t kYm2612LevelBits = 0x7F;     // of 0x40
inline constexpr uint32_t kYm2612RateBits = 0x1F;      // of 0x50, 0x60 and 0x70
inline constexpr uint32_t kYm2612ReleaseBits = 0x0F;   // of 0x80; the sustain level is above
inline constexpr uint8_t kYm2612SsgBits = 0x0F;        // of 0x90
inline constexpr uint8_t kYm2612PitchHighBits = 0x3F;  // of 0xA4 and 0xAC: block and F-number
inline constexpr uint32_t kYm2612FnumHigh = 0x07;      // of these
inline constexpr uint8_t kYm2612AlgorithmBits = 0x07;  // of 0xB0; feedback is above
inline constexpr uint32_t kYm2612VibratoBits = 0x07;   // of 0xB4
inline constexpr uint32_t kYm2612TimerALowBits = 0x03; // of 0x25

// Bits of a slot's `ssg`.
inline constexpr uint8_t kYm2612SsgOn = 8;
inline constexpr uint8_t kYm2612SsgAttack = 4;
inline constexpr uint8_t kYm2612SsgAlternate = 2;
inline constexpr uint8_t kYm2612SsgHold = 1;

inline constexpr int32_t kYm2612Silent = 1023;
inline constexpr int32_t kYm2612SsgEnd = 512; // the level at which a ramp of an SSG envelope ends

// From this sum of rate and key scale on, an attack takes no time.
inline constexpr uint32_t kYm2612InstantAttack = 94;

// Blocks below 7 lose the lower bits of a frequency. F-numbers are counted in halves, because the LFO moves
// them by halves: there are 4,096 of them.
[[nodiscard]] constexpr uint32_t Ym2612PhaseStepOf(uint32_t halfFnum, uint32_t block) {
    return (halfFnum * 2048) >> (7 - block);
}

// Recomputes `volOut` from `tl`, `volume` and the SSG shape.
inline void Ym2612RefreshLevel(YM2612_SLOT& slot) {
    auto volume = static_cast<uint32_t>(slot.volume);
    const bool running = slot.state > Ym2612Envelope::kRelease;
    if (running && (slot.ssg & kYm2612SsgOn) != 0 &&
        ((slot.ssgInverted ^ slot.ssg) & kYm2612SsgAttack) != 0) {
        volume = (uint32_t{kYm2612SsgEnd} - volume) & 1023;
    }
    slot.volOut = slot.tl + volume;
}

// What comes after an attack.
inline void Ym2612BeginDecay(YM2612_SLOT& slot) {
    slot.volume = 0;
    slot.state = slot.sl > 0 ? Ym2612Envelope::kDecay : Ym2612Envelope::kSustain;
}

[[nodiscard]] inline bool Ym2612AttacksAtOnce(const YM2612_SLOT& slot) {
    return slot.ar + slot.ksr >= kYm2612InstantAttack;
}

// Starts a slot, unless the key register or CSM holds its key already.
void Ym2612KeyOn(const YM2612& ym, YM2612_SLOT& slot);

// Starts the release of a slot that sounds.
void Ym2612KeyOff(YM2612_SLOT& slot);

// Look up the rate tables for the slot's `ksr`.
void Ym2612RefreshAttack(YM2612_SLOT& slot);
void Ym2612RefreshDecay(YM2612_SLOT& slot);
void Ym2612RefreshSustain(YM2612_SLOT& slot);
void Ym2612RefreshRelease(YM2612_SLOT& slot);

// Marks a channel whose phase steps and key scale are to be recalculated before the next sample.
inline void Ym2612Mark(YM2612& ym, YM2612_CHANNEL& channel) {
    channel.slots[0].phaseStep = kYm2612Recalculate;
    ym.recalculate = true;
}

// The pitch of a slot. Operators 1 to 3 of channel 3 may have their own.
[[nodiscard]] inline const YM2612_PITCH& Ym2612SlotPitch(const YM2612& ym, size_t channel,
                                                         size_t slot) {
    if (channel == kYm2612Special && (ym.mode & kYm2612OwnPitches) != 0) {
        switch (slot) {
        case kYm2612Operator1: return ym.channel3[1];
        case kYm2612Operator2: return ym.channel3[2];
        case kYm2612Operator3: return ym.channel3[0];
        default: break;
        }
    }
    return ym.channels[channel].pitch;
}
