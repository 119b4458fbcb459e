#include "video/video_rate.h"

#include "facts/machine_facts.h"

namespace {

// Sega's consoles and boards: master clock by the clocks of a line and the lines of a picture.
constexpr VIDEO_RATE kSegaNtsc = {53693175, 3420 * 262};
constexpr VIDEO_RATE kSegaPal = {53203424, 3420 * 313};

// NES: the dot clock is a quarter of 236.25 / 11 MHz, and pictures have 341 * 262 dots, every second one a dot less. In
// Europe it is a fifth of 26.6017125 MHz, and a picture has 341 * 312 dots.
constexpr VIDEO_RATE kNesNtsc = {39375000, 655171};
constexpr VIDEO_RATE kNesPal = {10640685, 212784};

static_assert(uint64_t{236250000} * 2 * kNesNtsc.divisor ==
              uint64_t{11} * 4 * (2 * 341 * 262 - 1) * kNesNtsc.number);
static_assert(uint64_t{26601712} * 2 + 1 == uint64_t{5} * kNesPal.number);
static_assert(2 * 341 * 312 == kNesPal.divisor);

} // namespace

VIDEO_RATE VideoRate(uint32_t system, uint32_t samplePairs, uint32_t sampleRate) {
    const bool fifty = uint64_t{samplePairs} * 55 > sampleRate;
    if (system == kSystemNes) {
        return fifty ? kNesPal : kNesNtsc;
    }
    return fifty ? kSegaPal : kSegaNtsc;
}
