// The two screens, each in its own nametable page, and the scrolling between them.
#include "grelot/grelot.h"

enum { kPageA = 0x2000, kPageB = 0x2400 };

// Row and column of the bells, 4 x 4 tiles each.
static const u8 kBellRow[kBells] = {8, 12, 12, 16};
static const u8 kBellColumn[kBells] = {14, 6, 22, 14};

// clang-format off
static const u8 kColours[32] = {
    0x0F, 0x06, 0x16, 0x36, 0x0F, 0x07, 0x27, 0x38, 0x0F, 0x09, 0x1A, 0x3A, 0x0F, 0x02, 0x12, 0x31,
    0x0F, 0x16, 0x27, 0x30, 0x0F, 0x16, 0x27, 0x38, 0x0F, 0x16, 0x27, 0x3A, 0x0F, 0x16, 0x27, 0x31
};
// Morning, noon, evening, night.
static const u8 kSky[4] = {0x1C, 0x0C, 0x04, 0x0F};
// clang-format on

static void PutBell(u16 page, u8 bell) {
    static u8 row, tile, i;
    tile = kTileBells + bell * 16;
    for (row = 0; row != 4; ++row) {
        PutAddress(page + (kBellRow[bell] + row) * 32 + kBellColumn[bell]);
        for (i = 0; i != 4; ++i) {
            PPU_DATA = tile;
            ++tile;
        }
    }
}

// Each bell in its own palette, the letters in the second.
static void PutPage(u16 page) {
    // Rows 8 to 11, 12 to 15, 16 to 19; the bells begin in the second half of a byte's columns.
    static const u8 kAttributes[3][8] = {
        {0x55, 0x55, 0x55, 0x11, 0x44, 0x55, 0x55, 0x55},
        {0x55, 0x55, 0x55, 0x55, 0x55, 0x99, 0x66, 0x55},
        {0x55, 0x55, 0x55, 0xDD, 0x77, 0x55, 0x55, 0x55}
    };
    static u8 i;
    PutAddress(page);
    PutFill(0, 0x3C0);
    PutFill(0x55, 64);
    for (i = 0; i != 3; ++i) {
        PutBytes(page + 0x3D0 + i * 8, kAttributes[i], 8);
    }
    for (i = 0; i != kBells; ++i) {
        PutBell(page, i);
    }
}

void ShowNumber(u16 address, u8 number) {
    static u8 digits[2];
    digits[0] = number / 10;
    digits[1] = number % 10;
    Digits(address, digits, 2);
}

void ScreenColours(u8 hour) {
    static u8 colours[32];
    static u8 i;
    for (i = 0; i != 32; ++i) {
        colours[i] = (i & 3) == 0 ? kSky[hour] : kColours[i];
    }
    Palette(colours);
}

// Both pages are drawn here: the board puts them side by side.
void ScreenTitle(void) {
    BoardControl(kSideBySide);
    ScreenOff();
    PutPage(kPageA);
    PutLogo(kPageA + 3 * 32 + 4, "GRELOT", kTileQuarters);
    PutText(kPageA + 22 * 32 + 10, "PRESS START");
    PutText(kPageA + 25 * 32 + 7, "BEST ROUND");
    PutPage(kPageB);
    PutText(kPageB + 3 * 32 + 3, "ROUND");
    PutText(kPageB + 3 * 32 + 22, "BEST");
    BoardControl(kOnePageA);
    scrollX = 0;
    scrollY = 0;
    ScreenColours(0);
    ScreenOn();
    ShowNumber(kPageA + 25 * 32 + 19, BestRound());
}

void ScreenDown(void) {
    BoardControl(kBelow);
    for (scrollY = 0; scrollY != 240; scrollY += 6) {
        RingFrame();
        SoundTick();
        Frame();
    }
    scrollY = 0;
    BoardControl(kOnePageB);
    Frame();
}

void ScreenAside(void) {
    BoardControl(kSideBySide);
    ppuControl |= 1;
    for (scrollX = 0; scrollX != 252; scrollX += 6) {
        RingFrame();
        SoundTick();
        Frame();
    }
    ppuControl &= 0xFE;
    scrollX = 0;
    BoardControl(kOnePageA);
    Frame();
}
