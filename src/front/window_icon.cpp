#include "front/window_icon.h"

#include <array>
#include <string_view>

namespace {

// Half the side, each character four pixels: '#' case, '+' its edge, 'o' knobs, 'a' to 'd' the screen
// from light to shade.
constexpr std::array<std::string_view, 16> kDrawing = {
    "    #      #    ", //
    "     #    #     ", //
    "      #  #      ", //
    " ++++++++++++++ ", //
    "+##############+", //
    "+#abbcccdddd##o+", //
    "+#bbcccddddd#o#+", //
    "+#bcccdddddd##o+", //
    "+#cccddddddd###+", //
    "+#ccdddddddd#+#+", //
    "+#cdddddddda###+", //
    "+#dddddddaaa#+#+", //
    "+##############+", //
    " ++++++++++++++ ", //
    "   ##      ##   ", //
    "                ", //
};

uint32_t ColourOf(char mark) {
    switch (mark) {
    case '#': return 0xFF3A3247;
    case '+': return 0xFF1E1A28;
    case 'o': return 0xFFE8B04A;
    case 'a': return 0xFFF6E7B0;
    case 'b': return 0xFF8FD0C8;
    case 'c': return 0xFF4A86B8;
    case 'd': return 0xFF27355F;
    default: return 0;
    }
}

} // namespace

std::vector<uint32_t> WindowIcon() {
    std::vector<uint32_t> pixels;
    for (size_t y = 0; y < kWindowIconSize; ++y) {
        for (size_t x = 0; x < kWindowIconSize; ++x) {
            pixels.push_back(ColourOf(kDrawing[y / 2][x / 2]));
        }
    }
    return pixels;
}
