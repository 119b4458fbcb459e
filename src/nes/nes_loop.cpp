// The frame loops of the NES, with everything that runs in a cycle inlined into them, and the stall path
// beside them.
//
// In the plain loop every chip is stepped in every cycle and nothing is put off, so that it is the measure
// for the other. In the late one the picture unit waits until
// somebody could tell: something on the processor's side of it is read or written, or it has an event,
// such as the blank's interrupt or, sooner, one of a board that watches its addresses.
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

// A cycle of all chips but the processor, one after the other.
void RunChipsPlain(NES_CONSOLE& nes) {
    BoardCpuClock(nes.cartridge);
    for (uint32_t i = 0; i < kDotsPerCycle; ++i) {
        PpuPlainDot(nes.ppu);
    }
    ApuStep(nes.apu);
}

// The same for the late loop, with pixels and sprite search that wait.
void RunChips(NES_CONSOLE& nes) {
    BoardCpuClock(nes.cartridge);
    for (uint32_t i = 0; i < kDotsPerCycle; ++i) {
        PpuDot(nes.ppu);
    }
    ApuStep(nes.apu);
}

void RunFramePlain(NES_CONSOLE& nes) {
    NES_BUS bus{nes};
    while (!nes.ppu.frameDone) {
        M6502Sample(nes.cpu);
        RunChipsPlain(nes);
        M6502Cycle(nes.cpu, bus);
    }
}

// The bus with a picture unit that may be late.
struct NES_LATE_BUS {
    NES_BUS bus;
    uint32_t waiting = 0; // dots not run yet
    uint32_t toEvent = 0; // dots from the last one that was run to where something may happen

    uint8_t Read(uint16_t address) {
        const bool isMemory =
            address < nes_bus::kPictureStart || address >= nes_bus::kCartridgeStart;
        if (isMemory && bus.nes.apu.stallCycles == 0) [[likely]] {
            return bus.Read(address);
        }
        return ReadUpToDate(address);
    }

    void Write(uint16_t address, uint8_t value) {
        if (address < nes_bus::kPictureStart) [[likely]] {
            bus.Write(address, value);
        } else {
            WriteUpToDate(address, value);
        }
    }

    [[gnu::noinline]] void CatchUp() {
        PpuRun(bus.nes.ppu, waiting);
        waiting = 0;
        FindEvent();
    }

    void FindEvent() {
        toEvent = PpuDotsToEvent(bus.nes.ppu);
        if (bus.nes.cartridge.quietDots != nullptr) {
            toEvent = std::min(toEvent, bus.nes.cartridge.quietDots(bus.nes.cartridge) + 1);
        }
    }

private:
    [[gnu::noinline]] uint8_t ReadUpToDate(uint16_t address) {
        CatchUp();
        const uint8_t value = bus.Read(address);
        FindEvent();
        return value;
    }

    [[gnu::noinline]] void WriteUpToDate(uint16_t address, uint8_t value) {
        CatchUp();
        bus.Write(address, value);
        FindEvent();
    }
};

// The board's clock, which knows nothing of the picture, is never late. Few boards have one (`boardClock`);
// with the others the call is saved.
template <bool boardClock>
OMBRELUNE_FLATTEN void RunFrameLate(NES_CONSOLE& nes) {
    NES_LATE_BUS bus{{nes}, 0, 0};
    bus.FindEvent();
    while (!nes.ppu.frameDone) {
        M6502Sample(nes.cpu);
        if constexpr (boardClock) {
            nes.cartridge.cpuClock(nes.cartridge);
        }
        bus.waiting += kDotsPerCycle;
        if (bus.waiting >= bus.toEvent) [[unlikely]] {
            bus.CatchUp();
        }
        ApuStep(nes.apu);
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
    // What the chip's RAM is found to hold as a rule.
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
    if (nes.stepByStep) {
        RunFramePlain(nes);
    } else {
        boardClock ? RunFrameLate<true>(nes) : RunFrameLate<false>(nes);
    }
}

void NesStall(NES_CONSOLE& nes) {
    const uint32_t cycles = nes.apu.stallCycles - 1;
    nes.apu.stallCycles = 0;
    for (uint32_t i = 0; i < cycles; ++i) {
        nes.stepByStep ? RunChipsPlain(nes) : RunChips(nes);
    }
}
