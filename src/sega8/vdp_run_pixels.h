// Pixels of the 8-bit VDP, eight at a time as the bytes of a word. Part of vdp_run.cpp: background
// and sprites are in the line buffers, and the palette does not change within a span.
#pragma once

#include "base/bytes.h"
#include "sega8/vdp.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vdp_run {

inline constexpr uint32_t kChunk = 8; // pixels in a word

inline uint64_t EveryPixel(uint8_t value) {
    return value * vdp_fetch::kEveryPixel;
}

inline constexpr uint8_t kNotSolid = 0x80; // of an entry: the chip below shows through

// The palette entries that vdp_tick::Pixel picks for the pixels from `x` to before `end`, both
// multiples of eight; the upper of two chips adds kNotSolid. A sprite's entry is below 128, so
// adding 0x7F carries into the byte's own top bit, and only if the entry is not 0.
inline void PickPixels(VDP& vdp, uint8_t* entries, uint32_t x, uint32_t end) {
    const uint64_t throughBits = vdp.secondChip ? EveryPixel(kNotSolid) : 0;
    uint64_t everySprite = 0;
    for (size_t i = x; i < end; i += kChunk) {
        const auto colours = LoadLittleEndian<uint64_t>(&vdp.colourLine[i]);
        const auto background = LoadLittleEndian<uint64_t>(&vdp.priorityLine[i]);
        const auto sprites = LoadLittleEndian<uint64_t>(&vdp.spriteLine[i]);
        const uint64_t sprite = sprites & EveryPixel(kVdpSpriteEntry);
        const uint64_t present = (sprite + EveryPixel(0x7F)) >> 7;
        const uint64_t shown = present & ~(background >> 1) & vdp_fetch::kEveryPixel;
        const uint64_t mask = (shown << 8) - shown;
        const uint64_t through = ~(background | shown) & vdp_fetch::kEveryPixel;
        const uint64_t picked = (colours & EveryPixel(31) & ~mask) | (sprite & mask);
        StoreLittleEndian<uint64_t>(&entries[i], picked | (through << 7 & throughBits));
        everySprite |= sprites;
    }
    if ((everySprite & EveryPixel(kVdpSpriteCollides)) != 0) {
        vdp.status |= kVdpStatusCollision;
    }
    if (x == 0 && vdp_fetch::LeftColumnBlank(vdp)) {
        std::memset(entries, vdp_fetch::Backdrop(vdp) | (vdp.secondChip ? kNotSolid : 0), kChunk);
    }
}

inline void StoreChunk(uint32_t* row, const uint32_t* colours, const uint8_t* entries) {
    for (size_t i = 0; i < kChunk; ++i) {
        row[i] = colours[entries[i]];
    }
}

inline void StorePixels(uint32_t* row, const uint32_t* colours, const uint8_t* entries,
                        uint32_t pixels) {
    for (size_t i = 0; i < pixels; i += kChunk) {
        StoreChunk(row + i, colours, entries + i);
    }
}

// The upper of two chips leaves out transparent pixels.
inline void StoreSolidPixels(uint32_t* row, const uint32_t* colours, const uint8_t* entries,
                             uint32_t pixels) {
    for (size_t i = 0; i < pixels; i += kChunk) {
        const uint64_t through = LoadLittleEndian<uint64_t>(&entries[i]) & EveryPixel(kNotSolid);
        if (through == 0) {
            StoreChunk(row + i, colours, entries + i);
        } else if (through != EveryPixel(kNotSolid)) {
            for (size_t pixel = i; pixel < i + kChunk; ++pixel) {
                const bool solid = (entries[pixel] & kNotSolid) == 0;
                row[pixel] = solid ? colours[entries[pixel] & kVdpEntryMask] : row[pixel];
            }
        }
    }
}

// The pixels from `x` to before `end`, both multiples of eight.
inline void OutputChunks(VDP& vdp, uint32_t x, uint32_t end) {
    std::array<uint8_t, kVdpPictureWidth> entries;
    PickPixels(vdp, entries.data(), x, end);
    if (vdp.row == nullptr) {
        return;
    }
    const uint32_t* const colours = vdp.fixedColours ? kVdpFixedColours : vdp.palette;
    if (vdp.secondChip) {
        StoreSolidPixels(vdp.row + x, colours, entries.data() + x, end - x);
    } else {
        StorePixels(vdp.row + x, colours, entries.data() + x, end - x);
    }
}

// Draws the pixels of the dots from `first` to before `end`. Chunks start at multiples of eight, so
// the left column is one chunk.
inline void OutputPixels(VDP& vdp, uint32_t first, uint32_t end) {
    constexpr uint32_t kEnd = kVdpFirstPixelDot + kVdpPictureWidth;
    if (first >= kEnd || end <= kVdpFirstPixelDot) {
        return;
    }
    uint32_t x = std::max(first, kVdpFirstPixelDot) - kVdpFirstPixelDot;
    const uint32_t endX = std::min(end, kEnd) - kVdpFirstPixelDot;
    for (; x < endX && x % kChunk != 0; ++x) {
        vdp_tick::Pixel(vdp, x);
    }
    const uint32_t chunksEnd = endX / kChunk * kChunk;
    if (x < chunksEnd) {
        OutputChunks(vdp, x, chunksEnd);
        x = chunksEnd;
    }
    for (; x < endX; ++x) {
        vdp_tick::Pixel(vdp, x);
    }
}

} // namespace vdp_run
