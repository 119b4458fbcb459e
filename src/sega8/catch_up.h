// Catch-up of the chips around a Z80, for a machine's frame loop: VDP, PSG and FM chip owe clocks
// while the Z80 runs ahead, and run them before anything could show the difference.
//
// A chip changes the Z80's lines only at known clocks (VdpTicksToEvent), and the Z80 sees it only
// through ports. A span is the time between two such clocks. Within a span the Z80 runs alone; the
// chips catch up before every port access and at the end of the span. The result equals that of
// ticking every chip on every clock.
//
// Units: VDP ticks and clocks of Z80, PSG and FM chip, both counted from the start of the span.
// Owner: a frame loop, on the session's thread.
// Order: BeginSpan, CatchUp with rising counts, the last of them the whole span.
#pragma once

#include "sega8/psg.h"
#include "sega8/vdp_run.h"
#include "sega8/ym2413.h"

#include <cstdint>

struct CATCH_UP_CHIPS {
    VDP& vdp;
    PSG& psg;
    YM2413* fm;               // null on a machine without one
    uint32_t vdpTicks = 0;    // done in this span
    uint32_t soundClocks = 0; // done in this span

    CATCH_UP_CHIPS(VDP& vdpChip, PSG& psgChip, YM2413* fmChip = nullptr)
        : vdp(vdpChip)
        , psg(psgChip)
        , fm(fmChip) {}

    void BeginSpan() {
        vdpTicks = 0;
        soundClocks = 0;
    }

    // Runs the chips up to these counts, which never fall within a span.
    void CatchUp(uint32_t ticks, uint32_t clocks) {
        VdpRun(vdp, ticks - vdpTicks);
        PsgRun(psg, clocks - soundClocks);
        if (fm != nullptr) {
            YmRun(*fm, clocks - soundClocks);
        }
        vdpTicks = ticks;
        soundClocks = clocks;
    }
};
