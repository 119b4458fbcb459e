// What the files of the Mega Drive's VDP share: accesses to its memories and the work of a step.
#pragma once

#include "megadrive/md_vdp.h"
#include "megadrive/md_vdp_registers.h"

#include <bit>
#include <cstdint>
#include <cstring>

// The first CRAM entry of the palette that the attributes select.
[[nodiscard]] inline uint32_t MdVdpPaletteOf(uint32_t attributes) {
    return (attributes & kMdVdpPalette) >> kMdVdpPaletteShift;
}

// The entry of CRAM or VSRAM that an address names.
[[nodiscard]] inline uint32_t MdVdpEntryOf(uint32_t address) {
    return address >> 1 & (kMdVdpEntries - 1);
}

// The parts of a VRAM address that select a word, and a row of a pattern.
inline constexpr uint32_t kMdVdpWordAddress = 0xFFFE;
inline constexpr uint32_t kMdVdpRowAddress = 0xFFFC;

[[nodiscard]] inline uint32_t MdVdpVramWord(const MD_VDP& vdp, uint32_t address) {
    uint16_t word = 0;
    std::memcpy(&word, &vdp.vram[address & kMdVdpWordAddress], sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = static_cast<uint16_t>(word << 8 | word >> 8);
    }
    return word;
}

inline void MdVdpStoreVramWord(MD_VDP& vdp, uint32_t address, uint32_t word) {
    // At an odd address the two bytes are swapped.
    const uint32_t swap = address & 1;
    address &= kMdVdpWordAddress;
    vdp.vram[address + swap] = static_cast<uint8_t>(word);
    vdp.vram[address + 1 - swap] = static_cast<uint8_t>(word >> 8);
}

// Eight pixels of a pattern row, the leftmost in the top bits. `address` is a multiple of 4.
[[nodiscard]] inline uint32_t MdVdpPattern(const MD_VDP& vdp, uint32_t address) {
    uint32_t pattern = 0;
    std::memcpy(&pattern, &vdp.vram[address & kMdVdpRowAddress], sizeof pattern);
    if constexpr (std::endian::native == std::endian::big) {
        pattern = (pattern & 0x00FF00FF) << 8 | (pattern >> 8 & 0x00FF00FF);
        return pattern;
    }
    return std::rotl(pattern, 16);
}

// The same eight pixels from right to left.
[[nodiscard]] inline uint32_t MdVdpMirror(uint32_t pattern) {
    pattern = __builtin_bswap32(pattern);
    return (pattern & 0x0F0F0F0F) << 4 | (pattern >> 4 & 0x0F0F0F0F);
}

// The programmer's 0000BBB0GGG0RRR0 to the nine bits that CRAM holds here, and back.
[[nodiscard]] inline uint16_t MdVdpPackColour(uint32_t word) {
    return static_cast<uint16_t>((word >> 1 & 7) << 6 | (word >> 5 & 7) << 3 | (word >> 9 & 7));
}
[[nodiscard]] inline uint16_t MdVdpSpreadColour(uint32_t colour) {
    return static_cast<uint16_t>((colour >> 6 & 7) << 1 | (colour >> 3 & 7) << 5 |
                                 (colour & 7) << 9);
}

[[nodiscard]] inline bool MdVdpDisplayOn(const MD_VDP& vdp) {
    return (vdp.regs[kMdVdpRegMode2] & kMdVdpReg1Display) != 0;
}

// After each access through the data port and each unit of a DMA.
inline void MdVdpAdvanceAddress(MD_VDP& vdp) {
    vdp.address = (vdp.address + vdp.regs[kMdVdpRegIncrement]) & 0xFFFF;
}

// Sizes, bases and border, from the registers, activeHeight and tvMode; after each register write.
void MdVdpRefreshGeometry(MD_VDP& vdp);
// `blanked`; after a change of the display bit, of `line` or of activeHeight.
void MdVdpRefreshBlanked(MD_VDP& vdp);
// stepTable and rowOut; after a change of h40, `pixels` or rowOffset.
void MdVdpRefreshPointers(MD_VDP& vdp);

// Marks the columns of the window and draws the part of a cell that fine scroll leaves at the left edge.
void MdVdpStartLine(MD_VDP& vdp);
// Fetches and draws 16 pixels of both planes, the window and the backdrop.
void MdVdpFetchCells(MD_VDP& vdp);
// The next `fetches` calls of it at once. The display must be on, and the columns in step with the timetable.
void MdVdpFetchLine(MD_VDP& vdp, uint32_t fetches);
// Finds and draws the sprites of the line after `line`, with at most `budget` words read from VRAM.
void MdVdpFetchSprites(MD_VDP& vdp, uint32_t budget);
// One access slot: serves the FIFO, or else the DMA.
void MdVdpAccessSlot(MD_VDP& vdp);
