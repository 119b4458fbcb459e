// The Z80 of the fast loop runs ahead of its time while nobody can see it.
//
// While it works in its own RAM, reads its program or the ROM, or polls the FM chip's status, nobody can see
// when it does so. It then runs at once, whole instructions at a time, up to the next access that others see: a
// write to a sound chip, an access to the VDP or to the 68000's RAM. That access waits for its own clock.
//
// What it has done can be taken back. If the 68000 touches its bus, its reset or its memory, if the PSG is written
// to (it counts its clocks with the Z80's), or if the VDP may change its interrupt line, the Z80 goes back to where
// it began and runs up to the present.
#pragma once

#include "megadrive/md_console.h"

// Brings the Z80 to the present: `z80Clock` then holds less than a clock, or what the plain loop would owe too.
void MdCatchUpZ80(MEGA_DRIVE& md);

// After an instruction of the 68000, before its cycles: the same for the time before it, or for its first cycles if
// the Z80 is ahead by these alone. Returns how many of the cycles have thus passed.
uint32_t MdSettleZ80(MEGA_DRIVE& md, uint32_t cycles);

// Between two instructions of the 68000 with the Z80 at the present.
void MdRunZ80Ahead(MEGA_DRIVE& md);
