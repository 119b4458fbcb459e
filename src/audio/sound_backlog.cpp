#include "audio/sound_backlog.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kPairBytes = 4;

// More than this is dropped at once. It leaves room for the longest frame, 50 ms, above the band of 20
// to 35 ms in which the bias holds the waiting sound.
constexpr uint32_t kMostMs = 100;
// What is kept then. The bound is passed just after a frame arrives, so this is the peak of the level,
// and its mean is in the band.
constexpr uint32_t kKeptMs = 35;

// A level that stays above the band's top for half a second is lowered to the band's bottom, where its
// lowest point normally is.
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

// The kept sound moves to the front, with a crossfade from what the device would have taken next. While
// the device takes nothing that stays the same, however often sound is dropped.
void SoundBacklog::CrossfadeOver(uint8_t* pending, uint32_t dropped, uint32_t kept) {
    if (!nextKnown) {
        nextKnown = true;
        nextBytes = std::min(static_cast<uint32_t>(next.size() * 2), dropped + kept);
        std::memcpy(next.data(), pending, nextBytes);
    }
    std::memmove(pending, pending + dropped, kept);
    const uint32_t pairs = std::min(nextBytes, kept) / kPairBytes;
    for (uint32_t i = 0; i < pairs * 2; ++i) {
        const auto weight = static_cast<int32_t>(i / 2); // of the kept sound
        const auto whole = static_cast<int32_t>(pairs);
        uint8_t* const at = pending + size_t{i} * 2;
        const auto mixed =
            static_cast<int16_t>((next[i] * (whole - weight) + Load(at) * weight) / whole);
        std::memcpy(at, &mixed, sizeof mixed);
    }
}
