// What the PPU's sources and its tick share.
#pragma once

#include "nes/ppu.h"

#include <array>
#include <cstdint>

// Does what is due at the start of `dot`: the end of the line or of its visible part, and on the pre-render
// line the clearing of `status` and the copy of the scroll; nothing on a dot other than `eventDot`. Sets the
// next eventDot. Returns the number of the dot that begins: `dot`, or 0 at the end of the line.
[[nodiscard]] uint32_t PpuEvent(PPU& ppu, uint32_t dot);

// An address in OAM: a sprite and one of its four bytes.
inline constexpr uint32_t kPpuOamByte = 0x03;
inline constexpr uint32_t kPpuOamSprite = 0xFC;

// Draws the owed pixels of a visible line before dot `end`, 1 to 256.
void PpuDrawTo(PPU& ppu, uint32_t end);

// Runs the owed sprite evaluation before dot `end`, 1 to 256. PpuEvaluateLine does a whole line at once,
// with the same result as 256 times PpuEvaluateDot.
void PpuEvaluateTo(PPU& ppu, uint32_t end);
void PpuEvaluateDot(PPU& ppu, uint32_t dot);
void PpuEvaluateLine(PPU& ppu);

// Dots for which `status` stays as it is, apart from the events of PpuDotsToEvent. Never too many: a line in which
// sprite 0 or eight sprites are in range may set a flag, and so may one that is in progress with some found.
[[nodiscard]] uint32_t PpuDotsOfSameStatus(const PPU& ppu);

// Address of the low pattern plane of slot 0 to 7. An empty slot holds tile 0xFF if rendering was on in the
// line's first 64 dots, otherwise what an earlier line left there.
[[nodiscard]] uint16_t PpuSpriteAddress(const PPU& ppu, uint32_t slot);

// Draws a fetched sprite into `spriteLine`, under the sprites of earlier slots.
void PpuStoreSprite(PPU& ppu, uint32_t slot, uint8_t high);

// One dot of the PPUDATA access in progress.
void PpuAccessDot(PPU& ppu);

// What a fetch reads during a PPUDATA access; a write also stores it at the address of the fetch.
[[nodiscard]] uint8_t PpuCollide(PPU& ppu);

// Derives the fields that follow from `mask`, `line` and `dot`.
void PpuDerive(PPU& ppu);

// Derives `row`.
void PpuDeriveRow(PPU& ppu);

// Derives `shades`.
void PpuDeriveShades(PPU& ppu);

// Index: a byte. Its bits four apart, the highest in bits 28 to 31: two planes and an attribute make eight
// pixels.
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

// Fields of `vramAddress` and `tempAddress`.
namespace ppu_address {

inline constexpr uint16_t kCoarseX = 0x001F;
inline constexpr uint16_t kCoarseY = 0x03E0;
inline constexpr uint16_t kNametableX = 0x0400;
inline constexpr uint16_t kNametableY = 0x0800;
inline constexpr uint16_t kNametables = kNametableX | kNametableY;
inline constexpr uint16_t kFineY = 0x7000;
inline constexpr uint16_t kAll = 0x7FFF;
inline constexpr uint16_t kTile = 0x0FFF; // nametable and tile: all but fine Y

// The tile within the 4 by 4 tiles of an attribute byte: the upper of the two bits selects its quarter.
inline constexpr uint16_t kQuarterX = 0x0002;
inline constexpr uint16_t kQuarterY = 0x0040;

inline constexpr uint32_t kCoarseYShift = 5;
inline constexpr uint32_t kNametableShift = 10;
inline constexpr uint32_t kFineYShift = 12;

} // namespace ppu_address

namespace ppu_bus {

inline constexpr uint16_t kMask = 0x3FFF;
inline constexpr uint32_t kSecondPatternTable = 0x1000;
inline constexpr uint32_t kNametables = 0x2000;
inline constexpr uint32_t kAttributes = 0x03C0; // the last 64 bytes of a nametable
inline constexpr uint32_t kTileBytes = 16;      // two planes
inline constexpr uint32_t kPlaneBytes = 8;      // the low one first
inline constexpr uint16_t kPaletteEntry = 0x1F;
inline constexpr uint32_t kSpritePalettes =
    0x10; // first entry; those of the background come before

// True for the addresses of the palette inside the chip.
[[nodiscard]] inline bool IsPalette(uint16_t address) {
    constexpr uint16_t kPalette = 0x3F00; // and the 256 addresses from there
    return (address & kPalette) == kPalette;
}

// Shows addresses to a board that watches the bus.
inline void Watch(const PPU& ppu, uint32_t address, uint32_t count = 1) {
    const NES_PAGES& pages = *ppu.pages;
    if (pages.ppuAddressHook != nullptr) {
        pages.ppuAddressHook(pages.board, static_cast<uint16_t>(address), count);
    }
}

} // namespace ppu_bus
