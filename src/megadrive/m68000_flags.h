// Condition flags in the form in which the processor keeps them, and the arithmetic that sets them.
//
// x and c are bit 8 of their fields, n and v bit 7, and notZ is 0 when Z is set. A result is shifted right
// until its top bit is bit 7; the other bits of a field mean nothing.
#pragma once

#include "megadrive/m68000.h"

#include <cstdint>

enum class M68kSize : uint32_t { kByte = 8, kWord = 16, kLong = 32 };

inline constexpr uint32_t kM68kFlagX = 0x100;
inline constexpr uint32_t kM68kFlagN = 0x80;
inline constexpr uint32_t kM68kFlagV = 0x80;
inline constexpr uint32_t kM68kFlagC = 0x100;

template <M68kSize kSize>
inline constexpr uint32_t kM68kBits = static_cast<uint32_t>(kSize);
template <M68kSize kSize>
inline constexpr uint32_t kM68kMask = 0xFFFFFFFF >> (32 - kM68kBits<kSize>);
// The right shift that moves the top bit to bit 7.
template <M68kSize kSize>
inline constexpr uint32_t kM68kTopShift = kM68kBits<kSize> - 8;

inline uint32_t M68kSignExtendByte(uint32_t value) {
    return static_cast<uint32_t>(int32_t{static_cast<int8_t>(value)});
}

inline uint32_t M68kSignExtendWord(uint32_t value) {
    return static_cast<uint32_t>(int32_t{static_cast<int16_t>(value)});
}

inline bool M68kHasX(const M68K_STATE& cpu) {
    return (cpu.x & kM68kFlagX) != 0;
}
inline bool M68kHasN(const M68K_STATE& cpu) {
    return (cpu.n & kM68kFlagN) != 0;
}
inline bool M68kHasZ(const M68K_STATE& cpu) {
    return cpu.notZ == 0;
}
inline bool M68kHasV(const M68K_STATE& cpu) {
    return (cpu.v & kM68kFlagV) != 0;
}
inline bool M68kHasC(const M68K_STATE& cpu) {
    return (cpu.c & kM68kFlagC) != 0;
}

// The low five bits of the status word.
inline uint32_t M68kConditions(const M68K_STATE& cpu) {
    return (cpu.x & kM68kFlagX) >> 4 | (cpu.n & kM68kFlagN) >> 4 | (M68kHasZ(cpu) ? 4U : 0U) |
           (cpu.v & kM68kFlagV) >> 6 | (cpu.c & kM68kFlagC) >> 8;
}

inline void M68kSetConditions(M68K_STATE& cpu, uint32_t status) {
    cpu.x = status << 4 & kM68kFlagX;
    cpu.n = status << 4 & kM68kFlagN;
    cpu.notZ = ~status & 4;
    cpu.v = status << 6 & kM68kFlagV;
    cpu.c = status << 8 & kM68kFlagC;
}

// The sixteen conditions, by their number in an opcode.
template <uint32_t kCondition>
inline bool M68kHolds(const M68K_STATE& cpu) {
    constexpr uint32_t kKind = kCondition >> 1;
    bool isTrue = true;
    if constexpr (kKind == 1) {
        isTrue = !M68kHasC(cpu) && !M68kHasZ(cpu);
    } else if constexpr (kKind == 2) {
        isTrue = !M68kHasC(cpu);
    } else if constexpr (kKind == 3) {
        isTrue = !M68kHasZ(cpu);
    } else if constexpr (kKind == 4) {
        isTrue = !M68kHasV(cpu);
    } else if constexpr (kKind == 5) {
        isTrue = !M68kHasN(cpu);
    } else if constexpr (kKind == 6) {
        isTrue = ((cpu.n ^ cpu.v) & kM68kFlagN) == 0;
    } else if constexpr (kKind == 7) {
        isTrue = ((cpu.n ^ cpu.v) & kM68kFlagN) == 0 && !M68kHasZ(cpu);
    }
    return (kCondition & 1) != 0 ? !isTrue : isTrue;
}

// Sets N and Z from a result, clears V and C; X stays. Returns the result.
template <M68kSize kSize>
inline uint32_t M68kLogicFlags(M68K_STATE& cpu, uint32_t result) {
    cpu.n = result >> kM68kTopShift<kSize>;
    cpu.notZ = result & kM68kMask<kSize>;
    cpu.v = 0;
    cpu.c = 0;
    return result;
}

// Returns a sum and sets N, V and C. The upper bits of the operands must be clear.
template <M68kSize kSize>
inline uint32_t M68kSum(M68K_STATE& cpu, uint32_t source, uint32_t target, uint32_t carry) {
    const uint32_t result = target + source + carry;
    cpu.n = result >> kM68kTopShift<kSize>;
    cpu.v = ((source ^ result) & (target ^ result)) >> kM68kTopShift<kSize>;
    if constexpr (kSize == M68kSize::kLong) {
        cpu.c = ((source & target) | (~result & (source | target))) >> 23;
    } else {
        cpu.c = result >> kM68kTopShift<kSize>;
    }
    return result & kM68kMask<kSize>;
}

// Returns target - source - borrow and sets N, V and C.
template <M68kSize kSize>
inline uint32_t M68kDifference(M68K_STATE& cpu, uint32_t source, uint32_t target, uint32_t borrow) {
    const uint32_t result = target - source - borrow;
    cpu.n = result >> kM68kTopShift<kSize>;
    cpu.v = ((source ^ target) & (result ^ target)) >> kM68kTopShift<kSize>;
    if constexpr (kSize == M68kSize::kLong) {
        cpu.c = ((source & result) | (~target & (source | result))) >> 23;
    } else {
        cpu.c = result >> kM68kTopShift<kSize>;
    }
    return result & kM68kMask<kSize>;
}
