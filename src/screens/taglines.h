// The lines under the program's name: one of them greets the player each time the main menu appears.
#pragma once

#include <array>
#include <cstddef>

inline constexpr size_t kTaglines = 17;

[[nodiscard]] const std::array<const wchar_t*, kTaglines>& Taglines();
