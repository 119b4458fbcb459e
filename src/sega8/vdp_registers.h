// Registers, command codes, status bits and table entries of the 8-bit VDP. Included by
// vdp_record.h.
//
// Sources: C. MacDonald, Sega Master System VDP documentation (2002); for modes 0 to 2 the Texas
// Instruments TMS9918A Data Manual.
#pragma once

#include <cstdint>

// Index in `regs`, after the mode controls 0 and 1. Registers 11 to 15 are stored and do nothing.
enum VdpRegister : uint8_t {
    kVdpNames = 2,        // base of the name table
    kVdpColours = 3,      // base of the colour table, modes 0 to 2
    kVdpPatterns = 4,     // base of the pattern table, modes 0 to 2
    kVdpSprites = 5,      // base of the sprite table
    kVdpSpriteTiles = 6,  // base of the sprites' patterns
    kVdpColourIndex = 7,  // low nibble backdrop, high nibble ink of text mode
    kVdpScrollX = 8,      // mode 4
    kVdpScrollY = 9,      // mode 4
    kVdpLineInterval = 10 // lines between line interrupts, minus 1
};

// Register 0, mode control 1.
inline constexpr uint8_t kVdpReg0M2 = 0x02;
inline constexpr uint8_t kVdpReg0M4 = 0x04;
inline constexpr uint8_t kVdpReg0ShiftSprites = 0x08; // eight pixels to the left
inline constexpr uint8_t kVdpReg0LineInterrupt = 0x10;
inline constexpr uint8_t kVdpReg0BlankLeft = 0x20; // pixels 0 to 7 show the backdrop
inline constexpr uint8_t kVdpReg0LockTop = 0x40;   // lines 0 to 15 have no horizontal scroll
inline constexpr uint8_t kVdpReg0LockRight = 0x80; // columns 24 to 31 have no vertical scroll

// Register 1, mode control 2.
inline constexpr uint8_t kVdpReg1Zoom = 0x01;       // sprites of twice the size
inline constexpr uint8_t kVdpReg1BigSprites = 0x02; // 16 rows; in modes 0 to 2 16 columns too
inline constexpr uint8_t kVdpReg1M3 = 0x08;
inline constexpr uint8_t kVdpReg1M1 = 0x10;
inline constexpr uint8_t kVdpReg1FrameInterrupt = 0x20;
inline constexpr uint8_t kVdpReg1Display = 0x40;

// Table bases: the bits of a register that count.
inline constexpr uint8_t kVdpNames192 = 0x0E;  // mode 4 with 192 lines, in KB
inline constexpr uint8_t kVdpNamesTall = 0x0C; // mode 4 with 224 and 240 lines, in KB
inline constexpr uint8_t kVdpNamesRowBit =
    0x01; // first chip, mode 4: lets bit 4 of the row through
inline constexpr uint8_t kVdpNamesLegacy = 0x0F;       // modes 0 to 2, in KB
inline constexpr uint8_t kVdpColoursThirds = 0x80;     // mode 2: the half of memory
inline constexpr uint8_t kVdpPatternsLegacy = 0x07;    // modes 0 and 1, in 2 KB
inline constexpr uint8_t kVdpPatternsThirds = 0x04;    // mode 2: the half of memory
inline constexpr uint8_t kVdpSprites4 = 0x7E;          // mode 4, in 128 bytes
inline constexpr uint8_t kVdpSpritesLowBit = 0x01;     // first chip, mode 4: see SearchAddress4
inline constexpr uint8_t kVdpSpritesLegacy = 0x7F;     // modes 0 to 2, in 128 bytes
inline constexpr uint8_t kVdpSpriteTilesUpper = 0x04;  // mode 4: tiles 256 to 511
inline constexpr uint8_t kVdpSpriteTilesLegacy = 0x07; // modes 0 to 2, in 2 KB

// Register 7.
inline constexpr uint8_t kVdpBackdropColour = 0x0F;
inline constexpr uint32_t kVdpInkShift = 4;

// Second control byte. A command has the code in the top two bits, and below them the high six bits of an
// address or the number of a register; the first byte has the low bits of the address or the value.
inline constexpr uint32_t kVdpControlCodeShift = 6;
inline constexpr uint8_t kVdpControlAddress = 0x3F;
inline constexpr uint8_t kVdpControlRegister = 0x0F;

// The code of a command, kept in `code`.
enum VdpCode : uint8_t {
    kVdpCodeRead = 0,
    kVdpCodeWrite = 1,
    kVdpCodeRegister = 2,
    kVdpCodeColour = 3 // data writes go to colour RAM
};

// Bits of `status`.
inline constexpr uint8_t kVdpStatusFrame = 0x80;
inline constexpr uint8_t kVdpStatusOverflow = 0x40;
inline constexpr uint8_t kVdpStatusCollision = 0x20;
inline constexpr uint8_t kVdpStatusUnused = 0x1F; // read as ones

// Name table entry of mode 4.
inline constexpr uint32_t kVdpTileNumber = 0x01FF;
inline constexpr uint32_t kVdpTileFlipX = 0x0200;
inline constexpr uint32_t kVdpTileFlipY = 0x0400;
inline constexpr uint32_t kVdpTilePalette = 0x0800;  // entries 16 to 31
inline constexpr uint32_t kVdpTilePriority = 0x1000; // covers sprites

// Fourth byte of a sprite in modes 0 to 2.
inline constexpr uint8_t kVdpSpriteEarlyClock = 0x80; // 32 pixels to the left
inline constexpr uint8_t kVdpSpriteColour = 0x0F;

// A colour byte of the colour table in modes 0 to 2: ink in the high nibble, paper in the low one.
inline constexpr uint32_t kVdpColourInkShift = 4;
inline constexpr uint32_t kVdpColourPaper = 0x0F;

// Colour RAM: 32 entries, of a byte each, or on the Game Gear of two.
inline constexpr uint32_t kVdpEntryMask = 31;
inline constexpr uint32_t kVdpPairByteMask = 63;

// The second half of the palette: the backdrop, sprites, and all colours of modes 0 to 2.
inline constexpr uint32_t kVdpUpperPalette = 16;
