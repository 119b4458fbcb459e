// APU: the NES's sound chip. Two pulse channels, triangle, noise, a channel that plays delta-modulated
// samples from memory (DMC), and the frame sequencer that clocks envelopes, sweeps and length counters.
//
// Clock: one tick is one CPU cycle, 1,789,773 Hz. Eight ticks make one pair of samples.
// Units: timers are in CPU cycles; envelopes and the linear counter count quarter frames, length counters
//   and sweeps half frames. Channel outputs are signed; a sample is their sum x 50.
// Owner: one machine, on its session's thread, without a lock.
// Pins: `pairs` (the owner's) takes the sound. `irqLines` is the CPU's interrupt word: its bits kNesIrqFrame
//   and kNesIrqSample belong to this chip and are the only copy of both flags. `readByte` returns a byte of
//   0x8000 to 0xFFFF for the sample channel. It must not read `stallCycles`, which the owner's bus counts
//   down while it holds the CPU.
// Order: ApuInit, ApuReset, then ApuTick (apu_tick.h) in every cycle, before the CPU's access.
// Sources: nesdev wiki, "APU", "APU Frame Counter", "APU DMC".
// Differs: docs/HARDWARE.md, NES, APU.
#pragma once

#include "machine/sound_pairs.h"
#include "machine/state_out.h"
#include "nes/nes_lines.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr double kApuClock = 1789773.0; // Hz
inline constexpr uint32_t kApuCyclesPerPair = 8;
inline constexpr double kApuSampleRate = 223721.625; // pairs per second

inline constexpr uint32_t kApuStallCycles = 4; // the CPU is held this long for a sample byte

// The channels with a length counter. The number is also the channel's bit in 0x4015 and in pendingLengths.
enum ApuLength : uint32_t { kApuPulse1, kApuPulse2, kApuTriangle, kApuNoise, kApuLengths };

// The decaying volume of a pulse or noise channel.
struct APU_ENVELOPE {
    uint8_t period = 0; // the constant volume, or quarter frames per decay step - 1; 0..15
    bool constant = false;
    bool loop = false;  // also halts the length counter
    bool start = false; // restart on the next quarter frame
    uint8_t divider = 1;
    uint8_t decay = 0; // 0..15
};

struct APU_PULSE {
    APU_ENVELOPE envelope;
    uint8_t duty = 0;     // 0..3
    uint8_t position = 0; // step of the wave, 0..7
    uint16_t period = 0;  // 0..2047, pairs of cycles - 1
    uint32_t counter = 1; // cycles until the next step
    bool sweepEnable = false;
    bool sweepNegate = false;
    bool sweepReload = false;
    uint8_t sweepPeriod = 0; // half frames - 1; 0..7
    uint8_t sweepShift = 0;  // 0..7
    uint8_t sweepDivider = 1;
    bool muted = true;  // by the sweep unit; derived from period, shift and negate
    int32_t output = 0; // -60..60
};

struct APU_TRIANGLE {
    bool control = false; // keeps reloading the linear counter and halts the length counter
    bool linearReload = false;
    uint8_t linearPeriod = 0; // 0..127
    uint8_t linear = 0;       // quarter frames left
    uint8_t position = 0;     // step of the wave, 0..31
    uint16_t period = 0;      // 0..2047, cycles - 1
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
    uint16_t bytesLeft = 0;    // to fetch
    uint8_t buffer = 0;        // next byte to play
    bool bufferEmpty = true;
    uint8_t shift = 0;    // the byte being played, lowest bit first
    uint8_t bitsLeft = 8; // of this byte, 1..8
    bool silent = true;   // no byte to play
    uint8_t level = 0;    // 0..127
    uint32_t counter = 1; // cycles until the next bit
    int32_t output = 0;   // level x 3 - 192, or - 189 after a direct write
};

struct APU {
    uint32_t sampleClock = 0;  // cycles since the last pair, 0..7; bit 0 is the cycle's parity
    uint32_t frameCounter = 1; // cycles until the next step of the frame sequencer
    uint8_t frameStep = 0;     // the next step: 0..5, or 0..4 in five-step mode
    bool fiveSteps = false;
    bool irqInhibit = false;

    std::array<APU_PULSE, 2> pulses;
    APU_TRIANGLE triangle;
    APU_NOISE noise;
    APU_SAMPLE sample;

    // By ApuLength.
    std::array<uint8_t, kApuLengths> length{}; // half frames left
    std::array<bool, kApuLengths> halted{};
    std::array<bool, kApuLengths> enabled{};             // by a write to 0x4015
    std::array<uint8_t, kApuLengths> pendingLength{};    // loaded in the next cycle
    std::array<uint8_t, kApuLengths> lengthBeforeLoad{}; // at the write
    uint8_t pendingLengths = 0;                          // bits by ApuLength: a load is pending

    uint32_t stallCycles = 0; // for the owner's bus to hold the CPU, 0..4

    // Wiring, set by ApuInit and ApuReset; not part of a state.
    uint8_t (*readByte)(void* owner, uint16_t address) = nullptr;
    void* owner = nullptr;
    uint32_t* irqLines = nullptr;

    SOUND_PAIRS* pairs = nullptr; // not null while the chip runs
};

// Before the first ApuReset.
void ApuInit(APU& apu, uint8_t (*readByte)(void* owner, uint16_t address), void* owner);

// Power-on values; clears both interrupts. The console's reset button does the same, so `hard` changes
// nothing.
void ApuReset(APU& apu, bool hard, uint32_t* irqLines);

// 0x4000 to 0x4017, by the low five bits. Addresses that are no APU registers are ignored.
void ApuWrite(APU& apu, uint16_t address, uint8_t value);

// 0x4015. The read clears both interrupts, the peek has no side effect.
[[nodiscard]] uint8_t ApuReadStatus(APU& apu);
[[nodiscard]] uint8_t ApuPeekStatus(const APU& apu);

// The state holds the chip and both interrupts, not the samples already in `pairs`.
[[nodiscard]] uint32_t ApuStateSize();
// Writes ApuStateSize bytes; returns the byte after them.
StateOut ApuSaveState(const APU& apu, StateOut out);
// Returns the bytes used, or 0 with nothing changed if the version or size is wrong. Any contents are safe.
[[nodiscard]] uint32_t ApuLoadState(APU& apu, const uint8_t* data, uint32_t size);
