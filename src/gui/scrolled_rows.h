// CGhostScrolledRows: what the list and the table share: rows of one height, of which one may be selected
// and one is under the mouse, and the keys for them.
//
// Keys: up, down, page up and down, home and end move the selection, letters look for a row, return and
//   space choose, escape cancels. A controller's directions move it as well.
#pragma once

#include "gui/list_rows.h"
#include "gui/scrolled_area.h"

#include <string_view>

class CGhostScrolledRows : public CGhostScrolledArea {
public:
    static constexpr uint32_t kNoSelection = 1;
    static constexpr uint32_t kReportsAgain = 2; // selecting the selected row is reported
    static constexpr uint32_t kKeysAim = 16;     // keys move the hot row; return selects it

    // A disabled row or an index outside becomes -1, no selection.
    void SetSelected(int32_t row, bool notify = true);
    [[nodiscard]] int32_t Selected() const { return selected; }
    [[nodiscard]] int32_t Hot() const { return hot; } // under the mouse, or aimed at; -1: none
    void SetHot(int32_t row);                         // and shows it
    void EnsureVisible(int32_t row);
    [[nodiscard]] int32_t RowHeight() const { return rowHeight; }
    [[nodiscard]] int32_t ContentHeight() const;

    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    bool OnActivateKey() override;
    bool OnCancelKey() override { return TellCancelled(); }

protected:
    CGhostScrolledRows(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                       uint32_t rowFlags, const GUI_PLACE& place);
    ~CGhostScrolledRows() override = default;

    [[nodiscard]] virtual int32_t Rows() const = 0;
    [[nodiscard]] virtual std::wstring_view RowText(int32_t row) const = 0;
    [[nodiscard]] virtual bool Usable(int32_t row) const { return row >= 0 && row < Rows(); }
    [[nodiscard]] virtual int32_t RowsTop() const { return 0; } // within the client area
    virtual void MarkSelected(int32_t /*row*/, bool /*on*/) {}
    virtual void TellSelected() = 0;
    virtual void TellChosen() = 0;           // the selected row
    virtual bool TellCancelled() = 0;        // false when nobody listens
    virtual void ActivateKey() { Choose(); } // return, space, a controller's first button

    void Lay() override { UpdateScroll(); }
    void Scrolled() override { UpdateHot(); }
    bool GoWithin(GUI_DIRECTION way) override;
    // A list that is open over others keeps the focus.
    bool GoBeyond(GUI_DIRECTION /*way*/) override { return (flags & kKeysAim) != 0; }

    [[nodiscard]] bool Typing() const { return typeAhead.Active(); } // a row's name
    [[nodiscard]] bool Selects() const { return (flags & kNoSelection) == 0; }
    [[nodiscard]] bool Inside(int x, int y) const {
        return x >= 0 && x < width && y >= 0 && y < height;
    }
    [[nodiscard]] int32_t Page() const { return height > RowsTop() ? height - RowsTop() : 0; }
    [[nodiscard]] int32_t RowUnder(int y) const; // -1 outside of all
    void SetRowHeight(int32_t units);
    void UpdateScroll(); // rows have come or gone, or there is another number of them to see
    void RowRemoved(int32_t row);
    void RowsCleared();
    void Choose();

    uint32_t flags;
    int32_t rowHeight = 1;
    int32_t selected = -1;
    int32_t hot = -1;

private:
    [[nodiscard]] int32_t Aim() const { return (flags & kKeysAim) != 0 ? hot : selected; }
    void MoveAim(int32_t wanted, int32_t step);
    bool StepAim(int32_t step);
    void UpdateHot();

    bool hovered = false;
    int32_t mouseY = 0;
    ListTypeAhead typeAhead;
};
