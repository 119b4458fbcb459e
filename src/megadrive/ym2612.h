// YM2612: the FM sound chip of the Mega Drive. Six channels of four operators (slots). The sixth can be a DAC,
// and the third can have a pitch for each operator. An LFO, envelopes with SSG shapes, two timers.
//
// Clock: one tick is one clock of the 68000 (master / 7). 144 ticks are one stereo sample.
// Units: envelopes and levels are in steps of 3/32 dB, 0 loud, 1,023 silent. A phase is a turn in 26 bits;
//   the upper ten index the sine. Timers count samples. One carrier peaks at 8,168, the DAC at 8,192; the
//   sum of six channels is clipped to 16 bits.
// Owner: one machine, on its session's thread; no lock.
// Pins: `pairs`, the owner's, takes the sound. `irq` is the interrupt line, which this console leaves open.
// Order: Ym2612SetClock, Ym2612Reset, then ticks (ym2612_tick.h) and writes. `status` is read directly; a read
//   changes nothing.
// Slots are stored in the order of their registers, operators 1, 3, 2, 4. A sample is computed all at once,
//   on the 144th clock, in the order 1, 2, 3, 4: every operator is modulated by outputs of the same sample.
// Differs: docs/HARDWARE.md, Mega Drive, FM chip.
// Sources: Sega "Genesis Technical Manual", YM2612 section (transcription by Maxim); Yamaha application
//   manuals of the YM2203 and YM2608.
#pragma once

#include "machine/sound_pairs.h"
#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kYm2612ClocksPerSample = 144;
inline constexpr size_t kYm2612Channels = 6;
inline constexpr size_t kYm2612Slots = 4; // of a channel

// Envelopes step once in three samples: each sample adds to a timer, and its overflow is an envelope clock.
inline constexpr uint32_t kYm2612EgTimerAdd = 65'536;
inline constexpr uint32_t kYm2612EgTimerOverflow = 196'608;

// `phaseStep` of a channel's first slot while the channel's pitches are to be recalculated.
inline constexpr int32_t kYm2612Recalculate = -1;

// Bits of `status`, and of `irqMask`.
inline constexpr uint8_t kYm2612TimerA = 1;
inline constexpr uint8_t kYm2612TimerB = 2;

// Values are saved in states.
enum class Ym2612Envelope : uint8_t {
    kOff = 0,
    kRelease = 1,
    kSustain = 2,
    kDecay = 3,
    kAttack = 4,
};

// How fast an envelope moves: every 2^shift envelope clocks, by eight increments in turn.
struct YM2612_RATE {
    uint8_t shift;  // 0..11
    uint8_t select; // 8 x row of the envelope step table
};

struct YM2612_SLOT {
    uint32_t dt;       // detune row, 0..7
    uint32_t mul;      // 2 x the multiple, 1..30
    uint32_t ar;       // rates: 0, or 2 x the register's value + 32
    uint32_t d1r;      //
    uint32_t d2r;      //
    uint32_t rr;       // 4 x the register's value + 34
    uint8_t ksrShift;  // right shift of the key code, 0..3
    uint8_t ksr;       // key code >> `ksrShift`, when the rates were last looked up; 0..31
    uint32_t phase;    //
    int32_t phaseStep; // per sample, or kYm2612Recalculate
    Ym2612Envelope state;
    uint32_t tl;        // total level, 0..1,016
    int32_t volume;     // envelope, 0..1,023
    uint32_t sl;        // sustain level, 0..992
    uint32_t volOut;    // `tl` plus the envelope as heard
    YM2612_RATE attack; // of `ar` at `ksr`, and so on
    YM2612_RATE decay;
    YM2612_RATE sustain;
    YM2612_RATE release;
    uint8_t ssg;         // bit 3 on, 2 attack, 1 alternate, 0 hold
    uint8_t ssgInverted; // 0, or 4 after the ends of ramps have inverted the shape
    uint8_t keyOn;       // 0 or 1, from register 0x28
    uint32_t amMask;     // all ones if the LFO attenuates this slot, or 0
};

struct YM2612_PITCH {
    uint32_t blockFnum; // bits 11-13 block, 0-10 F-number
    uint32_t fc;        // phase step before detune and multiplication
    uint8_t keyCode;    // 0..31
};

struct YM2612_CHANNEL {
    std::array<YM2612_SLOT, kYm2612Slots> slots; // operators 1, 3, 2, 4
    uint8_t algorithm;                           // 0..7
    uint8_t feedback;                            // left shift: 0 for none, or 7..13
    std::array<int32_t, 2> operator1Out;         // the last two outputs, the older first
    uint32_t pms;                                // LFO pitch depth x 32
    uint8_t ams;                                 // LFO attenuation shift: 8, 3, 1, 0
    uint32_t leftMask;                           // all ones or 0
    uint32_t rightMask;                          //
    YM2612_PITCH pitch;
};

struct YM2612 {
    uint32_t clock = 0; // Hz; set by Ym2612SetClock, not in a state
    std::array<YM2612_CHANNEL, kYm2612Channels> channels{};

    uint16_t address = 0; // register of the next data write; bit 8 is the second port
    uint8_t irq = 0;      // 0 or 1
    uint8_t irqMask = kYm2612TimerA | kYm2612TimerB;
    uint8_t status = 0;        // bit 0 timer A, bit 1 timer B
    uint32_t timerA = 0;       // register, 0..1,023
    int32_t timerACount = 0;   // samples left
    uint32_t timerB = 0;       // register, 0..255
    int32_t timerBCount = 0;   // samples left
    uint8_t mode = 0;          // register 0x27
    uint8_t fnHighLatch = 0;   // block and upper F-number, until the lower part is written; 0..63
    uint8_t channel3Latch = 0; // the same for `channel3`
    std::array<YM2612_PITCH, 3> channel3{}; // registers 0xA8 to 0xAA: operators 3, 1, 2
    uint32_t lfoCounter = 0;                // position in the upper eight bits
    uint32_t lfoIncrement = 0;              // per sample; 0 stops the LFO
    uint32_t lfoAm = 0;                     // attenuation, 0..126
    uint32_t lfoPm = 0;                     // position, 0..31
    uint32_t egCounter = 0;                 // envelope clocks, one in three samples
    uint32_t egTimer = 0;                   // 16-bit fraction of a sample
    uint32_t egTimerAdd = kYm2612EgTimerAdd;
    uint32_t egTimerOverflow = kYm2612EgTimerOverflow;
    uint8_t csmKey = 0; // 1 from a CSM key on to the next sample, in which it becomes 2
    int32_t dacOut = 0;
    uint8_t dacEnabled = 0; // 0 or 0x80
    uint32_t tickCount = 0; // clocks since the last sample, 0..143
    std::array<int32_t, kYm2612Channels> channelOut{};

    // Derived from the fields above after a load.
    bool recalculate = false; // some channel's pitches are to be recalculated
    uint32_t ssgSlots = 0;    // bit channel x 4 + slot is `ssg` bit 3 of that slot
    uint32_t egQuiet = 0;     // envelope clocks in which certainly no envelope changes

    SOUND_PAIRS* pairs = nullptr; // set by the owner; not null while the chip runs
};

// `clock` in Hz. Clears slots and channels, so Ym2612Reset follows.
void Ym2612SetClock(YM2612& ym, uint32_t clock);

// The chip's reset line, which programs drive at any time. The samples made so far stay, and so does the
// place between two samples. Every register becomes 0, except that both sides of each channel are on, since
// some games never write that.
void Ym2612Reset(YM2612& ym);

// Makes one sample; Ym2612Tick calls it on every 144th clock.
void Ym2612MakeSample(YM2612& ym);
// The same as `samples` calls of it, but faster.
void Ym2612MakeSamples(YM2612& ym, uint32_t samples);

// The same as `clocks` calls of Ym2612Tick.
void Ym2612Run(YM2612& ym, uint32_t clocks);
// Clocks up to the end of the one that changes `status`, if no register is written; a large number if none does.
[[nodiscard]] uint32_t Ym2612ClocksToStatus(const YM2612& ym);

// Ports 0 and 2 take an address in the first or second half of the registers, 1 and 3 the data. Writes to
// registers that don't exist do nothing.
void Ym2612Write(YM2612& ym, uint32_t port, uint8_t value);

// The state piece holds the chip, but not the samples in `pairs`.
[[nodiscard]] uint32_t Ym2612StateSize();
// Writes Ym2612StateSize bytes and returns the byte after them.
StateOut Ym2612SaveState(const YM2612& ym, StateOut out);
// Returns the bytes used, or 0 with nothing changed if the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t Ym2612LoadState(YM2612& ym, const uint8_t* data, uint32_t size);
