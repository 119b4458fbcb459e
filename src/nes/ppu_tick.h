// The PPU's tick, one dot, without shortcuts: the reference for PpuRun, which must produce the same pictures, flags
// and addresses.
//
// A dot moves along the line, fetches, advances the PPUDATA access in progress, draws its pixel and evaluates sprites.
// Fetches never wait: boards watch them and change what they read. Pixels and evaluation (PpuCatchUp) depend only on
// registers and on tiles already fetched, so that PpuRun leaves them to the next tile, the end of the visible line or
// a register access.
#pragma once

#include "nes/nes_pages.h"
#include "nes/ppu.h"
#include "nes/ppu_fetch_table.h"
#include "nes/ppu_private.h"

#include <cstdint>

namespace ppu_tick {

inline constexpr uint16_t kHorizontalBits = ppu_address::kNametableX | ppu_address::kCoarseX;

// The address, as PPU::vramAddress, of the tile to the right.
[[nodiscard]] inline uint32_t NextColumn(uint32_t address) {
    if ((address & ppu_address::kCoarseX) == ppu_address::kCoarseX) {
        return address ^ kHorizontalBits; // coarse X to 0, other nametable
    }
    return address + 1;
}

// That of the line below.
[[nodiscard]] inline uint32_t NextRow(uint32_t address) {
    using namespace ppu_address;
    constexpr uint32_t kLastRow = 29 << kCoarseYShift;
    constexpr uint32_t kLastAttributeRow = 31 << kCoarseYShift;
    if ((address & kFineY) != kFineY) {
        return address + (1U << kFineYShift);
    }
    address &= kTile;
    switch (address & kCoarseY) {
    case kLastRow: return address ^ (kNametableY | kLastRow); // row 0 of the other nametable
    case kLastAttributeRow: return address ^ kCoarseY;        // row 0 of the same nametable
    default: return address + (1U << kCoarseYShift);
    }
}

[[nodiscard]] inline uint8_t Read(PPU& ppu) {
    if (ppu.ioState != kPpuNoAccess) [[unlikely]] {
        return PpuCollide(ppu);
    }
    return NesReadPpuPage(*ppu.pages, ppu.fetchAddress);
}

[[nodiscard]] inline uint32_t TileAddress(uint32_t address) {
    return ppu_bus::kNametables | (address & ppu_address::kTile);
}

// An attribute byte covers 4 by 4 tiles; a row of the table has eight.
[[nodiscard]] inline uint32_t AttributeAddress(uint32_t address) {
    using namespace ppu_address;
    const uint32_t row = (address & kCoarseY) >> kCoarseYShift >> 2;
    const uint32_t column = (address & kCoarseX) >> 2;
    return ppu_bus::kNametables | ppu_bus::kAttributes | (address & kNametables) | row << 3 |
           column;
}

// The two bits of an attribute byte for the tile's quarter, 2 by 2 tiles.
[[nodiscard]] inline uint32_t AttributeBits(uint32_t address, uint32_t byte) {
    using namespace ppu_address;
    const uint32_t right = address & kQuarterX;        // 0 or 2
    const uint32_t below = (address & kQuarterY) >> 4; // 0 or 4
    constexpr uint32_t kQuarterBits = 0x03;
    return byte >> (below | right) & kQuarterBits;
}

[[nodiscard]] inline uint32_t PatternTable(const PPU& ppu) {
    return (ppu.control & kPpuCtrlBackgroundTable) != 0 ? ppu_bus::kSecondPatternTable : 0;
}

[[nodiscard]] inline uint32_t PatternAddress(uint32_t table, uint32_t tile, uint32_t address) {
    const uint32_t fineY = (address & ppu_address::kFineY) >> ppu_address::kFineYShift;
    return table | tile * ppu_bus::kTileBytes | fineY;
}

// Eight pixels of four bits, the first on top, from the planes and the attribute of a tile.
[[nodiscard]] inline uint32_t TilePixels(uint8_t low, uint8_t high, uint32_t attribute) {
    constexpr uint32_t kInEveryPixel = 0x44444444; // bits 2 and 3 of each four
    return kPpuSpread[low] | kPpuSpread[high] << 1 | attribute * kInEveryPixel;
}

// The sixteen background pixels with the second eight of them new, or with the next eight.
[[nodiscard]] inline uint64_t WithSecondEight(uint64_t background, uint32_t pixels) {
    constexpr uint64_t kFirstEight = 0xFFFFFFFF00000000;
    return (background & kFirstEight) | pixels;
}
[[nodiscard]] inline uint64_t WithNextEight(uint64_t background, uint32_t pixels) {
    return background << 32 | pixels;
}

inline void CopyX(PPU& ppu) {
    ppu.vramAddress = static_cast<uint16_t>((ppu.vramAddress & ~kHorizontalBits) |
                                            (ppu.tempAddress & kHorizontalBits));
}

// The address that an even dot puts on the bus.
[[nodiscard]] inline uint32_t AddressOf(PPU& ppu, PpuFetch fetch, uint32_t slot) {
    const uint32_t pattern = PatternAddress(PatternTable(ppu), ppu.tile, ppu.vramAddress);
    switch (fetch) {
    case kFetchAttributeAddress: return AttributeAddress(ppu.vramAddress);
    case kFetchAttributeAddressIncrementY: {
        const uint32_t address = AttributeAddress(ppu.vramAddress);
        ppu.vramAddress = static_cast<uint16_t>(NextRow(ppu.vramAddress));
        return address;
    }
    case kFetchLowAddress: return pattern;
    case kFetchHighAddress: return pattern + ppu_bus::kPlaneBytes;
    case kFetchSpriteLowAddress: return PpuSpriteAddress(ppu, slot);
    case kFetchSpriteHighAddress: return PpuSpriteAddress(ppu, slot) + ppu_bus::kPlaneBytes;
    default: return TileAddress(ppu.vramAddress);
    }
}

// Stores the byte that an odd dot reads. A new tile's pixels follow those that are shown up to this dot.
inline void Take(PPU& ppu, PpuFetch fetch, uint32_t dot, uint32_t slot, uint8_t byte) {
    const uint32_t pixels = TilePixels(ppu.lowPlane, byte, ppu.attribute);
    switch (fetch) {
    case kFetchTile: ppu.tile = byte; break;
    case kFetchAttributeIncrementX:
        ppu.attribute = static_cast<uint8_t>(AttributeBits(ppu.vramAddress, byte));
        ppu.vramAddress = static_cast<uint16_t>(NextColumn(ppu.vramAddress));
        break;
    case kFetchLow: ppu.lowPlane = byte; break;
    case kFetchHigh:
        if (ppu.visible) {
            PpuDrawTo(ppu, dot + 1);
        }
        ppu.background = WithSecondEight(ppu.background, pixels);
        break;
    case kFetchHighAhead: ppu.background = WithNextEight(ppu.background, pixels); break;
    case kFetchUnusedCopyX: CopyX(ppu); break;
    case kFetchSpriteHigh: PpuStoreSprite(ppu, slot, byte); break;
    default: break;
    }
}

// Counts on from slot 0 at dot 256, eight dots a sprite.
[[nodiscard]] inline uint32_t SpriteSlot(uint32_t dot) {
    return dot / 8 % kPpuLineSprites;
}

inline void Fetch(PPU& ppu, uint32_t dot) {
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

// Dot `dot`, after the event that is due at its start, without its pixel and its part of the evaluation.
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
    PpuCatchUp(ppu); // this dot only: all before it are done
}
