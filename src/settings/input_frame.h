// A snapshot of the inputs for one frame, in which no short press is missing.
//
// The main thread changes the tables of `bindings.h` whenever events arrive. A reader that works frame
// by frame (a machine, the hotkeys of a session) keeps an `InputLooker` and holds an `InputFrame` for
// the length of its frame; `InputIsDown` and `BindingIsDown` on that thread then return the state at
// the moment when the frame began. An input is down in a frame if it is down at that moment, or if it
// was pressed since the looker's previous frame, even if it has been released again. A tap between two
// frames is therefore down in exactly one frame, at any rate of frames and events, and a press seen in
// one frame adds nothing to the next. Every looker sees each tap once, independently of the others.
//
// A tap that no frame could use is dropped, not kept for later: one made while the session was not the
// active one or the user was walking in the room, and, for a looker whose owner calls
// `ForgetAfterPause` before its frames, one made in a pause longer than `kLongestFrame`. Headless runs
// don't call it: in them nothing may depend on the clock. The program's own frames, those of
// `kApplicationKey`, see every tap.
//
// Units: microseconds of a steady clock.
// Threads: a looker belongs to one thread at a time; nothing takes a lock. Frames nest: the innermost
// one is read.
#pragma once

#include "settings/input_state.h"

#include <cstdint>

inline constexpr int64_t kLongestFrame = 250'000;

[[nodiscard]] int64_t InputClock();

class InputLooker {
public:
    InputLooker(); // ignores earlier presses

    void ForgetAfterPause(int64_t now = InputClock());

private:
    friend class InputFrame;

    void Look(uint64_t tapsAfter); // presses up to that number count only while they last

    INPUT_STATE state;
    uint64_t seen;         // number of the newest change seen
    int64_t lookedAt;      // time of the last ForgetAfterPause
    bool refreshes = true; // `state` holds taps, or is still empty
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
