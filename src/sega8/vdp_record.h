// The record of the 8-bit VDP and its constants. Included by vdp.h, which states units, owner and
// order.
#pragma once

#include "sega8/vdp_registers.h"

#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kVdpDots = 342;         // a line
inline constexpr uint32_t kVdpTicksPerLine = 684; // two ticks a dot
inline constexpr uint32_t kVdpFirstPixelDot = 11; // the dot that outputs pixel 0
inline constexpr uint32_t kVdpPictureWidth = 256;
inline constexpr uint32_t kVdpEventDot = 318; // H counter 0xF4: next line, line counter, frame flag
inline constexpr uint32_t kVdpLineBuffer = 264; // 256 pixels and one column that scrolled out
inline constexpr uint32_t kVdpMaxSprites = 8;
inline constexpr uint32_t kVdpVramBytes = 16384;
inline constexpr uint32_t kVdpVramMask = kVdpVramBytes - 1;
inline constexpr uint32_t kVdpLargestPicture = 240; // rows, borders included
inline constexpr uint32_t kVdpNoRow = 0xFFFFFFFF;
inline constexpr uint32_t kVdpWriteCycle = 0x80000000; // in nextAddr and cycleAddr

// `variant`: the chip's generation.
enum VdpVariant : uint32_t {
    kVdpFirst = 0,    // 315-5124: 192 lines only
    kVdpSecond = 1,   // 315-5246: 224 and 240 lines too
    kVdpGameGear = 2, // 315-5378: as the second, with 12-bit colours
};

// `pendingAccess` and `activeAccess`.
enum VdpAccess : uint8_t {
    kVdpNoAccess = 0,
    kVdpRead = 1,
    kVdpWrite = 2,
};

// Bits of `priorityLine`: what a background pixel does to a sprite and to the chip below.
inline constexpr uint8_t kVdpSolid = 1;  // not colour 0 and not the backdrop
inline constexpr uint8_t kVdpCovers = 2; // solid with the priority bit: covers sprites

// Bits of `spriteLine`; the low five are the palette entry.
inline constexpr uint8_t kVdpSpriteEntry = 0x1F;
inline constexpr uint8_t kVdpSpriteHere = 0x40; // a pattern bit is set, even if it shows nothing
inline constexpr uint8_t kVdpSpriteCollides = 0x80; // a second sprite has a pattern bit here

struct VDP {
    // Fixed by VdpInit and the owner; not part of a state.
    uint32_t variant = kVdpFirst;
    bool pal = false;          // 313 lines instead of 262
    bool secondChip = false;   // upper layer of System E: transparent pixels are not drawn
    uint32_t totalLines = 262; // in a frame
    uint8_t* vram = nullptr;   // 16 KB of the owner
    uint32_t* irqOut = nullptr;
    uint32_t* nmiOut = nullptr;

    // The picture being drawn; set by VdpBeginFrame, not part of a state.
    uint32_t* pixels = nullptr;
    uint32_t rowLength = 0;  // in pixels
    uint32_t* row = nullptr; // row of the current line, null if the line is not drawn

    // Derived from the registers and the fields below; not part of a state.
    uint32_t activeHeight = 192;        // 192, 224 or 240 lines
    uint32_t border = 16;               // lines above and below
    uint32_t pictureHeight = 224;       // activeHeight + 2 * border
    const uint8_t* slotTable = nullptr; // kind and cycle width of every slot of this line
    bool fixedColours = false;          // this line shows the TMS9918 colours, not colour RAM
    uint32_t palette[32] = {};          // pixels, from `cram`

    // The frame: position and outputs.
    uint32_t dotCounter = 0; // 0..683, in half dots
    uint32_t line = 0;       // 0..totalLines - 1; steps at dot 318, after the last pixel
    bool frameDone = false;  // set when `line` wraps to 0, cleared by VdpBeginFrame
    bool pausePressed = false;
    bool pauseSeen = false;         // pausePressed at dot 0 of this line
    uint8_t hLatch = 0;             // H counter as last latched
    uint8_t status = 0;             // kVdpStatusFrame, Overflow, Collision
    bool lineInterrupt = false;     // pending until the status is read
    bool frameInterrupt = false;    // pending until the status is read
    uint8_t lineCounter = 0;        // counts down to a line interrupt
    uint32_t outputRow = kVdpNoRow; // row of `pixels` for this line, or kVdpNoRow
    uint8_t slotList = 3;           // VdpSlotListNumber of slotTable

    // Ports.
    uint8_t regs[16] = {};  // by VdpRegister
    uint8_t cram[64] = {};  // 32 bytes, on the Game Gear 32 pairs
    uint8_t cramLatch = 0;  // Game Gear: first byte of a pair
    uint16_t addr = 0;      // 14 bits
    uint8_t code = 0;       // VdpCode
    bool latchFull = false; // the first control byte is in latchByte
    uint8_t latchByte = 0;
    uint8_t readBuffer = 0;
    uint8_t pendingAccess = kVdpNoAccess; // requested by the processor
    uint8_t pendingCount = 0;             // even dots since the request, 0..2
    uint8_t pendingValue = 0;
    uint16_t pendingAddress = 0;
    uint8_t activeAccess = kVdpNoAccess; // waits for a free slot
    uint8_t activeValue = 0;
    uint16_t activeAddress = 0;

    // Sampled at dot 0 of the line.
    uint8_t mode = 0; // 0, 1, 2 or 4
    bool displayEnabled = false;
    uint8_t scrollX = 0; // regs[8]
    uint8_t scrollY = 0; // regs[9]
    uint16_t nameBase = 0;
    uint16_t patternBase = 0;
    uint16_t colourBase = 0;

    // The memory cycle: kind k sets nextAddr, a slot later kind k + 1 takes readData.
    uint8_t nextKind = 0;
    uint8_t lastKind = 0;
    bool cycleIsByte = false;
    uint32_t nextAddr = 0;
    uint32_t cycleAddr = 0;
    int32_t writeValue = -1; // -1 in a read cycle
    uint16_t readData = 0;

    // Background fetch.
    uint16_t tileEntry = 0;   // mode 4 name table entry
    uint16_t tileAddress = 0; // mode 4, in words
    uint16_t tileLow = 0;     // bit planes 0 and 1
    uint16_t tileRow = 0;     // line of the scrolled background
    uint8_t names[2] = {};    // modes 0 to 2; text mode fetches two ahead
    uint8_t patternByte = 0;  // modes 0 and 2

    // Sprite search for the next line. Mode 4 counts words of two sprites, the others sprites.
    uint8_t spriteIndex = 0; // next Y to address
    uint8_t spriteTested = 0;
    bool searchDone = true;
    uint8_t foundCount = 0;
    uint8_t foundIndex[kVdpMaxSprites] = {};
    uint8_t foundRow[kVdpMaxSprites] = {}; // row in the pattern, 0..15

    // Sprite fetch; from dot 0 on the sprites of this line.
    uint8_t spriteCount = 0;
    uint8_t fetchIndex = 0;
    uint16_t fetchAddress = 0; // pattern: mode 4 in words, others in bytes
    uint8_t spriteX[kVdpMaxSprites] = {};
    uint8_t spriteFlags[kVdpMaxSprites] = {}; // modes 0 and 2: early clock and colour
    uint16_t spriteData[kVdpMaxSprites][2] = {};

    // The line being drawn, by screen pixel.
    uint8_t colourLine[kVdpLineBuffer] = {};
    uint8_t priorityLine[kVdpLineBuffer] = {};
    uint8_t spriteLine[kVdpLineBuffer] = {};
};
