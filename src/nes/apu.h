// APU: the NES's sound unit. Two pulse channels, triangle, noise, a channel that plays delta-modulated
// samples from memory, and the frame sequencer that times envelopes, sweeps and lengths.
//
// Clock: one step is one processor cycle (1,789,773 Hz). Eight steps make one pair of samples.
// Units: timers are in processor cycles; envelopes and the linear counter count quarter frames, lengths
//   and sweeps half frames. Channel outputs are signed; a sample is their sum x 50.
// Owner: one machine, on its session's thread; no lock.
// Pins: `pairs`, the owner's, takes the sound. `irqLines`, the processor's interrupt word, of which kNesIrqFrame and kNesIrqSample are this
//   chip's and are the only copy of both flags. `readByte` gives a byte of 0x8000 to 0xFFFF for the
//   sample channel; it must not look at `stallCycles`, which the owner's bus takes down as it holds
//   the processor.
// Order: ApuInit, ApuReset, then in every cycle ApuStep (apu_tick.h) before the processor's access.
// Differs, and kept so on purpose: pulse and noise are signed and the mix is a plain sum, where the part
//   has unsigned levels in two non-linear tables; a triangle of a period under 4 is silent; a read of
//   the status clears the sample interrupt too; a direct write to the sample level gives 3 more than a
//   step to it. Where a channel's level is taken, and what restarts what, are the published rules.
#pragma once

#include "machine/sound_pairs.h"
#include "nes/nes_lines.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr double kApuClock = 1789773.0; // Hz
inline constexpr uint32_t kApuCyclesPerPair = 8;
inline constexpr double kApuSampleRate = 223721.625; // pairs a second

inline constexpr uint32_t kApuStallCycles = 4; // the processor is held this long for a sample byte

// The channels with a length counter, as the bits of registers and of the pending mask count them.
enum ApuLength : uint32_t { kApuPulse1, kApuPulse2, kApuTriangle, kApuNoise, kApuLengths };

// A volume that falls by itself, of pulse and noise.
struct APU_ENVELOPE {
    uint8_t period = 0; // the volume, or quarter frames a step minus 1; 0..15
    bool constant = false;
    bool loop = false;  // also halts the length counter
    bool start = false; // begins anew with the next quarter frame
    uint8_t divider = 1;
    uint8_t decay = 0; // 0..15
};

struct APU_PULSE {
    APU_ENVELOPE envelope;
    uint8_t duty = 0;     // 0..3
    uint8_t position = 0; // step of the wave, 0..7
    uint16_t period = 0;  // 0..2047, in pairs of cycles minus 1
    uint32_t counter = 1; // cycles until the next step
    bool sweepEnable = false;
    bool sweepNegate = false;
    bool sweepReload = false;
    uint8_t sweepPeriod = 0; // half frames minus 1; 0..7
    uint8_t sweepShift = 0;  // 0..7
    uint8_t sweepDivider = 1;
    bool muted = true;  // by the sweep: follows from period, shift and negation
    int32_t output = 0; // -60..60
};

struct APU_TRIANGLE {
    bool control = false; // keeps the linear counter reloading and the length halted
    bool linearReload = false;
    uint8_t linearPeriod = 0; // 0..127
    uint8_t linear = 0;       // quarter frames left
    uint8_t position = 0;     // step of the wave, 0..31
    uint16_t period = 0;      // 0..2047, in cycles minus 1
    uint32_t counter = 1;     // cycles until the next step
    int32_t output = 0;       // -64..56
};

struct APU_NOISE {
    APU_ENVELOPE envelope;
    bool shortMode = false;
    uint8_t rate = 0;     // index of the period, 0..15
    uint16_t shift = 1;   // 15 bits, never 0
    uint32_t counter = 1; // cycles until the next shift
    int32_t output = 0;   // -30..30
};

struct APU_SAMPLE {
    bool irqEnable = false;
    bool loop = false;
    uint8_t rate = 0;          // index, 0..15
    uint8_t startAddress = 0;  // 0xC000 + 64 x this
    uint8_t length = 0;        // 16 x this + 1 bytes
    uint16_t address = 0xC000; // of the next byte, 0x8000 and up
    uint16_t bytesLeft = 0;    // still to be fetched
    uint8_t buffer = 0;        // fetched and waiting
    bool bufferEmpty = true;
    uint8_t shift = 0;    // being played, lowest bit first
    uint8_t bitsLeft = 8; // of this byte, 1..8
    bool silent = true;   // no byte is being played
    uint8_t level = 0;    // 0..127
    uint32_t counter = 1; // cycles until the next bit
    int32_t output = 0;   // level x 3 - 192, or - 189 after a direct write
};

struct APU {
    uint32_t sampleClock =
        0; // cycles since the last pair, 0..7; its lowest bit is the cycle's parity
    uint32_t frameCounter = 1; // cycles until the next frame step
    uint8_t frameStep = 0;     // which comes next: 0..5, or 0..4 with five steps
    bool fiveSteps = false;
    bool irqInhibit = false;

    std::array<APU_PULSE, 2> pulses;
    APU_TRIANGLE triangle;
    APU_NOISE noise;
    APU_SAMPLE sample;

    // By ApuLength.
    std::array<uint8_t, kApuLengths> length{};           // half frames left
    std::array<bool, kApuLengths> halted{};              // the length stands
    std::array<bool, kApuLengths> enabled{};             // by the status register
    std::array<uint8_t, kApuLengths> pendingLength{};    // waits for the next cycle
    std::array<uint8_t, kApuLengths> lengthBeforeLoad{}; // as it was at the write
    uint8_t pendingLengths = 0;                          // bits by ApuLength: which wait

    uint32_t stallCycles = 0; // asked of the owner's bus, 0..4

    // As wired by the machine: set by ApuInit and ApuReset, in no state.
    uint8_t (*readByte)(void* owner, uint16_t address) = nullptr;
    void* owner = nullptr;
    uint32_t* irqLines = nullptr;

    SOUND_PAIRS* pairs = nullptr; // not null while the chip runs
};

// The machine calls it before the first ApuReset.
void ApuInit(APU& apu, uint8_t (*readByte)(void* owner, uint16_t address), void* owner);

// Power-on values; takes both interrupts down and the button of the console
// does the same, so `hard` changes nothing.
void ApuReset(APU& apu, bool hard, uint32_t* irqLines);

// 0x4000 to 0x4017, by the low five bits; those that are none of the sound unit's are ignored.
void ApuWrite(APU& apu, uint16_t address, uint8_t value);

// 0x4015; the second one has no side effect.
[[nodiscard]] uint8_t ApuReadStatus(APU& apu);
[[nodiscard]] uint8_t ApuPeekStatus(const APU& apu);

// The state holds the chip, both interrupts included, without the sound on its way.
[[nodiscard]] uint32_t ApuStateSize();
// Writes ApuStateSize bytes and gives the byte behind them.
uint8_t* ApuSaveState(const APU& apu, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t ApuLoadState(APU& apu, const uint8_t* data, uint32_t size);
