// AudioResampler: one sound chip's stereo samples, brought to the program's rate.
//
// Every sound chip of every machine owns one.
//
// Units: counts are i16 values, two a stereo frame; rates are frames a second.
// Owner: the chip, on its session's thread, with no lock.
// Order: Init, then Push and Consume by the owner's thread alone; none of them allocates but Init.
// Quality, as set when Init runs: 0 picks the nearest earlier sample, 1 and 2 use libsamplerate's
// fastest and medium sinc converters. Any other setting counts as 0, as does a converter that cannot
// be made.
// Room: `Output` holds 25 ms. A machine that takes a frame's sound every frame never fills it; what
// comes while it is full is lost, newest first, and what was ready stays as it is.
#pragma once

#include "machine/band_splitter.h"
#include "machine/converter_trail.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct SRC_STATE_tag;

class AudioResampler {
public:
    // Values not taken yet that a state keeps; two chips of a machine are a few apart after a frame.
    static constexpr uint32_t kKeptValues = 32;

    AudioResampler();
    ~AudioResampler();
    AudioResampler(const AudioResampler&) = delete;
    AudioResampler& operator=(const AudioResampler&) = delete;

    // Reads the settings, makes room and forgets what was there. A rate further than a factor of 256
    // from the program's, which no converter does, is taken as the nearest that is not.
    void Init(double sourceRate);

    // Takes `count` values, which the cut-off filter may change in place, and gives the number of
    // values added to `Output`. Any count is safe; a value without its partner is left out.
    int32_t Push(int16_t* samples, int32_t count);

    // Removes values from the front of the output; at most those that are there.
    void Consume(int32_t count);

    // Forgets every sample, and the history of filters and converter. The settings stay as of Init.
    void Reset();

    // What is ready, oldest first. Valid until the next call.
    [[nodiscard]] std::span<const int16_t> Output() const;

    // What is on its way: filters, converter and the values that nobody has taken yet, at most
    // kKeptValues of them. With it a loaded machine gives the very samples that the saved one would
    // have given. The size depends on the settings at Init.
    [[nodiscard]] uint32_t StateSize() const;
    // Writes StateSize bytes and gives the byte behind them.
    uint8_t* SaveState(uint8_t* out) const;
    // Gives the bytes used, or 0 for a piece of other settings or one that does not fit; everything on
    // its way is then forgotten. Any contents are safe.
    [[nodiscard]] uint32_t LoadState(const uint8_t* data, uint32_t size);

    // The quality in use, 0 to 2.
    [[nodiscard]] int32_t Quality() const { return quality; }

private:
    struct FREE_CONVERTER {
        void operator()(SRC_STATE_tag* state) const;
    };

    void BuildFilters();
    void CutOff(int16_t* samples, int32_t frames);
    void PickNearest(const int16_t* samples, int32_t frames);
    void ConvertAll(const int16_t* samples, int32_t frames);
    [[nodiscard]] bool ConvertPending();

    std::unique_ptr<SRC_STATE_tag, FREE_CONVERTER> converter; // null for quality 0
    ConverterTrail trail;                                     // of the converter
    double sourceRate = 44100.0;
    double ratio = 1.0;          // program's rate / sourceRate
    std::vector<int16_t> output; // (program's rate / 40) x 2
    std::vector<float> floatIn;  // 25 ms of the source
    std::vector<float> floatOut; // as long as `output`
    int32_t quality = 0;
    int32_t outputCount = 0;  // values in `output`
    int32_t pendingCount = 0; // values in `floatIn`
    float step = 1.0f;        // sourceRate / program's rate, in source frames
    float phase = 0.0f;       // source frames, carried between calls; quality 0
    bool cutoffEnabled = false;
    int32_t cutoffLow = 0;               // Hz
    int32_t cutoffHigh = 0;              // Hz
    std::array<BandSplitter, 2> filters; // left, right
};
