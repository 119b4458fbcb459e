#include "sega8/vdp.h"

#include "machine/emu_system.h"
#include "sega8/vdp_private.h"

#include <cstddef>

namespace {

constexpr uint32_t kLinesNtsc = 262;
constexpr uint32_t kLinesPal = 313;

// Bits 0-3 red, 4-7 green, 8-11 blue. Settled: steps of 16, so white is 0xF0 in each.
constexpr uint32_t TwelveBitPixel(uint32_t value) {
    return VdpPixel((value & 15) * 16, ((value >> 4) & 15) * 16, ((value >> 8) & 15) * 16);
}

void ConvertColour(VDP& vdp, uint32_t entry) {
    if (vdp.variant == kVdpGameGear) {
        const uint32_t pair = (entry & kVdpEntryMask) * 2;
        vdp.palette[entry & kVdpEntryMask] =
            TwelveBitPixel(vdp.cram[pair] | static_cast<uint32_t>(vdp.cram[pair + 1]) << 8);
    } else {
        vdp.palette[entry & kVdpEntryMask] = VdpSixBitPixel(vdp.cram[entry & kVdpEntryMask]);
    }
}

uint32_t HeightOf(const VDP& vdp) {
    const bool tall =
        vdp.variant != kVdpFirst && (vdp.regs[0] & kVdpReg0M2) != 0 && VdpModeOf(vdp.regs) == 4;
    if (tall && (vdp.regs[1] & kVdpReg1M3) != 0) {
        return 240; // settled: with M1 too, where the chip is said to stay at 192
    }
    return tall && (vdp.regs[1] & kVdpReg1M1) != 0 ? 224 : 192;
}

// Rows of border above and below. The chip draws more; pictures are cut to 224 or 240 rows.
uint32_t BorderOf(bool pal, uint32_t height) {
    if (pal) {
        return (240 - height) / 2;
    }
    return height == 192 ? 16 : 0;
}

void RequestAccess(VDP& vdp, VdpAccess access, uint8_t value) {
    vdp.pendingAccess = access;
    vdp.pendingCount = 0;
    vdp.pendingAddress = vdp.addr;
    vdp.pendingValue = value;
    vdp.addr = (vdp.addr + 1) & kVdpVramMask;
}

// On the Game Gear a write to an even address only fills the latch; a write to an odd address
// stores the latch and the byte as a pair. Another odd write uses the same latch again.
void WriteColour(VDP& vdp, uint8_t value) {
    if (vdp.variant != kVdpGameGear) {
        vdp.cram[vdp.addr & kVdpEntryMask] = value;
        ConvertColour(vdp, vdp.addr & kVdpEntryMask);
    } else if ((vdp.addr & 1) == 0) {
        vdp.cramLatch = value;
    } else {
        const uint32_t odd = vdp.addr & kVdpPairByteMask;
        vdp.cram[odd - 1] = vdp.cramLatch;
        vdp.cram[odd] = value;
        ConvertColour(vdp, odd >> 1);
    }
}

// Published: the counter steps down on every line of the picture and on the line below it. Below 0
// it reloads and requests an interrupt. On all other lines it reloads.
void CountLine(VDP& vdp) {
    const bool counts = vdp.line <= vdp.activeHeight;
    if (counts && vdp.lineCounter != 0) {
        --vdp.lineCounter;
    } else {
        vdp.lineInterrupt = vdp.lineInterrupt || counts;
        vdp.lineCounter = vdp.regs[kVdpLineInterval];
    }
}

// Published: the eight-bit V counter follows the line number and jumps back once a frame, after
// line `last` (C. MacDonald, Sega Master System VDP documentation, V counter values).
struct V_COUNTER_JUMP {
    uint32_t last; // last line before the jump
    uint32_t back; // lines that are counted twice
};

constexpr V_COUNTER_JUMP VCounterJump(bool pal, uint32_t height) {
    if (pal) {
        return {242, 57}; // 00-F2, BA-FF. Settled: at 224 and 240 lines too
    }
    switch (height) {
    case 192: return {218, 6}; // 00-DA, D5-FF
    case 224: return {234, 6}; // 00-EA, E5-FF
    default: return {261, 0};  // 00-FF, 00-05: no jump, only the wrap at 256
    }
}

// Published: the H counter steps every two dots, 00-93 and then E9-FF; it jumps within the blank.
constexpr uint32_t kHCounterJumpDot = 296;
constexpr uint32_t kHCounterAfterJump = 0xE9;

constexpr uint8_t HCounterAt(uint32_t dot) {
    return static_cast<uint8_t>(
        dot < kHCounterJumpDot ? dot / 2 : (dot - kHCounterJumpDot) / 2 + kHCounterAfterJump);
}

static_assert(HCounterAt(kHCounterJumpDot - 1) == 0x93);
static_assert(HCounterAt(kVdpEventDot) == 0xF4);
static_assert(HCounterAt(kVdpDots - 1) == 0xFF);

} // namespace

void VdpConvertPalette(VDP& vdp) {
    for (uint32_t entry = 0; entry < 32; ++entry) {
        ConvertColour(vdp, entry);
    }
}

void VdpUpdateIrq(VDP& vdp) {
    const bool lineIrq = vdp.lineInterrupt && (vdp.regs[0] & kVdpReg0LineInterrupt) != 0;
    const bool frameIrq = vdp.frameInterrupt && (vdp.regs[1] & kVdpReg1FrameInterrupt) != 0;
    *vdp.irqOut = lineIrq || frameIrq ? 1 : 0;
}

uint8_t VdpModeOf(const uint8_t* regs) {
    const uint32_t m4 = (regs[0] & kVdpReg0M4) != 0 ? 8 : 0;
    const uint32_t m3 = (regs[1] & kVdpReg1M3) != 0 ? 4 : 0;
    const uint32_t m2 = (regs[0] & kVdpReg0M2) != 0 ? 2 : 0;
    const uint32_t m1 = (regs[1] & kVdpReg1M1) != 0 ? 1 : 0;
    // By M4 M3 M2 M1. Settled: multicolour and the mixed modes show as mode 0.
    constexpr uint8_t kModes[16] = {0, 1, 2, 0, 0, 0, 0, 0, 4, 0, 4, 4, 4, 0, 4, 4};
    return kModes[m4 | m3 | m2 | m1];
}

void VdpDeriveHeight(VDP& vdp) {
    vdp.activeHeight = HeightOf(vdp);
    vdp.border = BorderOf(vdp.pal, vdp.activeHeight);
    vdp.pictureHeight = vdp.activeHeight + 2 * vdp.border;
}

bool VdpLineIsActive(const VDP& vdp) {
    return vdp.line < vdp.activeHeight || vdp.line >= vdp.totalLines;
}

void VdpDeriveSlotList(VDP& vdp) {
    const bool active = vdp.displayEnabled && VdpLineIsActive(vdp);
    const uint32_t first = vdp.mode == 4 ? kVdpMode4Active : kVdpLegacyActive;
    vdp.slotList = static_cast<uint8_t>(active ? first : first + 1);
}

void VdpDeriveLine(VDP& vdp) {
    vdp.slotTable = kVdpSlotLists[vdp.slotList].data();
    // Published: the Master System chips show modes 0 to 2 in fixed colours, the Game Gear in
    // entries 16-31.
    vdp.fixedColours = vdp.mode != 4 && vdp.variant != kVdpGameGear;
    const bool drawn = vdp.pixels != nullptr && vdp.outputRow != kVdpNoRow;
    vdp.row = drawn ? vdp.pixels + size_t{vdp.outputRow} * vdp.rowLength : nullptr;
}

void VdpInit(VDP& vdp, uint32_t* irqOut, uint32_t* nmiOut, bool pal, uint32_t variant) {
    uint8_t* const vram = vdp.vram;
    vdp = VDP{};
    vdp.vram = vram;
    vdp.irqOut = irqOut;
    vdp.nmiOut = nmiOut;
    vdp.pal = pal;
    vdp.variant = variant;
    vdp.totalLines = pal ? kLinesPal : kLinesNtsc;
    VdpConvertPalette(vdp);
    VdpDeriveHeight(vdp);
    VdpDeriveSlotList(vdp);
    VdpDeriveLine(vdp);
}

void VdpReset(VDP& vdp) {
    VDP fresh;
    fresh.vram = vdp.vram;
    fresh.irqOut = vdp.irqOut;
    fresh.nmiOut = vdp.nmiOut;
    fresh.pal = vdp.pal;
    fresh.variant = vdp.variant;
    fresh.totalLines = vdp.totalLines;
    fresh.secondChip = vdp.secondChip;
    fresh.pausePressed = vdp.pausePressed;
    fresh.pauseSeen = vdp.pauseSeen;
    fresh.pixels = vdp.pixels;
    fresh.rowLength = vdp.rowLength;
    // Mode 4, both interrupts on, display off; the usual tables, no scroll.
    constexpr uint8_t kStart[11] = {0x36, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 0xFF};
    for (size_t i = 0; i < sizeof kStart; ++i) {
        fresh.regs[i] = kStart[i];
    }
    fresh.lineCounter = fresh.regs[kVdpLineInterval];
    vdp = fresh;
    VdpConvertPalette(vdp); // all black, as colour RAM is cleared
    VdpDeriveHeight(vdp);
    VdpDeriveSlotList(vdp);
    VdpDeriveLine(vdp);
    VdpUpdateIrq(vdp);
}

void VdpBeginFrame(VDP& vdp, uint32_t* pixels, uint32_t rowLength) {
    vdp.pixels = pixels;
    vdp.rowLength = rowLength;
    vdp.frameDone = false;
    VdpDeriveLine(vdp);
}

void VdpFinishFrame(const VDP& vdp, EMU_VIDEO_FRAME* video) {
    const float width = vdp.pal ? 352.0F : 288.0F;
    const bool narrow = (vdp.regs[0] & kVdpReg0BlankLeft) != 0;
    video->width = kVdpPictureWidth;
    video->height = vdp.pictureHeight;
    video->visibleX = narrow ? 8 : 0;
    video->visibleWidth = kVdpPictureWidth - video->visibleX;
    video->visibleY = vdp.border;
    video->visibleHeight = vdp.activeHeight;
    video->aspect = width / static_cast<float>(vdp.pictureHeight);
    video->visibleAspect = width / static_cast<float>(vdp.activeHeight);
}

void VdpControlWrite(VDP& vdp, uint8_t value) {
    if (!vdp.latchFull) {
        vdp.latchByte = value;
        vdp.latchFull = true;
        if (vdp.variant != kVdpFirst) {
            vdp.addr = static_cast<uint16_t>((vdp.addr & kVdpControlAddress << 8) | value);
        }
        return;
    }
    vdp.latchFull = false;
    vdp.code = value >> kVdpControlCodeShift;
    vdp.addr = static_cast<uint16_t>((value & kVdpControlAddress) << 8 | vdp.latchByte);
    if (vdp.code == kVdpCodeRead) {
        RequestAccess(vdp, kVdpRead, 0);
    } else if (vdp.code == kVdpCodeRegister) {
        vdp.regs[value & kVdpControlRegister] = vdp.latchByte;
        VdpDeriveHeight(vdp);
        VdpUpdateIrq(vdp);
    }
}

// Published: the value also goes to the read buffer.
void VdpDataWrite(VDP& vdp, uint8_t value) {
    vdp.latchFull = false;
    vdp.readBuffer = value;
    if (vdp.code == kVdpCodeColour) {
        WriteColour(vdp, value);
        vdp.addr = (vdp.addr + 1) & kVdpVramMask;
    } else {
        RequestAccess(vdp, kVdpWrite, value);
    }
}

// Published: a read returns the buffer and refills it, with any code.
uint8_t VdpDataRead(VDP& vdp) {
    const uint8_t value = vdp.readBuffer;
    vdp.latchFull = false;
    RequestAccess(vdp, kVdpRead, 0);
    return value;
}

bool VdpStatusReadIsIdle(const VDP& vdp) {
    return vdp.status == 0 && !vdp.lineInterrupt && !vdp.frameInterrupt && !vdp.latchFull &&
           *vdp.irqOut == 0;
}

uint8_t VdpStatusRead(VDP& vdp) {
    const uint8_t value = vdp.status | kVdpStatusUnused;
    vdp.status = 0;
    vdp.lineInterrupt = false;
    vdp.frameInterrupt = false;
    vdp.latchFull = false;
    VdpUpdateIrq(vdp);
    return value;
}

uint8_t VdpVCounter(const VDP& vdp) {
    const V_COUNTER_JUMP jump = VCounterJump(vdp.pal, vdp.activeHeight);
    return static_cast<uint8_t>(vdp.line <= jump.last ? vdp.line : vdp.line - jump.back);
}

uint8_t VdpLatchH(VDP& vdp) {
    vdp.hLatch = HCounterAt((vdp.dotCounter % kVdpTicksPerLine) / 2);
    return vdp.hLatch;
}

bool VdpBeam(const VDP& vdp, uint32_t& x, uint32_t& y) {
    x = vdp.dotCounter / 2 - kVdpFirstPixelDot;
    y = vdp.line;
    return x < kVdpPictureWidth && y < vdp.activeHeight;
}

// V counter, line counter and frame flag step together at H counter 0xF4, just before their line is
// drawn, so an interrupt handler reads the number of the line that requested it.
void VdpLineEvent(VDP& vdp) {
    if (++vdp.line >= vdp.totalLines) {
        vdp.line = 0;
        vdp.frameDone = true;
    }
    CountLine(vdp);
    if (vdp.line == vdp.activeHeight + 1) {
        vdp.frameInterrupt = true;
        vdp.status |= kVdpStatusFrame;
    }
    VdpUpdateIrq(vdp);
    // The sprites found for this line are being fetched by now; the search for the next line
    // starts.
    vdp.spriteCount = vdp.foundCount;
    vdp.foundCount = 0;
    vdp.spriteIndex = 0;
    vdp.spriteTested = 0;
    vdp.searchDone = vdp.line + 1 >= vdp.activeHeight && vdp.line + 1 != vdp.totalLines;
}
