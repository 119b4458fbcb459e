#include "gui/list.h"

#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>

namespace {

constexpr int32_t kRowGap = 2; // of a row's height, beyond its font and image
constexpr int32_t kBeside = 4; // left of a row's image, and between it and its text

} // namespace

CGhostList::CGhostList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                       const std::wstring& wantedStyle, uint32_t listFlags, const GUI_PLACE& place)
    : CGhostScrolledRows(parent, creationId, wantedStyle, listFlags, place) {
    items.reserve(kFirstCapacity);
    SetStyle(wantedStyle);
}

void CGhostList::SetStyle(const std::wstring& name) {
    GhostListStyle found;
    CGhostTheme::Get().GetStyle(name, found);
    SetStyle(found);
}

void CGhostList::SetStyle(const GhostListStyle& wanted) {
    style = wanted;
    const int32_t font = MeasureText(style.itemNormal.font, {}).height;
    SetRowHeight(std::max(font, ListImageSide(style.imageList)) + kRowGap);
    CGhostManager::Get().SetWindowFrame(window, &style.bg.border);
    dirty = true;
}

// ---- Items.

int32_t CGhostList::AddItem(const std::wstring& text, int32_t image, uint32_t itemFlags,
                            uint8_t colourSet, uint64_t value) {
    if (items.size() == items.capacity()) {
        items.reserve(items.capacity() * 2);
    }
    items.push_back({text, image, itemFlags, colourSet, value});
    UpdateScroll();
    return Count() - 1;
}

void CGhostList::SetItem(int32_t index, const GHOSTLIST_ITEM& item) {
    if (GHOSTLIST_ITEM* const at = Item(index)) {
        *at = item;
        UpdateScroll();
    }
}

void CGhostList::RemoveItem(int32_t index) {
    if (Item(index) != nullptr) {
        items.erase(items.begin() + index);
        RowRemoved(index);
    }
}

void CGhostList::Clear() {
    items.clear();
    RowsCleared();
}

GHOSTLIST_ITEM* CGhostList::Item(int32_t index) {
    return index >= 0 && index < Count() ? &items[static_cast<size_t>(index)] : nullptr;
}

std::wstring_view CGhostList::RowText(int32_t row) const {
    return items[static_cast<size_t>(row)].text;
}

bool CGhostList::Usable(int32_t row) const {
    return row >= 0 && row < Count() &&
           (items[static_cast<size_t>(row)].flags & GHOSTLIST_ITEM::kDisabled) == 0;
}

int32_t CGhostList::WidestItem() const {
    int32_t widest = 0;
    for (const GHOSTLIST_ITEM& item : items) {
        widest = std::max(widest, MeasureText(style.itemNormal.font, item.text).width);
    }
    return widest + TextX();
}

int32_t CGhostList::TextX() const {
    const int32_t side = ListImageSide(style.imageList);
    const bool images =
        side > 0 && std::any_of(items.begin(), items.end(),
                                [](const GHOSTLIST_ITEM& item) { return item.image >= 0; });
    return images ? kBeside + side + kBeside : 0;
}

// ---- What is reported.

void CGhostList::TellSelected() {
    OnSelect(this, selected, Item(selected));
}

void CGhostList::TellChosen() {
    OnChoose(this, selected, Item(selected));
}

bool CGhostList::TellCancelled() {
    const bool heard = !OnCancel.empty();
    OnCancel(this);
    return heard;
}

void CGhostList::OnFocus(bool gained, void* other) {
    CGhostScrolledRows::OnFocus(gained, other);
    OnFocusChange(this, gained, other);
}

// ---- The mouse.

void CGhostList::OnMouseDown(int /*x*/, int y, unsigned button) {
    if (button != kLeftButton || !Selects()) {
        return;
    }
    pressed = true;
    if ((flags & kOnRelease) == 0) {
        SetSelected(RowUnder(y));
    }
}

void CGhostList::OnMouseUp(int x, int y, unsigned button) {
    if (button != kLeftButton || !pressed) {
        return;
    }
    pressed = false;
    if ((flags & kOnRelease) != 0 && Inside(x, y)) {
        SetSelected(RowUnder(y));
    }
}

void CGhostList::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    OnMouseUp(x, y, button); // the press of a double click is not captured
    if ((flags & kOnRelease) == 0 && button == kLeftButton && Selects() && RowUnder(y) >= 0) {
        Choose();
    }
}

void CGhostList::OnTick(unsigned microseconds) {
    CGhostScrolledRows::OnTick(microseconds);
    if (pressed) {
        RestWithoutCapture(window, [this] { pressed = false; });
    }
}

// ---- Painting.

// A disabled row is neither selected nor under the mouse, whatever it was before.
GhostTextStyle CGhostList::RowStyle(int32_t row) const {
    const bool odd = row % 2 != 0;
    if (!Usable(row)) {
        return DisabledText(odd ? style.item2Normal : style.itemNormal);
    }
    if (row == selected) {
        return odd ? style.item2Selected : style.itemSelected;
    }
    if (row == hot) {
        return odd ? style.item2Hot : style.itemHot;
    }
    return odd ? style.item2Normal : style.itemNormal;
}

void CGhostList::PaintRow(CGhostSurface& surface, int32_t row, int32_t y, int32_t textX) const {
    const GHOSTLIST_ITEM& item = items[static_cast<size_t>(row)];
    GhostTextStyle text = RowStyle(row);
    PaintFill(surface, text.bg, {0, y, width, rowHeight});
    text.bg.type = GhostFill::kNone;
    const int32_t side = ListImageSide(style.imageList);
    PaintListImage(surface, style.imageList, item.image, kBeside, y + (rowHeight - side) / 2);
    PaintText(surface, text, item.text, {textX, y, width - textX, rowHeight});
}

void CGhostList::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintFill(*surface, style.bg.bg, {0, 0, width, height});
    const int32_t textX = TextX();
    const int32_t first = scrollPixels / rowHeight;
    for (int32_t row = first; row < Count() && row * rowHeight - scrollPixels < height; ++row) {
        PaintRow(*surface, row, row * rowHeight - scrollPixels, textX);
    }
    if (focused) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
