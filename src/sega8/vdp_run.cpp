// Catching up: whole columns of four slots run as straight code, one function for each place in each
// slot list, and pixels go out a run at a time. Nothing writes a register, a colour or video memory in
// the meantime, so neither order can be told from the dot by dot one.
#include "sega8/vdp_run.h"

#include "sega8/vdp_slot_lists.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

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
[[gnu::flatten]] void RunGroup(VDP& vdp) {
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

// Eight pixels without a sprite among them: the background alone.
void OutputBackground(VDP& vdp, const uint32_t* colours, uint32_t x) {
    for (uint32_t i = x; i < x + 8; ++i) {
        vdp.row[i] = colours[vdp.colourLine[i] & 31];
    }
}

// Pixels of the dots from `first` to before `end`; background and sprites lie in the line buffers.
void OutputPixels(VDP& vdp, uint32_t first, uint32_t end) {
    constexpr uint32_t kEnd = kVdpFirstPixelDot + kVdpPictureWidth;
    if (first >= kEnd || end <= kVdpFirstPixelDot) {
        return;
    }
    uint32_t x = std::max(first, kVdpFirstPixelDot) - kVdpFirstPixelDot;
    const uint32_t endX = std::min(end, kEnd) - kVdpFirstPixelDot;
    const bool plain = vdp.row != nullptr && !vdp.secondChip;
    const uint32_t* colours = vdp.fixedColours ? kVdpFixedColours : vdp.palette;
    while (x < endX) {
        uint64_t sprites = 1;
        if (plain && x + 8 <= endX && (x >= 8 || !vdp_fetch::LeftColumnBlank(vdp))) {
            std::memcpy(&sprites, &vdp.spriteLine[x], sizeof sprites);
        }
        if (sprites == 0) {
            OutputBackground(vdp, colours, x);
            x += 8;
        } else {
            vdp_tick::Pixel(vdp, x);
            ++x;
        }
    }
}

// One dot without its pixel.
void FetchDot(VDP& vdp, uint32_t dot) {
    const uint8_t slot = vdp.slotTable[dot];
    if ((dot & 1) == 0) {
        vdp_tick::EvenDot(vdp, slot, dot);
    } else {
        vdp_tick::OddDot(vdp, slot, dot);
    }
}

// The dots from `first` to before `end` of one line, none of which is dot 0 or 318.
void RunDots(VDP& vdp, uint32_t first, uint32_t end) {
    const GroupTable& groups = kGroupTables[vdp.slotList & 3];
    uint32_t dot = first;
    while (dot < end) {
        if (dot % kDotsPerGroup == 0 && dot + kDotsPerGroup <= end && dot != 0) {
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

void VdpRun(VDP& vdp, uint32_t steps) {
    while (steps != 0) {
        const uint32_t counter = vdp.dotCounter;
        const uint32_t dot = counter >> 1;
        const bool atEvent = dot == 0 || dot == kVdpEventDot;
        if (atEvent || (counter & 1) != 0 || steps < 2) {
            VdpTick(vdp);
            --steps;
            continue;
        }
        const uint32_t limit = dot < kVdpEventDot ? kVdpEventDot : kVdpDots;
        const uint32_t end = std::min(limit, dot + steps / 2);
        RunDots(vdp, dot, end);
        steps -= 2 * (end - dot);
        vdp.dotCounter = end == kVdpDots ? 0 : 2 * end;
    }
}
