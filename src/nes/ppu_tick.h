// The PPU's tick, one dot, to be inlined into a machine's frame loop.
//
// A dot moves along the line, draws its pixel, evaluates sprites, fetches, and advances the PPUDATA access
// in progress, in this order. Pixels and evaluation depend only on registers and on tiles already fetched, so
// they wait for a new tile, the end of the visible line or a register access. Fetches never wait: boards watch
// them and change what they read.
#pragma once

#include "nes/nes_pages.h"
#include "nes/ppu.h"
#include "nes/ppu_fetch_table.h"
#include "nes/ppu_private.h"

#include <cstdint>

namespace ppu_tick {

inline constexpr uint16_t kHorizontalBits = ppu_address::kNametableX | ppu_address::kCoarseX;

inline void IncrementX(PPU& ppu) {
    if ((ppu.vramAddress & ppu_address::kCoarseX) == ppu_address::kCoarseX) {
        ppu.vramAddress ^= kHorizontalBits; // coarse X to 0, other nametable
    } else {
        ++ppu.vramAddress;
    }
}

inline void IncrementY(PPU& ppu) {
    using namespace ppu_address;
    constexpr uint16_t kLastRow = 29 << kCoarseYShift;
    constexpr uint16_t kLastAttributeRow = 31 << kCoarseYShift;
    if ((ppu.vramAddress & kFineY) != kFineY) {
        ppu.vramAddress += 1 << kFineYShift;
        return;
    }
    ppu.vramAddress &= kTile;
    switch (ppu.vramAddress & kCoarseY) {
    case kLastRow: ppu.vramAddress ^= kNametableY | kLastRow; break; // row 0 of the other nametable
    case kLastAttributeRow: ppu.vramAddress ^= kCoarseY; break;      // row 0 of the same nametable
    default: ppu.vramAddress += 1 << kCoarseYShift; break;
    }
}

[[nodiscard]] inline uint8_t Read(PPU& ppu) {
    if (ppu.ioState != kPpuNoAccess) [[unlikely]] {
        return PpuCollide(ppu);
    }
    return NesReadPpuPage(*ppu.pages, ppu.fetchAddress);
}

[[nodiscard]] inline uint32_t TileAddress(const PPU& ppu) {
    return ppu_bus::kNametables | (ppu.vramAddress & ppu_address::kTile);
}

// An attribute byte covers 4 by 4 tiles; a row of the table has eight.
[[nodiscard]] inline uint32_t AttributeAddress(const PPU& ppu) {
    using namespace ppu_address;
    const uint32_t address = ppu.vramAddress;
    const uint32_t row = (address & kCoarseY) >> kCoarseYShift >> 2;
    const uint32_t column = (address & kCoarseX) >> 2;
    return ppu_bus::kNametables | ppu_bus::kAttributes | (address & kNametables) | row << 3 |
           column;
}

// Takes the two bits for the current tile's quarter, 2 by 2 tiles, and moves to the next tile.
inline void TakeAttribute(PPU& ppu, uint8_t byte) {
    using namespace ppu_address;
    const uint32_t right = ppu.vramAddress & kQuarterX;        // 0 or 2
    const uint32_t below = (ppu.vramAddress & kQuarterY) >> 4; // 0 or 4
    constexpr uint8_t kQuarterBits = 0x03;
    ppu.attribute = byte >> (below | right) & kQuarterBits;
    IncrementX(ppu);
}

[[nodiscard]] inline uint32_t PatternAddress(const PPU& ppu) {
    const uint32_t table =
        (ppu.control & kPpuCtrlBackgroundTable) != 0 ? ppu_bus::kSecondPatternTable : 0;
    const uint32_t fineY = (ppu.vramAddress & ppu_address::kFineY) >> ppu_address::kFineYShift;
    return table | ppu.tile * ppu_bus::kTileBytes | fineY;
}

// Eight pixels from the planes and the attribute of a tile.
[[nodiscard]] inline uint32_t TilePixels(const PPU& ppu, uint8_t high) {
    constexpr uint32_t kInEveryPixel = 0x44444444; // bits 2 and 3 of each four
    return kPpuSpread[ppu.lowPlane] | kPpuSpread[high] << 1 | ppu.attribute * kInEveryPixel;
}

inline void TakeTile(PPU& ppu, uint32_t dot, uint8_t high) {
    const uint32_t pixels = TilePixels(ppu, high);
    if (ppu.visible) {
        PpuDrawTo(ppu, dot + 1);
    }
    constexpr uint64_t kFirstEight = 0xFFFFFFFF00000000;
    ppu.background = (ppu.background & kFirstEight) | pixels;
}

inline void CopyX(PPU& ppu) {
    ppu.vramAddress = static_cast<uint16_t>((ppu.vramAddress & ~kHorizontalBits) |
                                            (ppu.tempAddress & kHorizontalBits));
}

// The address that an even dot puts on the bus.
[[nodiscard]] inline uint32_t AddressOf(PPU& ppu, PpuFetch fetch, uint32_t slot) {
    switch (fetch) {
    case kFetchAttributeAddress: return AttributeAddress(ppu);
    case kFetchAttributeAddressIncrementY: {
        const uint32_t address = AttributeAddress(ppu);
        IncrementY(ppu);
        return address;
    }
    case kFetchLowAddress: return PatternAddress(ppu);
    case kFetchHighAddress: return PatternAddress(ppu) + ppu_bus::kPlaneBytes;
    case kFetchSpriteLowAddress: return PpuSpriteAddress(ppu, slot);
    case kFetchSpriteHighAddress: return PpuSpriteAddress(ppu, slot) + ppu_bus::kPlaneBytes;
    default: return TileAddress(ppu);
    }
}

// Stores the byte that an odd dot reads.
inline void Take(PPU& ppu, PpuFetch fetch, uint32_t dot, uint32_t slot, uint8_t byte) {
    switch (fetch) {
    case kFetchTile: ppu.tile = byte; break;
    case kFetchAttributeIncrementX: TakeAttribute(ppu, byte); break;
    case kFetchLow: ppu.lowPlane = byte; break;
    case kFetchHigh: TakeTile(ppu, dot, byte); break;
    case kFetchHighAhead: ppu.background = ppu.background << 32 | TilePixels(ppu, byte); break;
    case kFetchUnusedCopyX: CopyX(ppu); break;
    case kFetchSpriteHigh: PpuStoreSprite(ppu, slot, byte); break;
    default: break;
    }
}

// Counts on from slot 0 at dot 256, eight dots a sprite.
[[nodiscard]] inline uint32_t SpriteSlot(uint32_t dot) {
    return dot / 8 % kPpuLineSprites;
}

[[gnu::always_inline]] inline void Fetch(PPU& ppu, uint32_t dot) {
    const PpuFetch fetch = dot < kPpuFetchDots ? kPpuFetches[dot] : kFetchNothing;
    const uint32_t slot = SpriteSlot(dot);
    if ((dot & 1) != 0) {
        Take(ppu, fetch, dot, slot, Read(ppu));
    } else if (fetch != kFetchNothing) [[likely]] {
        ppu.fetchAddress = static_cast<uint16_t>(AddressOf(ppu, fetch, slot));
        ppu_bus::Watch(ppu, ppu.fetchAddress);
    }
}

} // namespace ppu_tick

// Dot `dot`, after the event that is due at its start.
inline void PpuDot(PPU& ppu, uint32_t dot) {
    ppu.dot = dot;
    if (ppu.rendering) {
        ppu_tick::Fetch(ppu, dot);
    } else if (ppu.ioState == kPpuNoAccess) {
        ppu_bus::Watch(ppu, ppu.vramAddress & ppu_bus::kMask);
    }
    if (ppu.ioState != kPpuNoAccess) [[unlikely]] {
        PpuAccessDot(ppu);
    }
}

// One dot.
inline void PpuTick(PPU& ppu) {
    uint32_t dot = ppu.dot + 1;
    if (dot == ppu.eventDot) [[unlikely]] {
        dot = PpuEvent(ppu, dot);
    }
    PpuDot(ppu, dot);
}
