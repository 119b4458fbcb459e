// CGUIGameOverlay: what lies over the room and a running game while menu and browser are hidden: hints in words
// while the player walks, a strip of buttons while his mouse is free.
//
// The buttons show while the mouse is used and for three seconds after. Keys and controllers have them, and more, in a
// panel that takes the input (game_menu.h): the strip's own must not hear the keys of a machine. Their numbers are
// those of the program:
//   1 Main Menu, 2 Load New Game, 3 Exit Game, 4 Fullscreen Mode or TV Mode, 5 Reset Game, 6 Saved States
//
// Units: those of the virtual screen. Thread: main. Order: made after the toolkit has its screen and its theme;
//   Update once a round, before the toolkit's tick.
#pragma once

#include "screens/controls_card.h"
#include "screens/screen_panel.h"

#include <array>
#include <cstdint>
#include <string>

class CGhostButton;
class CGhostTextBox;
class GameMenu;
class ScreenHost;

// The game that the menu is opened over.
struct MENU_GAME {
    std::wstring title;
    uint16_t system = 0; // 0: no game
    PadNames padNames;
};

struct OVERLAY_STATE {
    bool shown = false;   // the room or a game has the screen
    bool walking = false; // in the room
    bool roomVisible = false;
    bool selected = false;   // the player looks at a set, or plays on it
    bool selectedOn = false; // and a game plays on it
    bool mouseUsed = false;  // since the last Update
    // What the player presses, as it is printed on the key or the button of the controller in hand.
    // A hint without a name is not shown: the player has taken the action's key away.
    std::wstring mainMenu = L"F10";
    std::wstring use;
    std::wstring turnOff;
    std::wstring attach = L"ESC";
};

class CGUIGameOverlay {
public:
    explicit CGUIGameOverlay(ScreenHost& program);
    ~CGUIGameOverlay();
    CGUIGameOverlay(const CGUIGameOverlay&) = delete;
    CGUIGameOverlay& operator=(const CGUIGameOverlay&) = delete;

    void Update(const OVERLAY_STATE& state);

    // Opens the menu over the room or the game, or closes it. Nothing behind menu and browser.
    void ToggleMenu(const MENU_GAME& game = {});
    void CloseMenu();
    [[nodiscard]] GameMenu* Menu() const { return menu; } // null while it is closed

    static constexpr size_t kButtons = 6;
    static constexpr size_t kHints = 4;
    [[nodiscard]] CGhostButton* Button(uint32_t number) const {
        return buttons[number - 1];
    } // from 1
    [[nodiscard]] CGhostTextBox* Hint(size_t index) const { return hints[index]; }
    // The texts that are shown, in their order.
    [[nodiscard]] std::vector<std::wstring> ShownHints() const;

private:
    void Place();
    void PlaceHints();
    void ShowHints(const OVERLAY_STATE& state);
    void ShowButtons(const OVERLAY_STATE& state);

    ScreenHost& host;
    std::array<CGhostButton*, kButtons> buttons{};
    std::array<CGhostTextBox*, kHints> hints{};
    GUI_RECT screen; // that they were placed for
    GameMenu* menu = nullptr;
    std::array<bool, kButtons> offered{}; // as of the last Update
    uint64_t mouseUsed = 0;               // milliseconds of the program's clock
    bool everUsed = false;
    bool roomVisible = false; // as of the last Update
    ScreenSignals signals;
};
