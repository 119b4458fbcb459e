// Soft patches: files that hold the difference between an image and a changed one, so that a translation or a
// correction travels without the game. Three formats, told apart by their first bytes:
//
//     IPS   "PATCH"   runs of new bytes at offsets up to 16 MiB. No checksum: it takes any image.
//     UPS   "UPS1"    the exclusive or of both images, with the sizes and CRC-32s of both and of the patch itself
//     BPS   "BPS1"    copies out of both images and new bytes, with the same sizes and checksums
//
// Sources: the formats' published descriptions.
//
// Any thread. Failure: false with one line that says why, `patched` empty. No bytes make it read or write out of
// bounds, or hold more than `limit` bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Whether the bytes begin as one of the three formats does.
[[nodiscard]] bool IsSoftPatch(std::span<const uint8_t> patch);

// The changed image. Bytes of it that neither image nor patch give are zero.
//
// UPS and BPS: the image, the result and the patch must have the sizes and checksums that the patch names.
[[nodiscard]] bool ApplySoftPatch(std::span<const uint8_t> patch, std::span<const uint8_t> image,
                                  uint64_t limit, std::vector<uint8_t>& patched,
                                  std::string& error);
