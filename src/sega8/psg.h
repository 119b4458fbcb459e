// PSG: the SN76489-type sound chip of the Sega machines. Three square waves and one noise channel.
//
// Used by the Master System, the Game Gear (with panning), the arcade board and the Mega Drive.
// Clock: one tick (PsgTick) is master / 15, one clock of a console's Z80. Sixteen ticks make one
//   pair of samples.
// Units: periods and counters are in sample pairs, that is in clocks / 16; half a wave lasts
//   `period` pairs. Attenuation is in steps of 2 dB, 15 being silence.
// Owner: one machine, on its session's thread; no lock.
// Pins: the chip adds its sound to the owner's `pairs`. The owner calls PsgWrite for its sound port
//   and, on the Game Gear, PsgStereoWrite.
// Order: PsgInit, PsgReset, then ticks and writes.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", PSG.
#pragma once

#include "machine/sound_pairs.h"
#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kPsgClocksPerPair = 16;

struct PSG {
    // As wired by the board: set by PsgInit, never by PsgReset or PsgLoadState.
    uint32_t clock = 0;      // Hz
    bool stereo = false;     // with a panning port
    uint32_t lfsrShift = 15; // bit of `lfsr` that is shifted in
    uint32_t lfsrTaps = 9;   // bits of `lfsr` whose parity is shifted in for white noise

    uint32_t divider = 0;                   // clocks since the last pair, 0..15
    std::array<uint8_t, 4> attenuation{};   // 0..15; channel 3 is noise
    std::array<int32_t, 4> counter{};       // pairs until the channel's output toggles
    std::array<int32_t, 3> output{1, 1, 1}; // +1 or -1
    uint32_t noiseOutput = 0;               // 0 or 1
    std::array<uint16_t, 3> period{};       // 0..1023
    uint8_t noiseControl = 0;               // bits 0-1 rate, bit 2 white; bit 3 is kept and unused
    uint8_t latchChannel = 0;               // 0..3, of the last latch byte
    bool latchIsVolume = false;             // that byte selected the attenuation
    uint32_t lfsr = 0;                      // 0, and so silent, until the noise register is written
    uint8_t noiseToggle = 0;                // 0 or 1; `lfsr` shifts when it rises
    std::array<uint8_t, 4> leftEnable{1, 1, 1, 1};  // 0 or 1
    std::array<uint8_t, 4> rightEnable{1, 1, 1, 1}; // 0 or 1

    SOUND_PAIRS* pairs = nullptr; // as wired; not null while the chip runs
};

// `clock` in Hz. Models 1 to 3 have a noise register of 16 bits, 4 to 6 one of 15 bits; model 0
// leaves `lfsrShift` and `lfsrTaps` as they are.
void PsgInit(PSG& psg, uint32_t clock, int model, bool stereo);

// Power-on values.
void PsgReset(PSG& psg);

// Makes one pair. PsgTick calls it on every sixteenth clock.
void PsgMakePair(PSG& psg);

// One clock.
inline void PsgTick(PSG& psg) {
    if (++psg.divider >= kPsgClocksPerPair) [[unlikely]] {
        psg.divider = 0;
        PsgMakePair(psg);
    }
}

// The same as `clocks` calls of PsgTick; pairs in which no channel changes are equal, and made together.
void PsgRun(PSG& psg, uint32_t clocks);

// The sound port.
void PsgWrite(PSG& psg, uint8_t value);

// The Game Gear's panning port: bits 4-7 left, 0-3 right, for tones 0 to 2 and noise.
void PsgStereoWrite(PSG& psg, uint8_t value);

// The state of the chip, without the pairs already made.
[[nodiscard]] uint32_t PsgStateSize();
// Writes PsgStateSize bytes; returns the byte after them.
StateOut PsgSaveState(const PSG& psg, StateOut out);
// Returns the bytes used, or 0 and changes nothing if the piece does not fit. Any bytes are safe.
[[nodiscard]] uint32_t PsgLoadState(PSG& psg, const uint8_t* data, uint32_t size);
