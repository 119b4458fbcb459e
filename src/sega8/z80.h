// Z80: the processor of the Master System, Game Gear and System E, and the sound processor of the
// Mega Drive.
//
// A fetched opcode is decoded to a queue of steps, one for each remaining clock of the instruction,
// and each clock runs one step. Work without a bus access is done while decoding; every access has
// its step on the clock on which the chip makes it.
//
// Clock: one tick (Z80Tick) is one clock of the processor: master / 15 on the consoles, 5.37 MHz on
//   System E.
// Units: memory addresses and ports are 16 bits wide.
// Owner: one machine, on its session's thread; no lock.
// Pins: the owner writes irqLine (a level), nmiEdge (set by the owner, cleared by the chip at the
//   end of an instruction), busHold (requests the bus) and enabled (0 freezes the chip at any
//   clock). It reads running, which is 0 while the chip has released the bus.
// Order: Z80Init, then Z80Reset, before the first tick. SP is 0 after a reset; a machine that needs
//   another value writes regs[kZ80Sp] after it.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", Z80.
#pragma once

#include "machine/state_out.h"
#include "sega8/z80_steps.h"

#include <array>
#include <cstdint>

// Entries of Z80::regs. The primed words are the second set.
enum Z80Register : uint32_t {
    kZ80Af,
    kZ80Bc,
    kZ80De,
    kZ80Hl,
    kZ80Ix,
    kZ80Iy,
    kZ80Sp,
    kZ80Pc,
    kZ80Spare,
    kZ80AfPrime,
    kZ80BcPrime,
    kZ80DePrime,
    kZ80HlPrime,
    kZ80SparePrime,
    kZ80RegisterCount
};

enum Z80Flag : uint8_t {
    kZ80FlagC = 0x01,
    kZ80FlagN = 0x02,
    kZ80FlagPv = 0x04,
    kZ80FlagX = 0x08,
    kZ80FlagH = 0x10,
    kZ80FlagY = 0x20,
    kZ80FlagZ = 0x40,
    kZ80FlagS = 0x80
};

enum Z80Prefix : uint32_t {
    kZ80NoPrefix = 0,
    kZ80PrefixCb = 1,
    kZ80PrefixDd = 2,
    kZ80PrefixDdCb = 3,
    kZ80PrefixEd = 4,
    kZ80PrefixFd = 8,
    kZ80PrefixFdCb = 9
};

enum Z80Interrupt : uint32_t { kZ80NoInterrupt = 0, kZ80Nmi = 1, kZ80Maskable = 2 };

using Z80ReadFunction = uint8_t (*)(void* context, uint32_t address, uint32_t isOpcodeFetch);
using Z80IoReadFunction = uint8_t (*)(void* context, uint32_t port);
using Z80WriteFunction = void (*)(void* context, uint32_t address, uint8_t value);
using Z80IoWriteFunction = void (*)(void* context, uint32_t port, uint8_t value);

// Steps in the queue, and the room after them, which is never read: a template may be written at
// any index without a test.
inline constexpr uint32_t kZ80QueueSize = 32;
inline constexpr uint32_t kZ80QueueRoom = 20;
// The last byte of the registers, for steps that address bytes of them.
inline constexpr uint32_t kZ80LastRegisterByte = 4 * kZ80RegisterCount - 1;

struct Z80 {
    Z80ReadFunction read = nullptr;
    Z80IoReadFunction ioRead = nullptr;
    Z80WriteFunction write = nullptr;
    Z80IoWriteFunction ioWrite = nullptr;
    void* context = nullptr; // first argument of all four

    std::array<uint8_t, kZ80QueueSize + kZ80QueueRoom> queue{}; // steps of this instruction
    uint32_t queueIndex = 0;                                    // next step, 0..31
    // Template of the decoded opcode, in the queue from index `programAt` on; not saved.
    const Z80Template* program = nullptr;
    uint32_t programAt = 0;
    std::array<uint32_t, kZ80RegisterCount> regs{}; // by Z80Register; the low 16 bits count
    uint32_t r7 = 0;                                // R; only the low seven bits count
    uint32_t r8 = 0;                                // top bit of R, 0 or 0x80
    uint32_t i = 0;                                 // high byte of the mode 2 vector
    uint32_t iff1 = 0;
    uint32_t iff2 = 0;
    uint32_t halted = 0;
    uint32_t im = 0;   // interrupt mode 0..2
    uint32_t temp = 0; // low byte: data latch; next byte: bit number, or high data
    uint32_t wz = 0;   // 16-bit address latch; its halves also hold operands
    uint32_t pendingInterrupt =
        kZ80NoInterrupt;  // Z80Interrupt; starts on the first clock of the next instruction
    uint32_t irqLine = 0; // level, by the owner
    uint32_t nmiEdge = 0; // set by the owner, cleared when the NMI is accepted
    uint32_t prefix = kZ80NoPrefix; // Z80Prefix
    uint32_t busHold = 0;           // by the owner: requests the bus
    uint32_t running = 1;           // 0 while the bus is released
    uint32_t enabled = 1;           // by the owner; 0: ticks do nothing
    uint32_t eiDelay = 0;           // 1 from EI to the first clock of the next instruction
    uint32_t opcode = 0;
    uint32_t regIndex =
        0; // entry of regs for the queue's steps; for the CB steps a byte of them, 0..55
};

// Stores the callbacks and clears everything else; running and enabled are 1.
void Z80Init(Z80& z80, void* context, Z80ReadFunction read, Z80IoReadFunction ioRead,
             Z80WriteFunction write, Z80IoWriteFunction ioWrite);

// Keeps callbacks, irqLine, nmiEdge, busHold, running and enabled.
void Z80Reset(Z80& z80);

// One clock, through the callbacks.
void Z80Tick(Z80& z80);

// One clock on a machine's own bus, for its frame loop: as Z80Tick with inlined accesses. A Bus has
//     uint8_t Read(uint16_t address);
//     uint8_t ReadOpcode(uint16_t address);
//     uint8_t IoRead(uint16_t port);
//     void Write(uint16_t address, uint8_t value);
//     void IoWrite(uint16_t port, uint8_t value);
template <typename Bus>
inline void Z80TickOn(Z80& z80, Bus& bus);

// The state piece: a version byte, its size and the fields.
inline constexpr uint32_t kZ80StateSize = 87;
[[nodiscard]] uint32_t Z80StateSize();
// Writes kZ80StateSize bytes; returns the byte after them.
StateOut Z80SaveState(const Z80& z80, StateOut out);
// Returns the bytes used; 0, with the chip unchanged, for a piece of another version or size. Keeps
// the callbacks. Any contents are safe.
[[nodiscard]] uint32_t Z80LoadState(Z80& z80, const uint8_t* data, uint32_t size);

#include "sega8/z80_run.h"
#include "sega8/z80_tick.h"
