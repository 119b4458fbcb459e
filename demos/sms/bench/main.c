// The benchmark's program: a pond with a shoal of fish. Every row of tiles scrolls at its own speed by
// line interrupts, 63 sprites swim, a column of the picture is drawn anew in every frame, the PSG plays.
// Nobody has to press a key, and it never ends.
#include "common/sms.h"

#define NAME_TABLE 0x3800u
#define SPRITE_TABLE 0x3F00u
#define RGB(r, g, b) ((r) | (g) << 2 | (b) << 4)

enum { kFish = 63, kRows = 28, kColumns = 32, kFramesPerNote = 9, kNotes = 32 };

// Tiles: those of art.s from 0, then plain ones of colours 1 to 6.
enum { kWave = 0, kBubble = 2, kGlint = 3, kWeed = 4, kSand = 6, kPlain = 8, kTiles = 14, kFishTile = 256 };

__sfr __at(0x7F) portPsg;

extern const char artPond[], artFish[];
extern volatile uint8_t frameCount;
extern uint8_t rowScroll[26];

static uint8_t spriteY[64];
static uint8_t spriteXAndTile[128];
static uint8_t column, noteFrames, note, fade;
static uint16_t randomState;
static uint16_t rowPlace[25]; // of each row, in 1/16 pixel

// A quarter of a circle is 16 steps; from 0 to 127.
static const uint8_t kQuarter[17] = {0, 12, 25, 37, 49, 60, 71, 81, 90, 98, 106, 112, 117, 122, 125, 126, 127};

static const uint8_t kColours[32] = {
    RGB(0, 0, 0), RGB(1, 2, 3), RGB(0, 2, 3), RGB(0, 1, 3), RGB(0, 1, 2), RGB(0, 0, 2), RGB(0, 0, 1), RGB(2, 3, 3),
    RGB(1, 1, 3), RGB(0, 2, 1), RGB(3, 3, 3), RGB(2, 2, 1), RGB(0, 1, 0), RGB(1, 1, 0), 0, 0,
    RGB(0, 0, 0), RGB(3, 3, 3), RGB(3, 2, 0), RGB(3, 1, 0), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, RGB(0, 0, 0),
};

// Which plain colour each row has, from the top; the depths are darker.
static const uint8_t kDepth[kRows] = {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 5, 5, 5, 5, 5};

// Periods of the tune and its bass, of eight broken chords.
static const uint16_t kTune[kNotes] = {
    214, 170, 143, 107, 143, 170, 190, 170, 254, 214, 170, 127, 170, 214, 226, 214,
    320, 254, 214, 160, 214, 254, 285, 254, 285, 226, 190, 143, 190, 226, 254, 190,
};
static const uint16_t kBass[4] = {855, 508, 641, 571};

static uint8_t Random(void)
{
    randomState ^= randomState << 7;
    randomState ^= randomState >> 9;
    randomState ^= randomState << 8;
    return (uint8_t)randomState;
}

// 1 to 255 around 128; 64 steps to a turn.
static uint8_t Wave(uint8_t angle)
{
    const uint8_t step = angle & 16 ? 16 - (angle & 15) : angle & 15;
    return angle & 32 ? 128 - kQuarter[step] : 128 + kQuarter[step];
}

static void Tone(uint8_t channel, uint16_t period)
{
    portPsg = 0x80 | (uint8_t)(channel << 5) | ((uint8_t)period & 15);
    portPsg = (uint8_t)(period >> 4);
}

static void Volume(uint8_t channel, uint8_t attenuation)
{
    portPsg = 0x90 | (uint8_t)(channel << 5) | attenuation;
}

static void Music(void)
{
    if (noteFrames) {
        --noteFrames;
        if (fade < 15 && noteFrames & 1)
            ++fade;
    } else {
        noteFrames = kFramesPerNote;
        note = (note + 1) & (kNotes - 1);
        fade = 3;
        Tone(0, kTune[note]);
        Tone(1, kTune[(note + 30) & (kNotes - 1)] + 1);
        Tone(2, kBass[note >> 3]);
        portPsg = note & 2 ? 0xE4 : 0xE5; // white noise
    }
    Volume(0, fade);
    Volume(1, fade < 10 ? fade + 5 : 15);
    Volume(2, note & 1 ? 6 : 4);
    Volume(3, fade < 8 && note & 1 ? 8 + fade : 15);
}

static uint8_t TileAt(uint8_t row)
{
    const uint8_t chance = Random();
    if (row == 3)
        return kWave + (column & 1);
    if (row == 23)
        return kSand + (chance < 40);
    if (row > 23)
        return kPlain + 5;
    if (row > 18 && row < 23 && (column & 3) == 1)
        return kWeed + ((frameCount >> 5) + row & 1);
    if (row > 11 && row < 17 && chance < 12)
        return kBubble + (chance & 1);
    return kPlain + kDepth[row];
}

static void DrawColumn(void)
{
    uint16_t address = (NAME_TABLE | VRAM_WRITE) + (column << 1);
    uint8_t row;
    for (row = 0; row < kRows; ++row) {
        VdpAddress(address);
        VdpWord(TileAt(row));
        address += 64;
    }
    column = (column + 1) & (kColumns - 1);
}

static void MoveFish(void)
{
    uint8_t i, turn, x;
    uint8_t *entry = spriteXAndTile;
    for (i = 0; i < kFish; ++i) {
        turn = (frameCount >> 1) + i * 5;
        x = Wave(turn) >> 1;
        x += Wave(turn + turn + i) >> 2;
        *entry++ = x + (i << 3) - frameCount;
        *entry++ = (frameCount + i) >> 3 & 1;
        spriteY[i] = 40 + (Wave(turn + 16 + i) >> 2) + (Wave((frameCount >> 2) + i * 9) >> 2);
    }
}

static void ScrollRows(void)
{
    uint8_t i;
    for (i = 0; i < 24; ++i) {
        rowPlace[i] -= i < 4 ? 4 + i : i + i;
        rowScroll[i] = (uint8_t)(rowPlace[i] >> 4);
        if (i > 3 && i < 19)
            rowScroll[i] += Wave((frameCount >> 1) + (i << 3)) >> 5;
    }
}

static void Plain(uint8_t colour)
{
    uint8_t row, plane;
    for (row = 8; row; --row)
        for (plane = 1; plane < 16; plane <<= 1)
            VdpByte(colour & plane ? 0xFF : 0);
}

static void Begin(void)
{
    static const uint8_t kRegisters[11] = {0x36, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0, 7, 7};
    uint8_t i;
    randomState = 0xACE1;
    for (i = 0; i < 11; ++i)
        VdpRegister(i, kRegisters[i]);
    VdpAddress(VRAM_WRITE);
    for (i = 0; i < 8; ++i)
        ArtTile(artPond + (i << 3), 64);
    for (i = 1; i < 7; ++i)
        Plain(i);
    VdpAddress(VRAM_WRITE | kFishTile * 32u);
    ArtTile(artFish, 16);
    ArtTile(artFish + 8, 16);
    for (i = 0; i < kColumns; ++i)
        DrawColumn();
    VdpAddress(CRAM_WRITE);
    VdpCopy(kColours, sizeof(kColours));
    VdpAddress(SPRITE_TABLE | VRAM_WRITE);
    VdpByte(0xD0);
    VdpRegister(1, 0xE0);
    __asm__("ei");
}

void main(void)
{
    uint8_t before;
    Begin();
    for (;;) {
        MoveFish();
        ScrollRows();
        spriteY[kFish] = 0xD0;
        before = frameCount;
        while (frameCount == before) {
        }
        VdpAddress(SPRITE_TABLE | VRAM_WRITE);
        VdpCopy(spriteY, sizeof(spriteY));
        VdpAddress((SPRITE_TABLE + 0x80) | VRAM_WRITE);
        VdpCopy(spriteXAndTile, kFish * 2);
        DrawColumn();
        Music();
    }
}
