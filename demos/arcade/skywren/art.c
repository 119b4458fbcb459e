#include "art.h"

#include "board.h"
#include "font_text.h"
#include "tile_text.h"

#define TEXT_COLOUR  9
#define GROUND_TILES 7

// clang-format off
static const u8 colours[32] = {
    RGB(0, 0, 0),
    RGB(2, 3, 1), RGB(1, 2, 0), RGB(0, 1, 0),                             // 1 grass
    RGB(2, 1, 1), RGB(1, 1, 1), RGB(1, 0, 1),                             // 4 rock
    RGB(3, 2, 1), RGB(2, 1, 0), RGB(3, 3, 3),                             // 7 bird, 9 letters
    RGB(3, 3, 2), RGB(3, 3, 1), RGB(3, 2, 0), RGB(3, 1, 0), RGB(2, 0, 0), // a logo from above
    RGB(0, 0, 1),                                                         // f its shadow
    RGB(0, 0, 0),
    RGB(3, 3, 3), RGB(2, 3, 3), RGB(0, 2, 3), RGB(0, 0, 2),               // 1 white to blue
    RGB(3, 3, 0), RGB(3, 2, 0), RGB(3, 0, 0), RGB(1, 0, 0),               // 5 yellow to dark red
    RGB(2, 1, 0), RGB(3, 2, 1), RGB(0, 3, 0), RGB(2, 0, 2),               // 9 brown, tan, green, purple
    RGB(3, 1, 3), RGB(2, 2, 2), RGB(0, 0, 0)};
static const u8 logoColours[16] = {9, 10, 10, 10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14};
// clang-format on
static const char logo[] = "SKYWREN";

static u8 planes[4 * TILE_BYTES];

// Frames of 16 by 16 dots as sprites use them: the left pair of tiles, then the right pair.
static void LoadWide(const char* text, u8 frames, u8 tile) {
    u16 next = SPRITE_BASE + tile;
    for (u8 frame = 0; frame < frames; ++frame) {
        for (u8 part = 0; part < 4; ++part) {
            TileFromText(text + (part & 1) * 128 + (part >> 1) * 8, 16, 0, planes);
            UpperTile(next++, planes);
        }
        text += 256;
    }
}

static void LoadLetters(void) {
    for (u8 glyph = 0; glyph < FONT_GLYPHS; ++glyph) {
        TileFromText(FONT_GLYPH(glyph), FONT_STRIDE, TEXT_COLOUR - 1, planes);
        UpperTile(TILE_FONT + glyph, planes);
    }
    u16 tile = TILE_LOGO;
    for (u8 letter = 0; logo[letter] != '\0'; ++letter) {
        TilesFromBigGlyph(FONT_GLYPH(FontIndex(logo[letter])), FONT_STRIDE, logoColours, 15,
                          planes);
        for (u8 part = 0; part < 4; ++part)
            UpperTile(tile++, planes + part * TILE_BYTES);
    }
}

void ArtLoad(void) {
    for (u8 index = 0; index < TILE_BYTES; ++index)
        planes[index] = 0;
    UpperTile(TILE_BLANK, planes);
    LoadLetters();
    for (u8 tile = 0; tile < GROUND_TILES; ++tile) {
        TileFromText(groundText + tile * 8, GROUND_TILES * 8, 0, planes);
        UpperTile(TILE_LIFE + tile, planes);
    }
    LoadWide(wrenText, 2, SPRITE_WREN);
    LoadWide(kiteText, 2, SPRITE_KITE);
    LoadWide(crowText, 2, SPRITE_CROW);
    LoadWide(balloonText, 1, SPRITE_BALLOON);
    LoadWide(blastText, 3, SPRITE_BLAST);
    for (u8 part = 0; part < 4; ++part) {
        TileFromText(shotsText + part * 64, 8, 0, planes);
        UpperTile(SPRITE_BASE + SPRITE_SHOT + part, planes);
    }
    for (u8 frame = 0; frame < 2; ++frame) {
        TileFromText(gullText + frame * 8, 16, 0, planes);
        LowerTile(0, LOWER_GULL + frame, planes);
        LowerTile(1, LOWER_GULL + frame, planes);
    }
    for (u8 index = 0; index < 32; ++index)
        UpperColour(index, colours[index]);
}
