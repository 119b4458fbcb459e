// What the header inside an image says of it.
//
// Sources: nesdev wiki, pages iNES and NES 2.0; Plutiedev, page ROM header reference; SMS Power, pages ROM Header and
// SDSC Tag. docs/HARDWARE.md, "Headers of images".
//
// Any thread may call.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct IMAGE_CHECKSUM {
    uint16_t stated = 0;   // by the header
    uint16_t computed = 0; // of the image, by the machine's rule
};

// What the header does not say, or has no place for, is empty.
struct IMAGE_FACTS {
    std::string title;
    std::string serial; // the maker's number of the game
    std::string regions;
    std::string board;
    std::optional<bool> battery;
    std::optional<IMAGE_CHECKSUM> checksum;
};

// `image` is as the machine sees it.
[[nodiscard]] IMAGE_FACTS ReadImageFacts(uint16_t system, std::span<const uint8_t> image);
