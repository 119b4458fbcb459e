// The slot kinds of the 8-bit VDP: what each sets as its address and does with its data. Parts of the
// step in vdp_tick.h.
#pragma once

#include "base/bytes.h"
#include "sega8/vdp_record.h"
#include "sega8/vdp_slots.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vdp_fetch {

inline constexpr uint32_t kTextColumns = 40;
inline constexpr uint32_t kTextLeft = 8; // border pixels of text mode
inline constexpr uint64_t kEveryPixel = 0x0101010101010101;
inline constexpr uint8_t kSpriteListEnd = 0xD0;
inline constexpr uint32_t kLegacySprites = 32;
inline constexpr uint32_t kLegacySpritesPerLine = 4;
inline constexpr uint32_t kMode4SpriteWords = 32;

// Spreads the bits of a pattern byte to eight bytes of 0 or 1, bit 7 to the lowest byte: with a
// little-endian store the leftmost pixel comes first. The flipped table has bit 0 leftmost.
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
    return static_cast<uint8_t>((vdp.regs[7] & 15) + 16);
}

// Register 0 bit 5 does nothing on a Game Gear, and there is no such column in the older modes.
inline bool LeftColumnBlank(const VDP& vdp) {
    return (vdp.regs[0] & 0x20) != 0 && vdp.mode == 4 && vdp.variant != kVdpGameGear;
}

// The column whose last data come at this dot, which lies in the first slot of the next column.
inline uint32_t ColumnBefore(uint32_t dot) {
    return ((dot >> 3) - 1) & 31;
}

inline void StorePixels(uint8_t* line, uint32_t x, uint64_t pixels) {
    StoreLittleEndian<uint64_t>(&line[x], pixels);
}

// Kind 4.
inline void Blank(VDP& vdp, uint32_t dot) {
    const uint32_t x = dot & 0xF8;
    StorePixels(vdp.colourLine, x, Backdrop(vdp) * kEveryPixel);
    StorePixels(vdp.priorityLine, x, 0);
    vdp.nextAddr = 0;
}

// Kinds 8 and 9: an access of the processor, if one is due.
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

// Kinds 10 and 11. The locks of register 0 are looked at for every column: bit 6 keeps lines 0 to 15
// from moving sideways (not on a Game Gear), bit 7 the screen columns 24 to 31 from moving up.
inline uint32_t ScrollX(const VDP& vdp) {
    const bool locked = (vdp.regs[0] & 0x40) != 0 && vdp.line < 16 && vdp.variant != kVdpGameGear;
    return locked ? 0 : vdp.scrollX;
}

inline constexpr uint32_t kLockedColumns = 24; // they and those behind them

// A line of the name table.
struct NAME_ROW {
    uint32_t address; // of its first column, in words
    uint16_t tileRow; // line of the scrolled background
};

inline NAME_ROW NameRow4(const VDP& vdp, uint32_t screenColumn) {
    const bool lockedY = (vdp.regs[0] & 0x80) != 0 && screenColumn >= kLockedColumns;
    const uint32_t line = vdp.line + (lockedY ? 0U : vdp.scrollY);
    if (vdp.activeHeight == 192) {
        const uint32_t scrolled = line % 224;
        uint32_t row = scrolled >> 3;
        // Settled: the first chip takes address bit 10 only where register 2 bit 0 lets it through.
        if (vdp.variant == kVdpFirst && (vdp.regs[2] & 1) == 0) {
            row &= 15;
        }
        return {((vdp.regs[2] & 0x0EU) << 9) + row * 32, static_cast<uint16_t>(scrolled)};
    }
    const uint32_t scrolled = line & 255;
    return {((vdp.regs[2] & 0x0CU) << 9) + 0x380 + (scrolled >> 3) * 32,
            static_cast<uint16_t>(scrolled)};
}

inline uint32_t NameColumn4(uint32_t screenColumn, uint32_t scrollX) {
    return (screenColumn + 32 - (scrollX >> 3)) & 31;
}

inline void Name4(VDP& vdp, uint32_t dot) {
    const uint32_t screenColumn = dot >> 3;
    const NAME_ROW row = NameRow4(vdp, screenColumn);
    vdp.tileRow = row.tileRow;
    vdp.nextAddr = row.address + NameColumn4(screenColumn, ScrollX(vdp));
}

// The words of a tile's line; bit 10 of an entry turns the tile upside down.
inline uint32_t TileAddress4(uint32_t entry, uint32_t tileRow) {
    const uint32_t turned = (entry & 0x400) != 0 ? 7 : 0;
    return ((entry & 511) * 8 + ((tileRow & 7) ^ turned)) * 2;
}

inline void Name4Data(VDP& vdp) {
    vdp.tileEntry = vdp.readData;
    vdp.tileAddress = static_cast<uint16_t>(TileAddress4(vdp.readData, vdp.tileRow));
}

// The eight pixels of a tile's line. Colour 0 of a tile is a real colour, but it neither covers a sprite
// nor a chip below.
inline void DrawTile4(VDP& vdp, uint32_t x, uint32_t entry, uint32_t low, uint32_t high) {
    const std::array<uint64_t, 256>& spread = kSpread[(entry >> 9) & 1];
    const uint64_t plane0 = spread[low & 255];
    const uint64_t plane1 = spread[low >> 8];
    const uint64_t plane2 = spread[high & 255];
    const uint64_t plane3 = spread[high >> 8];
    const uint64_t solid = plane0 | plane1 | plane2 | plane3;
    const uint64_t palette = ((entry >> 11) & 1) * kEveryPixel;
    const uint64_t covers = (entry & 0x1000) != 0 ? solid << 1 : 0;
    StorePixels(vdp.colourLine, x, plane0 | plane1 << 1 | plane2 << 2 | plane3 << 3 | palette << 4);
    StorePixels(vdp.priorityLine, x, solid | covers);
}

// Kind 17: the tile is whole, its pixels go to the line.
inline void TileHighData(VDP& vdp, uint32_t dot) {
    const uint32_t x = ColumnBefore(dot) * 8 + (ScrollX(vdp) & 7);
    DrawTile4(vdp, x, vdp.tileEntry, vdp.tileLow, vdp.readData);
}

inline uint32_t SpriteRows(const VDP& vdp) {
    return ((vdp.regs[1] & 2) != 0 ? 16U : 8U) << (vdp.regs[1] & 1U);
}

inline uint32_t SearchLine(const VDP& vdp) {
    return vdp.line + 1 >= vdp.totalLines ? 255 : vdp.line;
}

// Settled: a sprite at Y begins on line Y + 1, so during this line the next one's are searched. The
// list ends at 0xD0 with 192 lines only, or at the first hit too many, which sets the overflow flag.
// A blanked display searches nothing (general knowledge); the bit is looked at for every sprite.
inline void TestSprite(VDP& vdp, uint8_t y, uint32_t number, uint32_t limit) {
    if (vdp.searchDone || (vdp.regs[1] & 0x40) == 0) {
        return;
    }
    if (y == kSpriteListEnd && vdp.activeHeight == 192) {
        vdp.searchDone = true;
        return;
    }
    const uint32_t zoom = vdp.regs[1] & 1U;
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
    return (vdp.regs[5] & 0x7EU) << 6;
}

// Kinds 18 and 19. The first chip clears bit 6 of the address while register 5 bit 0 is clear; with
// the table on its boundary of 256 bytes that bit is clear anyway.
inline uint32_t SearchAddress4(const VDP& vdp, uint8_t index) {
    const uint32_t address = SpriteBase4(vdp) + index;
    return vdp.variant == kVdpFirst && (vdp.regs[5] & 1) == 0 ? address & ~0x40U : address;
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

// The fetch moves on with the last address of a sprite; both its pattern data arrive after that.
inline uint32_t FetchSlotBefore(const VDP& vdp) {
    return (vdp.fetchIndex - 1U) & (kVdpMaxSprites - 1);
}

// Kinds 22 to 27. Slots past the last found sprite fetch as well; their data are not shown.
inline void Sprite4(VDP& vdp) {
    vdp.nextAddr = SpriteBase4(vdp) + 64 + (vdp.foundIndex[FetchSlot(vdp)] & 63U);
}

inline void Sprite4Data(VDP& vdp) {
    const uint32_t slot = FetchSlot(vdp);
    uint32_t tile = vdp.readData >> 8;
    if ((vdp.regs[6] & 4) != 0) {
        tile += 256;
    }
    if ((vdp.regs[1] & 2) != 0) {
        tile &= 510;
    }
    vdp.spriteX[slot] = static_cast<uint8_t>(vdp.readData);
    vdp.fetchAddress = static_cast<uint16_t>((vdp.foundRow[slot] + tile * 8) * 2);
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

// Eight pixels of modes 0 and 2. Colour 0 lets the backdrop through.
inline uint8_t LegacyEntry(const VDP& vdp, uint32_t colour) {
    return colour == 0 ? Backdrop(vdp) : static_cast<uint8_t>(16 + colour);
}

inline void DrawLegacyCell(VDP& vdp, uint32_t x, uint8_t pattern, uint32_t colours) {
    const uint64_t ones = kSpread[0][pattern];
    const uint64_t zeros = ones ^ kEveryPixel;
    const uint32_t ink = (colours >> 4) & 15;
    const uint32_t paper = colours & 15;
    StorePixels(vdp.colourLine, x, ones * LegacyEntry(vdp, ink) + zeros * LegacyEntry(vdp, paper));
    StorePixels(vdp.priorityLine, x,
                (ink != 0 ? ones * kVdpSolid : 0) | (paper != 0 ? zeros * kVdpSolid : 0));
}

// Text mode has 40 columns where the list has 32, but needs no colours: its 80 accesses take the
// first of the 96 slots for names, patterns and colours. A name's data need two slots to come
// back, so names run ahead: name 0, name 1, pattern 0, name 2, pattern 1 and so on (open in the
// published material; this order fits the list and is in time for every pixel).
struct TextAccess {
    bool isName;
    uint32_t column; // 40 or more: none
};

inline TextAccess TextAccessOf(uint32_t dot, uint32_t part) {
    const uint32_t number = (dot >> 3) * 3 + part;
    if (number == 0 || (number & 1) != 0) {
        return {true, (number + 1) / 2};
    }
    return {false, number / 2 - 1};
}

inline void TextAddress(VDP& vdp, uint32_t dot, uint32_t part) {
    const TextAccess access = TextAccessOf(dot, part);
    if (access.isName) {
        vdp.nextAddr = vdp.nameBase + (vdp.line >> 3) * kTextColumns + access.column;
    } else {
        vdp.nextAddr = vdp.patternBase + vdp.names[access.column & 1] * 8U + (vdp.line & 7);
    }
}

inline void TextData(VDP& vdp, uint32_t dot, uint32_t part) {
    const TextAccess access = TextAccessOf(dot, part);
    const auto data = static_cast<uint8_t>(vdp.readData);
    if (access.column >= kTextColumns) {
        return;
    }
    if (access.isName) {
        vdp.names[access.column & 1] = data;
        return;
    }
    const uint32_t ink = vdp.regs[7] >> 4;
    const uint32_t x = kTextLeft + access.column * 6;
    for (uint32_t pixel = 0; pixel < 6; ++pixel) {
        const bool isInk = (data & (0x80U >> pixel)) != 0 && ink != 0;
        vdp.colourLine[x + pixel] = isInk ? LegacyEntry(vdp, ink) : Backdrop(vdp);
        vdp.priorityLine[x + pixel] = isInk ? kVdpSolid : 0;
    }
}

// Kinds 30 to 35. Data come in the slot after the address: names in the same column, colours at the
// start of the next.
inline void Name(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextAddress(vdp, dot, 0);
    } else {
        vdp.nextAddr = vdp.nameBase + (vdp.line & ~7U) * 4 + (dot >> 3);
    }
}

inline void NameData(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextData(vdp, dot, 0);
    } else {
        vdp.names[0] = static_cast<uint8_t>(vdp.readData);
    }
}

inline void Pattern(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextAddress(vdp, dot, 1);
    } else {
        vdp.nextAddr = vdp.patternBase + vdp.names[0] * 8U + (vdp.line & 7);
    }
}

inline void PatternData(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextData(vdp, dot, 1);
    } else {
        vdp.patternByte = static_cast<uint8_t>(vdp.readData);
    }
}

inline void Colour(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextAddress(vdp, dot, 2);
    } else if (vdp.mode == 2) {
        vdp.nextAddr = vdp.colourBase + vdp.names[0] * 8U + (vdp.line & 7);
    } else {
        vdp.nextAddr = vdp.colourBase + (vdp.names[0] >> 3U);
    }
}

inline void ColourData(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextData(vdp, ColumnBefore(dot) << 3, 2);
    } else {
        DrawLegacyCell(vdp, ColumnBefore(dot) * 8, vdp.patternByte, vdp.readData);
    }
}

// Kinds 36 to 47: Y, X, number, flags and the two halves of the pattern row. The row is known from
// the search, so the Y that is read again changes nothing.
inline uint32_t SpriteEntry(const VDP& vdp, uint32_t number) {
    return ((vdp.regs[5] & 0x7FU) << 7) + (number & (kLegacySprites - 1)) * 4;
}

inline void SpriteByte(VDP& vdp, uint32_t offset) {
    vdp.nextAddr = SpriteEntry(vdp, vdp.foundIndex[FetchSlot(vdp)]) + offset;
}

inline void SpriteXData(VDP& vdp) {
    vdp.spriteX[FetchSlot(vdp)] = static_cast<uint8_t>(vdp.readData);
}

inline void SpriteNumberData(VDP& vdp) {
    const uint32_t number = (vdp.regs[1] & 2) != 0 ? vdp.readData & 0xFCU : vdp.readData & 0xFFU;
    vdp.fetchAddress = static_cast<uint16_t>(((vdp.regs[6] & 7U) << 11) + number * 8 +
                                             vdp.foundRow[FetchSlot(vdp)]);
}

inline void SpriteFlagsData(VDP& vdp) {
    vdp.spriteFlags[FetchSlot(vdp)] = static_cast<uint8_t>(vdp.readData);
}

// The right half of a 16 x 16 pattern lies 16 bytes behind the left one.
inline void SpriteRight(VDP& vdp) {
    vdp.nextAddr = vdp.fetchAddress + 16U;
    ++vdp.fetchIndex;
}

// Kinds 48 and 49. Text mode has no sprites.
inline void TestY(VDP& vdp) {
    vdp.nextAddr = SpriteEntry(vdp, vdp.spriteIndex);
    ++vdp.spriteIndex;
}

inline void TestYData(VDP& vdp) {
    if (vdp.spriteTested >= kLegacySprites || vdp.mode == 1) {
        return;
    }
    const uint32_t number = vdp.spriteTested;
    ++vdp.spriteTested;
    TestSprite(vdp, static_cast<uint8_t>(vdp.readData), number, kLegacySpritesPerLine);
}

} // namespace vdp_fetch
