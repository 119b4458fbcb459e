#include "torture/torture.h"

extern const char artFlag[], artBall[];

uint16_t nameTable;

static const uint8_t kRegisters[11] = {0x26, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0x00, 0, 0, 0xFF};

static const uint8_t kColours[32] = {
    RGB(0, 0, 0), RGB(1, 1, 1), RGB(2, 2, 2), RGB(3, 0, 0), RGB(3, 2, 0), RGB(0, 0, 2), RGB(0, 2, 0), RGB(0, 3, 3),
    RGB(0, 1, 3), RGB(2, 0, 3), RGB(3, 3, 0), RGB(1, 0, 2), RGB(3, 1, 2), RGB(1, 2, 1), RGB(2, 1, 0), RGB(3, 3, 3),
    RGB(0, 0, 0), RGB(3, 0, 0), RGB(3, 2, 0), RGB(3, 3, 0), RGB(0, 2, 0), RGB(0, 3, 3), RGB(0, 1, 3), RGB(2, 0, 3),
    RGB(3, 1, 2), RGB(1, 1, 1), RGB(3, 3, 1), RGB(2, 2, 2), RGB(1, 3, 1), RGB(1, 0, 0), RGB(0, 0, 1), RGB(3, 3, 3),
};

static void DrawPlain(uint8_t colour)
{
    uint8_t row, plane;
    for (row = 8; row; --row)
        for (plane = 1; plane < 16; plane <<= 1)
            VdpByte(colour & plane ? 0xFF : 0);
}

static void DrawTiles(void)
{
    uint8_t i;
    VdpAddress(VRAM_WRITE);
    FontTiles(64, 0x0F);
    for (i = 0; i < 16; ++i)
        DrawPlain(i);
    ArtTile(artFlag, 16);
    ArtTile(artFlag + 128, 16);
    ArtTile(artFlag + 8, 16);
    ArtTile(artFlag + 136, 16);
    ArtTile(artBall, 16);       // kTileBall, and below it what 16 rows show
    ArtTile(artBall + 128, 16);
    ArtTile(artBall + 136, 16);
    ArtTile(artBall + 136, 16);
    for (i = 0; i < 4; ++i)     // kTileBlock
        DrawPlain(3);
    VdpWord(0x0010);            // kTileDot: one pixel, the fourth of the first row
    VdpZeros(30 + 96);
    for (i = 0; i < 8; ++i) {   // kTileHalf: the left four columns
        VdpWord(0x00F0);
        VdpWord(0);
    }
}

void Mode4Begin(void)
{
    uint8_t i;
    __asm__("di");
    for (i = 0; i < 11; ++i)
        VdpRegister(i, kRegisters[i]);
    lineHandler = LineIgnore;
    nameTable = 0x3800;
    DrawTiles();
    VdpAddress(nameTable | VRAM_WRITE);
    VdpZeros(32 * 28 * 2);
    SpriteEnd(0);
    VdpAddress(CRAM_WRITE);
    VdpCopy(kColours, sizeof(kColours));
}

void DisplayOn(uint8_t register1)
{
    VdpRegister(1, register1);
    __asm__("ei");
}

void Put(uint16_t cell, uint16_t tile)
{
    VdpAddress((nameTable | VRAM_WRITE) + cell + cell);
    VdpWord(tile);
}

void Text(uint16_t cell, const char *text)
{
    for (; *text; ++text)
        Put(cell++, (uint8_t)(*text - ' '));
}

static uint8_t HexTile(uint8_t digit)
{
    return digit < 10 ? 16 + digit : 23 + digit;
}

void Hex(uint16_t cell, uint8_t value)
{
    Put(cell, HexTile(value >> 4));
    Put(cell + 1, HexTile(value & 15));
}

void Decimal(uint16_t cell, uint8_t value)
{
    Put(cell, 16 + value / 100);
    Put(cell + 1, 16 + value / 10 % 10);
    Put(cell + 2, 16 + value % 10);
}

void SpriteAt(uint8_t number, uint16_t xy)
{
    VdpAddress((SPRITE_TABLE | VRAM_WRITE) + number);
    VdpByte((uint8_t)xy);
    VdpAddress((SPRITE_TABLE | VRAM_WRITE | 0x80) + number + number);
    VdpByte(xy >> 8);
}

void SpriteTile(uint8_t number, uint8_t tile)
{
    VdpAddress((SPRITE_TABLE | VRAM_WRITE | 0x81) + number + number);
    VdpByte(tile);
}

void SpriteEnd(uint8_t number)
{
    VdpAddress((SPRITE_TABLE | VRAM_WRITE) + number);
    VdpByte(0xD0);
}

// Halted, so that an interrupt comes at the same clock in every frame.
void WaitFrame(void)
{
    const uint8_t before = frameCount;
    while (frameCount == before)
        __asm__("halt");
}
