#include "front/room_hints.h"

#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kHeight = 36;
constexpr int32_t kFromFoot = 64; // over the strip of buttons and the names of keys
constexpr int32_t kMargin = 16;

std::wstring TextOf(const std::vector<KEY_WORDS>& words) {
    std::wstring text;
    for (const KEY_WORDS& group : words) {
        text += text.empty() ? L"" : L"      ";
        for (const std::wstring& key : group.keys) {
            text += (&key == group.keys.data() ? L"" : L" ") + key;
        }
        text += L"   " + group.does;
    }
    return text;
}

} // namespace

RoomHints::RoomHints()
    : back(new CGhostTextBox(nullptr, 0, L"ROOMHINT", L"", {false, 0, 0, 8, kHeight}))
    , line(new KeyLine(back->window, 0)) {
    CGhostManager::Get().ShowWindow(back->window, false);
}

RoomHints::~RoomHints() {
    CGhostManager::Get().DestroyWindow(back->window);
}

void RoomHints::Show(const std::vector<KEY_WORDS>& wanted) {
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    const bool resized = screen.width != screenWidth || screen.height != screenHeight;
    const std::wstring wantedText = TextOf(wanted);
    if (wantedText == text && !resized) {
        return;
    }
    screenWidth = screen.width;
    screenHeight = screen.height;
    text = wantedText;
    if (!text.empty()) {
        line->SetWords(wanted);
        Place();
    }
    CGhostManager::Get().ShowWindow(back->window, !text.empty());
}

void RoomHints::Place() {
    const int32_t words = std::min(line->WantedWidth(), screenWidth - 2 * kMargin);
    const int32_t width = words + 2 * kMargin;
    back->SetPos((screenWidth - width) / 2, screenHeight - kHeight - kFromFoot, width, kHeight);
    line->SetPos(kMargin, 0, words, kHeight);
}
