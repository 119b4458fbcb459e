// The bus of the NES, to be inlined into its frame loop: addresses to chips, and what a read or write
// waits for.
//
// 0x0000 to 0x1FFF work RAM; 0x2000 to 0x3FFF picture unit; 0x4000 to 0x4FFF sound unit, sprite DMA and
// pads, of which the first 24 addresses count and the rest is empty; from 0x5000 on the cartridge.
#pragma once

#include "nes/board.h"
#include "nes/nes_console.h"

#include <cstdint>

namespace nes_bus {

inline constexpr uint16_t kPpuStart = 0x2000;
inline constexpr uint16_t kApuStart = 0x4000;
inline constexpr uint16_t kCartridgeStart = 0x5000;
inline constexpr uint16_t kWorkRamMask = kNesWorkRamBytes - 1;

} // namespace nes_bus

// 0x2000 to 0x4FFF.
[[nodiscard]] uint8_t NesReadChip(NES_CONSOLE& nes, uint16_t address);
void NesWriteChip(NES_CONSOLE& nes, uint16_t address, uint8_t value);

// Lets the time pass for which the sound unit holds the processor. It becomes part of the read that
// found it, so one cycle of it is that read's own.
void NesStall(NES_CONSOLE& nes);

struct NES_BUS {
    NES_CONSOLE& nes;

    uint8_t Read(uint16_t address) {
        if (nes.apu.stallCycles != 0) [[unlikely]] {
            NesStall(nes);
        }
        if (address >= nes_bus::kCartridgeStart) {
            return CartridgeRead(nes.cartridge, address);
        }
        if (address < nes_bus::kPpuStart) {
            return nes.workRam[address & nes_bus::kWorkRamMask];
        }
        return NesReadChip(nes, address);
    }

    // The processor is held at a read only, and writes meanwhile shorten the wait.
    void Write(uint16_t address, uint8_t value) {
        if (nes.apu.stallCycles != 0) [[unlikely]] {
            --nes.apu.stallCycles;
        }
        if (address < nes_bus::kPpuStart) {
            nes.workRam[address & nes_bus::kWorkRamMask] = value;
        } else if (address >= nes_bus::kCartridgeStart) {
            BoardWrite(nes.cartridge, address, value);
        } else {
            NesWriteChip(nes, address, value);
        }
    }
};
