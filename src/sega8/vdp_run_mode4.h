// Spans of a mode 4 line at once. Part of vdp_run.cpp.
//
// While no CPU access is pending and no register is written, the slots of whole columns always do
// the same: fetch, draw, search. The plain loops here run them and leave the pipeline as the last
// slot would have left it. Each function names the dots that it runs. Before the first one
// `lastKind` must be the kind that the slot list has there.
#pragma once

#include "base/bytes.h"
#include "sega8/vdp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vdp_run {

using vdp_fetch::kColumnDots;
using vdp_fetch::kColumns;
inline constexpr uint32_t kSpriteDot = kColumns * kColumnDots; // after the last column
inline constexpr uint32_t kTailDot = 320; // the first whole slot after kVdpEventDot

inline bool AccessIsPending(const VDP& vdp) {
    return vdp.pendingAccess != kVdpNoAccess || vdp.activeAccess != kVdpNoAccess;
}

inline uint16_t WordAt(const VDP& vdp, uint32_t wordAddress) {
    return LoadLittleEndian<uint16_t>(&vdp.vram[(wordAddress << 1) & kVdpVramMask]);
}

// Sets the pipeline as after a slot of `kind` with this address; the slot before it has its data.
inline void SetPipeline(VDP& vdp, uint8_t kind, uint32_t address, bool isByte) {
    vdp.nextKind = kind;
    vdp.lastKind = kind;
    vdp.nextAddr = address;
    vdp.cycleAddr = address;
    vdp.cycleIsByte = isByte;
}

// Search slots in the columns from `first` to before `end`: every fourth column has none.
inline uint32_t SearchSlots(uint32_t first, uint32_t end) {
    return (end - first) - ((end + 3) / 4 - (first + 3) / 4);
}

// Not 0 if one of the bytes is 0.
inline uint64_t ZeroBytes(uint64_t bytes) {
    return (bytes - vdp_fetch::kEveryPixel) & ~bytes & vdp_fetch::kEveryPixel * 0x80;
}

inline constexpr uint32_t kWordsAtOnce = 4; // of two sprites

// True if none of the next eight sprites is on the line or ends the list. The height of a sprite is
// a power of two, so the line is outside it if its distance from the first row has a bit of
// 256 - rows set.
inline bool SearchFindsNothing(const VDP& vdp) {
    constexpr uint32_t kTableWords = 64;
    constexpr uint64_t kTop = vdp_fetch::kEveryPixel * 0x80;
    if (vdp.spriteIndex > kTableWords - kWordsAtOnce ||
        vdp.spriteTested > vdp_fetch::kMode4SpriteWords - kWordsAtOnce) {
        return false;
    }
    const uint32_t address = vdp_fetch::SearchAddress4(vdp, vdp.spriteIndex) << 1;
    const auto ys = LoadLittleEndian<uint64_t>(&vdp.vram[address & kVdpVramMask]);
    const uint32_t rows = vdp_fetch::SpriteRows(vdp);
    const uint64_t lines = vdp_fetch::kEveryPixel * (vdp_fetch::SearchLine(vdp) & 255);
    const uint64_t distances = ((lines | kTop) - (ys & ~kTop)) ^ ((lines ^ ~ys) & kTop);
    const uint64_t beyond = distances & (vdp_fetch::kEveryPixel * (256 - rows));
    const uint64_t ends = ys ^ vdp_fetch::kEveryPixel * vdp_fetch::kSpriteListEnd;
    const bool endCounts = vdp.activeHeight == 192;
    return ZeroBytes(beyond) == 0 && (!endCounts || ZeroBytes(ends) == 0);
}

// The data of `words` search slots, the first of which addresses `spriteIndex`.
inline void TakeSearchData(VDP& vdp, uint32_t words) {
    const auto indexAfter = static_cast<uint8_t>(vdp.spriteIndex + words);
    const bool blank = (vdp.regs[1] & kVdpReg1Display) == 0;
    while (words != 0 && !vdp.searchDone && !blank) {
        if (words >= kWordsAtOnce && SearchFindsNothing(vdp)) {
            vdp.spriteIndex += kWordsAtOnce;
            vdp.spriteTested += kWordsAtOnce;
            words -= kWordsAtOnce;
            continue;
        }
        vdp_fetch::TestY4(vdp);
        vdp.readData = WordAt(vdp, vdp.nextAddr);
        vdp_fetch::TestY4Data(vdp);
        --words;
    }
    while (words != 0 && vdp.spriteTested < vdp_fetch::kMode4SpriteWords) {
        ++vdp.spriteTested;
        --words;
    }
    vdp.spriteIndex = indexAfter;
}

// The memory cycle in progress at the start of a column; its data complete the column before.
inline void FinishColumn(VDP& vdp, uint32_t dot) {
    vdp_tick::MemoryCycle(vdp);
    vdp_fetch::TileHighData(vdp, dot);
}

inline void FetchColumn(VDP& vdp, uint32_t column) {
    vdp_fetch::Name4(vdp, column * kColumnDots);
    vdp.readData = WordAt(vdp, vdp.nextAddr);
    vdp_fetch::Name4Data(vdp);
    vdp.tileLow = WordAt(vdp, vdp.tileAddress);
}

// Columns from `first` to before `end`; the vertical lock holds for all of them or for none.
inline void DrawColumns(VDP& vdp, uint32_t first, uint32_t end) {
    const vdp_fetch::NAME_ROW row = vdp_fetch::NameRow4(vdp, first);
    const uint32_t scrollX = vdp_fetch::ScrollX(vdp);
    const uint8_t* const vram = vdp.vram;
    for (uint32_t column = first; column < end; ++column) {
        const uint32_t name = row.address + vdp_fetch::NameColumn4(column, scrollX);
        const uint32_t entry = LoadLittleEndian<uint16_t>(&vram[(name << 1) & kVdpVramMask]);
        const uint32_t tile = vdp_fetch::TileAddress4(entry, row.tileRow) << 1;
        const auto planes = LoadLittleEndian<uint32_t>(&vram[tile & kVdpVramMask]);
        vdp_fetch::DrawTile4(vdp, column * kColumnDots + scrollX % kColumnDots, entry,
                             planes & 0xFFFF, planes >> 16);
    }
}

// Dots 8 * first to before 8 * end of an active line. Draws columns first - 1 to end - 2; the last
// column still waits for its upper bit planes.
inline void RunColumns(VDP& vdp, uint32_t first, uint32_t end) {
    TakeSearchData(vdp, SearchSlots(first, end));
    FinishColumn(vdp, first * kColumnDots);
    const uint32_t last = end - 1;
    const uint32_t lock = std::clamp(vdp_fetch::kLockedColumns, first, last);
    DrawColumns(vdp, first, lock);
    DrawColumns(vdp, lock, last);
    FetchColumn(vdp, last);
    vdp.readData = vdp.tileLow;
    SetPipeline(vdp, kSlotTileHigh, vdp.tileAddress + 1U, false);
}

// The same dots of a line that shows only the backdrop, in any mode, but for the search.
inline void RunBlankColumns(VDP& vdp, uint32_t first, uint32_t end) {
    const size_t x = size_t{first} * kColumnDots;
    const size_t pixels = size_t{end} * kColumnDots - x;
    std::memset(&vdp.colourLine[x], vdp_fetch::Backdrop(vdp), pixels);
    std::memset(&vdp.priorityLine[x], 0, pixels);
    vdp.readData = vdp.vram[0];
    SetPipeline(vdp, kSlotBlank, 0, true);
}

// Dots 256 to 317. Draws the last column and fetches the sprites, up to the pattern of the last
// one.
inline void RunSpriteFetch(VDP& vdp, bool active) {
    if (active) {
        FinishColumn(vdp, kSpriteDot);
    }
    for (uint32_t sprite = 0;; ++sprite) {
        vdp_fetch::Sprite4(vdp);
        vdp.readData = WordAt(vdp, vdp.nextAddr);
        vdp_fetch::Sprite4Data(vdp);
        if (sprite == kVdpMaxSprites - 1) {
            break;
        }
        uint16_t* const data = vdp.spriteData[vdp_fetch::FetchSlot(vdp)];
        data[0] = WordAt(vdp, vdp.fetchAddress);
        data[1] = WordAt(vdp, vdp.fetchAddress + 1U);
        ++vdp.fetchIndex;
    }
    SetPipeline(vdp, kSlotNone, 0, true);
}

// Dots 320 to 341: the pattern of the last sprite and the first eight words of the search. The
// eighth word arrives at dot 1.
inline void RunTail(VDP& vdp) {
    constexpr uint32_t kTailWords = 8;
    ++vdp.fetchIndex;
    const uint32_t highAddress = vdp.fetchAddress + 1U;
    vdp_tick::MemoryCycle(vdp);
    vdp_fetch::SpriteLowData(vdp);
    vdp.readData = WordAt(vdp, highAddress);
    vdp_fetch::SpriteHighData(vdp);
    TakeSearchData(vdp, kTailWords - 1);
    const auto seventh = static_cast<uint8_t>(vdp.spriteIndex - 1);
    vdp.readData = WordAt(vdp, vdp_fetch::SearchAddress4(vdp, seventh));
    vdp_fetch::TestY4(vdp);
    SetPipeline(vdp, kSlotTestY4, vdp.nextAddr, false);
}

} // namespace vdp_run
