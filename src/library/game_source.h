// Games from a ROM file, a zip that holds ROMs, or a `.game`.
//
// Failure: false, and `error` holds one line that names the file and says what is wrong with it.
#pragma once

#include "facts/machine_facts.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CGameFile;

// The largest ROM that is read: well over the largest cartridge of any machine.
inline constexpr uint64_t kLargestImage = uint64_t{64} << 20;
// The largest zip: it holds any number of ROMs.
inline constexpr uint64_t kLargestZip = uint64_t{1} << 28;
// The most that the images of one archive may unpack to, in total.
inline constexpr uint64_t kLargestArchive = uint64_t{1} << 30;

struct FOUND_IMAGE {
    std::string name;  // of the file, or of the entry in the archive, without its folders; UTF-8
    std::string stem;  // the name without its extension
    std::string entry; // in an archive: the name with its folders; else empty
    uint16_t system = 0;
    std::vector<uint8_t> bytes; // as in the file, headers included
};

// Receives the images of a file one at a time; only one is in memory.
struct IMAGE_VISITOR {
    std::function<bool(const FOUND_IMAGE& image)> image; // false ends the visit
    std::function<void(const std::string& error)> fault; // an entry that cannot be unpacked
};

// Visits the images in a ROM file or a zip, in the archive's order. With `system` a file counts as that
// system's whatever its extension, and an archive yields its entries of that system, or its only file
// if none has the extension. True when the file could be read and at least one image was visited; a
// fault of a single entry goes to the visitor and the others are still visited.
[[nodiscard]] bool VisitImages(const std::filesystem::path& path, const MACHINE_FACTS* system,
                               const IMAGE_VISITOR& visitor, std::string& error);

// Visits a file, or every file in a zip, whatever its extension; `system` is that of the extension, which may be
// 0. Otherwise as VisitImages.
[[nodiscard]] bool VisitAllFiles(const std::filesystem::path& path, const IMAGE_VISITOR& visitor,
                                 std::string& error);

// Which of a file's games.
struct GAME_PICK {
    const MACHINE_FACTS* system =
        nullptr;       // the image counts as this system's, whatever the file says
    std::string entry; // of an archive, as FOUND_IMAGE has it; empty: the first that can be a game
};

// Opens a game for playing, its image unpacked and its first name selected. An image that can be no game
// (image_check.h) is refused, unless a database knows it; in an archive the next one is taken.
//
// A `.game` whose image is an archive, as an unknown game in a zip becomes one, is played as an image in it, which is
// then the same game as if it had been opened by itself. An archive in that archive is not opened. `note` gets a line
// that says which of several games was taken, and whether the file is such a `.game`; otherwise it is empty.
[[nodiscard]] bool OpenGame(const std::filesystem::path& path, const GAME_PICK& pick,
                            CGameFile& game, std::string& title, std::string& note,
                            std::string& error);

// A game in an archive.
struct ARCHIVED_GAME {
    std::string entry; // with its folders
    uint16_t system = 0;
};

// The games that OpenGame can pick from a zip, or from a `.game` whose image is one, in the archive's order; none for
// another file. False if the file cannot be read.
[[nodiscard]] bool ListArchivedGames(const std::filesystem::path& path, const MACHINE_FACTS* system,
                                     std::vector<ARCHIVED_GAME>& games, std::string& error);

// Whether the image that is played is an archive.
[[nodiscard]] bool HoldsArchive(const CGameFile& game);

// The index of the game that a player means: by its whole entry, else by its name without folders, in any case of
// letters. -1 if none has the name, or more than one.
[[nodiscard]] int FindArchivedGame(std::span<const ARCHIVED_GAME> games, std::string_view name);

// Reads a `.game`, whole or only its records; `error` says why one is refused.
[[nodiscard]] bool OpenGameFile(const std::filesystem::path& path, bool headerOnly, CGameFile& game,
                                std::string& error);

// The program's own games of a system, as entries of a database.
using BuiltInDatabase = std::vector<CGameFile> (*)(uint16_t system);
// Set once, before other threads run. Null: no game is built in.
void SetBuiltInDatabase(BuiltInDatabase entries);

// The database of a system: the entries of its file, if there is one, and then the program's own games whose image the
// file does not have. A missing or damaged file is no error.
[[nodiscard]] std::vector<CGameFile> LoadDatabase(uint16_t system);
