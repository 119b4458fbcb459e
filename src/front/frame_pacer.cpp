#include "front/frame_pacer.h"

#include <SDL_timer.h>

namespace {

constexpr int64_t kSecond = 1000000;
constexpr int64_t kHastyRound = 2000; // no display is that fast
constexpr uint32_t kHastySwapsToDistrust = 30;
constexpr uint32_t kIdleMilliseconds = 1;
constexpr uint32_t kHiddenMilliseconds = 10;

} // namespace

void FramePacer::Start(bool swapWaits, int64_t now) {
    *this = {};
    followDisplay = swapWaits;
    roundStart = rateStart = now;
}

void FramePacer::CountSwap(int64_t now) {
    news = false;
    ++swapsThisSecond;
    if (now - rateStart >= kSecond) {
        rateText = std::to_string(swapsThisSecond) + " frames/s";
        swapsThisSecond = 0;
        rateStart = now;
    }
    hastySwaps = now - roundStart < kHastyRound ? hastySwaps + 1 : 0;
    if (hastySwaps > kHastySwapsToDistrust) {
        followDisplay = false;
    }
}

void FramePacer::Wait(bool visible) {
    SDL_Delay(visible ? kIdleMilliseconds : kHiddenMilliseconds);
}

void FramePacer::EndRound(int64_t now) {
    frameTimeSeconds = static_cast<float>(now - roundStart) * 0.000001f;
    roundStart = now;
}
