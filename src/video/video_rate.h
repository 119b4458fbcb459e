// The exact rate of a machine's pictures.
#pragma once

#include <cstdint>

// Pictures a second: number / divisor.
struct VIDEO_RATE {
    uint32_t number = 60;
    uint32_t divisor = 1;
};

// `samplePairs` at `sampleRate` are the sound of a picture, about: they tell the 50 Hz of a European console from the
// 60 Hz of the others. An unknown system has one of these.
[[nodiscard]] VIDEO_RATE VideoRate(uint32_t system, uint32_t samplePairs, uint32_t sampleRate);
