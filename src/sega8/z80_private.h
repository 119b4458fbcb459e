// What the Z80's decoder and its steps share.
#pragma once

#include "sega8/z80.h"

#include <cstdint>
#include <cstring>

static_assert(kZ80TemplateSize <= kZ80QueueRoom + 1, "a template fits at the last index");

// Writes a template at `queueIndex`, where the queue is read next.
inline void Z80WriteTemplate(Z80& z80, const Z80Template& from) {
    std::memcpy(&z80.queue[z80.queueIndex], from.steps.data(), kZ80TemplateSize);
    z80.program = &from;
    z80.programAt = z80.queueIndex;
}
void Z80WriteTemplate(Z80& z80, const Z80Template&& from) = delete; // `program` keeps its address

// Operations of A with a value; they set all flags.
void Z80Add(Z80& z80, uint8_t value, uint32_t carry);
void Z80Subtract(Z80& z80, uint8_t value, uint32_t carry);
void Z80Compare(Z80& z80, uint8_t value);
void Z80And(Z80& z80, uint8_t value);
void Z80Or(Z80& z80, uint8_t value);
void Z80Xor(Z80& z80, uint8_t value);
// The result of INC or DEC. They keep the carry.
[[nodiscard]] uint8_t Z80Increment(Z80& z80, uint8_t value);
[[nodiscard]] uint8_t Z80Decrement(Z80& z80, uint8_t value);
// The result of one of the eight rotates and shifts of the CB table.
[[nodiscard]] uint8_t Z80Rotate(Z80& z80, Z80Step step, uint8_t value);
// The flags of BIT; X and Y come from `xySource`.
void Z80TestBit(Z80& z80, uint32_t bit, uint8_t value, uint8_t xySource);

void Z80DecodeCb(Z80& z80);
void Z80DecodeEd(Z80& z80);

// Registers by name and by the three-bit codes of opcodes.
namespace z80_parts {

inline constexpr uint32_t kMinusOne = 0xFFFF; // for z80_detail::Advance
inline constexpr uint32_t kXAndY = kZ80FlagX | kZ80FlagY;
inline constexpr uint32_t kSZAndPv = kZ80FlagS | kZ80FlagZ | kZ80FlagPv;
inline constexpr uint32_t kMemoryCode = 6; // (HL)
inline constexpr uint32_t kAccumulatorCode = 7;

inline uint32_t F(const Z80& z80) {
    return z80_detail::LowByte(z80.regs[kZ80Af]);
}

inline uint8_t A(const Z80& z80) {
    return z80_detail::HighByte(z80.regs[kZ80Af]);
}

inline void SetF(Z80& z80, uint32_t flags) {
    z80_detail::SetLowByte(z80.regs[kZ80Af], z80_detail::LowByte(flags));
}

inline void SetA(Z80& z80, uint32_t value) {
    z80_detail::SetHighByte(z80.regs[kZ80Af], z80_detail::LowByte(value));
}

// The register word of a code. Even codes are high bytes, and so is A.
inline Z80Register WordOfCode(uint32_t code, Z80Register hl) {
    if (code == kAccumulatorCode) {
        return kZ80Af;
    }
    return code >= 4 ? hl : static_cast<Z80Register>(kZ80Bc + (code >> 1));
}

inline bool IsHighByte(uint32_t code) {
    return code == kAccumulatorCode || (code & 1) == 0;
}

inline uint8_t GetRegister(const Z80& z80, uint32_t code, Z80Register hl) {
    const uint32_t word = z80.regs[WordOfCode(code, hl)];
    return IsHighByte(code) ? z80_detail::HighByte(word) : z80_detail::LowByte(word);
}

inline void SetRegister(Z80& z80, uint32_t code, Z80Register hl, uint8_t value) {
    uint32_t& word = z80.regs[WordOfCode(code, hl)];
    if (IsHighByte(code)) {
        z80_detail::SetHighByte(word, value);
    } else {
        z80_detail::SetLowByte(word, value);
    }
}

// The flag if the condition holds, else 0.
inline uint32_t When(bool condition, Z80Flag flag) {
    return condition ? flag : 0;
}

// Writes a template whose steps work on register `word`.
inline void Finish(Z80& z80, const Z80Template& steps, Z80Register word) {
    z80.regIndex = word;
    Z80WriteTemplate(z80, steps);
}

} // namespace z80_parts
