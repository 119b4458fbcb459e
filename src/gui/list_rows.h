// What the list, the list view and the lists that drop down share.
#pragma once

#include "gui/geometry.h"
#include "gui/styles.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

class CGhostSurface;

// ---- Images. A style's image list is one bitmap: a row of squares, as wide as the bitmap is high.

[[nodiscard]] int32_t ListImageSide(const GhostTexture& imageList); // 0 without a bitmap
// Nothing for an index outside the row.
void PaintListImage(CGhostSurface& surface, const GhostTexture& imageList, int32_t index, int32_t x,
                    int32_t y);

// ---- Type-ahead: the letters typed within a second of each other are the beginning of a row's text.

class ListTypeAhead {
public:
    // The row that the letters select, or -1. `textOf` returns a row's text; the search begins at
    // `selected` and goes round. The same letter again and again goes through the rows with it.
    [[nodiscard]] int32_t Type(wchar_t character, int32_t count, int32_t selected,
                               const std::function<std::wstring_view(int32_t)>& textOf);
    void Tick(uint32_t microseconds);
    [[nodiscard]] bool Active() const { return !typed.empty(); }

private:
    std::wstring typed; // in small letters
    int64_t left = 0;   // microseconds until it is forgotten
};

// ---- Rows, all of one height.

// How the text of what is disabled looks: as it does otherwise, but fainter. It can still be read, with a
// contrast of 4.5 to 1 where the text itself has 9.
[[nodiscard]] GhostTextStyle DisabledText(GhostTextStyle style);

// The index of the row at a place, -1 outside of all.
[[nodiscard]] int32_t RowAt(int64_t place, int32_t rowHeight, int32_t count);

// The scroll position nearest to the present one at which a row is wholly seen.
[[nodiscard]] int32_t ScrollToRow(int32_t row, int32_t rowHeight, int32_t page, int32_t scroll);

// ---- Dropping: where a list of a height goes that opens under its control, or above it where there is
// more room. Both in units of the screen; it is cut to the room there is.
[[nodiscard]] GUI_RECT DropPlace(const GUI_RECT& control, int32_t width, int32_t height,
                                 const GUI_RECT& screen);
