// Fetching the sprites of a line.
#include "nes/ppu.h"
#include "nes/ppu_private.h"

namespace {

// The bytes of a sprite in OAM.
enum SpriteByte : size_t { kY, kTile, kAttributes, kX, kSpriteBytes };

[[nodiscard]] const uint8_t* SpriteIn(const PPU& ppu, uint32_t slot) {
    return &ppu.secondaryOam[slot * kSpriteBytes];
}

} // namespace

uint16_t PpuSpriteAddress(const PPU& ppu, uint32_t slot) {
    using ppu_bus::kSecondPatternTable;
    using ppu_bus::kTileBytes;
    const uint8_t* sprite = SpriteIn(ppu, slot);
    const bool flip = (sprite[kAttributes] & kPpuAttributeFlipY) != 0;
    auto row = static_cast<uint32_t>(ppu.line - sprite[kY]);
    if ((ppu.control & kPpuCtrlTallSprites) != 0) {
        // The tile's lowest bit selects the table. Rows 8 to 15 are in the next tile.
        row = (row & 7) | ((row & 8) != 0 ? kTileBytes : 0);
        row ^= flip ? kTileBytes | 7 : 0;
        const uint32_t table = (sprite[kTile] & 1) != 0 ? kSecondPatternTable : 0;
        return static_cast<uint16_t>(table | (sprite[kTile] & 0xFEU) * kTileBytes | row);
    }
    row &= 7;
    row ^= flip ? 7 : 0;
    const uint32_t table = (ppu.control & kPpuCtrlSpriteTable) != 0 ? kSecondPatternTable : 0;
    return static_cast<uint16_t>(table | sprite[kTile] * kTileBytes | row);
}

void PpuStoreSprite(PPU& ppu, uint32_t slot, uint8_t high) {
    if (slot >= ppu.spriteCount) {
        return;
    }
    const uint8_t* sprite = SpriteIn(ppu, slot);
    const uint8_t attributes = sprite[kAttributes];
    uint8_t low = ppu.lowPlane;
    if ((attributes & kPpuAttributeFlipX) != 0) {
        low = kPpuReversed[low];
        high = kPpuReversed[high];
    }
    uint32_t pattern = kPpuSpread[low] | kPpuSpread[high] << 1;
    const uint32_t number = attributes & kPpuAttributePalette;
    uint32_t common = ppu_bus::kSpritePalettes | number << 2;
    common |= (attributes & kPpuAttributeBehind) != 0 ? kPpuSpriteBehind : 0U;
    if (slot == 0 && ppu.zeroNote) {
        common |= kPpuSpriteZero;
    }
    uint8_t* out = &ppu.spriteLine[sprite[kX]];
    for (; pattern != 0; pattern <<= 4, ++out) {
        const uint32_t pixel = pattern >> 28;
        if (pixel != 0 && *out == 0) {
            *out = static_cast<uint8_t>(common | pixel);
        }
    }
}
