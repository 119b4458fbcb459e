// M6502: the CPU of the NES, a 6502 without decimal arithmetic.
//
// The opcode fetch expands each instruction into a short list of steps. Every memory access of the real
// chip, dummy accesses included, is one step and takes one cycle.
//
// Clock: one cycle is master / 12, 1,789,773 Hz. The PPU runs three dots per cycle.
// Units: addresses have 16 bits; the stack is at 0x100 + sp.
// Owner: its machine, on the session's thread, without a lock.
// Pins: devices write irqLines (levels, one bit each, see nes_lines.h) and nmiLine (bit 0, set by the PPU
//   and cleared here when the interrupt begins). busValue is for the owner's bus, as open bus: it is
//   written here, after a read and before a write. A bus that makes further accesses (DMA) updates it
//   itself.
// Order: M6502Init, then a reset through the bus. In a cycle: M6502Sample, then the rest of the machine,
//   then M6502Cycle.
// Sources: bus cycles and opcodes, J. West, M. Makela, "64doc"; test cases in tests/vectors.
// Differs: docs/HARDWARE.md, NES, CPU.
#pragma once

#include "machine/state_out.h"
#include "nes/m6502_steps.h"

#include <cstddef>
#include <cstdint>

enum M6502Flag : uint8_t {
    kM6502FlagC = 0x01,
    kM6502FlagZ = 0x02,
    kM6502FlagI = 0x04, // interrupt disable
    kM6502FlagD = 0x08, // kept, without effect
    kM6502FlagB = 0x10, // in pushed bytes only: set by BRK and PHP, clear for an interrupt
    kM6502FlagOne = 0x20,
    kM6502FlagV = 0x40,
    kM6502FlagN = 0x80
};

// Values of operandRegister.
enum M6502Register : uint32_t { kM6502A, kM6502X, kM6502Y, kM6502Sp, kM6502RegisterCount };

using M6502ReadFunction = uint8_t (*)(void* context, uint16_t address);
using M6502WriteFunction = void (*)(void* context, uint16_t address, uint8_t value);

// The distance between the registers that a step addresses by number.
inline constexpr size_t kM6502RegisterStride = 4;

struct M6502 {
    M6502ReadFunction read = nullptr;
    M6502WriteFunction write = nullptr;
    void* context = nullptr; // passed to both

    uint16_t pc = 0;
    alignas(kM6502RegisterStride) uint8_t a = 0;
    alignas(kM6502RegisterStride) uint8_t x = 0;
    alignas(kM6502RegisterStride) uint8_t y = 0;
    alignas(kM6502RegisterStride) uint8_t sp = 0;
    uint8_t p = 0; // M6502Flag; kM6502FlagOne stays set, kM6502FlagB clear
    M6502Queue queue{};
    uint32_t queueIndex = 0;            // of the next step, 0..15; the last entry is always kEnd
    uint32_t cycles = 0;                // since power-on or reset, wrapping
    uint32_t opcode = 0;                // 0..255
    uint32_t operandRegister = kM6502A; // M6502Register
    uint16_t address = 0;               // effective address being built
    uint16_t data = 0;                  // operand or pointer being fetched; 0..255
    uint8_t busValue = 0;               // last value on the bus
    uint32_t nmiLine = 0;
    uint32_t irqLines = 0; // levels, asserted while any bit is set
    uint32_t nmiSeen = 0;  // nmiLine at the start of the cycle
    uint32_t irqSeen = 0;  // 1: an IRQ was asserted and enabled at the start of the cycle
};
static_assert(offsetof(M6502, x) == offsetof(M6502, a) + kM6502X * kM6502RegisterStride);
static_assert(offsetof(M6502, y) == offsetof(M6502, a) + kM6502Y * kM6502RegisterStride);
static_assert(offsetof(M6502, sp) == offsetof(M6502, a) + kM6502Sp * kM6502RegisterStride);

// Stores the callbacks and clears everything else. A CPU that only runs on a Bus needs no callbacks.
void M6502Init(M6502& cpu, void* context, M6502ReadFunction read, M6502WriteFunction write);

// Power-on and reset: seven reads, which take no cycle of the machine. It also clears the interrupt lines,
// so reset the devices first.
void M6502Reset(M6502& cpu);

// One cycle, through the callbacks.
void M6502Tick(M6502& cpu);

// The same on a machine's own bus, for its frame loop, with the accesses inlined. A Bus has
//     uint8_t Read(uint16_t address);
//     void Write(uint16_t address, uint8_t value);
template <typename Bus>
void M6502ResetOn(M6502& cpu, Bus& bus);
// First half of a tick: samples the interrupt lines, before any device runs.
inline void M6502Sample(M6502& cpu);
// Second half: runs steps until one has accessed the bus, and counts the cycle.
template <typename Bus>
inline void M6502Cycle(M6502& cpu, Bus& bus);

// True if the next cycle begins an instruction or an interrupt sequence.
[[nodiscard]] inline bool M6502IsBetweenInstructions(const M6502& cpu) {
    return cpu.queue[cpu.queueIndex] <= M6502Step::kFetch;
}

// True if both do the same from here on, with the same memory and devices: all but the counted cycles is equal.
[[nodiscard]] bool M6502IsAlike(const M6502& one, const M6502& other);

// The state piece: a version byte, its size, and the fields of the record after the callbacks, each in its
// own width.
inline constexpr uint32_t kM6502StateSize = 65;
[[nodiscard]] uint32_t M6502StateSize();
// Writes the piece; returns the byte after it.
StateOut M6502SaveState(const M6502& cpu, StateOut out);
// Returns the bytes used. A piece of another version or size, or with an invalid queue, returns 0 and
// changes nothing. The callbacks stay.
[[nodiscard]] uint32_t M6502LoadState(M6502& cpu, const uint8_t* data, uint32_t size);

#include "nes/m6502_tick.h"
