#include "console.h"

#include "art.h"
#include "font_text.h"

__sfr __at 0x00 startPort;
__sfr __at 0x7F psgPort;
__sfr __at 0xBE vdpData;
__sfr __at 0xBF vdpControl;
__sfr __at 0xDC padPort;

#define NAME_TABLE    0x3800
#define WINDOW_COLUMN (WINDOW_X / 8)
#define WINDOW_ROW    (WINDOW_Y / 8)
#define MAX_SPRITES   64
#define SPRITE_END    0xD0

// Second register, without and with the picture; both ask for the frame interrupt.
#define DISPLAY_OFF 0xA0
#define DISPLAY_ON  0xE0

volatile u8 frameCount;
u8 spriteRows[MAX_SPRITES];
u8 spriteTiles[MAX_SPRITES * 2];
static u8 spriteCount;

// Mode 4 with line interrupts every three lines, names at 0x3800, sprites at 0x3F00 with tiles from 0.
static const u8 registers[11] = {0x16, DISPLAY_OFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 2};

static void SetRegister(u8 index, u8 value) {
    vdpControl = value;
    vdpControl = (u8)(0x80 | index);
}

static void SetAddress(u16 address) {
    vdpControl = (u8)address;
    vdpControl = (u8)(0x40 | (address >> 8));
}

void ConsoleInit(void) {
    for (u8 index = 0; index < sizeof(registers); ++index)
        SetRegister(index, registers[index]);
    SetAddress(0);
    for (u16 count = 0; count < 0x4000; ++count)
        vdpData = 0;
    for (u8 channel = 0; channel < 4; ++channel)
        psgPort = (u8)(0x9F | (channel << 5));
}

void DisplayOff(void) {
    WaitFrame();
    __asm__("di");
    SetRegister(1, DISPLAY_OFF);
}

void DisplayOn(void) {
    SetRegister(1, DISPLAY_ON);
    __asm__("ei");
    WaitFrame();
}

void WaitFrame(void) {
    const u8 last = frameCount;
    __asm__("ei");
    while (frameCount == last) {
    }
}

u8 ReadPad(void) {
    u8 held = (u8)~padPort & 0x3F;
    if ((startPort & 0x80) == 0)
        held |= PAD_START;
    return held;
}

void WriteTile(u16 tile, const u8* planes) {
    SetAddress(tile << 5);
    for (u8 index = 0; index < 32; ++index)
        vdpData = *planes++;
}

static void SetCellAddress(u8 column, u8 row) {
    const u16 index = ((u16)(row + WINDOW_ROW) << 5) + column + WINDOW_COLUMN;
    SetAddress(NAME_TABLE + (index << 1));
}

static void SendCell(u16 cell) {
    vdpData = (u8)cell;
    vdpData = (u8)(cell >> 8);
}

void PutCell(u8 column, u8 row, u16 cell) {
    SetCellAddress(column, row);
    SendCell(cell);
}

void ClearCells(void) {
    SetAddress(NAME_TABLE);
    for (u16 count = 0; count < 32 * 28; ++count)
        SendCell(TILE_BLANK);
}

void Text(u8 column, u8 row, const char* text) {
    SetCellAddress(column, row);
    for (; *text != '\0'; ++text) {
        const u8 glyph = FontIndex(*text);
        SendCell(glyph == FONT_GLYPHS ? TILE_BLANK : TILE_FONT + glyph);
    }
}

void TextCentred(u8 row, const char* text) {
    u8 length = 0;
    while (text[length] != '\0')
        ++length;
    Text((u8)((SCREEN_COLUMNS - length) >> 1), row, text);
}

void ClearText(u8 column, u8 row, u8 count) {
    SetCellAddress(column, row);
    while (count-- != 0)
        SendCell(TILE_BLANK);
}

void WriteColour(u8 index, u16 colour) {
    vdpControl = (u8)(index << 1);
    vdpControl = 0xC0;
    vdpData = (u8)colour;
    vdpData = (u8)(colour >> 8);
}

void SpritesBegin(void) {
    spriteCount = 0;
}

void AddSprite(u8 x, u8 y, u8 tile) {
    if (spriteCount == MAX_SPRITES)
        return;
    // The chip shows a sprite one line below its number.
    spriteRows[spriteCount] = (u8)(y + WINDOW_Y - 1);
    u8* entry = spriteTiles + (spriteCount << 1);
    entry[0] = (u8)(x + WINDOW_X);
    entry[1] = tile;
    ++spriteCount;
}

// 64 rows and 64 pairs at the fastest pace that the chip takes while it shows nothing.
static void SendTables(void) __naked {
    // clang-format off
    __asm
        xor a, a
        out (0xBF), a
        ld a, #0x7F
        out (0xBF), a
        ld hl, #_spriteRows
        ld bc, #0x40BE
        otir
        ld a, #0x80
        out (0xBF), a
        ld a, #0x7F
        out (0xBF), a
        ld hl, #_spriteTiles
        ld b, #0x80
        otir
        ret
    __endasm;
    // clang-format on
}

void SpritesSend(void) {
    if (spriteCount < MAX_SPRITES)
        spriteRows[spriteCount] = SPRITE_END;
    SendTables();
}
