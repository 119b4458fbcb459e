// The PPU's tick without shortcuts: the reference for PpuTick and PpuRun, which must produce the same
// pictures, flags and addresses.
//
// Every dot checks for events, fetches, advances the PPUDATA access in progress, draws its own pixel and does
// its own part of the sprite evaluation. It is several times as slow.
#pragma once

#include "nes/ppu_tick.h"

#include <cstdint>

inline void PpuPlainTick(PPU& ppu) {
    ppu.dot = PpuEvent(ppu, ppu.dot + 1);
    if (ppu.rendering) {
        ppu_tick::Fetch(ppu, ppu.dot);
    } else if (ppu.ioState == kPpuNoAccess) {
        ppu_bus::Watch(ppu, ppu.vramAddress & ppu_bus::kMask);
    }
    if (ppu.ioState != kPpuNoAccess) {
        PpuAccessDot(ppu);
    }
    PpuCatchUp(ppu); // this dot only: all before it are done
}
