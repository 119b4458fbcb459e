// Plays the game in the demo: goes for what shines and away from what stings.
#include "ecume/ecume.h"

static u8 danger, goal, goalX, goalY;

// The nearest of both kinds that is still ahead.
static void Look(void) {
    static u8 i, kind, ahead, nearest, goalAhead;
    nearest = 70;
    goalAhead = 255;
    danger = goal = 255;
    for (i = 0; i != kThings; ++i) {
        kind = thingKind[i];
        if (kind == kThingNone || kind == kThingSparkle || thingX[i] + 16 < dolphinX) {
            continue;
        }
        ahead = thingX[i] + 16 - dolphinX;
        if (kind >= kThingJelly) {
            if (ahead < nearest) {
                nearest = ahead;
                danger = i;
            }
        } else if (ahead < goalAhead) {
            goalAhead = ahead;
            goal = i;
        }
    }
}

u8 Pilot(void) {
    static u8 buttons, y;
    buttons = 0;
    Look();
    if (danger != 255) {
        y = thingY[danger] + 8;
        if (y + 34 > dolphinY && dolphinY + 34 > y && y > 130) {
            return y > 174 ? kPadUp : kPadDown;
        }
    }
    goalY = 176;
    goalX = 255;
    if (goal != 255) {
        goalY = thingY[goal] + 8;
        goalX = thingX[goal];
    }
    if (goalY < kSurface) {
        // A leap needs a run-up from below.
        if (goalX < dolphinX + 62 && goalX > dolphinX) {
            return dolphinY > 172 ? kPadUp | kPadA : kPadUp;
        }
        goalY = 196;
    }
    if (goalY + 4 < dolphinY) {
        buttons |= kPadUp;
    } else if (goalY > dolphinY + 4) {
        buttons |= kPadDown;
    }
    return buttons;
}
