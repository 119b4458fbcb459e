// Catch-up of a machine's VDPs with a Z80, for its frame loop: they owe ticks while the Z80 runs ahead,
// and run them before anything could show the difference.
//
// A VDP changes the Z80's lines only at known clocks (VdpTicksToEvent), and the Z80 sees it only
// through ports. A span is the time between two such clocks. Within a span the Z80 runs alone; the
// VDPs catch up before every port access and at the end of the span. The Z80 sees nothing of its
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
#include "sega8/vdp.h"
#include "sega8/vdp_run.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

template <size_t kVdps>
struct CATCH_UP {
    std::array<VDP*, kVdps> vdps; // one that draws over another comes after it
    uint32_t& soundOwed;          // clocks that the machine's sound chips have not run
    uint32_t vdpTicks = 0;        // done in this span
    uint32_t clocks = 0;          // of this span that have ended

    // In this span:
    bool polls = false;
    std::array<bool, kVdps> pollsStatus{};
    bool flagComes = false; // before its end

    CATCH_UP(const std::array<VDP*, kVdps>& chips, uint32_t& owed)
        : vdps(chips)
        , soundOwed(owed) {}

    // True if rounds that polled in the span before must be run again: the span ended with an event.
    [[nodiscard]] bool BeginSpan() {
        const bool polled = polls;
        vdpTicks = 0;
        clocks = 0;
        polls = false;
        pollsStatus.fill(false);
        flagComes = false;
        return polled;
    }

    // A read of the V counter.
    void PollCounter() { polls = true; }

    // A read of a VDP's status, if it has no effect. Returns whether it has none.
    [[nodiscard]] bool PollStatus(size_t number) {
        if (!VdpStatusReadIsIdle(*vdps[number])) {
            return false;
        }
        polls = true;
        pollsStatus[number] = true;
        return true;
    }

    // Clocks for which the values that were polled stay: `left`, which are those to the end of the span, or 0. The VDPs
    // run ahead to the end, at `spanTicks`, and are taken back if one of those polled has set a flag. They draw the
    // same pixels again.
    [[nodiscard]] uint32_t ClocksOfSamePolls(uint32_t left, uint32_t spanTicks) {
        if (!PollsAnyStatus() || vdpTicks == spanTicks) {
            return left;
        }
        if (flagComes) {
            return 0;
        }
        const std::array<VDP, kVdps> before = Copies(std::make_index_sequence<kVdps>());
        RunVdps(spanTicks - vdpTicks);
        if (PolledFlagIsSet()) {
            for (size_t i = 0; i < kVdps; ++i) {
                *vdps[i] = before[i];
            }
            flagComes = true;
            return 0;
        }
        vdpTicks = spanTicks;
        return left;
    }

    // The time reaches these counts, which never fall within a span. VDPs that have run ahead wait.
    void CatchUp(uint32_t ticksNow, uint32_t clocksNow) {
        if (ticksNow > vdpTicks) {
            RunVdps(ticksNow - vdpTicks);
            vdpTicks = ticksNow;
        }
        soundOwed += clocksNow - clocks;
        clocks = clocksNow;
    }

private:
    template <size_t... kNumbers>
    [[nodiscard]] std::array<VDP, kVdps>
    Copies(std::index_sequence<kNumbers...> /*numbers*/) const {
        return {*vdps[kNumbers]...};
    }

    // One that draws over another finds its pixels there, as in single ticks.
    void RunVdps(uint32_t ticks) {
        for (VDP* const vdp : vdps) {
            VdpRun(*vdp, ticks);
        }
    }

    [[nodiscard]] bool PollsAnyStatus() const {
        bool any = false;
        for (const bool polled : pollsStatus) {
            any = any || polled;
        }
        return any;
    }

    [[nodiscard]] bool PolledFlagIsSet() const {
        bool isSet = false;
        for (size_t i = 0; i < kVdps; ++i) {
            isSet = isSet || (pollsStatus[i] && !VdpStatusReadIsIdle(*vdps[i]));
        }
        return isSet;
    }
};

// True if a read of this port, as the Master System and the Game Gear decode it, polls the VDP and has no effect.
[[nodiscard]] inline bool SegaPollsVdp(CATCH_UP<1>& chips, uint16_t port) {
    const uint32_t lines = port & kSegaPortLines;
    if (lines == kSegaPortVCounter) {
        chips.PollCounter();
        return true;
    }
    return lines == kSegaPortVdpControl && chips.PollStatus(0);
}
