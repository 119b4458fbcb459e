// PPU: the picture chip of the 60 Hz NES (2C02). 256 by 240 pixels of background and sprites.
//
// Clock: one tick is one dot, a third of a CPU cycle. A line has 341 dots, a frame 262 lines: -1 is the
//   pre-render line, 0 to 239 are visible, 240 is idle, 241 to 260 are vblank. A frame ends at dot 256 of
//   line -1. Dot numbers start at 0, where the published tables start at 1.
// Units: `dot` and `line` are the last dot that has run; a pixel is 0xAARRGGBB.
// Owner: one machine, on its session's thread. Not movable: the page table points into `nametables`.
// Pins: `pages`, the PPU bus with its board, which watches addresses through the hook; `nmiLine`, a word of
//   the CPU whose bit 0 is set and cleared here and cleared by the CPU.
// Order: PpuInit, PpuReset, then PpuBeginFrame and ticks (PpuTick in ppu_tick.h) until frameDone, with
//   register accesses between dots. After PpuRun (ppu_run.h) the picture, the sprite evaluation with
//   `secondaryOam`, and the `status` flags that both set may be owed dots. They are current at the end of a
//   frame and in register reads; at any other time PpuCatchUp runs the dots that are owed.
// Sources: nesdev wiki, "PPU rendering", "PPU scrolling", "PPU sprite evaluation".
// Differs: docs/HARDWARE.md, NES, PPU.
#pragma once

#include "nes/nes_pages.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kPpuWidth = 256;
inline constexpr uint32_t kPpuHeight = 240;
inline constexpr uint32_t kPpuLineDots = 341;
inline constexpr uint32_t kPpuShortLineDots = 340;
inline constexpr int32_t kPpuLines = 262;
inline constexpr int32_t kPpuPreRenderLine = -1;
inline constexpr int32_t kPpuIdleLine = 240;
inline constexpr int32_t kPpuVblankLine = 241; // sets the vblank flag and raises the NMI
inline constexpr uint32_t kPpuFrameEndDot = 256;
inline constexpr size_t kPpuNametableBytes = 1024;
inline constexpr uint32_t kPpuLineSprites = 8;
inline constexpr size_t kPpuColours = 512;

// PPUCTRL (0x2000), `control`.
inline constexpr uint8_t kPpuCtrlNmi = 0x80;
inline constexpr uint8_t kPpuCtrlTallSprites = 0x20;     // 16 lines
inline constexpr uint8_t kPpuCtrlBackgroundTable = 0x10; // at 0x1000
inline constexpr uint8_t kPpuCtrlSpriteTable = 0x08;     // at 0x1000; of 8-line sprites
inline constexpr uint8_t kPpuCtrlIncrement32 = 0x04;     // a data access adds 32
inline constexpr uint8_t kPpuCtrlNametable = 0x03;
// PPUMASK (0x2001), `mask`.
inline constexpr uint8_t kPpuMaskGray = 0x01;
inline constexpr uint8_t kPpuMaskLeftBackground = 0x02; // in the first eight pixels
inline constexpr uint8_t kPpuMaskLeftSprites = 0x04;
inline constexpr uint8_t kPpuMaskBackground = 0x08;
inline constexpr uint8_t kPpuMaskSprites = 0x10;
inline constexpr uint8_t kPpuMaskEmphasis = 0xE0; // red 0x20, green 0x40, blue 0x80
// PPUSTATUS (0x2002), `status`.
inline constexpr uint8_t kPpuStatusVblank = 0x80;
inline constexpr uint8_t kPpuStatusSpriteZeroHit = 0x40;
inline constexpr uint8_t kPpuStatusSpriteOverflow = 0x20;
inline constexpr uint8_t kPpuStatusOpenBus = 0x1F; // no flags: last value on the register port

// Byte 2 of a sprite in OAM.
inline constexpr uint8_t kPpuAttributePalette = 0x03;
inline constexpr uint8_t kPpuAttributeBehind = 0x20; // behind the background
inline constexpr uint8_t kPpuAttributeFlipX = 0x40;
inline constexpr uint8_t kPpuAttributeFlipY = 0x80;

// Bits of `layers` and `leftLayers`.
inline constexpr uint8_t kPpuLayerBackground = 1;
inline constexpr uint8_t kPpuLayerSprites = 2;

// Bits of `spriteLine`; 0 is no sprite pixel.
inline constexpr uint8_t kPpuSpriteEntry = 0x1F; // palette entry
inline constexpr uint8_t kPpuSpriteBehind = 0x20;
inline constexpr uint8_t kPpuSpriteZero = 0x40;

// `ioState`: a PPUDATA access takes three dots; it counts down by two per dot, in odd numbers for a read,
// and moves its byte on the third dot. If rendering is on by then, a read leaves readBuffer unchanged, and
// a write stores only what PpuCollide makes of it.
enum PpuAccess : uint8_t {
    kPpuNoAccess = 0,
    kPpuReadEnd = 1,
    kPpuWriteEnd = 2,
    kPpuReadStart = 5,
    kPpuWriteStart = 6,
};

// `evaluation`: what the sprite evaluation for the next line does with the byte it reads.
enum PpuEvaluation : uint8_t {
    kPpuFindSprite = 0,   // a Y: compares it with the line
    kPpuCopySprite = 1,   // the other three bytes of a sprite in range
    kPpuFindOverflow = 2, // eight found: compares it as a Y, though it is mostly another byte
    kPpuSkipSprite = 3,   // three more bytes of a ninth sprite
    kPpuIdle = 4,         // past the last sprite
};

struct PPU {
    // Wiring and derived fields; not part of a state.
    NES_PAGES* pages = nullptr;
    uint32_t* nmiLine = nullptr;
    const uint32_t* colours = nullptr; // kPpuColours pixels
    uint32_t* pixels = nullptr;        // the picture being drawn; null draws nothing
    uint32_t rowLength = 0;            // in pixels
    uint32_t* row = nullptr;           // of the current line; null draws nothing
    bool rendering = false;            // background or sprites on, lines -1 to 239
    bool visible = false;              // lines 0 to 239
    uint8_t layers = 0;                // kPpuLayer bits
    uint8_t leftLayers = 0;            // the same for the first eight pixels
    uint8_t grayMask = 0x3F;           // 0x30 with kPpuMaskGray
    uint32_t emphasis = 0;             // emphasis bits, shifted to the bits above a colour number
    uint32_t eventDot = 0;             // the next dot on which PpuEvent has something to do, 1..341
    int32_t totalLines = kPpuLines;
    std::array<uint32_t, 32> shades{}; // the palette as pixels, with gray and emphasis

    uint32_t dot = 0; // 0..lineLength - 1
    int32_t line = kPpuVblankLine;
    uint32_t lineLength = kPpuLineDots; // or kPpuShortLineDots
    bool oddFrame = false;
    bool frameDone = false; // cleared by PpuBeginFrame
    // Pixels and sprite evaluation may be owed dots: only a register access can tell.
    uint32_t drawnDots = 0;     // 0..256, dots of this line that are drawn
    uint32_t evaluatedDots = 0; // 0..256, dots of this line that are evaluated

    uint8_t control = 0;
    uint8_t mask = 0;
    uint8_t status = 0;
    uint16_t vramAddress = 0; // 15 bits: fine Y, nametable, coarse Y, coarse X
    uint16_t tempAddress = 0; // the same
    uint8_t fineX = 0;        // 0..7
    uint8_t firstWrite = 1;   // 1: the next scroll or address write is the first of two
    uint8_t oamAddress = 0;
    uint8_t openBus = 0;
    uint8_t readBuffer = 0;
    uint8_t ioState = kPpuNoAccess;
    uint16_t ioAddress = 0; // 14 bits
    uint8_t ioValue = 0;
    uint32_t randomState = 0; // of the bytes that PpuCollide returns

    uint16_t fetchAddress = 0; // 14 bits, as set up on an even dot
    uint8_t tile = 0;
    uint8_t attribute = 0; // 0..3
    uint8_t lowPlane = 0;
    uint64_t background = 0; // 16 pixels of four bits, the first in the top bits

    uint8_t evaluation = kPpuFindSprite;
    uint8_t spriteIndex = 0; // of a byte in `oam`
    uint8_t spriteByte = 0;  // read on the even dot
    uint8_t skipBytes = 0;   // 0..3, left to read in kPpuSkipSprite
    uint8_t foundCount = 0;  // 0..8
    bool foundZero = false;  // the first of them is sprite 0
    uint8_t spriteCount = 0; // foundCount at dot 256: sprites of the line that is fetched or drawn
    bool zeroNote = false;   // foundZero at dot 256, until the hit

    std::array<uint8_t, 256> oam{};
    std::array<uint8_t, size_t{kPpuLineSprites} * 4> secondaryOam{};
    std::array<uint8_t, 32> palette{};               // 0..0x3F each
    std::array<uint8_t, kPpuWidth + 8> spriteLine{}; // eight more for sprites over the right edge
    std::array<std::array<uint8_t, kPpuNametableBytes>, 4> nametables{};
};

// The caller owns `pages`, which must outlive the chip.
void PpuInit(PPU& ppu, NES_PAGES* pages);

// Power-on values, memories included. With `hard` false, oamAddress and vramAddress stay: the reset line
// doesn't reach them.
void PpuReset(PPU& ppu, bool hard, uint32_t* nmiLine);

// Sets where the picture goes, kPpuHeight rows of `stride` pixels, and clears frameDone. With null
// `pixels` the chip runs without drawing.
void PpuBeginFrame(PPU& ppu, uint32_t* pixels, uint32_t stride);

// The registers, by the low three bits of `address`; between dots.
void PpuWriteRegister(PPU& ppu, uint16_t address, uint8_t value);
[[nodiscard]] uint8_t PpuReadRegister(PPU& ppu, uint16_t address);

// True if a read of PPUSTATUS would change nothing now: neither the flag, the write toggle, the NMI nor the open bus.
[[nodiscard]] bool PpuStatusReadIsIdle(const PPU& ppu);

// Runs the owed pixels and sprite evaluation up to the current dot.
void PpuCatchUp(PPU& ppu);

// One of the four nametable pages, for a board to enter in the page table. `page` is taken modulo 4.
[[nodiscard]] uint8_t* PpuNametable(PPU& ppu, uint32_t page);

[[nodiscard]] uint32_t PpuStateSize();
// Writes PpuStateSize bytes; returns the byte after them.
uint8_t* PpuSaveState(const PPU& ppu, uint8_t* out);
// Returns the bytes used, or 0 with nothing changed if the version or size is wrong. Any contents are safe.
[[nodiscard]] uint32_t PpuLoadState(PPU& ppu, const uint8_t* data, uint32_t size);
