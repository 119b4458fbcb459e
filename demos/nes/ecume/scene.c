// The scenery: two screens side by side; every band scrolls around them at its own speed.
#include "ecume/ecume.h"

// clang-format off
const u8 kPalette[32] = {
    0x01, 0x04, 0x26, 0x37, // sky
    0x01, 0x11, 0x21, 0x31, // water
    0x01, 0x1A, 0x17, 0x27, // floor
    0x01, 0x16, 0x27, 0x30, // panel, coral
    0x01, 0x0F, 0x2C, 0x30, // dolphin
    0x01, 0x07, 0x27, 0x38, // pearls, stars
    0x01, 0x14, 0x24, 0x34, // jellyfish
    0x01, 0x0F, 0x10, 0x30, // urchins, gulls, water
};

// Column, row, tile, width, height; 0xFF ends the list.
static const u8 kScenery[2][91] = {
    {
        2, 5, kTileCloud, 4, 2, 12, 6, kTileSmallCloud, 2, 1, 22, 5, kTileCloud, 4, 2, 28, 7, kTileSmallCloud, 2, 1,
        3, 12, kTileIsland, 6, 2, 17, 11, kTileSun, 5, 3, 25, 12, kTileMountain, 6, 2,
        2, 26, kTileCoral, 2, 2, 6, 25, kTileWeed, 1, 3, 9, 27, kTileShell, 2, 1, 14, 26, kTileRock, 2, 2,
        16, 25, kTileWeed, 2, 3, 21, 27, kTileAnemone, 1, 1, 24, 26, kTileCoral, 2, 2, 27, 25, kTileWeed, 2, 3,
        30, 27, kTileAnemone, 1, 1,
        0xFF
    },
    {
        5, 6, kTileCloud, 4, 2, 14, 5, kTileSmallCloud, 2, 1, 19, 6, kTileSmallCloud, 2, 1, 24, 5, kTileCloud, 4, 2,
        2, 12, kTileMountain, 6, 2, 8, 12, kTileMountain, 6, 2, 23, 12, kTileIsland, 6, 2,
        0, 25, kTileWeed, 2, 3, 4, 27, kTileAnemone, 1, 1, 7, 26, kTileRock, 2, 2, 9, 26, kTileRock, 2, 2,
        12, 25, kTileWeed, 2, 3, 18, 26, kTileCoral, 2, 2, 21, 27, kTileShell, 2, 1, 26, 25, kTileWeed, 1, 3,
        30, 26, kTileCoral, 2, 2,
        0xFF
    }
};

// From row 4 on: the tile of a row where nothing else is drawn; the rows after these follow a rule.
static const u8 kRows[10] = {
    kTileBlank, kTileBlank, kTileBlank, kTileBlank, kTileToPurple,
    kTilePurple, kTileToOrange, kTileOrange, kTileOrange, kTileHorizon
};

// Attributes of 4 x 4 tiles, eight equal ones per row; the two halves of the byte are the upper and lower tile
// rows.
static const u8 kAttributes[8] = {0xFF, 0x00, 0x00, 0x50, 0x55, 0x55, 0xAA, 0xAA};
// clang-format on

static u16 base;
static u8 floorColours[8]; // attributes of rows 24 to 27

static void PutRow(u8 row) {
    static u8 column;
    static u8 tile;
    for (column = 0; column != 32; ++column) {
        if (row < kRowClouds) {
            tile = kTileBlank;
        } else if (row < kRowFar) {
            tile = kRows[row - kRowClouds];
            if (row < 8 && (u8)(column * 7 + row * 11) % 13 == 0) {
                tile = kTileStar + (column & 1);
            }
        } else if (row < kRowNear) {
            tile = kTileFar + (row - kRowFar) * 4 + (column & 3);
        } else if (row < 19) {
            tile = kTileCrest + (row - kRowNear) * 4 + (column & 3);
        } else if (row == 19) {
            tile = kTilePurple; // plain colour 1, which is blue here
        } else if (row == 20) {
            tile = kTileToDark;
        } else if (row < kRowFloor) {
            tile = row != 23 && (u8)(column * 5 + row * 3) % 7 == 0 ? kTilePlankton : kTileBlank;
        } else if (row < 28) {
            tile = kTileBlank;
        } else if (row == 28) {
            tile = kTileDune + (column & 3);
        } else {
            tile = kTileSand + ((column ^ row) & 1);
        }
        PPU_DATA = tile;
    }
}

static void PutScenery(const u8* piece) {
    static u8 x, y, tile;
    while (*piece != 0xFF) {
        tile = piece[2];
        for (y = 0; y != piece[4]; ++y) {
            PutAddress(base + (piece[1] + y) * 32 + piece[0]);
            for (x = 0; x != piece[3]; ++x) {
                PPU_DATA = tile;
                ++tile;
            }
            // The weeds are drawn side by side.
            if (piece[2] == kTileWeed && piece[3] == 1) {
                ++tile;
            }
        }
        // Coral uses the panel's palette.
        if (piece[2] == kTileCoral || piece[2] == kTileAnemone) {
            floorColours[piece[0] >> 2] |= (piece[0] & 2) != 0 ? 0x40 : 0x10;
        }
        piece += 5;
    }
}

void SceneDraw(u8 logo) {
    static u8 screen, i;
    for (screen = 0; screen != 2; ++screen) {
        base = screen == 0 ? 0x2000 : 0x2400;
        PutAddress(base);
        for (i = 0; i != 30; ++i) {
            PutRow(i);
        }
        for (i = 0; i != 64; ++i) {
            PPU_DATA = logo != 0 && i >= 8 && i < 16 ? 0xFF : kAttributes[i >> 3];
        }
        for (i = 0; i != 8; ++i) {
            floorColours[i] = 0xAA;
        }
        PutScenery(kScenery[screen]);
        PutBytes(base + 0x3F0, floorColours, 8);
    }
    if (logo != 0) {
        PutAddress(CELL(kRowClouds, 0));
        PutFill(kTileBlank, 128);
        PutLogo(CELL(kRowClouds, 6), "ECUME", kTileQuarters);
    }
}

static void Band(u8 band, u16 scroll) {
    bandScroll[band] = (u8)scroll;
    bandTable[band] = scroll >> 8 & 1;
}

void SceneScroll(u16 distance, u8 logo) {
    Band(kBandClouds, logo != 0 ? 0 : distance >> 3);
    Band(kBandIslands, distance >> 2);
    Band(kBandFar, distance >> 1);
    Band(kBandNear, distance);
    Band(kBandFloor, distance + (distance >> 1));
    WaterStep(frameCount >> 3);
}
