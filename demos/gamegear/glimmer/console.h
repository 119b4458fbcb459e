// The Game Gear: picture, pads and text. Columns, rows and dots count from the corner of the small
// screen, which shows the middle of the chip's picture.
#pragma once

#include "types.h"

#define SCREEN_COLUMNS 20
#define SCREEN_ROWS    18
#define SCREEN_WIDTH   160
#define SCREEN_HEIGHT  144
// Where the small screen lies in the picture, in dots.
#define WINDOW_X 48
#define WINDOW_Y 24

// Bits of ReadPad, 1 = held.
#define PAD_UP    0x01
#define PAD_DOWN  0x02
#define PAD_LEFT  0x04
#define PAD_RIGHT 0x08
#define PAD_ONE   0x10
#define PAD_TWO   0x20
#define PAD_START 0x40

// Frames since the start, counted by the frame interrupt.
extern volatile u8 frameCount;

void ConsoleInit(void);
// With the display off, memory may be written at any time.
void DisplayOff(void);
void DisplayOn(void);
// Waits for the next frame's blank time; the picture may be written until about 15,000 clocks later.
void WaitFrame(void);
u8 ReadPad(void);

// A tile's 32 bytes.
void WriteTile(u16 tile, const u8* planes);
// A cell of the picture: tile number and attributes.
#define CELL_FLIP_X         0x0200
#define CELL_SPRITE_PALETTE 0x0800
void PutCell(u8 column, u8 row, u16 cell);
void ClearCells(void);
// Letters, digits and . - ! : and spaces.
void Text(u8 column, u8 row, const char* text);
void TextCentred(u8 row, const char* text);
// Blanks of a row from a column on.
void ClearText(u8 column, u8 row, u8 count);

// Colours are 0x0BGR. The first 16 are the background's, the next 16 the sprites'.
#define RGB(r, g, b) ((u16)(((b) << 8) | ((g) << 4) | (r)))
void WriteColour(u8 index, u16 colour);

// Sprites of the frame being made; the first added lies on top.
void SpritesBegin(void);
void AddSprite(u8 x, u8 y, u8 tile);
// Sends them, in the blank time.
void SpritesSend(void);
