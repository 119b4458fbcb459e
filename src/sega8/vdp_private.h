// Parts of the 8-bit VDP that its sources share.
#pragma once

#include "sega8/vdp_record.h"

#include <cstdint>

// Sets the level of `irqOut`; to be called after every change of a flag or of registers 0 and 1.
void VdpUpdateIrq(VDP& vdp);

// The mode, 0, 1, 2 or 4, that registers 0 and 1 ask for.
[[nodiscard]] uint8_t VdpModeOf(const uint8_t* regs);

// True on the lines of the picture.
[[nodiscard]] bool VdpLineIsActive(const VDP& vdp);

// `palette` from colour RAM; height and borders from the registers; `slotList` from mode, display bit
// and line; slot table, colour set and output row from what the line began with.
void VdpConvertPalette(VDP& vdp);
void VdpDeriveHeight(VDP& vdp);
void VdpDeriveSlotList(VDP& vdp);
void VdpDeriveLine(VDP& vdp);
