// What the files of the Mega Drive's video processor share.
#pragma once

#include "megadrive/md_vdp.h"

#include <bit>
#include <cstdint>
#include <cstring>

// Bits of registers.
inline constexpr uint8_t kMdVdpReg0HInterrupt = 0x10;
inline constexpr uint8_t kMdVdpReg1AllRegisters = 0x04;
inline constexpr uint8_t kMdVdpReg1Tall = 0x08; // 240 lines
inline constexpr uint8_t kMdVdpReg1Dma = 0x10;
inline constexpr uint8_t kMdVdpReg1VInterrupt = 0x20;
inline constexpr uint8_t kMdVdpReg1Display = 0x40;
inline constexpr uint8_t kMdVdpReg11ColumnScroll = 0x04;

// Codes of the command: its low four bits, and the bit that begins a DMA.
inline constexpr uint32_t kMdVdpCodeReadVram = 0;
inline constexpr uint32_t kMdVdpCodeVram = 1;
inline constexpr uint32_t kMdVdpCodeCram = 3;
inline constexpr uint32_t kMdVdpCodeReadVsram = 4;
inline constexpr uint32_t kMdVdpCodeVsram = 5;
inline constexpr uint32_t kMdVdpCodeReadCram = 8;
inline constexpr uint32_t kMdVdpCodeDma = 0x20;

// Bits of a cell's name table word and of a sprite's attributes.
inline constexpr uint32_t kMdVdpFlipX = 0x0800;
inline constexpr uint32_t kMdVdpFlipY = 0x1000;

[[nodiscard]] inline uint32_t MdVdpVramWord(const MD_VDP& vdp, uint32_t address) {
    uint16_t word = 0;
    std::memcpy(&word, &vdp.vram[address & 0xFFFE], sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
        word = static_cast<uint16_t>(word << 8 | word >> 8);
    }
    return word;
}

inline void MdVdpStoreVramWord(MD_VDP& vdp, uint32_t address, uint32_t word) {
    // At an odd address the two bytes change places.
    const uint32_t swap = address & 1;
    address &= 0xFFFE;
    vdp.vram[address + swap] = static_cast<uint8_t>(word);
    vdp.vram[address + 1 - swap] = static_cast<uint8_t>(word >> 8);
}

// Eight pixels of a pattern row, the leftmost in the top bits. `address` is a multiple of 4.
[[nodiscard]] inline uint32_t MdVdpPattern(const MD_VDP& vdp, uint32_t address) {
    uint32_t pattern = 0;
    std::memcpy(&pattern, &vdp.vram[address & 0xFFFC], sizeof pattern);
    if constexpr (std::endian::native == std::endian::big) {
        pattern = (pattern & 0x00FF00FF) << 8 | (pattern >> 8 & 0x00FF00FF);
        return pattern;
    }
    return std::rotl(pattern, 16);
}

// 0000BBB0GGG0RRR0 to nine bits, and back.
[[nodiscard]] inline uint16_t MdVdpPackColour(uint32_t word) {
    return static_cast<uint16_t>((word >> 1 & 7) << 6 | (word >> 5 & 7) << 3 | (word >> 9 & 7));
}
[[nodiscard]] inline uint16_t MdVdpSpreadColour(uint32_t colour) {
    return static_cast<uint16_t>((colour >> 6 & 7) << 1 | (colour >> 3 & 7) << 5 |
                                 (colour & 7) << 9);
}

[[nodiscard]] inline bool MdVdpDisplayOn(const MD_VDP& vdp) {
    return (vdp.regs[1] & kMdVdpReg1Display) != 0;
}

// What follows from registers, activeHeight and tvMode.
void MdVdpRefreshGeometry(MD_VDP& vdp);
// After a change of the display bit, of `line` or of activeHeight.
void MdVdpRefreshBlanked(MD_VDP& vdp);
// Sets the tables and the row pointer that follow from other fields.
void MdVdpRefreshPointers(MD_VDP& vdp);

// The first cell of a line as far as fine scroll leaves of it, and the columns of the window.
void MdVdpStartLine(MD_VDP& vdp);
// 16 pixels of both planes, the window and the backdrop.
void MdVdpFetchCells(MD_VDP& vdp);
// The sprites of the line after `line`; `budget` words of VRAM may be read.
void MdVdpFetchSprites(MD_VDP& vdp, uint32_t budget);
// One access of FIFO or DMA.
void MdVdpAccessSlot(MD_VDP& vdp);
