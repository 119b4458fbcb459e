#include "grelot/grelot.h"

// clang-format off
#pragma bss-name("KEPT")
// clang-format on
static u8 mark[4];
static u8 best, bestInverted;
// clang-format off
#pragma bss-name("BSS")
// clang-format on

static const u8 kMark[4] = {'G', 'R', 'E', 'L'};

// Memory that was never written can hold anything, so the mark and the inverted copy must both match.
u8 BestRound(void) {
    static u8 i;
    for (i = 0; i != 4; ++i) {
        if (mark[i] != kMark[i]) {
            return 0;
        }
    }
    return (u8)(best ^ bestInverted) == 0xFF && best <= 99 ? best : 0;
}

void KeepRound(u8 round) {
    static u8 i;
    if (round <= BestRound()) {
        return;
    }
    for (i = 0; i != 4; ++i) {
        mark[i] = kMark[i];
    }
    best = round;
    bestInverted = ~round;
}
