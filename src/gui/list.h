// CGhostList: rows of text, one of which may be selected. It scrolls.
//
// Mouse: a press selects, or with kOnRelease the release; a press past the last row selects none.
// Keys and a controller: see scrolled_rows.h. Images: see list_rows.h. Odd rows have the item2 styles.
#pragma once

#include "gui/scrolled_rows.h"
#include "gui/styles.h"

#include <vector>

struct GHOSTLIST_ITEM {
    static constexpr uint32_t kDisabled = 1;
    std::wstring text;
    int32_t image = -1; // index in the image list, -1: none
    uint32_t flags = 0;
    uint8_t colourSet = 0; // the owner's
    uint64_t value = 0;    // the owner's
};

class CGhostList : public CGhostScrolledRows {
public:
    static constexpr uint32_t kOnRelease = 4; // the release selects, not the press

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

    void SetStyle(const std::wstring& name);
    void SetStyle(const GhostListStyle& wanted);

    [[nodiscard]] int32_t WidestItem() const; // text and image, in units
    [[nodiscard]] int32_t FrameHeight() const { return FrameEdges().top + FrameEdges().bottom; }

    // The item is null for -1.
    GuiSignal<void(CGhostList*, int, GHOSTLIST_ITEM*)> OnSelect;
    GuiSignal<void(CGhostList*, bool, void*)> OnFocusChange;
    // Beyond selection: return or a double click on a row; escape.
    GuiSignal<void(CGhostList*, int, GHOSTLIST_ITEM*)> OnChoose;
    GuiSignal<void(CGhostList*)> OnCancel;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostList() override = default;

    [[nodiscard]] int32_t Rows() const override { return Count(); }
    [[nodiscard]] std::wstring_view RowText(int32_t row) const override;
    [[nodiscard]] bool Usable(int32_t row) const override;
    void TellSelected() override;
    void TellChosen() override;
    bool TellCancelled() override;

private:
    static constexpr size_t kFirstCapacity = 128;

    [[nodiscard]] const GUI_EDGES& FrameEdges() const { return style.bg.border.thickness; }
    [[nodiscard]] GhostTextStyle RowStyle(int32_t row) const;
    [[nodiscard]] int32_t TextX() const; // of every row: beside the images, if any row has one
    void PaintRow(CGhostSurface& surface, int32_t row, int32_t y, int32_t textX) const;

    std::vector<GHOSTLIST_ITEM> items;
    GhostListStyle style;
    bool pressed = false; // a mouse button, on a row
};
