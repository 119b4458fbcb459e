// The plain loops.
#include "machine/resampler_private.h"

#include <cstring>

namespace {

// Four floats as a vector extension of GCC and Clang, for any processor.
using FLOAT4 = float __attribute__((vector_size(16)));

constexpr size_t kLanes = 4;

inline FLOAT4 Load(const float* from) {
    FLOAT4 value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// Taps are aligned to 16 bytes: a row is a whole multiple of that, and so is the start of a vector.
inline FLOAT4 LoadTaps(const float* from) {
    return Load(static_cast<const float*>(__builtin_assume_aligned(from, sizeof(FLOAT4))));
}

// The sum of each side.
inline FLOAT4 AddUp(const FLOAT4 (&sums)[4]) {
    const FLOAT4 evens = {sums[0][0], sums[1][0], sums[2][0], sums[3][0]};
    const FLOAT4 seconds = {sums[0][1], sums[1][1], sums[2][1], sums[3][1]};
    const FLOAT4 thirds = {sums[0][2], sums[1][2], sums[2][2], sums[3][2]};
    const FLOAT4 fourths = {sums[0][3], sums[1][3], sums[2][3], sums[3][3]};
    return (evens + thirds) + (seconds + fourths);
}

inline float Sum(FLOAT4 even, FLOAT4 odd) {
    const FLOAT4 sum = even + odd;
    return (sum[0] + sum[2]) + (sum[1] + sum[3]);
}

// Interpolates between two rows of taps.
inline FLOAT4 Between(const float* row, const float* next, float share) {
    const FLOAT4 taps = LoadTaps(row);
    return taps + (LoadTaps(next) - taps) * share;
}

void Split(const int16_t* samples, size_t pairs, float* left, float* right) {
    for (size_t i = 0; i < pairs; ++i) {
        left[i] = samples[i * 2];
        right[i] = samples[i * 2 + 1];
    }
}

// Four outputs at a time: each has its own four sums, and a single chain of additions is slow.
void Decimate(const float* taps, size_t width, size_t stride, const float* source, size_t count,
              float* out) {
    const auto weigh = [&](const float* from, size_t step) {
        FLOAT4 sums[4] = {};
        for (size_t tap = 0; tap < width; tap += kLanes) {
            const FLOAT4 weights = LoadTaps(taps + tap);
            for (size_t i = 0; i < 4; ++i) {
                sums[i] += weights * Load(from + tap + i * step);
            }
        }
        return AddUp(sums);
    };
    size_t done = 0;
    for (; done + 4 <= count; done += 4) {
        const FLOAT4 four = weigh(source + done * stride, stride);
        std::memcpy(out + done, &four, sizeof four);
    }
    for (; done < count; ++done) {
        out[done] = weigh(source + done * stride, 0)[0];
    }
}

RESAMPLER_PAIR Interpolate(const float* row, size_t width, float share, const float* left,
                           const float* right) {
    const float* const next = row + width;
    FLOAT4 lefts[2] = {};
    FLOAT4 rights[2] = {};
    for (size_t i = 0; i < width; i += 2 * kLanes) {
        for (size_t half = 0; half < 2; ++half) {
            const size_t at = i + half * kLanes;
            const FLOAT4 taps = Between(row + at, next + at, share);
            lefts[half] += taps * Load(left + at);
            rights[half] += taps * Load(right + at);
        }
    }
    return {Sum(lefts[0], lefts[1]), Sum(rights[0], rights[1])};
}

float InterpolateOne(const float* row, size_t width, float share, const float* side) {
    const float* const next = row + width;
    FLOAT4 sums[2] = {};
    for (size_t i = 0; i < width; i += 2 * kLanes) {
        for (size_t half = 0; half < 2; ++half) {
            const size_t at = i + half * kLanes;
            sums[half] += Between(row + at, next + at, share) * Load(side + at);
        }
    }
    return Sum(sums[0], sums[1]);
}

} // namespace

constexpr RESAMPLER_LOOPS kResamplerLoopsPlain{Split, Decimate, Interpolate, InterpolateOne};

const RESAMPLER_LOOPS& ResamplerLoops() {
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx") != 0) {
        return *kResamplerLoopsWide;
    }
#endif
    return kResamplerLoopsPlain;
}
