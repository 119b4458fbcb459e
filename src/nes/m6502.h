// M6502: the processor of the NES, a 6502 without decimal arithmetic.
//
// Every instruction is expanded at its opcode fetch into a short list of steps, and every memory access
// of the real chip, dummy ones included, is one step and one cycle.
//
// Clock: one cycle is master / 12, 1,789,773 a second; the picture unit runs three dots in it.
// Units: addresses are 16 bits wide; the stack lies at 0x100 + sp.
// Owner: its machine, on the session's thread, with no lock.
// Pins: devices write irqLines (levels, one bit each, see nes_lines.h) and nmiLine (bit 0 set by the
//   picture unit; taken back here when the interrupt begins). The owner's bus may read busValue: it is
//   written here, after a read and before a write, so that a read of nothing finds the value of the
//   access before. What a bus does beyond the processor's own accesses it notes there itself.
// Order: M6502Init, then a reset through the bus. In a cycle: M6502Sample, then the rest of the machine,
//   then M6502Cycle.
// Differs from the real part, and kept so on purpose: the interrupt lines are sampled as a cycle begins
//   and looked at between instructions only, so CLI, SEI and PLP act at once and a taken branch delays
//   nothing; only BRK lets an NMI take its vector over; 0B 2B 4B 6B 8B AB CB read their operand and do
//   nothing; 9B and BB form their address, read there and do nothing; 93 9C 9E 9F, whose high byte drops
//   out at times on the real part, always store it; the twelve opcodes that stop the real chip are
//   one-cycle no-operations.
#pragma once

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
    void* context = nullptr; // handed back in both

    uint16_t pc = 0;
    alignas(kM6502RegisterStride) uint8_t a = 0;
    alignas(kM6502RegisterStride) uint8_t x = 0;
    alignas(kM6502RegisterStride) uint8_t y = 0;
    alignas(kM6502RegisterStride) uint8_t sp = 0;
    uint8_t p = 0; // M6502Flag; bit 5 stays set, bit 4 clear
    M6502Queue queue{};
    uint32_t queueIndex = 0;            // next step, 0..15; the queue's last entry is always kEnd
    uint32_t cycles = 0;                // since power-on or reset, wrapping
    uint32_t opcode = 0;                // 0..255
    uint32_t operandRegister = kM6502A; // M6502Register
    uint16_t address = 0;               // effective address being built
    uint16_t data = 0;                  // operand or pointer being fetched; 0..255
    uint8_t busValue = 0;               // last value on the bus
    uint32_t nmiLine = 0;
    uint32_t irqLines = 0; // levels, asserted while any bit is set
    uint32_t nmiSeen = 0;  // nmiLine as the cycle began
    uint32_t irqSeen = 0;  // 1: as the cycle began, irqLines held a bit and interrupts were enabled
};
static_assert(offsetof(M6502, x) == offsetof(M6502, a) + kM6502X * kM6502RegisterStride);
static_assert(offsetof(M6502, y) == offsetof(M6502, a) + kM6502Y * kM6502RegisterStride);
static_assert(offsetof(M6502, sp) == offsetof(M6502, a) + kM6502Sp * kM6502RegisterStride);

// Stores the callbacks, which may be null for a processor that only ever runs on a Bus, and clears all
// else.
void M6502Init(M6502& cpu, void* context, M6502ReadFunction read, M6502WriteFunction write);

// Power-on and reset: seven reads, no cycle of the machine. The lines are cleared too, so it comes
// behind the resets of the devices on them.
void M6502Reset(M6502& cpu);

// One cycle, through the callbacks.
void M6502Tick(M6502& cpu);

// The same on a machine's own bus, for its frame loop: the accesses are inlined. A Bus has
//     uint8_t Read(uint16_t address);
//     void Write(uint16_t address, uint8_t value);
template <typename Bus>
void M6502ResetOn(M6502& cpu, Bus& bus);
// Samples the interrupt lines: the first thing in a cycle.
inline void M6502Sample(M6502& cpu);
// Runs steps up to the cycle's access and counts the cycle: the last thing in it.
template <typename Bus>
inline void M6502Cycle(M6502& cpu, Bus& bus);

// Whether the next cycle begins an instruction or an interrupt's sequence.
[[nodiscard]] inline bool M6502IsBetweenInstructions(const M6502& cpu) {
    return cpu.queue[cpu.queueIndex] <= M6502Step::kFetch;
}

// The state piece: a version byte, its size and the fields of the record behind the callbacks, each in
// its own width.
inline constexpr uint32_t kM6502StateSize = 65;
[[nodiscard]] uint32_t M6502StateSize();
// Writes the piece and gives the byte behind it.
uint8_t* M6502SaveState(const M6502& cpu, uint8_t* out);
// Gives the bytes used, or 0, with nothing changed, for a piece of another version or size or a queue
// that no instruction makes. Callbacks are kept.
[[nodiscard]] uint32_t M6502LoadState(M6502& cpu, const uint8_t* data, uint32_t size);

#include "nes/m6502_tick.h"
