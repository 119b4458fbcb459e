// Many ticks of the 8-bit VDP at once: the same work as so many calls of VdpTick, for a machine that
// lets the chip fall behind and catches up before anything can see it.
//
// The VDP acts on the outside by itself at two dots of a line only: at dot 0, if it sees the pause button
// go down there, and at dot 318, where it ticks the line, raises its flags and ends the frame. Between
// them nothing but a port shows how far it has come.
#pragma once

#include "sega8/vdp.h"

#include <cstdint>

// Runs `ticks` ticks.
void VdpRun(VDP& vdp, uint32_t ticks);

// Steps up to and including the next one at which the VDP acts by itself; at least 1.
[[nodiscard]] inline uint32_t VdpTicksToEvent(const VDP& vdp) {
    constexpr uint32_t kStartTick = 1; // the second half of dot 0
    constexpr uint32_t kEventTick = 2 * kVdpEventDot + 1;
    const uint32_t next = vdp.dotCounter;
    const bool pause = vdp.pausePressed && !vdp.pauseSeen;
    if (pause && next <= kStartTick) {
        return kStartTick + 1 - next;
    }
    if (next <= kEventTick) {
        return kEventTick + 1 - next;
    }
    return kVdpTicksPerLine + (pause ? kStartTick : kEventTick) + 1 - next;
}
