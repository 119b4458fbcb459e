// SHA-256, the identity of every game image.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

using Sha256Digest = std::array<uint8_t, 32>;

[[nodiscard]] Sha256Digest Sha256(std::span<const uint8_t> bytes);

// Two hexadecimal digits a byte, lower case; 64 for a digest.
[[nodiscard]] std::string HexText(std::span<const uint8_t> bytes);
