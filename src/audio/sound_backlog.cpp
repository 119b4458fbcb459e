#include "audio/sound_backlog.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kPairBytes = 4;

// More than this is dropped at once. A frame of 50 ms, the longest, fits on top of the band in which the
// bias holds the waiting sound, which is 20 to 35 ms.
constexpr uint32_t kMostMs = 100;
// What is kept then: the bound is passed when a frame has just come, so this is the top of the level's
// swing, and the middle of it lies in the band.
constexpr uint32_t kKeptMs = 35;

// A level that does not fall to the band's top in half a second is lowered to the band's bottom: its
// lowest lies there while all is well.
constexpr uint32_t kSurplusMs = 35;
constexpr uint32_t kLowestMs = 20;

constexpr uint32_t kFadeMs = 5;

uint32_t Bytes(uint32_t rate, uint32_t milliseconds) {
    return static_cast<uint32_t>(uint64_t{rate} * milliseconds / 1000) * kPairBytes;
}

int16_t Load(const uint8_t* at) {
    int16_t sample = 0;
    std::memcpy(&sample, at, sizeof sample);
    return sample;
}

} // namespace

SoundBacklog::SoundBacklog(uint32_t rateValue)
    : rate(rateValue)
    , next(Bytes(rateValue, kFadeMs) / 2) {}

void SoundBacklog::Restart() {
    nextKnown = false;
    ForgetLevel();
}

void SoundBacklog::ForgetLevel() {
    lowest = UINT32_MAX;
    taken = 0;
    surplus = 0;
}

uint32_t SoundBacklog::Bound(uint8_t* pending, uint32_t waiting) {
    uint32_t dropped = surplus;
    surplus = 0;
    if (waiting > Bytes(rate, kMostMs)) {
        dropped = (waiting - Bytes(rate, kKeptMs)) / kPairBytes * kPairBytes;
    }
    if (dropped == 0 || dropped >= waiting) {
        return waiting;
    }
    ForgetLevel();
    CrossfadeOver(pending, dropped, waiting - dropped);
    return waiting - dropped;
}

void SoundBacklog::Taken(uint32_t waiting, uint32_t used) {
    nextKnown = false;
    lowest = std::min(lowest, waiting);
    taken += used;
    if (taken >= Bytes(rate, 500)) {
        const uint32_t over =
            lowest > Bytes(rate, kSurplusMs) ? lowest - Bytes(rate, kLowestMs) : 0;
        ForgetLevel();
        surplus = over;
    }
}

// What is kept moves to the front and fades in over what the device would have taken next. While the
// device stands still that remains the same, however often something is dropped.
void SoundBacklog::CrossfadeOver(uint8_t* pending, uint32_t dropped, uint32_t kept) {
    if (!nextKnown) {
        nextKnown = true;
        nextBytes = std::min(static_cast<uint32_t>(next.size() * 2), dropped + kept);
        std::memcpy(next.data(), pending, nextBytes);
    }
    std::memmove(pending, pending + dropped, kept);
    const uint32_t pairs = std::min(nextBytes, kept) / kPairBytes;
    for (uint32_t i = 0; i < pairs * 2; ++i) {
        const auto weight = static_cast<int32_t>(i / 2); // of what is kept
        const auto whole = static_cast<int32_t>(pairs);
        uint8_t* const at = pending + size_t{i} * 2;
        const auto mixed =
            static_cast<int16_t>((next[i] * (whole - weight) + Load(at) * weight) / whole);
        std::memcpy(at, &mixed, sizeof mixed);
    }
}
