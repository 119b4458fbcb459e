// GameMenu: the panel over a game that waits, for keys and controllers as well as the mouse. Its buttons are at the
// left; at the right is one page: what the machine is played with, or the settings of picture or sound, which act at
// once.
//
// Escape, a controller's right button and "Resume" close it with nothing chosen; on a page's own controls the first two
// lead back to its button. Other buttons close it with what they choose, but for those of pages and full screen.
// Styles: those of a message box, of the options screen and of ControlsCard.
// Lifetime: it ends itself after `done`, which is called once. Abandon ends it without the call.
#pragma once

#include "gui/dimmed_box.h"
#include "screens/controls_card.h"
#include "screens/live_rows.h"
#include "screens/program_modes.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class CGhostButton;
class CGhostTextBox;

enum class MenuPage : uint8_t { kControls, kPicture, kSound };
inline constexpr size_t kMenuPages = 3;

// One of the program's ways, besides what the menu offers by itself.
struct GAME_MENU_ENTRY {
    std::wstring caption;
    ModeInput input;
};

// What it is opened for.
struct GAME_MENU {
    std::wstring title;                     // of the game and its machine; empty without a game
    uint16_t system = 0;                    // the machine; 0 without a game
    std::vector<GAME_MENU_ENTRY> ofGame;    // above the pages: saved states, reset
    std::vector<GAME_MENU_ENTRY> ofProgram; // below them: the ways out
    bool room = false;                      // with the settings of the room's pictures
    PadNames padNames;
    std::function<void()> settingsChanged; // after every change, such as each step of a slider
};

class GameMenu : public DimmedBox {
public:
    using Done = std::function<void(std::optional<ModeInput> chosen)>;

    GameMenu(GAME_MENU menuOf, Done done);

    void Dismiss() { End(std::nullopt); }
    // Back to the button of the page whose control has the focus; else as Dismiss.
    void GoBack();
    void Abandon();

    // In their order, from 0: "Resume", the game's entries, the pages, full screen, the program's entries.
    [[nodiscard]] const std::vector<CGhostButton*>& Buttons() const { return buttons; }
    // Null if it is not offered.
    [[nodiscard]] CGhostButton* ButtonOf(std::wstring_view caption) const;

    [[nodiscard]] MenuPage Page() const { return page; }
    void ShowPage(MenuPage wanted);
    // Of picture or sound.
    [[nodiscard]] LiveRows& Rows(MenuPage of) const { return *rows[static_cast<size_t>(of)]; }
    [[nodiscard]] const ControlsCard* Card() const { return card; } // null without a game

    void OnTick(unsigned microseconds) override;

protected:
    ~GameMenu() override;

private:
    CGhostButton* AddButton(const std::wstring& caption);
    void AddWay(const GAME_MENU_ENTRY& entry);
    void AddPage(MenuPage of);
    void AddFullScreen();
    void MakeCard();
    void ListenForBack(GHOSTMANAGER_WINDOW* stop);
    void Place() override;
    void PlaceCard(int32_t x, int32_t y);
    void End(std::optional<ModeInput> chosen);

    GAME_MENU menu;
    Done done;
    std::vector<CGhostButton*> buttons;
    std::array<CGhostButton*, kMenuPages> pageButtons{};
    CGhostButton* fullScreen = nullptr;
    CGhostTextBox* heading;
    ControlsCard* card = nullptr;
    std::vector<KeyLine*> programKeys; // below the card
    std::array<std::unique_ptr<LiveRows>, kMenuPages> rows;
    MenuPage page = MenuPage::kControls;
    bool ended = false;
};
