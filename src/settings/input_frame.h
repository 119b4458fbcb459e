// A look at the inputs that stays the same for a frame, and in which no short press is missing.
//
// The main thread changes the tables of `bindings.h` whenever events come. Whoever reads inputs frame by
// frame (a machine, the hotkeys of a session) keeps an `InputLooker` and holds an `InputFrame` while its
// frame lasts; `InputIsDown` and `BindingIsDown` on that thread then answer from the moment at which the
// frame began. An input counts as down in a frame if it is down at that moment, or if it was pressed
// since the looker's frame before, even when it was let go again. So a tap that came and went between
// two frames is down in exactly one, whatever the rates of frames and events, and a press that is seen in
// one frame adds nothing to the next. Every looker sees each tap once, and none takes it from another.
//
// A tap that no frame could use is lost, not kept for later: one from a time when the session was not the
// active one or the user walked the room, and, for a looker whose owner says `ForgetAfterPause` before its
// frames, one from a pause of more than `kLongestFrame`. Runs of exact frames don't say so, since the
// clock must not decide anything in them.
//
// Units: microseconds of a steady clock.
// Threads: a looker belongs to one thread at a time; nothing takes a lock. Frames nest: the inner one
// answers.
#pragma once

#include "settings/input_state.h"

#include <cstdint>

inline constexpr int64_t kLongestFrame = 250'000;

[[nodiscard]] int64_t InputClock();

class InputLooker {
public:
    InputLooker(); // what was pressed before is not its own

    void ForgetAfterPause(int64_t now = InputClock());

private:
    friend class InputFrame;

    void Look(bool withTaps);

    INPUT_STATE state;
    uint64_t seen;         // the newest change that it knows
    int64_t lookedAt;      // when it was asked about a pause
    bool refreshes = true; // `state` holds taps, or nothing yet
};

class InputFrame {
public:
    InputFrame(InputLooker& looker, uint32_t sessionKey);
    ~InputFrame();
    InputFrame(const InputFrame&) = delete;
    InputFrame& operator=(const InputFrame&) = delete;

private:
    const INPUT_STATE* outer;
};
