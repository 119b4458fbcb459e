// The frame loops of the NES, with everything that runs in a cycle inlined, and the stall of sample DMA.
//
// The plain loop ticks every chip in every cycle and is the reference for the fast one. In the fast loop PPU and
// APU are owed cycles until the difference could be seen: at a CPU access to anything but memory, at an event
// such as the NMI, when a board that watches PPU addresses might interrupt, or when the APU might interrupt or
// take the bus.
#include "base/flatten.h"
#include "machine/sound_settings.h"
#include "nes/apu_tick.h"
#include "nes/m6502_tick.h"
#include "nes/nes_bus.h"
#include "nes/ppu_private.h"
#include "nes/ppu_run.h"
#include "nes/ppu_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kDotsPerCycle = 3;

// One cycle of all chips but the CPU.
void TickChips(NES_CONSOLE& nes) {
    BoardCpuClock(nes.cartridge);
    for (uint32_t i = 0; i < kDotsPerCycle; ++i) {
        PpuTick(nes.ppu);
    }
    ApuTick(nes.apu);
}

void RunFramePlain(NES_CONSOLE& nes) {
    NES_BUS bus{nes};
    while (!nes.ppu.frameDone) {
        M6502Sample(nes.cpu);
        TickChips(nes);
        M6502Cycle(nes.cpu, bus);
    }
}

// The bus of the fast loop: runs what is owed before an access that could tell.
struct NES_CATCH_UP_BUS {
    NES_BUS bus;
    uint32_t owed = 0;          // cycles that have passed, and that PPU and APU have not run
    uint32_t cyclesToEvent = 0; // from the last cycle that they have run to the next possible event
    // Accesses that change something, or read what changes by itself; wrapping.
    uint32_t effects = 0;
    // Reads of PPUSTATUS that changed nothing, which are no effects; wrapping.
    uint32_t statusReads = 0;

    uint8_t Read(uint16_t address) {
        const bool isMemory = address < nes_bus::kPpuStart || address >= nes_bus::kCartridgeStart;
        if (isMemory && bus.nes.apu.stallCycles == 0) [[likely]] {
            return bus.Read(address);
        }
        return CatchUpAndRead(address);
    }

    void Write(uint16_t address, uint8_t value) {
        ++effects;
        if (address < nes_bus::kPpuStart) [[likely]] {
            bus.Write(address, value);
        } else {
            CatchUpAndWrite(address, value);
        }
    }

    // A cycle begins.
    void Cycle() {
        if (++owed >= cyclesToEvent) [[unlikely]] {
            CatchUp();
        }
    }

    [[gnu::noinline]] void CatchUp() {
        PpuRun(bus.nes.ppu, owed * kDotsPerCycle);
        ApuRun(bus.nes.apu, owed);
        owed = 0;
        FindEvent();
    }

    void FindEvent() {
        uint32_t dots = PpuDotsToEvent(bus.nes.ppu);
        if (const auto rises = bus.nes.cartridge.risesToInterrupt; rises != nullptr) {
            dots = std::min(dots, PpuDotsToRise(bus.nes.ppu, rises(bus.nes.cartridge)));
        }
        cyclesToEvent =
            std::min((dots + kDotsPerCycle - 1) / kDotsPerCycle, ApuCyclesToEvent(bus.nes.apu));
    }

private:
    [[gnu::noinline]] uint8_t CatchUpAndRead(uint16_t address) {
        CatchUp();
        if (ReadsIdleStatus(address)) {
            ++statusReads;
            return bus.Read(address);
        }
        ++effects;
        const uint8_t value = bus.Read(address);
        FindEvent();
        return value;
    }

    [[nodiscard]] bool ReadsIdleStatus(uint16_t address) const {
        constexpr uint16_t kStatus = 0x2002; // and every eighth address of the PPU
        return (address & 0xE007) == kStatus && bus.nes.apu.stallCycles == 0 &&
               PpuStatusReadIsIdle(bus.nes.ppu);
    }

    [[gnu::noinline]] void CatchUpAndWrite(uint16_t address, uint8_t value) {
        CatchUp();
        bus.Write(address, value);
        FindEvent();
    }
};

// Skips the rounds of a loop that only reads memory or PPUSTATUS, which games wait in for an interrupt or a flag.
// Two rounds that begin with the same registers and without an effect between them are equal, and so is every round
// after them until an event or, if they read PPUSTATUS, until one of its flags may change.
class IdleLoop {
public:
    // After an instruction that began at `from`.
    void Look(M6502& cpu, NES_CATCH_UP_BUS& bus, uint16_t from) {
        constexpr uint16_t kLongestLoop = 64; // bytes
        if (static_cast<uint16_t>(from - cpu.pc) < kLongestLoop) [[unlikely]] {
            LookAtRound(cpu, bus);
        }
    }

private:
    [[gnu::noinline]] void LookAtRound(M6502& cpu, NES_CATCH_UP_BUS& bus) {
        if (bus.effects == effects && M6502IsAlike(cpu, last)) {
            const uint32_t round = cpu.cycles - last.cycles;
            const uint32_t quiet =
                std::min(bus.cyclesToEvent - bus.owed - 1, CyclesOfSameStatus(bus));
            const uint32_t skipped = quiet - quiet % round;
            cpu.cycles += skipped;
            bus.owed += skipped;
        }
        effects = bus.effects;
        statusReads = bus.statusReads;
        last = cpu;
    }

    // 0 if a flag has changed since it was read. They are counted from the last read, as each round has its last read
    // at the same place. A line in which a flag may change is looked at only once.
    uint32_t CyclesOfSameStatus(const NES_CATCH_UP_BUS& bus) {
        if (bus.statusReads == statusReads) {
            return bus.cyclesToEvent;
        }
        const PPU& ppu = bus.bus.nes.ppu;
        const int32_t line = ppu.line;
        if (line == busyLine || !PpuStatusReadIsIdle(ppu)) {
            return 0;
        }
        const uint32_t cycles = PpuDotsOfSameStatus(ppu) / kDotsPerCycle;
        busyLine = cycles == 0 ? line : kNoLine;
        return cycles;
    }

    static constexpr int32_t kNoLine = -2;

    M6502 last; // at the end of the round before
    uint32_t effects = 0;
    uint32_t statusReads = 0;
    int32_t busyLine = kNoLine;
};

// Runs instruction by instruction, as a round of an idle loop ends with one.
// The board's CPU clock runs in every cycle: it doesn't depend on the PPU. Only board 73 has one (`boardClock`);
// the others save the call, and their idle loops can be skipped.
template <bool boardClock>
OMBRELUNE_FLATTEN void RunFrameFast(NES_CONSOLE& nes) {
    NES_CATCH_UP_BUS bus{{nes}};
    IdleLoop idle;
    bus.FindEvent();
    while (!nes.ppu.frameDone) {
        const uint16_t from = nes.cpu.pc;
        do {
            M6502Sample(nes.cpu);
            if constexpr (boardClock) {
                nes.cartridge.cpuClock(nes.cartridge);
            }
            bus.Cycle();
            M6502Cycle(nes.cpu, bus);
        } while (!M6502IsBetweenInstructions(nes.cpu) && !nes.ppu.frameDone);
        if (!boardClock && !nes.ppu.frameDone) {
            idle.Look(nes.cpu, bus, from);
        }
    }
    bus.CatchUp();
}

NES_CONSOLE& Console(void* context) {
    return *static_cast<NES_CONSOLE*>(context);
}

} // namespace

void NesConnect(NES_CONSOLE& nes) {
    M6502Init(
        nes.cpu, &nes,
        [](void* context, uint16_t address) { return NES_BUS{Console(context)}.Read(address); },
        [](void* context, uint16_t address, uint8_t value) {
            NES_BUS{Console(context)}.Write(address, value);
        });
    PpuInit(nes.ppu, &nes.cartridge.pages);
    CartridgeConnect(nes.cartridge, &nes.cpu.cycles, &nes.cpu.irqLines,
                     {PpuNametable(nes.ppu, 0), PpuNametable(nes.ppu, 1), PpuNametable(nes.ppu, 2),
                      PpuNametable(nes.ppu, 3)});
}

void NesReset(NES_CONSOLE& nes) {
    // Work RAM at power-on as commonly measured.
    nes.workRam.fill(0xFF);
    nes.workRam[8] = 0xF7;
    nes.workRam[9] = 0xEF;
    nes.workRam[10] = 0xDF;
    nes.workRam[15] = 0xBF;
    nes.pads = {};
    ApuInit(
        nes.apu,
        [](void* context, uint16_t address) {
            return CartridgeRead(Console(context).cartridge, address);
        },
        &nes);
    nes.apu.pairs = &nes.sound.pairs;
    nes.sound.Init(kApuSampleRate, SoundChoiceFromSettings());
    ApuReset(nes.apu, true, &nes.cpu.irqLines);
    PpuReset(nes.ppu, true, &nes.cpu.nmiLine);
    BoardReset(nes.cartridge);
    NES_BUS bus{nes};
    M6502ResetOn(nes.cpu, bus);
}

void NesRunFrame(NES_CONSOLE& nes) {
    const bool boardClock = nes.cartridge.cpuClock != nullptr;
    if (nes.plainLoop) {
        RunFramePlain(nes);
    } else {
        boardClock ? RunFrameFast<true>(nes) : RunFrameFast<false>(nes);
    }
}

void NesStall(NES_CONSOLE& nes) {
    const uint32_t cycles = nes.apu.stallCycles - 1;
    nes.apu.stallCycles = 0;
    for (uint32_t i = 0; i < cycles; ++i) {
        TickChips(nes);
    }
}
