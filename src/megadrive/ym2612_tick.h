// The YM2612's tick, for the machine's loop to inline.
#pragma once

#include "megadrive/ym2612.h"

// One clock of the chip, a clock of the 68000.
inline void Ym2612Tick(YM2612& ym) {
    if (++ym.tickCount >= kYm2612ClocksPerSample) [[unlikely]] {
        ym.tickCount = 0;
        Ym2612MakeSample(ym);
    }
}
