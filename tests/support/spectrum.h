// Measures a tone in a span of samples.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

struct TONE {
    double amplitude;
    double power; // mean square
};

// The part of `samples` at `frequency`; exact over a whole number of its periods.
[[nodiscard]] inline TONE MeasureTone(std::span<const double> samples, double frequency,
                                      double rate) {
    double cosine = 0.0;
    double sine = 0.0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2.0 * std::numbers::pi * frequency * static_cast<double>(i) / rate;
        cosine += samples[i] * std::cos(angle);
        sine += samples[i] * std::sin(angle);
    }
    const double amplitude = 2.0 * std::hypot(cosine, sine) / static_cast<double>(samples.size());
    return {amplitude, amplitude * amplitude / 2.0};
}

// Mean square about the mean.
[[nodiscard]] inline double MeasurePower(std::span<const double> samples) {
    double sum = 0.0;
    double squares = 0.0;
    for (const double sample : samples) {
        sum += sample;
        squares += sample * sample;
    }
    const auto count = static_cast<double>(samples.size());
    return squares / count - (sum / count) * (sum / count);
}

[[nodiscard]] inline double ToDecibels(double amplitudeRatio) {
    return 20.0 * std::log10(amplitudeRatio);
}
