// The slots of the 8-bit VDP in mode 4, and the slots that all modes share: the address each kind
// sets and what it does with its data. Parts of the tick in vdp_tick.h; modes 0 to 2 are in
// vdp_fetch_legacy.h.
#pragma once

#include "base/bytes.h"
#include "sega8/vdp_record.h"
#include "sega8/vdp_slots.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vdp_fetch {

inline constexpr uint64_t kEveryPixel = 0x0101010101010101;
inline constexpr uint8_t kSpriteListEnd = 0xD0;
inline constexpr uint32_t kMode4SpriteWords = 32;
inline constexpr uint32_t kMode4SpritePlaces = 64; // in words: X and tile of sprite 0
inline constexpr uint32_t kSprites = 64;
inline constexpr uint32_t kColumns = 32;
inline constexpr uint32_t kColumnDots = 8; // four slots
inline constexpr uint32_t kTileRows = 8;

// Spreads the bits of a pattern byte to eight bytes of 0 or 1, bit 7 to the lowest byte, so that a
// little-endian store puts the leftmost pixel first. The flipped table has bit 0 leftmost.
constexpr std::array<uint64_t, 256> MakeSpread(bool flipped) {
    std::array<uint64_t, 256> spread{};
    for (uint32_t pattern = 0; pattern < 256; ++pattern) {
        for (uint32_t pixel = 0; pixel < 8; ++pixel) {
            const uint32_t bit = flipped ? pixel : 7 - pixel;
            spread[pattern] |= uint64_t{(pattern >> bit) & 1} << (8 * pixel);
        }
    }
    return spread;
}

inline constexpr std::array<uint64_t, 256> kSpread[2] = {MakeSpread(false), MakeSpread(true)};

inline uint8_t Backdrop(const VDP& vdp) {
    return static_cast<uint8_t>((vdp.regs[kVdpColourIndex] & kVdpBackdropColour) +
                                kVdpUpperPalette);
}

// The bit has no effect on a Game Gear or in modes 0 to 2.
inline bool LeftColumnBlank(const VDP& vdp) {
    return (vdp.regs[0] & kVdpReg0BlankLeft) != 0 && vdp.mode == 4 && vdp.variant != kVdpGameGear;
}

inline uint32_t ColumnOf(uint32_t dot) {
    return dot / kColumnDots & (kColumns - 1);
}

// The column whose last data arrive at this dot, in the first slot of the next column.
inline uint32_t ColumnBefore(uint32_t dot) {
    return (dot / kColumnDots - 1) & (kColumns - 1);
}

inline void StorePixels(uint8_t* line, uint32_t x, uint64_t pixels) {
    StoreLittleEndian<uint64_t>(&line[x], pixels);
}

// Kind 4.
inline void Blank(VDP& vdp, uint32_t dot) {
    const uint32_t x = ColumnOf(dot) * kColumnDots;
    StorePixels(vdp.colourLine, x, Backdrop(vdp) * kEveryPixel);
    StorePixels(vdp.priorityLine, x, 0);
    vdp.nextAddr = 0;
}

// Kinds 8 and 9: the access that the processor waits for, if any.
inline void Free(VDP& vdp) {
    if (vdp.activeAccess == kVdpNoAccess) {
        vdp.nextAddr = 0;
        vdp.nextKind = kSlotNone;
        return;
    }
    vdp.nextAddr = vdp.activeAddress;
    vdp.writeValue = -1;
    if (vdp.activeAccess == kVdpWrite) {
        vdp.writeValue = vdp.activeValue;
        vdp.nextAddr |= kVdpWriteCycle;
    }
    vdp.activeAccess = kVdpNoAccess;
}

inline void FreeData(VDP& vdp) {
    if (vdp.writeValue < 0) {
        vdp.readBuffer = static_cast<uint8_t>(vdp.readData);
    }
}

// Kinds 10 and 11. Every column reads the scroll locks of register 0. The Game Gear has no top
// lock.
inline constexpr uint32_t kLockedLines = 16;   // lines 0 to 15
inline constexpr uint32_t kLockedColumns = 24; // screen columns 24 to 31

inline uint32_t ScrollX(const VDP& vdp) {
    const bool locked = (vdp.regs[0] & kVdpReg0LockTop) != 0 && vdp.line < kLockedLines &&
                        vdp.variant != kVdpGameGear;
    return locked ? 0 : vdp.scrollX;
}

// A row of the name table.
struct NAME_ROW {
    uint32_t address; // of column 0, in words
    uint16_t tileRow; // line of the scrolled background
};

inline NAME_ROW NameRow4(const VDP& vdp, uint32_t screenColumn) {
    const uint32_t base = vdp.regs[kVdpNames];
    const bool lockedY = (vdp.regs[0] & kVdpReg0LockRight) != 0 && screenColumn >= kLockedColumns;
    const uint32_t line = vdp.line + (lockedY ? 0U : vdp.scrollY);
    if (vdp.activeHeight == 192) {
        const uint32_t scrolled = line % 224;
        uint32_t row = scrolled >> 3;
        constexpr uint32_t kRowOfAddressBit10 = 0x10;
        // Published: the first chip ANDs address bit 10 with bit 0 of register 2.
        if (vdp.variant == kVdpFirst && (base & kVdpNamesRowBit) == 0) {
            row &= ~kRowOfAddressBit10;
        }
        return {((base & kVdpNames192) << 9) + row * 32, static_cast<uint16_t>(scrolled)};
    }
    const uint32_t scrolled = line & 255;
    constexpr uint32_t kTallOffset = 0x380; // words: 0x700 bytes
    return {((base & kVdpNamesTall) << 9) + kTallOffset + (scrolled >> 3) * 32,
            static_cast<uint16_t>(scrolled)};
}

inline uint32_t NameColumn4(uint32_t screenColumn, uint32_t scrollX) {
    return (screenColumn + kColumns - scrollX / kColumnDots) & (kColumns - 1);
}

inline void Name4(VDP& vdp, uint32_t dot) {
    const uint32_t screenColumn = dot >> 3;
    const NAME_ROW row = NameRow4(vdp, screenColumn);
    vdp.tileRow = row.tileRow;
    vdp.nextAddr = row.address + NameColumn4(screenColumn, ScrollX(vdp));
}

// Word address of bit planes 0 and 1 of a tile row; planes 2 and 3 follow.
inline uint32_t TileAddress4(uint32_t entry, uint32_t tileRow) {
    const uint32_t flip = (entry & kVdpTileFlipY) != 0 ? kTileRows - 1 : 0;
    const uint32_t row = tileRow % kTileRows ^ flip;
    return ((entry & kVdpTileNumber) * kTileRows + row) * 2;
}

inline void Name4Data(VDP& vdp) {
    vdp.tileEntry = vdp.readData;
    vdp.tileAddress = static_cast<uint16_t>(TileAddress4(vdp.readData, vdp.tileRow));
}

// Draws eight pixels of a tile row. Colour 0 of a tile is visible, but it covers neither a sprite
// nor the chip below.
inline void DrawTile4(VDP& vdp, uint32_t x, uint32_t entry, uint32_t low, uint32_t high) {
    const std::array<uint64_t, 256>& spread = kSpread[(entry & kVdpTileFlipX) != 0 ? 1 : 0];
    const uint64_t plane0 = spread[low & 255];
    const uint64_t plane1 = spread[low >> 8];
    const uint64_t plane2 = spread[high & 255];
    const uint64_t plane3 = spread[high >> 8];
    const uint64_t solid = plane0 | plane1 | plane2 | plane3;
    const uint64_t palette = (entry & kVdpTilePalette) != 0 ? kVdpUpperPalette * kEveryPixel : 0;
    const uint64_t covers = (entry & kVdpTilePriority) != 0 ? solid << 1 : 0;
    StorePixels(vdp.colourLine, x, plane0 | plane1 << 1 | plane2 << 2 | plane3 << 3 | palette);
    StorePixels(vdp.priorityLine, x, solid | covers);
}

// Kind 17: all four bit planes are there, and the tile row is drawn.
inline void TileHighData(VDP& vdp, uint32_t dot) {
    const uint32_t x = ColumnBefore(dot) * kColumnDots + ScrollX(vdp) % kColumnDots;
    DrawTile4(vdp, x, vdp.tileEntry, vdp.tileLow, vdp.readData);
}

inline uint32_t SpriteRows(const VDP& vdp) {
    const uint32_t mode = vdp.regs[1];
    return ((mode & kVdpReg1BigSprites) != 0 ? 16U : 8U) << (mode & kVdpReg1Zoom);
}

inline uint32_t SearchLine(const VDP& vdp) {
    return vdp.line + 1 >= vdp.totalLines ? 255 : vdp.line;
}

// Published: a sprite at Y starts on line Y + 1, so each line searches for the next one. The search
// ends at Y = 0xD0 (with 192 lines only) or at the first hit past the limit, which sets the
// overflow flag. Settled: no sprite is found while the display is off; every test reads that bit.
inline void TestSprite(VDP& vdp, uint8_t y, uint32_t number, uint32_t limit) {
    if (vdp.searchDone || (vdp.regs[1] & kVdpReg1Display) == 0) {
        return;
    }
    if (y == kSpriteListEnd && vdp.activeHeight == 192) {
        vdp.searchDone = true;
        return;
    }
    const uint32_t zoom = vdp.regs[1] & kVdpReg1Zoom;
    const uint32_t distance = (SearchLine(vdp) - y) & 255;
    if (distance >= SpriteRows(vdp)) {
        return;
    }
    if (vdp.foundCount >= limit) {
        vdp.status |= kVdpStatusOverflow;
        vdp.searchDone = true;
        return;
    }
    const uint32_t slot = vdp.foundCount & (kVdpMaxSprites - 1);
    vdp.foundIndex[slot] = static_cast<uint8_t>(number);
    vdp.foundRow[slot] = static_cast<uint8_t>(distance >> zoom);
    ++vdp.foundCount;
}

// The mode 4 sprite table as a word address.
inline uint32_t SpriteBase4(const VDP& vdp) {
    return (vdp.regs[kVdpSprites] & uint32_t{kVdpSprites4}) << 6;
}

// Kinds 18 and 19. Settled: the first chip clears bit 6 of this address while bit 0 of register 5
// is 0. It changes nothing, as the table starts at a multiple of 256 bytes. (Published: that chip
// reads X and tile number from the lower 128 bytes instead.)
inline uint32_t SearchAddress4(const VDP& vdp, uint8_t index) {
    const uint32_t address = SpriteBase4(vdp) + index;
    constexpr uint32_t kLowBitAddress = 0x40;
    const bool lowBit = (vdp.regs[kVdpSprites] & kVdpSpritesLowBit) != 0;
    return vdp.variant == kVdpFirst && !lowBit ? address & ~kLowBitAddress : address;
}

inline void TestY4(VDP& vdp) {
    vdp.nextAddr = SearchAddress4(vdp, vdp.spriteIndex);
    ++vdp.spriteIndex;
}

inline void TestY4Data(VDP& vdp) {
    if (vdp.spriteTested >= kMode4SpriteWords) {
        return;
    }
    const uint32_t number = vdp.spriteTested * 2U;
    ++vdp.spriteTested;
    TestSprite(vdp, static_cast<uint8_t>(vdp.readData), number, kVdpMaxSprites);
    TestSprite(vdp, static_cast<uint8_t>(vdp.readData >> 8), number + 1, kVdpMaxSprites);
}

inline uint32_t FetchSlot(const VDP& vdp) {
    return vdp.fetchIndex & (kVdpMaxSprites - 1);
}

// `fetchIndex` steps with the last address of a sprite; both pattern words arrive after that.
inline uint32_t FetchSlotBefore(const VDP& vdp) {
    return (vdp.fetchIndex - 1U) & (kVdpMaxSprites - 1);
}

// Kinds 22 to 27. Slots past the last found sprite fetch too; their data are not drawn.
inline void Sprite4(VDP& vdp) {
    const uint32_t number = vdp.foundIndex[FetchSlot(vdp)] % kSprites;
    vdp.nextAddr = SpriteBase4(vdp) + kMode4SpritePlaces + number;
}

inline void Sprite4Data(VDP& vdp) {
    const uint32_t slot = FetchSlot(vdp);
    uint32_t tile = vdp.readData >> 8;
    if ((vdp.regs[kVdpSpriteTiles] & kVdpSpriteTilesUpper) != 0) {
        tile += 256;
    }
    if ((vdp.regs[1] & kVdpReg1BigSprites) != 0) {
        tile &= ~1U; // an even tile and the one after it
    }
    vdp.spriteX[slot] = static_cast<uint8_t>(vdp.readData);
    vdp.fetchAddress = static_cast<uint16_t>((vdp.foundRow[slot] + tile * kTileRows) * 2);
}

inline void Sprite4High(VDP& vdp) {
    vdp.nextAddr = vdp.fetchAddress + 1U;
    ++vdp.fetchIndex;
}

inline void SpriteLowData(VDP& vdp) {
    vdp.spriteData[FetchSlotBefore(vdp)][0] = vdp.readData;
}

inline void SpriteHighData(VDP& vdp) {
    vdp.spriteData[FetchSlotBefore(vdp)][1] = vdp.readData;
}

} // namespace vdp_fetch
