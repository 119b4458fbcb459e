// Finds the images of a list of games in a folder, by size and checksum, and takes the hash by which the program
// knows them: that of the image as the machine sees it.
#pragma once

#include "formats/sha256.h"
#include "library/logiqx.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

// An image as its machine sees it.
struct KNOWN_IMAGE {
    uint32_t size = 0; // in bytes
    Sha256Digest sha256{};
};

// What the list alone tells, without the file. Nothing if it has no SHA-256, and where the machine does not see the file
// itself: an NES list that leaves out the files' headers, a Mega Drive dump that may be interleaved.
[[nodiscard]] std::optional<KNOWN_IMAGE> ImageOfList(uint16_t system, const LOGIQX_ROM& rom);

// Walks the folder and its zips; each image is compared by the strongest checksum that the list has for it. The result
// has an element for each of `wanted`. `complain` is given one line for each file that cannot be read. The files are
// visited in the order of their names, so that equal folders give equal results.
[[nodiscard]] std::vector<std::optional<KNOWN_IMAGE>>
FindImages(uint16_t system, std::span<const LOGIQX_ROM* const> wanted,
           const std::filesystem::path& folder,
           const std::function<void(const std::string&)>& complain);
