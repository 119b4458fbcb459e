// Many clocks of the Z80 at once, an instruction at a time, for a machine's frame loop. The result
// equals that of single calls of Z80TickOn.
//
// On most clocks of an instruction nothing happens. Its template marks the other clocks, so idle
// ones are only counted. Afterwards the record, every byte of the queue included, is the same as
// after single clocks.
//
// Besides the functions of Z80TickOn the bus has
//     void At(uint32_t clock);
// which is called before every fetch and before every step that may touch a port. `clock` is the
// number of clocks of this run that have ended. Accesses may change irqLine and nmiEdge. A bus whose
// accesses may change busHold or enabled, or that must end the run for another reason, also has
//     bool Stops() const;
// which is called after every access and fetch and ends the run when it returns true. A bus for which idle loops
// are skipped (z80_idle.h) has
//     uint32_t SkipIdle(Z80& z80, uint32_t clock, uint32_t left);
// which is called after a jump backwards and returns the clocks that it has skipped.
#pragma once

#include "base/flatten.h"
#include "sega8/z80.h"
#include "sega8/z80_tick.h"

#include <bit>
#include <cstdint>

namespace z80_detail {

inline constexpr uint32_t kFetchedAt = 2;   // clocks of an instruction after its fetch
inline constexpr uint32_t kDecodedAt = 3;   // and after its decode
inline constexpr uint32_t kActionBits = 32; // of Z80Template::actions

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

// True if the next step belongs to `program` and the program has an action left.
inline bool IsInProgram(const Z80& z80) {
    if (z80.program == nullptr || z80.queueIndex < z80.programAt) {
        return false;
    }
    const uint32_t done = z80.queueIndex - z80.programAt;
    return done < kActionBits && z80.program->actions >> done != 0;
}

// The first two clocks of an instruction that starts `over` clocks into the run.
template <typename Bus>
inline void Fetch(Z80& z80, Bus& bus, uint32_t over) {
    bus.At(over + 1);
    z80.eiDelay = 0;
    z80.queue[1] = static_cast<uint8_t>(Z80Step::kFetch);
    z80.queue[2] = static_cast<uint8_t>(Z80Step::kDecode);
    z80.opcode = bus.ReadOpcode(Address(z80.regs[kZ80Pc]));
    Advance(z80.regs[kZ80Pc], 1);
}

// The third clock.
inline void Decode(Z80& z80) {
    z80.queueIndex = kDecodedAt;
    z80.r7 = (z80.r7 + 1) & 0xFF;
    if (z80.prefix == kZ80NoPrefix) {
        kZ80BaseTable[z80.opcode % kZ80BaseTable.size()](z80);
    } else {
        Z80Decode(z80);
    }
}

// Runs the rest of the instruction, from step `done` of its program, for at most `left` clocks.
// Returns the clocks that it did not use: 0 if the instruction has not ended, unless the bus stops
// the run. `actions` is never 0, because the end of the program is one of them.
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
        if (step >= kAnd) { // such a step may end the instruction or write another program
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

// Runs instructions until an interrupt is due, the bus stops the run or too few clocks are left to
// decode another one. Returns the clocks that it did not use.
template <typename Bus>
[[gnu::noinline]] OMBRELUNE_FLATTEN uint32_t RunInstructions(Z80& z80, Bus& bus, uint32_t clocks,
                                                             uint32_t left) {
    do {
        const uint32_t from = z80.regs[kZ80Pc];
        Fetch(z80, bus, clocks - left);
        if (Stops(bus)) [[unlikely]] {
            z80.queueIndex = kFetchedAt;
            z80.program = nullptr;
            return left - kFetchedAt;
        }
        Decode(z80);
        left = RunSteps(z80, bus, clocks, left - kDecodedAt);
        if constexpr (requires { bus.SkipIdle(z80, clocks, left); }) {
            constexpr uint32_t kLongestLoop = 64; // bytes
            if (((from - z80.regs[kZ80Pc]) & 0xFFFF) < kLongestLoop && StartsInstruction(z80)) {
                left -= bus.SkipIdle(z80, clocks - left, left);
            }
        }
    } while (left >= kDecodedAt && z80.pendingInterrupt == kZ80NoInterrupt && !Stops(bus));
    return left;
}

// The rest of the instruction in progress.
template <typename Bus>
[[gnu::noinline]] uint32_t Resume(Z80& z80, Bus& bus, uint32_t clocks, uint32_t left) {
    return RunSteps(z80, bus, clocks, left, z80.queueIndex - z80.programAt);
}

} // namespace z80_detail

// Runs `clocks` clocks. Returns how many of them are left if the bus has stopped the run, else 0.
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
