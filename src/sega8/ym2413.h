// YM2413: the FM sound chip of the Japanese Master System and of the Mark III's sound unit. Nine
// channels of two operators (slots), or six of them and five rhythm voices.
//
// Clock: one tick (YmTick) is one clock of the Z80 (master / 15). 72 ticks make one sample.
// Units: envelopes and levels are in steps of 0.375 dB; 0 is the loudest. A phase has 26 bits for a
//   period; the upper ten index the sine. Rates are 4 x the register's value + 16, or 0 for never.
// Owner: one machine, on its session's thread; no lock.
// Pins: the chip adds its sound to the owner's `pairs`. The owner keeps the address latch and calls
//   YmWrite with register and value.
// Order: YmInit, YmReset, then ticks and writes.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", FM chip.
#pragma once

#include "machine/sound_pairs.h"
#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kYmClocksPerSample = 72;
inline constexpr uint32_t kYmChannels = 9;

// Values are saved in states.
enum class YmEnvelope : uint8_t {
    kOff = 0,
    kRelease = 1,
    kSustain = 2,
    kDecay = 3,
    kAttack = 4,
    kDump = 5, // a key on ends the old tone quickly before the attack
};

// Speed of an envelope: a step every 2^shift samples, by one of eight increments in turn.
struct YM_RATE {
    uint8_t shift;  // 0..13
    uint8_t select; // 8 x row of the envelope step table
};

struct YM_SLOT {
    uint32_t ar;    // attack rate
    uint32_t dr;    // decay rate
    uint32_t rr;    // release rate
    uint8_t ksr;    // shift of `kcode`: 0 or 2
    uint8_t ksl;    // shift of `kslBase`: 0..2, or 31 for none
    uint8_t kscale; // `kcode` >> `ksr`, for which the rates below are
    uint8_t mul;    // 2 x the multiple
    uint32_t phase;
    uint32_t incr;                // phase per sample: `fc` x `mul`
    std::array<int32_t, 2> fbOut; // the last two outputs, the older one first
    uint8_t egType;               // 1 sustained, 0 percussive
    YmEnvelope state;
    uint32_t tl;    // total level, 0..126
    uint32_t tll;   // `tl` plus the key scale level
    int32_t volume; // envelope, 0 loudest to 255 silent
    uint32_t sl;    // sustain level, 0..120
    YM_RATE attack;
    YM_RATE decay;
    YM_RATE release;
    YM_RATE sustainRelease;
    YM_RATE dump;
    uint32_t key;       // what holds the key: kYmKeyMelody, kYmKeyRhythm
    uint32_t amMask;    // all ones with tremolo
    uint8_t vib;        // not 0 with vibrato
    uint32_t wavetable; // 0 sine, 1024 half sine
};

inline constexpr uint32_t kYmKeyMelody = 1;
inline constexpr uint32_t kYmKeyRhythm = 2;

struct YM_CHANNEL {
    uint32_t blockFnum;           // bits 9-11 block, 0-8 F-number
    uint32_t fc;                  // phase step before multiplication
    uint32_t kslBase;             // key scale level of this pitch
    uint8_t kcode;                // `blockFnum` >> 8
    uint8_t sustain;              // bit 5 of register 0x20 + n, as 0 or 1
    uint8_t fb;                   // 0, or the register's value + 8
    std::array<YM_SLOT, 2> slots; // modulator, carrier
};

struct YM2413 {
    uint32_t clock = 0; // Hz; set by YmInit
    std::array<YM_CHANNEL, kYmChannels> channels{};
    std::array<uint8_t, kYmChannels> instVol{};          // registers 0x30 + n
    std::array<std::array<uint8_t, 8>, 19> instrument{}; // row 0 is the user's voice
    uint32_t egCounter = 0;                              // envelope steps
    uint32_t egTimer = 0;                                // 16-bit fraction of the next step
    // Constant from YmInit on.
    uint32_t egTimerAdd = 0;
    uint32_t egTimerOverflow = 0;
    uint32_t lfoAmInc = 0;
    uint32_t lfoPmInc = 0;
    uint32_t noiseF = 0;

    uint32_t lfoAmCnt = 0;              // tremolo, top byte 0..209
    uint32_t lfoPmCnt = 0;              // vibrato, top byte's low three bits
    uint32_t lfoAm = 0;                 // attenuation, 0..13
    uint32_t lfoPm = 0;                 // column, 0..7
    uint32_t noiseRng = 1;              // 23 bits
    uint32_t noiseP = 0;                // 16-bit fraction of the next shift
    uint8_t rhythm = 0;                 // register 0x0E
    uint32_t tick = 0;                  // clocks since the last sample, 0..71
    std::array<uint32_t, 1024> fnTab{}; // phase per half F-number, block 7
    int32_t outMelody = 0;              // of one sample
    int32_t outRhythm = 0;              // of one sample

    SOUND_PAIRS* pairs = nullptr; // as wired; not null while the chip runs
};

// `clock` in Hz.
void YmInit(YM2413& ym, uint32_t clock);

// The chip's reset line.
void YmReset(YM2413& ym);

// Makes one sample. YmTick calls it on every 72nd clock.
void YmMakeSample(YM2413& ym);

// One clock.
inline void YmTick(YM2413& ym) {
    if (++ym.tick >= kYmClocksPerSample) [[unlikely]] {
        ym.tick = 0;
        YmMakeSample(ym);
    }
}

// The same as `clocks` calls of YmTick; channels that are silent until the next write are left out.
void YmRun(YM2413& ym, uint32_t clocks);

// Registers 0x00 to 0x3F; any other number does nothing.
void YmWrite(YM2413& ym, uint8_t reg, uint8_t value);

// The state of the chip, without the pairs already made.
[[nodiscard]] uint32_t YmStateSize();
// Writes YmStateSize bytes; returns the byte after them.
StateOut YmSaveState(const YM2413& ym, StateOut out);
// Returns the bytes used, or 0 and changes nothing if the piece does not fit. Any bytes are safe.
[[nodiscard]] uint32_t YmLoadState(YM2413& ym, const uint8_t* data, uint32_t size);
