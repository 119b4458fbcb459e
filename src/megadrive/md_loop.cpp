// The frame loops of the Mega Drive.
//
// The plain loop is the console: an instruction of the 68000, then a round for each of its cycles with
// Z80, PSG, FM chip and video chip in this order. In the late one both sound chips and the video chip wait
// until somebody could tell: one of their addresses is reached, or the video chip comes to where it drives a line
// or moves memory.
#include "megadrive/m68000_tick.h"
#include "megadrive/md_bus.h"
#include "megadrive/md_vdp_tick.h"
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

// Opcodes that are none take no time, and a program that has gone astray may find nothing else: its frame
// would never end. Some in a row are free, and then one costs what a step of the stopped processor does.
constexpr uint32_t kFreeSteps = 256;
constexpr uint32_t kStepCycles = 4;

// The instruction, and what hangs on it before its cycles; gives their number.
template <bool svp>
[[gnu::always_inline]] inline uint32_t RunInstruction(MEGA_DRIVE& md, uint32_t& freeSteps) {
    uint32_t cycles = M68kTick(md.cpu);
    if (cycles == 0 && ++freeSteps > kFreeSteps) [[unlikely]] {
        cycles = kStepCycles;
    }
    if (cycles != 0) {
        freeSteps = 0;
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
    uint32_t freeSteps = 0;
    while (md.vdp.frameDone == 0) {
        const uint32_t cycles = RunInstruction<svp>(md, freeSteps);
        for (uint32_t i = 0; i < cycles; ++i) {
            TickChips(md, bus);
        }
    }
}

void CatchUpToEvent(MEGA_DRIVE& md) {
    MdCatchUpVdp(md);
    MdRefreshVdpToEvent(md);
}

// The cycles of an instruction in which the video chip does something that others see.
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

// The Z80's bus while it does several clocks at once: the cycles that are over are counted when it reaches
// beyond its own memory. It stops where the video chip then comes near an event, and where it may have run
// itself on or away.
struct MD_CATCH_UP_Z80_BUS {
    MEGA_DRIVE& md;
    uint32_t cycles; // that the instruction still has at the first clock
    MD_Z80_BUS bus{md};
    uint32_t clock = 0;   // of this run
    uint32_t counted = 0; // clocks whose cycles are counted
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
        const bool reachesItself = address >= 0x8000 && md.z80Bank >> 16 == kMdIoPage;
        bus.Write(address, value);
        stops |= reachesItself || EventIsNear();
    }
};

// As many of the Z80's clocks as fall into the next cycles; gives how many that were. The whole debt of an
// instruction is there at its start, so they fall into its first ones.
uint32_t RunZ80(MEGA_DRIVE& md, uint32_t cycles) {
    if (md.z80Clock < kMdZ80Clocks) {
        return 0;
    }
    const uint32_t clocks =
        std::min(static_cast<uint32_t>(md.z80Clock) / static_cast<uint32_t>(kMdZ80Clocks), cycles);
    MD_CATCH_UP_Z80_BUS bus{md, cycles};
    // Where its bus is away or its reset line is low, clocks do nothing.
    const bool stands = md.z80.enabled == 0 || (md.z80.running == 0 && md.z80.busHold != 0);
    const uint32_t done = stands ? clocks : clocks - Z80RunOn(md.z80, bus, clocks);
    bus.Count(done);
    return done;
}

template <bool svp>
void RunFrameFast(MEGA_DRIVE& md) {
    uint32_t freeSteps = 0;
    CatchUpToEvent(md);
    while (md.vdp.frameDone == 0) {
        uint32_t cycles = RunInstruction<svp>(md, freeSteps);
        // The Z80 may write to the video chip and bring an event near.
        while (md.vdpOwed + cycles < md.vdpToEvent) {
            const uint32_t done = RunZ80(md, cycles);
            if (done == 0) {
                break;
            }
            cycles -= done;
        }
        if (md.vdpOwed + cycles >= md.vdpToEvent) [[unlikely]] {
            RunCyclesPlain(md, cycles);
            continue;
        }
        md.vdpOwed += cycles;
        md.fmOwed += cycles;
    }
    MdCatchUpVdp(md);
    MdCatchUpFm(md);
    MdCatchUpPsg(md);
}

} // namespace

void MdRunFrame(MEGA_DRIVE& md) {
    const bool svp = md.cartridge.cartKind == kMdCartSvp;
    if (md.stepByStep) {
        svp ? RunFramePlain<true>(md) : RunFramePlain<false>(md);
    } else {
        svp ? RunFrameFast<true>(md) : RunFrameFast<false>(md);
    }
}
