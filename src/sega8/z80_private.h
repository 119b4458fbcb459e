// What the Z80's decoder and its steps share.
#pragma once

#include "sega8/z80.h"

#include <array>
#include <cstdint>
#include <cstring>

inline constexpr uint32_t kZ80TemplateSize = 20;
static_assert(kZ80TemplateSize <= kZ80QueueRoom + 1, "a template fits behind the last index");

// The remaining clocks of an instruction, one step each.
using Z80Template = std::array<Z80Step, kZ80TemplateSize>;

// Puts a template where the queue is read next.
inline void Z80WriteTemplate(Z80& z80, const Z80Template& steps) {
    std::memcpy(&z80.queue[z80.queueIndex], steps.data(), steps.size());
}

// Sums and comparisons of A with a value; flags in full.
void Z80Add(Z80& z80, uint8_t value, uint32_t carry);
void Z80Subtract(Z80& z80, uint8_t value, uint32_t carry);
void Z80Compare(Z80& z80, uint8_t value);
void Z80And(Z80& z80, uint8_t value);
void Z80Or(Z80& z80, uint8_t value);
void Z80Xor(Z80& z80, uint8_t value);
// The result of an INC or DEC; the carry stays.
[[nodiscard]] uint8_t Z80Increment(Z80& z80, uint8_t value);
[[nodiscard]] uint8_t Z80Decrement(Z80& z80, uint8_t value);
// One of the eight rotates and shifts of the CB table, by its step.
[[nodiscard]] uint8_t Z80Rotate(Z80& z80, Z80Step step, uint8_t value);
// BIT; X and Y come from xySource.
void Z80TestBit(Z80& z80, uint32_t bit, uint8_t value, uint8_t xySource);

// The step of the CB table's opcode (rotate, BIT, SET or RES), and the same for SET and RES of a value.
[[nodiscard]] Z80Step Z80BitTableStep(uint32_t opcode);

void Z80DecodeCb(Z80& z80);
void Z80DecodeEd(Z80& z80);
