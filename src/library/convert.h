// One ROM file, or a ROM inside a zip, made into a `.game`.
#pragma once

#include "library/game_file.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The system whose images have this file extension (with its dot, any case); 0 for none. ".bin" is a
// Mega Drive image.
[[nodiscard]] uint16_t SystemOfExtension(std::string_view extension);

// Makes an image into what the machine sees: takes the copier header off an interleaved Mega Drive
// dump and puts its bytes in order. Any other image is used as it is.
[[nodiscard]] std::vector<uint8_t> PrepareImage(uint16_t system, std::span<const uint8_t> file);

// The whole `.game` of one image. Games that the database knows get its names and records; an unknown
// one gets the default records, with `stem` (UTF-8) as its title. False for an arcade image, which can
// only be assembled from a database, and for one that cannot be packed.
[[nodiscard]] bool ConvertImage(uint16_t system, std::string_view stem,
                                std::span<const uint8_t> file,
                                std::span<const CGameFile> database, std::vector<uint8_t>& out,
                                bool& known);
