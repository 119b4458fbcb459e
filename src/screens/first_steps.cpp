#include "screens/first_steps.h"

#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "screens/key_line.h"
#include "screens/play_keys.h"

#include <span>
#include <string>
#include <utility>

namespace {

// Units.
constexpr int32_t kMargin = 16;
constexpr int32_t kHeader = 24;
constexpr int32_t kRow = 26;
constexpr int32_t kPitch = 28;
constexpr int32_t kGroupGap = 12;
constexpr int32_t kKeysWide = 176;
constexpr int32_t kColumnGap = 16;
constexpr int32_t kFoot = 20;

// A key in angle brackets is an action's, as it is bound; "<walk>" are the four that walk.
struct STEP {
    std::vector<std::wstring> keys;
    const wchar_t* does;
};
struct STEPS {
    const wchar_t* header;
    std::vector<STEP> steps;
};

const std::vector<STEPS>& Steps() {
    static const std::vector<STEPS> kSteps{
        {L"Choose a game",
         {
             {{L"Arrow keys", L"Return"},
              L"Choose PLAY GAMES, a game, START GAME. Or use the mouse."},
             {{L"Esc"}, L"Go back."},
         }},
        {L"Play it",
         {
             {{L"Arrow keys", L"<SMS P1 BUTTON1>", L"<SMS P1 BUTTON2>"},
              L"Play on most machines. The browser shows the keys of each."},
             {{L"Esc"}, L"Leave the game, which plays on, and walk. Once more leads back."},
             {{L"<Save State>", L"<Load State>"},
              L"Save where you are in a game, and go back there."},
             {{L"F10"}, L"This menu, from anywhere. Once more leads back."},
             {{L"F11"}, L"Full screen or a window."},
         }},
        {L"Walk in the room",
         {
             {{L"<walk>", L"Mouse"}, L"Walk and look round."},
             {{L"<Use>"}, L"Choose a game for the television that you look at."},
             {{L"<Turn Off>"}, L"Turn it off."},
         }},
        {L"With a controller",
         {
             {{L"D-pad", L"Bottom button"}, L"Choose and take. The right button goes back."},
             {{L"Guide button"}, L"Leave the game, as Esc does."},
         }},
    };
    return kSteps;
}

std::vector<std::wstring> KeysOf(const STEP& step) {
    std::vector<std::wstring> keys;
    for (const std::wstring& key : step.keys) {
        if (key == L"<walk>") {
            for (std::wstring& each :
                 DirectionKeys({L"Move Forward", L"Move Left", L"Move Back", L"Move Right"})) {
                keys.push_back(std::move(each));
            }
        } else if (key.front() == L'<') {
            keys.push_back(KeyOfAction(std::wstring_view(key).substr(1, key.size() - 2)));
        } else {
            keys.push_back(key);
        }
    }
    std::erase(keys, std::wstring());
    return keys;
}

} // namespace

FirstSteps::FirstSteps(GHOSTMANAGER_WINDOW* parent, const std::wstring& foot)
    : back(new CGhostTextBox(parent, 0, L"WINDOWOVERLAY", L"", {})) {
    GHOSTMANAGER_WINDOW* const within = back->window;
    for (const STEPS& steps : Steps()) {
        GROUP& group = groups.emplace_back();
        group.header = new CGhostTextBox(within, 0, L"STEPHEADER", steps.header, {});
        for (const STEP& step : steps.steps) {
            group.rows.push_back(
                {new KeyLine(within, 0), new CGhostTextBox(within, 0, L"TEXT", step.does, {})});
        }
    }
    last = new CGhostTextBox(within, 0, L"TEXT_SMALL", foot, {});
}

FirstSteps::~FirstSteps() {
    CGhostManager::Get().DestroyWindow(back->window);
}

void FirstSteps::Layout(int32_t x, int32_t y, int32_t width, int32_t height) {
    back->SetPos(x, y, width, height);
    const int32_t inner = width - 2 * kMargin;
    const int32_t textX = kMargin + kKeysWide + kColumnGap;
    int32_t top = kMargin - kGroupGap / 2;
    for (const GROUP& group : groups) {
        group.header->SetPos(kMargin, top, inner, kHeader);
        top += kHeader + 2;
        for (const ROW& row : group.rows) {
            row.keys->SetPos(kMargin, top, kKeysWide, kRow);
            row.does->SetPos(textX, top, width - kMargin - textX, kRow);
            top += kPitch;
        }
        top += kGroupGap;
    }
    last->SetPos(kMargin, height - kMargin - kFoot, inner, kFoot);
}

void FirstSteps::SetVisible(bool visible) {
    if (visible) {
        ReadKeys();
    }
    back->SetVisible(visible);
}

bool FirstSteps::IsVisible() const {
    return back->IsVisible();
}

GUI_RECT FirstSteps::Place() const {
    const GHOSTMANAGER_WINDOW& window = *back->window;
    return {window.x, window.y, window.width, window.height};
}

void FirstSteps::ReadKeys() {
    const auto& all = Steps();
    for (size_t i = 0; i < all.size(); ++i) {
        for (size_t j = 0; j < all[i].steps.size(); ++j) {
            groups[i].rows[j].keys->SetWords({
                {KeysOf(all[i].steps[j]), L""}
            });
        }
    }
}

std::vector<std::wstring> FirstSteps::Texts() const {
    std::vector<std::wstring> texts;
    for (const GROUP& group : groups) {
        for (const ROW& row : group.rows) {
            std::wstring text;
            for (const KEY_WORDS& words : row.keys->Words()) {
                for (const std::wstring& key : words.keys) {
                    text += L"[" + key + L"] ";
                }
            }
            texts.push_back(text + row.does->Text());
        }
    }
    return texts;
}
