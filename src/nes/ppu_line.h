// The PPU's fetches of a line at once, with the same result as dot by dot. See ppu_run.h.
#pragma once

#include "nes/ppu.h"

#include <cstdint>

// True if the board neither reads nor watches what the PPU fetches, or counts address bit 12 alone.
[[nodiscard]] bool PpuCanRunLine(const PPU& ppu);

// Tiles of the visible part, with the pixels that are on the screen meanwhile: `groups` of eight dots from `dot`, a
// multiple of eight, to dot 248 at most, where the row changes.
void PpuRunTiles(PPU& ppu, uint32_t dot, uint32_t groups);

// Dots 256 to 319, eight for each slot.
void PpuRunSprites(PPU& ppu, uint32_t firstSlot, uint32_t slots);
