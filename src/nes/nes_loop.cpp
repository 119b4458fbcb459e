// The frame loops of the NES, with everything that runs in a cycle inlined, and the stall of sample DMA.
//
// The plain loop ticks every chip in every cycle and is the reference for the fast one. In the fast loop dots
// are owed to the PPU until the difference could be seen: at a CPU access to anything but memory, at a PPU
// event such as the NMI, or when a board that watches PPU addresses might interrupt.
#include "base/flatten.h"
#include "machine/sound_settings.h"
#include "nes/apu_tick.h"
#include "nes/m6502_tick.h"
#include "nes/nes_bus.h"
#include "nes/ppu_plain.h"
#include "nes/ppu_run.h"
#include "nes/ppu_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kDotsPerCycle = 3;

// One cycle of all chips but the CPU.
void TickChipsPlain(NES_CONSOLE& nes) {
    BoardCpuClock(nes.cartridge);
    for (uint32_t i = 0; i < kDotsPerCycle; ++i) {
        PpuPlainTick(nes.ppu);
    }
    ApuTick(nes.apu);
}

// The same for the fast loop: pixels and sprite evaluation may be owed.
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
        TickChipsPlain(nes);
        M6502Cycle(nes.cpu, bus);
    }
}

// The bus of the fast loop: runs the owed dots before an access that could tell.
struct NES_CATCH_UP_BUS {
    NES_BUS bus;
    uint32_t owedDots = 0;    // have passed but not run
    uint32_t dotsToEvent = 0; // from the last dot that has run to the next possible event

    uint8_t Read(uint16_t address) {
        const bool isMemory = address < nes_bus::kPpuStart || address >= nes_bus::kCartridgeStart;
        if (isMemory && bus.nes.apu.stallCycles == 0) [[likely]] {
            return bus.Read(address);
        }
        return CatchUpAndRead(address);
    }

    void Write(uint16_t address, uint8_t value) {
        if (address < nes_bus::kPpuStart) [[likely]] {
            bus.Write(address, value);
        } else {
            CatchUpAndWrite(address, value);
        }
    }

    [[gnu::noinline]] void CatchUp() {
        PpuRun(bus.nes.ppu, owedDots);
        owedDots = 0;
        FindEvent();
    }

    void FindEvent() {
        dotsToEvent = PpuDotsToEvent(bus.nes.ppu);
        if (bus.nes.cartridge.quietDots != nullptr) {
            dotsToEvent = std::min(dotsToEvent, bus.nes.cartridge.quietDots(bus.nes.cartridge) + 1);
        }
    }

private:
    [[gnu::noinline]] uint8_t CatchUpAndRead(uint16_t address) {
        CatchUp();
        const uint8_t value = bus.Read(address);
        FindEvent();
        return value;
    }

    [[gnu::noinline]] void CatchUpAndWrite(uint16_t address, uint8_t value) {
        CatchUp();
        bus.Write(address, value);
        FindEvent();
    }
};

// The board's CPU clock runs in every cycle: it doesn't depend on the PPU. Only board 73 has one (`boardClock`);
// the others save the call.
template <bool boardClock>
OMBRELUNE_FLATTEN void RunFrameFast(NES_CONSOLE& nes) {
    NES_CATCH_UP_BUS bus{{nes}, 0, 0};
    bus.FindEvent();
    while (!nes.ppu.frameDone) {
        M6502Sample(nes.cpu);
        if constexpr (boardClock) {
            nes.cartridge.cpuClock(nes.cartridge);
        }
        bus.owedDots += kDotsPerCycle;
        if (bus.owedDots >= bus.dotsToEvent) [[unlikely]] {
            bus.CatchUp();
        }
        ApuTick(nes.apu);
        M6502Cycle(nes.cpu, bus);
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
        nes.plainLoop ? TickChipsPlain(nes) : TickChips(nes);
    }
}
