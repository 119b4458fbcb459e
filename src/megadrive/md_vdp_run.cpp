// Many H steps at once: a span of steps without slot or event puts out its dots together.
#include "megadrive/md_vdp.h"
#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_timetable.h"
#include "megadrive/md_vdp_wide.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

using md_vdp_timetable::SpanLengths;
using md_vdp_timetable::StartClocks;
using md_vdp_timetable::VisibleEvents;

// The master clock at which each step begins.
constexpr auto kStartsH32 = StartClocks(kMdVdpLengthsH32);
constexpr auto kStartsH40 = StartClocks(kMdVdpLengthsH40);

// Whether an event of this line changes anything that the machine sees.
bool IsVisible(const MD_VDP& vdp, uint32_t event) {
    switch (event) {
    case kMdVdpVInterrupt: return *vdp.zIntLine != 0 || vdp.vCount == vdp.activeHeight;
    case kMdVdpHBlankBegin:
        return vdp.hCounter <= 0 && (vdp.regs[kMdVdpRegMode1] & kMdVdpReg0HInterrupt) != 0;
    default: return vdp.line + 1 >= vdp.totalLines; // the end of a line may end the frame
    }
}

// Of the lines after this one, how many certainly pass before one with a visible event.
template <const auto& Actions>
uint32_t QuietLines(const MD_VDP& vdp) {
    constexpr uint32_t kLineEnd = md_vdp_timetable::StepOf(Actions, kMdVdpLineEnd);
    constexpr uint32_t kIncrement = md_vdp_timetable::StepOf(Actions, kMdVdpVCountIncrement);
    if (*vdp.zIntLine != 0) {
        return 0;
    }
    const uint32_t line = vdp.line + (vdp.hCount > kLineEnd ? 0 : 1);
    const uint32_t vCount = vdp.vCount + (vdp.hCount > kIncrement ? 0 : 1);
    const uint32_t toLast = vdp.totalLines - 1 - std::min(line, vdp.totalLines - 1);
    const uint32_t toBlank = (vdp.activeHeight + vdp.totalLines - vCount) % vdp.totalLines;
    uint32_t lines = std::min(toLast, toBlank);
    if ((vdp.regs[kMdVdpRegMode1] & kMdVdpReg0HInterrupt) != 0) {
        // The counter goes down by one a line, or is reloaded.
        const int32_t reloaded = vdp.regs[kMdVdpRegHInterrupt] + 1;
        const int32_t counted = std::min(vdp.hCounter, reloaded) - 1;
        lines = std::min(lines, static_cast<uint32_t>(std::max(counted, 0)));
    }
    return lines;
}

// Master clocks from the start of the next step to the start of the next one with a visible event, or of a line
// that may have one.
template <const auto& Actions, const auto& Starts>
uint32_t ClocksToVisibleEvent(const MD_VDP& vdp) {
    static constexpr auto kEvents = VisibleEvents(Actions);
    const uint32_t now = Starts[vdp.hCount];
    for (const auto& [step, event] : kEvents) {
        if (step >= vdp.hCount && IsVisible(vdp, event)) {
            return Starts[step] - now;
        }
    }
    return kMdVdpLineClocks * (QuietLines<Actions>(vdp) + 1) - now;
}

// Which steps end a span: slots that the FIFO or a DMA would use, and fetches in the lines of the picture.
enum SpanKind : uint32_t { kNoSlots, kDisplaySlots, kBlankedSlots, kNoFetches };

template <size_t Steps>
constexpr std::array<uint8_t, Steps> WithoutFetches(std::array<uint8_t, Steps> actions) {
    for (uint8_t& action : actions) {
        if ((action & kMdVdpEventBits) == kMdVdpFetch) {
            action = 0;
        }
    }
    return actions;
}

template <size_t Steps>
constexpr std::array<std::array<uint8_t, Steps>, 4>
BuildSpans(const std::array<uint8_t, Steps>& actions, const std::array<uint8_t, Steps>& lengths) {
    return {SpanLengths(actions, lengths, kMdVdpEventBits),
            SpanLengths(actions, lengths, kMdVdpEventBits | kMdVdpDisplaySlot),
            SpanLengths(actions, lengths, kMdVdpEventBits | kMdVdpBlankedSlot),
            SpanLengths(WithoutFetches(actions), lengths, kMdVdpEventBits)};
}

constexpr auto kSpansH32 = BuildSpans(kMdVdpActionsH32, kMdVdpLengthsH32);
constexpr auto kSpansH40 = BuildSpans(kMdVdpActionsH40, kMdVdpLengthsH40);

// In shadow mode: the offset of a pixel's colour table from the shadow table, by operator, layer and
// `lineFlags`. An invalid operator puts out nothing.
constexpr uint16_t kNothing = 0xFFFF;
constexpr uint16_t kShadow = 0;
constexpr uint16_t kPlain = 512;
constexpr uint16_t kBright = 1024;

constexpr uint16_t FindShade(uint32_t op, uint32_t layer, uint32_t flag) {
    const uint16_t byFlag = flag != 0 ? kPlain : kShadow;
    const uint16_t raised = flag != 0 ? kBright : kPlain;
    const bool above = layer > kMdVdpSpriteLow;
    switch (op) {
    case 0: return byFlag;
    case kMdVdpSpriteLow + 1: return above ? byFlag : kShadow;
    case kMdVdpSpriteHigh + 1: return kShadow;
    case kMdVdpSpriteLow + 2: return above ? byFlag : raised;
    case kMdVdpSpriteHigh + 2: return raised;
    default: return kNothing;
    }
}

// The same as one flat table.
constexpr uint32_t kShadeOps = 16;
constexpr uint32_t kShadeLayers = 16;

constexpr uint32_t ShadeIndex(uint32_t op, uint32_t layer, uint32_t flag) {
    return (op % kShadeOps * kShadeLayers + layer % kShadeLayers) * 2 + (flag & 1);
}

constexpr auto kShades = [] {
    std::array<uint16_t, size_t{kShadeOps} * kShadeLayers * 2> shades{};
    for (uint32_t op = 0; op < kShadeOps; ++op) {
        for (uint32_t layer = 0; layer < kShadeLayers; ++layer) {
            for (uint32_t flag = 0; flag < 2; ++flag) {
                shades[ShadeIndex(op, layer, flag)] = FindShade(op, layer, flag);
            }
        }
    }
    return shades;
}();

[[gnu::always_inline]] inline void PutShadowedDot(MD_VDP& vdp, uint32_t x) {
    const uint32_t layer = vdp.layerCode[x];
    const uint32_t shade = kShades[ShadeIndex(vdp.shadowOp[x], layer, vdp.lineFlags[x])];
    if (shade != kNothing) {
        vdp.rowOut[x] = vdp.colourTables[shade + vdp.layerBuffers[layer][x]];
    }
}

// Operators are rare. In a block of eight dots without any, the flags alone choose the table.
constexpr uint32_t kBlock = 8;

[[nodiscard]] inline uint64_t LoadBlock(const uint8_t* bytes) {
    uint64_t block = 0;
    std::memcpy(&block, bytes, sizeof block);
    return block;
}

// Whether all eight bytes are the same.
[[nodiscard]] inline bool IsUniform(uint64_t block) {
    return block == std::rotl(block, 8);
}

// Eight dots by one colour table. In most blocks one layer is on top of all of them.
[[gnu::always_inline]] inline void PutBlock(const MD_VDP& vdp, uint32_t x,
                                            const uint32_t* colours) {
    const uint64_t codes = LoadBlock(&vdp.layerCode[x]);
    uint32_t* row = vdp.rowOut + x;
    if (IsUniform(codes)) {
        const uint16_t* line = vdp.layerBuffers[codes & 0xFF] + x;
        for (uint32_t i = 0; i < kBlock; ++i) {
            row[i] = colours[line[i]];
        }
        return;
    }
    for (uint32_t i = 0; i < kBlock; ++i) {
        row[i] = colours[vdp.layerBuffers[vdp.layerCode[x + i]][x + i]];
    }
}

void PutShadowedDots(MD_VDP& vdp, uint32_t x, uint32_t end) {
    constexpr uint64_t kFlags = 0x0101010101010101;
    for (; end - x >= kBlock; x += kBlock) {
        const uint64_t flags = LoadBlock(&vdp.lineFlags[x]) & kFlags;
        if (LoadBlock(&vdp.shadowOp[x]) == 0 && IsUniform(flags)) {
            PutBlock(vdp, x, vdp.colourTables + (flags & 1) * kPlain);
            continue;
        }
        for (uint32_t i = 0; i < kBlock; ++i) {
            PutShadowedDot(vdp, x + i);
        }
    }
    for (; x < end; ++x) {
        PutShadowedDot(vdp, x);
    }
}

void PutPlainDots(MD_VDP& vdp, uint32_t x, uint32_t end) {
    const uint32_t* colours = vdp.colourTables + kPlain;
    for (; end - x >= kBlock; x += kBlock) {
        PutBlock(vdp, x, colours);
    }
    for (; x < end; ++x) {
        vdp.rowOut[x] = colours[vdp.layerBuffers[vdp.layerCode[x]][x]];
    }
}

void PutDotsPlain(MD_VDP& vdp, uint32_t x, uint32_t end) {
    if (vdp.shadowMode != 0) {
        PutShadowedDots(vdp, x, end);
    } else {
        PutPlainDots(vdp, x, end);
    }
}

void SetBackdrop(MD_VDP& vdp, uint32_t first, uint32_t count) {
    // The first dot shows the colour of a DMA to CRAM, if there was one.
    md_vdp_tick::SetBackdropDot(vdp, first, vdp.h40 != 0);
    std::fill_n(&vdp.backdropLine[first] + 1, count - 1, md_vdp_tick::BackdropColour(vdp));
    std::fill_n(&vdp.lineFlags[first] + 1, count - 1, uint8_t{1});
    if (vdp.h40 != 0) {
        std::fill_n(&vdp.layerCode[first] + 1, count - 1, uint8_t{kMdVdpBackdrop});
    }
    vdp.backdropX = first + count - 1;
}

// Whether sprites collide at any of these dots: the count is above 1.
bool Collide(const MD_VDP& vdp, uint32_t x, uint32_t end) {
    constexpr uint64_t kAboveOne = 0xFEFEFEFEFEFEFEFE;
    uint64_t met = 0;
    std::array<uint64_t, 4> counts{};
    for (; end - x >= sizeof counts; x += sizeof counts) {
        std::memcpy(counts.data(), &vdp.spriteDots[x], sizeof counts);
        met |= (counts[0] | counts[1]) | (counts[2] | counts[3]);
    }
    met &= kAboveOne;
    for (; x < end; ++x) {
        met |= vdp.spriteDots[x] & kAboveOne;
    }
    return met != 0;
}

#ifdef OMBRELUNE_MD_VDP_WIDE
constexpr uint32_t kWideBlock = 16;

// Blocks of sixteen dots by the plain colour table.
OMBRELUNE_MD_VDP_WIDE void PutPlainBlocks(const MD_VDP& vdp, uint32_t x, uint32_t end) {
    for (; x < end; x += kWideBlock) {
        const __m256i colours = md_vdp_wide::TopColours(vdp, x);
        auto* row = reinterpret_cast<__m256i*>(vdp.rowOut + x);
        _mm256_storeu_si256(row, md_vdp_wide::PlainPixels(_mm256_castsi256_si128(colours)));
        _mm256_storeu_si256(row + 1,
                            md_vdp_wide::PlainPixels(_mm256_extracti128_si256(colours, 1)));
    }
}

// Whether sixteen dots have no operator and aren't shadowed.
OMBRELUNE_MD_VDP_WIDE bool ArePlain(const MD_VDP& vdp, uint32_t x) {
    const auto ops = md_vdp_wide::Load16(&vdp.shadowOp[x]);
    const auto flags = md_vdp_wide::Load16(&vdp.lineFlags[x]);
    const auto arePlain =
        _mm_and_si128(_mm_cmpeq_epi8(ops, _mm_setzero_si128()), _mm_slli_epi16(flags, 7));
    return _mm_movemask_epi8(arePlain) == 0xFFFF;
}

OMBRELUNE_MD_VDP_WIDE void PutDotsWide(MD_VDP& vdp, uint32_t x, uint32_t end) {
    while (end - x >= kWideBlock) {
        uint32_t plainEnd = x;
        while (end - plainEnd >= kWideBlock && (vdp.shadowMode == 0 || ArePlain(vdp, plainEnd))) {
            plainEnd += kWideBlock;
        }
        PutPlainBlocks(vdp, x, plainEnd);
        x = plainEnd;
        if (end - x >= kWideBlock) {
            PutShadowedDots(vdp, x, x + kWideBlock);
            x += kWideBlock;
        }
    }
    PutDotsPlain(vdp, x, end);
}
#else
constexpr auto PutDotsWide = PutDotsPlain;
#endif

void PutDots(MD_VDP& vdp, uint32_t count) {
    const uint32_t end = vdp.outX + count;
    (vdp.wide != 0 ? PutDotsWide : PutDotsPlain)(vdp, vdp.outX, end);
    if (Collide(vdp, vdp.outX, end)) {
        vdp.status |= kMdVdpCollision;
    }
    vdp.outX = end;
}

// Runs `count` steps that do nothing but put out their dots.
void RunSpan(MD_VDP& vdp, uint32_t count) {
    const uint32_t start = vdp.h40 != 0 ? kMdVdpFirstDotH40 : kMdVdpFirstDotH32;
    const uint32_t dots = vdp.h40 != 0 ? kMdVdpDotsH40 : kMdVdpDotsH32;
    const uint32_t first = std::max(vdp.hCount, start);
    const uint32_t end = std::min(vdp.hCount + count, start + dots);
    vdp.hCount += count;
    if (first >= end) {
        return;
    }
    if (vdp.blanked != 0) {
        SetBackdrop(vdp, first - start, end - first);
    }
    if (vdp.rowOut != nullptr && vdp.outX < dots) {
        PutDots(vdp, std::min(end - first, dots - vdp.outX));
    }
}

uint32_t SpanLength(const MD_VDP& vdp, uint32_t kind) {
    return vdp.h40 != 0 ? kSpansH40[kind][vdp.hCount] : kSpansH32[kind][vdp.hCount];
}

// Whether the slots that come write VRAM alone, so that no dot shows them, and start nothing else at their end.
bool WritesVramAlone(const MD_VDP& vdp) {
    if (vdp.dmaPending != 0 || (vdp.dmaState == kMdVdpDmaBus && vdp.dmaCode != kMdVdpCodeVram)) {
        return false;
    }
    const auto* entry = vdp.fifo.data();
    return std::all_of(entry, entry + vdp.fifoCount,
                       [](const auto& waiting) { return waiting.code == kMdVdpCodeVram; });
}

// The blanked slots among `count` steps.
template <size_t Steps>
uint32_t CountSlots(const std::array<uint16_t, Steps>& before, uint32_t from, uint32_t count) {
    return uint32_t{before[from + count]} - before[from];
}

constexpr auto kSlotsBeforeH32 = md_vdp_timetable::CountBefore(kMdVdpActionsH32, kMdVdpBlankedSlot);
constexpr auto kSlotsBeforeH40 = md_vdp_timetable::CountBefore(kMdVdpActionsH40, kMdVdpBlankedSlot);

// Runs a span below the picture, with its slots.
void RunDarkSpan(MD_VDP& vdp, uint32_t count) {
    uint32_t slots = vdp.h40 != 0 ? CountSlots(kSlotsBeforeH40, vdp.hCount, count)
                                  : CountSlots(kSlotsBeforeH32, vdp.hCount, count);
    RunSpan(vdp, count);
    for (; slots != 0 && md_vdp_tick::HasSlotWork(vdp); --slots) {
        MdVdpAccessSlot(vdp);
    }
}

// The part of a line between its start and its end, by width.
struct Display {
    uint32_t start; // the step that restarts the columns
    uint32_t end;   // the step that draws the next line's sprites
    uint32_t firstFetch;
    uint32_t fetches;
    uint32_t firstDot;
    uint32_t dots;
    const uint16_t* starts; // of each step, in master clocks
    struct Event {
        uint32_t step;
        uint32_t event;
    };
    std::array<Event, 5> events; // all but the fetches; unused ones lie after the end
};

template <size_t Steps>
constexpr Display BuildDisplay(const std::array<uint8_t, Steps>& actions,
                               const std::array<uint16_t, Steps>& starts, uint32_t firstDot,
                               uint32_t dots) {
    using md_vdp_timetable::StepOf;
    Display display{};
    display.start = StepOf(actions, kMdVdpLineStart);
    display.end = StepOf(actions, kMdVdpLineEnd);
    display.firstFetch = StepOf(actions, kMdVdpFetch);
    display.firstDot = firstDot;
    display.dots = dots;
    display.starts = starts.data();
    display.events.fill({Steps, kMdVdpNoEvent});
    size_t count = 0;
    for (uint32_t step = display.start; step < display.end; ++step) {
        const uint32_t event = actions[step] & kMdVdpEventBits;
        if (event == kMdVdpFetch) {
            ++display.fetches;
        } else if (event != kMdVdpNoEvent) {
            display.events[count++] = {step, event};
        }
    }
    return display;
}

// By `h40`.
constexpr Display kDisplays[2] = {
    BuildDisplay(kMdVdpActionsH32, kStartsH32, kMdVdpFirstDotH32, kMdVdpDotsH32),
    BuildDisplay(kMdVdpActionsH40, kStartsH40, kMdVdpFirstDotH40, kMdVdpDotsH40)};

// How many of the fetches come before a step, and how many of the dots.
uint32_t FetchesBefore(const Display& display, uint32_t step) {
    const uint32_t begun = step > display.firstFetch ? (step - display.firstFetch + 15) / 16 : 0;
    return std::min(begun, display.fetches);
}

uint32_t DotsBefore(const Display& display, uint32_t step) {
    return step > display.firstDot ? std::min(step - display.firstDot, display.dots) : 0;
}

// Whether the steps from here to the end of the line's display can run at once: the display is on, no slot is
// used, and columns and dots are where the timetable has them, which a damaged state need not have.
bool ShowsCells(const MD_VDP& vdp, const Display& display) {
    if (vdp.hCount < display.start || vdp.hCount >= display.end) {
        return false;
    }
    if (vdp.hCount == display.start) {
        return true;
    }
    const uint32_t x = vdp.tileColumn * 8;
    return vdp.tileColumn == FetchesBefore(display, vdp.hCount) * 2 && vdp.planeAX - x < 8 &&
           vdp.planeBX - x < 8 &&
           (vdp.rowOut == nullptr || vdp.outX == DotsBefore(display, vdp.hCount));
}

// Runs the steps of the display that are due, all events first, then all fetches, then all dots. A fetch draws
// only right of the dots that went out before it, and no event but the first two changes what is drawn; these
// come before the first dot.
void RunDisplay(MD_VDP& vdp, const Display& display) {
    const uint32_t from = vdp.hCount;
    const auto due = static_cast<uint32_t>(display.starts[from] + vdp.stepDebt);
    const uint16_t* last = display.starts + display.end;
    const auto end = static_cast<uint32_t>(
        due >= *last ? display.end
                     : std::lower_bound(display.starts + from, last, due) - display.starts);
    vdp.stepDebt -= display.starts[end] - display.starts[from];
    for (const auto& [step, event] : display.events) {
        if (step >= from && step < end) {
            vdp.hCount = step + 1;
            MdVdpRunAction(vdp, event, false);
        }
    }
    vdp.hCount = end;
    const uint32_t fetches = FetchesBefore(display, end) - FetchesBefore(display, from);
    if (fetches != 0) {
        MdVdpFetchLine(vdp, fetches);
    }
    const uint32_t dots = DotsBefore(display, end);
    if (vdp.rowOut != nullptr && vdp.outX < dots) {
        PutDots(vdp, dots - vdp.outX);
    }
}

} // namespace

void MdVdpPutShadowedDot(MD_VDP& vdp) {
    PutShadowedDot(vdp, vdp.outX);
}

void MdVdpRun(MD_VDP& vdp, uint32_t masterClocks) {
    vdp.stepDebt += static_cast<int32_t>(masterClocks);
    while (vdp.stepDebt > 0) {
        const bool slotWork = md_vdp_tick::HasSlotWork(vdp);
        if (!slotWork && vdp.blanked == 0) {
            const Display& display = kDisplays[vdp.h40 & 1];
            if (ShowsCells(vdp, display)) {
                RunDisplay(vdp, display);
                continue;
            }
        }
        const bool dark = vdp.line >= vdp.activeHeight && (!slotWork || WritesVramAlone(vdp));
        const uint32_t kind = dark               ? kNoFetches
                              : !slotWork        ? kNoSlots
                              : vdp.blanked != 0 ? kBlankedSlots
                                                 : kDisplaySlots;
        const uint32_t length = vdp.stepTable[vdp.hCount];
        const uint32_t span = SpanLength(vdp, kind);
        if (span == 0) {
            vdp.stepDebt -= static_cast<int32_t>(length);
            if (vdp.h40 != 0) {
                MdVdpStepH40(vdp);
            } else {
                MdVdpStepH32(vdp);
            }
            continue;
        }
        const auto debt = static_cast<uint32_t>(vdp.stepDebt);
        const uint32_t due = length == 8 ? (debt + 7) / 8 : (debt + 9) / 10;
        const uint32_t count = std::min(due, span);
        vdp.stepDebt -= static_cast<int32_t>(count * length);
        if (dark && slotWork) {
            RunDarkSpan(vdp, count);
        } else {
            RunSpan(vdp, count);
        }
    }
}

uint32_t MdVdpClocksToEvent(const MD_VDP& vdp, bool busIsQuiet) {
    // A control word that waits for the end of a copy or fill may start a DMA from the bus.
    if (vdp.fifoCount > kMdVdpFifo || vdp.dmaPending != 0) {
        return 0;
    }
    const uint32_t clocks = vdp.h40 != 0 ? ClocksToVisibleEvent<kMdVdpActionsH40, kStartsH40>(vdp)
                                         : ClocksToVisibleEvent<kMdVdpActionsH32, kStartsH32>(vdp);
    const uint32_t toEvent = clocks + static_cast<uint32_t>(-vdp.stepDebt);
    if (vdp.dmaState != kMdVdpDmaBus) {
        return toEvent;
    }
    if (!busIsQuiet || *vdp.stall == 0) {
        return 0;
    }
    // The end of the DMA releases the 68000. At best every second step of 8 clocks is a slot.
    constexpr uint32_t kClocksASlot = 16;
    const uint32_t slots = (vdp.dmaLength - 1) * (vdp.dmaCode == kMdVdpCodeVram ? 2 : 1);
    return std::min(toEvent, slots * kClocksASlot);
}
