#include "video/video_rate.h"

#include "facts/machine_facts.h"

namespace {

// Sega's consoles and boards: master clock by the clocks of a line and the lines of a picture.
constexpr VIDEO_RATE kSegaNtsc = {53693175, 3420 * 262};
constexpr VIDEO_RATE kSegaPal = {53203424, 3420 * 313};

// NES, which is the one of 60 Hz: the dot clock is a quarter of 236.25 / 11 MHz, and pictures have 341 * 262 dots, every
// second one a dot less.
constexpr VIDEO_RATE kNes = {39375000, 655171};

static_assert(uint64_t{236250000} * 2 * kNes.divisor ==
              uint64_t{11} * 4 * (2 * 341 * 262 - 1) * kNes.number);

} // namespace

VIDEO_RATE VideoRate(uint32_t system, uint32_t samplePairs, uint32_t sampleRate) {
    if (system == kSystemNes) {
        return kNes;
    }
    const bool fifty = uint64_t{samplePairs} * 55 > sampleRate;
    return fifty ? kSegaPal : kSegaNtsc;
}
