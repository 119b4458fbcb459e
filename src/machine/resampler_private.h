// The inner loops of an AudioResampler. Sums have one order, whatever the processor, and no fused
// operations: the same samples come out everywhere.
#pragma once

#include "machine/resampler_filter.h"

#include <cstddef>
#include <cstdint>

struct RESAMPLER_PAIR {
    float left;
    float right;
};

// Stereo pairs to a row of floats a side.
void ResamplerSplit(const int16_t* samples, size_t pairs, float* left, float* right);

// The first step on one side: `count` middle pairs, the first from the source pairs at `source` on.
void ResamplerThin(const RESAMPLER_FILTER& filter, const float* source, size_t count, float* out);

// The second step: the output that lies `share` (0 to 1) of the way from what `row` makes to what the next
// row makes, of both sides or of one. `width` is a multiple of 8.
[[nodiscard]] RESAMPLER_PAIR ResamplerHear(const float* row, size_t width, float share,
                                           const float* left, const float* right);
[[nodiscard]] float ResamplerHearOne(const float* row, size_t width, float share,
                                     const float* side);
