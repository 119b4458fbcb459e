// The state of the inputs as the main thread writes it, and when each was last pressed.
//
// Every change has a rising number. A reader that keeps the newest number of its previous look knows
// which presses are new to it. The main thread writes a change first and its number last, so a reader
// of a number sees the whole change.
#pragma once

#include "settings/input_state.h"

struct PRESS_LOG {
    // The number of the newest press, 0 for none.
    std::array<std::atomic<uint64_t>, kInputCodes> codes{};
    std::array<std::atomic<uint64_t>, kPadBits> pads{};
    // Controls that the user has bound, so that they don't act by default.
    std::atomic<uint64_t> padsTaken{0};
    std::atomic<uint64_t> newest{0};
    // What was the newest when the sessions' input last got another owner. Earlier presses were for the one before.
    std::atomic<uint64_t> handedOver{0};
};

extern constinit INPUT_STATE gLiveInput;
extern constinit PRESS_LOG gPressLog;

// The state this thread reads: the live one, or that of its frame.
extern constinit thread_local const INPUT_STATE* tInputState;

// Main thread. Each also writes the live state.
void LogCode(uint32_t code, bool down);
void LogPads(uint64_t pressed, uint64_t acting, uint64_t taken);
void ForgetPresses();
void HandPressesOver();
