#include "gui/dimmed_box.h"

#include "gui/manager.h"
#include "gui/window_ex.h"

namespace {

constexpr int32_t kFirstSize = 450; // until it is placed

} // namespace

DimmedBox::DimmedBox(const std::wstring& title)
    : screen(CGhostManager::Get().ScreenRect()) {
    dimmed = new CGhostWindowEx(nullptr, 0, L"MESSAGEBOXBG", {}, CGhostWindowEx::kNoSignals,
                                {false, 0, 0, screen.width, screen.height});
    window = dimmed->window;
    dimmed->next = this;
    box = new CGhostWindowEx(window, 0, L"MESSAGEBOX", title,
                             CGhostWindowEx::kFrame | CGhostWindowEx::kTitle |
                                 CGhostWindowEx::kNoButtons,
                             {false, 0, 0, kFirstSize, kFirstSize});
    CGhostManager::Get().SetPart(box->window);
}

void DimmedBox::PlaceBox(int32_t width, int32_t height) {
    box->SetPos((screen.width - width) / 2, (screen.height - height) / 2, width, height);
}

GUI_RECT DimmedBox::Client() const {
    GUI_RECT client;
    CGhostManager::Get().GetWindowRects(box->window, nullptr, &client, nullptr);
    return client;
}

int32_t DimmedBox::FrameWide() const {
    return box->GetRect().width - Client().width;
}

int32_t DimmedBox::FrameHigh() const {
    return box->GetRect().height - Client().height;
}

void DimmedBox::TakeInput() {
    CGhostManager::Get().TakeInput(window);
}

void DimmedBox::OnTick(unsigned /*microseconds*/) {
    if (const GUI_RECT now = CGhostManager::Get().ScreenRect(); now != screen) {
        screen = now;
        SetPos(0, 0, screen.width, screen.height);
        Place();
    }
}
