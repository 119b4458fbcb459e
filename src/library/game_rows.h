// The lines of a game list: one for each NAME record of a `.game` file.
//
// Plain values, made on any thread.
#pragma once

#include "formats/game_file.h"
#include "library/game_identity.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

class CGameDatabase;

inline constexpr size_t kRowFlags = 3;
inline constexpr int32_t kNoFlagImage = -1;

struct GameListRow {
    bool known = false; // the image, or an arcade game's headerHash, is in the database
    std::wstring title;
    std::filesystem::path path; // of the `.game` file, with the bytes of its name
    std::wstring contentKey;
    std::wstring contentKey2;
    std::wstring regions; // letters
    // Image numbers of the region flags in the order of the letters; kNoFlagImage without one.
    std::array<int32_t, kRowFlags> flagImages{kNoFlagImage, kNoFlagImage, kNoFlagImage};
    int32_t year = 1900;       // 1900: unknown
    uint32_t statusColour = 0; // class of the text's colour, 0 to 8
    uint32_t nameIndex = 0;    // of the NAME record in its file
    uint8_t playTypes = 0;     // NAME_RECORD::playTypes
    GAME_IDENTITY identity;    // of system 0 if the variant has no image
    // Among the titles of a finished scan, without regard to capitals; equal titles have the same.
    uint32_t titleRank = 0;
};

// False, with the row unchanged, when `nameIndex` is past the last NAME record.
[[nodiscard]] bool MakeRow(const std::filesystem::path& path, const CGameFile& game,
                           uint32_t nameIndex, const CGameDatabase& database, GameListRow& row);

// 9 for "E", 10 "U", 11 "B", 12 "J", 13 "K". Other characters are passed over.
[[nodiscard]] std::array<int32_t, kRowFlags> FlagImages(std::wstring_view regions);

// From the NAME record's status byte, whose bit 7 is ignored: 1 is class 1; 2 and 3 class 2; 5 class 3;
// 4 class 4; everything else class 0. A known game of another class than 0 adds 4.
[[nodiscard]] uint32_t StatusColour(uint8_t status, bool known);
