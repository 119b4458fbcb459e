// VdpRun. The columns of a line, and in mode 4 its sprites, run a span at a time (vdp_run_mode4.h,
// vdp_run_legacy.h). What is left, and all while an access of the processor is pending, runs slot by
// slot as in VdpTick. Pixels are drawn a span at a time (vdp_run_pixels.h). Meanwhile nothing writes
// a register or a colour, and VRAM is written only by slots that run one by one, so the order of
// fetches and pixels makes no difference.
#include "sega8/vdp_run.h"

#include "sega8/vdp_run_legacy.h"
#include "sega8/vdp_run_mode4.h"
#include "sega8/vdp_run_pixels.h"

#include <algorithm>

namespace {

using namespace vdp_run;

// One dot without its pixel.
void FetchDot(VDP& vdp, uint32_t dot) {
    const uint8_t slot = vdp.slotTable[dot];
    if ((dot & 1) == 0) {
        vdp_tick::EvenDot(vdp, slot, dot);
    } else {
        vdp_tick::OddDot(vdp, slot, dot);
    }
}

// The kind of the last slot of a column.
uint8_t LastKindOfColumn(uint8_t slotList) {
    switch (slotList) {
    case kVdpMode4Active: return kSlotTileHigh;
    case kVdpLegacyActive: return kSlotColour;
    default: return kSlotBlank;
    }
}

void RunAnyColumns(VDP& vdp, uint32_t first, uint32_t end) {
    switch (vdp.slotList) {
    case kVdpMode4Active: RunColumns(vdp, first, end); break;
    case kVdpLegacyActive: RunLegacyColumns(vdp, first, end); break;
    case kVdpMode4Blank:
        TakeSearchData(vdp, SearchSlots(first, end));
        RunBlankColumns(vdp, first, end);
        break;
    default:
        for (uint32_t slots = SearchSlots(first, end); slots != 0; --slots) {
            TestSpriteY(vdp);
        }
        RunBlankColumns(vdp, first, end);
        break;
    }
}

// Runs as many dots as it can from `dot`, a multiple of eight, but not past `end`. Returns the next
// dot, which is `dot` if the slots must run one by one.
uint32_t RunKnownDots(VDP& vdp, uint32_t dot, uint32_t end) {
    if (AccessIsPending(vdp)) {
        return dot;
    }
    const uint32_t columnsEnd = std::min(end / kColumnDots, kColumns);
    const bool mode4 = vdp.slotList <= kVdpMode4Blank;
    if (dot <= kSpriteDot && vdp.lastKind == LastKindOfColumn(vdp.slotList)) {
        if (dot / kColumnDots < columnsEnd) {
            RunAnyColumns(vdp, dot / kColumnDots, columnsEnd);
            return columnsEnd * kColumnDots;
        }
        if (mode4 && dot == kSpriteDot && end == kVdpEventDot) {
            RunSpriteFetch(vdp, vdp.slotList == kVdpMode4Active);
            return end;
        }
    } else if (mode4 && dot == kTailDot && end == kVdpDots && vdp.lastKind == kSlotSprite4Low) {
        RunTail(vdp);
        return end;
    }
    return dot;
}

// The dots from `first` to before `end` of one line. Dots 0 and 318 are not among them.
void RunDots(VDP& vdp, uint32_t first, uint32_t end) {
    for (uint32_t dot = first; dot < end;) {
        const uint32_t known = dot % kColumnDots == 0 ? RunKnownDots(vdp, dot, end) : dot;
        if (known != dot) {
            dot = known;
        } else {
            FetchDot(vdp, dot);
            ++dot;
        }
    }
    OutputPixels(vdp, first, end);
}

} // namespace

void VdpRun(VDP& vdp, uint32_t ticks) {
    while (ticks != 0) {
        const uint32_t counter = vdp.dotCounter;
        const uint32_t dot = counter >> 1;
        const bool atEvent = dot == 0 || dot == kVdpEventDot;
        if (atEvent || (counter & 1) != 0 || ticks < 2) {
            VdpTick(vdp);
            --ticks;
            continue;
        }
        const uint32_t limit = dot < kVdpEventDot ? kVdpEventDot : kVdpDots;
        const uint32_t end = std::min(limit, dot + ticks / 2);
        RunDots(vdp, dot, end);
        ticks -= 2 * (end - dot);
        vdp.dotCounter = end == kVdpDots ? 0 : 2 * end;
    }
}
