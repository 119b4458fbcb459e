#include "screens/key_card.h"

#include "gui/manager.h"
#include "gui/window.h"
#include "gui/window_ex.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kMargin = 14;
constexpr int32_t kFootHigh = 24;
constexpr int32_t kWide = ControlsCard::kWidth + 2 * kMargin;
constexpr int32_t kHigh = ControlsCard::kHeight + kFootHigh + 3 * kMargin;
constexpr int32_t kAboveEdge = 76; // clear of the lines at the foot of the screen

} // namespace

KeyCard::KeyCard(uint16_t system, const PadNames& padNames, const std::vector<KEY_WORDS>& ways)
    : box(new CGhostWindowEx(nullptr, 0, L"KEYCARD", {},
                             CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , card(new ControlsCard(box->window, system, padNames))
    , foot(new KeyLine(box->window, 0)) {
    foot->SetWords(ways);
    Place();
}

KeyCard::~KeyCard() {
    CGhostManager::Get().DestroyWindow(box->window);
}

void KeyCard::Place() {
    screen = CGhostManager::Get().ScreenRect();
    box->SetPos((screen.width - kWide) / 2, screen.height - kAboveEdge - kHigh, kWide, kHigh);
    const GUI_RECT client = box->window->clientRect;
    card->MoveTo((client.width - ControlsCard::kWidth) / 2, kMargin);
    const int32_t wide = std::min(foot->WantedWidth(), client.width);
    foot->SetPos((client.width - wide) / 2, ControlsCard::kHeight + 2 * kMargin, wide, kFootHigh);
}

void KeyCard::Update() {
    if (CGhostManager::Get().ScreenRect() != screen) {
        Place();
    }
}
