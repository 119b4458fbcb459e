#include "megadrive/svp.h"

#include "megadrive/svp_private.h"

#include <algorithm>

namespace {

constexpr uint32_t kStart = 0x400;

// As the 68000 sees it.
constexpr uint32_t kDramBlock = 0x18; // address >> 17, 128 KiB
constexpr uint32_t kDramMask = 0x1FFFE;
constexpr uint32_t kNarrowView = 0x39; // address >> 16
constexpr uint32_t kWideView = 0x3A;
constexpr uint32_t kFirstMailbox = 0x30FE06;
constexpr uint32_t kSecondMailbox = 0x30FE08;

// The signal processor fills the DRAM as a bitmap. The two views show it in the order of cells, so a DMA to VRAM
// needs no rearranging. `rows` are the bits of a word address that count the rows within cells, `kept` those
// that stay. The lowest bit of a word address is ignored.
uint32_t ViewIndex(uint32_t address, uint32_t rows, uint32_t kept, uint32_t columnShift) {
    constexpr uint32_t kColumns = 126;
    const uint32_t word = address >> 1;
    return ((word & rows) * 64) | (word & kept) | ((address >> columnShift) & kColumns);
}

} // namespace

void SvpReset(MD_SVP& svp, const uint16_t* rom) {
    for (auto& bank : svp.ram) {
        bank.fill(0);
    }
    svp.gr.fill(0);
    svp.r.fill(0);
    svp.pmacRead.fill(0);
    svp.pmacWrite.fill(0);
    svp.emuStatus = 0;
    svp.stack.fill(0);
    svp.iramRom.fill(0);
    svp.dram.fill(0);
    svp.budget = 0;

    svp.rom = rom;
    svp.gr[kSvpBlind] = 0xFFFF0000;
    svp.gr[kSvpPc] = kStart << 16;
    svp.pc = kStart;
    std::copy(rom + kSvpIramWords, rom + kSvpMemoryWords, svp.iramRom.begin() + kSvpIramWords);
}

bool SvpReadWord(const MD_SVP& svp, uint32_t address, uint16_t& value) {
    if (address >> 17 == kDramBlock) {
        value = svp.dram[(address & kDramMask) >> 1];
        return true;
    }
    if (address >> 16 == kNarrowView) {
        value = svp.dram[ViewIndex(address, 62, 0x7000, 6)];
        return true;
    }
    if (address >> 16 == kWideView) {
        value = svp.dram[ViewIndex(address, 30, 0x7800, 5)];
        return true;
    }
    return false;
}

void SvpWriteWord(MD_SVP& svp, uint32_t address, uint16_t value) {
    if (address >> 17 != kDramBlock) {
        return;
    }
    svp.dram[(address & kDramMask) >> 1] = value;
    if (value == 0) {
        return;
    }
    if (address == kFirstMailbox) {
        svp.emuStatus &= ~kSvpWaitsFor30Fe06;
    } else if (address == kSecondMailbox) {
        svp.emuStatus &= ~kSvpWaitsFor30Fe08;
    }
}

void SvpWriteXst(MD_SVP& svp, uint16_t value) {
    svp.gr[kSvpXst] = uint32_t{value} << 16;
    svp.gr[kSvpPm0] |= kSvpPm0SentTo << 16;
    svp.emuStatus &= ~kSvpWaitsForPm0;
}
