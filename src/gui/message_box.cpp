#include "gui/message_box.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::array<CGhostMessageBox*, CGhostMessageBox::kMost>& Table() {
    static std::array<CGhostMessageBox*, CGhostMessageBox::kMost> table{};
    return table;
}

constexpr int32_t kFirstWidth = 450;
constexpr int32_t kWidthStep = 50;
constexpr int32_t kButtonWide = 100;
constexpr int32_t kButtonGap = 12;
constexpr int32_t kButtonHigh = 25;
constexpr int32_t kButtonRow = 35; // from the client area's lower edge

// Escape, and a controller's second button, whatever part of the box has the focus: a click beside the button takes it
// away from that. Return presses the button, which has that key itself.
class Dismisser : public CGhostGUIHandler {
public:
    explicit Dismisser(CGhostMessageBox* owner)
        : box(owner) {}
    void Destroy() override { delete this; }
    void OnKeyDown(GHOSTGUIKey key) override {
        const auto& buttons = box->Buttons();
        const bool atButton = std::any_of(buttons.begin(), buttons.end(), [](const auto* one) {
            return CGhostManager::Get().FocusWindow() == one->window;
        });
        if (key == GHOSTGUIKey::kEscape || (key == GHOSTGUIKey::kReturn && !atButton)) {
            box->Dismiss();
        }
    }
    bool OnCancelKey() override {
        box->Dismiss();
        return true;
    }

private:
    CGhostMessageBox* box;
};

} // namespace

CGhostMessageBox* CGhostMessageBox::Show(const std::wstring& title, const std::wstring& text,
                                         std::vector<MESSAGE_CHOICE> choices) {
    const auto hold = CGhostManager::Get().HoldRound();
    auto& table = Table();
    const auto slot = std::find(table.begin(), table.end(), nullptr);
    if (slot == table.end()) {
        return nullptr;
    }
    return *slot = new CGhostMessageBox(title, text, std::move(choices));
}

size_t CGhostMessageBox::Count() {
    const auto hold = CGhostManager::Get().HoldRound();
    const auto& table = Table();
    return table.size() - static_cast<size_t>(std::count(table.begin(), table.end(), nullptr));
}

CGhostMessageBox::CGhostMessageBox(const std::wstring& title, const std::wstring& text,
                                   std::vector<MESSAGE_CHOICE> choices)
    : DimmedBox(title) {
    buttons.reserve(choices.size() + 1);
    for (MESSAGE_CHOICE& choice : choices) {
        AddButton(choice.caption, std::move(choice.chosen));
    }
    button = AddButton(choices.empty() ? L"Ok" : L"Close", {});
    message = new CGhostMultiText(Box()->window, 0, L"MESSAGEBOX_TEXT", text, {});
    std::vector<CGhostGUIHandler*> parts{message, Box(), this};
    parts.insert(parts.end(), buttons.begin(), buttons.end());
    for (CGhostGUIHandler* last : parts) {
        while (last->next != nullptr) {
            last = last->next;
        }
        last->next = new Dismisser(this);
    }
    CGhostManager::Get().SetPart(message->window);
    Place();
    TakeInput();
    buttons.front()->SetFocus();
}

CGhostButton* CGhostMessageBox::AddButton(const std::wstring& caption,
                                          std::function<void()> chosen) {
    auto* const made = new CGhostButton(Box()->window, 0, L"MESSAGEBOX_BUTTON", caption, 0, {});
    made->OnClick.connect([this, act = std::move(chosen)](CGhostButton*, int, int, unsigned) {
        if (act && !closed) {
            act();
        }
        Dismiss();
    });
    CGhostManager::Get().SetPart(made->window);
    buttons.push_back(made);
    return made;
}

CGhostMessageBox::~CGhostMessageBox() {
    if (!told) {
        OnClosed(this);
    }
    auto& table = Table();
    std::replace(table.begin(), table.end(), this, static_cast<CGhostMessageBox*>(nullptr));
}

// Wider step by step, until it is more than twice as wide as it is high. Never wider than the screen, beyond
// which text and button would be out of sight; there a long text scrolls.
void CGhostMessageBox::Place() {
    const GUI_RECT& all = Screen();
    const int32_t frameWide = FrameWide();
    const int32_t frameHigh = FrameHigh();
    int32_t width = kFirstWidth;
    int32_t height = 0;
    while (true) {
        height = message->HeightAt(width - frameWide) + frameHigh + kButtonRow;
        if (width > 2 * height || width + kWidthStep > all.width) {
            break;
        }
        width += kWidthStep;
    }
    height = std::min(height, all.height);
    PlaceBox(width, height);
    const GUI_RECT client = Client();
    const auto count = static_cast<int32_t>(buttons.size());
    int32_t x = (client.width - count * kButtonWide - (count - 1) * kButtonGap) / 2;
    for (CGhostButton* const one : buttons) {
        one->SetPos(x, client.height - kButtonRow, kButtonWide, kButtonHigh);
        x += kButtonWide + kButtonGap;
    }
    message->SetPos(0, 0, client.width, client.height - kButtonRow);
}

void CGhostMessageBox::OnTick(unsigned microseconds) {
    if (closed) {
        told = true;
        OnClosed(this);
        Close();
        return;
    }
    DimmedBox::OnTick(microseconds);
}
