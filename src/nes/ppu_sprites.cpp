// The fetch of a line's sprites.
#include "nes/ppu.h"
#include "nes/ppu_private.h"

namespace {

constexpr uint8_t kFlipX = 0x40;
constexpr uint8_t kFlipY = 0x80;

} // namespace

uint16_t PpuSpriteAddress(const PPU& ppu, uint32_t slot) {
    const uint8_t* sprite = &ppu.secondaryOam[slot * size_t{4}];
    const bool flip = (sprite[2] & kFlipY) != 0;
    auto row = static_cast<uint32_t>(ppu.line - sprite[0]);
    if ((ppu.control & kPpuCtrlTallSprites) != 0) {
        // The lower half lies in the next tile, 16 bytes on.
        row = (row & 7) + (row & 8) * 2;
        row ^= flip ? 0x17 : 0;
        return static_cast<uint16_t>((sprite[1] & 1U) << 12 | (sprite[1] & 0xFEU) << 4 | row);
    }
    row &= 7;
    row ^= flip ? 7 : 0;
    const uint32_t table = (ppu.control & kPpuCtrlSpriteTable) != 0 ? 0x1000 : 0;
    return static_cast<uint16_t>(table | sprite[1] * 16U | row);
}

void PpuStoreSprite(PPU& ppu, uint32_t slot, uint8_t high) {
    if (slot >= ppu.spriteCount) {
        return;
    }
    const uint8_t attributes = ppu.secondaryOam[slot * size_t{4} + 2];
    uint8_t low = ppu.lowPlane;
    if ((attributes & kFlipX) != 0) {
        low = kPpuReversed[low];
        high = kPpuReversed[high];
    }
    uint32_t pattern = kPpuSpread[low] | kPpuSpread[high] << 1;
    uint32_t common = 0x10U | (attributes & 3U) << 2 | (attributes & kPpuSpriteBehind);
    if (slot == 0 && ppu.zeroNote) {
        common |= kPpuSpriteZero;
    }
    uint8_t* out = &ppu.spriteLine[ppu.secondaryOam[slot * size_t{4} + 3]];
    for (; pattern != 0; pattern <<= 4, ++out) {
        const uint32_t pixel = pattern >> 28;
        if (pixel != 0 && *out == 0) {
            *out = static_cast<uint8_t>(common | pixel);
        }
    }
}
