#include "settings/input_frame.h"

#include "settings/bindings.h"
#include "settings/bindings/press_log.h"

#include <algorithm>
#include <chrono>

constinit INPUT_STATE gLiveInput;
constinit PRESS_LOG gPressLog;
constinit thread_local const INPUT_STATE* tInputState = &gLiveInput;

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr uint64_t kNoTaps = UINT64_MAX;

// Only the main thread counts.
uint64_t NextNumber() {
    return gPressLog.newest.load(kRelaxed) + 1;
}

void Publish(uint64_t number) {
    gPressLog.newest.store(number, std::memory_order_release);
}

} // namespace

void LogCode(uint32_t code, bool down) {
    const uint64_t number = NextNumber();
    const bool wasDown = gLiveInput.down[code].load(kRelaxed) != 0;
    if (down && !wasDown) {
        gPressLog.codes[code].store(number, kRelaxed);
    }
    // Whoever sees the key down sees its number as well.
    gLiveInput.down[code].store(down ? 1 : 0, std::memory_order_release);
    if (down != wasDown) {
        Publish(number);
    }
}

void LogPads(uint64_t pressed, uint64_t acting, uint64_t taken) {
    if (pressed == 0 && acting == gLiveInput.pads.load(kRelaxed) &&
        taken == gPressLog.padsTaken.load(kRelaxed)) {
        return;
    }
    const uint64_t number = NextNumber();
    for (uint32_t bit = 0; bit < kPadBits; ++bit) {
        if ((pressed >> bit & 1) != 0) {
            gPressLog.pads[bit].store(number, kRelaxed);
        }
    }
    gPressLog.padsTaken.store(taken, kRelaxed);
    gLiveInput.pads.store(acting, kRelaxed);
    Publish(number);
}

void ForgetPresses() {
    for (std::atomic<uint64_t>& number : gPressLog.codes) {
        number.store(0, kRelaxed);
    }
    for (std::atomic<uint64_t>& number : gPressLog.pads) {
        number.store(0, kRelaxed);
    }
    Publish(NextNumber());
}

void HandPressesOver() {
    gPressLog.handedOver.store(gPressLog.newest.load(kRelaxed), kRelaxed);
}

int64_t InputClock() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

InputLooker::InputLooker()
    : seen(gPressLog.newest.load(std::memory_order_acquire))
    , lookedAt(InputClock()) {}

// The tables may already hold a press later than the newest number. It belongs to the next frame;
// otherwise two frames could see one tap.
void InputLooker::Look(uint64_t tapsAfter) {
    const uint64_t newest = gPressLog.newest.load(std::memory_order_acquire);
    if (newest == seen && !refreshes) {
        return;
    }
    const uint64_t known = std::max(seen, std::min(tapsAfter, newest));
    refreshes = false;
    const auto look = [&](const std::atomic<uint64_t>& number, bool down) {
        const uint64_t pressed = number.load(kRelaxed);
        const bool tapped = pressed > known && pressed <= newest;
        refreshes |= tapped || pressed > newest;
        return tapped || (down && pressed <= newest);
    };
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        const bool down = gLiveInput.down[code].load(std::memory_order_acquire) != 0;
        state.down[code].store(look(gPressLog.codes[code], down) ? 1 : 0, kRelaxed);
    }
    const uint64_t acting = gLiveInput.pads.load(kRelaxed);
    uint64_t pads = 0;
    for (uint32_t bit = 0; bit < kPadBits; ++bit) {
        const bool down = (acting >> bit & 1) != 0;
        pads |= uint64_t{look(gPressLog.pads[bit], down) ? 1u : 0u} << bit;
    }
    state.pads.store(pads & ~gPressLog.padsTaken.load(kRelaxed), kRelaxed);
    seen = newest;
}

void InputLooker::ForgetAfterPause(int64_t now) {
    if (now - lookedAt > kLongestFrame) {
        Look(kNoTaps);
    }
    lookedAt = now;
}

InputFrame::InputFrame(InputLooker& looker, uint32_t sessionKey)
    : outer(tInputState) {
    if (sessionKey == kApplicationKey) {
        looker.Look(0);
    } else if (sessionKey == InputActiveKey() && !InputWalkingRoom()) {
        looker.Look(gPressLog.handedOver.load(kRelaxed));
    } else {
        looker.Look(kNoTaps);
    }
    tInputState = &looker.state;
}

InputFrame::~InputFrame() {
    tInputState = outer;
}
