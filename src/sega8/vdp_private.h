// What the sources of the 8-bit VDP share.
#pragma once

#include "sega8/vdp_record.h"

#include <cstdint>

// Sets the level of `irqOut`. To be called after every change of an interrupt flag or of registers
// 0 and 1.
void VdpUpdateIrq(VDP& vdp);

// The mode that registers 0 and 1 select: 0, 1, 2 or 4.
[[nodiscard]] uint8_t VdpModeOf(const uint8_t* regs);

// True on the lines of the picture.
[[nodiscard]] bool VdpLineIsActive(const VDP& vdp);

void VdpConvertPalette(VDP& vdp); // `palette` from colour RAM
void VdpDeriveHeight(VDP& vdp);   // height and borders from the registers
void VdpDeriveSlotList(VDP& vdp); // `slotList` from mode, display bit and line
void VdpDeriveLine(VDP& vdp); // slot table, colour set and output row from the line's saved fields

constexpr uint32_t VdpPixel(uint32_t red, uint32_t green, uint32_t blue) {
    return 0xFF000000U | red << 16 | green << 8 | blue;
}

// Bits 0-1 red, 2-3 green, 4-5 blue.
constexpr uint32_t VdpSixBitPixel(uint32_t value) {
    return VdpPixel((value & 3) * 85, ((value >> 2) & 3) * 85, ((value >> 4) & 3) * 85);
}
