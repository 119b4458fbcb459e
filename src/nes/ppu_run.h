// Many dots of the PPU at once.
//
// PpuRun(n) does the same as n times PpuTick. Registers and memory must not have changed since the first of the dots.
// A machine that owes the PPU dots therefore calls it before every register access (reads have side effects and
// depend on the dot) and before every write to the board. A board's pattern readers are called in order, and so is
// the hook of a board that watches addresses, but in spans (nes_pages.h).
#pragma once

#include "nes/ppu.h"
#include "nes/ppu_private.h"

#include <cstdint>

void PpuRun(PPU& ppu, uint32_t count);

// Dots until the next change that others may see without an access, at least 1: that of the NMI at the begin and
// the end of vblank, or the end of the frame.
[[nodiscard]] inline uint32_t PpuDotsToEvent(const PPU& ppu) {
    const uint32_t toLineEnd = ppu.lineLength - ppu.dot;
    if (ppu.line >= kPpuVblankLine) {
        constexpr uint32_t kVblankEndDot = 1; // of the pre-render line
        const auto lines = static_cast<uint32_t>(ppu.totalLines - 2 - ppu.line);
        return toLineEnd + lines * kPpuLineDots + kVblankEndDot;
    }
    if (ppu.line == kPpuPreRenderLine && ppu.dot < kPpuFrameEndDot) {
        return ppu.eventDot - ppu.dot;
    }
    return toLineEnd + static_cast<uint32_t>(kPpuIdleLine - ppu.line) * kPpuLineDots;
}

// Dots, at least 1, until a board may have counted this many rises of bit 12 (kNesRiseAddresses), if nothing is
// accessed; apart from the events of PpuDotsToEvent.
[[nodiscard]] uint32_t PpuDotsToRise(const PPU& ppu, uint32_t rises);
