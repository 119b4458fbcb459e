#include "machine/resampler.h"

#include "base/audio_rate.h"

#include "settings/settings.h"
#include <samplerate.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLargestRatio = 256.0; // libsamplerate's own limit, either way
constexpr double kBufferSeconds = 0.025;
constexpr long kConverterFrames = 8192; // output of one call at most

// The cut-off filter: what is under the lower split is lifted by half, what is over the upper one is
// dropped.
constexpr std::array<double, 3> kCutoffGains{1.5, 1.0, 0.0};

// Nearest picks are counted in single precision. A piece is short enough that the smallest step still
// moves the phase, and longer than anything a machine pushes at once.
constexpr int32_t kPickFrames = 32768;

// Sixteen bits with no clamp: a sum beyond them comes out wrapped.
int16_t TruncateAndWrap(double value) {
    if (!(std::fabs(value) < 9.0e18)) {
        return 0;
    }
    return static_cast<int16_t>(
        static_cast<uint16_t>(static_cast<uint64_t>(static_cast<int64_t>(value))));
}

} // namespace

void AudioResampler::FREE_CONVERTER::operator()(SRC_STATE_tag* state) const {
    src_delete(state);
}

AudioResampler::AudioResampler() = default;
AudioResampler::~AudioResampler() = default;

void AudioResampler::Init(double sourceRateValue) {
    const double appRate = AudioRate();
    const double lowest = appRate / kLargestRatio;
    sourceRate =
        sourceRateValue >= lowest ? std::min(sourceRateValue, appRate * kLargestRatio) : lowest;
    ratio = appRate / sourceRate;
    step = static_cast<float>(sourceRate / appRate);

    const size_t outputSize = static_cast<size_t>(AudioRate() / 40) * 2;
    output.assign(outputSize, 0);
    floatOut.assign(outputSize, 0.0f);
    const auto inputSize = static_cast<size_t>(sourceRate * kBufferSeconds * 2.0);
    floatIn.assign(std::max<size_t>(inputSize, 2), 0.0f);

    const SettingsStore& settings = Settings();
    cutoffEnabled = settings.GetBool(L"emu_audiocutoff_enabled");
    cutoffLow = settings.GetInt(L"emu_audiocutoff_low");
    cutoffHigh = settings.GetInt(L"emu_audiocutoff_high");

    quality = settings.GetInt(L"audio_app_quality");
    if (quality < 0 || quality > 2) {
        quality = 0;
    }
    converter.reset();
    if (quality != 0) {
        int error = 0;
        converter.reset(
            src_new(quality == 1 ? SRC_SINC_FASTEST : SRC_SINC_MEDIUM_QUALITY, 2, &error));
        if (!converter) {
            quality = 0;
        }
    }
    if (converter) {
        trail.Init(ratio, quality);
    }
    Reset();
}

void AudioResampler::Reset() {
    outputCount = 0;
    pendingCount = 0;
    phase = 0.0f;
    if (converter) {
        src_reset(converter.get());
        trail.Reset();
    }
    BuildFilters();
}

void AudioResampler::BuildFilters() {
    const double rate = std::trunc(sourceRate);
    for (BandSplitter& filter : filters) {
        filter.SetCrossovers(rate, cutoffLow, cutoffHigh);
        filter.gains = kCutoffGains;
    }
}

int32_t AudioResampler::Push(int16_t* samples, int32_t count) {
    const int32_t frames = std::max(count, 0) / 2;
    if (cutoffEnabled) {
        CutOff(samples, frames);
    }
    const int32_t before = outputCount;
    if (quality != 0) {
        ConvertAll(samples, frames);
    } else {
        for (int32_t done = 0; done < frames; done += kPickFrames) {
            PickNearest(samples + static_cast<ptrdiff_t>(done) * 2,
                        std::min(kPickFrames, frames - done));
        }
    }
    return outputCount - before;
}

void AudioResampler::CutOff(int16_t* samples, int32_t frames) {
    for (ptrdiff_t i = 0; i < frames; ++i) {
        samples[i * 2] = TruncateAndWrap(filters[0].Process(samples[i * 2]));
        samples[i * 2 + 1] = TruncateAndWrap(filters[1].Process(samples[i * 2 + 1]));
    }
}

// The phase runs on while the output is full, so that time is kept.
void AudioResampler::PickNearest(const int16_t* samples, int32_t frames) {
    const auto limit = static_cast<float>(frames);
    const auto room = static_cast<int32_t>(output.size());
    while (phase < limit) {
        if (outputCount < room) {
            const auto frame = static_cast<ptrdiff_t>(phase);
            const auto out = static_cast<size_t>(outputCount);
            output[out] = samples[frame * 2];
            output[out + 1] = samples[frame * 2 + 1];
            outputCount += 2;
        }
        phase += step;
    }
    phase -= limit;
}

// A push that fits is one call of the converter; a longer one goes through in pieces.
void AudioResampler::ConvertAll(const int16_t* samples, int32_t frames) {
    const auto room = static_cast<int32_t>(floatIn.size() / 2) * 2;
    int32_t left = frames * 2;
    do {
        const int32_t taken = std::min(left, room - pendingCount);
        src_short_to_float_array(samples, floatIn.data() + pendingCount, taken);
        pendingCount += taken;
        samples += taken;
        left -= taken;
        if (!ConvertPending()) {
            return;
        }
    } while (left > 0);
}

// One call of the converter on all that is pending. False when it came to nothing.
bool AudioResampler::ConvertPending() {
    const auto room = static_cast<long>(output.size() - static_cast<size_t>(outputCount)) / 2;
    if (room <= 0) {
        return false;
    }
    SRC_DATA data{};
    data.data_in = floatIn.data();
    data.data_out = floatOut.data();
    data.input_frames = pendingCount / 2;
    data.output_frames = std::min(kConverterFrames, room);
    data.end_of_input = 0;
    data.src_ratio = ratio;
    if (src_process(converter.get(), &data) != 0) {
        pendingCount = 0;
        return false;
    }
    const auto generated = static_cast<int32_t>(data.output_frames_gen) * 2;
    src_float_to_short_array(floatOut.data(), output.data() + outputCount, generated);
    outputCount += generated;

    const auto used = static_cast<int32_t>(data.input_frames_used) * 2;
    trail.Follow(floatIn.data(), static_cast<size_t>(data.input_frames_used),
                 static_cast<size_t>(data.output_frames_gen));
    std::copy(floatIn.begin() + used, floatIn.begin() + pendingCount, floatIn.begin());
    pendingCount -= used;
    return generated > 0 || used > 0;
}

void AudioResampler::Consume(int32_t count) {
    const int32_t taken = std::clamp(count, 0, outputCount);
    std::copy(output.begin() + taken, output.begin() + outputCount, output.begin());
    outputCount -= taken;
}

std::span<const int16_t> AudioResampler::Output() const {
    return {output.data(), static_cast<size_t>(outputCount)};
}
