// Catch-up of the VDP with a Z80, for a machine's frame loop: it owes ticks while the Z80 runs ahead,
// and runs them before anything could show the difference.
//
// The VDP changes the Z80's lines only at known clocks (VdpTicksToEvent), and the Z80 sees it only
// through ports. A span is the time between two such clocks. Within a span the Z80 runs alone; the
// VDP catches up before every port access and at the end of the span. The Z80 sees nothing of its
// sound chips: they catch up before a write to one of them and at the end of the frame. The result
// equals that of ticking every chip on every clock.
//
// A program may poll the V counter and the status. Within a span the counter stays as it is, and reads of the status
// change nothing while no flag is set, so such a loop is idle (z80_idle.h) up to the end of the span.
//
// Units: VDP ticks and clocks of the Z80, both counted from the start of the span.
// Owner: a frame loop, on the session's thread.
// Order: BeginSpan, CatchUp with rising counts, the last of them the whole span.
#pragma once

#include "sega8/sega_ports.h"
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

    bool polls = false;       // in this span
    bool pollsStatus = false; // in this span
    bool flagComes = false;   // in this span, before its end

    // True if rounds that polled in the span before must be run again: the span ended with an event.
    [[nodiscard]] bool BeginSpan() {
        const bool polled = polls;
        vdpTicks = 0;
        clocks = 0;
        polls = false;
        pollsStatus = false;
        flagComes = false;
        return polled;
    }

    // Clocks for which the values that were polled stay: `left`, which are those to the end of the span, or 0. The VDP
    // runs ahead to the end, at `spanTicks`, and is taken back if it has set a flag. It draws the same pixels again.
    [[nodiscard]] uint32_t ClocksOfSamePolls(uint32_t left, uint32_t spanTicks) {
        if (!pollsStatus || vdpTicks == spanTicks) {
            return left;
        }
        if (flagComes) {
            return 0;
        }
        const VDP before = vdp;
        VdpRun(vdp, spanTicks - vdpTicks);
        if (!VdpStatusReadIsIdle(vdp)) {
            vdp = before;
            flagComes = true;
            return 0;
        }
        vdpTicks = spanTicks;
        return left;
    }

    // The time reaches these counts, which never fall within a span. A VDP that has run ahead waits.
    void CatchUp(uint32_t ticksNow, uint32_t clocksNow) {
        if (ticksNow > vdpTicks) {
            VdpRun(vdp, ticksNow - vdpTicks);
            vdpTicks = ticksNow;
        }
        soundOwed += clocksNow - clocks;
        clocks = clocksNow;
    }
};

// True if a read of this port, as the Master System and the Game Gear decode it, polls the VDP and has no effect.
[[nodiscard]] inline bool SegaPollsVdp(CATCH_UP& chips, uint16_t port) {
    const uint32_t lines = port & kSegaPortLines;
    if (lines == kSegaPortVCounter) {
        chips.polls = true;
        return true;
    }
    if (lines == kSegaPortVdpControl && VdpStatusReadIsIdle(chips.vdp)) {
        chips.polls = true;
        chips.pollsStatus = true;
        return true;
    }
    return false;
}
