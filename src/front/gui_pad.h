// GuiPad: the toolkit's windows by a game controller.
//
//   directional pad, left stick   move the focus, or a value within the control that has it; held, they repeat, and
//                                 what they move within a control stops at its end, as at a list's last row
//   lower button                  presses the control that has the focus
//   right button                  closes what is open in it, such as a list; otherwise it is for the screen
//   left button, shoulders, start, guide   are for the screen
// All controllers that play act alike.
//
// Units: microseconds of the host's clock. Thread: main. Order: Update once a round, before the toolkit's tick.
#pragma once

#include "settings/input_frame.h"

#include <cstdint>

// What is left for the screen: presses of this round.
struct PAD_PRESSES {
    bool back = false;
    bool start = false;
    bool guide = false;
    bool favourite = false; // the left button
    int shoulder = 0;       // -1 the left one, +1 the right one
};

class GuiPad {
public:
    // `active`: the toolkit has the controllers. Otherwise nothing is pressed, and what is held then does nothing
    // until it is pressed again.
    [[nodiscard]] PAD_PRESSES Update(bool active, int64_t now);

private:
    void Steer(uint64_t down, int64_t now);
    void Step(bool repeat);

    InputLooker looker;
    uint64_t held = ~uint64_t{0}; // controls that were down in the round before
    int direction = -1;           // index of the direction that is held, -1: none
    int64_t nextStep = 0;         // when it repeats
    bool within = false;          // its last step was one within a control
};
