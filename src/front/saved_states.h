// SavedStates: the saved states of the game that is played, in a panel over it (slots_panel.h), opened by the action
// of that name.
//
// While the panel is open the game is paused and gets no input.
// Keys: escape and the action close it; a controller moves the focus, its lower button takes, its right button closes.
//
// Thread: main, a worker of its own for the disk. Order: made and used after the toolkit has its theme; Update once a
// round, before the toolkit's tick. A game that ends takes the panel with it.
#pragma once

#include "front/gui_pad.h"
#include "front/paused_game.h"
#include "host/slot_worker.h"
#include "screens/slots_panel.h"
#include "settings/input_frame.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct SCREEN_INPUT;

struct SAVED_STATES_GAME {
    uint32_t key = 0; // of its session
    uint32_t serial = 0;
    std::string title;
    std::function<uint64_t()> secondsPlayed; // until now; may be empty
};

class SavedStates {
public:
    SavedStates();
    ~SavedStates() = default;
    SavedStates(const SavedStates&) = delete;
    SavedStates& operator=(const SavedStates&) = delete;

    // True if the action was pressed and the panel was not open: the owner opens it if there is a game.
    [[nodiscard]] bool Update(const SCREEN_INPUT& input);

    void Open(SAVED_STATES_GAME game);
    void Close() { panel.Close(); }

    [[nodiscard]] bool IsShown() const { return panel.IsShown(); }
    [[nodiscard]] CGUISlotsPanel& Panel() { return panel; }

private:
    void ReadKeys(const SCREEN_INPUT& input, bool toggled);
    void Order(SlotAct act, uint32_t slot);
    void TakeAnswers();

    std::unique_ptr<SlotWorker> worker; // from the first use
    CGUISlotsPanel panel;
    SAVED_STATES_GAME game;
    GuiPad pad;
    InputLooker looker;
    bool held = false; // the action was down in the round before
    PausedGame paused;
};
