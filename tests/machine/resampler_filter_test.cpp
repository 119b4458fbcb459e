// What the filters of a resampler let through, against its promises, and a comparison of the whole with
// libsamplerate.
#include "machine/resampler.h"
#include "machine/resampler_filter.h"

#include "support/resampler_figures.h"
#include <gtest/gtest.h>
#include <samplerate.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr double kPi = std::numbers::pi;

struct RATES {
    double source;
    double output;
};
constexpr RATES kRates[] = {
    {223721.5625, 44100.0 },
    {223721.625,  48000.0 },
    {223721.0,    22050.0 },
    {223721.0,    96000.0 },
    {53267.0,     44100.0 },
    {49715.9,     192000.0}
};

} // namespace

// 18 kHz of 44,100, and as much of other rates.
TEST(ResamplerFilter, IsFlatInTheBandAndCleanBeyond) {
    for (const RATES& rates : kRates) {
        const RESAMPLER_FIGURES good = MeasureFilter(1, rates.source, rates.output);
        EXPECT_LT(good.ripple, 0.1) << rates.source << " to " << rates.output;
        EXPECT_LT(good.images, -96.0) << rates.source << " to " << rates.output;
        EXPECT_LT(good.aliases, -96.0) << rates.source << " to " << rates.output;
        const RESAMPLER_FIGURES best = MeasureFilter(2, rates.source, rates.output);
        EXPECT_LT(best.ripple, 0.1) << rates.source << " to " << rates.output;
        EXPECT_LT(best.images, -110.0) << rates.source << " to " << rates.output;
        EXPECT_LT(best.aliases, -110.0) << rates.source << " to " << rates.output;
    }
}

// The nearest earlier sample lies up to one period back, evenly spread: as images, 1 / sqrt(12) of the tone's
// phase within a period.
TEST(ResamplerFilter, TheNearestSampleHasTheImagesOfItsFormula) {
    const double phase = 2.0 * kPi * 18000.0 / 223721.5625;
    const RESAMPLER_FIGURES nearest = MeasureFilter(0, 223721.5625, 44100.0);
    EXPECT_NEAR(nearest.images, 20.0 * std::log10(phase / std::sqrt(12.0)), 0.2);
    EXPECT_NEAR(nearest.aliases, 0.0, 1.0e-6) << "nothing is filtered";
}

// Rounding to 16 bits alone leaves 97 dB of this tone.
TEST(ResamplerFilter, LeavesAToneCleanToTheLastBit) {
    EXPECT_GT(MeasureSignalToNoise(1, 223721.5625, 44100), 92.0);
    EXPECT_GT(MeasureSignalToNoise(2, 223721.5625, 44100), 95.0);
    const double phase = 2.0 * kPi * kFigureTone / 223721.5625;
    EXPECT_NEAR(MeasureSignalToNoise(0, 223721.5625, 44100),
                -20.0 * std::log10(phase / std::sqrt(12.0)), 0.5);
}

TEST(ResamplerFilter, DelaysLessThanAMillisecond) {
    EXPECT_LT(MeasureDelay(0, 223721.5625, 44100), 2.0 / 223721.5625);
    for (const int32_t quality : {1, 2}) {
        const double delay = MeasureDelay(quality, 223721.5625, 44100);
        EXPECT_LT(delay, 0.001);
        EXPECT_GT(delay, 0.0005) << "a filter that is this steep needs it";
    }
}

TEST(ResamplerFilter, IsSymmetricAndKeepsALevel) {
    for (const RATES& rates : kRates) {
        const auto filter = ResamplerFilterFor(1, rates.source, rates.output);
        const size_t width = size_t{2} * filter->half;
        for (uint32_t row = 0; row <= filter->rows; ++row) {
            double sum = 0.0;
            for (size_t i = 0; i < width; ++i) {
                const float tap = filter->taps[row * width + i];
                sum += tap;
                EXPECT_NEAR(tap, filter->taps[(filter->rows - row) * width + width - 1 - i], 1e-6);
            }
            EXPECT_NEAR(sum, 1.0, 1.0e-5);
        }
    }
}

TEST(ResamplerFilter, IsSharedByEqualRatesAlone) {
    const auto one = ResamplerFilterFor(1, 50000.0, 44100.0);
    EXPECT_EQ(ResamplerFilterFor(1, 50000.0, 44100.0), one);
    EXPECT_NE(ResamplerFilterFor(2, 50000.0, 44100.0), one);
    EXPECT_NE(ResamplerFilterFor(1, 50001.0, 44100.0), one);
}

// Tones below 16 kHz, which both must resample alike and without a shift: the first output is at the
// first input.
TEST(ResamplerFilter, AgreesWithLibsamplerateBelow16Kilohertz) {
    for (const double source : {223721.5625, 53267.0}) {
        constexpr double kTones[] = {100.0, 997.0, 4211.0, 9973.0, 15800.0};
        const auto count = static_cast<size_t>(source / 2.0);
        std::vector<int16_t> samples(count * 2);
        std::vector<float> floats(count * 2);
        for (size_t i = 0; i < count; ++i) {
            double sum = 0.0;
            for (const double tone : kTones) {
                sum += 6000.0 * std::sin(2.0 * kPi * tone * static_cast<double>(i) / source);
            }
            samples[i * 2] = static_cast<int16_t>(std::lrint(sum));
            samples[i * 2 + 1] = static_cast<int16_t>(-samples[i * 2]);
            floats[i * 2] = samples[i * 2];
            floats[i * 2 + 1] = samples[i * 2 + 1];
        }
        std::vector<float> reference(50000);
        SRC_DATA data{};
        data.data_in = floats.data();
        data.data_out = reference.data();
        data.input_frames = static_cast<long>(count);
        data.output_frames = 25000;
        data.src_ratio = 44100.0 / source;
        ASSERT_EQ(src_simple(&data, SRC_SINC_BEST_QUALITY, 2), 0);
        for (const int32_t quality : {1, 2}) {
            AudioResampler resampler;
            resampler.Init(source, 44100, quality);
            std::vector<int16_t> made;
            for (size_t at = 0; at < count; at += 800) {
                resampler.Push(samples.data() + at * 2,
                               static_cast<int32_t>(std::min<size_t>(800, count - at) * 2));
                made.insert(made.end(), resampler.Output().begin(), resampler.Output().end());
                resampler.Consume(1 << 20);
            }
            double power = 0.0;
            double apart = 0.0;
            for (size_t i = 4000; i < 40000; ++i) {
                const double wanted = reference[i];
                power += wanted * wanted;
                apart += (made[i] - wanted) * (made[i] - wanted);
            }
            EXPECT_LT(10.0 * std::log10(apart / power), -80.0) << source << ' ' << quality;
        }
    }
}
