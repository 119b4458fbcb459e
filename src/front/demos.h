// Our own games and demos, embedded in the program.
#pragma once

#include <cstdint>
#include <span>

struct DEMO {
    const char* name;    // on the command line, after "demo:"
    const char* title;   // for people
    uint16_t system;     // system number
    const char* regions; // on whose consoles it runs; letters of "EJUBK"
    uint8_t playTypes;   // as in a game's NAME record
    std::span<const uint8_t> image;
    bool isTest; // a test card or a benchmark; lists have them after the games
};

// In the order in which they are shown.
[[nodiscard]] std::span<const DEMO> Demos();
