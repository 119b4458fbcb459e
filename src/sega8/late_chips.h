// Chips that may fall behind the Z80 in a machine's frame loop, and what they owe.
//
// Video and sound chips act on the Z80 at known clocks only (VdpStepsToEvent) and are seen by it through
// ports alone. Between those clocks a machine counts what they owe, and runs them when a port is
// touched and before the VDP acts: the same bytes come out as with every chip stepped in every round.
#pragma once

#include "sega8/psg.h"
#include "sega8/vdp_run.h"
#include "sega8/ym2413.h"

#include <cstdint>

struct LATE_CHIPS {
    VDP& vdp;
    PSG& psg;
    YM2413* fm;               // null without one
    uint32_t vdpSteps = 0;    // owed
    uint32_t soundClocks = 0; // owed, in clocks of the sound chips

    LATE_CHIPS(VDP& vdpChip, PSG& psgChip, YM2413* fmChip = nullptr)
        : vdp(vdpChip)
        , psg(psgChip)
        , fm(fmChip) {}

    void CatchUp() {
        VdpRun(vdp, vdpSteps);
        PsgRun(psg, soundClocks);
        if (fm != nullptr) {
            YmRun(*fm, soundClocks);
        }
        vdpSteps = 0;
        soundClocks = 0;
    }
};
