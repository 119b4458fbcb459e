#include "gui/list.h"

#include "gui/font.h"
#include "gui/manager.h"
#include "gui/scrollbar.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <algorithm>

namespace {

constexpr int32_t kRowGap = 2;      // of a row's height, beyond its font and image
constexpr int32_t kBeside = 4;      // between a row's image and its text
constexpr uint32_t kHalfSeen = 128; // coverage of a disabled row's text

} // namespace

CGhostList::CGhostList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId,
                       const std::wstring& wantedStyle, uint32_t listFlags, const GUI_PLACE& place)
    : flags(listFlags) {
    items.reserve(kFirstCapacity);
    frame = new CGhostWindowEx(parent, creationId, wantedStyle, {},
                               CGhostWindowEx::kNoPaint | CGhostWindowEx::kNoSignals, place);
    window = frame->window;
    frame->next = this;
    frame->Scrollbar()->OnScroll.connect([this](int32_t pos) {
        scrollPixels = pos;
        UpdateHot();
        dirty = true;
    });
    CGhostManager::Get().SetTabStop(window, true);
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
    rowHeight = std::max(font, ListImageSide(style.imageList)) + kRowGap;
    frame->Scrollbar()->SetStep(rowHeight);
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
        dirty = true;
    }
}

void CGhostList::RemoveItem(int32_t index) {
    if (Item(index) == nullptr) {
        return;
    }
    items.erase(items.begin() + index);
    const auto moved = [index](int32_t row) {
        return row == index ? -1 : row > index ? row - 1 : row;
    };
    selected = moved(selected);
    hot = moved(hot);
    UpdateScroll();
}

void CGhostList::Clear() {
    items.clear();
    selected = hot = -1;
    scrollPixels = 0;
    UpdateScroll();
}

GHOSTLIST_ITEM* CGhostList::Item(int32_t index) {
    return index >= 0 && index < Count() ? &items[static_cast<size_t>(index)] : nullptr;
}

bool CGhostList::Usable(int32_t index) const {
    return index >= 0 && index < Count() &&
           (items[static_cast<size_t>(index)].flags & GHOSTLIST_ITEM::kDisabled) == 0;
}

int32_t CGhostList::WidestItem() const {
    const int32_t side = ListImageSide(style.imageList);
    int32_t widest = 0;
    for (const GHOSTLIST_ITEM& item : items) {
        const int32_t image = side > 0 && item.image >= 0 ? side + kBeside : 0;
        widest = std::max(widest, image + MeasureText(style.itemNormal.font, item.text).width);
    }
    return widest;
}

// ---- Selection.

void CGhostList::SetSelected(int32_t index, bool notify) {
    if (!Usable(index)) {
        index = -1;
    }
    if (index == selected && (flags & kReportsAgain) == 0) {
        return;
    }
    selected = index;
    EnsureVisible(index);
    dirty = true;
    if (notify) {
        OnSelect(this, index, Item(index));
    }
}

void CGhostList::SetHot(int32_t index) {
    hot = Usable(index) ? index : -1;
    EnsureVisible(hot);
    dirty = true;
}

int32_t CGhostList::Aim() const {
    return (flags & kKeysAim) != 0 ? hot : selected;
}

// To the wanted row, or the next one on the way that is not disabled.
void CGhostList::MoveAim(int32_t wanted, int32_t step) {
    wanted = std::clamp(wanted, 0, std::max(0, Count() - 1));
    while (wanted >= 0 && wanted < Count() && !Usable(wanted)) {
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
bool CGhostList::StepAim(int32_t step) {
    if ((flags & kNoSelection) != 0) {
        const int32_t before = scrollPixels;
        ScrollTo(scrollPixels + step * rowHeight);
        return scrollPixels != before;
    }
    const int32_t before = Aim();
    const int32_t from = before < 0 && step < 0 ? Count() : before;
    MoveAim(from + step, step < 0 ? -1 : 1);
    return Aim() != before;
}

void CGhostList::Choose() {
    if ((flags & kKeysAim) != 0) {
        if (!Usable(hot)) {
            return;
        }
        SetSelected(hot);
    }
    if (Usable(selected)) {
        OnChoose(this, selected, Item(selected));
    }
}

// ---- Scrolling.

void CGhostList::EnsureVisible(int32_t index) {
    if (index >= 0 && index < Count() && height > 0) {
        ScrollTo(ScrollToRow(index, rowHeight, height, scrollPixels));
    }
}

void CGhostList::ScrollTo(int32_t pixels) {
    frame->Scrollbar()->SetRange(
        -1, -1, std::clamp(pixels, 0, std::max(0, ContentHeight() - height)), false);
}

GHOSTMANAGER_WINDOW* CGhostList::ScrollbarWindow() const {
    return frame->Scrollbar()->window;
}

void CGhostList::UpdateScroll() {
    dirty = true;
    frame->ShowScrollbar(ContentHeight() > height);
    frame->Scrollbar()->SetRange(ContentHeight(), height, -1, true);
}

void CGhostList::UpdateHot() {
    if (hovered && (flags & kNoSelection) == 0) {
        const int32_t row = RowAt(int64_t{mouseY} + scrollPixels, rowHeight, Count());
        hot = Usable(row) ? row : -1;
    }
}

void CGhostList::OnResize(int /*outerWidth*/, int /*outerHeight*/, int clientWidth,
                          int clientHeight) {
    width = clientWidth;
    height = clientHeight;
    UpdateScroll();
}

// ---- Input.

void CGhostList::OnFocus(bool gained, void* other) {
    focused = gained;
    dirty = true;
    OnFocusChange(this, gained, other);
}

void CGhostList::OnMouseMove(int x, int y) {
    ShowCursor(kCursorNormal);
    hovered = x >= 0 && x < width && y >= 0 && y < height;
    mouseY = y;
    const int32_t before = hot;
    if (hovered) {
        UpdateHot();
    } else if ((flags & kKeysAim) == 0) {
        hot = -1;
    }
    dirty = dirty || hot != before;
}

void CGhostList::OnMouseLeave() {
    hovered = false;
    if ((flags & kKeysAim) == 0) {
        hot = -1;
        dirty = true;
    }
}

void CGhostList::OnMouseDown(int /*x*/, int y, unsigned button) {
    if (button != 1 || (flags & kNoSelection) != 0) {
        return;
    }
    pressed = true;
    if ((flags & kOnRelease) == 0) {
        SetSelected(RowAt(int64_t{y} + scrollPixels, rowHeight, Count()));
    }
}

void CGhostList::OnMouseUp(int x, int y, unsigned button) {
    if (button != 1 || !pressed) {
        return;
    }
    pressed = false;
    const bool inside = x >= 0 && x < width && y >= 0 && y < height;
    if ((flags & kOnRelease) != 0 && inside) {
        SetSelected(RowAt(int64_t{y} + scrollPixels, rowHeight, Count()));
    }
}

void CGhostList::OnMouseDoubleClick(int x, int y, unsigned button) {
    OnMouseDown(x, y, button);
    if ((flags & kOnRelease) == 0) {
        pressed = false; // the press of a double click is not captured
        if (button == 1 && (flags & kNoSelection) == 0 &&
            RowAt(int64_t{y} + scrollPixels, rowHeight, Count()) >= 0) {
            Choose();
        }
    }
}

void CGhostList::OnKeyDown(GHOSTGUIKey key) {
    const int32_t rows = std::max(1, height / rowHeight);
    switch (key) {
    case GHOSTGUIKey::kUp: StepAim(-1); break;
    case GHOSTGUIKey::kDown: StepAim(1); break;
    case GHOSTGUIKey::kPageUp:
        (flags & kNoSelection) != 0 ? ScrollTo(scrollPixels - height) : MoveAim(Aim() - rows, 1);
        break;
    case GHOSTGUIKey::kPageDown:
        (flags & kNoSelection) != 0 ? ScrollTo(scrollPixels + height) : MoveAim(Aim() + rows, -1);
        break;
    case GHOSTGUIKey::kHome: (flags & kNoSelection) != 0 ? ScrollTo(0) : MoveAim(0, 1); break;
    case GHOSTGUIKey::kEnd:
        (flags & kNoSelection) != 0 ? ScrollTo(ContentHeight()) : MoveAim(Count() - 1, -1);
        break;
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

void CGhostList::OnChar(unsigned character) {
    if ((flags & kNoSelection) != 0 || (character == L' ' && !typeAhead.Active())) {
        return;
    }
    const int32_t row =
        typeAhead.Type(static_cast<wchar_t>(character), Count(), Aim(), [this](int32_t index) {
            return std::wstring_view(items[static_cast<size_t>(index)].text);
        });
    if (Usable(row)) {
        MoveAim(row, 1);
    }
}

void CGhostList::OnTick(unsigned microseconds) {
    typeAhead.Tick(microseconds);
}

bool CGhostList::OnNavigate(GUI_DIRECTION direction) {
    if (direction == GUI_DIRECTION::kUp || direction == GUI_DIRECTION::kDown) {
        return StepAim(direction == GUI_DIRECTION::kUp ? -1 : 1) || (flags & kKeysAim) != 0;
    }
    return (flags & kKeysAim) != 0; // an open list keeps the focus
}

bool CGhostList::OnActivateKey() {
    Choose();
    return true;
}

bool CGhostList::OnCancelKey() {
    const bool used = !OnCancel.empty();
    OnCancel(this);
    return used;
}

// ---- Painting.

const GhostTextStyle& CGhostList::RowStyle(int32_t row) const {
    const bool odd = row % 2 != 0;
    if (row == selected) {
        return odd ? style.item2Selected : style.itemSelected;
    }
    if (row == hot) {
        return odd ? style.item2Hot : style.itemHot;
    }
    return odd ? style.item2Normal : style.itemNormal;
}

void CGhostList::PaintRow(CGhostSurface& surface, int32_t row, int32_t y) const {
    const GHOSTLIST_ITEM& item = items[static_cast<size_t>(row)];
    GhostTextStyle text = RowStyle(row);
    PaintFill(surface, text.bg, {0, y, width, rowHeight});
    text.bg.type = GhostFill::kNone;
    int32_t x = 0;
    if (const int32_t side = ListImageSide(style.imageList); side > 0 && item.image >= 0) {
        PaintListImage(surface, style.imageList, item.image, 0, y + (rowHeight - side) / 2);
        x = side + kBeside;
    }
    if (!Usable(row)) {
        const uint32_t alpha = (text.textColour >> 24) * kHalfSeen / 255;
        text.textColour = (text.textColour & 0x00FFFFFF) | alpha << 24;
    }
    PaintText(surface, text, item.text, {x, y, width - x, rowHeight});
}

void CGhostList::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    PaintFill(*surface, style.bg.bg, {0, 0, width, height});
    const int32_t first = scrollPixels / rowHeight;
    for (int32_t row = first; row < Count() && row * rowHeight - scrollPixels < height; ++row) {
        PaintRow(*surface, row, row * rowHeight - scrollPixels);
    }
    if (focused) {
        PaintFocusRing(*surface, {0, 0, width, height});
    }
}
