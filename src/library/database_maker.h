// Makes a database of a list of games.
//
// Consoles: an entry is a game with all that were joined to it: the clones of its parent or, in a list without any
// parents, the games of the same title, and in either the games that share an image. Every dump is a piece and has a name
// of the same index, which lists that piece alone, so that an entry whose images are all there makes a file in which each
// version can be played. Names for more titles follow.
//
// Arcade: an entry is a set. Its name lists all pieces in the order of the list but one called "opcodes", which the
// machine looks for by itself.
//
// Games whose image no one knows are left out and counted.
#pragma once

#include "formats/game_file.h"
#include "library/database_rules.h"
#include "library/image_finder.h"
#include "library/logiqx.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

struct DATABASE_SOURCES {
    uint16_t system = 0;
    const LOGIQX_FILE* list = nullptr;
    std::span<const DATABASE_RULE> rules = {};
    std::filesystem::path roms; // where the images are; may be empty
    // Of the search there. A stop leaves out what has not been found.
    IMAGE_SEARCH_SINK search = {[](const std::string&) {},
                                [](size_t, size_t, const std::string&) {}, nullptr};
};

// Counts are games of the list.
struct DATABASE_REPORT {
    size_t unknownImage = 0;  // left out: there is no SHA-256, and the image was not found
    size_t notDumped = 0;     // left out: the list says that nobody has the image
    size_t severalImages = 0; // left out: a game of a console in several files
    size_t tooLarge = 0;      // left out: more pieces or bytes than an entry can have
    std::vector<std::string> deadRules; // patterns that no game of the list has
};

// With headers' hashes, in the order of the list.
[[nodiscard]] std::vector<CGameFile> MakeDatabase(const DATABASE_SOURCES& sources,
                                                  DATABASE_REPORT& report);
