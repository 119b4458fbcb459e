// The table's rows and cells, and the edit over a cell. Its columns are in list_view_columns.cpp, how it is
// painted in list_view_paint.cpp.
#include "gui/list_view.h"

#include "gui/button.h"
#include "gui/edit.h"
#include "gui/manager.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t kRowGap = 2; // of a row's height, where the style has none

} // namespace

CGhostListView::CGhostListView(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                               const std::wstring& wantedStyle, uint32_t viewFlags,
                               const GUI_PLACE& place)
    : CGhostScrolledRows(parent, creationId, wantedStyle, viewFlags, place) {
    SetStyle(wantedStyle);
}

void CGhostListView::SetStyle(const std::wstring& name) {
    CGhostTheme::Get().GetStyle(name, style);
    style.headerHeight = std::max(style.headerHeight, 0);
    const int32_t content = std::max(MeasureText(style.list.itemNormal.font, {}).height,
                                     ListImageSide(style.list.imageList));
    SetRowHeight(style.itemHeight > 0 ? style.itemHeight : content + kRowGap);
    for (const COLUMN& column : columns) {
        column.heading->SetStyle(HeadingStyle(column));
    }
    CGhostManager::Get().SetWindowFrame(window, &style.list.bg.border);
    dirty = true;
}

// ---- Rows.

int32_t CGhostListView::AddRow() {
    if (HasSource()) {
        return -1;
    }
    cells.resize(cells.size() + columns.size());
    ++rowCount;
    UpdateScroll();
    return rowCount - 1;
}

void CGhostListView::RemoveRow(int32_t row) {
    if (row < 0 || row >= rowCount || HasSource()) {
        return;
    }
    EndEdit(false);
    const auto from = cells.begin() + static_cast<ptrdiff_t>(row) * ColumnCount();
    cells.erase(from, from + ColumnCount());
    --rowCount;
    RowRemoved(row);
}

void CGhostListView::Clear() {
    EndEdit(false);
    cells.clear();
    madeRows.clear();
    source = {};
    rowCount = 0;
    RowsCleared();
}

void CGhostListView::SetRows(int32_t count, GHOSTLISTVIEW_SOURCE rowSource) {
    Clear();
    source = std::move(rowSource);
    rowCount = std::max(count, 0);
    UpdateScroll();
}

void CGhostListView::Refresh() {
    madeRows.clear();
    dirty = true;
}

void CGhostListView::Reserve(int32_t rows) {
    cells.reserve(static_cast<size_t>(std::max(rows, 0)) * columns.size());
}

GHOSTLISTVIEW_ITEM* CGhostListView::Cell(int32_t row, int32_t column) {
    if (row < 0 || row >= rowCount || column < 0 || column >= ColumnCount()) {
        return nullptr;
    }
    if (!HasSource()) {
        return &cells[static_cast<size_t>(row) * columns.size() + static_cast<size_t>(column)];
    }
    auto found = madeRows.find(row);
    if (found == madeRows.end()) {
        found = madeRows.try_emplace(row, columns.size()).first;
        source.fill(row, found->second);
        MarkSelected(row, row == selected);
    }
    return &found->second[static_cast<size_t>(column)];
}

void CGhostListView::SetCell(int32_t row, int32_t column, const std::wstring& text, int32_t image) {
    if (GHOSTLISTVIEW_ITEM* const cell = Cell(row, column)) {
        cell->text = text;
        cell->image = image;
        dirty = true;
    }
}

std::wstring_view CGhostListView::RowText(int32_t row) const {
    if (HasSource()) {
        return source.text(row);
    }
    return columns.empty() ? std::wstring_view()
                           : cells[static_cast<size_t>(row) * columns.size()].text;
}

void CGhostListView::MarkSelected(int32_t row, bool on) {
    if (HasSource() && !madeRows.contains(row)) {
        return; // it is marked when it is made
    }
    for (int32_t column = 0; column < ColumnCount(); ++column) {
        if (GHOSTLISTVIEW_ITEM* const cell = Cell(row, column)) {
            cell->flags = on ? cell->flags | GHOSTLISTVIEW_ITEM::kSelected
                             : cell->flags & ~GHOSTLISTVIEW_ITEM::kSelected;
        }
    }
}

void CGhostListView::Lay() {
    PlaceHeadings();
    UpdateScroll();
}

void CGhostListView::Scrolled() {
    EndEdit(true);
    CGhostScrolledRows::Scrolled();
}

// ---- What is reported.

void CGhostListView::TellSelected() {
    OnSelect(this, selected, Cell(selected, 0));
}

void CGhostListView::TellChosen() {
    OnChoose(this, selected, Cell(selected, 0));
}

bool CGhostListView::TellCancelled() {
    const bool heard = !OnCancel.empty();
    OnCancel(this);
    return heard;
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
    editedText = editor->Text(); // one line of what the cell has
    editor->SetSelection(0, editedText.size());
    editor->OnSubmit.connect([this](CGhostEdit*, bool keep) { EndEdit(keep); });
    editor->OnFocusChange.connect([this](CGhostEdit* from, bool gained) {
        // The keyboard on the screen takes the focus for a while.
        if (!gained && from == editor && from->Keyboard() == nullptr) {
            EndEdit(true);
        }
    });
    editor->OnGone.connect([this](CGhostEdit* from) {
        editor = from == editor ? nullptr : editor;
        // The on-screen keyboard returns the focus to the editor, even one that is about to go.
        if (CGhostManager::Get().FocusWindow() == from->window) {
            SetFocus();
        }
    });
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
    dirty = true;
    GHOSTLISTVIEW_ITEM* const cell = Cell(editRow, editColumn);
    if (keep && cell != nullptr && text != editedText) {
        cell->text = text;
        OnEdited(this, editRow, editColumn, text);
    }
}

// ---- Input.

void CGhostListView::OnFocus(bool gained, void* other) {
    heldShortcut = 0;
    CGhostScrolledRows::OnFocus(gained, other);
    if (!gained) {
        AimAtHeading(-1);
    }
}

void CGhostListView::OnMouseDown(int x, int y, unsigned button) {
    if (y < style.headerHeight) {
        return;
    }
    const int32_t row = RowUnder(y);
    const int32_t column = row >= 0 ? ColumnAt(x) : -1;
    if (button == kLeftButton && Selects()) {
        SetSelected(row);
    }
    AimAtHeading(-1);
    OnClick(this, button, row, column, Cell(row, column));
}

void CGhostListView::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    if (button == kLeftButton && Selects() && RowUnder(y) >= 0) {
        Choose();
    }
}
