#include "base/audio_rate.h"

#include <atomic>

namespace {

std::atomic<uint32_t> gAudioRate{44100};

} // namespace

void SetAudioRate(uint32_t rate) {
    gAudioRate.store(rate, std::memory_order_relaxed);
}

uint32_t AudioRate() {
    return gAudioRate.load(std::memory_order_relaxed);
}
