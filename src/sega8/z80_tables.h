// Flags of the Z80 by an 8-bit result. X and Y come from the result in all tables.
#pragma once

#include <array>
#include <cstdint>

using Z80FlagTable = std::array<uint8_t, 256>;

extern const Z80FlagTable kZ80FlagsSz;     // S, Z
extern const Z80FlagTable kZ80FlagsInc;    // INC: S, Z, H, overflow
extern const Z80FlagTable kZ80FlagsDec;    // DEC: S, Z, H, overflow, N
extern const Z80FlagTable kZ80FlagsParity; // S, Z, P
extern const Z80FlagTable kZ80FlagsBit;    // BIT: S, and Z together with P
