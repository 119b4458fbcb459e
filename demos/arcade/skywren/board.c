#include "board.h"

#include "art.h"
#include "font_text.h"

__sfr __at 0x7B secondPsgPort;
__sfr __at 0x7F firstPsgPort;
__sfr __at 0xBA lowerData;
__sfr __at 0xBB lowerControl;
__sfr __at 0xBE upperData;
__sfr __at 0xBF upperControl;
__sfr __at 0xE0 coinPort;
__sfr __at 0xE1 stickPort;
__sfr __at 0xF7 bankPort;

// Bits of the latch. The processor's window opens the bank that its chip does not show.
#define LATCH_LOWER_SECOND 0x80
#define LATCH_UPPER_SECOND 0x40
#define LATCH_WINDOW_LOWER 0x20

#define COIN_LINE  0x01
#define START_LINE 0x40

#define NAME_TABLE   0x3800
#define SPRITE_ROWS  0x3F00
#define SPRITE_TILES 0x3F80
#define MAX_SPRITES  64
#define SPRITE_END   0xD0

#define DISPLAY_BIT 0x40

static volatile u8* const window = (volatile u8*)0x8000;

volatile u8 frameCount;
volatile u8 flipReady;
u8 bankLatch;
u8 playScroll;
u8 bands[BANDS + 2];
u8* bandPointer = bands;
u8 held;
u8 pressed;
static u8 spriteRows[MAX_SPRITES];
static u8 spriteTiles[MAX_SPRITES * 2];
static u8 spriteCount;
static u8 spriteTurn;

// Mode 4, left column hidden. The upper chip: frame and line interrupts, first two rows unscrolled for
// the score, sprites of 16 rows with tiles from 0x2000.
static const u8 lowerRegisters[11] = {0x26, 0x80, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 0xFF};
static const u8 upperRegisters[11] = {0x76, 0xA2, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 7};

static void Latch(u8 value) {
    bankLatch = value;
    bankPort = value;
}

void BoardInit(void) {
    for (u8 index = 0; index < 11; ++index) {
        lowerControl = lowerRegisters[index];
        lowerControl = (u8)(0x80 | index);
        upperControl = upperRegisters[index];
        upperControl = (u8)(0x80 | index);
    }
    for (u8 channel = 0; channel < 4; ++channel) {
        firstPsgPort = (u8)(0x9F | (channel << 5));
        secondPsgPort = (u8)(0x9F | (channel << 5));
    }
    Latch(0);
}

void UpperOn(void) {
    __asm__("di");
    upperControl = upperRegisters[1] | DISPLAY_BIT;
    upperControl = 0x81;
    __asm__("ei");
}

void LowerOn(void) {
    __asm__("di");
    lowerControl = lowerRegisters[1] | DISPLAY_BIT;
    lowerControl = 0x81;
    __asm__("ei");
}

static void ReadControls(void) {
    const u8 coins = (u8)~coinPort;
    u8 now = (u8)~stickPort & 0x3F;
    if (coins & COIN_LINE)
        now |= CONTROL_COIN;
    if (coins & START_LINE)
        now |= CONTROL_START;
    pressed = now & (u8)~held;
    held = now;
}

static void CopyToWindow(u16 address, const u8* from, u8 count) {
    volatile u8* to = window + address;
    while (count-- != 0)
        *to++ = *from++;
}

// More than eight sprites on a line do not show. Beginning the list elsewhere each frame lets those that
// are left out take turns.
static void CopySprites(void) {
    volatile u8* rows = window + SPRITE_ROWS;
    volatile u8* tiles = window + SPRITE_TILES;
    u8 from = spriteCount == 0 ? 0 : spriteTurn % spriteCount;
    spriteTurn += 5;
    for (u8 count = spriteCount; count != 0; --count) {
        *rows++ = spriteRows[from];
        *tiles++ = spriteTiles[from * 2];
        *tiles++ = spriteTiles[from * 2 + 1];
        if (++from == spriteCount)
            from = 0;
    }
    if (spriteCount < MAX_SPRITES)
        *rows = SPRITE_END;
}

void BoardFrame(void) {
    CopySprites();
    flipReady = 1;
    while (flipReady) {
    }
    ReadControls();
}

void BoardScene(u8 scene) {
    __asm__("di");
    Latch((bankLatch & LATCH_UPPER_SECOND) | (scene ? LATCH_LOWER_SECOND : 0));
    __asm__("ei");
}

// Opens the lower chip's memory of a scene, which the chip must not show.
static void OpenLower(u8 scene) {
    const u8 upper = bankLatch & LATCH_UPPER_SECOND;
    Latch(upper | LATCH_WINDOW_LOWER | (scene ? 0 : LATCH_LOWER_SECOND));
}

void LowerTile(u8 scene, u16 tile, const u8* planes) {
    OpenLower(scene);
    CopyToWindow(tile << 5, planes, 32);
}

static void PutWindow(u16 address, u16 cell) {
    window[address] = (u8)cell;
    window[address + 1] = (u8)(cell >> 8);
}

static u16 CellAddress(u8 column, u8 row) {
    return NAME_TABLE + ((u16)row << 6) + (column << 1);
}

void LowerCell(u8 scene, u8 column, u8 row, u16 cell) {
    OpenLower(scene);
    PutWindow(CellAddress(column, row), cell);
}

void UpperTile(u16 tile, const u8* planes) {
    Latch(0);
    CopyToWindow(tile << 5, planes, 32);
    Latch(LATCH_UPPER_SECOND);
    CopyToWindow(tile << 5, planes, 32);
}

void HiddenCell(u8 column, u8 row, u16 cell) {
    PutWindow(CellAddress(column, row), cell);
}

void UpperCell(u8 column, u8 row, u16 cell) {
    const u16 address = CellAddress(column, row);
    PutWindow(address, cell);
    // The shown bank is written through the chip, which the interrupt writes to as well.
    __asm__("di");
    upperControl = (u8)address;
    upperControl = (u8)(0x40 | (address >> 8));
    upperData = (u8)cell;
    // The chip takes a byte in one of 32 dots while it shows a line: let that time pass.
    __asm__("ex (sp), hl");
    __asm__("ex (sp), hl");
    upperData = (u8)(cell >> 8);
    __asm__("ei");
}

void UpperClear(u8 firstRow, u8 lastRow) {
    for (u8 row = firstRow; row <= lastRow; ++row) {
        for (u8 column = 0; column < 32; ++column)
            UpperCell(column, row, TILE_BLANK);
    }
}

void Text(u8 column, u8 row, const char* text) {
    for (; *text != '\0'; ++text) {
        const u8 glyph = FontIndex(*text);
        UpperCell(column++, row, glyph == FONT_GLYPHS ? TILE_BLANK : TILE_FONT + glyph);
    }
}

void TextCentred(u8 row, const char* text) {
    u8 length = 0;
    while (text[length] != '\0')
        ++length;
    Text((u8)((33 - length) >> 1), row, text);
}

void LowerColour(u8 index, u8 colour) {
    __asm__("di");
    lowerControl = index;
    lowerControl = 0xC0;
    lowerData = colour;
    __asm__("ei");
}

void UpperColour(u8 index, u8 colour) {
    __asm__("di");
    upperControl = index;
    upperControl = 0xC0;
    upperData = colour;
    __asm__("ei");
}

void SpritesBegin(void) {
    spriteCount = 0;
}

void AddSprite(u8 x, u8 y, u8 tile) {
    if (spriteCount == MAX_SPRITES)
        return;
    // The chip shows a sprite one line below its number.
    spriteRows[spriteCount] = (u8)(y - 1);
    spriteTiles[spriteCount * 2] = x;
    spriteTiles[spriteCount * 2 + 1] = tile;
    ++spriteCount;
}

void AddWideSprite(u8 x, u8 y, u8 tile) {
    AddSprite(x, y, tile);
    if (x < 248)
        AddSprite(x + 8, y, tile + 2);
}

static void LowerByte(u16 address, u8 value) {
    __asm__("di");
    lowerControl = (u8)address;
    lowerControl = (u8)(0x40 | (address >> 8));
    lowerData = value;
    __asm__("ei");
}

void LowerSprite(u8 index, u8 x, u8 y, u8 tile) {
    LowerByte(SPRITE_ROWS + index, (u8)(y - 1));
    LowerByte(SPRITE_TILES + index * 2, x);
    LowerByte(SPRITE_TILES + 1 + index * 2, tile);
}
