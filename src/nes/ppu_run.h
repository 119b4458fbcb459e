// Many dots of the picture unit at once.
//
// Does the same as PpuDot, and so as PpuPlainDot, so many times: groups of eight dots in which one tile or sprite is fetched run
// in one piece, and so do dots that do nothing. Registers and what is fetched must not have changed since
// the first of the dots, so a machine that runs late comes here before every access of a register, as
// reads have effects too and see where the dot is, and before every write to the board. A board sees the
// addresses and the patterns that it watches in their order; of the nametables that are read for nobody
// beside sprites it sees the addresses alone.
#pragma once

#include "nes/ppu_tick.h"

#include <algorithm>
#include <cstdint>

namespace ppu_run {

inline constexpr uint32_t kGroup = 8; // dots
inline constexpr uint32_t kSpritesStart = 256;
inline constexpr uint32_t kAheadStart = 320;
inline constexpr uint32_t kGroupsEnd = 336;
inline constexpr uint32_t kLastGroup = 248; // of the picture: goes down a row

// The groups begin at `dot`, a multiple of eight.

[[nodiscard]] inline uint8_t ReadWatched(PPU& ppu, uint32_t address) {
    ppu_bus::Watch(ppu, static_cast<uint16_t>(address));
    return NesReadPpuPage(*ppu.pages, static_cast<uint16_t>(address));
}

inline void TileGroup(PPU& ppu, uint32_t dot) {
    ppu.tile = ReadWatched(ppu, 0x2000U | (ppu.vramAddress & 0xFFFU));
    const uint32_t attributes = ppu_tick::AttributeAddress(ppu);
    if (dot == kLastGroup) {
        ppu_tick::StepY(ppu);
    }
    ppu_tick::TakeAttribute(ppu, ReadWatched(ppu, attributes));
    const uint32_t low = ppu_tick::PatternAddress(ppu);
    ppu.lowPlane = ReadWatched(ppu, low);
    ppu.fetchAddress = static_cast<uint16_t>(low + 8);
    const uint8_t high = ReadWatched(ppu, ppu.fetchAddress);
    if (dot < kSpritesStart) {
        ppu_tick::TakeTile(ppu, dot + kGroup - 1, high);
    } else {
        ppu.background = ppu.background << 32 | ppu_tick::TilePixels(ppu, high);
    }
}

inline void SpriteGroup(PPU& ppu, uint32_t dot) {
    const uint32_t slot = dot >> 3 & 7;
    const auto unused = static_cast<uint16_t>(0x2000U | (ppu.vramAddress & 0xFFFU));
    ppu_bus::Watch(ppu, unused);
    ppu_bus::Watch(ppu, unused);
    const uint32_t low = PpuSpriteAddress(ppu, slot);
    ppu.lowPlane = ReadWatched(ppu, low);
    ppu.fetchAddress = static_cast<uint16_t>(low + 8);
    PpuStoreSprite(ppu, slot, ReadWatched(ppu, ppu.fetchAddress));
}

// Whether a group begins with dot `next` and lies before any event, whole.
[[nodiscard]] inline bool IsGroup(const PPU& ppu, uint32_t next, uint32_t count) {
    return next % kGroup == 0 && count >= kGroup && next < kGroupsEnd &&
           next + kGroup <= ppu.eventDot;
}

inline void Group(PPU& ppu, uint32_t dot) {
    if (dot < kSpritesStart || dot >= kAheadStart) {
        TileGroup(ppu, dot);
    } else {
        SpriteGroup(ppu, dot);
    }
    ppu.dot = dot + kGroup - 1;
}

} // namespace ppu_run

// Dots until something begins or ends that others may see: at least one.
[[nodiscard]] inline uint32_t PpuDotsToEvent(const PPU& ppu) {
    return ppu.eventDot - ppu.dot;
}

inline void PpuRun(PPU& ppu, uint32_t count) {
    const bool watched = ppu.pages->ppuAddressHook != NesIgnoreAddress;
    while (count != 0) {
        const uint32_t next = ppu.dot + 1;
        const bool plain = ppu.ioState != kPpuNoAccess || next == ppu.eventDot;
        uint32_t done = 1;
        if (!plain && !ppu.rendering && !watched) {
            done = std::min(count, ppu.eventDot - next);
            ppu.dot += done;
        } else if (!plain && ppu.rendering && ppu_run::IsGroup(ppu, next, count)) {
            done = ppu_run::kGroup;
            ppu_run::Group(ppu, next);
        } else {
            PpuDot(ppu);
        }
        count -= done;
    }
}
