// OverlayText: plain text over the screen, in a built-in bitmap font. For status lines and messages; it
// needs no font file and no toolkit.
//
// Units: a letter's cell is 6 dots wide and 10 high, a dot is `scale` screen pixels each way.
// Ground: pictures are bright and full of small shapes, so the letters have a black rim of one dot, and
// a bar behind each line darkens the picture, two dots wider than the letters on each side.
// Text: printable ASCII and line ends; any other character shows an empty box, one for each
// character of UTF-8.
// Owner: the main thread; destroyed before the context.
// Order: Init once; Ortho2D before a Draw or several.
#pragma once

#include "display/texture.h"

#include <cstdint>
#include <string_view>

inline constexpr int kTextCellWidth = 6; // dots
inline constexpr int kTextCellHeight = 10;

struct TEXT_SIZE {
    int width; // screen pixels
    int height;
};

// The area of the letters, without bar, rim and the blank after the last column and row.
[[nodiscard]] TEXT_SIZE MeasureOverlayText(std::string_view text, int scale);

class OverlayText {
public:
    OverlayText() = default;
    ~OverlayText();
    OverlayText(const OverlayText&) = delete;
    OverlayText& operator=(const OverlayText&) = delete;

    // Creates the texture of the letters. False if the driver refuses it; Draw then does nothing.
    [[nodiscard]] bool Init();

    // The first letter's top left at (x, y). Rim and bar fade with the text's opacity. A scale below 1
    // counts as 1.
    void Draw(std::string_view text, int x, int y, int scale, uint32_t argb) const;

private:
    TEXTURE_RECORD letters{};
};
