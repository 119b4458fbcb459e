// A sound chip's output: raw stereo pairs at its own rate, in order.
#pragma once

#include <cstdint>
#include <vector>

struct SOUND_PAIRS {
    std::vector<int16_t> samples; // left and right in turn; its length is the room
    uint32_t sampleCount = 0;     // values in use

    // Pairs are dropped while it is full.
    void Add(int16_t left, int16_t right) {
        if (sampleCount + 2 <= samples.size()) [[likely]] {
            samples[sampleCount] = left;
            samples[sampleCount + 1] = right;
            sampleCount += 2;
        }
    }
};
