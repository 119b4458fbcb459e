// ScreenHost: what the program's screens ask of the program that shows them. The windowed program implements it,
// and the tests have one of their own, so a screen needs neither a window nor a running machine.
//
// Thread: main, from the toolkit's tick.
#pragma once

#include "formats/game_file.h"
#include "gui/bitmap.h"
#include "machines/machine_options.h"
#include "screens/program_modes.h"

#include <cstdint>
#include <string>
#include <vector>

// A game as it was chosen in the browser, with its image unpacked and its name selected.
struct GAME_TO_START {
    CGameFile game;
    CGameFile second; // a console's BIOS
    bool hasSecond = false;
    std::string title;
    OptionBlock options{};
};

class DownloadQueue;
class PlayerDatabase;
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

    // What the player wants, as the table of modes knows it. It is done after the toolkit's tick.
    virtual void Take(ModeInput input) = 0;

    // Starts the game on the set that the browser was opened for. The browser is left when it runs; a message box
    // says why it does not.
    virtual void StartGame(GAME_TO_START game) = 0;

    // The boxes of the chosen game, of a kind that the scene knows, with an arcade cabinet beside them or not. They
    // are drawn in the window that asks for it (kWindowBackgroundPass).
    virtual void ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet) = 0;
    // In units of that window's client area.
    virtual void CoverClick(int button, int32_t x, int32_t y) = 0;

    // Requests to the web service. Their callbacks run in the program's rounds.
    [[nodiscard]] virtual DownloadQueue& Downloads() = 0;

    // Favourites, and what was played when.
    [[nodiscard]] virtual PlayerDatabase& Player() = 0;

    // A settings screen has changed values: full screen, window size, vertical sync, filters, volume and boosts are
    // read again and take effect. Every move of a volume slider calls it, so it must leave alone what has not changed.
    virtual void SettingsChanged() = 0;
    // Writes the settings to their file. A failure is told to the player.
    virtual void SaveSettings() = 0;

    // The program has stood still, as the benchmark makes it: what the player has pressed meanwhile is for nobody.
    virtual void ForgetInput() = 0;

    // In the order of their numbers.
    [[nodiscard]] virtual std::vector<SCREEN_JOYSTICK> Joysticks() const = 0;

    // What the program itself does at a key of the keyboard, in a few words. Such a key cannot be bound to an action.
    // Empty for all others.
    [[nodiscard]] virtual std::wstring UseOfKey(uint32_t scancode) const = 0;

    // The Master System game that the benchmark runs, its image unpacked. False if it cannot be had.
    [[nodiscard]] virtual bool OpenBenchmarkGame(CGameFile& game) const = 0;

    // Milliseconds of a steady clock. Any thread.
    [[nodiscard]] virtual uint64_t Milliseconds() const = 0;
};
