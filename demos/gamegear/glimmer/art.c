// The drawings, a character a dot: '.' is transparent, 1 to f are colours.
#include "art.h"

#include "console.h"
#include "font_text.h"
#include "tile_text.h"

#include "landscape.inc"
#include "sprites.inc"

// clang-format off
// From gold above to copper below.
static const u8 logoColours[16] = {9, 9, 9, 11, 11, 11, 11, 12, 12, 12, 13, 13, 13, 13, 13, 13};
static const char logo[] = "GLIMMER";

// Heights of the two ridges over the lake in dots, every 16 dots from the left.
static const u8 farHeights[11] = {22, 34, 26, 44, 30, 20, 32, 42, 28, 36, 24};
static const u8 nearHeights[11] = {16, 10, 14, 8, 5, 6, 10, 7, 12, 18, 12};
// The outline of the pines on the near ridge, repeated.
static const u8 pines[16] = {0, 2, 5, 7, 4, 1, 3, 6, 2, 0, 1, 4, 8, 5, 2, 1};

// clang-format on

#define RIDGE_HEIGHT (RIDGE_ROWS * 8)
#define SNOW_LINE    26

static u8 planes[4 * TILE_BYTES];

static void LoadTiles(const char* text, u8 stride, u8 count, u8 add, u16 tile) {
    while (count-- != 0) {
        TileFromText(text, stride, add, planes);
        WriteTile(tile++, planes);
        text += 8;
    }
}

static void LoadFont(void) {
    // The letters' ink is '#', colour 1.
    for (u8 glyph = 0; glyph < FONT_GLYPHS; ++glyph)
        LoadTiles(FONT_GLYPH(glyph), FONT_STRIDE, 1, COLOUR_TEXT - 1, TILE_FONT + glyph);
}

static void LoadLogo(void) {
    u16 tile = TILE_LOGO;
    for (u8 letter = 0; logo[letter] != '\0'; ++letter) {
        TilesFromBigGlyph(FONT_GLYPH(FontIndex(logo[letter])), FONT_STRIDE, logoColours,
                          COLOUR_FRAME, planes);
        for (u8 part = 0; part < 4; ++part)
            WriteTile(tile++, planes + part * TILE_BYTES);
    }
}

// The height of a ridge at a column of dots, between two entries of its table.
static u8 HeightAt(const u8* heights, u8 x) {
    const u8* entry = heights + (x >> 4);
    const u8 part = x & 15;
    return (u8)((entry[0] * (16 - part) + entry[1] * part) >> 4);
}

// One column of tiles of the mountains, from the top down.
static void LoadRidgeColumn(u8 column) {
    static u8 far[8];
    static u8 near[8];
    static u8 snow[8];
    static u8 falling[8];
    static u8 colours[8];
    for (u8 dot = 0; dot < 8; ++dot) {
        const u8 x = (u8)(column * 8 + dot);
        far[dot] = HeightAt(farHeights, x) + (x * 7 & 2);
        near[dot] = HeightAt(nearHeights, x) + pines[x & 15];
        snow[dot] = SNOW_LINE + (x * 5 & 7); // ends in tongues
        falling[dot] = farHeights[(x >> 4) + 1] < farHeights[x >> 4];
    }
    u8 tallest = 0;
    for (u8 dot = 0; dot < 8; ++dot) {
        if (far[dot] > tallest)
            tallest = far[dot];
        if (near[dot] > tallest)
            tallest = near[dot];
    }
    u16 tile = TILE_RIDGE + column;
    u8 height = RIDGE_HEIGHT;
    while (height != 0) {
        u8* out = planes;
        for (u8 row = 0; row < 8; ++row) {
            --height;
            for (u8 dot = 0; height >= tallest && dot < 8; ++dot)
                colours[dot] = COLOUR_SKY;
            for (u8 dot = 0; height < tallest && dot < 8; ++dot) {
                u8 colour = COLOUR_SKY;
                if (height < near[dot])
                    colour = COLOUR_NEAR;
                else if (height < far[dot]) {
                    if (height > snow[dot])
                        colour = falling[dot] ? COLOUR_WAVE : COLOUR_SNOW;
                    else
                        colour = falling[dot] ? COLOUR_FAR_SHADE : COLOUR_FAR;
                }
                colours[dot] = colour;
            }
            PackRow(colours, out);
            out += 4;
        }
        WriteTile(tile, planes);
        tile += SCREEN_COLUMNS;
    }
}

static void LoadLantern(u8 add, u16 tile) {
    for (u8 lit = 0; lit < 2; ++lit) {
        for (u8 part = 0; part < 3; ++part)
            LoadTiles(lanternText + lit * 8 + part * 8 * 16, 16, 1, add, tile++);
    }
}

void ArtLoad(void) {
    LoadFont();
    LoadTiles(lampsText, 24, 3, 0, TILE_LAMP_OFF);
    LoadTiles(starsText, 24, 3, 0, TILE_STAR);
    for (u8 row = 0; row < 4; ++row)
        LoadTiles(moonText + row * 8 * 32, 32, 4, 0, TILE_MOON + row * 4);
    LoadTiles(wavesText, 32, 4, 0, TILE_WAVE);
    LoadLantern(0, TILE_LEFT);
    LoadLantern(5, TILE_RIGHT);
    LoadTiles(fireflyText, 40, 5, 0, TILE_FIREFLY);
    LoadTiles(burstText, 24, 3, 0, TILE_BURST);
    LoadTiles(markText, 8, 1, 0, TILE_MARK);
    LoadLogo();
    for (u8 column = 0; column < SCREEN_COLUMNS; ++column)
        LoadRidgeColumn(column);
}
