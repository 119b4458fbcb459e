// Pixels: mixes background and sprites.
#include "nes/ppu.h"
#include "nes/ppu_private.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kLeftColumn = 8; // pixels, with mask bits of their own

void Put(PPU& ppu, uint32_t x, uint32_t entry) {
    if (ppu.row != nullptr) {
        ppu.row[x] = ppu.shades[entry];
    }
}

// The palette entry of a pixel with a sprite. `background` is 0 or the entry of a solid background pixel.
[[nodiscard]] uint32_t Mix(PPU& ppu, uint32_t x, uint32_t background, uint32_t sprite) {
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

void Pixel(PPU& ppu, uint32_t x) {
    const uint32_t layers = x < kLeftColumn ? ppu.leftLayers : ppu.layers;
    auto entry = static_cast<uint32_t>(ppu.background >> (60 - 4 * ppu.fineX)) & 15;
    ppu.background <<= 4;
    if ((layers & kPpuLayerBackground) == 0 || (entry & 3) == 0) {
        entry = 0;
    }
    const uint32_t sprite = ppu.spriteLine[x];
    if (sprite != 0 && (layers & kPpuLayerSprites) != 0) {
        entry = Mix(ppu, x, entry, sprite);
    }
    Put(ppu, x, entry);
}

// The same as eight times Pixel; `x` is a multiple of 8.
void EightPixels(PPU& ppu, uint32_t x) {
    const uint32_t layers = x < kLeftColumn ? ppu.leftLayers : ppu.layers;
    auto entries = static_cast<uint32_t>(ppu.background << (4 * ppu.fineX) >> 32);
    ppu.background <<= 32;
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

// Without rendering the whole line shows palette entry 0, or the entry that vramAddress points to.
void Backdrop(PPU& ppu, uint32_t end) {
    if (ppu.row != nullptr) {
        const uint32_t entry =
            ppu_bus::IsPalette(ppu.vramAddress) ? ppu.vramAddress & ppu_bus::kPaletteEntry : 0;
        std::fill(ppu.row + ppu.drawnDots, ppu.row + end, ppu.shades[entry]);
    }
}

} // namespace

void PpuDrawTo(PPU& ppu, uint32_t end) {
    if (ppu.drawnDots >= end) {
        return;
    }
    if (!ppu.rendering) {
        Backdrop(ppu, end);
    } else if (end - ppu.drawnDots == 8 && end % 8 == 0) [[likely]] {
        EightPixels(ppu, ppu.drawnDots);
    } else {
        for (uint32_t x = ppu.drawnDots; x < end; ++x) {
            Pixel(ppu, x);
        }
    }
    ppu.drawnDots = end;
}

void PpuCatchUp(PPU& ppu) {
    const uint32_t end = std::min(ppu.dot + 1, kPpuWidth);
    if (ppu.visible) {
        PpuDrawTo(ppu, end);
    }
    if (ppu.rendering) {
        PpuEvaluateTo(ppu, end);
    }
    ppu.drawnDots = end;
    ppu.evaluatedDots = end;
}
