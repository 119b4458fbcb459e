// Many clocks of the Z80 at once, for a machine's frame loop: the same work as so many calls of
// Z80TickOn, an instruction at a time.
//
// Most clocks of an instruction only wait. Its template says which don't, so that the others are counted
// and not run. What is left in the record, the queue with all its bytes too, is what single clocks leave.
//
// The bus has what Z80TickOn asks for, and
//     void At(uint32_t clock);
// which is called ahead of what may touch a port: so many clocks of this run are over. Its accesses may
// change irqLine and nmiEdge but neither busHold nor enabled.
#pragma once

#include "sega8/z80.h"
#include "sega8/z80_tick.h"

#include <bit>
#include <cstdint>

namespace z80_detail {

inline constexpr uint32_t kDecodedAt = 3; // the clocks of fetch and decode

inline bool StartsInstruction(const Z80& z80) {
    return z80.queueIndex == 0 && z80.queue[0] == static_cast<uint8_t>(Z80Step::kStart) &&
           z80.pendingInterrupt == kZ80NoInterrupt;
}

// The first three clocks.
template <typename Bus>
inline void FetchAndDecode(Z80& z80, Bus& bus) {
    z80.eiDelay = 0;
    z80.queue[1] = static_cast<uint8_t>(Z80Step::kFetch);
    z80.queue[2] = static_cast<uint8_t>(Z80Step::kDecode);
    z80.queueIndex = kDecodedAt;
    z80.opcode = bus.ReadOpcode(Address(z80.regs[kZ80Pc]));
    Advance(z80.regs[kZ80Pc], 1);
    z80.r7 = (z80.r7 + 1) & 0xFF;
    if (z80.prefix == kZ80NoPrefix) {
        kZ80BaseTable[z80.opcode % kZ80BaseTable.size()](z80);
    } else {
        Z80Decode(z80);
    }
}

// The clocks behind them, `left` at most. Gives how many of those are left, 0 where the instruction is
// not over. Every program has its end among its actions.
template <typename Bus>
inline uint32_t RunSteps(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left) {
    using enum Z80Step;
    const Z80Template* program = z80.program;
    uint32_t actions = program->actions;
    uint32_t done = 0; // steps of the program
    for (;;) {
        const auto clocksToAction = static_cast<uint32_t>(std::countr_zero(actions)) + 1;
        if (clocksToAction > left) {
            z80.queueIndex += left;
            return 0;
        }
        actions >>= clocksToAction;
        left -= clocksToAction;
        done += clocksToAction;
        const Z80Step step = program->steps[done - 1];
        if (step == kEnd || step == kSampleAndEnd) {
            End(z80);
            return left;
        }
        z80.queueIndex += clocksToAction;
        bus.At(clocks - left - 1);
        TransferStep(z80, bus, step);
        if (step >= kAnd) { // it may have been the end, or have written another program
            if (z80.queueIndex == 0) {
                return left;
            }
            if (z80.program != program) {
                program = z80.program;
                actions = program->actions;
                done = 0;
            }
        }
    }
}

// Instructions one behind another, up to an interrupt. Gives how many of the `left` clocks are left, in
// any case so few that no instruction can be decoded in them or so many that an interrupt is due.
template <typename Bus>
[[gnu::noinline]] uint32_t RunInstructions(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left) {
    do {
        FetchAndDecode(z80, bus);
        left = RunSteps(z80, bus, clocks, left - kDecodedAt);
    } while (left >= kDecodedAt && z80.pendingInterrupt == kZ80NoInterrupt);
    return left;
}

} // namespace z80_detail

// `clocks` clocks.
template <typename Bus>
inline void Z80RunOn(Z80& z80, Bus& bus, uint32_t clocks) {
    using namespace z80_detail;
    const bool free = z80.enabled != 0 && z80.running != 0 && z80.busHold == 0;
    uint32_t left = clocks;
    while (left != 0) {
        if (left >= kDecodedAt && free && StartsInstruction(z80)) {
            left = RunInstructions(z80, bus, clocks, left);
        } else {
            bus.At(clocks - left);
            Z80TickOn(z80, bus);
            --left;
        }
    }
}
