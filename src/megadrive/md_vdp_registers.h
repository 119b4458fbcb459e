// Registers, command words and bits of the Mega Drive's VDP. Source: Sega, "Genesis Software Manual".
#pragma once

#include <cstdint>

// Numbers of the registers that do something.
enum MdVdpRegister : uint32_t {
    kMdVdpRegMode1 = 0,
    kMdVdpRegMode2 = 1,
    kMdVdpRegPlaneA = 2, // 2 to 5 and 13: base addresses
    kMdVdpRegWindow = 3,
    kMdVdpRegPlaneB = 4,
    kMdVdpRegSprites = 5,
    kMdVdpRegBackdrop = 7,
    kMdVdpRegHInterrupt = 10, // lines between two H interrupts, minus 1
    kMdVdpRegMode3 = 11,
    kMdVdpRegMode4 = 12,
    kMdVdpRegHScroll = 13,
    kMdVdpRegIncrement = 15, // of the address, in bytes
    kMdVdpRegPlaneSize = 16,
    kMdVdpRegWindowAcross = 17,
    kMdVdpRegWindowDown = 18,
    kMdVdpRegDmaLengthLow = 19,
    kMdVdpRegDmaLengthHigh = 20,
    kMdVdpRegDmaSourceLow = 21,
    kMdVdpRegDmaSourceMiddle = 22,
    kMdVdpRegDmaSourceHigh = 23,
};

// Bits of registers.
inline constexpr uint8_t kMdVdpReg0HInterrupt = 0x10;
inline constexpr uint8_t kMdVdpReg1AllRegisters = 0x04; // mode 5; clear blocks registers 11 and up
inline constexpr uint8_t kMdVdpReg1Tall = 0x08;         // 240 lines
inline constexpr uint8_t kMdVdpReg1Dma = 0x10;
inline constexpr uint8_t kMdVdpReg1VInterrupt = 0x20;
inline constexpr uint8_t kMdVdpReg1Display = 0x40;
inline constexpr uint8_t kMdVdpReg7Colour = 0x3F;
inline constexpr uint8_t kMdVdpReg11HScroll = 0x03; // 0 plane, 1 eight lines, 2 cells, 3 lines
inline constexpr uint8_t kMdVdpReg11ColumnScroll = 0x04;
inline constexpr uint8_t kMdVdpReg12H40 = 0x01;
inline constexpr uint8_t kMdVdpReg12H40Clock = 0x80;   // programs set both or neither
inline constexpr uint8_t kMdVdpReg12Interlace2 = 0x06; // both bits
inline constexpr uint8_t kMdVdpReg12Shadow = 0x08;
inline constexpr uint8_t kMdVdpWindowFar = 0x80;  // registers 17, 18: from there to the far edge
inline constexpr uint8_t kMdVdpWindowEdge = 0x1F; // in pairs of columns, or in rows of cells
inline constexpr uint8_t kMdVdpReg23Source = 0x7F;
inline constexpr uint8_t kMdVdpReg23Copy = 0x40;   // with the next bit
inline constexpr uint8_t kMdVdpReg23NotBus = 0x80; // a fill or a copy

// Control port words. A register write has 10 in the top bits; in the first word of a command bits 0 and 1 of
// the code are there, with the low 14 address bits below. The second word has bits 2 to 5 of the code in bits
// 4 to 7 and the two high address bits in bits 0 and 1.
inline constexpr uint32_t kMdVdpControlKind = 0xC000;
inline constexpr uint32_t kMdVdpControlRegister = 0x8000;
inline constexpr uint32_t kMdVdpControlAddressLow = 0x3FFF;
inline constexpr uint32_t kMdVdpControlAddressHigh = 0x0003;
inline constexpr uint32_t kMdVdpCodeLowBits = 0x03;
inline constexpr uint32_t kMdVdpCodeHighBits = 0x3C;

// Codes of a command: what it accesses, in the low four bits, and the bit that begins a DMA.
inline constexpr uint32_t kMdVdpCodeTarget = 0x0F;
inline constexpr uint32_t kMdVdpCodeReadVram = 0;
inline constexpr uint32_t kMdVdpCodeVram = 1;
inline constexpr uint32_t kMdVdpCodeCram = 3;
inline constexpr uint32_t kMdVdpCodeReadVsram = 4;
inline constexpr uint32_t kMdVdpCodeVsram = 5;
inline constexpr uint32_t kMdVdpCodeReadCram = 8;
inline constexpr uint32_t kMdVdpCodeDma = 0x20;

// Bits of a cell's name table word and of a sprite's attributes. Colours are numbered from the first palette on,
// 16 a palette.
inline constexpr uint32_t kMdVdpPalette = 0x6000;
inline constexpr uint32_t kMdVdpPaletteShift = 9; // of these bits to the palette's first colour
inline constexpr uint32_t kMdVdpFlipX = 0x0800;
inline constexpr uint32_t kMdVdpFlipY = 0x1000;
inline constexpr uint32_t kMdVdpPriority = 0x8000;

inline constexpr uint32_t kMdVdpColourOfPalette = 0x0F; // of a colour's number
inline constexpr uint32_t kMdVdpColourBits = 0x1FF;     // of a CRAM entry
inline constexpr uint32_t kMdVdpEntries = 64;           // of CRAM and VSRAM, a word each
