// How a drawing's pixels become bytes, for each of the demos' machines.
#pragma once

#include "demo_tables/indexed_picture.h"

#include <cstdint>
#include <string>
#include <vector>

enum class PIXEL_FORMAT {
    // A character per pixel, line by line; the demo makes tiles from them as it runs.
    kLetters,
    // A bit per pixel, eight bytes per cell, cells line by line. For letters.
    kBits,
    // NES: for each cell eight bytes of the low bits, then eight of the high ones, cells line by line.
    kNes,
    // The same, column by column: the order of sprites of 8 x 16.
    kNesTall,
    // Mega Drive: columns and lines in cells, two words, then four bits per pixel, line by line; the
    // demo makes cells from them as it runs.
    kMegaDrive,
};

struct CELLS { // of eight pixels
    unsigned column = 0;
    unsigned line = 0;
    unsigned columns = 0;
    unsigned lines = 0;
};

struct PIXEL_RULES {
    PIXEL_FORMAT format = PIXEL_FORMAT::kLetters;
    std::string letters; // for kLetters: one for each colour from 0
    unsigned colours = 0;
    // A picture can use several of the machine's palettes in a row, each with `colours` colours. A pixel's
    // number is then taken modulo `colours`.
    unsigned palettes = 1;
    unsigned times = 1; // copies of each cell of kBits; 2 for the two planes of the NES
};

// The cells must be inside the picture and its colours checked.
[[nodiscard]] std::vector<uint8_t> BytesOf(const INDEXED_PICTURE& picture, const CELLS& cells,
                                           const PIXEL_RULES& rules);
