// AudioResampler: one sound chip's stereo samples, brought to the program's rate.
//
// Units: counts are i16 values, two a stereo frame; rates are frames a second.
// Order: Init, then Push and Consume by the owner's thread alone; none of them allocates but Init.
// Quality, as set when Init runs: 0 picks the nearest earlier sample, 1 and 2 use libsamplerate's
// fastest and medium sinc converters.
#pragma once

#include "audio/band_splitter.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct SRC_STATE_tag;

class AudioResampler {
public:
    AudioResampler();
    ~AudioResampler();
    AudioResampler(const AudioResampler&) = delete;
    AudioResampler& operator=(const AudioResampler&) = delete;

    void Init(double sourceRate);

    // Takes `count` values, which the cut-off filter may change in place, and gives the number of
    // values added to `Output`.
    int32_t Push(int16_t* samples, int32_t count);

    // Removes values from the front of the output.
    void Consume(int32_t count);

    void Reset();

    // What is ready, oldest first. Valid until the next call.
    [[nodiscard]] std::span<const int16_t> Output() const;
    // (the private part is the implementer's)
};
