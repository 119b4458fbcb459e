// The PPU's tick, one dot, to be inlined into a machine's frame loop.
//
// A dot moves along the line, draws its pixel, evaluates sprites, fetches, and advances the PPUDATA access
// in progress, in this order. Pixels and evaluation depend on registers and on tiles already fetched only,
// so they are put off until a new tile, the end of the visible line or a register access. Fetches are never
// put off: boards watch them and change what they read.
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

// An attribute byte covers 4 by 4 tiles; its address has bits 2 to 4 of coarse X and of coarse Y.
[[nodiscard]] inline uint32_t AttributeAddress(const PPU& ppu) {
    constexpr uint32_t kAttributes = ppu_bus::kNametables | 0x3C0;
    const uint32_t v = ppu.vramAddress;
    return kAttributes | (v & ppu_address::kNametables) | (v >> 4 & 0x38) | (v >> 2 & 7);
}

// Takes the two bits for the current tile's quarter, 2 by 2 tiles, and moves to the next tile.
inline void TakeAttribute(PPU& ppu, uint8_t byte) {
    const uint32_t quarter = (ppu.vramAddress >> 4 & 4) | (ppu.vramAddress & 2);
    ppu.attribute = byte >> quarter & 3;
    IncrementX(ppu);
}

[[nodiscard]] inline uint32_t PatternAddress(const PPU& ppu) {
    const uint32_t table =
        (ppu.control & kPpuCtrlBackgroundTable) != 0 ? ppu_bus::kSecondPatternTable : 0;
    const uint32_t fineY = ppu.vramAddress >> ppu_address::kFineYShift & 7U;
    return table | ppu.tile * ppu_bus::kTileBytes | fineY;
}

// Eight pixels from the planes and the attribute of a tile.
[[nodiscard]] inline uint32_t TilePixels(const PPU& ppu, uint8_t high) {
    return kPpuSpread[ppu.lowPlane] | kPpuSpread[high] << 1 | ppu.attribute * 0x44444444U;
}

inline void TakeTile(PPU& ppu, uint32_t dot, uint8_t high) {
    const uint32_t pixels = TilePixels(ppu, high);
    if (ppu.visible) {
        PpuDrawTo(ppu, dot + 1);
    }
    ppu.background = (ppu.background & 0xFFFFFFFF00000000U) | pixels;
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

[[gnu::always_inline]] inline void Fetch(PPU& ppu, uint32_t dot) {
    const PpuFetch fetch = dot < kPpuFetchDots ? kPpuFetches[dot] : kFetchNothing;
    const uint32_t slot = dot >> 3 & 7;
    if ((dot & 1) != 0) {
        Take(ppu, fetch, dot, slot, Read(ppu));
    } else if (fetch != kFetchNothing) [[likely]] {
        ppu.fetchAddress = static_cast<uint16_t>(AddressOf(ppu, fetch, slot));
        ppu_bus::Watch(ppu, ppu.fetchAddress);
    }
}

} // namespace ppu_tick

// One dot.
inline void PpuTick(PPU& ppu) {
    uint32_t dot = ppu.dot + 1;
    if (dot == ppu.eventDot) [[unlikely]] {
        dot = PpuEvent(ppu, dot);
    }
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
