// The benchmark's program: a pond with a shoal of fish. Every row of tiles scrolls at its own speed by
// line interrupts, 44 sprites swim, a column of the picture is drawn anew in every frame, the PSG plays.
// Nobody has to press a key, and it never ends.
#include "common/sms.h"

#define NAME_TABLE 0x3800u
#define SPRITE_TABLE 0x3F00u
#define RGB(r, g, b) ((r) | (g) << 2 | (b) << 4)

enum { kFish = 44, kRows = 28, kColumns = 32, kFramesPerNote = 9, kNotes = 32 };

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

// 128 + 127 sin, 256 steps to a turn.
static const uint8_t kWaves[256] = {
    128, 131, 134, 137, 140, 144, 147, 150, 153, 156, 159, 162, 165, 168, 171, 174,
    177, 179, 182, 185, 188, 191, 193, 196, 199, 201, 204, 206, 209, 211, 213, 216,
    218, 220, 222, 224, 226, 228, 230, 232, 234, 235, 237, 239, 240, 241, 243, 244,
    245, 246, 248, 249, 250, 250, 251, 252, 253, 253, 254, 254, 254, 255, 255, 255,
    255, 255, 255, 255, 254, 254, 254, 253, 253, 252, 251, 250, 250, 249, 248, 246,
    245, 244, 243, 241, 240, 239, 237, 235, 234, 232, 230, 228, 226, 224, 222, 220,
    218, 216, 213, 211, 209, 206, 204, 201, 199, 196, 193, 191, 188, 185, 182, 179,
    177, 174, 171, 168, 165, 162, 159, 156, 153, 150, 147, 144, 140, 137, 134, 131,
    128, 125, 122, 119, 116, 112, 109, 106, 103, 100, 97, 94, 91, 88, 85, 82,
    79, 77, 74, 71, 68, 65, 63, 60, 57, 55, 52, 50, 47, 45, 43, 40,
    38, 36, 34, 32, 30, 28, 26, 24, 22, 21, 19, 17, 16, 15, 13, 12,
    11, 10, 8, 7, 6, 6, 5, 4, 3, 3, 2, 2, 2, 1, 1, 1,
    1, 1, 1, 1, 2, 2, 2, 3, 3, 4, 5, 6, 6, 7, 8, 10,
    11, 12, 13, 15, 16, 17, 19, 21, 22, 24, 26, 28, 30, 32, 34, 36,
    38, 40, 43, 45, 47, 50, 52, 55, 57, 60, 63, 65, 68, 71, 74, 77,
    79, 82, 85, 88, 91, 94, 97, 100, 103, 106, 109, 112, 116, 119, 122, 125,
};
#define Wave(angle) kWaves[(uint8_t)(angle)]

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
        turn = frameCount + i * 20;
        x = Wave(turn) >> 1;
        x += Wave(turn + turn + (i << 2)) >> 2;
        *entry++ = x + (i << 3) - frameCount;
        *entry++ = (frameCount + i) >> 3 & 1;
        spriteY[i] = 40 + (Wave(turn + 64 + (i << 2)) >> 2) + (Wave(frameCount + i * 36) >> 2);
    }
}

static void ScrollRows(void)
{
    uint8_t i;
    for (i = 0; i < 24; ++i) {
        rowPlace[i] -= i < 4 ? 4 + i : i + i;
        rowScroll[i] = (uint8_t)(rowPlace[i] >> 4);
        if (i > 3 && i < 19)
            rowScroll[i] += Wave(frameCount + frameCount + (i << 5)) >> 5;
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
    static const uint8_t kRegisters[11] = {0x36, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0, 0, 7};
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
