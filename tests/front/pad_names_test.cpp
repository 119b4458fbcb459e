#include "front/pad_names.h"

#include <gtest/gtest.h>

#include <string>

// As printed on the makers' controllers; the lower of the four buttons is "south".
TEST(PadNames, AreThoseOfTheFamily) {
    const struct {
        PadControl control;
        std::wstring letters;
        std::wstring shapes;
        std::wstring nintendo;
    } rows[] = {
        {kPadSouth,      L"A",     L"Cross",    L"B"      },
        {kPadEast,       L"B",     L"Circle",   L"A"      },
        {kPadNorth,      L"Y",     L"Triangle", L"X"      },
        {kPadGuide,      L"Guide", L"PS",       L"Home"   },
        {kPadRightClick, L"RS",    L"R3",       L"R stick"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PadControlName(PadFamily::kLetters, row.control), row.letters);
        EXPECT_EQ(PadControlName(PadFamily::kShapes, row.control), row.shapes);
        EXPECT_EQ(PadControlName(PadFamily::kNintendo, row.control), row.nintendo);
    }
    EXPECT_EQ(PadControlName(PadFamily::kLetters, kPadStickUp), std::wstring());
}
