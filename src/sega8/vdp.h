// 8-bit VDP: the video chip of the Master System, the Game Gear and the System E board. TMS9918
// modes 0 to 2 and the scrolling mode 4.
//
// Clock: one tick (VdpTick) is half a dot; a line has 342 dots, 684 ticks. A Z80 clock is three
//   ticks on a console and two on System E. Every second tick does the work of one dot.
// Units: `dotCounter` in half dots, `line` in lines, VRAM addresses in bytes (14 bits); `nextAddr`
//   and `cycleAddr` of a word cycle count words. Screen pixel x is drawn at dot x + 11.
// Owner: one machine, on its session's thread. The record may be moved only before the first frame.
// Pins: the chip writes the owner's lines `irqOut` (a level) and `nmiOut` (set to 1, never
//   cleared). `vram` points to 16 KB of the owner, who may change the pointer between any two
//   ticks. The owner writes `pausePressed` and `secondChip`.
// Order: VdpInit, `vram`, VdpReset, then for each frame VdpBeginFrame, ticks until `frameDone`,
//   VdpFinishFrame.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", VDP.
#pragma once

#include "machine/state_out.h"
#include "sega8/vdp_record.h"

#include <cstdint>

struct EMU_VIDEO_FRAME;

// Clears everything but `vram`. `variant` is a VdpVariant. Neither pointer may be null; both
// outlive the chip.
void VdpInit(VDP& vdp, uint32_t* irqOut, uint32_t* nmiOut, bool pal, uint32_t variant);
// Start values of the registers, black palette, top of the frame. The owner clears `vram`.
void VdpReset(VDP& vdp);

// Sets the picture of the next frame: at least 240 rows of `rowLength` pixels (256 or more). Null
// draws nothing. Clears `frameDone`.
void VdpBeginFrame(VDP& vdp, uint32_t* pixels, uint32_t rowLength);
// Fills in size, visible window and aspect ratios; leaves the other fields alone.
void VdpFinishFrame(const VDP& vdp, EMU_VIDEO_FRAME* video);

// Half a dot. Defined in vdp_tick.h.
inline void VdpTick(VDP& vdp);

void VdpControlWrite(VDP& vdp, uint8_t value);
void VdpDataWrite(VDP& vdp, uint8_t value);
[[nodiscard]] uint8_t VdpDataRead(VDP& vdp);
[[nodiscard]] uint8_t VdpStatusRead(VDP& vdp);
// True if a read of the status would change nothing and return no flag.
[[nodiscard]] bool VdpStatusReadIsIdle(const VDP& vdp);
[[nodiscard]] uint8_t VdpVCounter(const VDP& vdp);
// Stores the current H counter in `hLatch` and returns it.
uint8_t VdpLatchH(VDP& vdp);

// The screen pixel under the beam: x is 0..255 inside the picture, y is `line`. False outside the
// active picture.
[[nodiscard]] bool VdpBeam(const VDP& vdp, uint32_t& x, uint32_t& y);

// The chip's piece of a state. It loads in the middle of a line, into a chip of the same variant
// and television standard. Drawing goes on in the picture of the last VdpBeginFrame.
[[nodiscard]] uint32_t VdpStateSize();
// Writes VdpStateSize bytes; returns the byte after them.
StateOut VdpSaveState(const VDP& vdp, StateOut out);
// Returns the bytes used, or 0 and changes nothing if the piece does not fit. Any bytes are safe.
[[nodiscard]] uint32_t VdpLoadState(VDP& vdp, const uint8_t* data, uint32_t size);

#include "sega8/vdp_tick.h"
