// Grelot: four bells ring a tune that grows by one note each round; the player repeats it.
#ifndef GRELOT_H
#define GRELOT_H

#include "common/nes.h"
#include "common/sound.h"

enum {
    kTileQuarters = 0x40,
    kTileBells = 0x50,
    kFigureNote = 0,
    kFigureTwoNotes = 1,
    kFigureSpark = 2,
    kFigureStar = 3
};

// In the order of the bells' tiles and palettes.
enum { kBellUp, kBellLeft, kBellRight, kBellDown, kBells, kNoBell = 0xFF };

// board.s
enum { kOnePageA, kOnePageB, kSideBySide, kBelow };
extern u8 bells; // 0: none swings; else the bell that swings, from 1 on
void BoardInit(void);
void __fastcall__ BoardControl(u8 mirroring);
void __fastcall__ BoardProgram(u8 bank);

// Each in the program bank of its number.
enum { kSongMorning, kSongNoon, kSongEvening, kSongs };
extern const SONG kMorning, kNoon, kEvening;

// screen.c
void ScreenTitle(void);

void ScreenColours(u8 hour);
void ScreenDown(void);  // from the title to the game
void ScreenAside(void); // and back
void ShowNumber(u16 address, u8 number);

// ring.c
extern u8 ringing; // kNoBell
void Ring(u8 bell, u8 aloud);
void RingFrame(void); // once a frame: swings, fades, sprites

// kept.c: the best round, in battery-backed memory.
u8 BestRound(void);
void KeepRound(u8 round);
#endif
