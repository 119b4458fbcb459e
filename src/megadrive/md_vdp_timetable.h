// The timetable of a line: what the Mega Drive's VDP does at which H step, for both widths.
//
// Published: 342 and 422 steps a line, two for each value of the H counter (C. MacDonald, "Sega Genesis VDP
//   documentation"). 16 and 18 access slots on a line with display: Sega's "Genesis Software Manual" counts
//   that many bytes of DMA to VRAM. Without display it counts 167 and 205 bytes; here are 167 and 207 slots.
// Settled here: at which steps the slots, the refresh and the events lie.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kMdVdpStepsH32 = 342;
inline constexpr uint32_t kMdVdpStepsH40 = 422;
inline constexpr uint32_t kMdVdpLineClocks = 3420; // master clocks, in both widths
inline constexpr uint32_t kMdVdpDotsH32 = 256;
inline constexpr uint32_t kMdVdpDotsH40 = 320;
inline constexpr uint32_t kMdVdpFirstDotH32 = 63; // the H step that puts out pixel 0
inline constexpr uint32_t kMdVdpFirstDotH40 = 77;

// The low four bits of an action.
enum MdVdpEvent : uint8_t {
    kMdVdpNoEvent,
    kMdVdpFetch,      // fetches 16 pixels of the planes
    kMdVdpHBlankEnd,  // also reads the line's horizontal scroll
    kMdVdpLineStart,  // restarts the columns; window and first cell
    kMdVdpTargetRow,  // finds the row of the picture
    kMdVdpVInterrupt, // also drives the Z80's line
    kMdVdpVCountIncrement,
    kMdVdpHBlankBegin, // also counts towards the H interrupt
    kMdVdpLineEnd,     // draws the sprites of the next line
    kMdVdpWrap,        // the next step is 0
};
inline constexpr uint8_t kMdVdpEventBits = 0x0F;
inline constexpr uint8_t kMdVdpDisplaySlot = 0x40; // an access slot on a line with display
inline constexpr uint8_t kMdVdpBlankedSlot = 0x80; // an access slot on a line without

namespace md_vdp_timetable {

struct Row {
    uint32_t from;
    uint32_t to;
    uint32_t every;
    uint8_t event;
};

inline constexpr uint32_t kLineStartH32 = 31;
inline constexpr uint32_t kLineStartH40 = 45;

inline constexpr Row kEventsH32[] = {
    {47,            287,           16, kMdVdpFetch          },
    {10,            10,            1,  kMdVdpHBlankEnd      },
    {kLineStartH32, kLineStartH32, 1,  kMdVdpLineStart      },
    {62,            62,            1,  kMdVdpTargetRow      },
    {0,             0,             1,  kMdVdpVInterrupt     },
    {266,           266,           1,  kMdVdpVCountIncrement},
    {295,           295,           1,  kMdVdpHBlankBegin    },
    {319,           319,           1,  kMdVdpLineEnd        },
    {341,           341,           1,  kMdVdpWrap           },
};
inline constexpr Row kEventsH40[] = {
    {61,            365,           16, kMdVdpFetch          },
    {16,            16,            1,  kMdVdpHBlankEnd      },
    {kLineStartH40, kLineStartH40, 1,  kMdVdpLineStart      },
    {76,            76,            1,  kMdVdpTargetRow      },
    {52,            52,            1,  kMdVdpVInterrupt     },
    {330,           330,           1,  kMdVdpVCountIncrement},
    {366,           366,           1,  kMdVdpHBlankBegin    },
    {397,           397,           1,  kMdVdpLineEnd        },
    {421,           421,           1,  kMdVdpWrap           },
};

inline constexpr uint32_t kSlotsH32[] = {7,   23,  45,  61,  93,  109, 125, 157,
                                         173, 189, 221, 237, 253, 285, 301, 317};
inline constexpr uint32_t kSlotsH40[] = {5,   59,  75,  107, 123, 139, 171, 187, 203,
                                         235, 251, 267, 299, 315, 331, 363, 379, 411};

// Without display every odd step is a slot, except these, which refresh VRAM.
inline constexpr uint32_t kRefreshH32[] = {211, 233, 251, 273};
inline constexpr uint32_t kRefreshH40[] = {101, 103, 105, 107};

template <size_t Steps, size_t Events, size_t Slots, size_t Refreshes>
constexpr std::array<uint8_t, Steps> Expand(const Row (&events)[Events],
                                            const uint32_t (&slots)[Slots],
                                            const uint32_t (&refreshes)[Refreshes]) {
    std::array<uint8_t, Steps> actions{};
    for (size_t step = 1; step < Steps; step += 2) {
        actions[step] = kMdVdpBlankedSlot;
    }
    for (const uint32_t step : refreshes) {
        actions[step] = 0;
    }
    for (const uint32_t step : slots) {
        actions[step] |= kMdVdpDisplaySlot;
    }
    for (const Row& row : events) {
        for (uint32_t step = row.from; step <= row.to; step += row.every) {
            actions[step] |= row.event;
        }
    }
    return actions;
}

template <size_t Steps>
constexpr std::array<uint8_t, Steps> Lengths() {
    std::array<uint8_t, Steps> lengths{};
    for (size_t step = 0; step < Steps; ++step) {
        const bool isLong = Steps == kMdVdpStepsH32 || (step >= 373 && step <= 394);
        lengths[step] = isLong ? 10 : 8;
    }
    return lengths;
}

template <size_t Steps>
constexpr uint32_t Sum(const std::array<uint8_t, Steps>& lengths) {
    uint32_t sum = 0;
    for (const uint8_t length : lengths) {
        sum += length;
    }
    return sum;
}

// For each step, the number of consecutive steps from it on that have the same length and no action of `mask`; 0 if
// the step itself has one.
template <size_t Steps>
constexpr std::array<uint8_t, Steps> SpanLengths(const std::array<uint8_t, Steps>& actions,
                                                 const std::array<uint8_t, Steps>& lengths,
                                                 uint32_t mask) {
    std::array<uint8_t, Steps> spans{};
    for (size_t step = Steps; step-- != 0;) {
        if ((actions[step] & mask) != 0) {
            continue;
        }
        const bool goesOn = step + 1 < Steps && lengths[step + 1] == lengths[step];
        spans[step] = static_cast<uint8_t>(1U + (goesOn ? spans[step + 1] : 0U));
    }
    return spans;
}

struct VisibleEvent {
    uint32_t step;
    uint32_t event;
};

// The three steps of a line whose events may reach the machine, in their order.
template <size_t Steps>
constexpr std::array<VisibleEvent, 3> VisibleEvents(const std::array<uint8_t, Steps>& actions) {
    std::array<VisibleEvent, 3> events{};
    size_t count = 0;
    for (uint32_t step = 0; step < Steps; ++step) {
        const uint32_t event = actions[step] & kMdVdpEventBits;
        if (event == kMdVdpVInterrupt || event == kMdVdpHBlankBegin || event == kMdVdpLineEnd) {
            events[count++] = {step, event};
        }
    }
    return events;
}

// For each step and the end of the line, how many steps before it have an action of `mask`.
template <size_t Steps>
constexpr std::array<uint16_t, Steps + 1> CountBefore(const std::array<uint8_t, Steps>& actions,
                                                      uint32_t mask) {
    std::array<uint16_t, Steps + 1> counts{};
    for (size_t step = 0; step < Steps; ++step) {
        counts[step + 1] =
            static_cast<uint16_t>(counts[step] + ((actions[step] & mask) != 0 ? 1 : 0));
    }
    return counts;
}

// The step of an event; the first one if it has several.
template <size_t Steps>
constexpr uint32_t StepOf(const std::array<uint8_t, Steps>& actions, uint32_t event) {
    uint32_t step = 0;
    while ((actions[step] & kMdVdpEventBits) != event) {
        ++step;
    }
    return step;
}

// Master clocks from the start of the line to the start of each step.
template <size_t Steps>
constexpr std::array<uint16_t, Steps> StartClocks(const std::array<uint8_t, Steps>& lengths) {
    std::array<uint16_t, Steps> starts{};
    for (size_t step = 1; step < Steps; ++step) {
        starts[step] = static_cast<uint16_t>(starts[step - 1] + lengths[step - 1]);
    }
    return starts;
}

} // namespace md_vdp_timetable

inline constexpr auto kMdVdpActionsH32 = md_vdp_timetable::Expand<kMdVdpStepsH32>(
    md_vdp_timetable::kEventsH32, md_vdp_timetable::kSlotsH32, md_vdp_timetable::kRefreshH32);
inline constexpr auto kMdVdpActionsH40 = md_vdp_timetable::Expand<kMdVdpStepsH40>(
    md_vdp_timetable::kEventsH40, md_vdp_timetable::kSlotsH40, md_vdp_timetable::kRefreshH40);
inline constexpr auto kMdVdpLengthsH32 = md_vdp_timetable::Lengths<kMdVdpStepsH32>();
inline constexpr auto kMdVdpLengthsH40 = md_vdp_timetable::Lengths<kMdVdpStepsH40>();
static_assert(md_vdp_timetable::Sum(kMdVdpLengthsH32) == kMdVdpLineClocks);
static_assert(md_vdp_timetable::Sum(kMdVdpLengthsH40) == kMdVdpLineClocks);
