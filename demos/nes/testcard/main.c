// The pages of the test card and how one follows another.
#include "common/sound.h"
#include "testcard/testcard.h"

enum {
    kPages = 5,
    kSeconds = 12
}; // until the next page appears if no button is pressed

typedef struct {
    void (*draw)(void);
    void (*frame)(void);
    const char* title;
    u8 hook;
} PAGE;

static const PAGE kPage[kPages] = {
    {ColoursDraw, ColoursFrame, "COLOURS AND EMPHASIS", kHookColours},
    {FrameDraw,   FrameFrame,   "THE PICTURE'S EDGE",   kHookNone   },
    {SpritesDraw, SpritesFrame, "SPRITES",              kHookNone   },
    {SplitDraw,   SplitFrame,   "SPRITE ZERO SPLIT",    kHookSplit  },
    {SoundDraw,   SoundFrame,   "SOUND",                kHookNone   },
};

static const u8 kPalette[32] = {0x0F, 0x12, 0x00, 0x30, 0x0F, 0x16, 0x27, 0x37, 0x0F, 0x1A, 0x2A,
                                0x3A, 0x0F, 0x14, 0x24, 0x34, 0x0F, 0x16, 0x36, 0x30, 0x0F, 0x11,
                                0x31, 0x30, 0x0F, 0x1A, 0x39, 0x30, 0x0F, 0x17, 0x37, 0x30};

static u8 page;

void PutBlock(u8 row, u8 column, u8 width, u8 height, u8 tile) {
    while (height != 0) {
        PutAddress(CELL(row, column));
        PutFill(tile, width);
        ++row;
        --height;
    }
}

void PutAttributes(u16 first, u8 count, u8 value) {
    PutAddress(0x23C0 + first);
    PutFill(value, count);
}

static void Open(void) {
    hook = kHookNone;
    SoundLeave();
    ScreenOff();
    scrollX = 0;
    ppuControl &= 0xFC;
    PutAddress(0x2000);
    PutFill(0, 0x800);
    PutText(CELL(1, 3), kPage[page].title);
    PutText(CELL(2, 3), "PAGE");
    PutAddress(CELL(2, 8));
    PPU_DATA = page + 1 + '0' - ' ';
    kPage[page].draw();
    Palette(kPalette);
    kPage[page].frame();
    ScreenOn();
    kPage[page].frame();
    Frame();
    hook = kPage[page].hook;
}

void main(void) {
    static u16 idle;
    static u8 touched;
    SoundInit();
    for (;;) {
        Open();
        for (idle = 0; touched != 0 || idle != kSeconds * 60; ++idle) {
            kPage[page].frame();
            Frame();
            if (padPressed != 0) {
                touched = 1;
            }
            if ((padPressed & kPadLeft) != 0) {
                page = page == 0 ? kPages - 2 : page - 2;
                page = page > kPages ? kPages - 1 : page;
                break;
            }
            if ((padPressed & (kPadStart | kPadSelect | kPadRight)) != 0) {
                break;
            }
        }
        page = page + 1 == kPages ? 0 : page + 1;
    }
}
