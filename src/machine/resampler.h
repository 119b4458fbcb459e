// AudioResampler: one sound chip's stereo samples, brought to the program's rate.
//
// Each sound chip has one, in its ChipSound.
//
// Units: counts are i16 values, two a stereo pair; rates are pairs a second. Time is counted in ticks, of
//   which both a source pair and an output pair last a whole number, so the ratio of the rates is exact
//   and does not drift.
// Owner: a ChipSound, on its session's thread, with no lock.
// Order: Init, then Push and Consume on the owner's thread. Only Init allocates.
// Quality: 0 picks the nearest earlier sample; 1 and 2 filter (resampler_filter.h) with images and
//   aliases 96 and 110 dB down. Any other value counts as 0.
// Delay: an output is made once the filter has the input after it: 0.9 to 1 ms at 44,100 Hz.
// Room: `Output` holds 25 ms. A machine that takes a frame's sound every frame never fills it. New
//   samples are dropped while it is full.
// State: the filters' input history and the position of the next output in it. A loaded resampler then
//   makes exactly the samples of the saved one.
#pragma once

#include "machine/resampler_filter.h"
#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct RESAMPLER_LOOPS;

class AudioResampler {
public:
    // Values of `Output` that a state keeps. A machine's two chips differ by a few after a frame.
    static constexpr uint32_t kKeptValues = 32;

    // Allocates and resets. The source rate is clamped to a factor of 256 from the output's, either
    // way.
    void Init(double sourceRateValue, uint32_t outputRateValue, int32_t qualityValue);

    // Takes `count` values and returns the number of values added to `Output`. Any count is safe; an
    // odd last value is left out.
    int32_t Push(const int16_t* samples, int32_t count);

    // The same as pushing this pair `pairs` times in one call.
    int32_t PushRun(int16_t left, int16_t right, int32_t pairs);

    // Removes values from the front of the output, at most all of them.
    void Consume(int32_t count);

    // Forgets every sample. Rates and quality stay.
    void Reset();

    // The samples that are ready, oldest first. Valid until the next call.
    [[nodiscard]] std::span<const int16_t> Output() const;

    // Size of the state's fields, which depends on rates and quality, without the piece header.
    [[nodiscard]] uint32_t StateBytes() const;
    // Writes StateBytes bytes and returns the position after them.
    StateOut SaveFields(StateOut out) const;
    // Reads StateBytes bytes. False for fields of other rates or quality and for invalid ones; the
    // resampler is then reset. Any contents are safe.
    [[nodiscard]] bool LoadFields(const uint8_t* in);

    // The quality in use, 0 to 2.
    [[nodiscard]] int32_t Quality() const { return quality; }

private:
    // One side of the sound inside the filters.
    struct SIDE {
        std::vector<float> source; // from the first pair that the next middle pair uses
        std::vector<float> middle;
    };

    struct KEPT;
    void RefillFrom(const std::vector<int16_t>& pairs, uint32_t stray);
    template <typename Visit>
    void VisitFields(Visit& visit, KEPT& kept, std::vector<int16_t>& pairs) const;

    void MakeRoom();
    void PickNearest(const int16_t* samples, int32_t pairs, ptrdiff_t valuesAPair);
    void Filter(const int16_t* samples, size_t pairs);
    [[nodiscard]] bool Remember(const int16_t* samples, size_t pairs);
    void TakeIn(const int16_t* samples, size_t pairs, bool isMono);
    [[nodiscard]] size_t MiddlesReady() const;
    void MakeOutput(bool isMono);
    void Put(float left, float right);
    void Advance();
    void DropMiddles(bool isMono);
    void RunConstant(int16_t left, int16_t right, size_t pairs);

    double sourceRate = 44100.0;
    uint32_t outputRate = 44100;
    int32_t quality = 0;
    std::vector<int16_t> output; // (output rate / 40) x 2
    int32_t outputCount = 0;     // values in `output`

    // Quality 0.
    float step = 1.0f;  // source pairs an output
    float phase = 0.0f; // source pairs, carried between calls

    // Quality 1 and 2.
    std::shared_ptr<const RESAMPLER_FILTER> filter;
    const RESAMPLER_LOOPS* loops = nullptr;
    std::array<SIDE, 2> sides;    // left, right
    size_t chunk = 0;             // source pairs filtered at once, at most
    size_t sourceHeld = 0;        // pairs in `source`
    size_t middleHeld = 0;        // pairs in `middle`
    size_t place = 0;             // the pair of `middle`, at or before the next output
    uint64_t ticks = 0;           // from there to the output, less than `middleTicks`
    uint64_t middleTicks = 1;     // of a middle pair
    uint64_t outputTicks = 1;     // of an output pair
    uint64_t outputMiddles = 0;   // the same in whole middle pairs
    uint64_t outputRest = 0;      // and the ticks left over
    double rowsATick = 0.0;       // rows of the filter / `middleTicks`
    std::vector<int16_t> history; // the last source pairs, oldest first: the filters' input history
    uint32_t strayPairs = 0;      // source pairs beyond a whole middle pair, 0..stride - 1
    size_t monoPairs = 0;         // pairs at the end of `history` whose sides are the same
};
