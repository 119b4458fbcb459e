// The table's columns: their headings, their widths and sorting by them.
#include "gui/button.h"
#include "gui/list_view.h"
#include "gui/manager.h"

#include <algorithm>
#include <cwctype>
#include <numeric>

namespace {

constexpr int32_t kLeastColumn = 16;

bool TextBefore(const GHOSTLISTVIEW_ITEM& a, const GHOSTLISTVIEW_ITEM& b) {
    return std::lexicographical_compare(
        a.text.begin(), a.text.end(), b.text.begin(), b.text.end(), [](wchar_t x, wchar_t y) {
            return std::towlower(static_cast<wint_t>(x)) < std::towlower(static_cast<wint_t>(y));
        });
}

} // namespace

// ---- Columns.

int32_t CGhostListView::AddColumn(const std::wstring& caption, int32_t columnWidth,
                                  uint32_t align) {
    Clear();
    columns.push_back({caption, std::max(columnWidth, 0), align, false, {}, nullptr});
    const int32_t column = ColumnCount() - 1;
    MakeHeading(column);
    PlaceHeadings();
    return column;
}

void CGhostListView::MakeHeading(int32_t column) {
    COLUMN& made = columns[static_cast<size_t>(column)];
    const uint32_t grips = (flags & kFixedColumns) != 0 ? 0 : CGhostButton::kGrips;
    made.heading = new CGhostButton(window, GetFlags(), L"none", made.caption,
                                    CGhostButton::kNoKeys | grips, {});
    made.heading->SetStyle(HeadingStyle(made));
    CGhostManager::Get().SetPart(made.heading->window);
    made.heading->OnState.connect(
        [this, column](CGhostButton*, int x, int, bool pressed, bool released) {
            HeadingState(column, x, pressed, released);
        });
    made.heading->OnClick.connect(
        [this, column](CGhostButton*, int, int, unsigned) { HeadingClicked(column); });
    made.heading->OnWheel.connect([this](CGhostButton*, int, int, bool up) {
        SetFocus(); // a heading has no keys of its own
        Wheel(up);
    });
}

// Its text lies at the side where the column's does.
GhostButtonStyle CGhostListView::HeadingStyle(const COLUMN& column) const {
    constexpr uint32_t kAcross = kAlignLeft | kAlignRight;
    GhostButtonStyle heading = style.header;
    if (const uint32_t across = column.align & kAcross; across != 0) {
        for (GhostTextStyle& state : heading.states) {
            state.align = (state.align & ~kAcross) | across;
        }
    }
    return heading;
}

void CGhostListView::PlaceHeadings() {
    for (int32_t column = 0; column < ColumnCount(); ++column) {
        const COLUMN& at = columns[static_cast<size_t>(column)];
        at.heading->SetPos(ColumnX(column), 0, at.width, style.headerHeight);
    }
    dirty = true;
}

void CGhostListView::SetColumnWidth(int32_t column, int32_t wanted) {
    if (column >= 0 && column < ColumnCount()) {
        columns[static_cast<size_t>(column)].width = std::max(wanted, 0);
        EndEdit(true);
        PlaceHeadings();
    }
}

int32_t CGhostListView::ColumnWidth(int32_t column) const {
    return column >= 0 && column < ColumnCount() ? columns[static_cast<size_t>(column)].width : 0;
}

int32_t CGhostListView::ColumnX(int32_t column) const {
    int32_t x = 0;
    for (int32_t i = 0; i < column; ++i) {
        x += columns[static_cast<size_t>(i)].width;
    }
    return x;
}

int32_t CGhostListView::ColumnAt(int x) const {
    int32_t left = 0;
    for (int32_t column = 0; column < ColumnCount(); ++column) {
        left += columns[static_cast<size_t>(column)].width;
        if (x >= 0 && x < left) {
            return column;
        }
    }
    return -1;
}

// A press near an edge drags that edge: the left one belongs to the column before. The keys stay the
// table's, though a heading was clicked.
void CGhostListView::HeadingState(int32_t column, int x, bool pressed, bool released) {
    constexpr int32_t kGrip = 6;
    const int32_t cursor = CGhostManager::Get().CursorX();
    if (pressed) {
        SetFocus();
        dragged = false;
        const bool left = x <= kGrip && column > 0;
        const bool right = x >= ColumnWidth(column) - kGrip;
        dragColumn = (flags & kFixedColumns) != 0 ? -1 : right ? column : left ? column - 1 : -1;
        dragWidth = ColumnWidth(dragColumn);
        dragFrom = cursor;
        pressedHeading = column;
    } else if (dragColumn >= 0 && !released && cursor != dragFrom) {
        dragged = true;
        SetColumnWidth(dragColumn, std::max(kLeastColumn, dragWidth + cursor - dragFrom));
    }
    if (released) {
        EndDrag();
    }
}

void CGhostListView::EndDrag() {
    dragColumn = pressedHeading = -1;
    dragged = false;
}

void CGhostListView::OnTick(unsigned microseconds) {
    CGhostScrolledRows::OnTick(microseconds);
    if (pressedHeading >= 0) {
        RestWithoutCapture(columns[static_cast<size_t>(pressedHeading)].heading->window,
                           [this] { EndDrag(); });
    }
}

void CGhostListView::HeadingClicked(int32_t column) {
    if (dragged) {
        return;
    }
    if (columns[static_cast<size_t>(column)].sortable) {
        SortBy(column, sortColumn == column && !sortDescending);
    }
    OnHeader(this, column);
}

// ---- Headings by keys and a controller.

// One that does something when it is clicked.
bool CGhostListView::HeadingIsUsable(int32_t column) const {
    if (column < 0 || column >= ColumnCount()) {
        return false;
    }
    const COLUMN& at = columns[static_cast<size_t>(column)];
    return at.width > 0 && (at.sortable || !OnHeader.empty());
}

// The nearest one in a direction, itself included; -1 when there is none.
int32_t CGhostListView::UsableHeading(int32_t from, int32_t step) const {
    int32_t column = from;
    while (column >= 0 && column < ColumnCount() && !HeadingIsUsable(column)) {
        column += step;
    }
    return HeadingIsUsable(column) ? column : -1;
}

void CGhostListView::AimAtHeading(int32_t column) {
    if (aimedHeading >= 0) {
        columns[static_cast<size_t>(aimedHeading)].heading->OnFocus(false, window);
    }
    aimedHeading = column;
    if (aimedHeading >= 0) {
        columns[static_cast<size_t>(aimedHeading)].heading->OnFocus(true, window);
    }
    dirty = true;
}

bool CGhostListView::GoWithin(GUI_DIRECTION way) {
    if (aimedHeading < 0) {
        return CGhostScrolledRows::GoWithin(way);
    }
    if (way == GUI_DIRECTION::kDown) {
        AimAtHeading(-1);
        return true;
    }
    if (way == GUI_DIRECTION::kUp) {
        return false;
    }
    const int32_t step = way == GUI_DIRECTION::kLeft ? -1 : 1;
    const int32_t column = UsableHeading(aimedHeading + step, step);
    if (column >= 0) {
        AimAtHeading(column);
    }
    return column >= 0;
}

// From the first row up to the headings: to the one that the table is sorted by, or the first.
bool CGhostListView::GoBeyond(GUI_DIRECTION way) {
    if (way != GUI_DIRECTION::kUp || aimedHeading >= 0 || style.headerHeight == 0) {
        return CGhostScrolledRows::GoBeyond(way);
    }
    AimAtHeading(HeadingIsUsable(sortColumn) ? sortColumn : UsableHeading(0, 1));
    return aimedHeading >= 0;
}

// A key that goes to a row takes the aim from the headings.
void CGhostListView::OnKeyDown(GHOSTGUIKey key) {
    const bool goesToRow = key == GHOSTGUIKey::kPageUp || key == GHOSTGUIKey::kPageDown ||
                           key == GHOSTGUIKey::kHome || key == GHOSTGUIKey::kEnd;
    if (goesToRow && Selects()) {
        AimAtHeading(-1);
    }
    CGhostScrolledRows::OnKeyDown(key);
}

void CGhostListView::OnKeyUp(GHOSTGUIKey key) {
    heldShortcut = 0;
    CGhostScrolledRows::OnKeyUp(key);
}

void CGhostListView::OnChar(unsigned character) {
    if (heldShortcut != 0 && character == heldShortcut) {
        return; // the key repeats
    }
    if (shortcut && !Typing() && shortcut(static_cast<wchar_t>(character))) {
        heldShortcut = character;
        return;
    }
    const int32_t before = selected;
    CGhostScrolledRows::OnChar(character);
    if (selected != before) {
        AimAtHeading(-1);
    }
}

void CGhostListView::ActivateKey() {
    if (aimedHeading >= 0) {
        HeadingClicked(aimedHeading);
    } else {
        Choose();
    }
}

// ---- Sorting.

void CGhostListView::SetSortable(int32_t column, Before before) {
    if (column >= 0 && column < ColumnCount()) {
        COLUMN& at = columns[static_cast<size_t>(column)];
        at.sortable = true;
        at.before = std::move(before);
    }
}

// Equal rows keep their order. The selection stays with its row.
void CGhostListView::SortBy(int32_t column, bool descending) {
    if (column < 0 || column >= ColumnCount()) {
        return;
    }
    EndEdit(true);
    sortColumn = column;
    sortDescending = descending;
    ShowOrder();
    if (!HasSource()) {
        SortCells(column, descending);
    } else if (source.sort) {
        const auto sort = source.sort; // which sets another source
        sort(column, descending);
    }
}

void CGhostListView::ForgetOrder() {
    sortColumn = -1;
    sortDescending = false;
    ShowOrder();
}

void CGhostListView::ShowOrder() {
    for (int32_t i = 0; i < ColumnCount(); ++i) {
        const COLUMN& at = columns[static_cast<size_t>(i)];
        const wchar_t* const mark = i != sortColumn  ? L""
                                    : sortDescending ? L" \u2193"
                                                     : L" \u2191";
        at.heading->SetCaption(at.caption + mark);
    }
}

void CGhostListView::SortCells(int32_t column, bool descending) {
    std::vector<GHOSTLISTVIEW_ITEM> sorted;
    sorted.reserve(cells.size());
    int32_t newSelected = -1;
    for (const int32_t row : SortedRows(column, descending)) {
        if (row == selected) {
            newSelected = static_cast<int32_t>(sorted.size()) / ColumnCount();
        }
        for (int32_t i = 0; i < ColumnCount(); ++i) {
            sorted.push_back(std::move(*Cell(row, i)));
        }
    }
    cells = std::move(sorted);
    selected = newSelected;
    UpdateScroll();
    EnsureVisible(selected);
}

std::vector<int32_t> CGhostListView::SortedRows(int32_t column, bool descending) {
    const Before given = columns[static_cast<size_t>(column)].before;
    const Before before = given ? given : TextBefore;
    std::vector<int32_t> order(static_cast<size_t>(rowCount));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) {
        const GHOSTLISTVIEW_ITEM& first = *Cell(descending ? b : a, column);
        const GHOSTLISTVIEW_ITEM& second = *Cell(descending ? a : b, column);
        return before(first, second);
    });
    return order;
}
