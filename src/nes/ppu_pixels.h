// Mixes background and sprites into pixels. Shared by the PPU's dots (ppu_picture.cpp) and lines (ppu_run.cpp).
#pragma once

#include "nes/ppu.h"

#include <cstdint>
#include <cstring>

namespace ppu_pixels {

inline constexpr uint32_t kLeftColumn = 8; // pixels, with mask bits of their own

inline void Put(PPU& ppu, uint32_t x, uint32_t entry) {
    if (ppu.row != nullptr) {
        ppu.row[x] = ppu.shades[entry];
    }
}

// The palette entry of a pixel with a sprite. `background` is 0 or the entry of a solid background pixel.
[[nodiscard]] inline uint32_t Mix(PPU& ppu, uint32_t x, uint32_t background, uint32_t sprite) {
    if (background == 0) {
        return sprite & kPpuSpriteEntry;
    }
    constexpr uint32_t kNoHitX = 255; // the chip never reports a hit there
    if ((sprite & kPpuSpriteZero) != 0 && ppu.zeroNote && x < kNoHitX) {
        ppu.status |= kPpuStatusSpriteZeroHit;
        ppu.zeroNote = false;
    }
    return (sprite & kPpuSpriteBehind) != 0 ? background : sprite & kPpuSpriteEntry;
}

[[nodiscard]] inline uint32_t LayersAt(const PPU& ppu, uint32_t x) {
    return x < kLeftColumn ? ppu.leftLayers : ppu.layers;
}

// The same as Pixel for eight from `x` on, a multiple of 8. `entries`: of the background, four bits each, the first on top.
inline void PutEight(PPU& ppu, uint32_t x, uint32_t entries) {
    const uint32_t layers = LayersAt(ppu, x);
    const uint32_t solid = (entries | entries >> 1) & 0x11111111U;
    entries &= (layers & kPpuLayerBackground) != 0 ? solid * 15 : 0;
    uint64_t sprites = 0;
    std::memcpy(&sprites, &ppu.spriteLine[x], sizeof sprites);
    if (sprites != 0 && (layers & kPpuLayerSprites) != 0) {
        for (uint32_t i = 0; i < 8; ++i) {
            uint32_t entry = entries >> (28 - 4 * i) & 15;
            const uint32_t sprite = ppu.spriteLine[x + i];
            if (sprite != 0) {
                entry = Mix(ppu, x + i, entry, sprite);
            }
            Put(ppu, x + i, entry);
        }
    } else if (ppu.row != nullptr) {
        uint32_t* out = ppu.row + x;
        for (uint32_t i = 0; i < 8; ++i) {
            out[i] = ppu.shades[entries >> (28 - 4 * i) & 15];
        }
    }
}

// The first eight of the sixteen background pixels, from the fine scroll on.
[[nodiscard]] inline uint32_t FirstEight(const PPU& ppu, uint64_t background) {
    return static_cast<uint32_t>(background << (4 * ppu.fineX) >> 32);
}

} // namespace ppu_pixels
