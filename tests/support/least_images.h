// Sizes of images that are small and may still be games: less is refused.
#pragma once

#include <cstddef>

inline constexpr size_t kLeastSegaImage = 1024; // Master System and Game Gear
inline constexpr size_t kLeastNesImage = 8192;  // without a header
