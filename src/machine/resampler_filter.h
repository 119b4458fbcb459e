// The filters of an AudioResampler, computed once for every pair of rates and shared.
//
// A chip that is much faster than the output is resampled in two steps. The first is a short low-pass
// that keeps every `stride`-th pair; the second, a sharp one, computes an output anywhere between the
// remaining pairs. Both are windowed sincs with a Kaiser window (J. F. Kaiser, "Nonrecursive digital
// filter design using the I0-sinh window function", 1974), symmetric, so that all frequencies have the
// same delay.
//
// Units: a middle pair is an output of the first step: one for `stride` source pairs.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

struct RESAMPLER_FILTER {
    uint32_t stride = 1;      // source pairs of a middle pair; 1: there is no first step
    uint32_t reach = 0;       // source pairs that the first step uses on either side
    std::vector<float> first; // its 2 x `reach` + 1 taps, and zeros up to a multiple of 8

    // The second step's taps for outputs at 0, 1/rows, 2/rows ... of the way to the next middle pair:
    // `rows` + 1 rows of 2 x `half` taps.
    uint32_t half = 0; // middle pairs that an output uses on either side; a multiple of 4
    uint32_t rows = 0;
    std::vector<float> taps;
};

// For quality 1 or 2. `sourceRate` and `outputRate` are positive and no more than a factor of 256 apart.
// Any thread may call it; users of the same rates share one filter.
[[nodiscard]] std::shared_ptr<const RESAMPLER_FILTER>
ResamplerFilterFor(int32_t quality, double sourceRate, double outputRate);
