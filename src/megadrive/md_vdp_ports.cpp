#include "megadrive/md_vdp_private.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr uint32_t kVInterruptLine = 6;
constexpr uint32_t kHInterruptLine = 4;
constexpr uint32_t kFirstMode5Register = 11; // not there in Master System mode

void RaiseH(MD_VDP& vdp, uint32_t enable) {
    const bool raised = vdp.hPending != 0 && (enable & kMdVdpReg0HInterrupt) != 0;
    vdp.raiseIrq(vdp.owner, kHInterruptLine, raised ? 1 : 0);
}

void RaiseV(MD_VDP& vdp, uint32_t enable) {
    const bool raised = vdp.vPending != 0 && (enable & kMdVdpReg1VInterrupt) != 0;
    vdp.raiseIrq(vdp.owner, kVInterruptLine, raised ? 1 : 0);
}

void StartBusDma(MD_VDP& vdp) {
    const auto& regs = vdp.regs;
    vdp.dmaState = kMdVdpDmaBus;
    vdp.dmaBase = ((regs[23] & 127U) << 16 | uint32_t{regs[22]} << 8 | regs[21]) * 2;
    vdp.dmaSource = vdp.dmaBase;
    if (vdp.svpDmaQuirk != 0 && vdp.dmaSource < 0x400000) {
        vdp.dmaSource = (vdp.dmaSource - 2) & 0xFFFFFF;
    }
    *vdp.stall = 1;
    vdp.status |= kMdVdpDmaBusy;
}

void StartDma(MD_VDP& vdp) {
    const auto& regs = vdp.regs;
    vdp.dmaCode = vdp.code & 15;
    vdp.dmaHalf = 0;
    const uint32_t length = uint32_t{regs[20]} << 8 | regs[19];
    vdp.dmaLength = length != 0 ? length : 0x10000;
    if ((regs[23] & 0x80) == 0) {
        StartBusDma(vdp);
    } else if ((regs[23] & 0x40) == 0) {
        vdp.dmaState = kMdVdpDmaFillArmed;
    } else {
        vdp.dmaState = kMdVdpDmaCopy;
        vdp.dmaSource = uint32_t{regs[22]} << 8 | regs[21];
        vdp.status |= kMdVdpDmaBusy;
    }
}

void WriteSecond(MD_VDP& vdp, uint32_t word) {
    vdp.pendingSecond = 0;
    vdp.addressHigh = (word & 3) << 14;
    vdp.address = (vdp.address & 0x3FFF) | vdp.addressHigh;
    vdp.code = (vdp.code & 3) | (word >> 2 & 60);
    if ((vdp.code & kMdVdpCodeDma) != 0 && (vdp.regs[1] & kMdVdpReg1Dma) != 0) {
        StartDma(vdp);
    }
}

// V counters: the lines count up to `last`, modulo 256, then on from `jump` lower.
struct VCounterRow {
    uint32_t last;
    uint32_t jump;
};

VCounterRow VCounterOf(const MD_VDP& vdp) {
    const bool tall = vdp.activeHeight == 240;
    if (vdp.tvMode == kMdVdp50Hz) {
        return tall ? VCounterRow{266, 57} : VCounterRow{258, 57};
    }
    return tall ? VCounterRow{261, 0} : VCounterRow{234, 6};
}

uint32_t VCounter(const MD_VDP& vdp) {
    const VCounterRow row = VCounterOf(vdp);
    const uint32_t v = (vdp.vCount > row.last ? vdp.vCount - row.jump : vdp.vCount) & 255;
    return vdp.interlace2 != 0 ? (v << 1 | v >> 7) & 255 : v;
}

uint32_t HCounter(const MD_VDP& vdp) {
    const uint32_t h = vdp.hCount >> 1;
    if (vdp.h40 != 0) {
        return h > 182 ? h + 45 : h;
    }
    return h > 147 ? h + 85 : h;
}

} // namespace

void MdVdpWriteRegister(MD_VDP& vdp, uint32_t index, uint8_t value) {
    index &= 31;
    if (index >= kFirstMode5Register && (vdp.regs[1] & kMdVdpReg1AllRegisters) == 0) {
        return;
    }
    const auto changed = static_cast<uint8_t>(vdp.regs[index] ^ value);
    if (index == 0) {
        if ((changed & kMdVdpReg0HInterrupt) != 0) {
            RaiseH(vdp, value);
        }
        RaiseV(vdp, vdp.regs[1]);
    } else if (index == 1) {
        RaiseH(vdp, vdp.regs[0]);
        if ((changed & kMdVdpReg1VInterrupt) != 0) {
            RaiseV(vdp, value);
        }
    }
    vdp.regs[index] = value;
    MdVdpRefreshGeometry(vdp);
    MdVdpRefreshBlanked(vdp);
}

void MdVdpWriteControl(MD_VDP& vdp, uint16_t word) {
    if (vdp.dmaState != kMdVdpNoDma) {
        vdp.dmaPending = kMdVdpValid | word;
        return;
    }
    if (vdp.pendingSecond != 0) {
        WriteSecond(vdp, word);
        return;
    }
    if ((word & 0xC000) == 0x8000) {
        MdVdpWriteRegister(vdp, word >> 8 & 31, static_cast<uint8_t>(word));
    } else {
        vdp.pendingSecond = 1;
    }
    // A register write goes through the same latches, so that it disturbs the address.
    vdp.address = vdp.addressHigh | (word & 0x3FFF);
    vdp.code = (vdp.code & 60) | uint32_t{word} >> 14;
}

void MdVdpWriteData(MD_VDP& vdp, uint16_t word) {
    vdp.pendingSecond = 0;
    const uint32_t place = std::min(vdp.fifoCount, kMdVdpFifoRoom - 1);
    vdp.fifo[place] = {vdp.address << 16 | word, vdp.code & 15};
    vdp.fifoCount = place + 1;
    vdp.status &= static_cast<uint16_t>(~kMdVdpFifoEmpty);
    if (vdp.fifoCount >= kMdVdpFifo) {
        vdp.status |= kMdVdpFifoFull;
    }
    if (vdp.fifoCount > kMdVdpFifo) {
        *vdp.stall = 1;
    }
    vdp.address = (vdp.address + vdp.regs[15]) & 0xFFFF;
    if (vdp.dmaState == kMdVdpDmaFillArmed) {
        vdp.status |= kMdVdpDmaBusy;
        vdp.dmaState = kMdVdpDmaFill;
        vdp.dmaFillValue = word;
    }
}

uint16_t MdVdpReadData(MD_VDP& vdp) {
    vdp.pendingSecond = 0;
    uint32_t word = 0;
    switch (vdp.code & 15) {
    case kMdVdpCodeReadVram: word = MdVdpVramWord(vdp, vdp.address); break;
    case kMdVdpCodeReadVsram: word = vdp.vsram[vdp.address >> 1 & 63]; break;
    case kMdVdpCodeReadCram: word = MdVdpSpreadColour(vdp.cram[vdp.address >> 1 & 63]); break;
    default: break;
    }
    vdp.address = (vdp.address + vdp.regs[15]) & 0xFFFF;
    return static_cast<uint16_t>(word);
}

uint16_t MdVdpReadStatus(MD_VDP& vdp) {
    vdp.pendingSecond = 0;
    uint32_t status = vdp.status & 1023U;
    if (vdp.interlace2 != 0 && vdp.field != 0) {
        status |= kMdVdpOddField;
    }
    vdp.status &= static_cast<uint16_t>(~(kMdVdpCollision | kMdVdpOverflow));
    if (!MdVdpDisplayOn(vdp)) {
        status |= kMdVdpVBlank;
    }
    if (vdp.tvMode == kMdVdp50Hz) {
        status |= kMdVdpPal;
    }
    return static_cast<uint16_t>(status);
}

uint16_t MdVdpReadHV(const MD_VDP& vdp) {
    return static_cast<uint16_t>(VCounter(vdp) << 8 | HCounter(vdp));
}
