// What comes from the right: groups of pearls and stars, and things that sting.
#include "ecume/ecume.h"

u8 thingKind[kThings], thingX[kThings], thingY[kThings];

static u8 thingAge[kThings];
static u8 group, groupLeft, groupY, groupStep;
static u8 room; // dots until the next thing enters
static u8 splashX, splashAge;

// clang-format off
static const u8 kArc[6] = {112, 92, 80, 80, 92, 112};
static const u8 kBob[16] = {0, 1, 2, 3, 4, 4, 5, 5, 5, 5, 4, 4, 3, 2, 1, 0};
// Index: kind.
static const u8 kTiles[7] = {0, FIGURE(kPearl), FIGURE(kStar), FIGURE(kJelly), FIGURE(kUrchin), FIGURE(kGull), FIGURE(kSparkle)};
static const u8 kColours[7] = {0, 1, 1, 2, 3, 3, 1};
static const u8 kWide[7] = {0, 0, 1, 1, 1, 1, 0};
// clang-format on

void ThingsReset(void) {
    static u8 i;
    for (i = 0; i != kThings; ++i) {
        thingKind[i] = kThingNone;
    }
    groupLeft = 0;
    room = 60;
    splashAge = 0;
}

static void Enter(u8 kind, u8 y) {
    static u8 i;
    for (i = 0; i != kThings; ++i) {
        if (thingKind[i] == kThingNone) {
            thingKind[i] = kind;
            thingX[i] = 244;
            thingY[i] = y;
            thingAge[i] = Random();
            return;
        }
    }
}

static void NextGroup(u8 night) {
    group = Random() & 7;
    groupStep = 0;
    groupLeft = 1;
    if (group < 3) {
        group = kThingPearl;
        groupLeft = 5;
        groupY = 158 + (Random() & 31);
    } else if (group < 5) {
        group = kThingStar;
        groupLeft = 6;
    } else {
        group -= 2; // a jellyfish, an urchin or a gull
        groupLeft = 1 + (night > 1 && (Random() & 1) != 0);
    }
}

static void Feed(u8 night) {
    if (groupLeft == 0) {
        NextGroup(night);
    }
    switch (group) {
    case kThingPearl:
        Enter(kThingPearl, groupY + kBob[groupStep << 1]);
        room = 20;
        break;
    case kThingStar:
        Enter(kThingStar, kArc[groupStep]);
        room = 26;
        break;
    case kThingGull:
        Enter(kThingGull, 60 + (Random() & 31));
        room = 70;
        break;
    default:
        Enter(group, 150 + (Random() & 47));
        room = 60;
        break;
    }
    ++groupStep;
    if (--groupLeft == 0) {
        room += 40;
    }
}

static void MoveOne(u8 i, u8 speed) {
    ++thingAge[i];
    if (thingKind[i] == kThingGull) {
        ++speed;
    }
    if (thingKind[i] == kThingSparkle) {
        --thingY[i];
        if ((thingAge[i] & 15) == 0) {
            thingKind[i] = kThingNone;
        }
    }
    if (thingX[i] <= speed) {
        thingKind[i] = kThingNone;
    } else {
        thingX[i] -= speed;
    }
}

void ThingsMove(u8 speed, u8 night) {
    static u8 i;
    for (i = 0; i != kThings; ++i) {
        if (thingKind[i] != kThingNone) {
            MoveOne(i, speed);
        }
    }
    if (room > speed) {
        room -= speed;
    } else {
        Feed(night);
    }
    if (splashAge != 0) {
        --splashAge;
        splashX = splashX > speed ? splashX - speed : 0;
    }
}

void ThingsDraw(void) {
    static u8 i, kind, tile, colours, x, y;
    for (i = 0; i != kThings; ++i) {
        kind = thingKind[i];
        if (kind == kThingNone) {
            continue;
        }
        tile = kTiles[kind];
        colours = kColours[kind];
        x = thingX[i];
        y = thingY[i];
        if (kind == kThingJelly) {
            y += kBob[thingAge[i] >> 2 & 15];
        }
        if ((thingAge[i] & 16) != 0 && kind != kThingUrchin && kind != kThingSparkle) {
            tile += kWide[kind] != 0 ? 4 : 2;
        }
        SPRITE(x, y, tile, colours);
        if (kWide[kind] != 0) {
            x += 8;
            tile += 2;
            SPRITE(x, y, tile, colours);
        }
    }
    if (splashAge != 0) {
        tile = FIGURE(splashAge > 8 ? kSplash : kSplash + 1);
        SPRITE(splashX, kSurface - 12, tile, 3);
        x = splashX + 10;
        SPRITE(x, kSurface - 12, tile, 0x43);
    }
}

static u8 Distance(u8 a, u8 b) {
    return a < b ? b - a : a - b;
}

u8 ThingsTouched(void) {
    static u8 i, kind, reach;
    for (i = 0; i != kThings; ++i) {
        kind = thingKind[i];
        if (kind == kThingNone || kind == kThingSparkle) {
            continue;
        }
        reach = kind < kThingJelly ? 18 : 13;
        if (Distance(thingX[i] + 6, dolphinX) < reach &&
            Distance(thingY[i] + 8, dolphinY) < reach - 4) {
            if (kind < kThingJelly) {
                thingKind[i] = kThingSparkle;
                thingAge[i] = 0;
            }
            return kind;
        }
    }
    return kThingNone;
}

void Splash(u8 x) {
    splashX = x;
    splashAge = 16;
}
