#include "machine/state_piece.h"
#include "megadrive/md_vdp.h"
#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_timetable.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

template <typename Visit>
void LineFields(MD_VDP& vdp, Visit& visit) {
    visit(vdp.outX);
    visit(vdp.planeAX);
    visit(vdp.planeBX);
    visit(vdp.planeWidth);
    visit(vdp.windowWidth);
    visit(vdp.planeHeight);
    visit(vdp.planeABase);
    visit(vdp.planeBBase);
    visit(vdp.windowBase);
    visit(vdp.hscrollBase);
    visit(vdp.spriteBase);
    visit(vdp.backdropX);
    visit(vdp.border);
    visit(vdp.activeHeight);
    visit(vdp.h40);
    visit(vdp.shadowMode);
    visit(vdp.rowOffset);
}

template <typename Visit>
void CounterFields(MD_VDP& vdp, Visit& visit) {
    visit(vdp.stepDebt);
    visit(vdp.frameDone);
    visit(vdp.hCount);
    visit(vdp.tileColumn);
    visit(vdp.planeAColumn);
    visit(vdp.planeBColumn);
    visit(vdp.vCount);
    visit(vdp.line);
    visit(vdp.spriteScan.visible);
    visit(vdp.spriteScan.seen);
    visit(vdp.spriteScan.index);
    visit(vdp.spriteScan.step);
    visit(vdp.spriteScan.dots);
    visit(vdp.spriteScan.flags);
    visit(vdp.cramDot);
}

template <typename Visit>
void AccessFields(MD_VDP& vdp, Visit& visit) {
    for (MD_VDP_FIFO_ENTRY& entry : vdp.fifo) {
        visit(entry.word);
        visit(entry.code);
    }
    visit(vdp.vramHalf);
    visit(vdp.fifoCount);
    visit(vdp.hScrollA);
    visit(vdp.hScrollB);
    visit(vdp.field);
    visit(vdp.address);
    visit(vdp.addressHigh);
    visit(vdp.code);
    visit(vdp.pendingSecond);
    visit(vdp.status);
    visit(vdp.hPending);
    visit(vdp.vPending);
    visit(vdp.dmaState);
    visit(vdp.dmaLength);
    visit(vdp.dmaSource);
    visit(vdp.dmaBase);
    visit(vdp.dmaFillValue);
    visit(vdp.dmaHalf);
    visit(vdp.dmaCode);
    visit(vdp.dmaPending);
    visit(vdp.interlace2);
    visit(vdp.hCounter);
}

template <typename Visit>
void MemoryFields(MD_VDP& vdp, Visit& visit) {
    visit(vdp.vsram);
    visit(vdp.vsramLine);
    visit(vdp.cram);
    visit(vdp.regs);
    visit(vdp.spriteDots);
    visit(vdp.vram);
}

// The line in progress. At the end of a frame the buffers already hold the sprites of the next line.
template <typename Visit>
void BufferFields(MD_VDP& vdp, Visit& visit) {
    visit(vdp.lineFlags);
    visit(vdp.layerCode);
    visit(vdp.shadowOp);
    visit(vdp.planeALine);
    visit(vdp.planeBLine);
    visit(vdp.spriteLine);
    visit(vdp.windowLine);
    visit(vdp.backdropLine);
    visit(vdp.windowColumn);
}

auto FieldsOf(MD_VDP& vdp) {
    return [&vdp](auto& visit) {
        LineFields(vdp, visit);
        CounterFields(vdp, visit);
        AccessFields(vdp, visit);
        MemoryFields(vdp, visit);
        BufferFields(vdp, visit);
    };
}

uint32_t SafePlaneSize(uint32_t cells) {
    return cells == 64 || cells == 128 ? cells : 32;
}

template <size_t Count>
void SanitizeColours(std::array<uint16_t, Count>& colours) {
    for (uint16_t& colour : colours) {
        colour &= kMdVdpColourBits;
    }
}

void SanitizeGeometry(MD_VDP& vdp) {
    constexpr uint32_t kTableBits = 0xFE00; // a table begins at a multiple of 512
    vdp.planeWidth = SafePlaneSize(vdp.planeWidth);
    vdp.planeHeight = SafePlaneSize(vdp.planeHeight);
    vdp.windowWidth = vdp.windowWidth == 64 ? 64 : 32;
    for (uint32_t* base :
         {&vdp.planeABase, &vdp.planeBBase, &vdp.windowBase, &vdp.hscrollBase, &vdp.spriteBase}) {
        *base &= kTableBits;
    }
    vdp.border = std::min(vdp.border, 16U);
    vdp.activeHeight = vdp.activeHeight == 240 ? 240 : 224;
    vdp.h40 &= 1;
    vdp.shadowMode &= 1;
    vdp.interlace2 &= 1;
    vdp.field &= 1;
    vdp.frameDone &= 1;
    if (vdp.rowOffset > kMdVdpPixels - kMdVdpWidth) {
        vdp.rowOffset = kMdVdpNoRow;
    }
}

void SanitizeCounters(MD_VDP& vdp) {
    const bool h40 = vdp.h40 != 0;
    const uint32_t first = h40 ? kMdVdpFirstDotH40 : kMdVdpFirstDotH32;
    const uint32_t dots = h40 ? kMdVdpDotsH40 : kMdVdpDotsH32;
    vdp.hCount = std::min(vdp.hCount, (h40 ? kMdVdpStepsH40 : kMdVdpStepsH32) - 1);
    vdp.line = std::min(vdp.line, vdp.totalLines - 1);
    vdp.vCount = std::min(vdp.vCount, vdp.totalLines - 1);
    vdp.stepDebt = std::clamp(vdp.stepDebt, -9, 0);
    vdp.hCounter = std::clamp(vdp.hCounter, 0, 255);
    // After the line's start a pixel never goes out before its step. Up to there `outX` is still that of the
    // line before.
    const uint32_t start = h40 ? md_vdp_timetable::kLineStartH40 : md_vdp_timetable::kLineStartH32;
    const uint32_t reached = vdp.hCount > first ? vdp.hCount - first : 0;
    vdp.outX = std::min(vdp.outX, vdp.hCount <= start ? kMdVdpWidth : std::min(reached, dots));
    vdp.backdropX = std::min(vdp.backdropX, kMdVdpWidth);
    vdp.planeAX = std::min(vdp.planeAX, static_cast<uint32_t>(kMdVdpLine));
    vdp.planeBX = std::min(vdp.planeBX, static_cast<uint32_t>(kMdVdpLine));
    vdp.tileColumn = std::min(vdp.tileColumn & ~1U, 40U);
    vdp.planeAColumn &= 255;
    vdp.planeBColumn &= 255;
    vdp.hScrollA &= 1023;
    vdp.hScrollB &= 1023;
    vdp.spriteScan.index = std::min(vdp.spriteScan.index, 79U);
}

void SanitizeAccess(MD_VDP& vdp) {
    constexpr uint32_t kAddressHighBits = 0xC000; // what the second control word adds
    vdp.fifoCount = std::min(vdp.fifoCount, kMdVdpFifoRoom);
    vdp.vramHalf &= 1;
    vdp.dmaHalf &= 1;
    vdp.dmaState = vdp.dmaState <= kMdVdpDmaFill ? vdp.dmaState : kMdVdpNoDma;
    const uint32_t least = vdp.dmaState != kMdVdpNoDma ? 1 : 0;
    vdp.dmaLength = std::clamp(vdp.dmaLength, least, 0x10000U);
    vdp.dmaSource &= vdp.dmaState == kMdVdpDmaCopy ? 0xFFFFU : 0xFFFFFFU;
    vdp.address &= 0xFFFF;
    vdp.addressHigh &= kAddressHighBits;
    vdp.code &= 63;
}

// Brings a loaded record into the ranges that the chip itself keeps to.
void Sanitize(MD_VDP& vdp) {
    SanitizeGeometry(vdp);
    SanitizeCounters(vdp);
    SanitizeAccess(vdp);
    SanitizeColours(vdp.cram);
    SanitizeColours(vdp.planeALine);
    SanitizeColours(vdp.planeBLine);
    SanitizeColours(vdp.spriteLine);
    SanitizeColours(vdp.windowLine);
    SanitizeColours(vdp.backdropLine);
    for (uint8_t& code : vdp.layerCode) {
        code = std::min<uint8_t>(code, kMdVdpSpriteHigh);
    }
}

} // namespace

uint32_t MdVdpStateSize() {
    static const uint32_t kSize = [] {
        const auto vdp = std::make_unique<MD_VDP>();
        return StatePieceSize(FieldsOf(*vdp));
    }();
    return kSize;
}

StateOut MdVdpSaveState(const MD_VDP& vdp, StateOut out) {
    // Saving and loading share this list of fields. Saving does not change them.
    return StatePieceWrite(out, FieldsOf(const_cast<MD_VDP&>(vdp)));
}

uint32_t MdVdpLoadState(MD_VDP& vdp, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, FieldsOf(vdp));
    if (used != 0) {
        Sanitize(vdp);
        MdVdpRefreshBlanked(vdp);
        MdVdpRefreshPointers(vdp);
    }
    return used;
}
