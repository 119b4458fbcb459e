#include "screens/game_menu.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/window_ex.h"

#include <utility>

namespace {

// Units.
constexpr int32_t kBoxWidth = 300;
constexpr int32_t kMargin = 16; // beside the frame's own
constexpr int32_t kTop = 28;    // from the title, which has none
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
    : DimmedBox(L"Game Menu")
    , done(std::move(whenDone)) {
    buttons.reserve(entries.size() + 1);
    AddButton(L"Continue", std::nullopt);
    for (const GAME_MENU_ENTRY& entry : entries) {
        AddButton(entry.caption, entry.input);
    }
    Place();
    TakeInput();
    buttons.front()->SetFocus();
}

GameMenu::~GameMenu() {
    End(std::nullopt);
}

void GameMenu::AddButton(const std::wstring& caption, std::optional<ModeInput> input) {
    auto* const button = new CGhostButton(Box()->window, 0, L"MESSAGEBOX_BUTTON", caption, 0, {});
    button->next = new Closer(this);
    button->OnClick.connect([this, input](CGhostButton*, int, int, unsigned) { End(input); });
    CGhostManager::Get().SetPart(button->window);
    buttons.push_back(button);
}

void GameMenu::Place() {
    const int32_t inside =
        kTop + static_cast<int32_t>(buttons.size()) * kPitch - (kPitch - kButtonHeight) + kMargin;
    PlaceBox(kBoxWidth, inside + FrameHigh());
    const GUI_RECT client = Client();
    int32_t y = kTop;
    for (CGhostButton* const button : buttons) {
        button->SetPos(kMargin, y, client.width - 2 * kMargin, kButtonHeight);
        y += kPitch;
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
