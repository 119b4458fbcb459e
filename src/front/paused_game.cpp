#include "front/paused_game.h"

#include "host/session.h"
#include "host/session_list.h"
#include "settings/bindings.h"
#include "settings/input_frame.h"
#include "settings/pad_defaults.h"

#include <utility>

namespace {

// Microseconds for what is held, as a stick may be for ever.
constexpr int64_t kLongestWait = 1000000;

bool AnythingIsHeld() {
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        if (InputCodeIsDown(code, false)) {
            return true;
        }
    }
    return InputPadsDown() != 0;
}

bool IsPaused(uint32_t key) {
    const SessionPin session = PinSession(key);
    return session && session->paused;
}

} // namespace

bool PausedGame::Hold(uint32_t sessionKey) {
    GoOn();
    const bool was = IsPaused(sessionKey);
    if (!EmuPauseSession(sessionKey, true)) {
        return false;
    }
    key = sessionKey;
    holds = true;
    paused = !was;
    leaving = false;
    leftAt = 0;
    return true;
}

void PausedGame::LetGo() {
    leaving = leaving || holds;
}

void PausedGame::Update(int64_t now) {
    if (!leaving) {
        return;
    }
    leftAt = leftAt == 0 ? now : leftAt;
    if (!AnythingIsHeld() || now - leftAt > kLongestWait) {
        GoOn();
    }
}

void PausedGame::GoOn() {
    if (!std::exchange(holds, false)) {
        return;
    }
    leaving = false;
    leftAt = 0;
    HandPressesOver(); // what was pressed meanwhile is not the game's
    if (std::exchange(paused, false)) {
        static_cast<void>(EmuPauseSession(key, false));
    }
}
