// ScreenHost: what the program's screens ask of the program that shows them. The windowed program implements it,
// and the tests have one of their own, so a screen needs neither a window nor a running machine.
//
// Thread: main, from the toolkit's tick.
#pragma once

#include <cstdint>
#include <string>

// Where the player is (program_modes of the program tells how one follows from another).
enum class ScreenPlace : uint8_t {
    kMenu,  // the main menu or one of its panels
    kRoom,  // the room, walking
    kPlay,  // what the selected set shows fills the window
};

class ScreenHost {
public:
    virtual ~ScreenHost() = default;

    // Ends the program after this round.
    virtual void Quit() = 0;
    virtual void GoTo(ScreenPlace place) = 0;

    // A settings screen has changed values: those that take effect at once are read again.
    virtual void SettingsChanged() = 0;

    // Milliseconds of a steady clock.
    [[nodiscard]] virtual uint64_t Milliseconds() const = 0;
};
