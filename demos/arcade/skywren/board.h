// The System E board: two VDPs with two memory banks each, the control panel.
//
// The lower chip holds the landscape, one scene in each bank. The upper chip holds the play: what it
// shows next is made in its hidden bank, through the window at 0x8000, and then the banks change place.
#pragma once

#include "types.h"

// Held controls, 1 = held.
#define CONTROL_UP     0x01
#define CONTROL_DOWN   0x02
#define CONTROL_LEFT   0x04
#define CONTROL_RIGHT  0x08
#define CONTROL_FIRE   0x10
#define CONTROL_SECOND 0x20
#define CONTROL_START  0x40
#define CONTROL_COIN   0x80

#define SCENES 2

// Frames since the start, counted by the frame interrupt.
extern volatile u8 frameCount;
// Horizontal scroll of the lower chip for each eight lines.
#define BANDS 24
extern u8 bands[BANDS + 2];
// Horizontal scroll of the upper chip, taken with the next picture.
extern u8 playScroll;
// What is held, and what has come down since the frame before.
extern u8 held;
extern u8 pressed;

void BoardInit(void);
// Turn the displays on.
void UpperOn(void);
void LowerOn(void);
// Shows the picture made, and returns in the blank time that follows.
void BoardFrame(void);
// Which scene the lower chip shows.
void BoardScene(u8 scene);

// Tiles and cells for the displays while they are off. The upper chip gets them in both of its banks.
void LowerTile(u8 scene, u16 tile, const u8* planes);
void LowerCell(u8 scene, u8 column, u8 row, u16 cell);
void UpperTile(u16 tile, const u8* planes);

// A cell of the upper picture: in both banks, or only in the one being made.
void UpperCell(u8 column, u8 row, u16 cell);
void HiddenCell(u8 column, u8 row, u16 cell);
void UpperClear(u8 firstRow, u8 lastRow);
void Text(u8 column, u8 row, const char* text);
void TextCentred(u8 row, const char* text);

// Colours are 0bBBGGRR.
#define RGB(r, g, b) ((u8)(((b) << 4) | ((g) << 2) | (r)))
void LowerColour(u8 index, u8 colour);
void UpperColour(u8 index, u8 colour);

// Sprites of the upper picture, eight by 16 dots, tiles in pairs from an even number.
void SpritesBegin(void);
void AddSprite(u8 x, u8 y, u8 tile);
// 16 by 16 dots: two pairs of tiles.
void AddWideSprite(u8 x, u8 y, u8 tile);
// One of the lower chip's sprites, eight by eight; in the blank time.
void LowerSprite(u8 index, u8 x, u8 y, u8 tile);
