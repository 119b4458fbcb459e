// Parts of the picture unit that its sources and the tick share.
#pragma once

#include "nes/ppu.h"

#include <array>
#include <cstdint>

// What is due as `dot` is reached: the end of a line or of its picture, and on the pre-render line the
// clearing of the flags and the taking of the scroll as well; on a dot other than `eventDot` nothing. Sets
// the next eventDot. Gives the number
// of the dot that has begun: `dot`, or 0 where the line has ended.
[[nodiscard]] uint32_t PpuEvent(PPU& ppu, uint32_t dot);

// Puts out what is due of a visible line's pixels before dot `end`, 1 to 256.
void PpuDrawTo(PPU& ppu, uint32_t end);

// Does what is due of the sprite search before dot `end`, 1 to 256. PpuEvaluateLine is the whole of a
// line at once and does the same as 256 times PpuEvaluateDot.
void PpuEvaluateTo(PPU& ppu, uint32_t end);
void PpuEvaluateDot(PPU& ppu, uint32_t dot);
void PpuEvaluateLine(PPU& ppu);

// The low plane's address of the sprite in slot 0 to 7 of the line. A slot without one holds tile 0xFF
// where rendering was on for the line's first 64 dots, and what an earlier line left there where not.
[[nodiscard]] uint16_t PpuSpriteAddress(const PPU& ppu, uint32_t slot);

// Lays a fetched sprite under those of the slots before it.
void PpuStoreSprite(PPU& ppu, uint32_t slot, uint8_t high);

// A dot of the register access in progress.
void PpuAccessDot(PPU& ppu);

// What a fetch gives while a register access is in progress.
[[nodiscard]] uint8_t PpuCollide(PPU& ppu);

// Sets the other fields that follow from `mask` and the position.
void PpuDerive(PPU& ppu);

// Where the present line goes in the picture.
void PpuDeriveRow(PPU& ppu);

// The palette as pixels.
void PpuDeriveShades(PPU& ppu);

// A byte's bits, one in four: the highest on top. Two planes and an attribute make eight pixels.
inline constexpr std::array<uint32_t, 256> kPpuSpread = [] {
    std::array<uint32_t, 256> spread{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        for (uint32_t bit = 0; bit < 8; ++bit) {
            spread[byte] |= (byte >> bit & 1) << (bit * 4);
        }
    }
    return spread;
}();

inline constexpr std::array<uint8_t, 256> kPpuReversed = [] {
    std::array<uint8_t, 256> reversed{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        for (uint32_t bit = 0; bit < 8; ++bit) {
            reversed[byte] = static_cast<uint8_t>(reversed[byte] | (byte >> bit & 1) << (7 - bit));
        }
    }
    return reversed;
}();

namespace ppu_bus {

inline constexpr uint16_t kMask = 0x3FFF;

// Whether an address is answered by the palette inside the chip.
[[nodiscard]] inline bool IsPalette(uint16_t address) {
    return (address & 0x3F00) == 0x3F00;
}

// Shows an address to the board, if that looks.
inline void Watch(const PPU& ppu, uint16_t address) {
    const NES_PAGES& pages = *ppu.pages;
    if (pages.ppuAddressHook != NesIgnoreAddress) {
        pages.ppuAddressHook(pages.board, address);
    }
}

} // namespace ppu_bus
