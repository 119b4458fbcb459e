// The letters of all Z80 games here, drawn as text.
#pragma once

#include "types.h"

// Glyphs in the order 0-9 A-Z . - ! : and the distance of two rows in the text, in characters.
#define FONT_GLYPHS 40
#define FONT_STRIDE 64

extern const char fontText[];

// The first character of a glyph's drawing.
#define FONT_GLYPH(index) (fontText + ((u16)((index) >> 3) << 9) + (((index)&7) << 3))

// The glyph of a character, FONT_GLYPHS for a space and for characters without a drawing.
u8 FontIndex(char character);
