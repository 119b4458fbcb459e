#include "screens/game_overlay.h"

#include "base/text.h"
#include "facts/machine_facts.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "screens/game_menu.h"
#include "screens/program_pointer.h"
#include "screens/screen_host.h"

namespace {

constexpr uint64_t kButtonsStay = kMouseRests / 1000; // milliseconds after the mouse was used

// Units.
constexpr int32_t kButtonWidth = 150;
constexpr int32_t kButtonHeight = 28;
constexpr int32_t kButtonGap = 12;
constexpr int32_t kHintGap = 24;
constexpr int32_t kHintOutline = 4; // that the letters reach out of their width
constexpr int32_t kHintHeight = 26;
constexpr int32_t kMargin = 20;

struct OVERLAY_BUTTON {
    const wchar_t* caption;
    ModeInput input;
    const wchar_t* help;
};
constexpr OVERLAY_BUTTON kStrip[CGUIGameOverlay::kButtons] = {
    {L"Main Menu",       ModeInput::kMainMenu,    L"Options and the way out; the game plays on"        },
    {L"Load New Game",   ModeInput::kLoadGame,    L"Chooses another game for this television"          },
    {L"Exit Game",       ModeInput::kExitGame,    L"Turns the television off, and saves the game"      },
    {L"Fullscreen Mode", ModeInput::kTelevision,
     L"The game fills the window, or is on its television"                                             },
    {L"Reset Game",      ModeInput::kResetGame,   L"Begins the game anew, as the console's button does"},
    {L"Saved States",    ModeInput::kSavedStates,
     L"Saves the game in one of ten slots, or goes back to one"                                        },
};
constexpr uint32_t kTelevisionButton = 4;

// "Luciole, Master System".
std::wstring MenuTitle(const MENU_GAME& game) {
    const MACHINE_FACTS* const machine = FindMachineFacts(game.system);
    return machine != nullptr ? game.title + L", " + WideFromUtf8(machine->name) : game.title;
}

} // namespace

CGUIGameOverlay::CGUIGameOverlay(ScreenHost& program)
    : host(program) {
    for (size_t i = 0; i < kButtons; ++i) {
        buttons[i] = new CGhostButton(nullptr, static_cast<uint32_t>(i + 1), L"BUTTON2",
                                      kStrip[i].caption, CGhostButton::kNoKeys, {});
        buttons[i]->SetToolTip(kStrip[i].help);
        // A machine's keys must not press them.
        CGhostManager::Get().SetTabStop(buttons[i]->window, false);
        const ModeInput input = kStrip[i].input;
        signals.Watch(buttons[i]->OnClick,
                      [this, input](CGhostButton*, int, int, unsigned) { host.Take(input); });
    }
    for (CGhostTextBox*& hint : hints) {
        hint = new CGhostTextBox(nullptr, 0, L"TEXT_HINT", L"", {});
    }
    Place();
    Update({});
}

CGUIGameOverlay::~CGUIGameOverlay() {
    if (menu != nullptr) {
        menu->Abandon();
    }
    for (CGhostButton* const button : buttons) {
        CGhostManager::Get().DestroyWindow(button->window);
    }
    for (CGhostTextBox* const hint : hints) {
        CGhostManager::Get().DestroyWindow(hint->window);
    }
}

void CGUIGameOverlay::Place() {
    screen = CGhostManager::Get().ScreenRect();
    constexpr auto kCount = static_cast<int32_t>(kButtons);
    int32_t x = (screen.width - kCount * kButtonWidth - (kCount - 1) * kButtonGap) / 2;
    for (CGhostButton* const button : buttons) {
        button->SetPos(x, screen.height - kMargin - kButtonHeight, kButtonWidth, kButtonHeight);
        x += kButtonWidth + kButtonGap;
    }
    PlaceHints();
}

// Those that are shown, one after the other.
void CGUIGameOverlay::PlaceHints() {
    GhostTextStyle style; // a theme without it has the default font
    static_cast<void>(CGhostTheme::Get().GetStyle(L"TEXT_HINT", style));
    int32_t x = kMargin;
    for (CGhostTextBox* const hint : hints) {
        const int32_t width = MeasureText(style.font, hint->Text()).width + kHintOutline;
        hint->SetPos(x, screen.height - kMargin - kHintHeight, width, kHintHeight);
        x += hint->IsVisible() ? width + kHintGap : 0;
    }
}

void CGUIGameOverlay::Update(const OVERLAY_STATE& state) {
    const GUI_RECT now = CGhostManager::Get().ScreenRect();
    if (now.width != screen.width || now.height != screen.height) {
        Place();
    }
    if (state.mouseUsed) {
        mouseUsed = host.Milliseconds();
        everUsed = true;
    }
    ShowHints(state);
    ShowButtons(state);
}

void CGUIGameOverlay::ShowHints(const OVERLAY_STATE& state) {
    constexpr std::array<const wchar_t*, kHints> kHintTexts = {L"Main Menu", L"Load Game",
                                                               L"Turn off Game", L"Attach to TV"};
    const std::array<const std::wstring*, kHints> names = {&state.mainMenu, &state.use,
                                                           &state.turnOff, &state.attach};
    const std::array<bool, kHints> wanted = {true, state.selected, state.selectedOn,
                                             state.selectedOn};
    bool changed = false;
    for (size_t i = 0; i < kHints; ++i) {
        const std::wstring text = std::wstring(kHintTexts[i]) + L" [" + *names[i] + L"]";
        const bool shows = state.shown && state.walking && wanted[i] && !names[i]->empty();
        changed |= hints[i]->Text() != text || hints[i]->IsVisible() != shows;
        if (hints[i]->Text() != text) {
            hints[i]->SetText(text);
        }
        hints[i]->SetVisible(shows);
    }
    if (changed) {
        PlaceHints();
    }
}

void CGUIGameOverlay::ShowButtons(const OVERLAY_STATE& state) {
    const bool recent = everUsed && host.Milliseconds() - mouseUsed <= kButtonsStay;
    roomVisible = state.roomVisible;
    buttons[kTelevisionButton - 1]->SetCaption(state.roomVisible ? L"Fullscreen Mode" : L"TV Mode");
    // Of the game: only where there is one.
    const std::array<bool, kButtons> wanted = {true,
                                               state.selected,
                                               state.selectedOn,
                                               state.selectedOn,
                                               state.selectedOn,
                                               state.selectedOn};
    bool gone = false; // what was offered, such as a game that has ended
    for (size_t i = 0; i < kButtons; ++i) {
        gone = gone || (offered[i] && !(state.shown && wanted[i]));
        offered[i] = state.shown && wanted[i];
        buttons[i]->SetVisible(offered[i] && !state.walking && recent);
    }
    if (gone) {
        CloseMenu();
    }
}

void CGUIGameOverlay::ToggleMenu(const MENU_GAME& game) {
    if (menu != nullptr) {
        CloseMenu();
        return;
    }
    const auto isOffered = [&](ModeInput input) {
        for (size_t i = 0; i < kButtons; ++i) {
            if (kStrip[i].input == input) {
                return offered[i];
            }
        }
        return true; // what the strip has no button for
    };
    if (!isOffered(ModeInput::kMainMenu)) {
        return;
    }
    GAME_MENU wanted;
    wanted.room = true;
    wanted.settingsChanged = [this] { host.SettingsChanged(); };
    if (isOffered(ModeInput::kResetGame)) {
        wanted.title = MenuTitle(game);
        wanted.system = game.system;
        wanted.padNames = game.padNames;
        wanted.ofGame = {
            {L"Save and Load", ModeInput::kSavedStates},
            {L"Reset",         ModeInput::kResetGame  }
        };
    }
    for (const GAME_MENU_ENTRY& entry : {
             GAME_MENU_ENTRY{roomVisible ? L"Fill the Window" : L"On the Television",
                             ModeInput::kTelevision                                                       },
             GAME_MENU_ENTRY{L"Library",                                              ModeInput::kLoadGame},
             GAME_MENU_ENTRY{L"Turn Off",                                             ModeInput::kExitGame},
             GAME_MENU_ENTRY{L"Main Menu",                                            ModeInput::kMainMenu},
             GAME_MENU_ENTRY{L"Quit",                                                 ModeInput::kQuit    },
    }) {
        if (isOffered(entry.input)) {
            wanted.ofProgram.push_back(entry);
        }
    }
    menu = new GameMenu(std::move(wanted), [this](std::optional<ModeInput> chosen) {
        menu = nullptr;
        host.SaveSettings(); // of picture and sound
        if (chosen) {
            host.Take(*chosen);
        }
    });
}

void CGUIGameOverlay::CloseMenu() {
    if (menu != nullptr) {
        menu->Dismiss();
    }
}

std::vector<std::wstring> CGUIGameOverlay::ShownHints() const {
    std::vector<std::wstring> texts;
    for (const CGhostTextBox* const hint : hints) {
        if (hint->IsVisible()) {
            texts.push_back(hint->Text());
        }
    }
    return texts;
}
