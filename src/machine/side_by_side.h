// Several screens in one picture: consoles that are linked by a cable and shown side by side.
//
// A machine that has such pictures derives from this as well as from CEmuSystem. It makes its picture without a gap, and
// whoever shows it may divide the screens.
#pragma once

#include <cstdint>

class CSideBySide {
public:
    virtual ~CSideBySide() = default;

    // Screens in a picture, from the left, all of the same width. The same for the machine's whole life after Init.
    [[nodiscard]] virtual uint32_t Screens() const = 0;
};
