#include "megadrive/md_vdp.h"

#include "machine/emu_system.h"
#include "megadrive/md_vdp_colours.h"
#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_wide.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace {

constexpr uint32_t kVInterruptLine = 6;
constexpr uint32_t kHInterruptLine = 4;
constexpr uint32_t kSpriteBudgetH32 = 224; // words of VRAM a line
constexpr uint32_t kSpriteBudgetH40 = 280;
constexpr uint8_t kDark = 0x20; // each byte of a dark scan line
constexpr uint32_t kNormalHeight = 224;
constexpr uint32_t kTallHeight = 240;

// Plane sizes in cells, by two bits of register 16. The value 2 is invalid and selects the smallest.
constexpr uint32_t kPlaneSizes[4] = {32, 64, 32, 128};
constexpr uint32_t kPlaneSizeBits = 0x03;
constexpr uint32_t kPlaneHeightShift = 4;

// Base addresses: the bits of the register and how far they move up. At 40 cells the window's and the sprite
// list's lowest bits drop out.
constexpr uint32_t kPlaneABits = 0x38;
constexpr uint32_t kPlaneAShift = 10;
constexpr uint32_t kPlaneBBits = 0x07;
constexpr uint32_t kPlaneBShift = 13;
constexpr uint32_t kWindowBits = 0x3E;
constexpr uint32_t kWindowShift = 10;
constexpr uint32_t kWindowBaseH40 = 0xF000;
constexpr uint32_t kHScrollBits = 0x3F;
constexpr uint32_t kHScrollShift = 10;
constexpr uint32_t kSpritesShift = 9;
constexpr uint32_t kSpriteBaseH32 = 0xFE00;
constexpr uint32_t kSpriteBaseH40 = 0xFC00;
constexpr uint32_t kScrollBits = 0x3FF;

const uint32_t* ColourTables() {
    static const auto kTables = MdVdpBuildColourTables();
    return kTables.data();
}

// Reads this line's two words of the scroll table. They are negated: a column of the plane is the column of
// the picture plus these.
void ReadHScroll(MD_VDP& vdp) {
    uint32_t offset = 0;
    switch (vdp.regs[kMdVdpRegMode3] & kMdVdpReg11HScroll) {
    case 1: offset = (vdp.line & 7) * 4; break;
    case 2: offset = (vdp.line * 4) & ~31U; break;
    case 3: offset = vdp.line * 4; break;
    default: break;
    }
    const uint32_t table = vdp.hscrollBase + offset;
    vdp.hScrollA = (0U - MdVdpVramWord(vdp, table)) & kScrollBits;
    vdp.hScrollB = (0U - MdVdpVramWord(vdp, table + 2)) & kScrollBits;
}

// The picture row of a line, if the picture has `active` lines between its borders and the frame has `total`.
// The upper border is drawn in the last lines of the frame before.
uint32_t RowOf(uint32_t line, uint32_t active, uint32_t total, uint32_t border) {
    if (line < active + border) {
        return border + line;
    }
    return line >= total - border ? line - (total - border) : kMdVdpNoRow;
}

// A line of an odd field in a doubled picture also darkens the row that the line before has drawn, two above
// its own. The border is as high as in a plain picture, four lines, eight rows.
void TargetRow(MD_VDP& vdp) {
    vdp.rowOffset = kMdVdpNoRow;
    if (vdp.pixels != nullptr) {
        const bool doubled = vdp.interlace2 != 0 && vdp.h40 != 0;
        const uint32_t scale = doubled ? 2 : 1;
        const uint32_t row =
            RowOf(vdp.line * scale, vdp.activeHeight * scale, vdp.totalLines * scale, vdp.border);
        const uint32_t field = doubled ? vdp.field : 0;
        // 240 doubled lines don't fit into the picture.
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
    if ((vdp.regs[kMdVdpRegMode2] & kMdVdpReg1VInterrupt) != 0) {
        vdp.raiseIrq(vdp.owner, kVInterruptLine, 1);
    }
    *vdp.zIntLine = 1;
}

void IncrementVCount(MD_VDP& vdp) {
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
        vdp.hCounter = vdp.regs[kMdVdpRegHInterrupt];
        return;
    }
    if (--vdp.hCounter < 0) {
        vdp.hPending = 1;
        vdp.hCounter = vdp.regs[kMdVdpRegHInterrupt];
        if ((vdp.regs[kMdVdpRegMode1] & kMdVdpReg0HInterrupt) != 0) {
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
    const bool ranOut = (vdp.spriteScan.flags & kMdVdpScanDotsRanOut) != 0;
    vdp.spriteScan = {};
    vdp.spriteScan.flags = ranOut ? kMdVdpScanLastLineRanOut : 0;
    MdVdpFetchSprites(vdp, vdp.h40 != 0 ? kSpriteBudgetH40 : kSpriteBudgetH32);
    ++vdp.line;
    vdp.vsramLine = vdp.vsram;
    if (vdp.line >= vdp.totalLines) {
        vdp.line = 0;
        vdp.frameDone = 1;
        vdp.field ^= 1;
        const bool tall = (vdp.regs[kMdVdpRegMode2] & kMdVdpReg1Tall) != 0;
        vdp.activeHeight = tall ? kTallHeight : kNormalHeight;
    }
    if (vdp.vCount == vdp.activeHeight) {
        vdp.status |= kMdVdpVInterruptOccurred;
    }
    MdVdpRefreshBlanked(vdp);
}

void Wrap(MD_VDP& vdp) {
    vdp.h40 = vdp.regs[kMdVdpRegMode4] & kMdVdpReg12H40;
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
    vdp.wide = MdVdpHasWide() ? 1 : 0;
    vdp.rowOffset = kMdVdpNoRow;
    vdp.colourTables = ColourTables();
    vdp.layerBuffers = {vdp.backdropLine.data(), vdp.planeBLine.data(), vdp.planeALine.data(),
                        vdp.windowLine.data(),   vdp.spriteLine.data(), vdp.planeBLine.data(),
                        vdp.planeALine.data(),   vdp.windowLine.data(), vdp.spriteLine.data()};
    *zIntLine = 0;
    *stall = 0;
    vdp.status = kMdVdpFifoEmpty;
    vdp.activeHeight = kNormalHeight;
    MdVdpRefreshPointers(vdp);
    MdVdpWriteRegister(vdp, kMdVdpRegMode2, kMdVdpReg1AllRegisters);
    MdVdpWriteRegister(vdp, kMdVdpRegHInterrupt, 255);
    // 40 cells from the first wrap on. The geometry follows with the first register that is written.
    vdp.regs[kMdVdpRegMode4] = kMdVdpReg12H40 | kMdVdpReg12H40Clock;
    vdp.regs[kMdVdpRegIncrement] = 2;
}

// Window and sprite list follow the width that register 12 asks for at once, everything else follows `h40`.
void MdVdpRefreshGeometry(MD_VDP& vdp) {
    const auto& regs = vdp.regs;
    const uint32_t mode4 = regs[kMdVdpRegMode4];
    const uint32_t sizes = regs[kMdVdpRegPlaneSize];
    const bool cells40 = (mode4 & kMdVdpReg12H40) != 0;
    vdp.planeWidth = kPlaneSizes[sizes & kPlaneSizeBits];
    vdp.planeHeight = kPlaneSizes[sizes >> kPlaneHeightShift & kPlaneSizeBits];
    vdp.windowWidth = (mode4 & (kMdVdpReg12H40 | kMdVdpReg12H40Clock)) != 0 ? 64 : 32;
    vdp.shadowMode = (mode4 & kMdVdpReg12Shadow) != 0 ? 1 : 0;
    vdp.interlace2 = (mode4 & kMdVdpReg12Interlace2) == kMdVdpReg12Interlace2 ? 1 : 0;
    const uint32_t rows = vdp.tvMode == kMdVdp50Hz ? 256 : 240;
    vdp.border = vdp.interlace2 != 0 ? 8 : (rows - vdp.activeHeight) / 2;
    vdp.planeABase = (regs[kMdVdpRegPlaneA] & kPlaneABits) << kPlaneAShift;
    vdp.planeBBase = (regs[kMdVdpRegPlaneB] & kPlaneBBits) << kPlaneBShift;
    vdp.windowBase = (regs[kMdVdpRegWindow] & kWindowBits) << kWindowShift &
                     (cells40 ? kWindowBaseH40 : kMdVdpVramBytes - 1);
    vdp.hscrollBase = (regs[kMdVdpRegHScroll] & kHScrollBits) << kHScrollShift;
    vdp.spriteBase = uint32_t{regs[kMdVdpRegSprites]} << kSpritesShift &
                     (cells40 ? kSpriteBaseH40 : kSpriteBaseH32);
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

void MdVdpRunAction(MD_VDP& vdp, uint32_t action, bool blanked) {
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
    case kMdVdpVCountIncrement: IncrementVCount(vdp); break;
    case kMdVdpHBlankBegin: BeginHBlank(vdp); break;
    case kMdVdpLineEnd: EndLine(vdp); break;
    case kMdVdpWrap: Wrap(vdp); break;
    default: break;
    }
}
