// The inner loops of an AudioResampler, in two versions with the same results: `plain` for every processor, and
// `wide`, faster, for those with AVX. Sums have the same order in both and no fused operations, so the
// samples are the same everywhere.
#pragma once

#include <cstddef>
#include <cstdint>

struct RESAMPLER_PAIR {
    float left;
    float right;
};

struct RESAMPLER_LOOPS {
    // Splits stereo pairs into a row of floats for each side.
    using SPLIT = void(const int16_t* samples, size_t pairs, float* left, float* right);
    SPLIT* split;

    // The first step on one side: `count` middle pairs, the first one from the source pairs at `source`. `taps`
    // is the filter's `first`, of `width` taps.
    using DECIMATE = void(const float* taps, size_t width, size_t stride, const float* source,
                          size_t count, float* out);
    DECIMATE* decimate;

    // The second step: the output interpolated by `share` (0 to 1) between the results of `row` and of the next
    // row, for both sides or one. `width` is a multiple of 8.
    using INTERPOLATE = RESAMPLER_PAIR(const float* row, size_t width, float share,
                                       const float* left, const float* right);
    INTERPOLATE* interpolate;
    using INTERPOLATE_ONE = float(const float* row, size_t width, float share, const float* side);
    INTERPOLATE_ONE* interpolateOne;
};

extern const RESAMPLER_LOOPS kResamplerLoopsPlain;
// Null on processors of another kind than x86-64.
extern const RESAMPLER_LOOPS* const kResamplerLoopsWide;

// The fastest loops that this processor has. Any thread may call it.
[[nodiscard]] const RESAMPLER_LOOPS& ResamplerLoops();
