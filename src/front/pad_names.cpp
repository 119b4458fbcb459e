#include "front/pad_names.h"

#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>

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
    {kPadLeftTrigger,   L"LT",    L"L2",       L"ZL"     },
    {kPadRightTrigger,  L"RT",    L"R2",       L"ZR"     },
    {kPadRightClick,    L"RS",    L"R3",       L"R stick"},
};

constexpr uint64_t kDirections = PadBit(0, kPadDpadUp) | PadBit(0, kPadDpadDown) |
                                 PadBit(0, kPadDpadLeft) | PadBit(0, kPadDpadRight);

std::wstring JoystickBindingOf(std::wstring_view action) {
    constexpr uint32_t kJoystick = 1; // in the device byte
    const auto [primary, secondary] = Settings().GetInt2(L"INPUT " + std::wstring(action));
    for (const int32_t bound : {primary, secondary}) {
        const auto binding = static_cast<uint32_t>(bound);
        if (binding >> 24 == kJoystick) {
            return BindingName(binding);
        }
    }
    return {};
}

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

std::wstring PadNameOfAction(PadFamily family, std::wstring_view action) {
    if (std::wstring own = JoystickBindingOf(action); !own.empty()) {
        return own;
    }
    const auto actions = InputActions();
    const auto found = std::find_if(actions.begin(), actions.end(),
                                    [&](const INPUT_ACTION& one) { return one.name == action; });
    if (found == actions.end()) {
        return {};
    }
    const uint64_t controls = found->padControls & ~InputPadsTaken();
    if ((controls & kDirections) != 0) {
        return L"D-pad";
    }
    for (uint32_t number = 0; number < kPadControls; ++number) {
        const auto control = static_cast<PadControl>(number);
        if ((controls & PadBit(0, control)) != 0) {
            return PadControlName(family, control);
        }
    }
    return {};
}
