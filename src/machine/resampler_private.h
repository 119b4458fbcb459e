// The inner loops of an AudioResampler. Sums have the same order on every processor and no fused
// operations, so the samples are the same everywhere.
#pragma once

#include "machine/resampler_filter.h"

#include <cstddef>
#include <cstdint>

struct RESAMPLER_PAIR {
    float left;
    float right;
};

// Splits stereo pairs into a row of floats for each side.
void ResamplerSplit(const int16_t* samples, size_t pairs, float* left, float* right);

// The first step on one side: `count` middle pairs, the first one from the source pairs at `source`.
void ResamplerThin(const RESAMPLER_FILTER& filter, const float* source, size_t count, float* out);

// The second step: the output interpolated by `share` (0 to 1) between the results of `row` and of the
// next row, for both sides or one. `width` is a multiple of 8.
[[nodiscard]] RESAMPLER_PAIR ResamplerHear(const float* row, size_t width, float share,
                                           const float* left, const float* right);
[[nodiscard]] float ResamplerHearOne(const float* row, size_t width, float share,
                                     const float* side);
