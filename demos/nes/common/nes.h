// The console for C: registers, the pad, the sprite list and the queue of VRAM writes.
#ifndef NES_H
#define NES_H

typedef unsigned char u8;
typedef signed char s8;
typedef unsigned int u16;
typedef signed int s16;

#define PPU_CONTROL (*(volatile u8*)0x2000)
#define PPU_MASK    (*(volatile u8*)0x2001)
#define PPU_STATUS  (*(volatile u8*)0x2002)
#define PPU_ADDRESS (*(volatile u8*)0x2006)
#define PPU_DATA    (*(volatile u8*)0x2007)
#define APU(offset) (*(volatile u8*)(0x4000 + (offset)))

enum {
    kPadRight = 0x01,
    kPadLeft = 0x02,
    kPadDown = 0x04,
    kPadUp = 0x08,
    kPadStart = 0x10,
    kPadSelect = 0x20,
    kPadB = 0x40,
    kPadA = 0x80
};

// start.s
extern u8 ppuControl, ppuMask, scrollX, scrollY; // written to the registers in every vblank
extern u8 frameCount;
extern u8 pad, padPressed;
extern u8 vramUsed, oamUsed;
#pragma zpsym("ppuControl")
#pragma zpsym("ppuMask")
#pragma zpsym("scrollX")
#pragma zpsym("scrollY")
#pragma zpsym("frameCount")
#pragma zpsym("pad")
#pragma zpsym("padPressed")
#pragma zpsym("vramUsed")
#pragma zpsym("oamUsed")
extern u8 oam[256];
extern u8 vramBuffer[192];

void Frame(void);
void ScreenOff(void);
void ScreenOn(void);

// One more sprite of this frame.
#define SPRITE(left, top, tile, attributes)                                                        \
    (oam[oamUsed] = (top), ++oamUsed, oam[oamUsed] = (tile), ++oamUsed,                            \
     oam[oamUsed] = (attributes), ++oamUsed, oam[oamUsed] = (left), ++oamUsed)

// A cell of the first nametable.
#define CELL(row, column) (0x2000 + (row)*32 + (column))

// picture.c. Functions with Put write at once and need the screen off, the others use the queue.
void PutAddress(u16 address);
void PutFill(u8 value, u16 count);
void PutText(u16 address, const char* text);
void PutBytes(u16 address, const u8* bytes, u8 count);
// Letters of 4 x 4 tiles; `quarters` is the first of sixteen tiles (quarters.inc).
void PutLogo(u16 address, const char* word, u8 quarters);
void Text(u16 address, const char* text);
void Byte(u16 address, u8 value);
void Palette(const u8* colours);                      // 32
void Digits(u16 address, const u8* digits, u8 count); // one per byte, the first on the left
u8 Random(void);

#endif
