// Our own games and demos, which the program carries with it.
#pragma once

#include <cstdint>
#include <span>

struct DEMO {
    const char* name;  // on the command line, behind "demo:"
    const char* title; // for people
    uint16_t system;   // system number
    std::span<const uint8_t> image;
};

// In the order in which they are to be shown.
[[nodiscard]] std::span<const DEMO> Demos();
