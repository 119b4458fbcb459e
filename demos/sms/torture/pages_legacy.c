// Modes 0, 1 and 2, which come from an older chip. Only names, patterns and colours differ.
#include "torture/torture.h"

#define NAMES 0x3800u
#define PATTERNS 0x0000u
#define COLOURS 0x2000u
#define SPRITE_PATTERNS 0x1800u

extern const uint8_t font[]; // 64 glyphs of 8 bytes

static uint8_t columns;

static void LegacyText(uint16_t cell, const char *text)
{
    VdpAddress((NAMES | VRAM_WRITE) + cell);
    for (; *text; ++text)
        VdpByte(*text - ' ');
}

// Four sprites show on a line; the fifth does not.
static void LegacySprites(void)
{
    static const uint8_t kBall[8] = {0x3C, 0x7E, 0xDF, 0xBF, 0xFF, 0xFF, 0x7E, 0x3C};
    uint8_t i;
    VdpAddress(SPRITE_PATTERNS | VRAM_WRITE);
    VdpCopy(kBall, 8);
    VdpAddress(SPRITE_TABLE | VRAM_WRITE);
    for (i = 0; i < 5; ++i) {
        VdpByte(151);
        VdpByte(40 + i * 40);
        VdpByte(0);
        VdpByte(i + i + 3);
    }
    VdpByte(0xD0);
}

static void LegacyBegin(uint16_t registers) // 0 << 8 | 1
{
    __asm__("di");
    lineHandler = LineIgnore;
    VdpRegister(1, (uint8_t)registers & ~0x40);
    VdpRegister(0, registers >> 8);
    VdpRegister(2, 0x0E);
    VdpRegister(3, 0x80);
    VdpRegister(4, 0x00);
    VdpRegister(5, 0x7E);
    VdpRegister(6, 0x03);
    VdpRegister(7, 0xF4);
    VdpRegister(8, 0);
    VdpRegister(9, 0);
    VdpRegister(10, 0xFF);
    VdpAddress(VRAM_WRITE);
    VdpZeros(0x4000);
    VdpAddress(PATTERNS | VRAM_WRITE);
    VdpCopy(font, 512);
    columns = 32;
}

void Mode0Begin(void)
{
    uint8_t i;
    LegacyBegin(0x00E0);
    VdpAddress(COLOURS | VRAM_WRITE);
    for (i = 0; i < 32; ++i)
        VdpByte((uint8_t)(i < 8 ? (i + 7) << 4 : 0xF0) | 4);
    LegacyText(CELL(3, 2), "MODE 0: EIGHT GLYPHS, A COLOUR");
    LegacyText(CELL(6, 2), "!\"#$%&'()*+,-./");
    LegacyText(CELL(8, 2), "0123456789:;<=>?");
    LegacyText(CELL(10, 2), "@ABCDEFGHIJKLMNO");
    LegacyText(CELL(12, 2), "PQRSTUVWXYZ[\\]^_");
    LegacyText(CELL(16, 2), "FIVE SPRITES, FOUR ARE SHOWN:");
    LegacySprites();
    DisplayOn(0xE0);
}

// Five columns of a glyph's seven: cells are six pixels wide here.
static uint8_t Thin(uint8_t row)
{
    return (row & 0x80) | (row & 0x38) << 1 | (row & 0x02) << 2;
}

void Mode1Begin(void)
{
    uint16_t i;
    LegacyBegin(0x00F0);
    VdpAddress(PATTERNS | VRAM_WRITE);
    for (i = 0; i < 512; ++i)
        VdpByte(Thin(font[i]));
    columns = 40;
    LegacyText(3 * 40 + 1, "MODE 1: FORTY COLUMNS OF SIX PIXELS");
    LegacyText(6 * 40, "0123456789012345678901234567890123456789");
    LegacyText(8 * 40, "[                                      ]");
    LegacyText(10 * 40 + 1, "WHITE ON BLUE, NO SPRITES");
    LegacySprites();
    LegacyText(20 * 40 + 1, "$$$ *** @@@ \\\\\\ ^^^");
    DisplayOn(0xF0);
}

void Mode2Begin(void)
{
    // From the top of a glyph down, two lines each.
    static const uint8_t kInks[3][4] = {{15, 11, 10, 9}, {15, 7, 7, 5}, {15, 3, 2, 12}};
    uint8_t third, row;
    uint16_t i;
    LegacyBegin(0x02E0);
    VdpRegister(3, 0xFF);
    VdpRegister(4, 0x03);
    for (third = 0; third < 3; ++third) {
        VdpAddress((PATTERNS | VRAM_WRITE) + ((uint16_t)third << 11));
        VdpCopy(font, 512);
        VdpAddress((COLOURS | VRAM_WRITE) + ((uint16_t)third << 11));
        for (i = 0; i < 64; ++i)
            for (row = 0; row < 8; ++row)
                VdpByte(kInks[third][row >> 1] << 4 | 1);
    }
    LegacyText(CELL(3, 2), "MODE 2: COLOURS FOR A LINE");
    LegacyText(CELL(5, 2), "THE UPPER THIRD");
    LegacyText(CELL(12, 2), "THE MIDDLE THIRD HAS ITS OWN");
    LegacyText(CELL(17, 2), "AND SO HAS THE LOWER. SPRITES:");
    // The sprites' patterns lie at the end of the third table's unused part.
    LegacySprites();
    DisplayOn(0xE0);
}

void LegacyStep(uint8_t tick)
{
    static const char kTurn[4] = {'-', '/', '!', '\\'};
    VdpAddress((NAMES | VRAM_WRITE) + columns + columns - 2);
    VdpByte(kTurn[tick >> 3 & 3] - ' ');
}
