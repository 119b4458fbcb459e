#include "front/pad_names.h"

namespace {

struct NAME_ROW {
    PadControl control;
    const wchar_t* letters;
    const wchar_t* shapes;
    const wchar_t* nintendo;
};

constexpr NAME_ROW kNames[] = {
    {kPadSouth,         L"A",     L"Cross",    L"B"      },
    {kPadEast,          L"B",     L"Circle",   L"A"      },
    {kPadWest,          L"X",     L"Square",   L"Y"      },
    {kPadNorth,         L"Y",     L"Triangle", L"X"      },
    {kPadLeftShoulder,  L"LB",    L"L1",       L"L"      },
    {kPadRightShoulder, L"RB",    L"R1",       L"R"      },
    {kPadBack,          L"View",  L"Share",    L"Minus"  },
    {kPadStart,         L"Menu",  L"Options",  L"Plus"   },
    {kPadGuide,         L"Guide", L"PS",       L"Home"   },
    {kPadRightClick,    L"RS",    L"R3",       L"R stick"},
};

} // namespace

const wchar_t* PadControlName(PadFamily family, PadControl control) {
    for (const NAME_ROW& row : kNames) {
        if (row.control != control) {
            continue;
        }
        switch (family) {
        case PadFamily::kLetters: return row.letters;
        case PadFamily::kShapes: return row.shapes;
        case PadFamily::kNintendo: return row.nintendo;
        }
    }
    return L"";
}
