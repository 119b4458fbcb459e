// Turning the pages: left and right, or by themselves after four seconds until a key is pressed.
#include "torture/torture.h"

enum { kPages = 11, kFramesPerPage = 240 };

static const Page kCard[kPages] = {
    {"MODE 4", ColoursBegin, ColoursStep},
    {"SCROLL EACH LINE", WaveBegin, WaveStep},
    {"SCROLL LOCKS", LocksBegin, LocksStep},
    {"WITHIN A LINE", BarsBegin, BarsStep},
    {"SPRITE SIZES", SizesBegin, SizesStep},
    {"SPRITE FLAGS", FlagsBegin, FlagsStep},
    {"COUNTERS", CountersBegin, CountersStep},
    {"224 LINES", TallBegin, TallStep},
    {0, Mode0Begin, LegacyStep},
    {0, Mode1Begin, LegacyStep},
    {0, Mode2Begin, LegacyStep},
};

void main(void)
{
    uint8_t number = 0, held = 0, byItself = 1;
    for (;;) {
        const Page *page = &kCard[number];
        uint8_t tick = 0, pressed;
        uint16_t left = kFramesPerPage;
        page->begin();
        if (page->title) { // a page of mode 4
            Text(CELL(1, 2), "    OF 11:");
            Decimal(CELL(1, 2), number + 1);
            Put(CELL(1, 2), 0);
            Text(CELL(1, 13), page->title);
        }
        do {
            const uint8_t pad = PadRead();
            pressed = pad & ~held & (PAD_LEFT | PAD_RIGHT | PAD_BUTTON1 | PAD_BUTTON2);
            held = pad;
            if (pressed)
                byItself = 0;
            WaitFrame();
            page->step(tick++);
        } while (!pressed && (!byItself || --left));
        if (pressed & PAD_LEFT)
            number = number ? number - 1 : kPages - 1;
        else
            number = number == kPages - 1 ? 0 : number + 1;
    }
}
