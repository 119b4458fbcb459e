#include "megadrive/md_vdp.h"

#include "machine/emu_system.h"
#include "megadrive/md_vdp_colours.h"
#include "megadrive/md_vdp_private.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace {

constexpr uint32_t kVInterruptLine = 6;
constexpr uint32_t kHInterruptLine = 4;
constexpr uint32_t kSpriteBudgetH32 = 224; // words of VRAM
constexpr uint32_t kSpriteBudgetH40 = 280;
constexpr uint8_t kDark = 0x20; // each byte of a dark scan line

// A plane size in cells by two bits of register 16; 2 is no size and gives the smallest.
constexpr uint32_t kPlaneSizes[4] = {32, 64, 32, 128};

const uint32_t* ColourTables() {
    static const auto kTables = MdVdpBuildColourTables();
    return kTables.data();
}

// The two words of the scroll table that are this line's, as what is added to a column.
void ReadHScroll(MD_VDP& vdp) {
    uint32_t offset = 0;
    switch (vdp.regs[11] & 3) {
    case 1: offset = (vdp.line & 7) * 4; break;
    case 2: offset = (vdp.line * 4) & ~31U; break;
    case 3: offset = vdp.line * 4; break;
    default: break;
    }
    const uint32_t table = vdp.hscrollBase + offset;
    vdp.hScrollA = (0U - MdVdpVramWord(vdp, table)) & 1023;
    vdp.hScrollB = (0U - MdVdpVramWord(vdp, table + 2)) & 1023;
}

// The picture row of a line when the picture has `active` lines between its borders and the frame has
// `total`: the border above is the end of the frame before.
uint32_t RowOf(uint32_t line, uint32_t active, uint32_t total, uint32_t border) {
    if (line < active + border) {
        return border + line;
    }
    return line >= total - border ? line - (total - border) : kMdVdpNoRow;
}

void TargetRow(MD_VDP& vdp) {
    vdp.rowOffset = kMdVdpNoRow;
    if (vdp.pixels != nullptr) {
        const bool doubled = vdp.interlace2 != 0 && vdp.h40 != 0;
        const uint32_t scale = doubled ? 2 : 1;
        const uint32_t row =
            RowOf(vdp.line * scale, vdp.activeHeight * scale, vdp.totalLines * scale, vdp.border);
        const uint32_t field = doubled ? vdp.field : 0;
        // 240 lines doubled are more than the picture has room for.
        if (row != kMdVdpNoRow && row + field < kMdVdpRows) {
            vdp.rowOffset = (row + field) * (vdp.h40 != 0 ? kMdVdpWidth : 256);
            if (doubled && row >= field) {
                std::memset(vdp.pixels + size_t{row - field} * kMdVdpWidth, kDark,
                            kMdVdpWidth * sizeof(uint32_t));
            }
        }
    }
    MdVdpRefreshPointers(vdp);
}

void VInterrupt(MD_VDP& vdp) {
    *vdp.zIntLine = 0;
    if (vdp.vCount != vdp.activeHeight) {
        return;
    }
    vdp.vPending = 1;
    if ((vdp.regs[1] & kMdVdpReg1VInterrupt) != 0) {
        vdp.raiseIrq(vdp.owner, kVInterruptLine, 1);
    }
    *vdp.zIntLine = 1;
}

void StepVCount(MD_VDP& vdp) {
    ++vdp.vCount;
    if (vdp.vCount >= vdp.totalLines) {
        vdp.vCount = 0;
        vdp.status &= static_cast<uint16_t>(~kMdVdpVBlank);
    }
    if (vdp.vCount == vdp.activeHeight) {
        vdp.status |= kMdVdpVBlank;
    }
}

void BeginHBlank(MD_VDP& vdp) {
    vdp.status |= kMdVdpHBlank;
    if (vdp.vCount > vdp.activeHeight) {
        vdp.hCounter = vdp.regs[10];
        return;
    }
    if (--vdp.hCounter < 0) {
        vdp.hPending = 1;
        vdp.hCounter = vdp.regs[10];
        if ((vdp.regs[0] & kMdVdpReg0HInterrupt) != 0) {
            vdp.raiseIrq(vdp.owner, kHInterruptLine, 1);
        }
    }
}

void EndLine(MD_VDP& vdp) {
    vdp.layerCode.fill(0);
    vdp.shadowOp.fill(0);
    vdp.lineFlags.fill(0);
    vdp.spriteLine.fill(0);
    vdp.spriteDots.fill(0);
    const bool ranOut = (vdp.walk.flags & kMdVdpWalkDotsRanOut) != 0;
    vdp.walk = {};
    vdp.walk.flags = ranOut ? kMdVdpWalkLastLineRanOut : 0;
    MdVdpFetchSprites(vdp, vdp.h40 != 0 ? kSpriteBudgetH40 : kSpriteBudgetH32);
    ++vdp.line;
    vdp.vsramLine = vdp.vsram;
    if (vdp.line >= vdp.totalLines) {
        vdp.line = 0;
        vdp.frameDone = 1;
        vdp.field ^= 1;
        vdp.activeHeight = (vdp.regs[1] & kMdVdpReg1Tall) != 0 ? 240 : 224;
    }
    if (vdp.vCount == vdp.activeHeight) {
        vdp.status |= kMdVdpVInterruptOccurred;
    }
    MdVdpRefreshBlanked(vdp);
}

void Wrap(MD_VDP& vdp) {
    vdp.h40 = vdp.regs[12] & 1;
    vdp.hCount = 0;
    MdVdpRefreshPointers(vdp);
}

void StartLine(MD_VDP& vdp) {
    vdp.outX = 0;
    vdp.backdropX = 0;
    vdp.tileColumn = 0;
    vdp.cramDot = 0;
    MdVdpStartLine(vdp);
}

} // namespace

void MdVdpInit(MD_VDP& vdp, void* owner, MdVdpRaiseIrq raiseIrq, MdVdpDmaRead dmaRead,
               uint32_t* zIntLine, uint32_t* stall, uint32_t tvMode) {
    vdp = MD_VDP{};
    vdp.owner = owner;
    vdp.raiseIrq = raiseIrq;
    vdp.dmaRead = dmaRead;
    vdp.zIntLine = zIntLine;
    vdp.stall = stall;
    vdp.tvMode = tvMode;
    MdVdpReset(vdp);
}

void MdVdpReset(MD_VDP& vdp) {
    const auto [owner, raiseIrq, dmaRead] = std::tuple(vdp.owner, vdp.raiseIrq, vdp.dmaRead);
    const auto [zIntLine, stall, pixels] = std::tuple(vdp.zIntLine, vdp.stall, vdp.pixels);
    const auto [tvMode, quirk] = std::tuple(vdp.tvMode, vdp.svpDmaQuirk);
    vdp = MD_VDP{};
    vdp.owner = owner;
    vdp.raiseIrq = raiseIrq;
    vdp.dmaRead = dmaRead;
    vdp.zIntLine = zIntLine;
    vdp.stall = stall;
    vdp.pixels = pixels;
    vdp.tvMode = tvMode;
    vdp.totalLines = tvMode == kMdVdp50Hz ? 313 : 262;
    vdp.svpDmaQuirk = quirk;
    vdp.rowOffset = kMdVdpNoRow;
    vdp.colourTables = ColourTables();
    vdp.layerBuffers = {vdp.backdropLine.data(), vdp.planeBLine.data(), vdp.planeALine.data(),
                        vdp.windowLine.data(),   vdp.spriteLine.data(), vdp.planeBLine.data(),
                        vdp.planeALine.data(),   vdp.windowLine.data(), vdp.spriteLine.data()};
    *zIntLine = 0;
    *stall = 0;
    vdp.status = kMdVdpFifoEmpty;
    vdp.activeHeight = 224;
    MdVdpRefreshPointers(vdp);
    MdVdpWriteRegister(vdp, 1, kMdVdpReg1AllRegisters);
    MdVdpWriteRegister(vdp, 10, 255);
    // 40 cells from the first wrap on; the geometry follows with the first register written.
    vdp.regs[12] = 0x81;
    vdp.regs[15] = 2;
}

void MdVdpRefreshGeometry(MD_VDP& vdp) {
    const auto& regs = vdp.regs;
    const bool cells40 = (regs[12] & 1) != 0;
    vdp.planeWidth = kPlaneSizes[regs[16] & 3];
    vdp.planeHeight = kPlaneSizes[regs[16] >> 4 & 3];
    vdp.windowWidth = (regs[12] & 0x81) != 0 ? 64 : 32;
    vdp.shadowMode = regs[12] >> 3 & 1;
    vdp.interlace2 = (regs[12] & 6) == 6 ? 1 : 0;
    const uint32_t rows = vdp.tvMode == kMdVdp50Hz ? 256 : 240;
    vdp.border = vdp.interlace2 != 0 ? 8 : (rows - vdp.activeHeight) / 2;
    vdp.planeABase = (regs[2] & 0x38U) << 10;
    vdp.planeBBase = (regs[4] & 7U) << 13;
    vdp.windowBase = (regs[3] & 0x3EU) << 10 & (cells40 ? 0xF000U : 0xFFFFU);
    vdp.hscrollBase = (regs[13] & 0x3FU) << 10;
    vdp.spriteBase = uint32_t{regs[5]} << 9 & (cells40 ? 0xFC00U : 0xFE00U);
}

void MdVdpRefreshBlanked(MD_VDP& vdp) {
    vdp.blanked = !MdVdpDisplayOn(vdp) || vdp.line >= vdp.activeHeight ? 1 : 0;
}

void MdVdpRefreshPointers(MD_VDP& vdp) {
    const bool h40 = vdp.h40 != 0;
    vdp.stepTable = h40 ? kMdVdpLengthsH40.data() : kMdVdpLengthsH32.data();
    const bool hasRow = vdp.pixels != nullptr && vdp.rowOffset != kMdVdpNoRow;
    vdp.rowOut = hasRow ? vdp.pixels + vdp.rowOffset : nullptr;
}

void MdVdpBeginFrame(MD_VDP& vdp, uint32_t* pixels) {
    vdp.pixels = pixels;
    vdp.frameDone = 0;
    MdVdpRefreshPointers(vdp);
}

void MdVdpFinishFrame(const MD_VDP& vdp, EMU_VIDEO_FRAME* video) {
    const bool doubled = vdp.interlace2 != 0;
    const uint32_t active = vdp.activeHeight;
    const uint32_t height = doubled ? 2 * (active + vdp.border) : active + 2 * vdp.border;
    video->width = vdp.h40 != 0 ? kMdVdpWidth : 256;
    video->height = std::min(height, kMdVdpRows);
    video->aspect = 1.33F;
    video->visibleX = 0;
    video->visibleY = vdp.border;
    video->visibleWidth = video->width;
    video->visibleHeight = std::min(doubled ? 2 * active : active, video->height - vdp.border);
    video->visibleAspect = 1.4F;
}

void MdVdpAct(MD_VDP& vdp, uint32_t action, bool blanked) {
    const uint32_t slot = blanked ? kMdVdpBlankedSlot : kMdVdpDisplaySlot;
    if ((action & slot) != 0) {
        MdVdpAccessSlot(vdp);
    }
    switch (action & kMdVdpEventBits) {
    case kMdVdpFetch:
        if (vdp.line < vdp.activeHeight) {
            MdVdpFetchCells(vdp);
        }
        break;
    case kMdVdpHBlankEnd:
        vdp.status &= static_cast<uint16_t>(~kMdVdpHBlank);
        ReadHScroll(vdp);
        break;
    case kMdVdpLineStart: StartLine(vdp); break;
    case kMdVdpTargetRow: TargetRow(vdp); break;
    case kMdVdpVInterrupt: VInterrupt(vdp); break;
    case kMdVdpVCountStep: StepVCount(vdp); break;
    case kMdVdpHBlankBegin: BeginHBlank(vdp); break;
    case kMdVdpLineEnd: EndLine(vdp); break;
    case kMdVdpWrap: Wrap(vdp); break;
    default: break;
    }
}
