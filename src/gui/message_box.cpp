#include "gui/message_box.h"

#include "gui/button.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

std::array<CGhostMessageBox*, CGhostMessageBox::kMost>& Table() {
    static std::array<CGhostMessageBox*, CGhostMessageBox::kMost> table{};
    return table;
}

constexpr int32_t kFirstWidth = 450;
constexpr int32_t kWidthStep = 50;
constexpr int32_t kButtonWide = 100;
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
        const bool atButton = CGhostManager::Get().FocusWindow() == box->Button()->window;
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

CGhostMessageBox* CGhostMessageBox::Show(const std::wstring& title, const std::wstring& text) {
    const auto hold = CGhostManager::Get().HoldRound();
    auto& table = Table();
    const auto slot = std::find(table.begin(), table.end(), nullptr);
    if (slot == table.end()) {
        return nullptr;
    }
    return *slot = new CGhostMessageBox(title, text);
}

size_t CGhostMessageBox::Count() {
    const auto hold = CGhostManager::Get().HoldRound();
    const auto& table = Table();
    return table.size() - static_cast<size_t>(std::count(table.begin(), table.end(), nullptr));
}

CGhostMessageBox::CGhostMessageBox(const std::wstring& title, const std::wstring& text)
    : DimmedBox(title) {
    GHOSTMANAGER_WINDOW* const within = Box()->window;
    button = new CGhostButton(within, 0, L"MESSAGEBOX_BUTTON", L"Ok", 0, {});
    button->OnClick.connect([this](CGhostButton*, int, int, unsigned) { Dismiss(); });
    message = new CGhostMultiText(within, 0, L"MESSAGEBOX_TEXT", text, {});
    for (CGhostGUIHandler* last :
         std::initializer_list<CGhostGUIHandler*>{button, message, Box(), this}) {
        while (last->next != nullptr) {
            last = last->next;
        }
        last->next = new Dismisser(this);
    }
    for (GHOSTMANAGER_WINDOW* const part : {button->window, message->window}) {
        CGhostManager::Get().SetPart(part);
    }
    Place();
    TakeInput();
    button->SetFocus();
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
    button->SetPos((client.width - kButtonWide) / 2, client.height - kButtonRow, kButtonWide,
                   kButtonHigh);
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
