// Text on a surface. A null font is the default font.
//
// Units: those of the virtual screen. Measures are the same at every density.
#pragma once

#include "gui/geometry.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

class CGhostFont;
class CGhostSurface;
struct GhostTextStyle;

struct GUI_TEXT_SIZE {
    int32_t width;
    int32_t height;
};

// The sum of the advances, and the font's height.
[[nodiscard]] GUI_TEXT_SIZE MeasureText(CGhostFont* font, std::wstring_view text);

// Width of the first `count` characters.
[[nodiscard]] int32_t MeasurePrefix(CGhostFont* font, std::wstring_view text, size_t count);

// How many characters fit. One fits while half its advance lies within the width.
[[nodiscard]] size_t FitText(CGhostFont* font, std::wstring_view text, int32_t width);

// How many of the last characters fit as a whole.
[[nodiscard]] size_t FitTextEnd(CGhostFont* font, std::wstring_view text, int32_t width);

// `align`: bits of styles.h. An outline colour other than 0 draws a soft round edge in that colour
// around all glyphs first. Nothing is drawn if the rectangle is wholly off the surface; a text that is too
// long for it is not cut.
void DrawText(CGhostSurface& surface, CGhostFont* font, std::wstring_view text, uint32_t colour,
              uint32_t outlineColour, uint32_t align, const GUI_RECT& rect, int32_t xOffset,
              int32_t yOffset);

// The fill of a style, and a text in its font, colours and place.
void PaintText(CGhostSurface& surface, const GhostTextStyle& style, std::wstring_view text,
               const GUI_RECT& rect);
