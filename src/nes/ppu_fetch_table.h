// What the PPU fetches on each dot of a line (nesdev wiki, "PPU rendering", whose dots are numbered from 1).
//
// An even dot puts an address on the bus, the odd dot after it reads the byte. Dot 339 also reads, drops the
// byte and has no entry; dot 340 does nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

enum PpuFetch : uint8_t {
    kFetchNothing,
    kFetchNameAddress,
    kFetchTile,
    kFetchAttributeAddress,
    kFetchAttributeAddressIncrementY, // the last of the visible dots
    kFetchAttributeIncrementX,
    kFetchLowAddress,
    kFetchLow,
    kFetchHighAddress,
    kFetchHigh,      // completes the tile after the one being drawn
    kFetchHighAhead, // completes one of the next line's first two tiles
    kFetchUnused,
    kFetchUnusedCopyX,
    kFetchSpriteLowAddress,
    kFetchSpriteHighAddress,
    kFetchSpriteHigh,
};

inline constexpr size_t kPpuFetchDots = 339;

namespace ppu_fetch_table {

using Cycle = std::array<PpuFetch, 8>;

// Dots `from` to `to` inclusive repeat the entries of `cycle`.
struct Row {
    size_t from;
    size_t to;
    Cycle cycle;
};

inline constexpr Cycle kBackground{
    kFetchNameAddress, kFetchTile, kFetchAttributeAddress, kFetchAttributeIncrementX,
    kFetchLowAddress,  kFetchLow,  kFetchHighAddress,      kFetchHigh};
inline constexpr Cycle kAhead{kFetchNameAddress,         kFetchTile,       kFetchAttributeAddress,
                              kFetchAttributeIncrementX, kFetchLowAddress, kFetchLow,
                              kFetchHighAddress,         kFetchHighAhead};
inline constexpr Cycle kSprite{
    kFetchNameAddress,      kFetchUnused, kFetchNameAddress,       kFetchUnused,
    kFetchSpriteLowAddress, kFetchLow,    kFetchSpriteHighAddress, kFetchSpriteHigh};

// A later row overrides an earlier one.
inline constexpr std::array<Row, 6> kRows{
    {
     {0, 255, kBackground},
     {250, 250, {kFetchAttributeAddressIncrementY}},
     {256, 319, kSprite},
     {257, 257, {kFetchUnusedCopyX}},
     {320, 335, kAhead},
     {336, 338, {kFetchNameAddress, kFetchUnused, kFetchNameAddress}},
     }
};

constexpr std::array<PpuFetch, kPpuFetchDots> Expand() {
    std::array<PpuFetch, kPpuFetchDots> table{};
    for (const Row& row : kRows) {
        for (size_t dot = row.from; dot <= row.to; ++dot) {
            table[dot] = row.cycle[(dot - row.from) % row.cycle.size()];
        }
    }
    return table;
}

constexpr bool HasGap(const std::array<PpuFetch, kPpuFetchDots>& table) {
    for (const PpuFetch fetch : table) {
        if (fetch == kFetchNothing) {
            return true;
        }
    }
    return false;
}

} // namespace ppu_fetch_table

inline constexpr std::array<PpuFetch, kPpuFetchDots> kPpuFetches = ppu_fetch_table::Expand();

static_assert(kPpuFetches.size() == 339);
static_assert(!ppu_fetch_table::HasGap(kPpuFetches));
