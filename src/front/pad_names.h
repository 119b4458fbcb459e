// What is printed on a game controller's buttons.
#pragma once

#include "settings/pad_defaults.h"

#include <cstdint>
#include <string>
#include <string_view>

// The families of controllers whose buttons have names of their own.
enum class PadFamily : uint8_t { kLetters, kShapes, kNintendo };

// The name of a control by its position: the lower of the four buttons is "A", "Cross" or "B". Empty for a
// control that has no short name.
[[nodiscard]] const wchar_t* PadControlName(PadFamily family, PadControl control);

// What is printed on the first controller's control that does an action now: its default one, or the one that the
// player has bound. Of the four directions the control as a whole. Empty if there is none.
[[nodiscard]] std::wstring PadNameOfAction(PadFamily family, std::wstring_view action);
