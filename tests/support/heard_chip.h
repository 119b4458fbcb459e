// A sound chip with a buffer for its pairs.
#pragma once

#include "machine/chip_sound.h"

template <typename Chip>
struct HEARD_CHIP : Chip {
    HEARD_CHIP() {
        sound.Init(223721.0, {}); // the fastest chip's rate, so that there is room for any
        this->pairs = &sound.pairs;
    }
    HEARD_CHIP(const HEARD_CHIP&) = delete;
    HEARD_CHIP& operator=(const HEARD_CHIP&) = delete;

    ChipSound sound;
};
