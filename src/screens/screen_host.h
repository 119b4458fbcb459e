// ScreenHost: what the program's screens ask of the program that shows them. The windowed program implements it,
// and the tests have one of their own, so a screen needs neither a window nor a running machine.
//
// Thread: main, from the toolkit's tick.
#pragma once

#include "screens/program_modes.h"

#include <cstdint>

class ScreenHost {
public:
    virtual ~ScreenHost() = default;

    // What the player wants, as the table of modes knows it. It is done after the toolkit's tick.
    virtual void Take(ModeInput input) = 0;

    // A settings screen has changed values: those that take effect at once are read again.
    virtual void SettingsChanged() = 0;

    // Milliseconds of a steady clock.
    [[nodiscard]] virtual uint64_t Milliseconds() const = 0;
};
