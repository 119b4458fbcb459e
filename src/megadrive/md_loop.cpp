// The frame loops of the Mega Drive.
//
// The plain loop is the console: an instruction of the 68000, then a round for each of its cycles with
// Z80, PSG, FM chip and video chip in this order. In the late one both sound chips and the video chip wait
// until somebody could tell: one of their addresses is reached, or the video chip comes to where it drives a line
// or moves memory.
#include "megadrive/m68000_step.h"
#include "megadrive/md_bus.h"
#include "megadrive/md_vdp_tick.h"
#include "megadrive/ym2612_tick.h"
#include "sega8/z80_tick.h"

#include <algorithm>

namespace {

[[gnu::always_inline]] inline void RunRound(MEGA_DRIVE& md, MD_Z80_BUS& bus) {
    if (md.z80Clock >= kMdZ80Clocks) {
        Z80TickOn(md.z80, bus);
        PsgTick(md.psg);
        md.z80Clock -= kMdZ80Clocks;
    }
    Ym2612Tick(md.fm);
    MdVdpClock(md.vdp);
}

// Opcodes that are none take no time, and a program that has gone astray may find nothing else: its frame
// would never end. Some in a row are free, and then one costs what a step of the stopped processor does.
constexpr uint32_t kFreeSteps = 256;
constexpr uint32_t kStepCycles = 4;

// The instruction, and what hangs on it before its rounds; gives their number.
template <bool svp>
[[gnu::always_inline]] inline uint32_t RunInstruction(MEGA_DRIVE& md, uint32_t& freeSteps) {
    uint32_t cycles = M68kStep(md.cpu);
    if (cycles == 0 && ++freeSteps > kFreeSteps) [[unlikely]] {
        cycles = kStepCycles;
    }
    if (cycles != 0) {
        freeSteps = 0;
    }
    md.m68kBusCycles += cycles;
    if constexpr (svp) {
        MdCartSvpHook(md.cartridge, cycles * kMdCycleClocks);
    }
    md.z80Clock += static_cast<int32_t>(cycles * kMdCycleClocks);
    return cycles;
}

template <bool svp>
void RunFrame(MEGA_DRIVE& md) {
    MD_Z80_BUS bus{md};
    uint32_t freeSteps = 0;
    while (md.vdp.frameDone == 0) {
        const uint32_t cycles = RunInstruction<svp>(md, freeSteps);
        for (uint32_t i = 0; i < cycles; ++i) {
            RunRound(md, bus);
        }
    }
}

void CatchUpToEvent(MEGA_DRIVE& md) {
    MdCatchUpVideo(md);
    MdFindEvent(md);
}

// The rounds of an instruction in which the video chip does something that others see.
[[gnu::noinline]] void RunRoundsUpToDate(MEGA_DRIVE& md, uint32_t cycles) {
    MD_Z80_BUS bus{md};
    MdCatchUpVideo(md);
    MdCatchUpSound(md);
    MdCatchUpPsg(md);
    for (uint32_t i = 0; i < cycles; ++i) {
        RunRound(md, bus);
    }
    MdFindEvent(md);
}

template <bool svp>
void RunFrameLate(MEGA_DRIVE& md) {
    MD_Z80_BUS bus{md};
    uint32_t freeSteps = 0;
    CatchUpToEvent(md);
    while (md.vdp.frameDone == 0) {
        uint32_t rounds = RunInstruction<svp>(md, freeSteps);
        // The whole debt is there at the start, so the clocks fall into the first rounds.
        while (md.vdpWaiting + rounds < md.vdpToEvent) {
            if (rounds == 0 || md.z80Clock < kMdZ80Clocks) [[likely]] {
                break;
            }
            Z80TickOn(md.z80, bus); // which may write to the video chip and bring an event near
            md.z80Clock -= kMdZ80Clocks;
            ++md.psgWaiting;
            ++md.vdpWaiting;
            ++md.fmWaiting;
            --rounds;
        }
        if (md.vdpWaiting + rounds >= md.vdpToEvent) [[unlikely]] {
            RunRoundsUpToDate(md, rounds);
            continue;
        }
        md.vdpWaiting += rounds;
        md.fmWaiting += rounds;
    }
    MdCatchUpVideo(md);
    MdCatchUpSound(md);
    MdCatchUpPsg(md);
}

} // namespace

void MdRunFrame(MEGA_DRIVE& md) {
    const bool svp = md.cartridge.cartKind == kMdCartSvp;
    if (md.stepByStep) {
        svp ? RunFrame<true>(md) : RunFrame<false>(md);
    } else {
        svp ? RunFrameLate<true>(md) : RunFrameLate<false>(md);
    }
}
