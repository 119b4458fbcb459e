// The fetches of a line at once, while no register access is in progress: tile after tile with their pixels, and
// the eight sprites of the next line.
#include "nes/ppu_line.h"

#include "nes/ppu_pixels.h"
#include "nes/ppu_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kGroup = 8;           // dots that fetch one tile or sprite
constexpr uint32_t kAddressesOfPart = 2; // a group has two in nametables, then two of patterns

[[nodiscard]] uint8_t ByteAt(const NES_PAGES& pages, uint32_t address) {
    const NES_PPU_PAGE& page = pages.ppu[NesPpuPageOf(static_cast<uint16_t>(address))];
    return page.data != nullptr ? page.data[NesPpuPlace(static_cast<uint16_t>(address))]
                                : kNesUnreadable;
}

void WatchGroup(const PPU& ppu, uint32_t pattern) {
    const NES_PAGES& pages = *ppu.pages;
    if (pages.ppuUpperHook != nullptr) {
        pages.ppuUpperHook(pages.board, ppu_bus::kNametables, kAddressesOfPart);
        pages.ppuUpperHook(pages.board, static_cast<uint16_t>(pattern), kAddressesOfPart);
    }
}

} // namespace

bool PpuCanRunLine(const PPU& ppu) {
    const NES_PAGES& pages = *ppu.pages;
    return (pages.ppuAddressHook == NesIgnoreAddress || pages.ppuUpperHook != nullptr) &&
           std::ranges::none_of(pages.ppu,
                                [](const NES_PPU_PAGE& page) { return page.read != nullptr; });
}

void PpuRunTiles(PPU& ppu, uint32_t dot, uint32_t groups) {
    const NES_PAGES& pages = *ppu.pages;
    if (ppu.visible) {
        PpuDrawTo(ppu, dot);
    }
    uint64_t background = ppu.background;
    for (uint32_t i = 0; i < groups; ++i, dot += kGroup) {
        ppu.tile = ByteAt(pages, ppu_tick::TileAddress(ppu));
        ppu_tick::TakeAttribute(ppu, ByteAt(pages, ppu_tick::AttributeAddress(ppu)));
        const uint32_t pattern = ppu_tick::PatternAddress(ppu);
        ppu.lowPlane = ByteAt(pages, pattern);
        ppu.fetchAddress = static_cast<uint16_t>(pattern + ppu_bus::kPlaneBytes);
        WatchGroup(ppu, pattern);
        const uint32_t pixels = ppu_tick::TilePixels(ppu, ByteAt(pages, ppu.fetchAddress));
        if (ppu.visible) {
            ppu_pixels::PutEight(ppu, dot, ppu_pixels::FirstEight(ppu, background));
            background <<= 32;
        }
        constexpr uint64_t kFirstEight = 0xFFFFFFFF00000000;
        background = (background & kFirstEight) | pixels;
    }
    ppu.background = background;
    if (ppu.visible) {
        ppu.drawnDots = dot;
    }
}

void PpuRunSprites(PPU& ppu, uint32_t firstSlot, uint32_t slots) {
    const NES_PAGES& pages = *ppu.pages;
    for (uint32_t slot = firstSlot; slot < firstSlot + slots; ++slot) {
        const uint32_t low = PpuSpriteAddress(ppu, slot);
        WatchGroup(ppu, low);
        ppu.lowPlane = ByteAt(pages, low);
        ppu.fetchAddress = static_cast<uint16_t>(low + ppu_bus::kPlaneBytes);
        if (slot < ppu.spriteCount) {
            PpuStoreSprite(ppu, slot, ByteAt(pages, ppu.fetchAddress));
        }
    }
}
