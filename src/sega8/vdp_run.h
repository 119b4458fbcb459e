// Many ticks of the 8-bit VDP at once, with the same result as single calls of VdpTick: for a frame
// loop that lets the chip catch up before anything can see it.
//
// The VDP changes its pins and `frameDone` without a port access at two dots of a line only: at dot
// 0, when it sees a press of the pause button, and at dot 318, where it steps the line, raises its
// flags and ends the frame. Between them only a port access shows which dot it is on.
#pragma once

#include "sega8/vdp.h"

#include <cstdint>

void VdpRun(VDP& vdp, uint32_t ticks);

// Ticks up to and including the next one that changes a pin or `frameDone`; at least 1.
[[nodiscard]] inline uint32_t VdpTicksToEvent(const VDP& vdp) {
    constexpr uint32_t kStartTick = 1; // the second tick of dot 0
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
