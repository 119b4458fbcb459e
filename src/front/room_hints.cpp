#include "front/room_hints.h"

#include "gui/manager.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/theme.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kHeight = 36;
constexpr int32_t kFromFoot = 64; // over the strip of buttons and the names of keys
constexpr int32_t kMargins = 48;

} // namespace

RoomHints::RoomHints()
    : line(new CGhostTextBox(nullptr, 0, L"ROOMHINT", L"", {false, 0, 0, 8, kHeight})) {
    CGhostManager::Get().ShowWindow(line->window, false);
}

RoomHints::~RoomHints() {
    CGhostManager::Get().DestroyWindow(line->window);
}

void RoomHints::Show(const std::wstring& wanted) {
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    const bool resized = screen.width != screenWidth || screen.height != screenHeight;
    if (wanted == text && !resized) {
        return;
    }
    screenWidth = screen.width;
    screenHeight = screen.height;
    text = wanted;
    if (!text.empty()) {
        line->SetText(text);
        Place();
    }
    CGhostManager::Get().ShowWindow(line->window, !text.empty());
}

void RoomHints::Place() {
    GhostTextStyle style; // a theme without it has the default font
    static_cast<void>(CGhostTheme::Get().GetStyle(L"ROOMHINT", style));
    const int32_t wanted = MeasureText(style.font, text).width + kMargins;
    const int32_t width = std::min(wanted, screenWidth);
    CGhostManager::Get().SetWindowPos(line->window, (screenWidth - width) / 2,
                                      screenHeight - kHeight - kFromFoot, width, kHeight);
}
