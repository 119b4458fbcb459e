#include "screens/game_menu.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "gui/window_ex.h"
#include "screens/key_line.h"
#include "screens/play_keys.h"
#include "settings/settings.h"

#include <algorithm>
#include <utility>

namespace {

// Units.
constexpr int32_t kMargin = 16; // beside the frame's own
constexpr int32_t kTop = 20;    // from the title, which has none
constexpr int32_t kButtonWide = 190;
constexpr int32_t kButtonHigh = 25;
constexpr int32_t kPitch = 33;
constexpr int32_t kPageLeft = kMargin + kButtonWide + 22;
constexpr int32_t kPageWide = ControlsCard::kWidth;
constexpr int32_t kHeadingHigh = 25;
constexpr int32_t kPageTop = kTop + kHeadingHigh + 14;
constexpr int32_t kKeysTop = ControlsCard::kHeight + 24; // below the page's top
constexpr int32_t kKeysPitch = 30;
constexpr int32_t kKeysColumns = 3;

constexpr const wchar_t* kPageNames[kMenuPages] = {L"Controls", L"Picture", L"Sound"};
constexpr const wchar_t* kFullScreenSetting = L"app_fullscreen";

struct PROGRAM_ACTION {
    std::wstring_view action;
    const wchar_t* does;
};
constexpr PROGRAM_ACTION kProgramActions[] = {
    {L"Fast Forward",    L"fast forward"},
    {L"Rewind",          L"rewind"      },
    {L"Take ScreenShot", L"screenshot"  },
    {L"Save State",      L"save"        },
    {L"Load State",      L"load"        },
    {L"Saved States",    L"ten slots"   },
};

// Escape, and a controller's right button, at each control.
class Closer : public CGhostGUIHandler {
public:
    explicit Closer(GameMenu* owner)
        : menu(owner) {}
    void Destroy() override { delete this; }
    void OnKeyDown(GHOSTGUIKey key) override {
        if (key == GHOSTGUIKey::kEscape) {
            menu->GoBack();
        }
    }
    bool OnCancelKey() override {
        menu->GoBack();
        return true;
    }

private:
    GameMenu* menu; // which ends after its buttons
};

const wchar_t* FullScreenCaption() {
    return Settings().GetBool(kFullScreenSetting) ? L"Leave Full Screen" : L"Full Screen";
}

} // namespace

GameMenu::GameMenu(GAME_MENU menuOf, Done whenDone)
    : DimmedBox(menuOf.title.empty() ? L"Game Menu" : menuOf.title)
    , menu(std::move(menuOf))
    , done(std::move(whenDone))
    , heading(new CGhostTextBox(Box()->window, 0, L"SECTIONTEXT", L"", {})) {
    CGhostButton* const resume = AddButton(menu.system != 0 ? L"Resume" : L"Continue");
    resume->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Dismiss(); });
    for (const GAME_MENU_ENTRY& entry : menu.ofGame) {
        AddWay(entry);
    }
    if (menu.system != 0) {
        AddPage(MenuPage::kControls);
        MakeCard();
    }
    AddPage(MenuPage::kPicture);
    AddPage(MenuPage::kSound);
    AddFullScreen();
    for (const GAME_MENU_ENTRY& entry : menu.ofProgram) {
        AddWay(entry);
    }
    for (const MenuPage of : {MenuPage::kPicture, MenuPage::kSound}) {
        const OptionTab tab = of == MenuPage::kPicture ? OptionTab::kGraphics : OptionTab::kSound;
        auto& made = rows[static_cast<size_t>(of)];
        made = std::make_unique<LiveRows>(Box()->window, tab, menu.room, menu.settingsChanged);
        for (GHOSTMANAGER_WINDOW* const stop : made->Stops()) {
            ListenForBack(stop);
        }
    }
    Place();
    ShowPage(menu.system != 0 ? MenuPage::kControls : MenuPage::kPicture);
    TakeInput();
    buttons.front()->SetFocus();
}

GameMenu::~GameMenu() {
    End(std::nullopt);
}

// ---- Its parts.

CGhostButton* GameMenu::AddButton(const std::wstring& caption) {
    auto* const button = new CGhostButton(Box()->window, 0, L"MESSAGEBOX_BUTTON", caption, 0, {});
    ListenForBack(button->window);
    CGhostManager::Get().SetPart(button->window);
    buttons.push_back(button);
    return button;
}

// After all that the control itself has in its chain.
void GameMenu::ListenForBack(GHOSTMANAGER_WINDOW* stop) {
    CGhostGUIHandler* last = stop->handler;
    while (last->next != nullptr) {
        last = last->next;
    }
    last->next = new Closer(this);
}

void GameMenu::AddWay(const GAME_MENU_ENTRY& entry) {
    AddButton(entry.caption)
        ->OnClick.connect(
            [this, input = entry.input](CGhostButton*, int, int, unsigned) { End(input); });
}

void GameMenu::AddPage(MenuPage of) {
    CGhostButton* const button = AddButton(kPageNames[static_cast<size_t>(of)]);
    pageButtons[static_cast<size_t>(of)] = button;
    button->OnClick.connect([this, of](CGhostButton*, int, int, unsigned) {
        ShowPage(of);
        if (of != MenuPage::kControls) {
            Rows(of).TakeFocus();
        }
    });
}

void GameMenu::AddFullScreen() {
    fullScreen = AddButton(FullScreenCaption());
    fullScreen->OnClick.connect([this](CGhostButton*, int, int, unsigned) {
        Settings().SetBool(kFullScreenSetting, !Settings().GetBool(kFullScreenSetting));
        menu.settingsChanged();
    });
}

void GameMenu::MakeCard() {
    card = new ControlsCard(Box()->window, menu.system, menu.padNames);
    for (const PROGRAM_ACTION& row : kProgramActions) {
        KEY_WORDS words;
        words.does = row.does;
        if (std::wstring key = KeyOfAction(row.action); !key.empty()) {
            words.keys.push_back(std::move(key));
        }
        if (std::wstring pad = menu.padNames ? menu.padNames(row.action) : std::wstring();
            !pad.empty()) {
            words.pads.push_back(std::move(pad));
        }
        if (!words.keys.empty() || !words.pads.empty()) {
            auto* const line = new KeyLine(Box()->window, 0);
            line->SetWords({std::move(words)});
            programKeys.push_back(line);
        }
    }
}

void GameMenu::Place() {
    const int32_t left =
        kTop + static_cast<int32_t>(buttons.size()) * kPitch - (kPitch - kButtonHigh);
    int32_t right = kPageTop + kKeysTop + 2 * kKeysPitch;
    for (const auto& settings : rows) {
        right = settings ? std::max(right, kPageTop + settings->WantedHeight()) : right;
    }
    const int32_t wide = kPageLeft + kPageWide + kMargin;
    PlaceBox(wide + FrameWide(), std::max(left, right) + kMargin + FrameHigh());
    int32_t y = kTop;
    for (CGhostButton* const button : buttons) {
        button->SetPos(kMargin, y, kButtonWide, kButtonHigh);
        y += kPitch;
    }
    heading->SetPos(kPageLeft, kTop, kPageWide, kHeadingHigh);
    PlaceCard(kPageLeft, kPageTop);
    for (const auto& settings : rows) {
        if (settings) {
            settings->Layout({kPageLeft, kPageTop, kPageWide, settings->WantedHeight()});
        }
    }
}

void GameMenu::PlaceCard(int32_t x, int32_t y) {
    if (card == nullptr) {
        return;
    }
    card->MoveTo(x, y);
    constexpr int32_t kColumnWide = kPageWide / kKeysColumns;
    int32_t at = 0;
    for (KeyLine* const line : programKeys) {
        line->SetPos(x + at % kKeysColumns * kColumnWide,
                     y + kKeysTop + at / kKeysColumns * kKeysPitch, kColumnWide, kButtonHigh);
        ++at;
    }
}

// ---- What is shown and chosen.

CGhostButton* GameMenu::ButtonOf(std::wstring_view caption) const {
    const auto found = std::find_if(buttons.begin(), buttons.end(), [&](const CGhostButton* one) {
        return one->Caption() == caption;
    });
    return found != buttons.end() ? *found : nullptr;
}

void GameMenu::ShowPage(MenuPage wanted) {
    page = wanted;
    heading->SetText(kPageNames[static_cast<size_t>(page)]);
    if (card != nullptr) {
        card->SetVisible(page == MenuPage::kControls);
        for (KeyLine* const line : programKeys) {
            line->SetVisible(page == MenuPage::kControls);
        }
    }
    for (size_t i = 0; i < kMenuPages; ++i) {
        if (rows[i]) {
            rows[i]->SetVisible(i == static_cast<size_t>(page));
        }
    }
}

void GameMenu::OnTick(unsigned microseconds) {
    DimmedBox::OnTick(microseconds);
    if (fullScreen->Caption() != FullScreenCaption()) {
        fullScreen->SetCaption(FullScreenCaption());
    }
    if (page != MenuPage::kControls) {
        Rows(page).Update();
    }
}

void GameMenu::GoBack() {
    if (page != MenuPage::kControls) {
        const std::vector<GHOSTMANAGER_WINDOW*> stops = Rows(page).Stops();
        if (std::find(stops.begin(), stops.end(), CGhostManager::Get().FocusWindow()) !=
            stops.end()) {
            pageButtons[static_cast<size_t>(page)]->SetFocus();
            return;
        }
    }
    Dismiss();
}

void GameMenu::Abandon() {
    done = nullptr;
    End(std::nullopt);
}

void GameMenu::End(std::optional<ModeInput> chosen) {
    if (ended) {
        return;
    }
    ended = true;
    if (done) {
        done(chosen);
    }
    Close();
}
