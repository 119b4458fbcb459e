// The CPU bus of the NES, to be inlined into its frame loop: address decoding and DMA stalls.
//
// 0x0000 to 0x1FFF work RAM; 0x2000 to 0x3FFF PPU; 0x4000 to 0x4FFF APU, sprite DMA and pads in the first 24
// addresses, the rest empty; from 0x5000 on the cartridge.
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

// Runs the other chips while the APU holds the CPU. The stall belongs to the read that it delays, whose own
// cycle is the last of it.
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

    // Only a read can be held; each write before it shortens the stall.
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
