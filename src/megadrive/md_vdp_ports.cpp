#include "megadrive/md_vdp_private.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr uint32_t kVInterruptLine = 6;
constexpr uint32_t kHInterruptLine = 4;
constexpr uint32_t kFirstMode5Register = 11; // missing in Master System mode
constexpr uint32_t kRegisterNumbers = 0x1F;
constexpr uint32_t kDmaFullLength = 0x10000; // a length of 0
constexpr uint32_t kRomEnd = 0x400000;       // of the cartridge with the signal processor
constexpr uint32_t kBusAddresses = 0xFFFFFF;

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
    vdp.dmaBase = ((uint32_t{regs[kMdVdpRegDmaSourceHigh]} & kMdVdpReg23Source) << 16 |
                   uint32_t{regs[kMdVdpRegDmaSourceMiddle]} << 8 | regs[kMdVdpRegDmaSourceLow]) *
                  2;
    vdp.dmaSource = vdp.dmaBase;
    if (vdp.svpDmaQuirk != 0 && vdp.dmaSource < kRomEnd) {
        vdp.dmaSource = (vdp.dmaSource - 2) & kBusAddresses;
    }
    *vdp.stall = 1;
    vdp.status |= kMdVdpDmaBusy;
}

void StartDma(MD_VDP& vdp) {
    const auto& regs = vdp.regs;
    vdp.dmaCode = vdp.code & kMdVdpCodeTarget;
    vdp.dmaHalf = 0;
    const uint32_t length =
        uint32_t{regs[kMdVdpRegDmaLengthHigh]} << 8 | regs[kMdVdpRegDmaLengthLow];
    vdp.dmaLength = length != 0 ? length : kDmaFullLength;
    const uint32_t kind = regs[kMdVdpRegDmaSourceHigh];
    if ((kind & kMdVdpReg23NotBus) == 0) {
        StartBusDma(vdp);
    } else if ((kind & kMdVdpReg23Copy) == 0) {
        vdp.dmaState = kMdVdpDmaFillArmed;
    } else {
        vdp.dmaState = kMdVdpDmaCopy;
        vdp.dmaSource = uint32_t{regs[kMdVdpRegDmaSourceMiddle]} << 8 | regs[kMdVdpRegDmaSourceLow];
        vdp.status |= kMdVdpDmaBusy;
    }
}

void WriteSecond(MD_VDP& vdp, uint32_t word) {
    vdp.pendingSecond = 0;
    vdp.addressHigh = (word & kMdVdpControlAddressHigh) << 14;
    vdp.address = (vdp.address & kMdVdpControlAddressLow) | vdp.addressHigh;
    vdp.code = (vdp.code & kMdVdpCodeLowBits) | (word >> 2 & kMdVdpCodeHighBits);
    if ((vdp.code & kMdVdpCodeDma) != 0 && (vdp.regs[kMdVdpRegMode2] & kMdVdpReg1Dma) != 0) {
        StartDma(vdp);
    }
}

// Both counters have eight bits, too few for a whole frame or line. They count up to `last`,
// then jump so far that they end at 0xFF; only the tall picture at 60 Hz counts through. The values are those
// of C. MacDonald, "Sega Genesis VDP documentation".
struct CounterJump {
    uint32_t last;
    int32_t jump;
};
constexpr CounterJump kVCounter60Hz{234, -6};      // 00 to EA, E5 to FF
constexpr CounterJump kVCounter60HzTall{261, 0};   // 00 to FF, 00 to 05
constexpr CounterJump kVCounter50Hz{258, -57};     // 00 to FF, 00 to 02, CA to FF
constexpr CounterJump kVCounter50HzTall{266, -57}; // 00 to FF, 00 to 0A, D2 to FF
constexpr CounterJump kHCounterH32{147, 85};       // 00 to 93, E9 to FF
constexpr CounterJump kHCounterH40{182, 45};       // 00 to B6, E4 to FF

uint32_t Counter(uint32_t count, const CounterJump& row) {
    const uint32_t jump = count > row.last ? static_cast<uint32_t>(row.jump) : 0;
    return (count + jump) & 0xFF;
}

uint32_t VCounter(const MD_VDP& vdp) {
    const bool tall = vdp.activeHeight == 240;
    const CounterJump& row = vdp.tvMode == kMdVdp50Hz ? (tall ? kVCounter50HzTall : kVCounter50Hz)
                                                      : (tall ? kVCounter60HzTall : kVCounter60Hz);
    const uint32_t v = Counter(vdp.vCount, row);
    // In double interlace the counter is shifted left, and its top bit shows in bit 0.
    return vdp.interlace2 != 0 ? (v << 1 | v >> 7) & 0xFF : v;
}

uint32_t HCounter(const MD_VDP& vdp) {
    return Counter(vdp.hCount >> 1, vdp.h40 != 0 ? kHCounterH40 : kHCounterH32);
}

} // namespace

void MdVdpWriteRegister(MD_VDP& vdp, uint32_t index, uint8_t value) {
    index &= kRegisterNumbers;
    const uint8_t mode2 = vdp.regs[kMdVdpRegMode2];
    if (index >= kFirstMode5Register && (mode2 & kMdVdpReg1AllRegisters) == 0) {
        return;
    }
    const auto changed = static_cast<uint8_t>(vdp.regs[index] ^ value);
    if (index == kMdVdpRegMode1) {
        if ((changed & kMdVdpReg0HInterrupt) != 0) {
            RaiseH(vdp, value);
        }
        RaiseV(vdp, mode2);
    } else if (index == kMdVdpRegMode2) {
        RaiseH(vdp, vdp.regs[kMdVdpRegMode1]);
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
    if ((word & kMdVdpControlKind) == kMdVdpControlRegister) {
        MdVdpWriteRegister(vdp, word >> 8, static_cast<uint8_t>(word));
    } else {
        vdp.pendingSecond = 1;
    }
    // A register write passes through the same latches, so it changes address and code too.
    vdp.address = vdp.addressHigh | (word & kMdVdpControlAddressLow);
    vdp.code = (vdp.code & kMdVdpCodeHighBits) | uint32_t{word} >> 14;
}

void MdVdpWriteData(MD_VDP& vdp, uint16_t word) {
    vdp.pendingSecond = 0;
    const uint32_t place = std::min(vdp.fifoCount, kMdVdpFifoRoom - 1);
    vdp.fifo[place] = {vdp.address << 16 | word, vdp.code & kMdVdpCodeTarget};
    vdp.fifoCount = place + 1;
    vdp.status &= static_cast<uint16_t>(~kMdVdpFifoEmpty);
    if (vdp.fifoCount >= kMdVdpFifo) {
        vdp.status |= kMdVdpFifoFull;
    }
    if (vdp.fifoCount > kMdVdpFifo) {
        *vdp.stall = 1;
    }
    MdVdpAdvanceAddress(vdp);
    if (vdp.dmaState == kMdVdpDmaFillArmed) {
        vdp.status |= kMdVdpDmaBusy;
        vdp.dmaState = kMdVdpDmaFill;
        vdp.dmaFillValue = word;
    }
}

uint16_t MdVdpReadData(MD_VDP& vdp) {
    vdp.pendingSecond = 0;
    uint32_t word = 0;
    switch (vdp.code & kMdVdpCodeTarget) {
    case kMdVdpCodeReadVram: word = MdVdpVramWord(vdp, vdp.address); break;
    case kMdVdpCodeReadVsram: word = vdp.vsram[MdVdpEntryOf(vdp.address)]; break;
    case kMdVdpCodeReadCram: word = MdVdpSpreadColour(vdp.cram[MdVdpEntryOf(vdp.address)]); break;
    default: break;
    }
    MdVdpAdvanceAddress(vdp);
    return static_cast<uint16_t>(word);
}

uint16_t MdVdpReadStatus(MD_VDP& vdp) {
    vdp.pendingSecond = 0;
    uint32_t status = vdp.status & kMdVdpStatusBits;
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
