// The systems of the game library: numbers, names, folders, database files and file extensions.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

struct GAME_SYSTEM {
    uint16_t system;                              // system number, as in a game's header
    const char* name;                             // for people
    const char* shortName;                        // on the command line and in the names of demos
    const char* folder;                           // of its games, below the home folder
    const char* databaseFile;                     // in the program's path notation
    std::span<const std::string_view> extensions; // of its images, lower case
};

// In the order of the browser's selector.
[[nodiscard]] std::span<const GAME_SYSTEM> GameSystems();

// Null for a number, or a short name, that is none.
[[nodiscard]] const GAME_SYSTEM* FindGameSystem(uint16_t system);
[[nodiscard]] const GAME_SYSTEM* FindGameSystem(std::string_view shortName);
