// A sound chip's output: raw stereo pairs at its own rate, in order.
#pragma once

#include <cstdint>
#include <vector>

struct SOUND_PAIRS {
    std::vector<int16_t> samples; // left and right in turn; its length is the room
    uint32_t sampleCount = 0;     // values in use

    // The same as `pairs` calls of Add.
    void AddRun(int16_t left, int16_t right, uint32_t pairs) {
        const auto room = static_cast<uint32_t>(samples.size() - sampleCount) / 2;
        const uint32_t added = pairs < room ? pairs : room;
        int16_t* out = samples.data() + sampleCount;
        for (uint32_t i = 0; i < added; ++i) {
            out[2 * i] = left;
            out[2 * i + 1] = right;
        }
        sampleCount += 2 * added;
    }

    // Pairs are dropped while it is full.
    void Add(int16_t left, int16_t right) {
        if (sampleCount + 2 <= samples.size()) [[likely]] {
            samples[sampleCount] = left;
            samples[sampleCount + 1] = right;
            sampleCount += 2;
        }
    }
};
