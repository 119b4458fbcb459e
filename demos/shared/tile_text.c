#include "tile_text.h"

static u8 ColourOf(char character) {
    if (character == '.')
        return 0;
    if (character == '#')
        return 1;
    if (character <= '9')
        return (u8)(character - '0');
    return (u8)(character - 'a' + 10);
}

void TileFromText(const char* text, u8 stride, u8 add, u8* planes) {
    static u8 colours[8];
    for (u8 row = 0; row < 8; ++row) {
        for (u8 column = 0; column < 8; ++column) {
            u8 colour = ColourOf(text[column]);
            if (colour != 0)
                colour += add;
            colours[column] = colour;
        }
        PackRow(colours, planes);
        planes += 4;
        text += stride;
    }
}

// One row of a glyph with every dot doubled, bit 15 leftmost.
static u16 DoubledRow(const char* row) {
    u16 mask = 0;
    for (u8 column = 0; column < 8; ++column) {
        mask <<= 2;
        if (row[column] == '#')
            mask |= 3;
    }
    return mask;
}

static void WriteRow(u8* planes, u8 ink, u8 inkColour, u8 shade, u8 shadeColour) {
    for (u8 plane = 0; plane < 4; ++plane) {
        u8 bits = 0;
        if (inkColour & 1)
            bits |= ink;
        if (shadeColour & 1)
            bits |= shade;
        inkColour >>= 1;
        shadeColour >>= 1;
        planes[plane] = bits;
    }
}

void TilesFromBigGlyph(const char* glyph, u8 stride, const u8* rowColours, u8 shadow, u8* planes) {
    u16 above = 0;
    for (u8 row = 0; row < 16; ++row) {
        const u16 ink = DoubledRow(glyph);
        const u16 shade = (above >> 1) & ~ink;
        above = ink;
        u8* left = planes + ((row & 7) << 2);
        if (row >= 8)
            left += 2 * TILE_BYTES;
        WriteRow(left, (u8)(ink >> 8), rowColours[row], (u8)(shade >> 8), shadow);
        WriteRow(left + TILE_BYTES, (u8)ink, rowColours[row], (u8)shade, shadow);
        if (row & 1)
            glyph += stride;
    }
}
