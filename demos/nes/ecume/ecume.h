// Ecume: a dolphin at dusk leaps out of the sea for stars and dives for pearls.
#ifndef ECUME_H
#define ECUME_H

#include "common/nes.h"
#include "common/sound.h"

// Tiles of the background.
enum {
    kTileBlank = 0,
    kTilePurple = 0x40,
    kTileOrange = 0x41,
    kTileToPurple = 0x43,
    kTileToOrange = 0x44,
    kTileStar = 0x45,
    kTileCloud = 0x47,      // 4 x 2
    kTileSmallCloud = 0x4F, // 2
    kTileIsland = 0x51,     // 6 x 2
    kTileMountain = 0x5D,   // 6 x 2
    kTileSun = 0x69,        // 5 x 3
    kTileHorizon = 0x78,
    kTileToDark = 0x79,
    kTileDune = 0x80,  // 4
    kTileSand = 0x84,  // 2
    kTileWeed = 0x86,  // 2 x 3
    kTileCoral = 0x8C, // 2 x 2
    kTileShell = 0x90, // 2
    kTileAnemone = 0x92,
    kTileRock = 0x93, // 2 x 2
    kTilePlankton = 0x97,
    kTileQuarters = 0x98, // 16
    kTileHeart = 0xA8,
    kTileCrest = 0xC0, // 4 x 2
    kTileFar = 0xC8    // 4 x 3
};

// Tiles of sprites 16 high; the lowest bit selects their pattern table.
#define FIGURE(index) ((index)*2 + 1)
enum {
    kDolphin = 0, // two strokes, rising, falling; three tiles each
    kPearl = 12,  // two
    kStar = 14,   // two, each of two tiles, like all below
    kJelly = 18,
    kUrchin = 22,
    kGull = 24,
    kSplash = 28, // two
    kBubble = 30,
    kSparkle = 31
};

// Rows of the picture, in tiles, and lines of it.
enum { kRowClouds = 4, kRowIslands = 9, kRowFar = 14, kRowNear = 17, kRowFloor = 24 };
enum { kSurface = 142, kHighest = 40, kLowest = 208 };

// The bands below the panel.
enum { kBandClouds, kBandIslands, kBandFar, kBandNear, kBandFloor, kBands };
extern u8 bandScroll[kBands], bandTable[kBands]; // bands.s
void BoardInit(void);
void __fastcall__ WaterStep(u8 step);

// scene.c: draws everything, for the title with the logo.
void SceneDraw(u8 logo);
extern const u8 kPalette[32];
void SceneScroll(u16 distance, u8 logo);

// dolphin.c
extern u8 dolphinX, dolphinY; // of its middle
extern u8 dolphinHurt;        // frames until it can be hurt again
extern u8 dolphinLeapt;       // 1 in the frame in which it leaves the water, 2 in which it dives in
void DolphinReset(void);
void DolphinMove(u8 buttons);
void DolphinDraw(void);

// things.c: everything that comes from the right.
enum { kThingNone, kThingPearl, kThingStar, kThingJelly, kThingUrchin, kThingGull, kThingSparkle };
enum { kThings = 10 };
extern u8 thingKind[kThings], thingX[kThings], thingY[kThings];
void ThingsReset(void);
void ThingsMove(u8 speed, u8 night);
void ThingsDraw(void);
u8 ThingsTouched(void); // the kind of thing that the dolphin touches; it disappears
void Splash(u8 x);

// pilot.c: returns the buttons that the demo presses.
u8 Pilot(void);

// songs.c
extern const SONG kSongDusk, kSongSea;
#endif
