// Many dots of the PPU at once.
//
// PpuRun(n) does the same as n times PpuTick, and so as n times PpuPlainTick: eight dots that fetch one tile
// or sprite run as a group, and so do dots that do nothing. Registers and memory must not have changed since
// the first of the dots. A machine that owes the PPU dots therefore calls it before every register access
// (reads have side effects and depend on the dot) and before every write to the board. A board sees the
// addresses in order, and its pattern readers are called in order; for the unused nametable fetches between
// sprites it sees the addresses only.
#pragma once

#include "nes/ppu_line.h"
#include "nes/ppu_tick.h"

#include <algorithm>
#include <cstdint>

namespace ppu_run {

inline constexpr uint32_t kGroup = 8; // dots
inline constexpr uint32_t kSpritesStart = 256;
inline constexpr uint32_t kAheadStart = 320;
inline constexpr uint32_t kGroupsEnd = 336;
inline constexpr uint32_t kLastGroup = 248; // of the visible dots: increments Y

// `dot` is the first of a group, a multiple of eight.

[[nodiscard]] inline uint8_t ReadWatched(PPU& ppu, uint32_t address) {
    ppu_bus::Watch(ppu, static_cast<uint16_t>(address));
    return NesReadPpuPage(*ppu.pages, static_cast<uint16_t>(address));
}

inline void TileGroup(PPU& ppu, uint32_t dot) {
    ppu.tile = ReadWatched(ppu, ppu_tick::TileAddress(ppu));
    const uint32_t attributes = ppu_tick::AttributeAddress(ppu);
    if (dot == kLastGroup) {
        ppu_tick::IncrementY(ppu);
    }
    ppu_tick::TakeAttribute(ppu, ReadWatched(ppu, attributes));
    const uint32_t low = ppu_tick::PatternAddress(ppu);
    ppu.lowPlane = ReadWatched(ppu, low);
    ppu.fetchAddress = static_cast<uint16_t>(low + ppu_bus::kPlaneBytes);
    const uint8_t high = ReadWatched(ppu, ppu.fetchAddress);
    if (dot < kSpritesStart) {
        ppu_tick::TakeTile(ppu, dot + kGroup - 1, high);
    } else {
        ppu.background = ppu.background << 32 | ppu_tick::TilePixels(ppu, high);
    }
}

inline void SpriteGroup(PPU& ppu, uint32_t dot) {
    const uint32_t slot = ppu_tick::SpriteSlot(dot);
    ppu_bus::Watch(ppu, static_cast<uint16_t>(ppu_tick::TileAddress(ppu)));
    if (dot == kSpritesStart) {
        ppu_tick::CopyX(ppu);
    }
    ppu_bus::Watch(ppu, static_cast<uint16_t>(ppu_tick::TileAddress(ppu)));
    const uint32_t low = PpuSpriteAddress(ppu, slot);
    ppu.lowPlane = ReadWatched(ppu, low);
    ppu.fetchAddress = static_cast<uint16_t>(low + ppu_bus::kPlaneBytes);
    PpuStoreSprite(ppu, slot, ReadWatched(ppu, ppu.fetchAddress));
}

// True if a whole group begins with dot `next` and ends before any event.
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
}

// Groups from dot `next` on, of at most `count` dots: those of a part of the line at once, or one. Returns their
// dots.
inline uint32_t Groups(PPU& ppu, uint32_t next, uint32_t count, bool wholeLine) {
    const uint32_t end = std::min(next + count, ppu.eventDot);
    uint32_t groups = 1;
    if (wholeLine && next < kLastGroup) {
        groups = (std::min(end, kLastGroup) - next) / kGroup;
        PpuRunTiles(ppu, next, groups);
    } else if (wholeLine && next >= kSpritesStart && next < kAheadStart) {
        groups = (std::min(end, kAheadStart) - next) / kGroup;
        if (next == kSpritesStart) {
            ppu_tick::CopyX(ppu);
        }
        PpuRunSprites(ppu, ppu_tick::SpriteSlot(next), groups);
    } else {
        Group(ppu, next);
    }
    ppu.dot = next + groups * kGroup - 1;
    return groups * kGroup;
}

} // namespace ppu_run

// Dots until the next change that others may see without an access, at least 1: that of the NMI at the begin and
// the end of vblank, or the end of the frame.
[[nodiscard]] inline uint32_t PpuDotsToEvent(const PPU& ppu) {
    const uint32_t toLineEnd = ppu.lineLength - ppu.dot;
    if (ppu.line >= kPpuVblankLine) {
        constexpr uint32_t kVblankEndDot = 1; // of the pre-render line
        const auto lines = static_cast<uint32_t>(ppu.totalLines - 2 - ppu.line);
        return toLineEnd + lines * kPpuLineDots + kVblankEndDot;
    }
    if (ppu.line == kPpuPreRenderLine && ppu.dot < kPpuFrameEndDot) {
        return ppu.eventDot - ppu.dot;
    }
    return toLineEnd + static_cast<uint32_t>(kPpuIdleLine - ppu.line) * kPpuLineDots;
}

inline void PpuRun(PPU& ppu, uint32_t count) {
    const bool watched = ppu.pages->ppuAddressHook != NesIgnoreAddress;
    const bool wholeLine = PpuCanRunLine(ppu);
    while (count != 0) {
        uint32_t next = ppu.dot + 1;
        if (next == ppu.eventDot) {
            next = PpuEvent(ppu, next);
        }
        const bool plain = ppu.ioState != kPpuNoAccess;
        uint32_t done = 1;
        if (!plain && !ppu.rendering && (!watched || wholeLine)) {
            done = std::min(count, ppu.eventDot - next);
            ppu.dot = next + done - 1;
            if (watched) {
                ppu.pages->ppuUpperHook(ppu.pages->board, ppu.vramAddress & ppu_bus::kMask, done);
            }
        } else if (!plain && ppu.rendering && ppu_run::IsGroup(ppu, next, count)) {
            done = ppu_run::Groups(ppu, next, count, wholeLine);
        } else {
            PpuDot(ppu, next);
        }
        count -= done;
    }
}
