// The table's rows, columns and input. How it is painted is in list_view_paint.cpp.
#include "gui/list_view.h"

#include "gui/button.h"
#include "gui/edit.h"
#include "gui/manager.h"
#include "gui/scrollbar.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <cwctype>
#include <numeric>

namespace {

constexpr int32_t kRowGap = 2; // of a row's height, where the style has none
constexpr int32_t kLeastColumn = 16;

bool TextBefore(const GHOSTLISTVIEW_ITEM& a, const GHOSTLISTVIEW_ITEM& b) {
    return std::lexicographical_compare(
        a.text.begin(), a.text.end(), b.text.begin(), b.text.end(), [](wchar_t x, wchar_t y) {
            return std::towlower(static_cast<wint_t>(x)) < std::towlower(static_cast<wint_t>(y));
        });
}

} // namespace

CGhostListView::CGhostListView(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& wantedStyle, uint32_t viewFlags,
                               const GUI_PLACE& place)
    : flags(viewFlags) {
    frame = new CGhostWindowEx(parent, creationId, wantedStyle, {},
                               CGhostWindowEx::kNoPaint | CGhostWindowEx::kNoSignals, place);
    window = frame->window;
    frame->next = this;
    frame->Scrollbar()->OnScroll.connect([this](int32_t pos) {
        scrollPixels = pos;
        EndEdit(true);
        UpdateHot();
        dirty = true;
    });
    CGhostManager::Get().SetTabStop(window, true);
    SetStyle(wantedStyle);
}

void CGhostListView::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    style.headerHeight = std::max(style.headerHeight, 0);
    const int32_t content = std::max(MeasureText(style.list.itemNormal.font, {}).height,
                                     ListImageSide(style.list.imageList));
    rowHeight = style.itemHeight > 0 ? style.itemHeight : content + kRowGap;
    frame->Scrollbar()->SetStep(rowHeight);
    for (const COLUMN& column : columns) {
        column.heading->SetStyle(style.header);
    }
    CGhostManager::Get().SetWindowFrame(window, &style.list.bg.border);
    dirty = true;
}

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
    made.heading->SetStyle(style.header);
    CGhostManager::Get().SetPart(made.heading->window);
    made.heading->OnState.connect(
        [this, column](CGhostButton*, int x, int, bool pressed, bool released) {
            HeadingState(column, x, pressed, released);
        });
    made.heading->OnClick.connect(
        [this, column](CGhostButton*, int, int, unsigned) { HeadingClicked(column); });
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

// A press near an edge drags that edge: the left one belongs to the column before.
void CGhostListView::HeadingState(int32_t column, int x, bool pressed, bool released) {
    constexpr int32_t kGrip = 6;
    const int32_t cursor = CGhostManager::Get().CursorX();
    if (pressed) {
        dragged = false;
        const bool left = x <= kGrip && column > 0;
        const bool right = x >= ColumnWidth(column) - kGrip;
        dragColumn = (flags & kFixedColumns) != 0 ? -1 : right ? column : left ? column - 1 : -1;
        dragWidth = ColumnWidth(dragColumn);
        dragFrom = cursor;
    } else if (dragColumn >= 0 && !released && cursor != dragFrom) {
        dragged = true;
        SetColumnWidth(dragColumn, std::max(kLeastColumn, dragWidth + cursor - dragFrom));
    }
    if (released) {
        dragColumn = -1;
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
    const Before given = columns[static_cast<size_t>(column)].before;
    const Before before = given ? given : TextBefore;
    std::vector<int32_t> order(static_cast<size_t>(rowCount));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) {
        const GHOSTLISTVIEW_ITEM& first = *Cell(descending ? b : a, column);
        const GHOSTLISTVIEW_ITEM& second = *Cell(descending ? a : b, column);
        return before(first, second);
    });
    std::vector<GHOSTLISTVIEW_ITEM> sorted;
    sorted.reserve(cells.size());
    int32_t newSelected = -1;
    for (const int32_t row : order) {
        if (row == selected) {
            newSelected = static_cast<int32_t>(sorted.size()) / ColumnCount();
        }
        for (int32_t i = 0; i < ColumnCount(); ++i) {
            sorted.push_back(std::move(*Cell(row, i)));
        }
    }
    cells = std::move(sorted);
    selected = newSelected;
    for (int32_t i = 0; i < ColumnCount(); ++i) {
        const COLUMN& at = columns[static_cast<size_t>(i)];
        const wchar_t* const mark = i != column ? L"" : descending ? L" \u2193" : L" \u2191";
        at.heading->SetCaption(at.caption + mark);
    }
    EnsureVisible(selected);
    UpdateHot();
    dirty = true;
}

// ---- Rows.

int32_t CGhostListView::AddRow() {
    cells.resize(cells.size() + columns.size());
    ++rowCount;
    UpdateScroll();
    return rowCount - 1;
}

void CGhostListView::RemoveRow(int32_t row) {
    if (row < 0 || row >= rowCount) {
        return;
    }
    EndEdit(false);
    const auto from = cells.begin() + static_cast<ptrdiff_t>(row) * ColumnCount();
    cells.erase(from, from + ColumnCount());
    --rowCount;
    const auto moved = [row](int32_t at) { return at == row ? -1 : at > row ? at - 1 : at; };
    selected = moved(selected);
    hotRow = moved(hotRow);
    UpdateScroll();
}

void CGhostListView::Clear() {
    EndEdit(false);
    cells.clear();
    rowCount = 0;
    selected = hotRow = -1;
    UpdateScroll();
}

void CGhostListView::Reserve(int32_t rows) {
    cells.reserve(static_cast<size_t>(std::max(rows, 0)) * columns.size());
}

GHOSTLISTVIEW_ITEM* CGhostListView::Cell(int32_t row, int32_t column) {
    if (row < 0 || row >= rowCount || column < 0 || column >= ColumnCount()) {
        return nullptr;
    }
    return &cells[static_cast<size_t>(row) * columns.size() + static_cast<size_t>(column)];
}

void CGhostListView::SetCell(int32_t row, int32_t column, const std::wstring& text, int32_t image) {
    if (GHOSTLISTVIEW_ITEM* const cell = Cell(row, column)) {
        cell->text = text;
        cell->image = image;
        dirty = true;
    }
}

// ---- Selection.

void CGhostListView::FlagRow(int32_t row, bool on) {
    for (int32_t column = 0; column < ColumnCount(); ++column) {
        if (GHOSTLISTVIEW_ITEM* const cell = Cell(row, column)) {
            cell->flags = on ? cell->flags | GHOSTLISTVIEW_ITEM::kSelected
                             : cell->flags & ~GHOSTLISTVIEW_ITEM::kSelected;
        }
    }
}

void CGhostListView::SetSelected(int32_t row, bool notify) {
    if (row < 0 || row >= rowCount) {
        row = -1;
    }
    if (row == selected && (flags & kReportsAgain) == 0) {
        return;
    }
    FlagRow(selected, false);
    selected = row;
    FlagRow(selected, true);
    EnsureVisible(row);
    dirty = true;
    if (notify) {
        OnSelect(this, row, Cell(row, 0));
    }
}

void CGhostListView::MoveSelection(int32_t wanted) {
    if ((flags & kNoSelection) != 0) {
        ScrollTo(wanted * rowHeight);
    } else if (rowCount > 0) {
        const int32_t row = std::clamp(wanted, 0, rowCount - 1);
        if (row != selected) {
            SetSelected(row);
        }
    }
}

bool CGhostListView::StepSelection(int32_t step) {
    if ((flags & kNoSelection) != 0) {
        const int32_t before = scrollPixels;
        ScrollTo(scrollPixels + step * rowHeight);
        return scrollPixels != before;
    }
    const int32_t before = selected;
    MoveSelection(before < 0 && step < 0 ? rowCount - 1 : before + step);
    return selected != before;
}

void CGhostListView::Choose() {
    if (selected >= 0) {
        OnChoose(this, selected, Cell(selected, 0));
    }
}

// ---- Scrolling.

void CGhostListView::EnsureVisible(int32_t row) {
    if (row >= 0 && row < rowCount && Page() > 0) {
        ScrollTo(ScrollToRow(row, rowHeight, Page(), scrollPixels));
    }
}

void CGhostListView::ScrollTo(int32_t pixels) {
    const int32_t most = std::max(0, ContentHeight() - Page());
    frame->Scrollbar()->SetRange(-1, -1, std::clamp(pixels, 0, most), false);
}

void CGhostListView::UpdateScroll() {
    dirty = true;
    frame->ShowScrollbar(ContentHeight() > Page());
    frame->Scrollbar()->SetRange(ContentHeight(), Page(), -1, true);
}

int32_t CGhostListView::RowUnder(int y) const {
    if (y < style.headerHeight) {
        return -1;
    }
    return RowAt(int64_t{y} - style.headerHeight + scrollPixels, rowHeight, rowCount);
}

void CGhostListView::UpdateHot() {
    hotRow = hovered ? RowUnder(mouseY) : -1;
}

void CGhostListView::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                              int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    PlaceHeadings();
    UpdateScroll();
}

// ---- Editing in place.

void CGhostListView::BeginEdit(int32_t row, int32_t column) {
    EndEdit(true);
    EnsureVisible(row);
    GHOSTLISTVIEW_ITEM* const cell = Cell(row, column);
    const GUI_RECT at = CellPlace(row, column);
    if (cell == nullptr || at.Empty()) {
        return;
    }
    editRow = row;
    editColumn = column;
    editor = new CGhostEdit(window, GetFlags(), L"", cell->text, CGhostEdit::kSubmits,
                            {false, at.x, at.y, at.width, at.height});
    editor->SetStyle(style.edit);
    editor->SetSelection(0, cell->text.size());
    editor->OnSubmit.connect([this](CGhostEdit*, bool keep) { EndEdit(keep); });
    editor->OnFocusChange.connect([this](CGhostEdit* from, bool gained) {
        // The keyboard on the screen takes the focus for a while.
        if (!gained && from == editor && from->Keyboard() == nullptr) {
            EndEdit(true);
        }
    });
    editor->OnGone.connect(
        [this](CGhostEdit* from) { editor = from == editor ? nullptr : editor; });
    editor->SetFocus();
}

void CGhostListView::EndEdit(bool keep) {
    if (editor == nullptr) {
        return;
    }
    CGhostEdit* const ended = editor;
    editor = nullptr; // what follows may come back here
    const std::wstring text = ended->Text();
    const bool hadFocus = CGhostManager::Get().FocusWindow() == ended->window;
    ended->Close();
    if (hadFocus) {
        SetFocus();
    }
    if (GHOSTLISTVIEW_ITEM* const cell = Cell(editRow, editColumn); keep && cell != nullptr) {
        if (cell->text != text) {
            cell->text = text;
            OnEdited(this, editRow, editColumn, text);
        }
    }
    dirty = true;
}

// ---- Input.

void CGhostListView::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    dirty = true;
}

void CGhostListView::OnMouseMove(int x, int y) {
    ShowCursor(kCursorNormal);
    const int32_t before = hotRow;
    hovered = x >= 0 && x < width && y >= 0 && y < height;
    mouseY = y;
    UpdateHot();
    dirty = dirty || hotRow != before;
}

void CGhostListView::OnMouseLeave() {
    hovered = false;
    hotRow = -1;
    dirty = true;
}

void CGhostListView::OnMouseDown(int x, int y, unsigned button) {
    if (y < style.headerHeight) {
        return;
    }
    const int32_t row = RowUnder(y);
    const int32_t column = row >= 0 ? ColumnAt(x) : -1;
    if (button == 1 && (flags & kNoSelection) == 0) {
        SetSelected(row);
    }
    OnClick(this, button, row, column, Cell(row, column));
}

void CGhostListView::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    if (button == 1 && RowUnder(y) >= 0) {
        Choose();
    }
}

void CGhostListView::OnKeyDown(GHOSTGUIKey key) {
    const int32_t rows = std::max(1, Page() / rowHeight);
    const int32_t from = (flags & kNoSelection) != 0 ? scrollPixels / rowHeight : selected;
    switch (key) {
    case GHOSTGUIKey::kUp: StepSelection(-1); break;
    case GHOSTGUIKey::kDown: StepSelection(1); break;
    case GHOSTGUIKey::kPageUp: MoveSelection(from - rows); break;
    case GHOSTGUIKey::kPageDown: MoveSelection(from + rows); break;
    case GHOSTGUIKey::kHome: MoveSelection(0); break;
    case GHOSTGUIKey::kEnd: MoveSelection(rowCount - 1); break;
    case GHOSTGUIKey::kReturn: Choose(); break;
    case GHOSTGUIKey::kSpace:
        if (!typeAhead.Active()) {
            Choose();
        }
        break;
    case GHOSTGUIKey::kEscape: OnCancel(this); break;
    default: break;
    }
}

void CGhostListView::OnChar(unsigned character) {
    if ((flags & kNoSelection) != 0 || columns.empty() ||
        (character == L' ' && !typeAhead.Active())) {
        return;
    }
    const int32_t row =
        typeAhead.Type(static_cast<wchar_t>(character), rowCount, selected,
                       [this](int32_t at) { return std::wstring_view(Cell(at, 0)->text); });
    if (row >= 0) {
        MoveSelection(row);
    }
}

void CGhostListView::OnTick(unsigned microseconds) {
    typeAhead.Tick(microseconds);
}

bool CGhostListView::OnNavigate(GUI_DIRECTION direction) {
    if (direction == GUI_DIRECTION::kUp || direction == GUI_DIRECTION::kDown) {
        return StepSelection(direction == GUI_DIRECTION::kUp ? -1 : 1);
    }
    return false;
}

bool CGhostListView::OnActivateKey() {
    Choose();
    return true;
}

bool CGhostListView::OnCancelKey() {
    const bool used = !OnCancel.empty();
    OnCancel(this);
    return used;
}
