#include "luciole/luciole.h"

#define LAMPS 4 // more than fit on the screen

typedef struct {
    uint8_t column; // in the name table
    uint8_t row;
    uint8_t lit;    // 0 dark, 1 lit
} Lamp;

uint16_t scrolled;
uint8_t scrollStep;
uint8_t lampsLit;

static Lamp lamps[LAMPS];
static uint8_t lampNext;     // in lamps
static uint8_t lampsPlaced;
static uint8_t nextColumn;   // name table column to be drawn next
static uint8_t inPattern;    // 0 to kColumnsPerLamp - 1
static uint8_t untilColumn;  // pixels
static uint8_t skyFraction, frontFraction;
static uint8_t lampRow;

static uint16_t Cell(uint8_t row, uint8_t column)
{
    return (uint16_t)row << 5 | column;
}

static void DrawSky(uint8_t withLogo)
{
    static const uint8_t kPlain[7] = {
        kTileSky, kTileSky, kTileSky, kTileSky, kTileDither12, kTileSky + 1, kTileDither23,
    };
    uint8_t row, column, tile;
    for (row = 0; row < 7; ++row) {
        for (column = 0; column < 32; ++column) {
            tile = kPlain[row];
            if (row < 3 && (Random() & 15) == 0)
                tile = kTileStars + (row & 1);
            if (row == 5 && (Random() & 15) == 0)
                tile = kTileStars + 2;
            if (!withLogo && row < 4 && column >= 22 && column < 26)
                tile = kTileMoon + (row << 2) + column - 22;
            if (withLogo && row < 4 && column >= 2 && column < 30)
                Put(Cell(kRowSky + row, column), (kTileLogo - 2) + column + row * 28);
            else
                Put(Cell(kRowSky + row, column), tile);
        }
    }
}

static void DrawHills(void)
{
    uint8_t row, column;
    for (row = 0; row < 4; ++row)
        for (column = 0; column < 32; ++column)
            Put(Cell(kRowHills + row, column), kTileHills + (row << 4) + (column & 15));
}

static void DrawFront(void)
{
    uint8_t column;
    for (column = 0; column < 32; ++column) {
        Put(Cell(kRowFront, column), kTileFront + (column & 3));
        Put(Cell(kRowFront + 1, column), kTileFront + 4);
    }
}

// Rows of the garden are counted from its top here. `column` is that of the pattern.
static uint8_t PlainTile(uint8_t row)
{
    const uint8_t chance = Random();
    if (row == 0)
        return kTileBush + (nextColumn & 3);
    if (row == kGardenRows - 1)
        return kTileGrass + (nextColumn & 1);
    if (chance < 30)
        return kTileLeaves + (chance & 1);
    return kTileHedge;
}

static uint8_t LampTile(uint8_t row, uint8_t right)
{
    if (row == lampRow)
        return kTileLamp + right;
    if (row == lampRow + 1)
        return kTileLamp + 2 + right;
    if (row > lampRow)
        return (row == kGardenRows - 1 ? kTileFoot : kTilePost) + right;
    return PlainTile(row);
}

static void DrawColumn(void)
{
    uint8_t row, tile;
    const uint8_t flower = Random();
    const uint8_t hasLamp = lampsPlaced < kLampsPerNight;
    if (hasLamp && inPattern == 12) {
        lampRow = 1 + (Random() & 3);
        lamps[lampNext].column = nextColumn;
        lamps[lampNext].row = lampRow + kRowGarden;
        lamps[lampNext].lit = 0;
        lampNext = (lampNext + 1) & (LAMPS - 1);
    }
    for (row = 0; row < kGardenRows; ++row) {
        if (hasLamp && (inPattern == 12 || inPattern == 13))
            tile = LampTile(row, inPattern - 12);
        else if ((inPattern == 3 || inPattern == 4) && row >= 6 && row < 8)
            tile = kTileMushroom + ((row - 6) << 1) + inPattern - 3;
        else if (flower < 80 && row == 6 && inPattern != 14)
            tile = kTileFlowers + (flower & 1);
        else if (flower < 80 && row == 7)
            tile = kTileFlowers + 2;
        else
            tile = PlainTile(row);
        Put(Cell(kRowGarden + row, nextColumn), tile);
    }
    if (hasLamp && inPattern == 13)
        ++lampsPlaced;
    nextColumn = (nextColumn + 1) & 31;
    if (++inPattern == kColumnsPerLamp)
        inPattern = 0;
}

void GardenBegin(uint8_t withLogo)
{
    uint8_t i;
    scrolled = 0;
    scrollStep = 0;
    nextColumn = 0;
    inPattern = withLogo ? 8 : 4; // the title has a lantern on either side of its text
    untilColumn = 8;
    lampsPlaced = 0;
    lampNext = 0;
    lampsLit = 0;
    skyFraction = frontFraction = 0;
    for (i = 0; i < LAMPS; ++i)
        lamps[i].lit = 1;
    for (i = 0; i < 12; i += 2)
        bands[i] = 0;
    ScreenOff();
    DrawSky(withLogo);
    DrawHills();
    for (i = 0; i < 32; ++i)
        DrawColumn();
    DrawFront();
    ScreenOn();
}

// The column that has just gone under the hidden left edge becomes the one that comes in on the right.
void GardenScroll(uint8_t pixels)
{
    scrollStep = pixels;
    if (!pixels)
        return;
    scrolled += pixels;
    bands[6] -= pixels;
    frontFraction += pixels;
    bands[8] -= pixels + (frontFraction >> 1);
    frontFraction &= 1;
    skyFraction += pixels;
    if ((skyFraction & 3) < pixels)
        --bands[4];
    if ((skyFraction & 31) < pixels)
        bands[2] = --bands[0];
    if (untilColumn > pixels) {
        untilColumn -= pixels;
        return;
    }
    untilColumn += 8 - pixels;
    DrawColumn();
}

static void LightLamp(const Lamp *lamp)
{
    const uint16_t cell = Cell(lamp->row, lamp->column);
    const uint16_t right = Cell(lamp->row, (lamp->column + 1) & 31);
    Put(cell, kTileLit);
    Put(cell + 32, kTileLit + 2);
    Put(right, kTileLit + 1);
    Put(right + 32, kTileLit + 3);
}

uint8_t GardenTouchLamp(uint8_t x, uint8_t y)
{
    // The column of the name table that holds the middle of the player.
    const uint8_t column = (uint8_t)(x + 8 - bands[6]) >> 3;
    uint8_t i, distance;
    Lamp *lamp = lamps;
    for (i = 0; i < LAMPS; ++i, ++lamp) {
        if (lamp->lit)
            continue;
        distance = (column - lamp->column + 1) & 31;
        if (distance > 3)
            continue;
        distance = y + 14 - (lamp->row << 3);
        if (distance > 28)
            continue;
        lamp->lit = 1;
        ++lampsLit;
        LightLamp(lamp);
        return 1;
    }
    return 0;
}

uint8_t GardenLampAhead(uint8_t x)
{
    const uint8_t column = (uint8_t)(x + 8 - bands[6]) >> 3;
    uint8_t i;
    for (i = 0; i < LAMPS; ++i)
        if (!lamps[i].lit && ((lamps[i].column - column + 1) & 31) < 11)
            return lamps[i].row << 3;
    return 0;
}

void GardenText(uint8_t row, const char *text)
{
    uint8_t length = 0;
    uint8_t column;
    const char *end = text;
    while (*end++)
        ++length;
    column = ((uint8_t)(0 - bands[6]) >> 3) + 16 - (length >> 1);
    for (; *text; ++text)
        Put(Cell(row, column++ & 31), kTileHedgeFont + (uint8_t)(*text - ' '));
}
