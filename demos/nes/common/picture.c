#include "common/nes.h"

static u8 randomState;

void PutAddress(u16 address) {
    PPU_ADDRESS = address >> 8;
    PPU_ADDRESS = (u8)address;
}

void PutFill(u8 value, u16 count) {
    while (count != 0) {
        PPU_DATA = value;
        --count;
    }
}

void PutText(u16 address, const char* text) {
    PutAddress(address);
    while (*text != 0) {
        PPU_DATA = *text - ' ';
        ++text;
    }
}

void PutBytes(u16 address, const u8* bytes, u8 count) {
    static u8 i;
    PutAddress(address);
    for (i = 0; i != count; ++i) {
        PPU_DATA = bytes[i];
    }
}

// The letters of the font with each dot enlarged to 4 x 4: a tile holds two by two dots. The drawings are read
// from character memory.
void PutLogo(u16 address, const char* word, u8 quarters) {
    static u8 lines[8];
    static u8 row, i, tile;
    while (*word != 0) {
        PutAddress((u8)(*word - ' ') * 16U);
        i = PPU_DATA;
        for (i = 0; i != 8; ++i) {
            lines[i] = PPU_DATA;
        }
        for (row = 0; row != 4; ++row) {
            PutAddress(address + row * 32U);
            for (i = 0; i != 4; ++i) {
                tile = lines[row * 2] >> 6;
                tile = (tile >> 1) | (tile & 1) << 1;
                tile |= (lines[row * 2 + 1] >> 7) << 2 | (lines[row * 2 + 1] >> 6 & 1) << 3;
                PPU_DATA = quarters + tile;
                lines[row * 2] <<= 2;
                lines[row * 2 + 1] <<= 2;
            }
        }
        address += 4;
        ++word;
    }
}

static void Begin(u16 address, u8 count) {
    vramBuffer[vramUsed] = address >> 8;
    ++vramUsed;
    vramBuffer[vramUsed] = (u8)address;
    ++vramUsed;
    vramBuffer[vramUsed] = count;
    ++vramUsed;
}

static void Add(u8 value) {
    vramBuffer[vramUsed] = value;
    ++vramUsed;
}

void Text(u16 address, const char* text) {
    static u8 count;
    count = 0;
    while (text[count] != 0) {
        ++count;
    }
    Begin(address, count);
    while (*text != 0) {
        Add(*text - ' ');
        ++text;
    }
}

void Byte(u16 address, u8 value) {
    Begin(address, 1);
    Add(value);
}

void Palette(const u8* colours) {
    static u8 i;
    Begin(0x3F00, 32);
    for (i = 0; i != 32; ++i) {
        Add(colours[i]);
    }
}

void Digits(u16 address, const u8* digits, u8 count) {
    static u8 i;
    Begin(address, count);
    for (i = 0; i != count; ++i) {
        Add(digits[i] + ('0' - ' '));
    }
}

// An 8-bit shift register of period 255, mixed with the time of the call.
u8 Random(void) {
    randomState ^= frameCount;
    if (randomState == 0) {
        randomState = 0x5A;
    }
    if ((randomState & 0x80) != 0) {
        randomState = randomState << 1 ^ 0x1D;
    } else {
        randomState <<= 1;
    }
    return randomState;
}
