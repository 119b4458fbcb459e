#include "screens/input_list.h"

#include "gui/control_input.h"
#include "gui/surface.h"

InputList::InputList(GHOSTMANAGER_WINDOW* parent, const GUI_PLACE& place)
    : CGhostListView(parent, 0, L"INPUTLIST", kFixedColumns, place) {
    AddColumn(L"Action", 0);
    AddColumn(L"Input1", 0);
    AddColumn(L"Input2", 0);
}

void InputList::GoTo(int32_t wantedColumn) {
    if (wantedColumn != column) {
        column = wantedColumn;
        dirty = true;
        OnMoved(this);
    }
}

void InputList::TellSelected() {
    CGhostListView::TellSelected();
    OnMoved(this);
}

// At the outer sides the focus goes on.
bool InputList::GoWithin(GUI_DIRECTION way) {
    if (way == GUI_DIRECTION::kLeft && column > kFirstInput) {
        GoTo(column - 1);
        return true;
    }
    if (way == GUI_DIRECTION::kRight && column < kLastInput) {
        GoTo(column + 1);
        return true;
    }
    return CGhostListView::GoWithin(way);
}

void InputList::OnMouseDown(int x, int y, unsigned button) {
    CGhostListView::OnMouseDown(x, y, button);
    if (button == kLeftButton && Selected() >= 0 &&
        CellPlace(Selected(), 0).y <= y) { // not on a heading
        GoTo(CellPlace(Selected(), kLastInput).Contains(x, y) ? kLastInput : kFirstInput);
    }
}

void InputList::OnKeyDown(GHOSTGUIKey key) {
    if (key == GHOSTGUIKey::kDelete || key == GHOSTGUIKey::kBackspace) {
        OnClear(this);
        return;
    }
    CGhostListView::OnKeyDown(key);
}

void InputList::OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) {
    CGhostListView::OnPaint(surface, clientRect);
    const GUI_RECT cell = CellPlace(Selected(), column);
    if (!cell.Empty()) {
        surface->PushOrigin({0, HeaderHeight(), width, Page()});
        PaintFocusRing(*surface, cell.Moved(0, -HeaderHeight()));
        surface->PopOrigin();
    }
}
