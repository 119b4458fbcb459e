// A tone in a ring, and how loud it is on either side of the output.
#pragma once

#include "audio/sound_ring.h"

#include "support/spectrum.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

// A ring full of a 440 Hz sine, which fits a second in whole periods.
inline void FillWithTone(SoundRing& ring, bool left, bool right) {
    std::vector<int16_t> samples;
    const uint32_t frames = ring.LengthBytes() / ring.FrameBytes();
    for (uint32_t i = 0; i < frames; ++i) {
        const auto sample = static_cast<int16_t>(
            std::lrint(10000.0 * std::sin(2.0 * std::numbers::pi * 440.0 * i / frames)));
        samples.push_back(left ? sample : int16_t{0});
        if (ring.Channels() == 2) {
            samples.push_back(right ? sample : int16_t{0});
        }
    }
    ring.Write(0, samples);
}

struct SIDES {
    double left;
    double right;
};

// Power of either side over a second, after a tenth to settle. `render(out, frames)` makes the sound.
template <typename Render>
SIDES MeasureSides(const Render& render, uint32_t rate) {
    std::vector<int16_t> out(size_t{rate} * 2);
    render(out.data(), rate / 10);
    render(out.data(), rate);
    std::vector<double> left;
    std::vector<double> right;
    for (size_t i = 0; i < out.size(); i += 2) {
        left.push_back(out[i]);
        right.push_back(out[i + 1]);
    }
    return {MeasurePower(left), MeasurePower(right)};
}
