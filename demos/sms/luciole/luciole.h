// Luciole: a firefly flies through a garden at night, lights the lanterns and gathers dew until dawn.
#pragma once

#include "common/sms.h"
#include "common/sound.h"

// Tiles. The first 64 are the font on the panel's black.
enum {
    kTileHills = 64,       // 16 x 4
    kTileMoon = 128,       // 4 x 4
    kTileStars = 144,      // two on colour 1, one on colour 2
    kTileDither12 = 147,
    kTileDither23 = 148,
    kTileSky = 149,        // plain: colours 1, 2, 3, 6
    kTileHedge = 152,
    kTileBush = 153,       // 4
    kTileLeaves = 157,     // 2
    kTileFlowers = 159,    // pink, yellow, stem
    kTileMushroom = 162,   // 2 x 2
    kTileGrass = 166,      // 2
    kTileFront = 168,      // 4 x 2
    kTileLamp = 176,       // 2 x 2, dark
    kTileLit = 180,        // 2 x 2
    kTilePost = 184,       // 2
    kTileFoot = 186,       // 2
    kTilePanelEdge = 188,
    kTileGauge = 189,      // empty to full in 4 steps; 189 to 193
    kTileHedgeFont = 194,  // the font's letters on the hedge's colour, 62 glyphs
    kTileLogo = 336        // 28 x 4
};

// Sprite tiles, counted from 256. A 16 x 16 figure is two pairs, left and right.
enum {
    kFlyUp = 0, kFlyDown = 4, kBatUp = 8, kBatDown = 12, kSpider = 16, kWasp = 20,
    kPoof = 24, kPoofOut = 28, kDew = 32, kSpark = 36, kThread = 40, kHeart = 42
};

// Rows of the picture, in tiles.
enum { kRowSky = 2, kRowHills = 9, kRowGarden = 13, kRowFront = 22, kGardenRows = 9 };

enum { kColumnsPerLamp = 24, kLampsPerNight = 12 };

// Steps of the sky from night to day.
enum { kSkies = 6 };

// screen.c: everything that reaches the VDP. Frame waits for the end of the picture, sends what was
// prepared, plays a tick of the music and reads the pad.
extern volatile uint8_t frameCount; // interrupt.s
extern uint8_t bands[16];           // interrupt.s: scroll and line count of each band
extern uint8_t pad, padPressed;     // held; newly pressed
void ScreenInit(void);
void ScreenSky(uint8_t step);
void ScreenFlash(void);             // the sky white for a moment
// For drawing the whole screen: with the display off Put writes at once. No Frame in between.
void ScreenOff(void);
void ScreenOn(void);
void Put(uint16_t cell, uint16_t tile);  // cell = row * 32 + column
void Text(uint16_t cell, const char *text);
void TextOnHedge(uint16_t cell, const char *text);
void Frame(void);

// sprites.s: what the next frame shows.
void SpriteAdd(uint8_t tile, uint16_t xy);  // x << 8 | y; 8 x 16
void Figure(int16_t x, uint16_t yAndTile);  // y << 8 | tile; 16 x 16, clipped left and right
#define Sprite(xy, tile) SpriteAdd(tile, xy)

// garden.c: the scenery, its scrolling, the lanterns.
extern uint16_t scrolled;           // pixels since the night began
extern uint8_t scrollStep;          // pixels of this frame
extern uint8_t lampsLit;
void GardenBegin(uint8_t withLogo);
void GardenScroll(uint8_t pixels);
uint8_t GardenTouchLamp(uint8_t x, uint8_t y); // 1: lit one just now
uint8_t GardenLampAhead(uint8_t x); // height of a dark one that is near, or 0
void GardenText(uint8_t row, const char *text); // centred on the hedge

// creatures.c: all that moves, and the player.
extern uint8_t playerX, playerY, hearts, light;
extern uint16_t score;              // in tens; shown with a 0 after it
extern uint8_t hurtFrames;          // left of being invulnerable
void CreaturesBegin(void);
void CreaturesSpawn(uint8_t night);
void CreaturesMove(void);
void CreaturesDraw(void);
void PlayerMove(uint8_t buttons);
void PlayerShoot(void);
void PlayerFlare(void);
uint8_t PlayerAutopilot(void);
uint8_t Random(void);
int8_t Sine(uint8_t angle);         // -16 to 16, 32 steps to a turn

// songs.c
extern const Song kSongNight, kSongTitle, kSongDawn, kSongLost;
extern const uint16_t kSoundDew[], kSoundLamp[], kSoundSpark[], kSoundPoof[], kSoundHurt[], kSoundFlare[];
