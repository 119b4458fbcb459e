// Catching up. Mode 4, which nearly every program shows, runs by stretches of a line (vdp_run_mode4.h).
// Where an access of the processor is on its way, and in the older modes, whole groups of four slots run
// as straight code, one function for each place in each slot list. Pixels go out a run at a time
// (vdp_run_pixels.h). Nothing writes a register or a colour in the meantime, and video memory only in a
// slot that is run by itself, so no order can be told from the dot by dot one.
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
constexpr uint32_t kGroups = 42;      // whole groups in a line; three slots are left over

// The two dots of a slot, its kind, its cycle and the kind before it known. A free slot may have had
// nothing to do, and then no data follow.
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

// Group 0 begins with the kind of the line before in `lastKind`, so it runs dot by dot.
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

// Runs as much of mode 4 as is known beforehand, from `dot` on but not past `end`. Gives the dot that is
// next, which is `dot` itself where the slots have to be run one by one.
uint32_t RunKnownDots(VDP& vdp, uint32_t dot, uint32_t end) {
    if (vdp.slotList > kVdpMode4Blank || AccessOnItsWay(vdp)) {
        return dot;
    }
    const bool active = vdp.slotList == kVdpMode4Active;
    const uint32_t column = dot / kDotsPerColumn;
    const uint32_t columnsEnd = std::min(end / kDotsPerColumn, kColumns);
    if (dot <= kSpriteDot && vdp.lastKind == (active ? kSlotTileHigh : kSlotBlank)) {
        if (column < columnsEnd) {
            if (active) {
                RunColumns(vdp, column, columnsEnd);
            } else {
                RunBlankColumns(vdp, column, columnsEnd);
            }
            return columnsEnd * kDotsPerColumn;
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

// The dots from `first` to before `end` of one line, none of which is dot 0 or 318.
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
