// Image data packed with LZMA: five property bytes, then a raw stream without a length. An end marker
// is not written and not needed.
//
// Any thread may call; each call allocates what it needs and frees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

inline constexpr size_t kLzmaPropertyBytes = 5;

// Far more than an image of any system; a file that states more is refused.
inline constexpr uint64_t kImageLimit = uint64_t{1} << 28;

// The most bytes that a packed image of this size can unpack to, capped at kImageLimit.
//
// The densest symbol, a repeated match of 273 bytes, takes 14 binary decisions. A probability of the
// coder is at most 2017 / 2048, so a decision takes at least 0.022 bits, the symbol 0.308 bits, and a
// packed byte holds at most 7,090 unpacked ones; the code uses 8,192.
[[nodiscard]] uint64_t LargestUnpackedSize(uint64_t packedSize);

// 4 MiB dictionary, lc 3, lp 0, pb 2, matches of 32 bytes are good enough, the fast encoder with hash
// chains of 4 bytes: the settings that the LZMA SDK calls level 2, and the same bytes. Every image up
// to kImageLimit can be packed, even one that grows; empty for a larger one and when memory runs out.
[[nodiscard]] std::vector<uint8_t> PackImage(std::span<const uint8_t> image);

// Unpacks exactly `image.size()` bytes. False when the properties are invalid, the stream is damaged or
// it ends early; `image` then holds what came out before that, and zeros after it. lc + lp may be 4 at
// the most.
bool UnpackImage(std::span<const uint8_t> packed, std::span<uint8_t> image);
