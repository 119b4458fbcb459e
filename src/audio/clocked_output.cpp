#include "audio/clocked_output.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int64_t kSecond = 1'000'000'000;

// The time that the frames last, exact over centuries.
std::chrono::nanoseconds Duration(uint64_t frames, uint32_t rate) {
    const auto seconds = static_cast<int64_t>(frames / rate);
    const auto rest = static_cast<int64_t>(frames % rate);
    return std::chrono::nanoseconds(seconds * kSecond + rest * kSecond / rate);
}

} // namespace

uint64_t FramesAfterStandstill(uint64_t pulled, int64_t now, uint32_t rate, uint32_t longest) {
    if (now <= Duration(pulled + longest, rate).count()) {
        return pulled;
    }
    const auto whole = static_cast<uint64_t>(now / kSecond) * rate;
    const auto rest = static_cast<uint64_t>(now % kSecond) * rate / kSecond;
    return whole + rest;
}

struct ClockedOutput::Private {
    std::thread thread;
    std::mutex lock; // guards `ending`; no other lock is taken under it
    std::condition_variable changed;
    bool ending = false;

    void Run(uint32_t rate, uint32_t framesPerPull, const Pull& pull) {
        // In a recording of the output a late pull is a dropout like any other.
        SDL_SetThreadPriority(SDL_THREAD_PRIORITY_TIME_CRITICAL);
        std::vector<int16_t> unheard(size_t{framesPerPull} * 2);
        const auto leastGap = Duration(framesPerPull, rate) / 2;
        const Clock::time_point start = Clock::now();
        Clock::time_point due = start;
        uint64_t pulled = 0;
        std::unique_lock guard(lock);
        while (!changed.wait_until(guard, due, [this] { return ending; })) {
            guard.unlock();
            const Clock::time_point now = Clock::now();
            const std::chrono::nanoseconds passed = now - start;
            pulled = FramesAfterStandstill(pulled, passed.count(), rate, framesPerPull);
            pull(unheard.data(), framesPerPull);
            pulled += framesPerPull;
            due = std::max<Clock::time_point>(start + Duration(pulled, rate), now + leastGap);
            guard.lock();
        }
    }
};

ClockedOutput::ClockedOutput()
    : p(std::make_unique<Private>()) {}

ClockedOutput::~ClockedOutput() {
    Stop();
}

void ClockedOutput::Start(uint32_t rate, uint32_t framesPerPull, Pull pull) {
    Stop();
    p->ending = false;
    p->thread = std::thread(
        [this, rate, framesPerPull, pull = std::move(pull)] { p->Run(rate, framesPerPull, pull); });
}

void ClockedOutput::Stop() {
    {
        const std::lock_guard guard(p->lock);
        p->ending = true;
    }
    p->changed.notify_all();
    if (p->thread.joinable()) {
        p->thread.join();
    }
}
