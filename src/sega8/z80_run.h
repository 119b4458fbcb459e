// Many clocks of the Z80 at once, for a machine's frame loop: the same work as so many calls of
// Z80TickOn, an instruction at a time.
//
// Most clocks of an instruction only wait. Its template says which don't, so that the others are counted
// and not run. What is left in the record, the queue with all its bytes too, is what single clocks leave.
//
// The bus has what Z80TickOn asks for, and
//     void At(uint32_t clock);
// which is called ahead of what may touch a port, and of a fetch: so many clocks of this run are over. Its
// accesses may change irqLine and nmiEdge. A bus whose accesses may change busHold or enabled as well, or
// that must see to something else first, also has
//     bool Stops() const;
// which is asked after each of them, fetches too, and ends the run.
#pragma once

#include "sega8/z80.h"
#include "sega8/z80_tick.h"

#include <bit>
#include <cstdint>

namespace z80_detail {

inline constexpr uint32_t kFetchedAt = 2; // the clocks of a fetch
inline constexpr uint32_t kDecodedAt = 3; // and of the decode

template <typename Bus>
inline bool Stops(const Bus& bus) {
    if constexpr (requires { bus.Stops(); }) {
        return bus.Stops();
    } else {
        return false;
    }
}

inline bool StartsInstruction(const Z80& z80) {
    return z80.queueIndex == 0 && z80.queue[0] == static_cast<uint8_t>(Z80Step::kStart) &&
           z80.pendingInterrupt == kZ80NoInterrupt;
}

// Whether it stands at a step of its program that is followed by an action.
inline bool IsInProgram(const Z80& z80) {
    if (z80.program == nullptr || z80.queueIndex < z80.programAt) {
        return false;
    }
    const uint32_t done = z80.queueIndex - z80.programAt;
    return done < 32 && z80.program->actions >> done != 0;
}

// The first two clocks, with `over` clocks of the run over before them.
template <typename Bus>
inline void Fetch(Z80& z80, Bus& bus, uint32_t over) {
    bus.At(over + 1);
    z80.eiDelay = 0;
    z80.queue[1] = static_cast<uint8_t>(Z80Step::kFetch);
    z80.queue[2] = static_cast<uint8_t>(Z80Step::kDecode);
    z80.opcode = bus.ReadOpcode(Address(z80.regs[kZ80Pc]));
    Advance(z80.regs[kZ80Pc], 1);
}

// The third.
inline void Decode(Z80& z80) {
    z80.queueIndex = kDecodedAt;
    z80.r7 = (z80.r7 + 1) & 0xFF;
    if (z80.prefix == kZ80NoPrefix) {
        kZ80BaseTable[z80.opcode % kZ80BaseTable.size()](z80);
    } else {
        Z80Decode(z80);
    }
}

// The clocks behind them, `left` at most, with `done` steps of the program over. Gives how many of the clocks
// are left, 0 where the instruction is not over, any number where the bus stops the run. Every program has its
// end among its actions.
template <typename Bus>
inline uint32_t RunSteps(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left, uint32_t done = 0) {
    using enum Z80Step;
    const Z80Template* program = z80.program;
    uint32_t actions = program->actions >> done;
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
        if (Stops(bus)) [[unlikely]] {
            return left;
        }
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

// Instructions one behind another, up to an interrupt or until the bus stops the run. Gives how many of the
// `left` clocks are left; without a stop so few that no instruction can be decoded in them, unless an
// interrupt is due.
template <typename Bus>
[[gnu::noinline]] uint32_t RunInstructions(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left) {
    do {
        Fetch(z80, bus, clocks - left);
        if (Stops(bus)) [[unlikely]] {
            z80.queueIndex = kFetchedAt;
            z80.program = nullptr;
            return left - kFetchedAt;
        }
        Decode(z80);
        left = RunSteps(z80, bus, clocks, left - kDecodedAt);
    } while (left >= kDecodedAt && z80.pendingInterrupt == kZ80NoInterrupt && !Stops(bus));
    return left;
}

// The rest of the instruction in progress.
template <typename Bus>
[[gnu::noinline]] uint32_t Resume(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left) {
    return RunSteps(z80, bus, clocks, left, z80.queueIndex - z80.programAt);
}

} // namespace z80_detail

// `clocks` clocks; gives how many of them are left where the bus has stopped the run, else 0.
template <typename Bus>
inline uint32_t Z80RunOn(Z80& z80, Bus& bus, uint32_t clocks) {
    using namespace z80_detail;
    const bool free = z80.enabled != 0 && z80.running != 0 && z80.busHold == 0;
    uint32_t left = clocks;
    while (left != 0 && !Stops(bus)) {
        if (left >= kDecodedAt && free && StartsInstruction(z80)) {
            left = RunInstructions(z80, bus, clocks, left);
        } else if (free && IsInProgram(z80)) {
            left = Resume(z80, bus, clocks, left);
        } else {
            bus.At(clocks - left);
            Z80TickOn(z80, bus);
            --left;
        }
    }
    return left;
}
