// Pixels: mixes background and sprites.
#include "nes/ppu.h"
#include "nes/ppu_pixels.h"
#include "nes/ppu_private.h"

#include <algorithm>

namespace {

using namespace ppu_pixels;

void Pixel(PPU& ppu, uint32_t x) {
    const uint32_t layers = LayersAt(ppu, x);
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
