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

    // A settings screen has changed values: those that take effect at once are read again.
    virtual void SettingsChanged() = 0;

    // Milliseconds of a steady clock.
    [[nodiscard]] virtual uint64_t Milliseconds() const = 0;
};
