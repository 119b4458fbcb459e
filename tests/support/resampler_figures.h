// The figures of a resampler's quality, for its test and its bench.
#pragma once

#include <cstdint>

// In decibels, computed from the taps in double precision.
struct RESAMPLER_FIGURES {
    double ripple = 0.0;  // in the pass band: 18 kHz of 44,100, and as much of other rates
    double images = 0.0;  // of a tone in the pass band
    double aliases = 0.0; // of a tone above half the lower rate
};
[[nodiscard]] RESAMPLER_FIGURES MeasureFilter(int32_t quality, double source, double output);

inline constexpr double kFigureTone = 1000.0; // Hz

// Of the resampler itself: a tone near full scale against everything else in the output, in decibels.
[[nodiscard]] double MeasureSignalToNoise(int32_t quality, double source, uint32_t output);

// From the first source pair, at whose time the first output is, to that output, in seconds.
[[nodiscard]] double MeasureDelay(int32_t quality, double source, uint32_t output);
