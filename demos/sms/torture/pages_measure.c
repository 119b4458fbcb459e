// Pages that measure: sprite flags, counters and interrupts, tall pictures.
#include "torture/torture.h"

__sfr __at(0x7E) portV;
__sfr __at(0x7F) portH;
__sfr __at(0x3F) portIo;

// A case of the flags page: how many sprites, their step in x, from which x, their tile.
typedef struct {
    const char *text;
    uint8_t count, step, x, tile;
    uint8_t expected; // of overflow and collision
} FlagCase;

enum { kFlagCases = 8, kFramesPerCase = 4, kTestY = 151 };

static const FlagCase kCases[kFlagCases] = {
    {"8 ON A LINE", 8, 16, 40, kTileBall, 0},
    {"9 ON A LINE", 9, 16, 40, kTileBall, STATUS_OVERFLOW},
    {"9TH PAST THE END MARK", 8, 16, 40, kTileBall, 0},
    {"2 OVERLAP", 2, 4, 120, kTileBall, STATUS_COLLISION},
    {"2 SIDE BY SIDE", 2, 8, 120, kTileBlock, 0},
    {"2 OVERLAP, CLEAR DOTS", 2, 4, 120, kTileHalf, 0},
    {"2 MEET OFF THE EDGE", 2, 0, 254, kTileDot, 0},
    {"2 MEET AT ONE PIXEL", 2, 0, 120, kTileDot, STATUS_COLLISION},
};

static uint8_t current, framesLeft;

static void SetCase(const FlagCase *test)
{
    uint8_t i, x = test->x;
    for (i = 0; i < test->count; ++i) {
        SpriteAt(i, (uint16_t)x << 8 | kTestY);
        SpriteTile(i, test->tile);
        x += test->step;
    }
    SpriteEnd(i);
    if (test == &kCases[2]) { // one more after the end mark
        SpriteAt(i + 1, 0x8000 | kTestY);
        SpriteTile(i + 1, kTileBall);
    }
}

void FlagsBegin(void)
{
    uint8_t i;
    Mode4Begin();
    Text(CELL(3, 2), "SPRITES            WANT GOT");
    for (i = 0; i < kFlagCases; ++i)
        Text(CELL(5 + i, 2), kCases[i].text);
    Text(CELL(14, 2), "40: ONE TOO MANY  20: MET");
    current = 0;
    framesLeft = kFramesPerCase;
    SetCase(&kCases[0]);
    DisplayOn(0xE0);
}

void FlagsStep(uint8_t tick)
{
    uint8_t got;
    (void)tick;
    --framesLeft;
    if (framesLeft == kFramesPerCase - 2) // one whole frame has been shown
        statusSeen = 0;
    if (framesLeft)
        return;
    got = statusSeen & (STATUS_OVERFLOW | STATUS_COLLISION);
    Hex(CELL(5 + current, 25), kCases[current].expected);
    Hex(CELL(5 + current, 28), got);
    Put(CELL(5 + current, 30), got == kCases[current].expected ? '^' - ' ' : '!' - ' ');
    current = (current + 1) & (kFlagCases - 1);
    framesLeft = kFramesPerCase;
    SetCase(&kCases[current]);
}

// Line interrupts of a frame for a value of register 10.
static uint8_t LinesWith(uint8_t value)
{
    VdpRegister(10, value);
    WaitFrame();
    WaitFrame();
    VdpRegister(10, 0xFF); // the pages draw undisturbed
    return lineCount;
}

static void Row(uint16_t cell, uint16_t wantAndGot)
{
    Decimal(cell, wantAndGot >> 8);
    Decimal(cell + 4, (uint8_t)wantAndGot);
    Put(cell + 8, wantAndGot >> 8 == (uint8_t)wantAndGot ? '^' - ' ' : '!' - ' ');
}

void CountersBegin(void)
{
    Mode4Begin();
    Text(CELL(3, 2), "COUNTERS          WANT GOT");
    Text(CELL(5, 2), "V, FRAME INTERRUPT");
    Text(CELL(6, 2), "LINE INTERRUPTS,0");
    Text(CELL(7, 2), "LINE INTERRUPTS,1");
    Text(CELL(8, 2), "LINE INTERRUPTS,99");
    Text(CELL(9, 2), "V, LINE 99");
    Text(CELL(12, 2), "H COUNTER, LATCHED");
    Text(CELL(13, 2), "LAST V, LINES A FRAME");
    VdpRegister(0, 0x36);
    DisplayOn(0xE0);
}

void CountersStep(uint8_t tick)
{
    uint8_t v, last;
    uint16_t pair;
    switch (tick & 31) {
    case 8:
        Row(CELL(5, 21), 193 << 8 | frameV);
        pair = 193 << 8 | LinesWith(0);
        Row(CELL(6, 21), pair);
        break;
    case 10:
        pair = 96 << 8 | LinesWith(1);
        Row(CELL(7, 21), pair);
        break;
    case 12:
        pair = 1 << 8 | LinesWith(99);
        Row(CELL(8, 21), pair);
        Row(CELL(9, 21), 99 << 8 | lineV);
        break;
    case 14:
        portIo = 0xDD; // TH of port A an output, low, then high: the latch
        portIo = 0xFD;
        v = portH;
        portIo = 0xFF;
        Hex(CELL(12, 25), v);
        break;
    case 16:
        // The counter runs on from 193 until it jumps back.
        last = portV;
        while ((v = portV) >= last)
            last = v;
        Hex(CELL(13, 25), last);
        Text(CELL(14, 2), last == 0xDA ? "A FRAME HAS 262 LINES" : last == 0xF2 ? "A FRAME HAS 313 LINES" : "NEITHER 262 NOR 313!");
        break;
    }
}

// 224 lines need the second chip; the first one shows 192 with its name table elsewhere.
void TallBegin(void)
{
    uint8_t row, tall;
    Mode4Begin();
    VdpRegister(0, 0x16);
    VdpRegister(10, 0);
    DisplayOn(0xF0);
    WaitFrame();
    WaitFrame();
    tall = lineCount > 200;
    __asm__("di");
    VdpRegister(1, 0xB0);
    VdpRegister(0, 0x06);
    nameTable = tall ? 0x3700 : 0x3800;
    VdpAddress(nameTable | VRAM_WRITE);
    VdpZeros(tall ? 2048 : 1792);
    SpriteEnd(0);
    for (row = 0; row < 28; ++row) {
        Put(CELL(row, 0), kTilePlain + 3 + (row & 3));
        Decimal(CELL(row, 2), row);
        Put(CELL(row, 31), kTilePlain + 3 + (row & 3));
    }
    Text(CELL(4, 8), tall ? "224 LINES, 28 ROWS" : "THIS CHIP HAS 192 LINES");
    if (tall)
        Text(CELL(6, 8), "208 IS A PLACE HERE:");
    Text(tall ? CELL(27, 8) : CELL(23, 8), "THE LAST ROW");
    SpriteTile(0, kTileBall);
    SpriteTile(1, kTileBlock);
    for (row = 2; row < 64; ++row) // nothing ends the list here
        SpriteAt(row, 0xE0);
    DisplayOn(0xF0);
}

void TallStep(uint8_t tick)
{
    SpriteAt(0, (uint16_t)(40 + (tick & 127)) << 8 | 0xD0);
    SpriteAt(1, (uint16_t)(60 + (tick & 127)) << 8 | 199);
}
