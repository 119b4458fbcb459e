// What the sources of the YM2413 share: registers, channels and limits.
// Source of the registers: Yamaha, YM2413 application manual.
#pragma once

#include "sega8/ym2413_tables.h"

#include <cstddef>
#include <cstdint>

// Registers. Those of the channels are a group of 16 each, channel 0 first.
inline constexpr uint8_t kYmRegUserVoice = 0x00; // 0x00 to 0x07
inline constexpr uint8_t kYmRegRhythm = 0x0E;
inline constexpr uint8_t kYmRegTest = 0x0F;
inline constexpr uint8_t kYmRegFnum = 0x10;       // low eight bits
inline constexpr uint8_t kYmRegKey = 0x20;        // key, sustain, block, top bit of the F-number
inline constexpr uint8_t kYmRegInstrument = 0x30; // instrument and volume
inline constexpr uint8_t kYmRegLast = 0x3F;

// Register 0x0E.
inline constexpr uint8_t kYmRhythmOn = 0x20;
inline constexpr uint8_t kYmRhythmBassDrum = 0x10;
inline constexpr uint8_t kYmRhythmSnare = 0x08;
inline constexpr uint8_t kYmRhythmTom = 0x04;
inline constexpr uint8_t kYmRhythmCymbal = 0x02;
inline constexpr uint8_t kYmRhythmHat = 0x01;
inline constexpr uint8_t kYmRhythmBits = 0x3F;

// Register 0x20 + n.
inline constexpr uint8_t kYmSustainOn = 0x20;
inline constexpr uint8_t kYmKeyOn = 0x10;
inline constexpr uint8_t kYmBlockFnumHigh = 0x0F;

// The F-number in `blockFnum`, and the part of it in register 0x10 + n.
inline constexpr uint32_t kYmFnum = 0x1FF;
inline constexpr uint32_t kYmFnumLow = 0x0FF;

// Voice bytes 0 and 1.
inline constexpr uint8_t kYmVoiceTremolo = 0x80;
inline constexpr uint8_t kYmVoiceVibrato = 0x40;
inline constexpr uint8_t kYmVoiceSustained = 0x20;
inline constexpr uint8_t kYmVoiceKeyScaleRate = 0x10;
inline constexpr uint8_t kYmVoiceMultiple = 0x0F;

// Voice bytes 2 and 3; the key scale level is in bits 6 and 7 of both.
inline constexpr uint8_t kYmVoiceLevel = 0x3F;
inline constexpr uint8_t kYmVoiceCarrierHalfSine = 0x10;
inline constexpr uint8_t kYmVoiceModulatorHalfSine = 0x08;
inline constexpr uint8_t kYmVoiceFeedback = 0x07;

// The channels of the rhythm.
inline constexpr size_t kYmBassDrum = 6;
inline constexpr size_t kYmHatAndSnare = 7;  // hi-hat in the modulator, snare in the carrier
inline constexpr size_t kYmTomAndCymbal = 8; // tom in the modulator, cymbal in the carrier

inline constexpr size_t kYmModulator = 0;
inline constexpr size_t kYmCarrier = 1;

inline constexpr int32_t kYmSilent = 255; // of `volume`
inline constexpr uint32_t kYmTremoloWrap = kYmTremoloLength << 24;
