// For the entries that run a program on both frame loops of a machine: pictures, sound and the last state must be
// the same.
#pragma once

#include "machine_fuzz.h"

// `start` makes a machine with its program, or null if the machine refuses it.
template <typename Start>
void FuzzLoops(Start&& start, int frames) {
    const auto fast = start();
    const auto plain = start();
    if (!fast || !plain) {
        FuzzRequire(!fast && !plain);
        return;
    }
    plain->SetPlainLoop(true);
    for (int frame = 0; frame < frames; ++frame) {
        FuzzRequire(FuzzFrame(*fast) == FuzzFrame(*plain));
        FuzzRequire(fast->ended == plain->ended);
    }
    FuzzRequire(FuzzSave(*fast) == FuzzSave(*plain));
}
