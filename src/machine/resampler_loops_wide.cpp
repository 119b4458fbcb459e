// The loops for processors with AVX. A vector of eight holds two of the plain loops' vectors of four, so that each
// lane adds up the same products in the same order.
//
// This source alone is compiled for such a processor. It uses no function that a header defines for several
// sources: the linker might pick this source's copy for all of them.
#include "machine/resampler_private.h"

#ifdef __AVX__

#include <immintrin.h>

namespace {

using FLOAT4 = __m128;
using FLOAT8 = __m256;

constexpr size_t kHalfLanes = 4;
constexpr size_t kLanes = 8;

inline FLOAT8 Load(const float* from) {
    return _mm256_loadu_ps(from);
}

// Four floats from each of two places.
inline FLOAT8 LoadBoth(const float* low, const float* high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
}

// Four floats, twice.
inline FLOAT8 LoadTwice(const float* from) {
    return _mm256_broadcast_ps(reinterpret_cast<const FLOAT4*>(from));
}

inline FLOAT4 Low(FLOAT8 value) {
    return _mm256_castps256_ps128(value);
}

inline FLOAT4 High(FLOAT8 value) {
    return _mm256_extractf128_ps(value, 1);
}

// As the plain loops add up the sums of one side.
inline float Sum(FLOAT4 sum) {
    return (sum[0] + sum[2]) + (sum[1] + sum[3]);
}

inline FLOAT8 Between(const float* row, const float* next, float share) {
    const FLOAT8 taps = Load(row);
    return taps + (Load(next) - taps) * share;
}

void Split(const int16_t* samples, size_t pairs, float* left, float* right) {
    for (size_t i = 0; i < pairs; ++i) {
        left[i] = samples[i * 2];
        right[i] = samples[i * 2 + 1];
    }
}

// Eight outputs at a time, two in each vector.
void Decimate(const float* taps, size_t width, size_t stride, const float* source, size_t count,
              float* out) {
    size_t done = 0;
    for (; done + 8 <= count; done += 8) {
        const float* const from = source + done * stride;
        FLOAT8 sums[4] = {};
        for (size_t tap = 0; tap < width; tap += kHalfLanes) {
            const FLOAT8 weights = LoadTwice(taps + tap);
            for (size_t i = 0; i < 4; ++i) {
                const float* const first = from + tap + 2 * i * stride;
                sums[i] += weights * LoadBoth(first, first + stride);
            }
        }
        for (size_t i = 0; i < 4; ++i) {
            out[done + 2 * i] = Sum(Low(sums[i]));
            out[done + 2 * i + 1] = Sum(High(sums[i]));
        }
    }
    if (done < count) {
        kResamplerLoopsPlain.decimate(taps, width, stride, source + done * stride, count - done,
                                      out + done);
    }
}

RESAMPLER_PAIR Interpolate(const float* row, size_t width, float share, const float* left,
                           const float* right) {
    FLOAT8 lefts = {};
    FLOAT8 rights = {};
    for (size_t i = 0; i < width; i += kLanes) {
        const FLOAT8 taps = Between(row + i, row + width + i, share);
        lefts += taps * Load(left + i);
        rights += taps * Load(right + i);
    }
    return {Sum(Low(lefts) + High(lefts)), Sum(Low(rights) + High(rights))};
}

float InterpolateOne(const float* row, size_t width, float share, const float* side) {
    FLOAT8 sums = {};
    for (size_t i = 0; i < width; i += kLanes) {
        sums += Between(row + i, row + width + i, share) * Load(side + i);
    }
    return Sum(Low(sums) + High(sums));
}

constexpr RESAMPLER_LOOPS kWide{Split, Decimate, Interpolate, InterpolateOne};

} // namespace

constexpr const RESAMPLER_LOOPS* kResamplerLoopsWide = &kWide;

#else

constexpr const RESAMPLER_LOOPS* kResamplerLoopsWide = nullptr;

#endif
