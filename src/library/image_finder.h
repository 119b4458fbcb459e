// Finds the images of a list of games in a folder, by size and checksum, and takes the hash by which the program
// knows them: that of the image as the machine sees it.
#pragma once

#include "formats/sha256.h"
#include "library/logiqx.h"

#include <atomic>
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

// What a search tells, on its own thread. All must be there but `stop`.
struct IMAGE_SEARCH_SINK {
    std::function<void(const std::string& line)> complain; // one for each file that cannot be read
    std::function<void(size_t done, size_t total, const std::string& name)> progress; // of files
    const std::atomic<bool>* stop = nullptr; // ends the search between two files
};

// Walks the folder and its zips; each image is compared by the strongest checksum that the list has for it. The result
// has an element for each of `wanted`. The files are visited in the order of their names, so that equal folders give
// equal results.
[[nodiscard]] std::vector<std::optional<KNOWN_IMAGE>>
FindImages(uint16_t system, std::span<const LOGIQX_ROM* const> wanted,
           const std::filesystem::path& folder, const IMAGE_SEARCH_SINK& sink);
