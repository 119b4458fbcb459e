#include "backdrop.h"

#include "art.h"
#include "board.h"
#include "tile_text.h"

// The rows of the picture: sky, sun or moon, ridge, sea.
#define CLOUD_ROW   2
#define DISC_ROW    6
#define DISC_COLUMN 25
#define DISC_SIZE   4
#define RIDGE_ROW   11
#define RIDGE_ROWS  5
#define SEA_ROW     16
#define ROWS        24
#define COLUMNS     32

// The sky passes through six colours in rows 1 to 10, two rows from one to the next.
#define SKY_SOLID_ROWS 11
#define COLOUR_HORIZON 5
#define COLOUR_DISC    8
#define COLOUR_FAR     10
#define COLOUR_NEAR    11
#define COLOUR_LIGHT   12
#define COLOUR_SEA     13
#define COLOUR_WAVE    14
#define COLOUR_DEEP    15

#define GULLS 4

// clang-format off
static const u8 sceneColours[SCENES][32] = {
    { // dusk
        RGB(0, 0, 1), RGB(0, 0, 2), RGB(1, 0, 2), RGB(2, 1, 2), RGB(3, 1, 1), RGB(3, 2, 1),
        RGB(3, 2, 2), RGB(2, 1, 2), RGB(3, 3, 1), RGB(3, 2, 0), RGB(2, 1, 1), RGB(1, 0, 1),
        RGB(3, 1, 0), RGB(1, 0, 2), RGB(3, 2, 1), RGB(0, 0, 2),
        0, 0, 0, RGB(0, 0, 0), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    { // night
        RGB(0, 0, 0), RGB(0, 0, 1), RGB(0, 0, 1), RGB(0, 1, 1), RGB(0, 1, 2), RGB(0, 2, 2),
        RGB(1, 1, 2), RGB(0, 1, 1), RGB(3, 3, 3), RGB(2, 3, 3), RGB(0, 1, 1), RGB(0, 0, 1),
        RGB(3, 3, 1), RGB(0, 0, 1), RGB(1, 2, 3), RGB(0, 0, 0),
        0, 0, 0, RGB(2, 2, 3), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
};
// An ordered pattern of thresholds, so that one colour dissolves into the next.
static const u8 thresholds[16] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
// Heights of the islands every 16 dots; the last meets the first.
static const u8 islands[17] = {6, 14, 26, 38, 22, 9, 4, 10, 20, 32, 36, 24, 12, 5, 16, 11, 6};
static const u8 foothills[17] = {4, 6, 10, 14, 12, 6, 3, 5, 7, 10, 16, 12, 8, 3, 6, 8, 4};
// Heights of the towers of the night, 8 dots each.
static const u8 towers[32] = {8, 20, 14, 28, 28, 10, 16, 34, 22, 12, 6, 18, 26, 16, 38, 38,
                              20, 12, 24, 14, 8, 30, 18, 10, 22, 36, 16, 12, 26, 20, 10, 14};
// Half the width of the disc's rows, from its top to its middle.
static const u8 discHalf[16] = {4, 6, 9, 10, 11, 12, 13, 13, 14, 14, 15, 15, 15, 16, 16, 16};
// clang-format on

static u8 colours[8];
static u8 planes[TILE_BYTES];
static u8 scene;
static u8 nextScene;
static u8 fade; // steps of a change still to go
static u16 nextTile;
static u16 horizonTile; // nothing but the sky's last colour

static void Finish(u8 row) {
    PackRow(colours, planes + (row << 2));
}

// The tile made goes to the next place, which is returned.
static u16 Keep(void) {
    LowerTile(scene, nextTile, planes);
    return nextTile++;
}

// The sky's dots of one line of eight.
static void SkyLine(u8 line) {
    u8 upper = COLOUR_HORIZON;
    u8 level = 0;
    if (line < SKY_SOLID_ROWS * 8) {
        if (line < 8) {
            upper = 0;
        } else {
            const u8 depth = line - 8;
            upper = depth >> 4;
            level = depth & 15;
        }
    }
    const u8* row = thresholds + ((line & 3) << 2);
    for (u8 dot = 0; dot < 8; ++dot)
        colours[dot] = row[dot & 3] < level ? upper + 1 : upper;
}

static void BuildSky(void) {
    for (u8 row = 0; row <= RIDGE_ROW; ++row) {
        for (u8 line = 0; line < 8; ++line) {
            SkyLine((u8)(row * 8 + line));
            Finish(line);
        }
        const u16 tile = Keep();
        horizonTile = tile;
        for (u8 column = 0; column < COLUMNS; ++column)
            LowerCell(scene, column, row, tile);
    }
}

// Stars are single dots of some cells.
static void BuildStars(void) {
    for (u8 row = 1; row < 7; ++row) {
        for (u8 line = 0; line < 8; ++line) {
            SkyLine((u8)(row * 8 + line));
            if (line == (row * 5 & 7))
                colours[row * 3 & 7] = COLOUR_DISC;
            Finish(line);
        }
        const u16 tile = Keep();
        for (u8 column = row * 3 & 7; column < COLUMNS; column += 3 + (row * 5 & 3))
            LowerCell(scene, column, row, tile);
    }
}

static void BuildClouds(void) {
    for (u8 row = 0; row < 2; ++row) {
        for (u8 column = 0; column < 4; ++column) {
            const char* text = cloudText + row * 256 + column * 8;
            for (u8 line = 0; line < 8; ++line) {
                SkyLine((u8)((CLOUD_ROW + row) * 8 + line));
                for (u8 dot = 0; dot < 8; ++dot) {
                    if (text[dot] != '.')
                        colours[dot] = (u8)(text[dot] - '0');
                }
                Finish(line);
                text += 32;
            }
            const u16 tile = Keep();
            for (u8 place = 3; place < 28; place += 11)
                LowerCell(scene, place + column, CLOUD_ROW + row, tile);
        }
    }
}

// The sun with stripes across its lower half, or the plain moon.
static void BuildDisc(void) {
    for (u8 row = 0; row < DISC_SIZE; ++row) {
        for (u8 column = 0; column < DISC_SIZE; ++column) {
            for (u8 line = 0; line < 8; ++line) {
                const u8 y = (u8)(row * 8 + line);
                SkyLine((u8)(DISC_ROW * 8 + y));
                const u8 half = discHalf[y < 16 ? y : 31 - y];
                const u8 gap = scene == SCENE_DUSK && y > 16 && (y & 3) == 0;
                for (u8 dot = 0; dot < 8; ++dot) {
                    const u8 x = (u8)(column * 8 + dot);
                    if (x + half >= 16 && x < 16 + half && !gap)
                        colours[dot] = y < 18 ? COLOUR_DISC : COLOUR_DISC + 1;
                }
                Finish(line);
            }
            LowerCell(scene, DISC_COLUMN + column, DISC_ROW + row, Keep());
        }
    }
}

static u8 HeightAt(const u8* heights, u8 x) {
    const u8* entry = heights + (x >> 4);
    const u8 part = x & 15;
    return (u8)((entry[0] * (16 - part) + entry[1] * part) >> 4);
}

static u8 far[8];  // heights of the column's dots
static u8 near[8]; // where the foothill ends
static u8 edge[8]; // where the light begins
static u8 tallest;

static void MeasureIslands(u8 column) {
    for (u8 dot = 0; dot < 8; ++dot) {
        const u8 x = (u8)(column * 8 + dot);
        far[dot] = HeightAt(islands, x) + (x * 3 & 1);
        near[dot] = HeightAt(foothills, x) + (x * 5 & 2);
        // The evening light catches the western edges.
        edge[dot] = islands[(x >> 4) + 1] > islands[x >> 4] ? far[dot] - 2 : far[dot];
        if (far[dot] > tallest)
            tallest = far[dot];
    }
}

static void IslandLine(u8 height) {
    for (u8 dot = 0; dot < 8; ++dot) {
        u8 colour = COLOUR_FAR;
        if (height < near[dot])
            colour = COLOUR_NEAR;
        else if (height >= far[dot])
            colour = COLOUR_HORIZON;
        else if (height >= edge[dot])
            colour = COLOUR_LIGHT;
        colours[dot] = colour;
    }
}

// Every second tower is lighter; two windows to a floor, some dark.
static void TowerLine(u8 height, u8 column) {
    const u8 wall = column & 1 ? COLOUR_FAR : COLOUR_NEAR;
    for (u8 dot = 0; dot < 7; ++dot)
        colours[dot] = wall;
    colours[7] = height + 2 < tallest ? wall : COLOUR_HORIZON;
    if ((height & 3) == 2 && height + 2 < tallest) {
        if ((height * 7 + column * 5) & 12)
            colours[2] = COLOUR_LIGHT;
        if ((height * 5 + column * 3) & 12)
            colours[5] = COLOUR_LIGHT;
    }
}

static void BuildRidgeColumn(u8 column) {
    tallest = 0;
    if (scene == SCENE_DUSK)
        MeasureIslands(column);
    else
        tallest = towers[column];
    u8 height = RIDGE_ROWS * 8;
    for (u8 row = 0; row < RIDGE_ROWS; ++row) {
        // Above the highest dot the sky's own last tile serves.
        if (height - 8 >= tallest) {
            height -= 8;
            LowerCell(scene, column, RIDGE_ROW + row, horizonTile);
            continue;
        }
        for (u8 line = 0; line < 8; ++line) {
            --height;
            if (height >= tallest)
                SkyLine(SKY_SOLID_ROWS * 8);
            else if (scene == SCENE_DUSK)
                IslandLine(height);
            else
                TowerLine(height, column);
            Finish(line);
        }
        LowerCell(scene, column, RIDGE_ROW + row, Keep());
    }
}

// Waves grow longer and fewer towards the eye; four tiles a row.
static void BuildSea(void) {
    for (u8 row = 0; row < ROWS - SEA_ROW; ++row) {
        for (u8 kind = 0; kind < 4; ++kind) {
            for (u8 line = 0; line < 8; ++line) {
                const u8 depth = (u8)(row * 8 + line);
                const u8* threshold = thresholds + ((line & 3) << 2);
                for (u8 dot = 0; dot < 8; ++dot) {
                    const u8 x = (u8)(kind * 8 + dot);
                    colours[dot] = threshold[dot & 3] < depth >> 2 ? COLOUR_DEEP : COLOUR_SEA;
                    if (((line * 11 + row * 6 + x) & 31) < 3 + row &&
                        (line & (row < 3 ? 1 : 3)) == 1)
                        colours[dot] = COLOUR_WAVE;
                }
                Finish(line);
            }
            const u16 tile = Keep();
            for (u8 column = kind; column < COLUMNS; column += 4)
                LowerCell(scene, column, SEA_ROW + row, tile);
        }
    }
}

void BackdropBuild(void) {
    for (scene = 0; scene < SCENES; ++scene) {
        nextTile = LOWER_FREE;
        BuildSky();
        if (scene == SCENE_NIGHT)
            BuildStars();
        else
            BuildClouds();
        BuildDisc();
        for (u8 column = 0; column < COLUMNS; ++column)
            BuildRidgeColumn(column);
        BuildSea();
    }
    scene = SCENE_DUSK;
}

// All colours, `dim` levels darker.
static void SendColours(u8 dim) {
    const u8* from = sceneColours[scene];
    for (u8 index = 0; index < 20; ++index) {
        u8 colour = from[index];
        u8 out = 0;
        for (u8 channel = 0; channel < 3; ++channel) {
            const u8 level = colour & 3;
            out = (u8)(out >> 2 | (level > dim ? (u8)(level - dim) << 4 : 0));
            colour >>= 2;
        }
        LowerColour(index, out);
    }
}

void BackdropShow(u8 number) {
    scene = number;
    fade = 0;
    BoardScene(scene);
    SendColours(0);
}

#define FADE_FRAMES 6
#define FADE_STEPS  7 // three darker, the change, three brighter

void BackdropChange(u8 number) {
    nextScene = number;
    fade = FADE_FRAMES * FADE_STEPS;
}

static void FadeStep(void) {
    if (fade == 0)
        return;
    --fade;
    if (fade % FADE_FRAMES != 0)
        return;
    const u8 step = fade / FADE_FRAMES;
    if (step == 3) {
        scene = nextScene;
        BoardScene(scene);
    }
    SendColours(step > 3 ? 7 - step : step);
}

// Clouds crawl, the disc doesn't move, the ridge drifts, the sea runs faster row by row.
static void ScrollBands(u16 distance) {
    const u8 ridge = (u8)(0 - (distance >> 2));
    const u8 cloud = (u8)(0 - (distance >> 3));
    u16 sea = (distance >> 2) + (distance >> 3);
    for (u8 band = 0; band < DISC_ROW; ++band)
        bands[band] = scene == SCENE_DUSK ? cloud : 0;
    for (u8 band = DISC_ROW; band < RIDGE_ROW; ++band)
        bands[band] = 0;
    for (u8 band = RIDGE_ROW; band < SEA_ROW; ++band)
        bands[band] = ridge;
    for (u8 band = SEA_ROW; band < ROWS; ++band) {
        bands[band] = (u8)(0 - sea);
        sea += distance >> 3;
    }
}

static void MoveGulls(void) {
    for (u8 gull = 0; gull < GULLS; ++gull) {
        const u8 x = (u8)(gull * 71 - (frameCount >> 1) - gull * 9);
        const u8 beat = (frameCount + gull * 7) >> 3 & 3;
        LowerSprite(gull, x, (u8)(62 + gull * 7 + beat), LOWER_GULL + (beat & 1));
    }
    LowerSprite(GULLS, 0, 0xD1, 0); // one line less is the end of the list
}

void BackdropStep(u16 distance) {
    FadeStep();
    MoveGulls();
    ScrollBands(distance);
}
