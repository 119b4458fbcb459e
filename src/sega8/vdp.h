// Video chip of the Master System, the Game Gear and the System E boards: TMS9918-family modes 0 to 2
// and the scrolling mode 4.
//
// Clock: a step (VdpTick) is half a dot; a line has 342 dots, 684 steps. Three steps make a Z80 clock
//   of a console, two a Z80 clock of System E. Every second step does the work of one dot.
// Units: `dotCounter` in half dots, `line` in lines, VRAM addresses in bytes (14 bits), except for
//   `nextAddr` and `cycleAddr` of a word cycle, which count words. Screen pixel x goes out at dot x + 11.
// Owner: one machine, on its session's thread. The record may be moved only before the first frame.
// Pins: `irqOut` and `nmiOut` point to the owner's lines and are written by the chip (the first as a
//   level, the second only ever set to 1). `vram` points to 16 KB of the owner, who may change the
//   pointer between any two steps. `pausePressed` and `secondChip` are written by the owner.
// Order: VdpInit, `vram`, VdpReset, then for each frame VdpBeginFrame, steps until `frameDone`,
//   VdpFinishFrame.
// Differs: the mode, the display bit, the scroll values and the name table base of modes 0 to 2 are
//   taken once a line; multicolour and the mixed modes show as mode 0; the low status bits read as ones;
//   bits 0 and 1 of register 6, said to mask tile bits of mode 4 sprites on the first chip, do nothing.
#pragma once

#include "sega8/vdp_record.h"

#include <cstdint>

struct EMU_VIDEO_FRAME;

// Clears everything but `vram`. Neither pointer may be null; they outlive the chip.
void VdpInit(VDP& vdp, uint32_t* irqOut, uint32_t* nmiOut, bool pal, uint32_t variant);
// Start values of the registers, black palette, top of the frame. `vram` is the owner's to clear.
void VdpReset(VDP& vdp);

// Hands over the picture of the next frame: rows of `rowLength` pixels (256 or more), at least 240
// of them. Null draws nothing. Clears `frameDone`.
void VdpBeginFrame(VDP& vdp, uint32_t* pixels, uint32_t rowLength);
// Fills in size, visible window and aspects; the other fields are left alone.
void VdpFinishFrame(const VDP& vdp, EMU_VIDEO_FRAME* video);

// One step, half a dot. Defined in vdp_tick.h.
inline void VdpTick(VDP& vdp);

void VdpControlWrite(VDP& vdp, uint8_t value);
void VdpDataWrite(VDP& vdp, uint8_t value);
[[nodiscard]] uint8_t VdpDataRead(VDP& vdp);
[[nodiscard]] uint8_t VdpStatusRead(VDP& vdp);
[[nodiscard]] uint8_t VdpVCounter(const VDP& vdp);
// Stores the H counter of this moment in hLatch and returns it.
uint8_t VdpLatchH(VDP& vdp);

// The screen pixel that the beam is on: x is 0..255 inside the picture, y is `line`. False outside
// of the active picture.
[[nodiscard]] bool VdpBeam(const VDP& vdp, uint32_t& x, uint32_t& y);

// The chip's piece of a state. It restores in the middle of a line, into a chip of the same variant
// and television standard; the drawing goes on in the picture that was last handed over.
[[nodiscard]] uint32_t VdpStateSize();
uint8_t* VdpSaveState(const VDP& vdp, uint8_t* out);
// Gives the bytes used, 0 when the piece does not fit; the chip is unchanged then.
[[nodiscard]] uint32_t VdpLoadState(VDP& vdp, const uint8_t* data, uint32_t size);

#include "sega8/vdp_tick.h"
