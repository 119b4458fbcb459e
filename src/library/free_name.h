// Files that are put beside others and replace none.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

struct PLACED_FILE {
    std::filesystem::path path;
    bool alreadyThere = false; // a file of this name had these bytes
};

// Writes a file in the folder, which is made if it is missing, under the stem and extension. While the name
// belongs to a file with other bytes, "0" is appended to the stem. False with one line that names the file.
[[nodiscard]] bool WriteBesideOthers(const std::filesystem::path& folder,
                                     const std::filesystem::path& stem,
                                     const std::string& extension, std::span<const uint8_t> bytes,
                                     PLACED_FILE& placed, std::string& error);
