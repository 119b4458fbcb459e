// Games in whatever file they come: a ROM, a zip that holds ROMs, or a `.game`.
//
// Failure: false, and `error` holds one line that names the file and says what is wrong with it.
#pragma once

#include "facts/machine_facts.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class CGameFile;

// The largest ROM or archive that is read: well over the largest cartridge of any of the machines.
inline constexpr uint64_t kLargestImage = uint64_t{64} << 20;
// The most that the images of one archive may unpack to.
inline constexpr uint64_t kLargestArchive = uint64_t{1} << 30;

struct FOUND_IMAGE {
    std::string stem; // of the file, or of the entry in the archive; UTF-8
    uint16_t system = 0;
    std::vector<uint8_t> bytes; // as in the file, with whatever header it has
};

// Gets the images of a file one at a time; only one is in memory.
struct IMAGE_VISITOR {
    std::function<bool(const FOUND_IMAGE& image)> image; // false: enough seen
    std::function<void(const std::string& error)> fault; // an entry that cannot be unpacked
};

// Visits the images in a ROM file or a zip, in the archive's order. With `system` the file is taken for
// that system's whatever its extension; of an archive its entries of that system, or the only one
// where none has its extension. True when the file could be read and at least one image was visited;
// a fault of a single entry goes to the visitor and the others are still visited.
[[nodiscard]] bool VisitImages(const std::filesystem::path& path, const MACHINE_FACTS* system,
                               const IMAGE_VISITOR& visitor, std::string& error);

// Opens a game for playing, its image unpacked and its first name selected. Of an archive it is the
// first image. With `system` the image is taken for that system's, whatever the file says.
[[nodiscard]] bool OpenGame(const std::filesystem::path& path, const MACHINE_FACTS* system,
                            CGameFile& game, std::string& title, std::string& error);

// Reads a `.game`, whole or its records alone, and says what is wrong with one that is refused.
[[nodiscard]] bool OpenGameFile(const std::filesystem::path& path, bool headerOnly, CGameFile& game,
                                std::string& error);

// The database of a system; empty when there is none, which is no error.
[[nodiscard]] std::vector<CGameFile> LoadDatabase(uint16_t system);
