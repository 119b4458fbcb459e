// OverlayText: plain text over whatever the screen shows, in a bitmap font that the program carries in
// itself. For status lines and messages; it needs no font file and no toolkit.
//
// Units: a letter's cell is 6 dots wide and 10 high, a dot is `scale` screen pixels each way.
// Ground: pictures are bright and full of small shapes, so the letters have a black rim of one dot, and a
// bar behind each line darkens the picture, from two dots before the line's letters to two behind them.
// Text: printable ASCII and line ends; any other character shows an empty box, one for each
// character of UTF-8.
// Owner: the main thread; ends before the context does.
// Order: Init once; Ortho2D before each Draw or row of Draws.
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

// The area of the letters: bar, rim and the blank behind the last column and row are not counted.
[[nodiscard]] TEXT_SIZE MeasureOverlayText(std::string_view text, int scale);

class OverlayText {
public:
    OverlayText() = default;
    ~OverlayText();
    OverlayText(const OverlayText&) = delete;
    OverlayText& operator=(const OverlayText&) = delete;

    // Makes the texture of the letters. False when the driver refuses it; Draw then does nothing.
    [[nodiscard]] bool Init();

    // The first letter's top left at (x, y). Rim and bar fade with the text's opacity. A scale below 1
    // is 1.
    void Draw(std::string_view text, int x, int y, int scale, uint32_t argb) const;

private:
    TEXTURE_RECORD letters{};
};
