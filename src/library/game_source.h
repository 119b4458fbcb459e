// Games in whatever file they come: a ROM, a zip that holds ROMs, or a `.game`.
//
// Failure: false, and `error` holds one line that names the file and says what is wrong with it.
#pragma once

#include "library/systems.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

class CGameFile;

// The largest image that is read: well over the largest cartridge of any of the machines.
inline constexpr uint64_t kLargestImage = uint64_t{64} << 20;

struct FOUND_IMAGE {
    std::string stem; // of the file, or of the entry in the archive; UTF-8
    uint16_t system = 0;
    std::vector<uint8_t> bytes; // as in the file, with whatever header it has
};

// The images in a ROM file or a zip, in the archive's order; at least one on success. With `system` the
// file is taken for that system's whatever its extension; an archive's entries too, when none of them
// has an extension of that system and there is only one.
[[nodiscard]] bool FindImages(const std::filesystem::path& path, const GAME_SYSTEM* system,
                              std::vector<FOUND_IMAGE>& images, std::string& error);

// Opens a game for playing, its image unpacked and its first name selected. Of an archive it is the
// first image.
[[nodiscard]] bool OpenGame(const std::filesystem::path& path, const GAME_SYSTEM* system,
                            CGameFile& game, std::string& title, std::string& error);

// Reads a `.game`, whole or its records alone, and says what is wrong with one that is refused.
[[nodiscard]] bool OpenGameFile(const std::filesystem::path& path, bool headerOnly, CGameFile& game,
                                std::string& error);

// The database of a system; empty when there is none, which is no error.
[[nodiscard]] std::vector<CGameFile> LoadDatabase(uint16_t system);
