// CGhostList: rows of text, one of which may be selected. It scrolls.
//
// Mouse: a press selects, or with kOnRelease the release; a press past the last row selects none.
// Keys: up, down, page up and down, home and end move the selection, letters look for a row, return and
//   space choose. A controller's directions move it as well and leave the list at its ends.
// Images: see list_rows.h. Odd rows have the item2 styles.
#pragma once

#include "gui/control.h"
#include "gui/list_rows.h"
#include "gui/styles.h"

#include <vector>

class CGhostWindowEx;

struct GHOSTLIST_ITEM {
    static constexpr uint32_t kDisabled = 1;
    std::wstring text;
    int32_t image = -1; // index in the image list, -1: none
    uint32_t flags = 0;
    uint8_t colourSet = 0; // the owner's
    uint64_t value = 0;    // the owner's
};

class CGhostList : public CGhostGUIHandlerEx {
public:
    static constexpr uint32_t kNoSelection = 1;
    static constexpr uint32_t kReportsAgain = 2; // selecting the selected row is reported
    static constexpr uint32_t kOnRelease = 4;    // the release selects, not the press
    static constexpr uint32_t kKeysAim = 16;     // keys move the hot row; return selects it

    CGhostList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
               uint32_t listFlags, const GUI_PLACE& place);

    int32_t AddItem(const std::wstring& text, int32_t image = -1, uint32_t itemFlags = 0,
                    uint8_t colourSet = 0, uint64_t value = 0); // its index
    void SetItem(int32_t index, const GHOSTLIST_ITEM& item);
    void RemoveItem(int32_t index); // the selection stays on its row
    void Clear();
    [[nodiscard]] int32_t Count() const { return static_cast<int32_t>(items.size()); }
    [[nodiscard]] size_t Capacity() const { return items.capacity(); }
    [[nodiscard]] GHOSTLIST_ITEM* Item(int32_t index); // null outside; valid until the next AddItem

    // A disabled row or an index outside becomes -1, no selection.
    void SetSelected(int32_t index, bool notify = true);
    [[nodiscard]] int32_t Selected() const { return selected; }
    [[nodiscard]] int32_t Hot() const { return hot; }
    void SetHot(int32_t index); // and shows it
    void EnsureVisible(int32_t index);
    void SetStyle(const std::wstring& name);
    void SetStyle(const GhostListStyle& wanted);

    [[nodiscard]] int32_t RowHeight() const { return rowHeight; }
    [[nodiscard]] int32_t ContentHeight() const { return rowHeight * Count(); }
    [[nodiscard]] int32_t WidestItem() const; // text and image, in units
    [[nodiscard]] int32_t FrameHeight() const { return FrameEdges().top + FrameEdges().bottom; }
    [[nodiscard]] int32_t ScrollPixels() const { return scrollPixels; }
    void ScrollTo(int32_t pixels);
    // The bar's window, which takes the focus while it is used.
    [[nodiscard]] GHOSTMANAGER_WINDOW* ScrollbarWindow() const;

    // The item is null for -1.
    GuiSignal<void(CGhostList*, int, GHOSTLIST_ITEM*)> OnSelect;
    GuiSignal<void(CGhostList*, bool, void*)> OnFocusChange;
    // Beyond selection: return or a double click on a row; escape.
    GuiSignal<void(CGhostList*, int, GHOSTLIST_ITEM*)> OnChoose;
    GuiSignal<void(CGhostList*)> OnCancel;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    bool OnNavigate(GUI_DIRECTION direction) override;
    bool OnActivateKey() override;
    bool OnCancelKey() override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostList() override = default;

private:
    static constexpr size_t kFirstCapacity = 128;

    [[nodiscard]] const GUI_EDGES& FrameEdges() const { return style.bg.border.thickness; }
    [[nodiscard]] bool Usable(int32_t index) const;
    [[nodiscard]] int32_t Aim() const; // the row that keys start from
    [[nodiscard]] const GhostTextStyle& RowStyle(int32_t row) const;
    void UpdateScroll();
    void UpdateHot();
    void MoveAim(int32_t wanted, int32_t step);
    bool StepAim(int32_t step);
    void Choose();
    void PaintRow(CGhostSurface& surface, int32_t row, int32_t y) const;

    CGhostWindowEx* frame = nullptr; // whose chain this is the second of
    std::vector<GHOSTLIST_ITEM> items;
    GhostListStyle style;
    uint32_t flags;
    int32_t rowHeight = 1;
    int32_t width = 0; // of the client area
    int32_t height = 0;
    int32_t scrollPixels = 0;
    int32_t selected = -1;
    int32_t hot = -1;
    bool pressed = false;
    bool hovered = false;
    bool focused = false;
    int32_t mouseY = 0;
    ListTypeAhead typeAhead;
};
