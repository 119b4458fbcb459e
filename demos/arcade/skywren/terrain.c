#include "terrain.h"

#include "art.h"
#include "board.h"
#include "random.h"

#define SCREEN_COLUMNS 32
#define FIRST_ROW      16 // the ground never reaches higher
#define ROWS           24
#define LOWEST         1
#define HIGHEST        6
#define HEIGHTS        64 // columns remembered, a power of two
#define HEIGHT_MASK    (HEIGHTS - 1)

u16 distance;
static u8 heights[HEIGHTS];
static u16 lastColumn; // the newest in the table
static u8 goal;
static u8 plain; // columns until the next change of level
// The newest column is drawn twice, once in each bank as it becomes the hidden one.
static u8 drawsLeft;

static void NextHeight(void) {
    u8 height = heights[lastColumn & HEIGHT_MASK];
    if (plain != 0) {
        --plain;
    } else if (height < goal) {
        ++height;
    } else if (height > goal) {
        --height;
    } else {
        goal = LOWEST + Random() % (HIGHEST - LOWEST + 1);
        plain = 1 + (Random() & 3);
    }
    ++lastColumn;
    heights[lastColumn & HEIGHT_MASK] = height;
}

// A slope is drawn in the lower of two columns, so the newest column that can be drawn is the last but one.
static void DrawColumn(u16 column) {
    const u8 before = heights[(column - 1) & HEIGHT_MASK];
    const u8 height = heights[column & HEIGHT_MASK];
    const u8 after = heights[(column + 1) & HEIGHT_MASK];
    const u8 place = column & (SCREEN_COLUMNS - 1);
    const u8 top = ROWS - height;
    for (u8 row = FIRST_ROW; row < ROWS; ++row) {
        u16 tile = TILE_BLANK;
        if (row > top)
            tile = TILE_ROCK + ((row * 3 + (u8)column * 5) >> 1 & 1);
        else if (row == top)
            tile = before > height || after > height ? TILE_ROCK : TILE_GRASS + (column & 1);
        else if (row == top - 1 && after > height)
            tile = TILE_SLOPE_UP;
        else if (row == top - 1 && before > height)
            tile = TILE_SLOPE_DOWN;
        HiddenCell(place, row, tile);
    }
}

void TerrainBegin(void) {
    distance = 0;
    playScroll = 0;
    goal = LOWEST;
    plain = 4;
    drawsLeft = 0;
    lastColumn = 0;
    for (u8 column = 0; column < HEIGHTS; ++column)
        heights[column] = LOWEST;
    lastColumn = SCREEN_COLUMNS + 1;
    UpperClear(2, ROWS - 1);
    for (u8 bank = 0; bank < 2; ++bank) {
        // The first column lies under the hidden left edge, where the one after the last comes in.
        for (u8 column = 1; column <= SCREEN_COLUMNS; ++column)
            DrawColumn(column);
        BoardFrame();
    }
}

void TerrainScroll(u8 dots) {
    const u8 before = (u8)(distance >> 3);
    distance += dots;
    playScroll = (u8)(0 - distance);
    if (before != (u8)(distance >> 3)) {
        NextHeight();
        drawsLeft = 2;
    }
    if (drawsLeft != 0) {
        --drawsLeft;
        DrawColumn(lastColumn - 1);
    }
}

u8 GroundAt(u8 x) {
    const u16 column = (distance + x) >> 3;
    return (u8)((ROWS - heights[column & HEIGHT_MASK]) << 3);
}
