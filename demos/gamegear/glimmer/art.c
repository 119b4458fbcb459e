// The drawings, as text. A character is a dot: '.' is transparent, 1 to f are colours.
#include "art.h"

#include "console.h"
#include "font_text.h"
#include "tile_text.h"

// clang-format off

// Lamps of the score: unlit, lit amber, lit blue.
static const char lampsText[] =
    "...ff......ff......ff..."
    "..ffff....ffff....ffff.."
    ".f....f..fbbbbf..feeeef."
    ".f....f..fb99bf..fe99ef."
    ".f....f..fb99bf..fe99ef."
    ".f....f..fcbbcf..feeeef."
    "..ffff....ffff....ffff.."
    "...ff......ff......ff...";

static const char starsText[] =
    "........................"
    "...5...................."
    "...5.........6.........."
    ".55555......666.....6..."
    "...5.........6.........."
    "...5...................."
    "........................"
    "........................";

static const char moonText[] =
    "............7777777............."
    ".........7777777777777.........."
    ".......77777777777777777........"
    "......7777777777777777777......."
    ".....777777777777777777777......"
    "....77777888777777777777777....."
    "...7777788888777777777777777...."
    "..777777888887777777778877777..."
    "..777777788877777777788887777..."
    ".77777777777777777777788777777.."
    ".77777777777777777777777777777.."
    ".77777777777777778877777777777.."
    "7777777777777778888887777777777."
    "7778877777777788888888777777777."
    "7788887777777788888888777777777."
    "7788887777777788888888777777777."
    "7778877777777778888887777788777."
    "7777777777777777788777777888877."
    "7777777777777777777777777888877."
    ".77777777888777777777777778877.."
    ".77777778888877777777777777777.."
    ".77777778888877777777777777777.."
    "..777777788877777777777777777..."
    "..777777777777777778887777777..."
    "...7777777777777778888877777...."
    "....77777777777777788877777....."
    ".....777777777777777777777......"
    "......7777777777777777777......."
    ".......77777777777777777........"
    ".........7777777777777.........."
    "............7777777............."
    "................................";

static const char wavesText[] =
    "................................"
    ".44444...............4444......."
    "................................"
    "............4444..............44"
    "................................"
    "....4444...........444444......."
    "................................"
    ".................44.......4444..";

// A lantern of paper on a pole, eight by 24 dots: at rest in colours 1 to 4, struck in 1 and 5.
static const char lanternText[] =
    "...44..." "...44..."
    "..4444.." "..4444.."
    ".433334." ".435534."
    "43222234" "43555534"
    "42111124" "45111154"
    "42111124" "45111154"
    "43222234" "43555534"
    "42111124" "45111154"
    "42111124" "45111154"
    "43222234" "43555534"
    "42111124" "45111154"
    "42111124" "45111154"
    "43222234" "43555534"
    "42111124" "45111154"
    "42111124" "45111154"
    "43222234" "43555534"
    "42111124" "45111154"
    "42111124" "45111154"
    "43222234" "43555534"
    ".433334." ".435534."
    "..4444.." "..4444.."
    "...44..." "...44..."
    "...44..." "...44..."
    "..4..4.." "..4..4..";

// The firefly in two beats of its wings, three fading sparks.
static const char fireflyText[] =
    ".d....d........................."     "........"
    "..d..d..d......d................"     "........"
    "..bccb...dbccdb....bb..........."     "........"
    ".bc55cb..bc55cb...bccb....bb...."     "...b...."
    ".bc55cb..bc55cb...bccb....bb...."     "........"
    "..bccb....bccb.....bb..........."     "........"
    "...bb......bb..................."     "........"
    "................................"     "........";

// Sparks of a lost point, spreading.
static const char burstText[] =
    "........" "5......5" "b..d..b."
    "...5...." "..c..c.." "........"
    "..5c5..." "........" ".d....d."
    ".5ccc5.." ".c.55.c." "........"
    "..5c5..." "........" "b.....b."
    "...5...." "..c..c.." "........"
    "........" "5......5" "..d..d.."
    "........" "........" "........";

// Points at one's own lantern.
static const char markText[] =
    "...ee..."
    "..eeee.."
    ".eeeeee."
    "........"
    "........"
    "........"
    "........"
    "........";

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
