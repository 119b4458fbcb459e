// Images that are small and may still be games: less is refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

inline constexpr size_t kLeastSegaImage = 1024; // Master System and Game Gear
inline constexpr size_t kLeastNesImage = 8192;  // without a header

// An NES file that is whole and valid, but for a cartridge board that the machine does not know: 255.
inline std::vector<uint8_t> NesImageOfAnUnknownBoard() {
    std::vector<uint8_t> image = {'N', 'E', 'S', 0x1A, 1, 0, 0xF0, 0xF0};
    image.resize(16 + 16384);
    return image;
}
