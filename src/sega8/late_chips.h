// Chips that may fall behind the Z80 in a machine's frame loop, and how far they have come.
//
// Video and sound chips act on the Z80 at known clocks only (VdpStepsToEvent) and are seen by it through
// ports alone. Between those clocks lies a stretch, in which a machine runs the Z80 ahead; the chips
// follow when a port is touched and at the stretch's end: the same bytes come out as with every chip
// stepped in every round.
#pragma once

#include "sega8/psg.h"
#include "sega8/vdp_run.h"
#include "sega8/ym2413.h"

#include <cstdint>

struct LATE_CHIPS {
    VDP& vdp;
    PSG& psg;
    YM2413* fm;               // null without one
    uint32_t vdpSteps = 0;    // done in this stretch
    uint32_t soundClocks = 0; // the same, in clocks of the sound chips

    LATE_CHIPS(VDP& vdpChip, PSG& psgChip, YM2413* fmChip = nullptr)
        : vdp(vdpChip)
        , psg(psgChip)
        , fm(fmChip) {}

    void BeginStretch() {
        vdpSteps = 0;
        soundClocks = 0;
    }

    // Up to so many steps and clocks of the stretch.
    void CatchUp(uint32_t steps, uint32_t clocks) {
        VdpRun(vdp, steps - vdpSteps);
        PsgRun(psg, clocks - soundClocks);
        if (fm != nullptr) {
            YmRun(*fm, clocks - soundClocks);
        }
        vdpSteps = steps;
        soundClocks = clocks;
    }
};
