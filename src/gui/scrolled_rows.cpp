#include "gui/scrolled_rows.h"

#include "gui/manager.h"

#include <algorithm>

CGhostScrolledRows::CGhostScrolledRows(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                                       const std::wstring& style, uint32_t rowFlags,
                                       const GUI_PLACE& place)
    : CGhostScrolledArea(parent, creationId, style, place)
    , flags(rowFlags) {
    CGhostManager::Get().SetTabStop(window, true);
}

// ---- Rows.

// No higher than a window may be, whatever the theme says.
void CGhostScrolledRows::SetRowHeight(int32_t units) {
    constexpr int32_t kMostHeight = 4000;
    rowHeight = std::clamp(units, 1, kMostHeight);
    SetLine(rowHeight);
}

int32_t CGhostScrolledRows::ContentHeight() const {
    constexpr int64_t kMost = 1 << 30; // so that places near its end can still be added up
    return static_cast<int32_t>(std::min(int64_t{rowHeight} * Rows(), kMost));
}

void CGhostScrolledRows::UpdateScroll() {
    dirty = true;
    ShowBar(ContentHeight() > Page());
    SetContent(ContentHeight(), Page());
    if ((flags & kKeysAim) == 0) {
        UpdateHot(); // what keys aim at stays
    }
}

void CGhostScrolledRows::RowRemoved(int32_t row) {
    const auto moved = [row](int32_t at) { return at == row ? -1 : at > row ? at - 1 : at; };
    selected = moved(selected);
    hot = moved(hot);
    UpdateScroll();
}

void CGhostScrolledRows::RowsCleared() {
    selected = hot = -1;
    UpdateScroll();
}

int32_t CGhostScrolledRows::RowUnder(int y) const {
    return y < RowsTop() ? -1 : RowAt(int64_t{y} - RowsTop() + scrollPixels, rowHeight, Rows());
}

void CGhostScrolledRows::UpdateHot() {
    if (hovered && Selects()) {
        const int32_t row = RowUnder(mouseY);
        hot = Usable(row) ? row : -1;
    }
}

void CGhostScrolledRows::EnsureVisible(int32_t row) {
    if (row >= 0 && row < Rows() && Page() > 0) {
        ScrollTo(ScrollToRow(row, rowHeight, Page(), scrollPixels));
    }
}

// ---- Selection.

void CGhostScrolledRows::SetSelected(int32_t row, bool notify) {
    if (!Usable(row)) {
        row = -1;
    }
    if (row == selected && (flags & kReportsAgain) == 0) {
        return;
    }
    MarkSelected(selected, false);
    selected = row;
    MarkSelected(selected, true);
    EnsureVisible(row);
    dirty = true;
    if (notify) {
        TellSelected();
    }
}

void CGhostScrolledRows::SetHot(int32_t row) {
    const int32_t aim = Usable(row) ? row : -1;
    EnsureVisible(aim); // which makes hot what comes under the mouse
    hot = aim;
    dirty = true;
}

// To the wanted row, or the next one on the way that is not disabled.
void CGhostScrolledRows::MoveAim(int32_t wanted, int32_t step) {
    wanted = std::clamp(wanted, 0, std::max(0, Rows() - 1));
    while (wanted >= 0 && wanted < Rows() && !Usable(wanted)) {
        wanted += step;
    }
    if (!Usable(wanted) || wanted == Aim()) {
        return;
    }
    if ((flags & kKeysAim) != 0) {
        SetHot(wanted);
    } else {
        SetSelected(wanted);
    }
}

// False at the end of the list, where nothing moved.
bool CGhostScrolledRows::StepAim(int32_t step) {
    const int32_t before = Aim();
    const int32_t wanted = before < 0 ? (step < 0 ? Rows() - 1 : 0) : before + step;
    if (wanted < 0 || wanted >= Rows()) {
        return false;
    }
    MoveAim(wanted, step);
    return Aim() != before;
}

void CGhostScrolledRows::Choose() {
    if ((flags & kKeysAim) != 0) {
        if (!Usable(hot)) {
            return;
        }
        SetSelected(hot);
    }
    if (Usable(selected)) {
        TellChosen();
    }
}

// ---- Input.

void CGhostScrolledRows::OnMouseMove(int x, int y) {
    ShowCursor(kCursorNormal);
    hovered = Inside(x, y);
    mouseY = y;
    const int32_t before = hot;
    if (hovered) {
        UpdateHot();
    } else if ((flags & kKeysAim) == 0) {
        hot = -1;
    }
    dirty = dirty || hot != before;
}

void CGhostScrolledRows::OnMouseLeave() {
    hovered = false;
    if ((flags & kKeysAim) == 0) {
        hot = -1;
        dirty = true;
    }
}

bool CGhostScrolledRows::GoWithin(GUI_DIRECTION way) {
    if (!Selects()) {
        return CGhostScrolledArea::GoWithin(way);
    }
    if (way != GUI_DIRECTION::kUp && way != GUI_DIRECTION::kDown) {
        return false;
    }
    return StepAim(way == GUI_DIRECTION::kUp ? -1 : 1);
}

void CGhostScrolledRows::OnKeyDown(GHOSTGUIKey key) {
    const int32_t rows = std::max(1, Page() / rowHeight);
    const int32_t from = std::max(Aim(), 0);
    switch (Selects() ? key : GHOSTGUIKey{}) {
    case GHOSTGUIKey::kPageUp: MoveAim(from - rows, 1); return;
    case GHOSTGUIKey::kPageDown: MoveAim(from + rows, -1); return;
    case GHOSTGUIKey::kHome: MoveAim(0, 1); return;
    case GHOSTGUIKey::kEnd: MoveAim(Rows() - 1, -1); return;
    default: break;
    }
    switch (key) {
    case GHOSTGUIKey::kReturn: ActivateKey(); break;
    case GHOSTGUIKey::kSpace:
        if (!typeAhead.Active()) {
            ActivateKey();
        }
        break;
    case GHOSTGUIKey::kEscape: TellCancelled(); break;
    default: CGhostScrolledArea::OnKeyDown(key); break;
    }
}

void CGhostScrolledRows::OnChar(unsigned character) {
    if (!Selects() || (character == L' ' && !typeAhead.Active())) {
        return;
    }
    const int32_t row =
        typeAhead.Type(static_cast<wchar_t>(character), Rows(), Aim(), [this](int32_t at) {
            return Usable(at) ? RowText(at) : std::wstring_view();
        });
    if (Usable(row)) {
        MoveAim(row, 1);
    }
}

void CGhostScrolledRows::OnTick(unsigned microseconds) {
    typeAhead.Tick(microseconds);
}

bool CGhostScrolledRows::OnActivateKey() {
    ActivateKey();
    return true;
}
