// The frame loops of the Mega Drive.
//
// The plain loop is the console: an instruction of the 68000, then for each of its cycles a tick of Z80, PSG,
// FM chip and VDP in this order. The fast loop has the same results. In it VDP, FM chip and PSG owe their clocks
// and catch up when one of their addresses is accessed, or when the VDP comes to an event that drives a line
// or reads memory. The Z80 runs ahead instead, as far as nobody can see it (md_z80_ahead.h).
#include "megadrive/m68000_idle.h"
#include "megadrive/m68000_tick.h"
#include "megadrive/md_bus.h"
#include "megadrive/md_vdp_tick.h"
#include "megadrive/md_z80_ahead.h"
#include "megadrive/ym2612_tick.h"
#include "sega8/z80_tick.h"

#include <algorithm>

namespace {

[[gnu::always_inline]] inline void TickChips(MEGA_DRIVE& md, MD_Z80_BUS& bus) {
    if (md.z80Clock >= kMdZ80Clocks) {
        Z80TickOn(md.z80, bus);
        PsgTick(md.psg);
        md.z80Clock -= kMdZ80Clocks;
    }
    Ym2612Tick(md.fm);
    MdVdpTick(md.vdp);
}

// Illegal opcodes take no time, and a program that runs astray may find nothing else: its frame would never
// end. So after this many of them in a row one costs what a tick of a stopped 68000 does.
constexpr uint32_t kFreeInstructions = 256;
constexpr uint32_t kStoppedCycles = 4;

// One instruction, with everything that comes before its cycles; returns their number.
template <bool svp>
[[gnu::always_inline]] inline uint32_t RunInstruction(MEGA_DRIVE& md, uint32_t& freeInstructions) {
    uint32_t cycles = M68kTick(md.cpu);
    if (cycles == 0 && ++freeInstructions > kFreeInstructions) [[unlikely]] {
        cycles = kStoppedCycles;
    }
    if (cycles != 0) {
        freeInstructions = 0;
    }
    md.m68kBusCycles += cycles;
    if constexpr (svp) {
        MdCartRunSvp(md.cartridge, cycles * kMdCycleClocks);
    }
    md.z80Clock += static_cast<int32_t>(cycles * kMdCycleClocks);
    return cycles;
}

template <bool svp>
void RunFramePlain(MEGA_DRIVE& md) {
    MD_Z80_BUS bus{md};
    uint32_t freeInstructions = 0;
    while (md.vdp.frameDone == 0) {
        const uint32_t cycles = RunInstruction<svp>(md, freeInstructions);
        for (uint32_t i = 0; i < cycles; ++i) {
            TickChips(md, bus);
        }
    }
}

void CatchUpToEvent(MEGA_DRIVE& md) {
    MdCatchUpVdp(md);
    MdRefreshVdpToEvent(md);
}

// Runs the cycles of an instruction in which the VDP does something that others see.
[[gnu::noinline]] void RunCyclesPlain(MEGA_DRIVE& md, uint32_t cycles) {
    MD_Z80_BUS bus{md};
    MdCatchUpVdp(md);
    MdCatchUpFm(md);
    MdCatchUpPsg(md);
    for (uint32_t i = 0; i < cycles; ++i) {
        TickChips(md, bus);
    }
    MdRefreshVdpToEvent(md);
}

// The Z80's bus for the clocks of one 68000 instruction, one in each cycle, when the Z80 isn't ahead. An access beyond
// its own RAM counts the cycles up to its clock, so that the other chips catch up to there. The run stops after an
// access that brings an event of the VDP near, or that may have changed the Z80's own bus request or reset.
struct MD_CATCH_UP_Z80_BUS {
    MEGA_DRIVE& md;
    uint32_t cycles; // left of the instruction at the first clock
    MD_Z80_BUS bus{md};
    uint32_t clock = 0;   // the clock of this run that is going on
    uint32_t counted = 0; // clocks whose cycles have been counted
    bool stops = false;

    void At(uint32_t now) { clock = now; }
    [[nodiscard]] bool Stops() const { return stops; }
    [[nodiscard]] bool EventIsNear() const {
        return md.vdpOwed + (cycles - counted) >= md.vdpToEvent;
    }
    void Count(uint32_t now) {
        const uint32_t passed = now - counted;
        md.vdpOwed += passed;
        md.fmOwed += passed;
        md.psgOwed += passed;
        md.z80Clock -= static_cast<int32_t>(passed) * kMdZ80Clocks;
        counted = now;
    }

    uint8_t Read(uint16_t address) {
        if (address >= kMdZ80RamEnd) [[unlikely]] {
            Count(clock);
        }
        return bus.Read(address);
    }
    uint8_t ReadOpcode(uint16_t address) { return Read(address); }
    static uint8_t IoRead(uint16_t port) { return MD_Z80_BUS::IoRead(port); }
    static void IoWrite(uint16_t port, uint8_t value) { MD_Z80_BUS::IoWrite(port, value); }
    void Write(uint16_t address, uint8_t value) {
        if (address < kMdZ80RamEnd) [[likely]] {
            bus.Write(address, value);
            return;
        }
        Count(clock);
        constexpr uint16_t kWindowStart = 0x8000;
        const bool reachesItself = address >= kWindowStart && md.z80Bank >> 16 == kMdIoPage;
        bus.Write(address, value);
        stops |= reachesItself || EventIsNear();
    }
};

// Runs the Z80's owed clocks, at most one in each of the next `cycles`, and returns their number. The clocks of a
// whole 68000 instruction are owed from its start, so the Z80 runs them in its first cycles.
uint32_t RunZ80(MEGA_DRIVE& md, uint32_t cycles) {
    if (md.z80Clock < kMdZ80Clocks) {
        return 0;
    }
    const uint32_t clocks =
        std::min(static_cast<uint32_t>(md.z80Clock) / static_cast<uint32_t>(kMdZ80Clocks), cycles);
    MD_CATCH_UP_Z80_BUS bus{md, cycles};
    // While the Z80 is off its bus or in reset its clocks do nothing.
    const bool halted = md.z80.enabled == 0 || (md.z80.running == 0 && md.z80.busHold != 0);
    const uint32_t done = halted ? clocks : clocks - Z80RunOn(md.z80, bus, clocks);
    bus.Count(done);
    return done;
}

// The cycles of an instruction in which the Z80 or the VDP does something that others see.
[[gnu::noinline]] void RunCycles(MEGA_DRIVE& md, uint32_t cycles) {
    cycles -= MdSettleZ80(md, cycles);
    // The Z80 may write to the VDP and so bring an event near.
    while (md.vdpOwed + cycles < md.vdpToEvent) {
        const uint32_t done = RunZ80(md, cycles);
        if (done == 0) {
            break;
        }
        cycles -= done;
    }
    if (md.vdpOwed + cycles >= md.vdpToEvent) {
        RunCyclesPlain(md, cycles);
    } else {
        md.vdpOwed += cycles;
        md.fmOwed += cycles;
    }
    MdRunZ80Ahead(md);
}

// Whether these cycles of the 68000 end before the Z80 or the VDP does something that others see.
bool IsQuiet(const MEGA_DRIVE& md, uint32_t cycles) {
    return md.z80Clock < md.z80Deadline && md.vdpOwed + cycles < md.vdpToEvent;
}

// Counts rounds of the 68000 that are all like the last one, as many as are quiet (IsQuiet): afterwards Z80 and VDP are
// still short of their events, and the next round meets the first of them.
void SkipRounds(MEGA_DRIVE& md, uint32_t cycles, uint32_t spent) {
    const int32_t z80Clocks = md.z80Deadline - 1 - md.z80Clock;
    const uint32_t vdpCycles = md.vdpToEvent - std::min(md.vdpToEvent, md.vdpOwed + 1);
    const uint32_t quiet =
        std::min(static_cast<uint32_t>(std::max(z80Clocks, 0)) / kMdCycleClocks, vdpCycles);
    const uint32_t rounds = quiet / cycles;
    md.cpu.cyclesLeft =
        static_cast<int32_t>(static_cast<uint32_t>(md.cpu.cyclesLeft) - rounds * spent);
    md.m68kBusCycles += rounds * cycles;
    md.z80Clock += static_cast<int32_t>(rounds * cycles * kMdCycleClocks);
    md.vdpOwed += rounds * cycles;
    md.fmOwed += rounds * cycles;
}

// Runs instructions until the 68000 is back where it is now, and returns their cycles. 0 if an event comes before, or
// if it does anything but read memory. A word that is read through the bus may be a chip's, so it counts as no memory.
// An exception moves the stack pointer, and what it pushes may be read in the next round.
uint32_t RunWaitingRound(MEGA_DRIVE& md, uint32_t& freeInstructions, uint32_t& instructionsLeft) {
    const M68K_STATE& cpu = md.cpu;
    const uint32_t start = cpu.pc;
    const uint32_t stack = cpu.regs[kM68kA7];
    const uint32_t reads = md.m68kBusReads;
    uint32_t cycles = 0;
    for (; instructionsLeft > 0; --instructionsLeft) {
        const uint32_t ran = RunInstruction<false>(md, freeInstructions);
        if (!IsQuiet(md, ran)) {
            RunCycles(md, ran);
            return 0;
        }
        md.vdpOwed += ran;
        md.fmOwed += ran;
        cycles += ran;
        if (!M68kMayWait(cpu) || md.m68kBusReads != reads || cpu.regs[kM68kA7] != stack) {
            return 0;
        }
        if (cpu.pc == start) {
            return cycles;
        }
    }
    return 0;
}

// After an event: skips a 68000 that is stopped, or that only reads memory in a short loop. A round that ends with the
// registers that it began with is followed by equal ones up to the next event, since nobody else writes memory before.
[[gnu::noinline]] void SkipIdle(MEGA_DRIVE& md, uint32_t& freeInstructions) {
    constexpr uint32_t kMostInstructions = 12; // of two rounds: the first may come from elsewhere
    M68K_STATE& cpu = md.cpu;
    if (cpu.stopped != 0) {
        SkipRounds(md, kM68kStoppedClocks, 0);
        freeInstructions = 0;
        return;
    }
    uint32_t instructionsLeft = kMostInstructions;
    while (M68kMayWait(cpu)) {
        const M68kMoment begin(cpu);
        const auto left = static_cast<uint32_t>(cpu.cyclesLeft);
        const uint32_t cycles = RunWaitingRound(md, freeInstructions, instructionsLeft);
        if (cycles == 0) {
            return;
        }
        if (begin.IsAlike(cpu)) {
            SkipRounds(md, cycles, left - static_cast<uint32_t>(cpu.cyclesLeft));
            return;
        }
    }
}

template <bool svp>
void RunFrameFast(MEGA_DRIVE& md) {
    uint32_t freeInstructions = 0;
    md.z80Deadline = kMdZ80Clocks;
    CatchUpToEvent(md);
    while (md.vdp.frameDone == 0) {
        const uint32_t cycles = RunInstruction<svp>(md, freeInstructions);
        if (IsQuiet(md, cycles)) [[likely]] {
            md.vdpOwed += cycles;
            md.fmOwed += cycles;
            continue;
        }
        RunCycles(md, cycles);
        if (!svp && md.vdp.frameDone == 0) {
            SkipIdle(md, freeInstructions);
        }
    }
    MdCatchUpZ80(md);
    MdCatchUpVdp(md);
    MdCatchUpFm(md);
    MdCatchUpPsg(md);
}

} // namespace

void MdRunFrame(MEGA_DRIVE& md) {
    const bool svp = md.cartridge.cartKind == kMdCartSvp;
    if (md.plainLoop) {
        svp ? RunFramePlain<true>(md) : RunFramePlain<false>(md);
    } else {
        svp ? RunFrameFast<true>(md) : RunFrameFast<false>(md);
    }
}
