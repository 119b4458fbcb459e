#include "gui/list_rows.h"

#include "gui/bitmap.h"
#include "gui/surface.h"

#include <algorithm>
#include <cwctype>

int32_t ListImageSide(const GhostTexture& imageList) {
    return imageList.bitmap != nullptr ? imageList.bitmap->height : 0;
}

void PaintListImage(CGhostSurface& surface, const GhostTexture& imageList, int32_t index, int32_t x,
                    int32_t y) {
    const int32_t side = ListImageSide(imageList);
    if (side > 0 && index >= 0 && index < imageList.bitmap->width / side) {
        surface.Blit(*imageList.bitmap, {x, y, side, side}, index * side, 0);
    }
}

namespace {

wchar_t Small(wchar_t character) {
    return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(character)));
}

bool BeginsWith(std::wstring_view text, std::wstring_view small) {
    return text.size() >= small.size() &&
           std::equal(small.begin(), small.end(), text.begin(),
                      [](wchar_t wanted, wchar_t has) { return wanted == Small(has); });
}

} // namespace

int32_t ListTypeAhead::Type(wchar_t character, int32_t count, int32_t selected,
                            const std::function<std::wstring_view(int32_t)>& textOf) {
    constexpr int64_t kForgottenAfter = 1000000;
    const wchar_t small = Small(character);
    const bool again = typed.size() == 1 && typed[0] == small;
    if (!again) {
        typed += small;
    }
    left = kForgottenAfter;
    // One letter looks on from the next row; more of them may still mean the same row.
    const int32_t from = typed.size() == 1 ? selected + 1 : std::max(selected, 0);
    for (int32_t i = 0; i < count; ++i) {
        const int32_t row = (from + i) % count;
        if (BeginsWith(textOf(row), typed)) {
            return row;
        }
    }
    return -1;
}

void ListTypeAhead::Tick(uint32_t microseconds) {
    left -= microseconds;
    if (left <= 0) {
        left = 0;
        typed.clear();
    }
}

GhostTextStyle DisabledText(GhostTextStyle style) {
    constexpr uint32_t kSeen = 168; // of 255
    const uint32_t alpha = (style.textColour >> 24) * kSeen / 255;
    style.textColour = (style.textColour & 0x00FFFFFF) | alpha << 24;
    return style;
}

int32_t RowAt(int64_t place, int32_t rowHeight, int32_t count) {
    if (place < 0 || rowHeight <= 0 || place / rowHeight >= count) {
        return -1;
    }
    return static_cast<int32_t>(place / rowHeight);
}

int32_t ScrollToRow(int32_t row, int32_t rowHeight, int32_t page, int32_t scroll) {
    constexpr int64_t kMost = 1 << 30;
    const auto top = static_cast<int32_t>(std::min(int64_t{row} * rowHeight, kMost));
    if (top < scroll || rowHeight > page) {
        return top;
    }
    return std::max(scroll, top + rowHeight - page);
}

GUI_RECT DropPlace(const GUI_RECT& control, int32_t width, int32_t height, const GUI_RECT& screen) {
    const int32_t below = std::max(0, screen.Bottom() - control.Bottom());
    const int32_t above = std::max(0, control.y - screen.y);
    const int32_t x = std::max(screen.x, std::min(control.x, screen.Right() - width));
    if (height <= below) {
        return {x, control.Bottom(), width, height};
    }
    if (below < above) {
        const int32_t top = std::max(screen.y, control.y - height);
        return {x, top, width, control.y - top};
    }
    return {x, control.Bottom(), width, below};
}
