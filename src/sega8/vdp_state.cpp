#include "machine/state_piece.h"
#include "sega8/vdp.h"
#include "sega8/vdp_private.h"
#include "sega8/vdp_slots.h"

#include <algorithm>
#include <cstddef>

namespace {

template <typename Visit>
void PortFields(VDP& vdp, Visit& visit) {
    visit(vdp.regs);
    visit(vdp.cram);
    visit(vdp.cramLatch);
    visit(vdp.addr);
    visit(vdp.code);
    visit(vdp.latchFull);
    visit(vdp.latchByte);
    visit(vdp.readBuffer);
    visit(vdp.pendingAccess);
    visit(vdp.pendingCount);
    visit(vdp.pendingValue);
    visit(vdp.pendingAddress);
    visit(vdp.activeAccess);
    visit(vdp.activeValue);
    visit(vdp.activeAddress);
}

template <typename Visit>
void FrameFields(VDP& vdp, Visit& visit) {
    visit(vdp.dotCounter);
    visit(vdp.line);
    visit(vdp.frameDone);
    visit(vdp.pausePressed);
    visit(vdp.pauseSeen);
    visit(vdp.hLatch);
    visit(vdp.status);
    visit(vdp.lineInterrupt);
    visit(vdp.frameInterrupt);
    visit(vdp.lineCounter);
    visit(vdp.outputRow);
    visit(vdp.slotList);
    visit(vdp.mode);
    visit(vdp.displayEnabled);
    visit(vdp.scrollX);
    visit(vdp.scrollY);
    visit(vdp.nameBase);
    visit(vdp.patternBase);
    visit(vdp.colourBase);
}

template <typename Visit>
void FetchFields(VDP& vdp, Visit& visit) {
    visit(vdp.nextKind);
    visit(vdp.lastKind);
    visit(vdp.cycleIsByte);
    visit(vdp.nextAddr);
    visit(vdp.cycleAddr);
    visit(vdp.writeValue);
    visit(vdp.readData);
    visit(vdp.tileEntry);
    visit(vdp.tileAddress);
    visit(vdp.tileLow);
    visit(vdp.tileRow);
    visit(vdp.names);
    visit(vdp.patternByte);
    visit(vdp.spriteIndex);
    visit(vdp.spriteTested);
    visit(vdp.searchDone);
    visit(vdp.foundCount);
    visit(vdp.foundIndex);
    visit(vdp.foundRow);
    visit(vdp.spriteCount);
    visit(vdp.fetchIndex);
    visit(vdp.fetchAddress);
    visit(vdp.spriteX);
    visit(vdp.spriteFlags);
    visit(vdp.spriteData);
    visit(vdp.colourLine);
    visit(vdp.priorityLine);
    visit(vdp.spriteLine);
}

auto FieldsOf(VDP& vdp) {
    return [&vdp](auto& visit) {
        PortFields(vdp, visit);
        FrameFields(vdp, visit);
        FetchFields(vdp, visit);
    };
}

// The kind that a slot of the list leaves in the pipeline. A free slot without an access leaves
// kSlotNone.
uint8_t KindLeft(const VDP& vdp, size_t slot, uint8_t loaded) {
    const uint8_t kind = kVdpSlotLists[vdp.slotList][2 * slot];
    return kind == kSlotFree && loaded != kSlotFree ? uint8_t{kSlotNone} : kind;
}

// The kinds in the pipeline follow from the place in the slot list; VdpRun relies on that. Slot 0
// takes the data of the line before, whose list is not known here; every list ends in the sprite
// search. After a reset there is no line before.
void SanitizeKinds(VDP& vdp) {
    const uint32_t dot = vdp.dotCounter / 2; // the next to run
    const size_t slot = dot / 2;
    if (slot != 0) {
        vdp.lastKind = KindLeft(vdp, slot - 1, vdp.lastKind);
    } else if (vdp.lastKind != kSlotTestY4 && vdp.lastKind != kSlotTestY) {
        vdp.lastKind = kSlotNone;
    }
    vdp.nextKind = dot % 2 != 0 ? KindLeft(vdp, slot, vdp.nextKind) : vdp.lastKind;
}

// Brings counters and selectors into their ranges; all other fields are masked where they are used.
void Sanitize(VDP& vdp) {
    vdp.addr &= kVdpVramMask;
    vdp.code &= kVdpCodeColour; // two bits
    vdp.pendingAccess = std::min<uint8_t>(vdp.pendingAccess, kVdpWrite);
    vdp.pendingCount %= vdp_tick::kAccessDots;
    vdp.activeAccess = std::min<uint8_t>(vdp.activeAccess, kVdpWrite);
    vdp.dotCounter %= kVdpTicksPerLine;
    vdp.line %= vdp.totalLines;
    vdp.status &= kVdpStatusFrame | kVdpStatusOverflow | kVdpStatusCollision;
    if (vdp.outputRow >= kVdpLargestPicture) {
        vdp.outputRow = kVdpNoRow;
    }
    vdp.slotList &= 3;
    if (vdp.mode != 1 && vdp.mode != 2 && vdp.mode != 4) {
        vdp.mode = 0;
    }
    const auto maxSprites = static_cast<uint8_t>(kVdpMaxSprites);
    vdp.foundCount = std::min(vdp.foundCount, maxSprites);
    vdp.spriteCount = std::min(vdp.spriteCount, maxSprites);
    SanitizeKinds(vdp);
}

} // namespace

uint32_t VdpStateSize() {
    VDP vdp;
    return StatePieceSize(FieldsOf(vdp));
}

StateOut VdpSaveState(const VDP& vdp, StateOut out) {
    // The fields are listed once, for reading and writing; a visitor that saves changes none.
    return StatePieceWrite(out, FieldsOf(const_cast<VDP&>(vdp)));
}

uint32_t VdpLoadState(VDP& vdp, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, FieldsOf(vdp));
    if (used != 0) {
        Sanitize(vdp);
        VdpConvertPalette(vdp);
        VdpDeriveHeight(vdp);
        VdpDeriveLine(vdp);
        VdpUpdateIrq(vdp);
    }
    return used;
}
