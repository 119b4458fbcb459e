// The torture card: pages that show what the 8-bit VDP does at its edges. Each page is a begin function,
// which draws with the display off, and a step function, called once a frame.
#pragma once

#include "common/sms.h"

// Tiles of mode 4, in the background's and the sprites' numbering.
enum { kTilePlain = 64, kTileFlag = 80, kTileBall = 84, kTileBlock = 88, kTileDot = 92, kTileHalf = 96 };

#define RGB(r, g, b) ((r) | (g) << 2 | (b) << 4)
#define CELL(row, column) ((uint16_t)(row) << 5 | (column))
#define SPRITE_TABLE 0x3F00u

// Bits of a name table entry and of the status.
#define FLIP_X 0x200u
#define FLIP_Y 0x400u
#define PALETTE2 0x800u
#define PRIORITY 0x1000u
#define STATUS_OVERFLOW 0x40
#define STATUS_COLLISION 0x20

typedef struct {
    const char *title;
    void (*begin)(void);
    void (*step)(uint8_t tick);
} Page;

// interrupt.s
extern volatile uint8_t frameCount;
extern volatile uint8_t statusSeen;   // every status read so far, ORed; cleared by who looks
extern volatile uint8_t lineCount;    // line interrupts of the last whole frame
extern volatile uint8_t lineV, frameV; // V counter in the handlers
extern void (*lineHandler)(void);
extern uint8_t lineScroll[256];
void LineIgnore(void), LineScroll(void), LineBars(void);

// screen.c
extern uint16_t nameTable;
void Mode4Begin(void);                // default registers, tiles, colours, an empty screen
void DisplayOn(uint8_t register1);
void Put(uint16_t cell, uint16_t tile);
void Text(uint16_t cell, const char *text);
void Hex(uint16_t cell, uint8_t value);
void Decimal(uint16_t cell, uint8_t value);
void SpriteAt(uint8_t number, uint16_t xy);   // x << 8 | y, keeps the tile
void SpriteTile(uint8_t number, uint8_t tile);
void SpriteEnd(uint8_t number);
void WaitFrame(void);

// The pages' parts.
void ColoursBegin(void), ColoursStep(uint8_t tick);
void WaveBegin(void), WaveStep(uint8_t tick);
void LocksBegin(void), LocksStep(uint8_t tick);
void BarsBegin(void), BarsStep(uint8_t tick);
void SizesBegin(void), SizesStep(uint8_t tick);
void FlagsBegin(void), FlagsStep(uint8_t tick);
void CountersBegin(void), CountersStep(uint8_t tick);
void TallBegin(void), TallStep(uint8_t tick);
void Mode0Begin(void), Mode1Begin(void), Mode2Begin(void), LegacyStep(uint8_t tick);
