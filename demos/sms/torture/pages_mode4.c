// Mode 4: colours and flips, scrolling, colours within a line, sprite sizes.
#include "torture/torture.h"

// Sixteen steps of a turn and a half-wave of 12 pixels.
static const int8_t kSine[32] = {
    0, 2, 5, 7, 8, 10, 11, 12, 12, 12, 11, 10, 8, 7, 5, 2,
    0, -2, -5, -7, -8, -10, -11, -12, -12, -12, -11, -10, -8, -7, -5, -2,
};

static void Flag(uint16_t cell, uint16_t bits)
{
    const uint8_t right = bits & FLIP_X ? 1 : 0;
    const uint8_t down = bits & FLIP_Y ? 32 : 0;
    Put(cell + right + down, kTileFlag | bits);
    Put(cell + right + (32 - down), (kTileFlag + 1) | bits);
    Put(cell + (1 - right) + down, (kTileFlag + 2) | bits);
    Put(cell + (1 - right) + (32 - down), (kTileFlag + 3) | bits);
}

void ColoursBegin(void)
{
    uint8_t i;
    Mode4Begin();
    Text(CELL(3, 2), "32 COLOURS");
    for (i = 0; i < 16; ++i) {
        Put(CELL(5, 8 + i), kTilePlain + i);
        Put(CELL(6, 8 + i), kTilePlain + i);
        Put(CELL(7, 8 + i), (kTilePlain + i) | PALETTE2);
        Put(CELL(8, 8 + i), (kTilePlain + i) | PALETTE2);
    }
    Text(CELL(5, 2), "0-15");
    Text(CELL(7, 2), "16-31");
    Text(CELL(11, 2), "FLIPS: NONE   X   Y   XY");
    Flag(CELL(13, 10), 0);
    Flag(CELL(13, 16), FLIP_X);
    Flag(CELL(13, 20), FLIP_Y);
    Flag(CELL(13, 24), FLIP_X | FLIP_Y);
    Text(CELL(17, 2), "PRIORITY: THE BALL GOES BEHIND");
    Text(CELL(18, 2), "THE RIGHT HALF, NOT ITS BLACK");
    for (i = 0; i < 12; ++i) {
        Put(CELL(20, 4 + i), kTilePlain + 8);
        Put(CELL(20, 16 + i), (i & 1 ? kTilePlain : kTilePlain + 8) | PRIORITY);
    }
    SpriteTile(0, kTileBall);
    SpriteEnd(1);
    DisplayOn(0xE0);
}

void ColoursStep(uint8_t tick)
{
    SpriteAt(0, (uint16_t)(24 + (tick & 127) + (tick & 63)) << 8 | 159);
}

#define FIRST_WAVE 22 // lines: the title above doesn't move

void WaveBegin(void)
{
    uint8_t row;
    Mode4Begin();
    for (row = 0; row < FIRST_WAVE; ++row)
        lineScroll[row] = 0;
    for (; row < 192; ++row)
        lineScroll[row] = kSine[row >> 2 & 31];
    for (row = 3; row < 24; row += 3)
        Text(CELL(row, 3), "EVERY LINE BY ITSELF *$@");
    for (row = 4; row < 24; row += 3)
        Text(CELL(row, 3), "[<<<<<<<<<<<<>>>>>>>>>>>]");
    lineHandler = LineScroll;
    VdpRegister(10, 0);
    VdpRegister(0, 0x36);
    DisplayOn(0xE0);
}

void WaveStep(uint8_t tick)
{
    uint8_t *place = &lineScroll[FIRST_WAVE];
    uint8_t left;
    VdpRegister(8, 0);
    for (left = 191 - FIRST_WAVE; left; --left) { // a line upwards
        place[0] = place[1];
        ++place;
    }
    *place = kSine[(uint8_t)(tick + 192) >> 2 & 31];
}

void LocksBegin(void)
{
    uint8_t row, column;
    Mode4Begin();
    for (row = 3; row < 28; ++row)
        for (column = 0; column < 32; ++column)
            Put(CELL(row, column), kTilePlain + ((row ^ column) & 1 ? 1 : 11));
    Text(CELL(0, 1), "LINES 0-15 ARE LOCKED SIDEWAYS");
    for (row = 4; row < 24; row += 4) {
        Text(CELL(row, 3), " MOVES BOTH WAYS ");
        Text(CELL(row + 1, 24), " NO UP ");
    }
    VdpRegister(0, 0xE6);
    DisplayOn(0xE0);
}

void LocksStep(uint8_t tick)
{
    VdpRegister(8, tick);
    VdpRegister(9, tick < 224 ? tick : tick - 224);
}

void BarsBegin(void)
{
    uint8_t row, column;
    Mode4Begin();
    Text(CELL(3, 2), "BACKDROP, DISPLAY OFF");
    Text(CELL(11, 2), "A COLOUR, DISPLAY ON");
    for (row = 12; row < 17; ++row)
        for (column = 0; column < 32; ++column)
            Put(CELL(row, column), kTilePlain + 5);
    Text(CELL(20, 2), "BOTH CHANGE WITHIN A LINE.");
    Text(CELL(21, 2), "THE EDGES MUST NOT TREMBLE.");
    lineHandler = LineBars;
    VdpRegister(10, 39);
    VdpRegister(0, 0x36);
    DisplayOn(0xE0);
}

void BarsStep(uint8_t tick)
{
    (void)tick;
    VdpRegister(10, 39); // for the next frame; the handler lets no second one come
}

void SizesBegin(void)
{
    uint8_t i;
    Mode4Begin();
    Text(CELL(3, 2), "8X8  8X16  AND BOTH DOUBLED,");
    Text(CELL(4, 2), "CHANGED EVERY 32 FRAMES");
    Text(CELL(20, 2), "LEFT OF THE EDGE: SHIFT BY 8");
    for (i = 0; i < 6; ++i) {
        SpriteTile(i, i & 1 ? kTileFlag : kTileBall);
        SpriteAt(i, (uint16_t)(20 + i * 36) << 8 | 87);
    }
    SpriteTile(6, kTileBlock);
    SpriteEnd(7);
    DisplayOn(0xE0);
}

void SizesStep(uint8_t tick)
{
    static const char *const kNames[4] = {"8X8         ", "8X8 DOUBLED ", "8X16        ", "8X16 DOUBLED"};
    const uint8_t size = tick >> 5 & 3;
    VdpRegister(1, 0xE0 | size);
    VdpRegister(0, tick & 16 ? 0x0E : 0x06);
    Text(CELL(8, 2), kNames[size]);
    SpriteAt(6, (uint16_t)4 << 8 | 143);
}
