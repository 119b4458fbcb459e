// Video processor of the Mega Drive: two scrolling planes, a window, 80 sprites, shadow and highlight,
// 32 or 40 cells by 28 or 30 rows, double resolution interlace.
//
// Clock: an H step is 8 or 10 master clocks; a line has 342 or 422 steps, 3,420 master clocks. The machine
//   clocks the chip 7 master clocks at a time (MdVdpTick), one clock of the 68000.
// Units: `hCount` in H steps, `line` and `vCount` in lines, plane sizes in cells, VRAM addresses in bytes.
//   A colour is 9 bits, red in bits 6 to 8, green in 3 to 5, blue in 0 to 2; a pixel is 0xAARRGGBB.
//   VRAM holds 16-bit words with the low byte first, so a byte of the processor's view is at its address
//   with bit 0 flipped.
// Owner: one machine, on its session's thread. The record holds pointers into itself and stays put.
// Pins: `zIntLine`, the Z80's interrupt line, is high for the first line of the V blank; `stall` stops the
//   68000 while the FIFO is over full and while a DMA reads the bus; both are plain writes into the
//   owner's words. `raiseIrq` drives lines 4 and 6 of the 68000; `dmaRead` reads a word of its bus.
// Order: MdVdpInit, MdVdpReset, then for each frame MdVdpBeginFrame, MdVdpTick or MdVdpRun until
//   `frameDone`, MdVdpFinishFrame. A port is accessed between two clocks. An interrupt is acknowledged by
//   the machine, which clears hPending, vPending and status bit 7.
// Differs: there is no Master System mode, register 1 bit 2 clear only blocks the registers from 11 on;
//   a sprite line is drawn in one go at the end of the line before; a link of 0 goes round instead of
//   ending the walk, and sprite 79 ends it; the visible limit itself sets the overflow flag; reads take
//   no slot; a fill always goes to VRAM; in a double interlaced picture a line of an odd field darkens the
//   row that the line before has drawn, two above its own. All kept on purpose.
//   Chosen by how the real part behaves: the whole-plane vertical scroll is latched once a line, the one
//   of column pairs is read as the pair is fetched; the partial first cell takes the scroll of the first
//   pair; beside the window plane A goes on as if there were none, and none of its pixels shows in a window
//   column; sprite rows of double interlace have ten bits; in a step with both, the access slot comes
//   before the event; a walk looks at links and the visible limit as it leaves a sprite, at dots after each
//   8; a data write clears the FIFO's empty flag; a cell of double interlace is 16 lines of a plane high;
//   the bases of window and sprite list follow the width that register 12 asks for at once, all else with
//   the line.
//   Chosen without a source: a dot goes out in the step of its own `hCount`, behind that step's slot or
//   event; the rows of the lower border are drawn, for the bound of a row is on the line; in double
//   interlace the border is as many rows high as in a plain picture, four lines; a reset clears the
//   whole record but wiring, picture, tvMode and svpDmaQuirk.
//   A line without display fetches its cells at 40 cells, where its dots hide them as they go out, so that
//   the planes are there from the very dot on at which the display comes on. At 32 cells dots hide nothing:
//   such a line fetches none, goes on showing its sprites and what was fetched before the display went off,
//   and has planes again from the next fetch on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct EMU_VIDEO_FRAME;

inline constexpr uint32_t kMdVdpWidth = 320;
inline constexpr uint32_t kMdVdpRows =
    464; // of the largest picture, 2 * (224 + 8); 240 doubled lines end there
inline constexpr size_t kMdVdpPixels = size_t{kMdVdpWidth} * kMdVdpRows;
inline constexpr size_t kMdVdpVramBytes = 65536;
inline constexpr size_t kMdVdpLine = 328; // a line buffer, with the end of a shifted cell
inline constexpr uint32_t kMdVdpFifo = 4;
// The processor finishes an instruction before it stalls, which may write two words into a full FIFO.
inline constexpr uint32_t kMdVdpFifoRoom = 8;
inline constexpr uint32_t kMdVdpNoRow = 0xFFFFFFFF;

// Values of `tvMode`.
inline constexpr uint32_t kMdVdp60Hz = 1;
inline constexpr uint32_t kMdVdp50Hz = 2;

// Bits of `status`.
inline constexpr uint16_t kMdVdpPal = 0x001;
inline constexpr uint16_t kMdVdpDmaBusy = 0x002;
inline constexpr uint16_t kMdVdpHBlank = 0x004;
inline constexpr uint16_t kMdVdpVBlank = 0x008;
inline constexpr uint16_t kMdVdpOddField = 0x010;
inline constexpr uint16_t kMdVdpCollision = 0x020;
inline constexpr uint16_t kMdVdpOverflow = 0x040;
inline constexpr uint16_t kMdVdpVInterruptOccurred = 0x080;
inline constexpr uint16_t kMdVdpFifoFull = 0x100;
inline constexpr uint16_t kMdVdpFifoEmpty = 0x200;

// Values of `dmaState`.
inline constexpr uint32_t kMdVdpNoDma = 0;
inline constexpr uint32_t kMdVdpDmaBus = 1; // 68000 to VDP
inline constexpr uint32_t kMdVdpDmaCopy = 2;
inline constexpr uint32_t kMdVdpDmaFillArmed = 3; // waits for the data word
inline constexpr uint32_t kMdVdpDmaFill = 4;

// Top bit of dmaPending and of cramDot: there is one.
inline constexpr uint32_t kMdVdpValid = 0x80000000;

// Layers by rank; the largest of a pixel wins.
enum MdVdpCellLayer : uint8_t {
    kMdVdpBackdrop = 0,
    kMdVdpPlaneBLow = 1,
    kMdVdpPlaneALow = 2,
    kMdVdpWindowLow = 3,
    kMdVdpSpriteLow = 4,
    kMdVdpPlaneBHigh = 5,
    kMdVdpPlaneAHigh = 6,
    kMdVdpWindowHigh = 7,
    kMdVdpSpriteHigh = 8,
};
inline constexpr size_t kMdVdpLayers = 9;

using MdVdpRaiseIrq = void (*)(void* owner, uint32_t line, uint32_t state);
using MdVdpDmaRead = uint16_t (*)(void* owner, uint32_t address);

struct MD_VDP_FIFO_ENTRY {
    uint32_t word; // address in the high half, data in the low one
    uint32_t code; // low four bits of the command
};

// Where the search for the sprites of a line ended.
struct MD_VDP_SPRITE_SCAN {
    uint32_t visible; // sprites on the line
    uint32_t seen;    // sprites looked at
    uint32_t index;   // 0..79
    uint32_t step;    // byte read next: 0 Y, 2 size and link, 4 attributes, 6 X, 8 to 22 patterns
    uint32_t dots;    // pixels of sprites, drawn or not
    uint32_t flags;   // kMdVdpScan bits
};
inline constexpr uint32_t kMdVdpScanDotsRanOut = 1;     // of this line
inline constexpr uint32_t kMdVdpScanLastLineRanOut = 2; // of the line before
inline constexpr uint32_t kMdVdpScanSeenX = 4;          // a sprite whose X isn't 0
inline constexpr uint32_t kMdVdpScanMasked = 8;         // by a sprite whose X is 0

struct MD_VDP {
    uint32_t outX;             // next pixel to send out
    uint32_t planeAX, planeBX; // next buffer column of planes A and B
    uint32_t planeWidth;       // in cells, as are the next two
    uint32_t windowWidth;
    uint32_t planeHeight;
    uint32_t planeABase, planeBBase, windowBase, hscrollBase, spriteBase; // byte addresses
    uint32_t backdropX;           // column behind the fetched backdrop, or of a blanked line's dot
    uint32_t border;              // picture rows above the active picture
    uint32_t activeHeight;        // 224 or 240 lines, set at the end of a frame
    uint32_t h40;                 // 1 for 40 cells, set at the end of a line
    const uint8_t* stepTable;     // lengths of the H steps, in master clocks
    uint32_t tvMode;              // kMdVdp60Hz or kMdVdp50Hz
    uint32_t svpDmaQuirk;         // owner: 1 for a cartridge whose ROM answers a DMA one word late
    uint32_t shadowMode;          // 0 or 1
    uint32_t totalLines;          // 262 or 313
    uint32_t blanked;             // 1 with the display off and on lines that show no picture
    uint32_t* pixels;             // the picture being drawn; null draws nothing
    uint32_t* rowOut;             // row being written, or null
    uint32_t rowOffset;           // of rowOut in the picture, in pixels, or kMdVdpNoRow
    const uint32_t* colourTables; // shadow, normal, highlight
    std::array<const uint16_t*, kMdVdpLayers> layerBuffers; // colour line of each layer

    std::array<uint8_t, kMdVdpLine> lineFlags; // 1 where the pixel isn't shadowed
    std::array<uint8_t, kMdVdpLine> layerCode; // highest MdVdpCellLayer of the pixel
    std::array<uint8_t, kMdVdpLine>
        shadowOp; // operator sprite: layer + 1 shadow, + 2 highlight; or 0
    std::array<uint16_t, kMdVdpLine> planeALine, planeBLine, spriteLine, windowLine, backdropLine;

    void* owner;
    uint32_t* zIntLine;
    uint32_t* stall;
    MdVdpRaiseIrq raiseIrq;
    MdVdpDmaRead dmaRead;

    std::array<uint8_t, 40> windowColumn;            // 1 where 8 pixels show the window
    int32_t stepDebt;                                // in master clocks
    uint32_t frameDone;                              // set at the end of the last line
    uint32_t hCount;                                 // the H step to be run next
    uint32_t tileColumn, planeAColumn, planeBColumn; // cell positions of the fetches
    uint32_t vCount;                                 // the line as the program sees it
    uint32_t line;                                   // the line being drawn
    std::array<uint8_t, kMdVdpVramBytes> vram;
    std::array<uint16_t, 64> cram; // 9 bits
    std::array<uint16_t, 64> vsram, vsramLine;
    std::array<uint8_t, 32> regs;
    std::array<uint8_t, kMdVdpWidth> spriteDots; // opaque sprite pixels; above 1 a collision
    MD_VDP_SPRITE_SCAN spriteScan;
    uint32_t cramDot; // kMdVdpValid and a colour: shown for a dot when a DMA writes CRAM
    std::array<MD_VDP_FIFO_ENTRY, kMdVdpFifoRoom> fifo;
    uint32_t vramHalf;  // half of a VRAM word is done
    uint32_t fifoCount; // 0..kMdVdpFifoRoom
    uint32_t hScrollA, hScrollB;
    uint32_t field; // 0 or 1
    uint32_t address, addressHigh, code, pendingSecond;
    uint16_t status;
    uint32_t hPending, vPending; // interrupts; the owner clears them
    uint32_t dmaState;
    uint32_t dmaLength; // in units left: words of the bus, bytes of a copy or fill
    uint32_t dmaSource; // byte address
    uint32_t dmaBase;   // the source as written; gives its 128 KB block
    uint32_t dmaFillValue;
    uint32_t dmaHalf;    // half of a unit is done
    uint32_t dmaCode;    // low four bits of the command
    uint32_t dmaPending; // kMdVdpValid and a control word that waits for the end of the DMA
    uint32_t interlace2; // 1 in double resolution interlace
    int32_t hCounter;    // lines until the H interrupt
};

// Clears the whole record. No pointer may be null but `owner`; they outlive the chip. `tvMode` is
// kMdVdp60Hz or kMdVdp50Hz.
void MdVdpInit(MD_VDP& vdp, void* owner, MdVdpRaiseIrq raiseIrq, MdVdpDmaRead dmaRead,
               uint32_t* zIntLine, uint32_t* stall, uint32_t tvMode);
// Power-on values; wiring, picture, tvMode and svpDmaQuirk stay.
void MdVdpReset(MD_VDP& vdp);

// Hands over the picture, kMdVdpPixels pixels; rows are as long as the picture is wide. Null draws
// nothing. Clears frameDone.
void MdVdpBeginFrame(MD_VDP& vdp, uint32_t* pixels);
// Fills in size, visible window and aspects; the other fields are left alone.
void MdVdpFinishFrame(const MD_VDP& vdp, EMU_VIDEO_FRAME* video);

// One H step of 32 and of 40 cells; seven master clocks. Defined in md_vdp_tick.h.
inline void MdVdpStepH32(MD_VDP& vdp);
inline void MdVdpStepH40(MD_VDP& vdp);
inline void MdVdpTick(MD_VDP& vdp);
// As MdVdpTick so many times, `masterClocks` divided by 7, but faster.
void MdVdpRun(MD_VDP& vdp, uint32_t masterClocks);
// How many master clocks the chip runs at least without touching anything of the machine: interrupt
// lines, stall, frameDone, the bus. 0 while it waits for a slot to end a stall or to read the bus. With
// `busIsQuiet` reads of the bus don't count: nobody changes what a DMA is going to read while it holds the
// processor.
[[nodiscard]] uint32_t MdVdpClocksToEvent(const MD_VDP& vdp, bool busIsQuiet = false);

void MdVdpWriteData(MD_VDP& vdp, uint16_t word);
void MdVdpWriteControl(MD_VDP& vdp, uint16_t word);
[[nodiscard]] uint16_t MdVdpReadData(MD_VDP& vdp);
[[nodiscard]] uint16_t MdVdpReadStatus(MD_VDP& vdp);
[[nodiscard]] uint16_t MdVdpReadHV(const MD_VDP& vdp);
// `index` counts modulo 32.
void MdVdpWriteRegister(MD_VDP& vdp, uint32_t index, uint8_t value);

// The chip's piece of a state, at any step: the line and its place in the picture, counters, ports and DMA,
// memories and registers, then the buffers of the line in progress. The drawing goes on in the picture that
// was last handed over.
[[nodiscard]] uint32_t MdVdpStateSize();
// Writes MdVdpStateSize bytes and gives the byte behind them.
uint8_t* MdVdpSaveState(const MD_VDP& vdp, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t MdVdpLoadState(MD_VDP& vdp, const uint8_t* data, uint32_t size);

#include "megadrive/md_vdp_tick.h"
