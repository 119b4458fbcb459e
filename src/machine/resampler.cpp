#include "machine/resampler.h"

#include "machine/resampler_private.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

constexpr double kLargestRatio = 256.0; // either way
constexpr size_t kChunk = 4096;         // source pairs filtered at once: more than a frame brings

// Ticks a second divided by both rates. Every chip's rate is a whole number of 144ths of a Hz; other
// rates are kept to a hundred-millionth.
constexpr double kTicks = 144.0 * 1048576.0;

// Quality 0 counts its phase in single precision. A piece is short enough for the smallest step to move
// the phase, and longer than anything a machine pushes at once.
constexpr int32_t kPickFrames = 32768;

constexpr size_t kRunPairs = 256;

// Rounds to the nearest, ties to even. A float near 1.5 x 2^23 has no fraction bits, and its lowest
// bits are the number.
int16_t RoundToSample(float value) {
    constexpr float kNoFraction = 12582912.0F;
    const float clamped = std::min(std::max(value, -32768.0F), 32767.0F);
    return static_cast<int16_t>(std::bit_cast<uint32_t>(clamped + kNoFraction) & 0xFFFF);
}

bool SidesAreTheSame(const int16_t* samples, size_t pairs) {
    constexpr size_t kLook = 64;
    uint32_t differences = 0;
    for (size_t from = 0; from < pairs && differences == 0; from += kLook) {
        const size_t end = std::min(from + kLook, pairs);
        for (size_t i = from; i < end; ++i) {
            differences |= static_cast<uint32_t>(samples[i * 2] ^ samples[i * 2 + 1]);
        }
    }
    return differences == 0;
}

} // namespace

void AudioResampler::Init(double sourceRateValue, uint32_t outputRateValue, int32_t qualityValue) {
    outputRate = std::max(outputRateValue, 1U);
    const double lowest = outputRate / kLargestRatio;
    sourceRate =
        sourceRateValue >= lowest ? std::min(sourceRateValue, outputRate * kLargestRatio) : lowest;
    quality = qualityValue == 1 || qualityValue == 2 ? qualityValue : 0;
    step = static_cast<float>(sourceRate / outputRate);
    output.assign(static_cast<size_t>(outputRate / 40) * 2, 0);
    outputTicks = static_cast<uint64_t>(std::llround(sourceRate * kTicks));
    middleTicks = static_cast<uint64_t>(std::llround(outputRate * kTicks));
    if (quality != 0) {
        MakeRoom();
    }
    Reset();
}

void AudioResampler::MakeRoom() {
    filter = ResamplerFilterFor(quality, sourceRate, outputRate);
    loops = &ResamplerLoops();
    const size_t stride = filter->stride;
    middleTicks *= stride;
    outputMiddles = outputTicks / middleTicks;
    outputRest = outputTicks % middleTicks;
    rowsATick = filter->rows / static_cast<double>(middleTicks);

    const size_t wholeMiddles = size_t{2} * (filter->half + filter->reach / stride + 2);
    history.assign((stride * wholeMiddles + stride - 1) * 2, 0);
    chunk = std::max(kChunk, history.size() / 2);
    const size_t sourceRoom = chunk + filter->first.size() + stride;
    const size_t middleRoom = size_t{2} * filter->half + chunk / stride + 2;
    for (SIDE& side : sides) {
        side.source.assign(stride > 1 ? sourceRoom : 0, 0.0F);
        side.middle.assign(middleRoom, 0.0F);
    }
}

void AudioResampler::Reset() {
    outputCount = 0;
    phase = 0.0F;
    if (quality == 0) {
        return;
    }
    for (SIDE& side : sides) {
        std::fill(side.source.begin(), side.source.end(), 0.0F);
        std::fill(side.middle.begin(), side.middle.end(), 0.0F);
    }
    std::fill(history.begin(), history.end(), int16_t{0});
    // As after any number of silent pairs.
    const size_t pending = filter->reach / filter->stride;
    sourceHeld = filter->reach + pending * filter->stride;
    middleHeld = filter->half - 1;
    place = middleHeld + pending;
    ticks = 0;
    strayPairs = 0;
    monoPairs = history.size() / 2;
}

int32_t AudioResampler::Push(const int16_t* samples, int32_t count) {
    const int32_t pairs = std::max(count, 0) / 2;
    const int32_t before = outputCount;
    if (quality == 0) {
        PickNearest(samples, pairs, 2);
        return outputCount - before;
    }
    for (auto left = static_cast<size_t>(pairs); left != 0;) {
        const size_t taken = std::min(left, chunk);
        Filter(samples, taken);
        samples += taken * 2;
        left -= taken;
    }
    return outputCount - before;
}

int32_t AudioResampler::PushRun(int16_t left, int16_t right, int32_t pairs) {
    const int32_t before = outputCount;
    auto toDo = static_cast<size_t>(std::max(pairs, 0));
    if (quality == 0) {
        const int16_t pair[2] = {left, right};
        PickNearest(pair, std::max(pairs, 0), 0);
        return outputCount - before;
    }
    std::array<int16_t, kRunPairs * 2> block;
    for (size_t i = 0; i < block.size(); i += 2) {
        block[i] = left;
        block[i + 1] = right;
    }
    // Until the history holds nothing else.
    for (size_t toFill = std::min(toDo, history.size() / 2); toFill != 0;) {
        const size_t taken = std::min(toFill, kRunPairs);
        Filter(block.data(), taken);
        toFill -= taken;
        toDo -= taken;
    }
    if (toDo != 0) {
        RunConstant(left, right, toDo);
    }
    return outputCount - before;
}

// The phase advances while the output is full, so that time is kept.
void AudioResampler::PickNearest(const int16_t* samples, int32_t pairs, ptrdiff_t valuesAPair) {
    const auto room = static_cast<int32_t>(output.size());
    for (int32_t done = 0; done < pairs; done += kPickFrames) {
        const int16_t* const piece = samples + done * valuesAPair;
        const auto limit = static_cast<float>(std::min(kPickFrames, pairs - done));
        while (phase < limit) {
            if (outputCount + 2 <= room) {
                const int16_t* const pair = piece + static_cast<ptrdiff_t>(phase) * valuesAPair;
                const auto out = static_cast<size_t>(outputCount);
                output[out] = pair[0];
                output[out + 1] = pair[1];
                outputCount += 2;
            }
            phase += step;
        }
        phase -= limit;
    }
}

// At most `chunk` pairs. While both sides are the same, as they are with most chips, only one is computed.
void AudioResampler::Filter(const int16_t* samples, size_t pairs) {
    const bool isMono = Remember(samples, pairs);
    TakeIn(samples, pairs, isMono);
    while (place + filter->half < middleHeld) {
        if (outputCount + 2 <= static_cast<int32_t>(output.size())) {
            MakeOutput(isMono);
        }
        Advance();
    }
    DropMiddles(isMono);
}

// Adds the pairs to the history. Returns true if both sides are the same, in them and in all of the history.
bool AudioResampler::Remember(const int16_t* samples, size_t pairs) {
    const size_t span = history.size() / 2;
    const size_t kept = std::min(pairs, span);
    std::copy(history.begin() + static_cast<ptrdiff_t>(kept * 2), history.end(), history.begin());
    std::copy_n(samples + (pairs - kept) * 2, kept * 2,
                history.end() - static_cast<ptrdiff_t>(kept * 2));
    strayPairs = static_cast<uint32_t>((strayPairs + pairs) % filter->stride);

    const bool same = SidesAreTheSame(samples, pairs);
    const bool isMono = same && monoPairs >= span;
    monoPairs = same ? std::min(monoPairs + pairs, span) : 0;
    return isMono;
}

// Filters source pairs to middle pairs at the end of `middle`.
void AudioResampler::TakeIn(const int16_t* samples, size_t pairs, bool isMono) {
    SIDE& left = sides[0];
    SIDE& right = sides[1];
    if (filter->stride == 1) {
        loops->split(samples, pairs, left.middle.data() + middleHeld,
                     right.middle.data() + middleHeld);
        middleHeld += pairs;
        return;
    }
    loops->split(samples, pairs, left.source.data() + sourceHeld, right.source.data() + sourceHeld);
    sourceHeld += pairs;
    const size_t made = MiddlesReady();
    const auto decimate = [&](SIDE& side) {
        loops->decimate(filter->first.data(), filter->first.size(), filter->stride,
                        side.source.data(), made, side.middle.data() + middleHeld);
    };
    decimate(left);
    if (!isMono) {
        decimate(right);
    }
    const size_t dropped = made * filter->stride;
    for (SIDE& side : sides) {
        std::copy(side.source.data() + dropped, side.source.data() + sourceHeld,
                  side.source.data());
    }
    sourceHeld -= dropped;
    middleHeld += made;
}

// The middle pairs whose source pairs are complete.
size_t AudioResampler::MiddlesReady() const {
    const size_t window = size_t{2} * filter->reach + 1;
    return sourceHeld >= window ? (sourceHeld - window) / filter->stride + 1 : 0;
}

void AudioResampler::MakeOutput(bool isMono) {
    const double at = static_cast<double>(ticks) * rowsATick;
    const auto row = std::min(static_cast<uint32_t>(at), filter->rows - 1);
    const auto between = static_cast<float>(at - row);
    const size_t width = size_t{2} * filter->half;
    const float* const taps = filter->taps.data() + row * width;
    const size_t oldest = place + 1 - filter->half;
    const float* const left = sides[0].middle.data() + oldest;
    if (isMono) {
        const float value = loops->interpolateOne(taps, width, between, left);
        Put(value, value);
    } else {
        const RESAMPLER_PAIR pair =
            loops->interpolate(taps, width, between, left, sides[1].middle.data() + oldest);
        Put(pair.left, pair.right);
    }
}

void AudioResampler::Put(float left, float right) {
    const auto out = static_cast<size_t>(outputCount);
    output[out] = RoundToSample(left);
    output[out + 1] = RoundToSample(right);
    outputCount += 2;
}

void AudioResampler::Advance() {
    place += outputMiddles;
    ticks += outputRest;
    if (ticks >= middleTicks) {
        ticks -= middleTicks;
        ++place;
    }
}

// Drops the middle pairs that no later output uses. Those of the next one are held already, as outputs are closer
// together than the filter is long.
void AudioResampler::DropMiddles(bool isMono) {
    const size_t dropped = place + 1 - filter->half;
    middleHeld -= dropped;
    place -= dropped;
    const float* const left = sides[0].middle.data() + dropped;
    const float* const right = sides[1].middle.data() + dropped;
    std::copy(left, left + middleHeld, sides[0].middle.begin());
    if (isMono) {
        std::copy_n(sides[0].middle.begin(), middleHeld, sides[1].middle.begin());
    } else {
        std::copy(right, right + middleHeld, sides[1].middle.begin());
    }
}

// For a constant level that fills the history: the filters pass it unchanged.
void AudioResampler::RunConstant(int16_t left, int16_t right, size_t pairs) {
    const size_t stride = filter->stride;
    strayPairs = static_cast<uint32_t>((strayPairs + pairs) % stride);
    size_t made = pairs;
    if (stride > 1) {
        sourceHeld += pairs;
        made = MiddlesReady();
        sourceHeld -= made * stride;
    }
    middleHeld += made;
    while (place + filter->half < middleHeld) {
        if (outputCount + 2 <= static_cast<int32_t>(output.size())) {
            Put(left, right);
        }
        Advance();
    }
    const size_t dropped = place + 1 - filter->half;
    middleHeld -= dropped;
    place -= dropped;
    for (SIDE& side : sides) {
        const float level = side.middle[0];
        std::fill_n(side.middle.begin(), middleHeld, level);
        if (stride > 1) {
            std::fill(side.source.begin(), side.source.end(), side.source[0]);
        }
    }
}

void AudioResampler::Consume(int32_t count) {
    const int32_t taken = std::clamp(count, 0, outputCount);
    std::copy(output.begin() + taken, output.begin() + outputCount, output.begin());
    outputCount -= taken;
}

std::span<const int16_t> AudioResampler::Output() const {
    return {output.data(), static_cast<size_t>(outputCount)};
}
