// Drawings kept as text, one character a dot, turned into mode 4 tiles: 32 bytes, four bit planes a row.
//
// '.' is colour 0, '#' is colour 1, '1' to '9' and 'a' to 'f' are colours 1 to 15.
#pragma once

#include "types.h"

#define TILE_BYTES 32

// Packs eight colours, 0 to 15, into the four plane bytes of a row.
void PackRow(const u8* colours, u8* planes);

// Packs the eight by eight dots at `text`, whose rows are `stride` characters apart. `add` is added to
// every colour but 0, so that one drawing serves in several colours.
void TileFromText(const char* text, u8 stride, u8 add, u8* planes);

// A glyph at twice its size as four tiles: upper left, upper right, lower left, lower right. Each of
// the 16 rows has its own colour; a shadow falls to the lower right.
void TilesFromBigGlyph(const char* glyph, u8 stride, const u8* rowColours, u8 shadow, u8* planes);
