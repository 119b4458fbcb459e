// What the assembly files in this folder offer to C. Two parameters at most, so that all of them
// travel in registers.
#pragma once

#include <stdint.h>

// Added to an address for VdpAddress.
#define VRAM_WRITE 0x4000u
#define CRAM_WRITE 0xC000u

// Buttons as PadRead returns them: 1 = pressed.
#define PAD_UP 0x01
#define PAD_DOWN 0x02
#define PAD_LEFT 0x04
#define PAD_RIGHT 0x08
#define PAD_BUTTON1 0x10
#define PAD_BUTTON2 0x20

// vdp.s. No interrupt handler may use the VDP while one of these runs, other than between them.
void VdpRegister(uint8_t number, uint8_t value);
void VdpAddress(uint16_t address);
void VdpByte(uint8_t value);
void VdpWord(uint16_t value);
void VdpCopy(const void *source, uint16_t count);
void VdpZeros(uint16_t count);

// Draws one tile from text at the current address: 8 rows of 8 characters, `stride` characters apart.
// '.' is colour 0, 0 to 9 and A to F are themselves.
void ArtTile(const char *text, uint16_t stride);

// Draws `count` glyphs of the font from its start, in ink (low nibble of colours) on paper (high one).
void FontTiles(uint8_t count, uint8_t colours);

uint8_t VdpStatus(void);
uint8_t PadRead(void);

// start.s
extern volatile uint8_t pausePressed; // set by the pause button, cleared by who reads it
extern uint8_t memoryControl;         // port 0x3E as the console left it
