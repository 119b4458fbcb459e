// ScreenHost: what the program's screens ask of the program that shows them. The windowed program implements it,
// and the tests have one of their own, so a screen needs neither a window nor a running machine.
//
// Thread: main, from the toolkit's tick.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class CGameFile;

// Where the player is (program_modes of the program tells how one follows from another).
enum class ScreenPlace : uint8_t {
    kMenu,  // the main menu or one of its panels
    kRoom,  // the room, walking
    kPlay,  // what the selected set shows fills the window
};

// A joystick or game controller in use.
struct SCREEN_JOYSTICK {
    uint32_t number; // from 0, as in the codes of its bindings
    std::wstring name;
    uint32_t axes;
    uint32_t buttons;
    uint32_t hats;
    int32_t player; // from 0; -1: it acts only by bindings
};

class ScreenHost {
public:
    virtual ~ScreenHost() = default;

    // Ends the program after this round.
    virtual void Quit() = 0;
    virtual void GoTo(ScreenPlace place) = 0;

    // A settings screen has changed values: full screen, window size, vertical sync, filters, volume and boosts are
    // read again and take effect. Every move of a volume slider calls it, so it must leave alone what has not changed.
    virtual void SettingsChanged() = 0;
    // Writes the settings to their file. A failure is told to the player.
    virtual void SaveSettings() = 0;

    // In the order of their numbers.
    [[nodiscard]] virtual std::vector<SCREEN_JOYSTICK> Joysticks() const = 0;

    // The Master System game that the benchmark runs, its image unpacked. False if it cannot be had.
    [[nodiscard]] virtual bool OpenBenchmarkGame(CGameFile& game) const = 0;

    // Milliseconds of a steady clock. Any thread.
    [[nodiscard]] virtual uint64_t Milliseconds() const = 0;
};
