// The dolphin: swims in the water, falls in the air. Heights and speeds are in 256ths of a line.
#include "ecume/ecume.h"

enum { kThrust = 0x38, kGravity = 0x22, kFastest = 0x480, kLeapSpeed = 0x500 };

u8 dolphinX, dolphinY, dolphinHurt, dolphinLeapt;

static u16 height;
static s16 speed;
static u8 stroke;

void DolphinReset(void) {
    dolphinX = 64;
    dolphinY = 176;
    height = 176U << 8;
    speed = 0;
    dolphinHurt = 0;
    dolphinLeapt = 0;
}

static void Swim(u8 buttons) {
    if ((buttons & kPadUp) != 0) {
        speed -= kThrust;
    }
    if ((buttons & kPadDown) != 0) {
        speed += kThrust;
    }
    if ((buttons & kPadA) != 0) {
        speed -= kThrust + 0x20;
    }
    // Drag of the water.
    speed -= speed / 16;
    if (speed > kFastest) {
        speed = kFastest;
    } else if (speed < -kLeapSpeed) {
        speed = -kLeapSpeed;
    }
}

void DolphinMove(u8 buttons) {
    static u8 before;
    dolphinLeapt = 0;
    if (dolphinY >= kSurface) {
        Swim(buttons);
    } else {
        speed += kGravity;
    }
    before = dolphinY;
    height += speed;
    dolphinY = height >> 8;
    if (dolphinY < kHighest) {
        dolphinY = kHighest;
        height = (u16)kHighest << 8;
        speed = 0;
    } else if (dolphinY > kLowest) {
        dolphinY = kLowest;
        height = (u16)kLowest << 8;
        speed = 0;
    }
    if (before >= kSurface && dolphinY < kSurface) {
        dolphinLeapt = 1;
        speed -= 0x60;
    } else if (before < kSurface && dolphinY >= kSurface) {
        dolphinLeapt = 2;
    }
    if ((buttons & kPadRight) != 0 && dolphinX < 200) {
        dolphinX += 2;
    }
    if ((buttons & kPadLeft) != 0 && dolphinX > 24) {
        dolphinX -= 2;
    }
    if (dolphinHurt != 0) {
        --dolphinHurt;
    }
    stroke += (buttons & (kPadA | kPadUp | kPadRight)) != 0 ? 2 : 1;
}

void DolphinDraw(void) {
    static u8 tile, left, top;
    if ((dolphinHurt & 4) != 0) {
        return;
    }
    if (speed < -0x160) {
        tile = FIGURE(kDolphin + 6);
    } else if (speed > 0x160) {
        tile = FIGURE(kDolphin + 9);
    } else {
        tile = FIGURE((stroke & 16) != 0 ? kDolphin + 3 : kDolphin);
    }
    left = dolphinX - 12;
    top = dolphinY - 9;
    SPRITE(left, top, tile, 0);
    left += 8;
    tile += 2;
    SPRITE(left, top, tile, 0);
    left += 8;
    tile += 2;
    SPRITE(left, top, tile, 0);
}
