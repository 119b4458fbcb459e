// A test card in pages.
#ifndef TESTCARD_H
#define TESTCARD_H

#include "common/nes.h"

enum {
    kPlain1 = 0x40,
    kPlain2 = 0x41,
    kPlain3 = 0x42,
    kGrid = 0x43,
    kCross = 0x44,
    kMark = 0x45,
    kBall = 0x46,
    kLetter = 0x47,
    kStripes = 0x48
};

// hooks.s
enum { kHookNone, kHookColours, kHookSplit };
extern u8 hook, statusSeen, splitScroll;
#pragma zpsym("hook")
#pragma zpsym("statusSeen")
#pragma zpsym("splitScroll")

enum { kStatusOverflow = 0x20, kStatusHit = 0x40 };

// A page draws itself once, with the screen off, and then prepares every frame.
void ColoursDraw(void);
void ColoursFrame(void);
void FrameDraw(void);
void FrameFrame(void);
void SpritesDraw(void);
void SpritesFrame(void);
void SplitDraw(void);
void SplitFrame(void);
void SoundDraw(void);
void SoundFrame(void);
void SoundLeave(void);

void PutBlock(u8 row, u8 column, u8 width, u8 height, u8 tile);
void PutAttributes(u16 first, u8 count, u8 value);
#endif
