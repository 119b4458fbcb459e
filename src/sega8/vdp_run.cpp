// VdpRun. Mode 4, which nearly every program uses, runs a span of a line at a time
// (vdp_run_mode4.h). While an access of the processor is pending, and in modes 0 to 2, groups of
// four slots run as straight code, one function for each group of each slot list. Pixels are drawn
// a span at a time (vdp_run_pixels.h). Meanwhile nothing writes a register or a colour, and VRAM is
// written only by slots that run one by one, so the order of fetches and pixels makes no
// difference.
#include "sega8/vdp_run.h"

#include "base/flatten.h"
#include "sega8/vdp_run_mode4.h"
#include "sega8/vdp_run_pixels.h"
#include "sega8/vdp_slot_lists.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using namespace vdp_run;

constexpr uint32_t kDotsPerGroup = 8; // four slots
constexpr uint32_t kGroups = 42;      // in a line; the last three slots are in no group

// The two dots of a slot whose kind, cycle width and predecessor are known at compile time. A free
// slot without an access is followed by no data.
template <uint8_t Kind, uint8_t IsByte, uint8_t KindBefore>
inline void RunSlot(VDP& vdp, uint32_t dot) {
    vdp_tick::EvenDot(vdp, Kind, dot);
    vdp_tick::MemoryCycle(vdp);
    vdp.cycleAddr = vdp.nextAddr;
    vdp.cycleIsByte = IsByte != 0;
    if constexpr (KindBefore == kSlotFree) {
        if (vdp.lastKind == kSlotFree) {
            vdp_fetch::FreeData(vdp);
        }
    } else {
        vdp_tick::TakeData(vdp, KindBefore + 1U, dot + 1);
    }
    vdp.lastKind = vdp.nextKind;
}

template <size_t List, size_t Slot>
inline void RunListSlot(VDP& vdp) {
    constexpr const VdpSlotList& list = vdp_slot_lists::kLists[List];
    RunSlot<list[2 * Slot], list[2 * Slot + 1], list[2 * Slot - 2]>(vdp, 2 * Slot);
}

// Group 0 runs dot by dot: its first slot takes the data of the line before.
template <size_t List, size_t Group>
OMBRELUNE_FLATTEN void RunGroup(VDP& vdp) {
    constexpr size_t kFirst = Group * 4;
    RunListSlot<List, kFirst>(vdp);
    RunListSlot<List, kFirst + 1>(vdp);
    RunListSlot<List, kFirst + 2>(vdp);
    RunListSlot<List, kFirst + 3>(vdp);
}

using GroupFunction = void (*)(VDP&);
using GroupTable = std::array<GroupFunction, kGroups>;

template <size_t List, size_t... Group>
constexpr GroupTable MakeGroups(std::index_sequence<Group...> /*unused*/) {
    return {nullptr, RunGroup<List, Group + 1>...};
}

template <size_t... List>
constexpr std::array<GroupTable, sizeof...(List)>
MakeTables(std::index_sequence<List...> /*unused*/) {
    return {MakeGroups<List>(std::make_index_sequence<kGroups - 1>())...};
}

constexpr auto kGroupTables = MakeTables(std::make_index_sequence<4>());

// One dot without its pixel.
void FetchDot(VDP& vdp, uint32_t dot) {
    const uint8_t slot = vdp.slotTable[dot];
    if ((dot & 1) == 0) {
        vdp_tick::EvenDot(vdp, slot, dot);
    } else {
        vdp_tick::OddDot(vdp, slot, dot);
    }
}

// Runs as many dots of mode 4 as it can from `dot` on, but not past `end`. Returns the next dot,
// which is `dot` if the slots must run one by one.
uint32_t RunKnownDots(VDP& vdp, uint32_t dot, uint32_t end) {
    if (vdp.slotList > kVdpMode4Blank || AccessIsPending(vdp)) {
        return dot;
    }
    const bool active = vdp.slotList == kVdpMode4Active;
    const uint32_t column = dot / kColumnDots;
    const uint32_t columnsEnd = std::min(end / kColumnDots, kColumns);
    if (dot <= kSpriteDot && vdp.lastKind == (active ? kSlotTileHigh : kSlotBlank)) {
        if (column < columnsEnd) {
            if (active) {
                RunColumns(vdp, column, columnsEnd);
            } else {
                RunBlankColumns(vdp, column, columnsEnd);
            }
            return columnsEnd * kColumnDots;
        }
        if (dot == kSpriteDot && end == kVdpEventDot) {
            RunSpriteFetch(vdp, active);
            return end;
        }
    } else if (dot == kTailDot && end == kVdpDots && vdp.lastKind == kSlotSprite4Low) {
        RunTail(vdp);
        return end;
    }
    return dot;
}

// The dots from `first` to before `end` of one line. Dots 0 and 318 are not among them.
void RunDots(VDP& vdp, uint32_t first, uint32_t end) {
    const GroupTable& groups = kGroupTables[vdp.slotList & 3];
    uint32_t dot = first;
    while (dot < end) {
        if (dot % kDotsPerGroup != 0) {
            FetchDot(vdp, dot);
            ++dot;
            continue;
        }
        const uint32_t known = RunKnownDots(vdp, dot, end);
        if (known != dot) {
            dot = known;
        } else if (dot + kDotsPerGroup <= end) {
            groups[dot / kDotsPerGroup](vdp);
            dot += kDotsPerGroup;
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
