// The files of the room's furniture: models and images.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// The file `.\objects\NAME` of the home folder, or else the program's own, in capitals or not. Empty if there is
// neither. A file of the home folder that cannot be read is reported, and the program's own is used.
[[nodiscard]] std::vector<uint8_t> ReadObjectFile(std::string_view name);

// The program's own alone, for when the player's is damaged.
[[nodiscard]] std::vector<uint8_t> ReadBuiltInObject(std::string_view name);
