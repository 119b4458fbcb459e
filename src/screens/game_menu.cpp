#include "screens/game_menu.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/window_ex.h"

#include <utility>

namespace {

// Units.
constexpr int32_t kBoxWidth = 300;
constexpr int32_t kMargin = 16;
constexpr int32_t kButtonHeight = 25;
constexpr int32_t kPitch = 33;

// Escape, and a controller's right button, at each button.
class Closer : public CGhostGUIHandler {
public:
    explicit Closer(GameMenu* owner)
        : menu(owner) {}
    void Destroy() override { delete this; }
    void OnKeyDown(GHOSTGUIKey key) override {
        if (key == GHOSTGUIKey::kEscape) {
            menu->Dismiss();
        }
    }
    bool OnCancelKey() override {
        menu->Dismiss();
        return true;
    }

private:
    GameMenu* menu; // which ends after its buttons
};

} // namespace

GameMenu::GameMenu(const std::vector<GAME_MENU_ENTRY>& entries, Done whenDone)
    : done(std::move(whenDone)) {
    CGhostManager& manager = CGhostManager::Get();
    screen = manager.ScreenRect();
    dimmed = new CGhostWindowEx(nullptr, 0, L"MESSAGEBOXBG", {}, CGhostWindowEx::kNoSignals,
                                {false, 0, 0, screen.width, screen.height});
    window = dimmed->window;
    dimmed->next = this;
    box = new CGhostWindowEx(window, 0, L"MESSAGEBOX", L"Game Menu",
                             CGhostWindowEx::kFrame | CGhostWindowEx::kTitle |
                                 CGhostWindowEx::kNoButtons,
                             {false, 0, 0, kBoxWidth, kBoxWidth});
    manager.SetPart(box->window);
    buttons.reserve(entries.size() + 1);
    AddButton(L"Continue", std::nullopt);
    for (const GAME_MENU_ENTRY& entry : entries) {
        AddButton(entry.caption, entry.input);
    }
    Place();
    manager.TakeInput(window);
    buttons.front()->SetFocus();
}

GameMenu::~GameMenu() {
    End(std::nullopt);
}

void GameMenu::AddButton(const std::wstring& caption, std::optional<ModeInput> input) {
    auto* const button = new CGhostButton(box->window, 0, L"MESSAGEBOX_BUTTON", caption, 0, {});
    button->next = new Closer(this);
    button->OnClick.connect([this, input](CGhostButton*, int, int, unsigned) { End(input); });
    CGhostManager::Get().SetPart(button->window);
    buttons.push_back(button);
}

void GameMenu::Place() {
    CGhostManager& manager = CGhostManager::Get();
    GUI_RECT outer;
    GUI_RECT client;
    manager.GetWindowRects(box->window, &outer, &client, nullptr);
    const int32_t inside = 2 * kMargin + static_cast<int32_t>(buttons.size()) * kPitch -
                           (kPitch - kButtonHeight);
    const int32_t height = inside + outer.height - client.height;
    box->SetPos((screen.width - kBoxWidth) / 2, (screen.height - height) / 2, kBoxWidth, height);
    manager.GetWindowRects(box->window, nullptr, &client, nullptr);
    int32_t y = kMargin;
    for (CGhostButton* const button : buttons) {
        button->SetPos(kMargin, y, client.width - 2 * kMargin, kButtonHeight);
        y += kPitch;
    }
}

void GameMenu::OnTick(unsigned /*microseconds*/) {
    if (const GUI_RECT now = CGhostManager::Get().ScreenRect(); now != screen) {
        screen = now;
        SetPos(0, 0, screen.width, screen.height);
        Place();
    }
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
