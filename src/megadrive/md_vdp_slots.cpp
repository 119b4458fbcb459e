#include "megadrive/md_vdp_private.h"

#include <algorithm>
#include <cstdint>

namespace {

// Stores a word from the bus or the FIFO where the command says. The codes of reads store nothing.
void StoreWord(MD_VDP& vdp, uint32_t code, uint32_t address, uint32_t word) {
    switch (code) {
    case kMdVdpCodeVram: MdVdpStoreVramWord(vdp, address, word); break;
    case kMdVdpCodeCram: vdp.cram[MdVdpEntryOf(address)] = MdVdpPackColour(word); break;
    case kMdVdpCodeVsram: vdp.vsram[MdVdpEntryOf(address)] = static_cast<uint16_t>(word); break;
    default: break;
    }
}

// VRAM takes one byte a slot, so a word, or a byte that is read first, needs two. Returns true at the second.
bool SecondHalf(uint32_t& half) {
    half ^= 1;
    return half == 0;
}

void ServeFifo(MD_VDP& vdp) {
    const MD_VDP_FIFO_ENTRY entry = vdp.fifo[0];
    if (entry.code == kMdVdpCodeVram && !SecondHalf(vdp.vramHalf)) {
        return;
    }
    StoreWord(vdp, entry.code, entry.word >> 16, entry.word & 0xFFFF);
    std::copy(vdp.fifo.begin() + 1, vdp.fifo.end(), vdp.fifo.begin());
    --vdp.fifoCount;
    if (vdp.fifoCount == kMdVdpFifo) {
        *vdp.stall = 0;
    } else if (vdp.fifoCount < kMdVdpFifo) {
        vdp.status &= static_cast<uint16_t>(~kMdVdpFifoFull);
        if (vdp.fifoCount == 0) {
            vdp.status |= kMdVdpFifoEmpty;
        }
    }
}

void EndDma(MD_VDP& vdp) {
    const bool held = vdp.dmaState == kMdVdpDmaBus;
    vdp.dmaState = kMdVdpNoDma;
    vdp.status &= static_cast<uint16_t>(~kMdVdpDmaBusy);
    if (held) {
        *vdp.stall = 0;
    }
    if ((vdp.dmaPending & kMdVdpValid) != 0) {
        const auto word = static_cast<uint16_t>(vdp.dmaPending);
        vdp.dmaPending = 0;
        MdVdpWriteControl(vdp, word);
    }
}

// After each unit. The length registers count down with it.
void EndUnit(MD_VDP& vdp) {
    MdVdpAdvanceAddress(vdp);
    --vdp.dmaLength;
    vdp.regs[kMdVdpRegDmaLengthLow] = static_cast<uint8_t>(vdp.dmaLength);
    vdp.regs[kMdVdpRegDmaLengthHigh] = static_cast<uint8_t>(vdp.dmaLength >> 8);
    if (vdp.dmaLength == 0) {
        EndDma(vdp);
    }
}

void CopyByte(MD_VDP& vdp) {
    if (!SecondHalf(vdp.dmaHalf)) {
        return;
    }
    vdp.vram[vdp.address] = vdp.vram[vdp.dmaSource];
    vdp.dmaSource = (vdp.dmaSource + 1) & 0xFFFF;
    vdp.regs[kMdVdpRegDmaSourceLow] = static_cast<uint8_t>(vdp.dmaSource);
    vdp.regs[kMdVdpRegDmaSourceMiddle] = static_cast<uint8_t>(vdp.dmaSource >> 8);
    EndUnit(vdp);
}

void FillByte(MD_VDP& vdp) {
    vdp.vram[vdp.address] = static_cast<uint8_t>(vdp.dmaFillValue >> 8);
    EndUnit(vdp);
}

void MoveWord(MD_VDP& vdp) {
    if (vdp.dmaCode == kMdVdpCodeVram && !SecondHalf(vdp.dmaHalf)) {
        return;
    }
    const uint32_t word = vdp.dmaRead(vdp.owner, vdp.dmaSource);
    StoreWord(vdp, vdp.dmaCode, vdp.address, word);
    if (vdp.dmaCode == kMdVdpCodeCram) {
        vdp.cramDot = kMdVdpValid | MdVdpPackColour(word);
    }
    // The source wraps within its 128 KiB. The registers hold it in words.
    constexpr uint32_t kSourceWithin = 0x1FFFF;
    constexpr uint32_t kSourceBase = 0xFE0000;
    vdp.dmaSource = ((vdp.dmaSource + 2) & kSourceWithin) | (vdp.dmaBase & kSourceBase);
    vdp.regs[kMdVdpRegDmaSourceLow] = static_cast<uint8_t>(vdp.dmaSource >> 1);
    vdp.regs[kMdVdpRegDmaSourceMiddle] = static_cast<uint8_t>(vdp.dmaSource >> 9);
    vdp.regs[kMdVdpRegDmaSourceHigh] =
        static_cast<uint8_t>(vdp.dmaSource >> 17 & kMdVdpReg23Source);
    EndUnit(vdp);
}

} // namespace

void MdVdpAccessSlot(MD_VDP& vdp) {
    if (vdp.fifoCount != 0) {
        ServeFifo(vdp);
        return;
    }
    switch (vdp.dmaState) {
    case kMdVdpDmaBus: MoveWord(vdp); break;
    case kMdVdpDmaCopy: CopyByte(vdp); break;
    case kMdVdpDmaFill: FillByte(vdp); break;
    default: break;
    }
}
