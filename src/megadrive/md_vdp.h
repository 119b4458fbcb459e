// VDP of the Mega Drive: two scrolling planes, a window, 80 sprites, shadow and highlight, 32 or 40 cells by
// 28 or 30 rows, and interlace in double resolution.
//
// Clock: the smallest unit is an H step of 8 or 10 master clocks. A line has 342 steps at 32 cells and 422 at
//   40; both are 3,420 master clocks. MdVdpTick is 7 master clocks, one clock of the 68000.
// Units: `hCount` in H steps, `line` and `vCount` in lines, plane sizes in cells, VRAM addresses in bytes.
//   A colour is 9 bits: red in bits 6 to 8, green in 3 to 5, blue in 0 to 2. A pixel is 0xAARRGGBB.
//   VRAM holds 16-bit words with the low byte first, so a byte that the 68000 sees at an address is stored
//   at that address with bit 0 flipped.
// Owner: one machine, on its session's thread. The record points into itself and must not move.
// Pins: `zIntLine`, the Z80's interrupt line, is high during the first line of the V blank. `stall` stops the
//   68000 while the FIFO is overfull and while a DMA reads the bus. Both are words of the owner.
//   `raiseIrq` drives lines 4 and 6 of the 68000; `dmaRead` reads a word from its bus.
// Order: MdVdpInit once; then for each frame MdVdpBeginFrame, MdVdpTick or MdVdpRun until `frameDone`,
//   MdVdpFinishFrame. Ports are accessed, and the chip is reset, between two ticks. The machine acknowledges
//   an interrupt: it clears hPending or status bit 7, and vPending.
// Timetable: md_vdp_timetable.h says what happens at which step.
// Differs: docs/HARDWARE.md, Mega Drive, VDP.
#pragma once

#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

struct EMU_VIDEO_FRAME;

inline constexpr uint32_t kMdVdpWidth = 320;
inline constexpr uint32_t kMdVdpRows =
    464; // of the largest picture, 2 * (224 + 8); 240 doubled lines are cut there
inline constexpr size_t kMdVdpPixels = size_t{kMdVdpWidth} * kMdVdpRows;
inline constexpr size_t kMdVdpVramBytes = 65536;
inline constexpr size_t kMdVdpLine =
    328; // pixels of a line buffer: 320 and the rest of a shifted cell
inline constexpr uint32_t kMdVdpFifo = 4;
// The 68000 finishes its instruction before it stalls, and may write two more words into a full FIFO.
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
inline constexpr uint16_t kMdVdpStatusBits = 0x3FF; // the chip drives no others

// Values of `dmaState`.
inline constexpr uint32_t kMdVdpNoDma = 0;
inline constexpr uint32_t kMdVdpDmaBus = 1; // 68000 to VDP
inline constexpr uint32_t kMdVdpDmaCopy = 2;
inline constexpr uint32_t kMdVdpDmaFillArmed = 3; // waits for the data word of the fill
inline constexpr uint32_t kMdVdpDmaFill = 4;

// Top bit of dmaPending and of cramDot: set when the field holds a value.
inline constexpr uint32_t kMdVdpValid = 0x80000000;

// Layers by priority: the largest code of a pixel is shown.
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

// The sprite list scan of a line. Its flags carry over to the next line.
struct MD_VDP_SPRITE_SCAN {
    uint32_t visible; // sprites on the line
    uint32_t seen;    // list entries read
    uint32_t index;   // 0..79
    uint32_t
        step; // offset of the next read: 0 Y, 2 size and link, 4 attributes, 6 X, 8 to 22 patterns
    uint32_t dots;  // pixels of sprites, drawn or not
    uint32_t flags; // kMdVdpScan bits
};
inline constexpr uint32_t kMdVdpScanDotsRanOut = 1;     // this line reached its limit of dots
inline constexpr uint32_t kMdVdpScanLastLineRanOut = 2; // the line before did
inline constexpr uint32_t kMdVdpScanSeenX = 4;          // a sprite with X other than 0 was read
inline constexpr uint32_t kMdVdpScanMasked = 8;         // a sprite with X 0 hides the rest

// The sprite list, and for each line which of its entries, in the order of their links, the scan must look at.
// Derived, so not saved.
inline constexpr uint32_t kMdVdpMostScanned = 140; // entries a line, at two words each
struct MD_VDP_SPRITE_LINES {
    std::array<uint8_t, 640> list;                   // as it was in VRAM
    uint32_t key;                                    // of address and mode
    uint32_t built;                                  // 1 when the fields below are those of `list`
    uint32_t end;                                    // place of the entry that ends the scan
    std::array<uint8_t, kMdVdpMostScanned> index;    // by place in the order of the links
    std::array<std::array<uint64_t, 3>, 240> onLine; // a bit for each place
};

struct MD_VDP {
    uint32_t outX;             // next pixel to send out
    uint32_t planeAX, planeBX; // next buffer column of planes A and B
    uint32_t planeWidth;       // in cells, as are the next two
    uint32_t windowWidth;
    uint32_t planeHeight;
    uint32_t planeABase, planeBBase, windowBase, hscrollBase, spriteBase; // byte addresses
    uint32_t backdropX;           // column after the fetched backdrop, or the dot of a blanked line
    uint32_t border;              // picture rows above the active picture
    uint32_t activeHeight;        // 224 or 240 lines, set at the end of a frame
    uint32_t h40;                 // 1 for 40 cells, set at the end of a line
    const uint8_t* stepTable;     // lengths of the H steps, in master clocks
    uint32_t tvMode;              // kMdVdp60Hz or kMdVdp50Hz
    uint32_t svpDmaQuirk;         // set by the owner: 1 if the ROM answers a DMA one word late
    uint32_t shadowMode;          // 0 or 1
    uint32_t totalLines;          // 262 or 313
    uint32_t blanked;             // 1 with the display off and on lines that show no picture
    uint32_t wide;                // 1 on a processor with vectors of 32 bytes (md_vdp_wide.h)
    uint32_t* pixels;             // the picture being drawn; null draws nothing
    uint32_t* rowOut;             // row being written, or null
    uint32_t rowOffset;           // offset of rowOut in the picture, in pixels, or kMdVdpNoRow
    const uint32_t* colourTables; // shadow, normal, highlight
    std::array<const uint16_t*, kMdVdpLayers> layerBuffers; // colour line of each layer

    std::array<uint8_t, kMdVdpLine> lineFlags; // 1 where the pixel isn't shadowed
    std::array<uint8_t, kMdVdpLine> layerCode; // highest MdVdpCellLayer of the pixel
    std::array<uint8_t, kMdVdpLine>
        shadowOp; // operator sprite: its layer + 1 for shadow, + 2 for highlight; or 0
    std::array<uint16_t, kMdVdpLine> planeALine, planeBLine, spriteLine, windowLine, backdropLine;

    void* owner;
    uint32_t* zIntLine;
    uint32_t* stall;
    MdVdpRaiseIrq raiseIrq;
    MdVdpDmaRead dmaRead;

    std::array<uint8_t, 40> windowColumn;            // 1 where 8 pixels show the window
    int32_t stepDebt;                                // in master clocks
    uint32_t frameDone;                              // set at the end of the last line
    uint32_t hCount;                                 // the next H step
    uint32_t tileColumn, planeAColumn, planeBColumn; // cell positions of the fetches
    uint32_t vCount;                                 // the line as the program sees it
    uint32_t line;                                   // the line being drawn
    std::array<uint8_t, kMdVdpVramBytes> vram;
    std::array<uint16_t, 64> cram; // 9 bits
    std::array<uint16_t, 64> vsram, vsramLine;
    std::array<uint8_t, 32> regs;
    std::array<uint8_t, kMdVdpWidth> spriteDots; // opaque sprite pixels; above 1 a collision
    MD_VDP_SPRITE_SCAN spriteScan;
    uint32_t cramDot; // kMdVdpValid and a colour: shown for one dot after a DMA writes CRAM
    std::array<MD_VDP_FIFO_ENTRY, kMdVdpFifoRoom> fifo;
    uint32_t vramHalf;  // 1 after the first of the two slots of a VRAM word
    uint32_t fifoCount; // 0..kMdVdpFifoRoom
    uint32_t hScrollA, hScrollB;
    uint32_t field; // 0 or 1
    uint32_t address, addressHigh, code, pendingSecond;
    uint16_t status;
    uint32_t hPending, vPending; // interrupts; the owner clears them
    uint32_t dmaState;
    uint32_t dmaLength; // units left: words from the bus, bytes of a copy or fill
    uint32_t dmaSource; // byte address
    uint32_t dmaBase;   // the source as written; its 128 KiB block holds for the whole DMA
    uint32_t dmaFillValue;
    uint32_t dmaHalf;    // 1 after the first of the two slots of a unit
    uint32_t dmaCode;    // low four bits of the command
    uint32_t dmaPending; // kMdVdpValid and a control word, replayed when the DMA ends
    uint32_t interlace2; // 1 in double resolution interlace
    int32_t hCounter;    // lines until the H interrupt

    // Colours of two neighbouring pixels by palette and the byte of a pattern, and the CRAM that they were made
    // from. Not saved.
    std::array<std::array<std::array<uint16_t, 2>, 256>, 4> pairs;
    std::array<uint16_t, 64> pairCram;
    MD_VDP_SPRITE_LINES spriteLines;
};

// Clears the whole record. Only `owner` may be null; the pointers must outlive the chip. `tvMode` is
// kMdVdp60Hz or kMdVdp50Hz.
void MdVdpInit(MD_VDP& vdp, void* owner, MdVdpRaiseIrq raiseIrq, MdVdpDmaRead dmaRead,
               uint32_t* zIntLine, uint32_t* stall, uint32_t tvMode);
// Power-on values, memories included. Wiring, picture, tvMode and svpDmaQuirk stay.
void MdVdpReset(MD_VDP& vdp);

// Sets the picture to draw, kMdVdpPixels pixels that the caller keeps; rows follow each other without gaps.
// Null draws nothing. Clears frameDone.
void MdVdpBeginFrame(MD_VDP& vdp, uint32_t* pixels);
// Fills in size, visible area and aspects; the other fields stay.
void MdVdpFinishFrame(const MD_VDP& vdp, EMU_VIDEO_FRAME* video);

// One H step at 32 and at 40 cells. Defined in md_vdp_tick.h, as is the tick.
inline void MdVdpStepH32(MD_VDP& vdp);
inline void MdVdpStepH40(MD_VDP& vdp);
// Seven master clocks: at most one H step.
inline void MdVdpTick(MD_VDP& vdp);
// The same as `masterClocks` / 7 ticks, but faster. `masterClocks` is a multiple of 7.
void MdVdpRun(MD_VDP& vdp, uint32_t masterClocks);
// Returns a number of master clocks in which the chip certainly changes no interrupt line, stall or frameDone and
// does not read the bus; 0 while a slot may end a stall or read the bus. With `busIsQuiet` reads of the bus don't
// count, because nothing changes what a DMA will read while it holds the 68000.
[[nodiscard]] uint32_t MdVdpClocksToEvent(const MD_VDP& vdp, bool busIsQuiet = false);

void MdVdpWriteData(MD_VDP& vdp, uint16_t word);
void MdVdpWriteControl(MD_VDP& vdp, uint16_t word);
[[nodiscard]] uint16_t MdVdpReadData(MD_VDP& vdp);
[[nodiscard]] uint16_t MdVdpReadStatus(MD_VDP& vdp);
[[nodiscard]] uint16_t MdVdpReadHV(const MD_VDP& vdp);
// `index` is taken modulo 32.
void MdVdpWriteRegister(MD_VDP& vdp, uint32_t index, uint8_t value);

// The chip's piece of a state, at any step: the line and its place in the picture, counters, ports and DMA,
// memories and registers, then the buffers of the line in progress. After a load the chip goes on drawing
// into the picture of the last MdVdpBeginFrame.
[[nodiscard]] uint32_t MdVdpStateSize();
// Writes MdVdpStateSize bytes and returns the byte after them.
StateOut MdVdpSaveState(const MD_VDP& vdp, StateOut out);
// Returns the bytes used, or 0 with nothing changed if the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t MdVdpLoadState(MD_VDP& vdp, const uint8_t* data, uint32_t size);

#include "megadrive/md_vdp_tick.h"
