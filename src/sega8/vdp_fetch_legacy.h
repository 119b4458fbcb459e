// The slots of the 8-bit VDP in modes 0 to 2: the address each kind sets and what it does with its
// data. Parts of the tick in vdp_tick.h.
#pragma once

#include "sega8/vdp_fetch.h"
#include "sega8/vdp_record.h"

#include <cstdint>

namespace vdp_fetch {

inline constexpr uint32_t kTextColumns = 40;
inline constexpr uint32_t kTextLeft = 8; // border pixels of text mode
inline constexpr uint32_t kLegacySprites = 32;
inline constexpr uint32_t kLegacySpritesPerLine = 4;

// Palette entry of a colour in modes 0 to 2. Colour 0 shows the backdrop.
inline uint8_t LegacyEntry(const VDP& vdp, uint32_t colour) {
    return colour == 0 ? Backdrop(vdp) : static_cast<uint8_t>(kVdpUpperPalette + colour);
}

inline void DrawLegacyCell(VDP& vdp, uint32_t x, uint8_t pattern, uint32_t colours) {
    const uint64_t ones = kSpread[0][pattern];
    const uint64_t zeros = ones ^ kEveryPixel;
    const uint32_t ink = (colours & 0xFF) >> kVdpColourInkShift;
    const uint32_t paper = colours & kVdpColourPaper;
    StorePixels(vdp.colourLine, x, ones * LegacyEntry(vdp, ink) + zeros * LegacyEntry(vdp, paper));
    StorePixels(vdp.priorityLine, x,
                (ink != 0 ? ones * kVdpSolid : 0) | (paper != 0 ? zeros * kVdpSolid : 0));
}

// Text mode has 40 columns, the slot list 32. Text mode needs no colours, so its 80 accesses take
// the first of the 96 slots for names, patterns and colours. A name arrives two slots after its
// address, so names are fetched ahead: name 0, name 1, pattern 0, name 2, pattern 1 and so on.
// (Open: no source tells the order. This one fits the list and is in time for every pixel.)
struct TextAccess {
    bool isName;
    uint32_t column; // 40 or more: no access
};

inline TextAccess TextAccessOf(uint32_t dot, uint32_t part) {
    const uint32_t number = dot / kColumnDots * 3 + part;
    if (number == 0 || (number & 1) != 0) {
        return {true, (number + 1) / 2};
    }
    return {false, number / 2 - 1};
}

inline void TextAddress(VDP& vdp, uint32_t dot, uint32_t part) {
    const TextAccess access = TextAccessOf(dot, part);
    if (access.isName) {
        vdp.nextAddr = vdp.nameBase + vdp.line / kTileRows * kTextColumns + access.column;
    } else {
        vdp.nextAddr =
            vdp.patternBase + vdp.names[access.column & 1] * kTileRows + vdp.line % kTileRows;
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
    const uint32_t ink = vdp.regs[kVdpColourIndex] >> kVdpInkShift;
    const uint32_t x = kTextLeft + access.column * 6;
    for (uint32_t pixel = 0; pixel < 6; ++pixel) {
        const bool isInk = (data & (0x80U >> pixel)) != 0 && ink != 0;
        vdp.colourLine[x + pixel] = isInk ? LegacyEntry(vdp, ink) : Backdrop(vdp);
        vdp.priorityLine[x + pixel] = isInk ? kVdpSolid : 0;
    }
}

// Kinds 30 to 35. Data arrive one slot after the address: names in the same column, colours at the
// start of the next.
inline void Name(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextAddress(vdp, dot, 0);
    } else {
        vdp.nextAddr = vdp.nameBase + vdp.line / kTileRows * kColumns + dot / kColumnDots;
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
        vdp.nextAddr = vdp.patternBase + vdp.names[0] * kTileRows + vdp.line % kTileRows;
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
        vdp.nextAddr = vdp.colourBase + vdp.names[0] * kTileRows + vdp.line % kTileRows;
    } else {
        vdp.nextAddr = vdp.colourBase + (vdp.names[0] >> 3U);
    }
}

inline void ColourData(VDP& vdp, uint32_t dot) {
    if (vdp.mode == 1) {
        TextData(vdp, ColumnBefore(dot) * kColumnDots, 2);
    } else {
        DrawLegacyCell(vdp, ColumnBefore(dot) * kColumnDots, vdp.patternByte, vdp.readData);
    }
}

// Kinds 36 to 47: Y, X, number, flags and the two halves of the pattern row. The search has stored
// the row, so the Y read here is not used.
inline uint32_t SpriteEntry(const VDP& vdp, uint32_t number) {
    return ((vdp.regs[kVdpSprites] & uint32_t{kVdpSpritesLegacy}) << 7) +
           (number & (kLegacySprites - 1)) * 4;
}

inline void SpriteByte(VDP& vdp, uint32_t offset) {
    vdp.nextAddr = SpriteEntry(vdp, vdp.foundIndex[FetchSlot(vdp)]) + offset;
}

inline void SpriteXData(VDP& vdp) {
    vdp.spriteX[FetchSlot(vdp)] = static_cast<uint8_t>(vdp.readData);
}

inline void SpriteNumberData(VDP& vdp) {
    constexpr uint32_t kFirstOfFour = 0xFC; // a big sprite has four patterns
    const bool big = (vdp.regs[1] & kVdpReg1BigSprites) != 0;
    const uint32_t number = vdp.readData & (big ? kFirstOfFour : 0xFF);
    const uint32_t base = (vdp.regs[kVdpSpriteTiles] & uint32_t{kVdpSpriteTilesLegacy}) << 11;
    vdp.fetchAddress =
        static_cast<uint16_t>(base + number * kTileRows + vdp.foundRow[FetchSlot(vdp)]);
}

inline void SpriteFlagsData(VDP& vdp) {
    vdp.spriteFlags[FetchSlot(vdp)] = static_cast<uint8_t>(vdp.readData);
}

// The right half of a 16 x 16 pattern is 16 bytes after the left one.
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
