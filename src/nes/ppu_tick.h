// The dot of the picture unit, to be inlined into a machine's loop.
//
// A dot moves on along the line, puts out its pixel, looks for sprites, fetches, and moves a register
// access in progress, in this order. Pixels and search wait: they follow from registers and from tiles
// fetched before, so that a new tile, the picture's edge or a register access is soon enough for them.
// Fetches don't wait, as boards watch them and change what they find.
#pragma once

#include "nes/nes_pages.h"
#include "nes/ppu.h"
#include "nes/ppu_fetch_table.h"
#include "nes/ppu_private.h"

#include <cstdint>

namespace ppu_tick {

inline constexpr uint16_t kHorizontalBits = 0x41F;

inline void IncrementX(PPU& ppu) {
    if ((ppu.vramAddress & 0x1F) == 0x1F) {
        ppu.vramAddress ^= kHorizontalBits; // coarse X to 0, and the other nametable
    } else {
        ++ppu.vramAddress;
    }
}

inline void IncrementY(PPU& ppu) {
    constexpr uint16_t kFineY = 0x7000;
    constexpr uint16_t kCoarseY = 0x3E0;
    if ((ppu.vramAddress & kFineY) != kFineY) {
        ppu.vramAddress += 0x1000;
        return;
    }
    ppu.vramAddress &= 0x0FFF;
    switch (ppu.vramAddress & kCoarseY) {
    case 29 << 5: ppu.vramAddress ^= 0xBA0; break; // to row 0 of the nametable below
    case 31 << 5: ppu.vramAddress ^= 0x3E0; break; // from among the attributes, without it
    default: ppu.vramAddress += 0x20; break;
    }
}

[[nodiscard]] inline uint8_t Read(PPU& ppu) {
    if (ppu.ioState != kPpuNoAccess) [[unlikely]] {
        return PpuCollide(ppu);
    }
    return NesReadPpuPage(*ppu.pages, ppu.fetchAddress);
}

[[nodiscard]] inline uint32_t AttributeAddress(const PPU& ppu) {
    const uint32_t v = ppu.vramAddress;
    return 0x23C0U | (v & 0xC00) | (v >> 4 & 0x38) | (v >> 2 & 7);
}

// The two bits for the quarter of 2 by 2 tiles that the present tile is in.
inline void TakeAttribute(PPU& ppu, uint8_t byte) {
    const uint32_t quarter = (ppu.vramAddress >> 4 & 4) | (ppu.vramAddress & 2);
    ppu.attribute = byte >> quarter & 3;
    IncrementX(ppu);
}

[[nodiscard]] inline uint32_t PatternAddress(const PPU& ppu) {
    const uint32_t table = (ppu.control & kPpuCtrlBackgroundTable) != 0 ? 0x1000 : 0;
    return table | ppu.tile * 16U | (ppu.vramAddress >> 12 & 7U);
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

// What an even dot sets up.
[[nodiscard]] inline uint32_t AddressOf(PPU& ppu, PpuFetch fetch, uint32_t slot) {
    switch (fetch) {
    case kFetchAttributeAddress: return AttributeAddress(ppu);
    case kFetchAttributeAddressIncrementY: {
        const uint32_t address = AttributeAddress(ppu);
        IncrementY(ppu);
        return address;
    }
    case kFetchLowAddress: return PatternAddress(ppu);
    case kFetchHighAddress: return PatternAddress(ppu) + 8;
    case kFetchSpriteLowAddress: return PpuSpriteAddress(ppu, slot);
    case kFetchSpriteHighAddress: return PpuSpriteAddress(ppu, slot) + 8U;
    default: return 0x2000U | (ppu.vramAddress & 0xFFF);
    }
}

// Where the byte of an odd dot goes.
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
