// What is down: a byte for each code of `bindings.h`, a bit for each control of `pad_defaults.h`.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kInputCodes = 2048;
inline constexpr uint32_t kPadBits = 64;

struct INPUT_STATE {
    std::array<std::atomic<uint8_t>, kInputCodes> down{};
    std::atomic<uint64_t> pads{0}; // down and not bound by the user
};
