#include "sega8/vdp.h"

#include "machine/emu_system.h"
#include "sega8/vdp_private.h"

#include <cstddef>

namespace {

// Bits of the registers.
constexpr uint8_t kLineInterruptOn = 0x10;  // register 0
constexpr uint8_t kFrameInterruptOn = 0x20; // register 1

constexpr uint32_t kLinesNtsc = 262;
constexpr uint32_t kLinesPal = 313;

constexpr uint32_t Opaque(uint32_t red, uint32_t green, uint32_t blue) {
    return 0xFF000000U | red << 16 | green << 8 | blue;
}

constexpr uint32_t SixBitColour(uint32_t value) {
    return Opaque((value & 3) * 85, ((value >> 2) & 3) * 85, ((value >> 4) & 3) * 85);
}

// Bits 0-3 red, 4-7 green, 8-11 blue; each a multiple of 16, so white is 0xF0.
constexpr uint32_t TwelveBitColour(uint32_t value) {
    return Opaque((value & 15) * 16, ((value >> 4) & 15) * 16, ((value >> 8) & 15) * 16);
}

void ConvertColour(VDP& vdp, uint32_t entry) {
    if (vdp.variant == kVdpGameGear) {
        const uint32_t pair = (entry & 31) * 2;
        vdp.palette[entry & 31] =
            TwelveBitColour(vdp.cram[pair] | static_cast<uint32_t>(vdp.cram[pair + 1]) << 8);
    } else {
        vdp.palette[entry & 31] = SixBitColour(vdp.cram[entry & 31]);
    }
}

uint32_t HeightOf(const VDP& vdp) {
    const bool tall =
        vdp.variant != kVdpFirst && (vdp.regs[0] & 0x02) != 0 && VdpModeOf(vdp.regs) == 4;
    if (tall && (vdp.regs[1] & 0x08) != 0) {
        return 240;
    }
    return tall && (vdp.regs[1] & 0x10) != 0 ? 224 : 192;
}

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

// The Game Gear keeps the byte at an even address back; the odd one writes both. A second byte alone
// takes the old first one again.
void WriteColour(VDP& vdp, uint8_t value) {
    if (vdp.variant != kVdpGameGear) {
        vdp.cram[vdp.addr & 31] = value;
        ConvertColour(vdp, vdp.addr & 31);
    } else if ((vdp.addr & 1) == 0) {
        vdp.cramLatch = value;
    } else {
        const uint32_t odd = vdp.addr & 63;
        vdp.cram[odd - 1] = vdp.cramLatch;
        vdp.cram[odd] = value;
        ConvertColour(vdp, odd >> 1);
    }
}

// Published: the counter goes down as each line of the picture and the one below it begins, asks for an
// interrupt as it passes 0, and is held at register 10 elsewhere.
void StepLineCounter(VDP& vdp) {
    const bool counts = vdp.line <= vdp.activeHeight;
    if (counts && vdp.lineCounter != 0) {
        --vdp.lineCounter;
    } else {
        vdp.lineInterrupt = vdp.lineInterrupt || counts;
        vdp.lineCounter = vdp.regs[10];
    }
}

} // namespace

void VdpConvertPalette(VDP& vdp) {
    for (uint32_t entry = 0; entry < 32; ++entry) {
        ConvertColour(vdp, entry);
    }
}

void VdpUpdateIrq(VDP& vdp) {
    const bool lineIrq = vdp.lineInterrupt && (vdp.regs[0] & kLineInterruptOn) != 0;
    const bool frameIrq = vdp.frameInterrupt && (vdp.regs[1] & kFrameInterruptOn) != 0;
    *vdp.irqOut = lineIrq || frameIrq ? 1 : 0;
}

// M4 M3 M2 M1 as a number. Odd mixtures show as mode 0, as this chip's table has it.
uint8_t VdpModeOf(const uint8_t* regs) {
    const uint32_t bits = ((regs[0] >> 2U) & 1U) << 3 | ((regs[1] >> 3U) & 1U) << 2 |
                          ((regs[0] >> 1U) & 1U) << 1 | ((regs[1] >> 4U) & 1U);
    constexpr uint8_t kModes[16] = {0, 1, 2, 0, 0, 0, 0, 0, 4, 0, 4, 4, 4, 0, 4, 4};
    return kModes[bits];
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

// What follows from the fields of a state.
void VdpDeriveLine(VDP& vdp) {
    vdp.slotTable = kVdpSlotLists[vdp.slotList].data();
    // Settled: both console chips show modes 0 to 2 in fixed colours, the Game Gear in entries 16-31.
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
    constexpr uint8_t kStart[11] = {0x36, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 0xFF};
    for (size_t i = 0; i < sizeof kStart; ++i) {
        fresh.regs[i] = kStart[i];
    }
    fresh.lineCounter = fresh.regs[10];
    vdp = fresh;
    VdpConvertPalette(vdp); // colour RAM is cleared, so all are black
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
    const bool narrow = (vdp.regs[0] & 0x20) != 0;
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
            vdp.addr = static_cast<uint16_t>((vdp.addr & 0x3F00) | value);
        }
        return;
    }
    vdp.latchFull = false;
    vdp.code = value >> 6;
    vdp.addr = static_cast<uint16_t>((value & 0x3F) << 8 | vdp.latchByte);
    if (vdp.code == 0) {
        RequestAccess(vdp, kVdpRead, 0);
    } else if (vdp.code == 2) {
        vdp.regs[value & 15] = vdp.latchByte;
        VdpDeriveHeight(vdp);
        VdpUpdateIrq(vdp);
    }
}

// Published, open elsewhere: the value goes into the read buffer too.
void VdpDataWrite(VDP& vdp, uint8_t value) {
    vdp.latchFull = false;
    vdp.readBuffer = value;
    if (vdp.code == 3) {
        WriteColour(vdp, value);
        vdp.addr = (vdp.addr + 1) & kVdpVramMask;
    } else {
        RequestAccess(vdp, kVdpWrite, value);
    }
}

// Published: a read gives the buffer and fills it anew, whatever the code.
uint8_t VdpDataRead(VDP& vdp) {
    const uint8_t value = vdp.readBuffer;
    vdp.latchFull = false;
    RequestAccess(vdp, kVdpRead, 0);
    return value;
}

uint8_t VdpStatusRead(VDP& vdp) {
    const uint8_t value = vdp.status | 0x1F;
    vdp.status = 0;
    vdp.lineInterrupt = false;
    vdp.frameInterrupt = false;
    vdp.latchFull = false;
    VdpUpdateIrq(vdp);
    return value;
}

// Published jump tables: the counter repeats six lines of a 262-line frame after the last line of
// the bottom border. The 313-line frame has one formula for all heights here.
uint8_t VdpVCounter(const VDP& vdp) {
    uint32_t last = 0;
    uint32_t back = 0;
    if (vdp.pal) {
        last = 242;
        back = 57;
    } else {
        last = vdp.activeHeight == 192 ? 218 : vdp.activeHeight == 224 ? 234 : 261;
        back = 6;
    }
    return static_cast<uint8_t>(vdp.line <= last ? vdp.line : vdp.line - back);
}

uint8_t VdpLatchH(VDP& vdp) {
    const uint32_t position = (vdp.dotCounter % kVdpStepsPerLine) / 2;
    vdp.hLatch = static_cast<uint8_t>(position > 295 ? (position - 296) / 2 + 233 : position / 2);
    return vdp.hLatch;
}

bool VdpBeam(const VDP& vdp, uint32_t& x, uint32_t& y) {
    x = vdp.dotCounter / 2 - kVdpFirstPixelDot;
    y = vdp.line;
    return x < kVdpPictureWidth && y < vdp.activeHeight;
}

// The V counter, the line counter and the frame flag step together at H counter 0xF4, just before the line
// that they belong to is drawn: a handler reads the line that it was asked for.
void VdpLineEvent(VDP& vdp) {
    if (++vdp.line >= vdp.totalLines) {
        vdp.line = 0;
        vdp.frameDone = true;
    }
    StepLineCounter(vdp);
    if (vdp.line == vdp.activeHeight + 1) {
        vdp.frameInterrupt = true;
        vdp.status |= kVdpStatusFrame;
    }
    VdpUpdateIrq(vdp);
    // The fetch of this line's finds is under way and knows its places; the search begins anew.
    vdp.spriteCount = vdp.foundCount;
    vdp.foundCount = 0;
    vdp.spriteIndex = 0;
    vdp.spriteTested = 0;
    vdp.searchDone = vdp.line + 1 >= vdp.activeHeight && vdp.line + 1 != vdp.totalLines;
}
