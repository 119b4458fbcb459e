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
    const GUI_EDGES frame = box->FrameEdges();
    const int32_t wide = kWide + frame.left + frame.right;
    const int32_t high = kHigh + frame.top + frame.bottom;
    box->SetPos((screen.width - wide) / 2, screen.height - kAboveEdge - high, wide, high);
    const GUI_RECT client = box->window->clientRect;
    card->MoveTo((client.width - ControlsCard::kWidth) / 2, kMargin);
    const int32_t line = std::min(foot->WantedWidth(), client.width);
    foot->SetPos((client.width - line) / 2, ControlsCard::kHeight + 2 * kMargin, line, kFootHigh);
}

void KeyCard::Update() {
    if (CGhostManager::Get().ScreenRect() != screen) {
        Place();
    }
}
