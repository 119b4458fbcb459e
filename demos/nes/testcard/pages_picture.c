// The picture pages.
#include "testcard/testcard.h"

// Colours: twelve hues in columns of 16 dots, four rows of brightness; in each all eight emphases,
// five lines of each. Grays and the darkest column are sprites. hooks.s changes the colours.
enum { kFirstBar = 6, kFirstRow = 5, kRows = 24, kRowsPerBlock = 6 };

void ColoursDraw(void) {
    static const u8 kBars[12] = {0x40, 0x41, 0x42, 0x40, 0x41, 0x42,
                                 0x40, 0x41, 0x42, 0x40, 0x41, 0x42};
    // Palettes 0 0 0 1 1 1 and so on, two of them to a byte, from the fourth pair of columns on.
    static const u8 kAttributes[8] = {0, 0, 0x00, 0x55, 0x99, 0xAA, 0xFF, 0x33};
    static u8 row, i;
    for (row = 0; row != kRows; ++row) {
        if (row % kRowsPerBlock == 0) {
            continue;
        }
        PutAddress(CELL(kFirstRow + row, kFirstBar));
        for (i = 0; i != 12; ++i) {
            PPU_DATA = kBars[i];
            PPU_DATA = kBars[i];
        }
    }
    for (i = 1; i != 8; ++i) {
        PutBytes(0x23C0 + i * 8, kAttributes, 8);
    }
    PutText(CELL(4, 3), "0D 1 2 3 4 5 6 7 8 9 A B C");
    PutAddress(CELL(3, 25));
    PPU_DATA = kCross;
}

// The sprite list is made once: hooks.s leaves little time in a frame.
void ColoursFrame(void) {
    static u8 i, y;
    if (oam[1] == kCross) {
        oamUsed = (1 + 40 + 4) * 4;
        return;
    }
    SPRITE(200, 23, kCross, 1);
    y = kFirstRow * 8 + 7;
    for (i = 0; i != 20; ++i) {
        SPRITE(24, y, kPlain1, 0);
        SPRITE(32, y, kPlain2, 0);
        y += 8;
        if (i % 5 == 4) {
            y += 8;
        }
    }
    for (i = 0; i != 4; ++i) {
        SPRITE(8, kFirstRow * 8 + 24 + i * 48, i + '0' - ' ', 0);
    }
}

// The edge: a frame of 8 dots at the very edge, one of 8 dots further in, and a grid.
void FrameDraw(void) {
    PutBlock(0, 0, 32, 30, kGrid);
    PutBlock(0, 0, 32, 1, kStripes);
    PutBlock(29, 0, 32, 1, kStripes);
    PutBlock(0, 0, 1, 30, kStripes);
    PutBlock(0, 31, 1, 30, kStripes);
    PutBlock(2, 2, 28, 1, kPlain1);
    PutBlock(27, 2, 28, 1, kPlain1);
    PutBlock(2, 2, 1, 26, kPlain1);
    PutBlock(2, 29, 1, 26, kPlain1);
    PutText(CELL(1, 10), " 8 DOTS IN ");
    PutText(CELL(3, 9), " 16 DOTS: A BAR ");
    PutText(CELL(13, 8), "                ");
    PutText(CELL(14, 8), " 256 X 240 DOTS ");
    PutText(CELL(15, 8), "  PAGE 2 OF 5   ");
    PutText(CELL(16, 8), "                ");
    PutAttributes(0, 64, 0x00);
    PutAttributes(0, 8, 0x55);
    PutAttributes(56, 8, 0x55);
    PutAttributes(24, 8, 0xAA);
    PutAttributes(32, 8, 0xAA);
}

void FrameFrame(void) {
    SPRITE(0, 0xFF, kBall, 0);
    SPRITE(248, 0, kBall, 1);
    SPRITE(0, 231, kBall, 2);
    SPRITE(248, 231, kBall, 3);
}

void SpritesDraw(void) {
    PutText(CELL(4, 3), "TWELVE ON A LINE: 8 ARE SEEN");
    PutText(CELL(8, 3), "TWELVE ON TWO LINES");
    PutText(CELL(12, 3), "IN FRONT, AND BEHIND");
    PutText(CELL(17, 3), "A FIRST SPRITE BEHIND ALL");
    PutText(CELL(18, 3), "HIDES A SECOND IN FRONT");
    PutText(CELL(22, 3), "TURNED");
    PutText(CELL(26, 3), "OVERFLOW OF THE LINE");
    PutBlock(14, 6, 3, 2, kPlain1);
    PutBlock(14, 12, 3, 2, kPlain1);
    PutBlock(14, 18, 3, 2, kPlain1);
    PutBlock(20, 12, 4, 1, kPlain1);
    PutAttributes(24, 8, 0x50);
}

void SpritesFrame(void) {
    static u8 i, x;
    x = 32;
    for (i = 0; i != 12; ++i) {
        SPRITE(x, 47, i + '0' - ' ' + (i > 9 ? 7 : 0), 0);
        x += 14;
    }
    x = 32;
    for (i = 0; i != 12; ++i) {
        SPRITE(x, (i & 1) != 0 ? 79 : 71, i + '0' - ' ' + (i > 9 ? 7 : 0), 1);
        x += 14;
    }
    SPRITE(frameCount, 111, kBall, 0);
    SPRITE(frameCount, 120, kBall, 0x21);
    x = 96 + (frameCount >> 2 & 31);
    SPRITE(x, 159, kBall, 0x20);
    SPRITE(112, 160, kBall, 3);
    for (i = 0; i != 4; ++i) {
        SPRITE(96 + i * 24, 175, kLetter, i << 6 | 2);
    }
    Text(CELL(26, 24), (statusSeen & kStatusOverflow) != 0 ? "YES" : "NO ");
}

// The lines above sprite zero stay, those below move.
void SplitDraw(void) {
    static u8 i;
    PutText(CELL(4, 3), "ABOVE THE CROSS ALL STANDS");
    PutText(CELL(6, 3), "BELOW IT THE STRIPES MOVE");
    PutAddress(CELL(8, 16));
    PPU_DATA = '_' - ' '; // the foot of the cross hits it
    for (i = 10; i != 28; ++i) {
        PutAddress(CELL(i, 0));
        PutFill(i % 6 < 3 ? kStripes : kPlain2 + (i & 1), 32);
        PutAddress(0x2400 + i * 32U);
        PutFill(i % 6 < 3 ? kStripes : kPlain2 + (i & 1), 32);
    }
    for (i = 0; i != 2; ++i) {
        PutAttributes(0x400U * i + 16, 24, 0x55);
        PutAttributes(0x400U * i + 40, 24, 0xAA);
    }
}

void SplitFrame(void) {
    SPRITE(128, 63, kCross, 0);
    ++splitScroll;
    Text(CELL(2, 20), (statusSeen & kStatusHit) != 0 ? "HIT   " : "NO HIT");
}
