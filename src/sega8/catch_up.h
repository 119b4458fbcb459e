// Catch-up of the VDP with a Z80, for a machine's frame loop: it owes ticks while the Z80 runs ahead,
// and runs them before anything could show the difference.
//
// The VDP changes the Z80's lines only at known clocks (VdpTicksToEvent), and the Z80 sees it only
// through ports. A span is the time between two such clocks. Within a span the Z80 runs alone; the
// VDP catches up before every port access and at the end of the span. The Z80 sees nothing of its
// sound chips: they catch up before a write to one of them and at the end of the frame. The result
// equals that of ticking every chip on every clock.
//
// Units: VDP ticks and clocks of the Z80, both counted from the start of the span.
// Owner: a frame loop, on the session's thread.
// Order: BeginSpan, CatchUp with rising counts, the last of them the whole span.
#pragma once

#include "sega8/vdp_run.h"

#include <cstdint>

struct CATCH_UP {
    VDP& vdp;
    uint32_t& soundOwed;   // clocks that the machine's sound chips have not run
    uint32_t vdpTicks = 0; // done in this span
    uint32_t clocks = 0;   // of this span that have ended

    CATCH_UP(VDP& chip, uint32_t& owed)
        : vdp(chip)
        , soundOwed(owed) {}

    void BeginSpan() {
        vdpTicks = 0;
        clocks = 0;
    }

    // The time reaches these counts, which never fall within a span.
    void CatchUp(uint32_t ticksNow, uint32_t clocksNow) {
        VdpRun(vdp, ticksNow - vdpTicks);
        soundOwed += clocksNow - clocks;
        vdpTicks = ticksNow;
        clocks = clocksNow;
    }
};
