// What the files of the signal processor share.
#pragma once

#include "megadrive/svp.h"

#include <cstdint>

// What an access returns that reaches no memory because the register isn't programmed.
inline constexpr uint32_t kSvpNotProgrammed = 0xFFFFFFFF;

// X and Y are signed fractions, so their product is doubled.
[[nodiscard]] inline uint32_t SvpProduct(const MD_SVP& svp) {
    const auto x = static_cast<int16_t>(static_cast<uint16_t>(svp.gr[kSvpX] >> 16));
    const auto y = static_cast<int16_t>(static_cast<uint16_t>(svp.gr[kSvpY] >> 16));
    return static_cast<uint32_t>(x * y) * 2;
}

inline void SvpPush(MD_SVP& svp, uint32_t value) {
    const uint32_t depth = (svp.gr[kSvpStack] >> 16) % kSvpStackDepth;
    svp.stack[depth] = static_cast<uint16_t>(value);
    svp.gr[kSvpStack] = ((depth + 1) % kSvpStackDepth) << 16;
}

// The registers that do more than hold a value, 5 to 15. `pc` is the word after the instruction's own. A read
// returns the value as `gr` would hold it. A write takes 16 bits; PC isn't written this way.
[[nodiscard]] uint32_t SvpReadSpecial(MD_SVP& svp, uint32_t number, uint32_t pc);
void SvpWriteSpecial(MD_SVP& svp, uint32_t number, uint32_t value, uint32_t pc);
