// GamePanel: the menu of the game that is played alone in its window (screens/game_menu.h), which waits meanwhile.
//
// It is opened by the action Game Menu, a controller's guide button, or back and start held on it (pad_chord.h); the
// same close it again. There is no library here, so none is offered: a game is dropped on the window.
//
// Thread: main. Order: Update once a round, before the toolkit's tick. A game that ends takes the menu with it.
#pragma once

#include "front/gui_pad.h"
#include "front/pad_chord.h"
#include "front/paused_game.h"
#include "screens/controls_card.h"
#include "screens/program_modes.h"
#include "settings/input_frame.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

class GameMenu;
struct SCREEN_INPUT;

// The game that plays; serial 0: none.
struct PANEL_GAME {
    uint32_t key = 0;
    uint32_t serial = 0;
    uint16_t system = 0;
    std::string title; // of the game and its machine
    PadNames padNames;
};

struct PANEL_CALLS {
    std::function<void()> needAppearance; // before its windows are made
    std::function<void()> settingsChanged;
    std::function<void()> saveSettings;
    // Saved states, reset or quit; in the round after the choice.
    std::function<void(ModeInput chosen)> chosen;
};

class GamePanel {
public:
    explicit GamePanel(PANEL_CALLS panelCalls);
    ~GamePanel();
    GamePanel(const GamePanel&) = delete;
    GamePanel& operator=(const GamePanel&) = delete;

    void Update(const SCREEN_INPUT& input, const PANEL_GAME& game);
    void Close();
    [[nodiscard]] GameMenu* Menu() const { return menu; } // null while it is closed

private:
    [[nodiscard]] bool ReadOpeners(int64_t now);
    void Open(const PANEL_GAME& game);

    PANEL_CALLS calls;
    GameMenu* menu = nullptr;
    uint32_t serial = 0; // of the game that it is open for
    std::optional<ModeInput> wish;
    PausedGame paused;
    GuiPad pad;
    PadChord chord;
    InputLooker looker;
    bool held = true; // the action, or the guide button, in the round before
};
