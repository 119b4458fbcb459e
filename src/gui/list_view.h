// CGhostListView: a table with headings. One row may be selected.
//
// Only the rows that are seen are painted, so a table of tens of thousands is as quick as a short one. Its rows may
//   be made by a source only when they are needed, so that it is there at once as well.
// Headings: dragging their edges changes a column's width, clicking one fires OnHeader and, if the owner
//   has made the column sortable, sorts by it, the second time the other way round.
// Keys and a controller: see scrolled_rows.h. Up from the first row goes to the headings, where left and
//   right choose one, and return or a controller's first button clicks it.
// Images: see list_rows.h.
// Cells: those with a colourSet other than 0 have the item2 styles.
#pragma once

#include "gui/scrolled_rows.h"
#include "gui/styles.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class CGhostButton;
class CGhostEdit;

struct GHOSTLISTVIEW_ITEM {
    static constexpr uint32_t kSelected = 1;
    std::wstring text;
    int32_t image = -1; // index in the image list, -1: none
    uint32_t flags = 0;
    uint8_t colourSet = 0;
    int32_t indent = 0; // widths of an image
    uint64_t value = 0; // the owner's
};

// Makes the rows of a table when they are needed; they are forgotten and made again at any time.
struct GHOSTLISTVIEW_SOURCE {
    std::function<void(int32_t row, std::span<GHOSTLISTVIEW_ITEM> cells)> fill; // cells are empty
    std::function<std::wstring_view(int32_t row)> text; // of the first column; stays with the rows
    // The player wants this order: the owner sets the rows again.
    std::function<void(int32_t column, bool descending)> sort;
};

class CGhostListView : public CGhostScrolledRows {
public:
    static constexpr uint32_t kFixedColumns = 8; // their edges cannot be dragged

    // True when the first comes before the second.
    using Before = std::function<bool(const GHOSTLISTVIEW_ITEM&, const GHOSTLISTVIEW_ITEM&)>;

    CGhostListView(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                   uint32_t viewFlags, const GUI_PLACE& place);

    // ---- Columns. Adding one clears the rows. `align`: bits of styles.h, 0 takes the style's.
    int32_t AddColumn(const std::wstring& caption, int32_t columnWidth, uint32_t align = 0);
    void SetColumnWidth(int32_t column, int32_t wanted);
    [[nodiscard]] int32_t ColumnWidth(int32_t column) const; // 0 outside
    [[nodiscard]] int32_t ColumnCount() const { return static_cast<int32_t>(columns.size()); }
    // Without `before` by the text, without regard to capitals.
    void SetSortable(int32_t column, Before before = {});
    void SortBy(int32_t column, bool descending);
    void ForgetOrder();                                             // the rows stay as they are
    [[nodiscard]] int32_t SortColumn() const { return sortColumn; } // -1: none
    [[nodiscard]] bool SortDescending() const { return sortDescending; }

    // ---- Rows.
    int32_t AddRow(); // its index; the cells are empty
    void RemoveRow(int32_t row);
    void Clear();
    void Reserve(int32_t rows);
    // In the place of the rows that are there. They cannot be added to or removed, and what is changed in a cell lasts
    // until the next tick.
    void SetRows(int32_t count, GHOSTLISTVIEW_SOURCE rowSource);
    [[nodiscard]] int32_t RowCount() const { return rowCount; }
    [[nodiscard]] GHOSTLISTVIEW_ITEM* Cell(int32_t row, int32_t column); // null outside
    void SetCell(int32_t row, int32_t column, const std::wstring& text, int32_t image = -1);
    void Refresh(); // after cells were changed in place, or a source's rows are others

    [[nodiscard]] int32_t HeaderHeight() const { return style.headerHeight; }
    // What is seen of a cell, within the client area.
    [[nodiscard]] GUI_RECT CellPlace(int32_t row, int32_t column) const;
    // An edit over a cell, until return, escape or the loss of the focus.
    void BeginEdit(int32_t row, int32_t column);
    [[nodiscard]] CGhostEdit* Editor() const { return editor; }
    void SetStyle(const std::wstring& name);
    // The owner's commands by character, asked once a press and only where no row's name has been begun: true
    // if it is one, which then begins none.
    std::function<bool(wchar_t)> shortcut;

    // (button, row, column, cell)
    GuiSignal<void(CGhostListView*, unsigned, int, int, GHOSTLISTVIEW_ITEM*)> OnClick;
    GuiSignal<void(CGhostListView*, int, GHOSTLISTVIEW_ITEM*)> OnSelect; // the row's first cell
    // Beyond selection: return or a double click on a row; escape; a heading; an edited cell.
    GuiSignal<void(CGhostListView*, int, GHOSTLISTVIEW_ITEM*)> OnChoose;
    GuiSignal<void(CGhostListView*)> OnCancel;
    GuiSignal<void(CGhostListView*, int)> OnHeader;
    GuiSignal<void(CGhostListView*, int, int, const std::wstring&)> OnEdited;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostListView() override = default;

    [[nodiscard]] int32_t Rows() const override { return rowCount; }
    [[nodiscard]] std::wstring_view RowText(int32_t row) const override;
    [[nodiscard]] int32_t RowsTop() const override { return style.headerHeight; }
    void MarkSelected(int32_t row, bool on) override;
    void TellSelected() override;
    void TellChosen() override;
    bool TellCancelled() override;
    void ActivateKey() override;
    void Lay() override;
    void Scrolled() override;
    bool GoWithin(GUI_DIRECTION way) override;
    bool GoBeyond(GUI_DIRECTION way) override;

private:
    struct COLUMN {
        std::wstring caption;
        int32_t width = 0;
        uint32_t align = 0;
        bool sortable = false;
        Before before;
        CGhostButton* heading = nullptr;
    };

    [[nodiscard]] int32_t ColumnX(int32_t column) const;
    [[nodiscard]] int32_t ColumnAt(int x) const; // -1 beside all
    [[nodiscard]] const GhostTextStyle& CellStyle(const GHOSTLISTVIEW_ITEM& cell,
                                                  int32_t row) const;
    void MakeHeading(int32_t column);
    [[nodiscard]] GhostButtonStyle HeadingStyle(const COLUMN& column) const;
    void PlaceHeadings();
    void HeadingState(int32_t column, int x, bool pressed, bool released);
    void HeadingClicked(int32_t column);
    void EndDrag();
    void AimAtHeading(int32_t column);
    [[nodiscard]] bool HeadingIsUsable(int32_t column) const;
    [[nodiscard]] int32_t UsableHeading(int32_t from, int32_t step) const;
    [[nodiscard]] std::vector<int32_t> SortedRows(int32_t column, bool descending);
    void SortCells(int32_t column, bool descending);
    void ShowOrder();
    [[nodiscard]] bool HasSource() const { return source.fill != nullptr; }
    void EndEdit(bool keep);
    void PaintRow(CGhostSurface& surface, int32_t row, int32_t y);
    void PaintCell(CGhostSurface& surface, int32_t row, int32_t column, const GUI_RECT& place);

    GhostListViewStyle style;
    std::vector<COLUMN> columns;
    std::vector<GHOSTLISTVIEW_ITEM> cells; // row by row; without a source
    GHOSTLISTVIEW_SOURCE source;
    std::unordered_map<int32_t, std::vector<GHOSTLISTVIEW_ITEM>> madeRows; // rows of the source
    int32_t rowCount = 0;
    int32_t sortColumn = -1;
    bool sortDescending = false;
    int32_t pressedHeading = -1;
    int32_t dragColumn = -1;   // whose width a drag changes
    int32_t dragWidth = 0;     // at the drag's start
    int32_t dragFrom = 0;      // of the cursor, on the screen
    bool dragged = false;      // the press on the heading was a drag
    unsigned heldShortcut = 0; // its character, until a key is released; 0: none
    int32_t aimedHeading =
        -1; // the one that keys and a controller are at; -1: they are at the rows
    CGhostEdit* editor = nullptr;
    std::wstring editedText; // what the editor began with
    int32_t editRow = -1;
    int32_t editColumn = -1;
};
