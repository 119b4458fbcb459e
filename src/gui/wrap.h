// Wrapping: a text as lines no wider than a width.
//
// A line ends at a line feed, or at the last space that fits; the space belongs to neither line. A word
// that is wider than a line is broken inside, with at least one character on a line.
#pragma once

#include "gui/geometry.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class CGhostFont;

struct GUI_TEXT_LINE {
    size_t start = 0; // of its characters within the text
    size_t count = 0;
    int32_t width = 0; // units
};

struct GUI_TEXT_LAYOUT {
    std::vector<GUI_TEXT_LINE> lines; // none for an empty text
    int32_t lineHeight = 0;
    int32_t width = 0; // of the widest line
    [[nodiscard]] int32_t Height() const { return lineHeight * static_cast<int32_t>(lines.size()); }
};

// A null font is the default font.
[[nodiscard]] GUI_TEXT_LAYOUT WrapText(CGhostFont* font, std::wstring_view text, int32_t width);
