// The tick of the 8-bit VDP, inlined into a machine's loop. Included by vdp.h, not by users.
//
// Each dot reads one byte of the slot list. The even dot of a slot sets an address (kind k). The
// odd dot runs the memory cycle of the address set one slot earlier and passes its data to kind k +
// 1. Every index into memory or a line buffer is masked: no bytes of a state lead outside.
#pragma once

#include "base/bytes.h"
#include "sega8/vdp_fetch.h"
#include "sega8/vdp_fetch_legacy.h"
#include "sega8/vdp_record.h"
#include "sega8/vdp_slots.h"

#include <cstdint>

// The work of dot 0: samples mode, display bit, scroll values and table bases, clears the line
// buffers and draws the fetched sprites into them.
void VdpStartLine(VDP& vdp);

// The work of dot 318: next line, line counter, frame flag, end of the frame, start of the sprite
// search.
void VdpLineEvent(VDP& vdp);

// The fixed colours of modes 0 to 2 as pixels, at entries 16 to 31.
extern const uint32_t kVdpFixedColours[32];

namespace vdp_tick {

// An access of the processor waits for three even dots, then takes the next free slot.
inline constexpr uint8_t kAccessDots = 3;

inline void AgeAccess(VDP& vdp) {
    if (++vdp.pendingCount >= kAccessDots) {
        vdp.activeAccess = vdp.pendingAccess;
        vdp.activeAddress = vdp.pendingAddress;
        vdp.activeValue = vdp.pendingValue;
        vdp.pendingAccess = kVdpNoAccess;
        vdp.pendingCount = 0;
    }
}

inline void SetAddress(VDP& vdp, uint8_t kind, uint32_t dot) {
    switch (kind) {
    case kSlotBlank: vdp_fetch::Blank(vdp, dot); break;
    case kSlotFree: vdp_fetch::Free(vdp); break;
    case kSlotName4: vdp_fetch::Name4(vdp, dot); break;
    case kSlotTileLow: vdp.nextAddr = vdp.tileAddress; break;
    case kSlotTileHigh: vdp.nextAddr = vdp.tileAddress + 1U; break;
    case kSlotTestY4: vdp_fetch::TestY4(vdp); break;
    case kSlotSprite4: vdp_fetch::Sprite4(vdp); break;
    case kSlotSprite4Low: vdp.nextAddr = vdp.fetchAddress; break;
    case kSlotSprite4High: vdp_fetch::Sprite4High(vdp); break;
    case kSlotName: vdp_fetch::Name(vdp, dot); break;
    case kSlotPattern: vdp_fetch::Pattern(vdp, dot); break;
    case kSlotColour: vdp_fetch::Colour(vdp, dot); break;
    case kSlotSpriteY: vdp_fetch::SpriteByte(vdp, 0); break;
    case kSlotSpriteX: vdp_fetch::SpriteByte(vdp, 1); break;
    case kSlotSpriteNumber: vdp_fetch::SpriteByte(vdp, 2); break;
    case kSlotSpriteFlags: vdp_fetch::SpriteByte(vdp, 3); break;
    case kSlotSpriteLeft: vdp.nextAddr = vdp.fetchAddress; break;
    case kSlotSpriteRight: vdp_fetch::SpriteRight(vdp); break;
    case kSlotTestY: vdp_fetch::TestY(vdp); break;
    default: break;
    }
}

inline void TakeData(VDP& vdp, uint32_t kind, uint32_t dot) {
    switch (kind) {
    case kSlotFreeData: vdp_fetch::FreeData(vdp); break;
    case kSlotName4Data: vdp_fetch::Name4Data(vdp); break;
    case kSlotTileLowData: vdp.tileLow = vdp.readData; break;
    case kSlotTileHighData: vdp_fetch::TileHighData(vdp, dot); break;
    case kSlotTestY4Data: vdp_fetch::TestY4Data(vdp); break;
    case kSlotSprite4Data: vdp_fetch::Sprite4Data(vdp); break;
    case kSlotSprite4LowData: vdp_fetch::SpriteLowData(vdp); break;
    case kSlotSprite4HighData: vdp_fetch::SpriteHighData(vdp); break;
    case kSlotNameData: vdp_fetch::NameData(vdp, dot); break;
    case kSlotPatternData: vdp_fetch::PatternData(vdp, dot); break;
    case kSlotColourData: vdp_fetch::ColourData(vdp, dot); break;
    case kSlotSpriteXData: vdp_fetch::SpriteXData(vdp); break;
    case kSlotSpriteNumberData: vdp_fetch::SpriteNumberData(vdp); break;
    case kSlotSpriteFlagsData: vdp_fetch::SpriteFlagsData(vdp); break;
    case kSlotSpriteLeftData: vdp_fetch::SpriteLowData(vdp); break;
    case kSlotSpriteRightData: vdp_fetch::SpriteHighData(vdp); break;
    case kSlotTestYData: vdp_fetch::TestYData(vdp); break;
    default: break;
    }
}

inline void MemoryCycle(VDP& vdp) {
    if (vdp.cycleIsByte) {
        uint8_t& cell = vdp.vram[vdp.cycleAddr & kVdpVramMask];
        if ((vdp.cycleAddr & kVdpWriteCycle) != 0) {
            cell = static_cast<uint8_t>(vdp.writeValue);
        }
        vdp.readData = cell;
    } else {
        vdp.readData = LoadLittleEndian<uint16_t>(&vdp.vram[(vdp.cycleAddr << 1) & kVdpVramMask]);
    }
}

inline void EvenDot(VDP& vdp, uint8_t kind, uint32_t dot) {
    if (vdp.pendingAccess != kVdpNoAccess) {
        AgeAccess(vdp);
    }
    vdp.nextKind = kind;
    SetAddress(vdp, kind, dot);
}

inline void OddDot(VDP& vdp, uint8_t isByte, uint32_t dot) {
    MemoryCycle(vdp);
    vdp.cycleAddr = vdp.nextAddr;
    vdp.cycleIsByte = isByte != 0;
    TakeData(vdp, vdp.lastKind + 1U, dot);
    vdp.lastKind = vdp.nextKind;
}

// Published: a sprite covers the background unless the tile has the priority bit and this pixel of
// it is not colour 0. The palette is read as the pixel is drawn, so a colour written in the middle
// of a line counts from the next dot on.
inline void Pixel(VDP& vdp, uint32_t x) {
    const uint8_t background = vdp.priorityLine[x];
    uint32_t entry = vdp.colourLine[x];
    bool solid = (background & kVdpSolid) != 0;
    const uint8_t sprite = vdp.spriteLine[x];
    if (sprite != 0) {
        if ((sprite & kVdpSpriteCollides) != 0) {
            vdp.status |= kVdpStatusCollision;
        }
        if ((sprite & kVdpSpriteEntry) != 0 && (background & kVdpCovers) == 0) {
            entry = sprite & kVdpSpriteEntry;
            solid = true;
        }
    }
    if (x < 8 && vdp_fetch::LeftColumnBlank(vdp)) {
        entry = vdp_fetch::Backdrop(vdp);
        solid = false;
    }
    if (vdp.row == nullptr || (vdp.secondChip && !solid)) {
        return;
    }
    const uint32_t* colours = vdp.fixedColours ? kVdpFixedColours : vdp.palette;
    vdp.row[x] = colours[entry & kVdpEntryMask];
}

inline void Dot(VDP& vdp, uint32_t dot) {
    if (dot == 0) {
        VdpStartLine(vdp);
    }
    const uint8_t slot = vdp.slotTable[dot];
    if ((dot & 1) == 0) {
        EvenDot(vdp, slot, dot);
    } else {
        OddDot(vdp, slot, dot);
    }
    const uint32_t x = dot - kVdpFirstPixelDot; // wraps to a large number before the first pixel
    if (x < kVdpPictureWidth) {
        Pixel(vdp, x);
    } else if (dot == kVdpEventDot) {
        VdpLineEvent(vdp);
    }
}

} // namespace vdp_tick

// Half a dot.
inline void VdpTick(VDP& vdp) {
    const uint32_t counter = vdp.dotCounter;
    vdp.dotCounter = counter + 1;
    if ((counter & 1) != 0) {
        vdp_tick::Dot(vdp, counter >> 1);
        if (counter == kVdpTicksPerLine - 1) {
            vdp.dotCounter = 0;
        }
    }
}
