// Rectangles of the toolkit, in units of the virtual screen unless a comment says pixels.
#pragma once

#include <algorithm>
#include <cstdint>

struct GUI_RECT {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;

    [[nodiscard]] constexpr int32_t Right() const { return x + width; }
    [[nodiscard]] constexpr int32_t Bottom() const { return y + height; }
    [[nodiscard]] constexpr bool Empty() const { return width <= 0 || height <= 0; }
    // Half open: the right and the lower edge are outside.
    [[nodiscard]] constexpr bool Contains(int32_t px, int32_t py) const {
        return px >= x && py >= y && px < Right() && py < Bottom();
    }
    [[nodiscard]] constexpr GUI_RECT Moved(int32_t dx, int32_t dy) const {
        return {x + dx, y + dy, width, height};
    }

    bool operator==(const GUI_RECT&) const = default;
};

// Thicknesses or margins.
struct GUI_EDGES {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const GUI_EDGES&) const = default;
};

// Thicknesses as a theme may have them; none is below 0.
[[nodiscard]] constexpr GUI_EDGES Thicknesses(const GUI_EDGES& edges) {
    return {std::max(edges.left, 0), std::max(edges.top, 0), std::max(edges.right, 0),
            std::max(edges.bottom, 0)};
}

// Empty, with a size of 0 each way, where they do not meet.
[[nodiscard]] constexpr GUI_RECT Intersection(const GUI_RECT& a, const GUI_RECT& b) {
    const int32_t x = std::max(a.x, b.x);
    const int32_t y = std::max(a.y, b.y);
    return {x, y, std::max(0, std::min(a.Right(), b.Right()) - x),
            std::max(0, std::min(a.Bottom(), b.Bottom()) - y)};
}

// The smallest rectangle around both; an empty one adds nothing.
[[nodiscard]] constexpr GUI_RECT Around(const GUI_RECT& a, const GUI_RECT& b) {
    if (a.Empty()) {
        return b;
    }
    if (b.Empty()) {
        return a;
    }
    const int32_t x = std::min(a.x, b.x);
    const int32_t y = std::min(a.y, b.y);
    return {x, y, std::max(a.Right(), b.Right()) - x, std::max(a.Bottom(), b.Bottom()) - y};
}
