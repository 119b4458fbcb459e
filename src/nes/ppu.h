// PPU: the picture unit of the NES, in its 60 Hz form. 256 by 240 pixels of background and sprites.
//
// Clock: a dot is a third of a processor cycle. A line has 341 dots, a frame 262 lines: -1 before the
//   picture, 0 to 239 with it, 240 idle, 241 to 260 blanking. A frame ends at dot 256 of line -1.
// Units: `dot` and `line` name the dot that was done last; a pixel is 0xAARRGGBB.
// Owner: one machine, on its session's thread. Pages of `nametables` are entered in the page table, so
//   a PPU stays where it is.
// Pins: `pages`, the picture bus with its board, which watches addresses through the hook; `nmiLine`,
//   a word of the processor whose bit 0 is raised and dropped here and cleared by the processor.
// Order: PpuInit, PpuReset, then PpuBeginFrame and dots (PpuTick in ppu_tick.h) until frameDone, with
//   register accesses between dots. The picture, the search for sprites with its `secondaryOam`, and
//   the flags in `status` that come of both may lag behind the dot. They are up to date at the end of a
//   frame and in what the registers give; PpuCatchUp brings them there at any other time.
// Differs, and kept so on purpose: the first pixel goes out at dot 0; an odd frame's pre-render line is
//   the short one; the whole scroll, its horizontal part too, is taken at one moment for a frame, dot
//   304 of the pre-render line; oamAddress is cleared as line 241 begins; a data access while the
//   picture is drawn garbles what is fetched, from a generator that starts afresh at reset so that a run
//   repeats.
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
inline constexpr int32_t kPpuVblankLine = 241; // blanking begins, and with it the flag and the NMI
inline constexpr uint32_t kPpuFrameEndDot = 256;
inline constexpr size_t kPpuNametableBytes = 1024;
inline constexpr uint32_t kPpuLineSprites = 8;
inline constexpr size_t kPpuColours = 512;

// Bits of `control`.
inline constexpr uint8_t kPpuCtrlNmi = 0x80;
inline constexpr uint8_t kPpuCtrlTallSprites = 0x20;     // 16 lines
inline constexpr uint8_t kPpuCtrlBackgroundTable = 0x10; // at 0x1000
inline constexpr uint8_t kPpuCtrlSpriteTable = 0x08;     // at 0x1000; of 8-line sprites
inline constexpr uint8_t kPpuCtrlIncrement32 = 0x04;     // a data access adds 32
// Bits of `mask`.
inline constexpr uint8_t kPpuMaskGray = 0x01;
inline constexpr uint8_t kPpuMaskShow = 0x18; // background 8, sprites 16
// Bits of `status`.
inline constexpr uint8_t kPpuStatusVblank = 0x80;
inline constexpr uint8_t kPpuStatusSpriteZeroHit = 0x40; // sprite 0 over background
inline constexpr uint8_t kPpuStatusSpriteOverflow = 0x20;

// Bits of `layers` and `leftLayers`.
inline constexpr uint8_t kPpuLayerBackground = 1;
inline constexpr uint8_t kPpuLayerSprites = 2;

// Values of `spriteLine`; 0 where no sprite has a pixel. The low five bits are the palette entry.
inline constexpr uint8_t kPpuSpriteEntry = 0x1F;
inline constexpr uint8_t kPpuSpriteBehind = 0x20;
inline constexpr uint8_t kPpuSpriteZero = 0x40;

// `ioState`: an access counts down by two a dot, in odd numbers for a read, and is over after three dots.
// What it moves it moves on the third. Where rendering is on by then a read leaves readBuffer as it is,
// and of a write only the garbled fetch reaches memory.
enum PpuAccess : uint8_t {
    kPpuNoAccess = 0,
    kPpuReadEnd = 1,
    kPpuWriteEnd = 2,
    kPpuReadStart = 5,
    kPpuWriteStart = 6,
};

// `evaluation`: what the search for the next line's sprites does with the byte it reads.
enum PpuEvaluation : uint8_t {
    kPpuFindSprite = 0,   // a Y; a sprite of the line is copied
    kPpuCopySprite = 1,   // its other three bytes
    kPpuFindOverflow = 2, // taken for a Y after eight sprites, from the wrong byte as a rule
    kPpuSkipSprite = 3,   // three more bytes of a ninth
    kPpuIdle = 4,         // all are seen
};

struct PPU {
    // Wiring and what follows from other fields; not part of a state.
    NES_PAGES* pages = nullptr;
    uint32_t* nmiLine = nullptr;
    const uint32_t* colours = nullptr; // kPpuColours pixels
    uint32_t* pixels = nullptr;        // the picture being drawn; null draws nothing
    uint32_t rowLength = 0;            // in pixels
    uint32_t* row = nullptr;           // of the present line
    bool rendering = false;            // something is shown, on lines -1 to 239
    bool visible = false;              // lines 0 to 239
    uint8_t layers = 0;                // kPpuLayer bits
    uint8_t leftLayers = 0;            // the same for the first eight pixels
    uint8_t grayMask = 0x3F;           // 0x30 with gray
    uint32_t emphasis = 0;             // mask bits 5 to 7, shifted left by one
    uint32_t eventDot = 0;             // the next one at which something begins or ends; 1..341
    int32_t totalLines = kPpuLines;
    std::array<uint32_t, 32> shades{}; // the palette as pixels, with gray and emphasis

    uint32_t dot = 0; // 0..lineLength - 1
    int32_t line = kPpuVblankLine;
    uint32_t lineLength = kPpuLineDots; // or kPpuShortLineDots
    bool oddFrame = false;
    bool frameDone = false; // cleared by PpuBeginFrame
    // Pixels and sprite search lag behind the dot, as nobody but a register access can tell.
    uint32_t drawnDots = 0;     // 0..256, of this line: those whose pixel is out
    uint32_t evaluatedDots = 0; // 0..256, of this line: those whose search is done

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
    uint32_t randomState = 0; // of the bytes that a collision gives

    uint16_t fetchAddress = 0; // 14 bits, as set up on an even dot
    uint8_t tile = 0;
    uint8_t attribute = 0; // 0..3
    uint8_t lowPlane = 0;
    uint64_t background = 0; // 16 pixels of four bits, the first on top

    uint8_t evaluation = kPpuFindSprite;
    uint8_t spriteIndex = 0; // of a byte in `oam`
    uint8_t spriteByte = 0;  // as read on the even dot
    uint8_t skipBytes = 0;   // 0..3, left in kPpuSkipSprite
    uint8_t foundCount = 0;  // 0..8
    bool foundZero = false;  // the first of them is sprite 0
    uint8_t spriteCount = 0; // as foundCount at dot 256
    bool zeroNote = false;   // as foundZero, until the hit

    std::array<uint8_t, 256> oam{};
    std::array<uint8_t, size_t{kPpuLineSprites} * 4> secondaryOam{};
    std::array<uint8_t, 32> palette{};               // 0..0x3F each
    std::array<uint8_t, kPpuWidth + 8> spriteLine{}; // eight more for what hangs over the edge
    std::array<std::array<uint8_t, kPpuNametableBytes>, 4> nametables{};
};

// `pages` stays the caller's and outlives the chip.
void PpuInit(PPU& ppu, NES_PAGES* pages);

// Power-on values, memories included. With `hard` false the two addresses that the reset line doesn't
// reach, oamAddress and vramAddress, stay.
void PpuReset(PPU& ppu, bool hard, uint32_t* nmiLine);

// Says where the picture goes, kPpuHeight rows of `stride` pixels, and clears frameDone. `pixels` may
// be null: then only the chip's behaviour is run.
void PpuBeginFrame(PPU& ppu, uint32_t* pixels, uint32_t stride);

// The registers, by the low three bits of `address`; between dots.
void PpuWriteRegister(PPU& ppu, uint16_t address, uint8_t value);
[[nodiscard]] uint8_t PpuReadRegister(PPU& ppu, uint16_t address);

// Does what is due of pixels and sprite search up to the present dot.
void PpuCatchUp(PPU& ppu);

// One of the four nametable pages, for a board to enter in the page table. `page` counts modulo 4.
[[nodiscard]] uint8_t* PpuNametable(PPU& ppu, uint32_t page);

[[nodiscard]] uint32_t PpuStateSize();
// Writes PpuStateSize bytes and gives the byte behind them.
uint8_t* PpuSaveState(const PPU& ppu, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t PpuLoadState(PPU& ppu, const uint8_t* data, uint32_t size);
