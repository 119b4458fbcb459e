#include "scenery.h"

#include "art.h"
#include "console.h"

#define LAKE_ROW    (RIDGE_TOP_ROW + RIDGE_ROWS)
#define MOON_COLUMN 12
#define MOON_ROW    2

// Places and kinds of the stars.
static const u8 stars[][3] = {
    {1,  2, 0},
    {4,  4, 2},
    {6,  2, 1},
    {9,  5, 0},
    {2,  6, 1},
    {8,  3, 2},
    {17, 2, 1},
    {18, 5, 0},
    {11, 7, 2},
    {5,  7, 2},
    {15, 7, 1},
    {10, 1, 2},
    {17, 8, 2},
    {3,  8, 2},
    {13, 1, 2},
};

void SceneryDraw(u8 withMoon) {
    ClearCells();
    for (u8 index = 0; index < sizeof(stars) / sizeof(stars[0]); ++index)
        PutCell(stars[index][0], stars[index][1], TILE_STAR + stars[index][2]);
    for (u8 row = 0; withMoon && row < 4; ++row) {
        for (u8 column = 0; column < 4; ++column)
            PutCell(MOON_COLUMN + column, MOON_ROW + row, TILE_MOON + row * 4 + column);
    }
    u16 tile = TILE_RIDGE;
    for (u8 row = 0; row < RIDGE_ROWS; ++row) {
        for (u8 column = 0; column < SCREEN_COLUMNS; ++column)
            PutCell(column, RIDGE_TOP_ROW + row, tile++);
    }
    for (u8 row = LAKE_ROW; row < SCREEN_ROWS; ++row) {
        for (u8 column = 0; column < SCREEN_COLUMNS; ++column) {
            const u8 kind = (u8)(column * 3 + row * 5 + (column >> 2)) & 3;
            PutCell(column, row, (TILE_WAVE + kind) | (column & 4 ? CELL_FLIP_X : 0));
        }
    }
}
