// The dot of the picture unit with nothing put off and nothing passed over: the measure for PpuDot and PpuRun,
// which must give the same pictures, flags and addresses.
//
// Every dot asks whether something begins or ends on it, fetches, moves the register access in progress, and
// does its own pixel and its own step of the sprite search. It is several times as slow.
#pragma once

#include "nes/ppu_tick.h"

#include <cstdint>

inline void PpuPlainDot(PPU& ppu) {
    ppu.dot = PpuEvent(ppu, ppu.dot + 1);
    if (ppu.rendering) {
        ppu_tick::Fetch(ppu, ppu.dot);
    } else if (ppu.ioState == kPpuNoAccess) {
        ppu_bus::Watch(ppu, ppu.vramAddress & ppu_bus::kMask);
    }
    if (ppu.ioState != kPpuNoAccess) {
        PpuAccessDot(ppu);
    }
    PpuCatchUp(ppu); // of this dot alone, since all before it are done
}
