#include "screens/game_overlay.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "screens/program_pointer.h"
#include "screens/screen_host.h"

namespace {

constexpr uint64_t kButtonsStay = kMouseRests / 1000; // milliseconds after the mouse was used

// Units.
constexpr int32_t kButtonWidth = 150;
constexpr int32_t kButtonHeight = 28;
constexpr int32_t kButtonGap = 12;
constexpr int32_t kHintWidth = 280;
constexpr int32_t kHintHeight = 26;
constexpr int32_t kMargin = 20;

struct OVERLAY_BUTTON {
    const wchar_t* caption;
    ModeInput input;
};
constexpr OVERLAY_BUTTON kStrip[CGUIGameOverlay::kButtons] = {
    {L"Main Menu",       ModeInput::kMainMenu   },
    {L"Load New Game",   ModeInput::kLoadGame   },
    {L"Exit Game",       ModeInput::kExitGame   },
    {L"Fullscreen Mode", ModeInput::kTelevision },
    {L"Reset Game",      ModeInput::kResetGame  },
    {L"Saved States",    ModeInput::kSavedStates},
};
constexpr uint32_t kTelevisionButton = 4;

} // namespace

CGUIGameOverlay::CGUIGameOverlay(ScreenHost& program)
    : host(program) {
    for (size_t i = 0; i < kButtons; ++i) {
        buttons[i] = new CGhostButton(nullptr, static_cast<uint32_t>(i + 1), L"BUTTON2",
                                      kStrip[i].caption, CGhostButton::kNoKeys, {});
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
    x = kMargin;
    for (CGhostTextBox* const hint : hints) {
        hint->SetPos(x, screen.height - kMargin - kHintHeight, kHintWidth, kHintHeight);
        x += kHintWidth + kMargin;
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
    const std::array<std::wstring, kHints> texts = {
        L"Main Menu [" + state.mainMenu + L"]",
        L"Load Game [" + state.use + L"]",
        L"Turn off Game [" + state.turnOff + L"]",
        L"Attach to TV [" + state.attach + L"]",
    };
    const std::array<bool, kHints> wanted = {true, state.selected, state.selectedOn,
                                             state.selectedOn};
    for (size_t i = 0; i < kHints; ++i) {
        if (hints[i]->Text() != texts[i]) {
            hints[i]->SetText(texts[i]);
        }
        hints[i]->SetVisible(state.shown && state.walking && wanted[i]);
    }
}

void CGUIGameOverlay::ShowButtons(const OVERLAY_STATE& state) {
    const bool recent = everUsed && host.Milliseconds() - mouseUsed <= kButtonsStay;
    buttons[kTelevisionButton - 1]->SetCaption(state.roomVisible ? L"Fullscreen Mode" : L"TV Mode");
    // Of the game: only where there is one.
    const std::array<bool, kButtons> wanted = {true,
                                               state.selected,
                                               state.selectedOn,
                                               state.selectedOn,
                                               state.selectedOn,
                                               state.selectedOn};
    for (size_t i = 0; i < kButtons; ++i) {
        buttons[i]->SetVisible(state.shown && !state.walking && recent && wanted[i]);
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
