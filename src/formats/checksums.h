// The older checksums by which lists of games name a file. The program's own identity of an image is sha256.h.
#pragma once

#include <array>
#include <cstdint>
#include <span>

using Sha1Digest = std::array<uint8_t, 20>;

[[nodiscard]] uint32_t Crc32(std::span<const uint8_t> bytes); // as in zip archives
[[nodiscard]] Sha1Digest Sha1(std::span<const uint8_t> bytes);
