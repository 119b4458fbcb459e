// The columns of a line in modes 0 to 2 at once, as vdp_run_mode4.h does it for mode 4. Part of vdp_run.cpp. The
// sprites of such a line are fetched slot by slot.
#pragma once

#include "sega8/vdp_run_mode4.h"

#include <cstdint>

namespace vdp_run {

inline uint8_t ByteAt(const VDP& vdp, uint32_t address) {
    return vdp.vram[address & kVdpVramMask];
}

// A search slot and its data.
inline void TestSpriteY(VDP& vdp) {
    vdp_fetch::TestY(vdp);
    vdp.readData = ByteAt(vdp, vdp.nextAddr);
    vdp_fetch::TestYData(vdp);
}

// Dots 8 * first to before 8 * end of an active line. As in single slots, an address is set before the data of the
// slot before it arrive.
inline void RunLegacyColumns(VDP& vdp, uint32_t first, uint32_t end) {
    vdp_tick::MemoryCycle(vdp);
    for (uint32_t column = first; column < end; ++column) {
        const uint32_t dot = column * kColumnDots;
        vdp_fetch::Name(vdp, dot);
        const uint8_t name = ByteAt(vdp, vdp.nextAddr);
        vdp_fetch::ColourData(vdp, dot); // of the column before
        vdp.readData = name;
        vdp_fetch::NameData(vdp, dot);
        if (column % 4 != 0) {
            TestSpriteY(vdp);
        }
        vdp_fetch::Pattern(vdp, dot);
        const uint8_t pattern = ByteAt(vdp, vdp.nextAddr);
        vdp_fetch::Colour(vdp, dot);
        vdp.readData = pattern;
        vdp_fetch::PatternData(vdp, dot);
        if (column + 1 < end) {
            vdp.readData = ByteAt(vdp, vdp.nextAddr);
        }
    }
    SetPipeline(vdp, kSlotColour, vdp.nextAddr, true);
}

} // namespace vdp_run
