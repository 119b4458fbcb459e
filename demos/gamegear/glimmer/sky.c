#include "sky.h"

#include "art.h"
#include "console.h"

#define LINES_PER_ENTRY 3
#define ENTRIES         (FIRST_ENTRY + SKY_ENTRIES + LAKE_ENTRIES)
#define READ_ENTRIES    65 // what the interrupts of a frame take
#define FIRST_ENTRY     (WINDOW_Y / LINES_PER_ENTRY)
#define SKY_ENTRIES     40 // down to the lake
#define LAKE_ENTRIES    8
#define STOPS           5
#define STOP_DISTANCE   (SKY_ENTRIES / (STOPS - 1))
#define LANDSCAPE       16

typedef struct {
    u8 stops[STOPS][3]; // red, green, blue from the zenith to the horizon
    u16 landscape[LANDSCAPE];
} MOOD;

// clang-format off
static const MOOD moods[SKY_MOODS] = {
    { // sunset
        {{2, 3, 9}, {6, 4, 11}, {11, 5, 9}, {15, 9, 5}, {15, 13, 7}},
        {0, RGB(8, 4, 8), RGB(3, 2, 5), RGB(15, 11, 10), RGB(13, 8, 8), RGB(13, 9, 13), RGB(9, 6, 12),
         RGB(15, 12, 9), RGB(13, 9, 8), RGB(15, 15, 14), RGB(6, 3, 7),
         RGB(15, 13, 5), RGB(15, 9, 2), RGB(12, 5, 1), RGB(5, 11, 15), RGB(3, 1, 3)}},
    { // dusk
        {{1, 1, 6}, {3, 2, 9}, {7, 3, 10}, {12, 5, 8}, {15, 9, 6}},
        {0, RGB(5, 3, 8), RGB(2, 1, 4), RGB(12, 8, 12), RGB(9, 5, 9), RGB(14, 12, 15), RGB(8, 6, 13),
         RGB(15, 14, 11), RGB(13, 11, 10), RGB(15, 15, 14), RGB(4, 2, 6),
         RGB(15, 13, 5), RGB(15, 9, 2), RGB(12, 5, 1), RGB(5, 11, 15), RGB(2, 1, 3)}},
    { // night
        {{0, 0, 3}, {1, 1, 5}, {2, 2, 8}, {4, 4, 10}, {8, 7, 12}},
        {0, RGB(3, 3, 7), RGB(1, 1, 3), RGB(9, 10, 14), RGB(6, 7, 11), RGB(15, 15, 15), RGB(9, 9, 14),
         RGB(15, 15, 12), RGB(13, 13, 10), RGB(15, 15, 14), RGB(2, 2, 5),
         RGB(15, 13, 5), RGB(15, 9, 2), RGB(12, 5, 1), RGB(5, 11, 15), RGB(1, 1, 2)}},
    { // northern lights
        {{0, 1, 3}, {0, 4, 5}, {1, 10, 7}, {2, 6, 8}, {5, 4, 9}},
        {0, RGB(2, 4, 6), RGB(0, 1, 2), RGB(8, 14, 12), RGB(4, 10, 9), RGB(15, 15, 15), RGB(9, 14, 13),
         RGB(14, 15, 13), RGB(11, 13, 11), RGB(15, 15, 14), RGB(1, 3, 5),
         RGB(15, 13, 5), RGB(15, 9, 2), RGB(12, 5, 1), RGB(5, 11, 15), RGB(0, 1, 2)}},
};
// clang-format on

u16 skyTable[READ_ENTRIES];
u16* skyPointer;
static u16 landscape[LANDSCAPE];
static const MOOD* mood;
static u8 fadeEntry = FIRST_ENTRY;
static u8 pendingIndex; // of a landscape colour to be sent, 0 none

// The colour of the sky `entry` steps below the zenith.
static u16 SkyColour(u8 entry) {
    u8 stop = 0;
    while (entry >= STOP_DISTANCE && stop < STOPS - 2) {
        entry -= STOP_DISTANCE;
        ++stop;
    }
    const u8* from = mood->stops[stop];
    const u8* to = mood->stops[stop + 1];
    u16 colour = 0;
    for (u8 channel = 3; channel-- != 0;) {
        const u8 sum = (u8)(from[channel] * (STOP_DISTANCE - entry) + to[channel] * entry);
        colour = colour << 4 | (u8)((sum + STOP_DISTANCE / 2) / STOP_DISTANCE);
    }
    return colour;
}

// The lake mirrors the sky, half as bright.
static u16 EntryColour(u8 entry) {
    if (entry < FIRST_ENTRY)
        return SkyColour(0);
    entry -= FIRST_ENTRY;
    if (entry < SKY_ENTRIES)
        return SkyColour(entry);
    entry -= SKY_ENTRIES;
    if (entry >= LAKE_ENTRIES)
        entry = LAKE_ENTRIES - 1;
    const u16 mirrored = SkyColour((u8)(SKY_ENTRIES - 2 - entry * 5));
    const u16 half = mirrored >> 1 & 0x777;
    return half + (half >> 1 & 0x333);
}

// One level nearer in each of the three channels.
static u16 Nearer(u16 from, u16 to) {
    u16 unit = 1;
    u16 mask = 15;
    for (u8 channel = 0; channel < 3; ++channel) {
        const u16 now = from & mask;
        const u16 wanted = to & mask;
        if (now < wanted)
            from += unit;
        else if (now > wanted)
            from -= unit;
        unit <<= 4;
        mask <<= 4;
    }
    return from;
}

void SkySet(u8 number) {
    mood = &moods[number];
    for (u8 entry = 0; entry < ENTRIES; ++entry)
        skyTable[entry] = EntryColour(entry);
    for (u8 index = 1; index < LANDSCAPE; ++index) {
        landscape[index] = mood->landscape[index];
        WriteColour(index, landscape[index]);
    }
}

void SkyFadeTo(u8 number) {
    mood = &moods[number];
}

void SkySend(void) {
    if (pendingIndex == 0)
        return;
    WriteColour(pendingIndex, landscape[pendingIndex]);
    pendingIndex = 0;
}

void SkyStep(void) {
    if (fadeEntry < ENTRIES) {
        skyTable[fadeEntry] = Nearer(skyTable[fadeEntry], EntryColour(fadeEntry));
    } else {
        pendingIndex = fadeEntry - ENTRIES + 1;
        landscape[pendingIndex] = Nearer(landscape[pendingIndex], mood->landscape[pendingIndex]);
    }
    if (++fadeEntry == ENTRIES + LANDSCAPE - 1)
        fadeEntry = FIRST_ENTRY;
}
