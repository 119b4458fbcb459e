#include "gui/keyboard.h"

#include "gui/control_input.h"
#include "gui/edit.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <cstdlib>
#include <iterator>

namespace {

constexpr int32_t kKeyWide = 52; // units
constexpr int32_t kKeyHigh = 28;
constexpr int32_t kGap = 4;
constexpr int32_t kMargin = 12; // within the frame
constexpr int32_t kBelow = 16;  // the frame, to the edge of the screen
constexpr int32_t kPreviewHigh = 28;
constexpr int32_t kColumns = 12;
constexpr int32_t kGridRows = 5;

struct ROW {
    const wchar_t* small;
    const wchar_t* large;
};
constexpr ROW kRows[] = {
    {L"1234567890-=",  L"!@#$%^&*()_+"          },
    {L"qwertyuiop[]",  L"QWERTYUIOP{}"          },
    {L"asdfghjkl;'\\", L"ASDFGHJKL:\"|"         },
    {L"zxcvbnm,./`~",  L"ZXCVBNM<>?\u00E9\u00E8"},
};

constexpr int32_t ColumnX(int32_t column) {
    return kMargin + column * (kKeyWide + kGap);
}

constexpr int32_t RowY(int32_t row) {
    return kMargin + kPreviewHigh + kMargin + row * (kKeyHigh + kGap);
}

constexpr int32_t kPanelWide = ColumnX(kColumns) - kGap + kMargin;
constexpr int32_t kPanelHigh = RowY(kGridRows) - kGap + kMargin;

} // namespace

CGhostKeyboard* CGhostKeyboard::Open(CGhostEdit* edit) {
    return edit->keyboard != nullptr ? edit->keyboard : new CGhostKeyboard(edit);
}

CGhostKeyboard::CGhostKeyboard(CGhostEdit* target)
    : edit(target) {
    CGhostManager& manager = CGhostManager::Get();
    const CGhostTheme& theme = CGhostTheme::Get();
    if (!theme.GetStyle(L"KEYBOARD_KEY", style)) {
        theme.GetStyle(L"BUTTON", style);
    }
    GhostTextStyle panel;
    const bool own = theme.GetStyle(L"KEYBOARD_BACKGROUND", panel);
    around = own ? panel.border.thickness : GUI_EDGES{};
    screen = manager.ScreenRect();
    frame = new CGhostWindowEx(nullptr, 0, own ? L"KEYBOARD" : L"MESSAGEBOX", {},
                               CGhostWindowEx::kNoSignals | (own ? CGhostWindowEx::kFrame : 0),
                               Place());
    window = frame->window;
    frame->next = this;
    theme.GetStyle(L"TEXT_LEFT", preview);
    edit->keyboard = this;
    MakeKeys();
    manager.SetOwner(window, edit->window);
    manager.TakeInput(window);
}

// Centred, in the lower half, so that the edit is seen as a rule.
GUI_PLACE CGhostKeyboard::Place() const {
    const int32_t wide = kPanelWide + around.left + around.right;
    const int32_t high = kPanelHigh + around.top + around.bottom;
    return {false, (screen.width - wide) / 2, screen.height - high - kBelow, wide, high};
}

void CGhostKeyboard::OnTick(unsigned /*microseconds*/) {
    if (const GUI_RECT now = CGhostManager::Get().ScreenRect(); now != screen) {
        screen = now;
        const GUI_PLACE place = Place();
        SetPos(place.x, place.y, place.width, place.height);
    }
    if (held != kNone) {
        RestWithoutCapture(window, [this] {
            held = kNone;
            dirty = true;
        });
    }
}

CGhostKeyboard::~CGhostKeyboard() {
    edit->keyboard = nullptr; // which ends after it
}

void CGhostKeyboard::MakeKeys() {
    for (int32_t row = 0; row < static_cast<int32_t>(std::size(kRows)); ++row) {
        for (int32_t column = 0; column < kColumns; ++column) {
            keys.push_back({
                {ColumnX(column), RowY(row), kKeyWide, kKeyHigh},
                Action::kCharacter,
                kRows[row].small[column],
                kRows[row].large[column]
            });
        }
    }
    struct WIDE {
        Action action;
        int32_t columns;
    };
    constexpr WIDE kLast[] = {
        {Action::kShift,     2},
        {Action::kSpace,     4},
        {Action::kLeft,      1},
        {Action::kRight,     1},
        {Action::kBackspace, 2},
        {Action::kDone,      2},
    };
    int32_t column = 0;
    for (const WIDE& key : kLast) {
        const int32_t wide = key.columns * (kKeyWide + kGap) - kGap;
        keys.push_back({
            {ColumnX(column), RowY(kGridRows - 1), wide, kKeyHigh},
            key.action, 0, 0
        });
        column += key.columns;
    }
    aim = kColumns; // the first letter
}

std::wstring CGhostKeyboard::Caption(const KEY& key) const {
    switch (key.action) {
    case Action::kShift: return L"Shift";
    case Action::kSpace: return L"Space";
    case Action::kBackspace: return L"Delete";
    case Action::kLeft: return L"<";
    case Action::kRight: return L">";
    case Action::kDone: return L"Done";
    default: return std::wstring(1, shifted ? key.large : key.small);
    }
}

std::wstring CGhostKeyboard::KeyAtFocus() const {
    return Caption(keys[aim]);
}

GUI_RECT CGhostKeyboard::KeyPlace(const std::wstring& caption) const {
    for (const KEY& key : keys) {
        if (Caption(key) == caption) {
            return key.place;
        }
    }
    return {};
}

size_t CGhostKeyboard::KeyAt(int x, int y) const {
    for (size_t i = 0; i < keys.size(); ++i) {
        if (keys[i].place.Contains(x, y)) {
            return i;
        }
    }
    return kNone;
}

void CGhostKeyboard::Done(bool submit) {
    if (closing) {
        return;
    }
    closing = true;
    Close();
    edit->OnKeyDown(submit ? GHOSTGUIKey::kReturn : GHOSTGUIKey::kEscape);
}

void CGhostKeyboard::PressKey(size_t index) {
    if (closing || index >= keys.size()) {
        return;
    }
    dirty = true;
    const KEY& key = keys[index];
    switch (key.action) {
    case Action::kShift: shifted = !shifted; break;
    case Action::kSpace: edit->OnChar(L' '); break;
    case Action::kBackspace: edit->OnKeyDown(GHOSTGUIKey::kBackspace); break;
    case Action::kLeft: edit->OnKeyDown(GHOSTGUIKey::kLeft); break;
    case Action::kRight: edit->OnKeyDown(GHOSTGUIKey::kRight); break;
    case Action::kDone: Done(true); break;
    case Action::kCharacter: {
        const wchar_t character = shifted ? key.large : key.small;
        shifted = false;
        edit->OnChar(static_cast<unsigned>(character));
        break;
    }
    }
}

// ---- A controller.

// To the nearest key in that direction, in the middle of the present one; from an end to the other.
bool CGhostKeyboard::OnNavigate(GUI_DIRECTION direction) {
    const bool sideways = direction == GUI_DIRECTION::kLeft || direction == GUI_DIRECTION::kRight;
    const bool onward = direction == GUI_DIRECTION::kRight || direction == GUI_DIRECTION::kDown;
    const GUI_RECT from = keys[aim].place;
    const int32_t middle = from.x + from.width / 2;
    if (sideways) {
        // In reading order within the row.
        size_t first = aim;
        size_t last = aim;
        while (first > 0 && keys[first - 1].place.y == from.y) {
            --first;
        }
        while (last + 1 < keys.size() && keys[last + 1].place.y == from.y) {
            ++last;
        }
        aim = onward ? (aim == last ? first : aim + 1) : (aim == first ? last : aim - 1);
    } else {
        const int32_t row = (from.y - RowY(0)) / (kKeyHigh + kGap);
        const int32_t to = (row + (onward ? 1 : kGridRows - 1)) % kGridRows;
        size_t nearest = aim;
        int32_t least = kPanelWide;
        for (size_t i = 0; i < keys.size(); ++i) {
            const GUI_RECT& place = keys[i].place;
            const int32_t distance = std::abs(place.x + place.width / 2 - middle);
            const bool covers = middle >= place.x && middle < place.Right();
            if (place.y == RowY(to) && (covers || distance < least)) {
                nearest = i;
                least = covers ? -1 : distance;
            }
        }
        aim = nearest;
    }
    dirty = true;
    return true;
}

bool CGhostKeyboard::OnActivateKey() {
    PressKey(aim);
    return true;
}

bool CGhostKeyboard::OnCancelKey() {
    if (edit->Text().empty()) {
        Done(false);
    } else {
        edit->OnKeyDown(GHOSTGUIKey::kBackspace);
        dirty = true;
    }
    return true;
}

// ---- A keyboard on the table, and the mouse.

void CGhostKeyboard::OnKeyDown(GHOSTGUIKey key) {
    if (closing) {
        return;
    }
    switch (key) {
    case GHOSTGUIKey::kUp: OnNavigate(GUI_DIRECTION::kUp); break;
    case GHOSTGUIKey::kDown: OnNavigate(GUI_DIRECTION::kDown); break;
    case GHOSTGUIKey::kReturn: Done(true); break;
    case GHOSTGUIKey::kEscape: Done(false); break;
    default: edit->OnKeyDown(key); break;
    }
    dirty = true;
}

void CGhostKeyboard::OnChar(unsigned character) {
    if (!closing) {
        edit->OnChar(character);
        dirty = true;
    }
}

void CGhostKeyboard::OnMouseMove(int x, int y) {
    const size_t over = KeyAt(x, y);
    ShowCursor(over != kNone ? kCursorHot : kCursorNormal);
    if (over != kNone && held == kNone && over != aim) {
        aim = over;
        dirty = true;
    }
}

void CGhostKeyboard::OnMouseLeave() {
    ShowCursor(kCursorNormal);
}

void CGhostKeyboard::OnMouseDown(int x, int y, unsigned button) {
    if (button == 1) {
        held = KeyAt(x, y);
        if (held != kNone) {
            aim = held;
        }
        dirty = true;
    }
}

void CGhostKeyboard::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    OnMouseUp(x, y, button);
}

void CGhostKeyboard::OnMouseUp(int x, int y, unsigned button) {
    if (button != 1 || held == kNone) {
        return;
    }
    const size_t key = held;
    held = kNone;
    dirty = true;
    if (KeyAt(x, y) == key) {
        PressKey(key);
    }
}

// Of a text that is too long, the part up to the caret is what is being written.
void CGhostKeyboard::PaintPreview(CGhostSurface& surface, const GUI_RECT& line) {
    const std::wstring written = edit->Shown();
    const std::wstring_view text = written;
    const int32_t room = line.width - preview.textRect.left - preview.textRect.right;
    const std::wstring_view before = text.substr(0, edit->Caret());
    const std::wstring_view after = text.substr(before.size());
    const int32_t caret = MeasureText(preview.font, L"|").width;
    std::wstring shown(
        before.substr(before.size() - FitTextEnd(preview.font, before, room - caret)));
    shown += L'|';
    shown += after.substr(
        0, FitText(preview.font, after, room - MeasureText(preview.font, shown).width));
    surface.PushOrigin(line);
    PaintText(surface, preview, shown, {0, 0, line.width, line.height});
    surface.PopOrigin();
}

void CGhostKeyboard::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintPreview(*surface, {kMargin, kMargin, kPanelWide - 2 * kMargin, kPreviewHigh});
    for (size_t i = 0; i < keys.size(); ++i) {
        const bool down = i == held || (keys[i].action == Action::kShift && shifted);
        const GhostTextStyle& look = style.states[down ? 2u : i == aim ? 1u : 0u];
        PaintText(*surface, look, Caption(keys[i]), keys[i].place);
        if (i == aim) {
            PaintFocusRing(*surface, keys[i].place);
        }
    }
}
