// What the filters of a resampler let through, computed from their taps in double precision, and a
// comparison of the whole with libsamplerate.
#include "machine/resampler.h"
#include "machine/resampler_filter.h"

#include <gtest/gtest.h>
#include <samplerate.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>
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

double Decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

double FirstGain(const RESAMPLER_FILTER& filter, double turns) {
    if (filter.stride == 1) {
        return 1.0;
    }
    double gain = 0.0;
    for (size_t i = 0; i <= size_t{2} * filter.reach; ++i) {
        const double at = static_cast<double>(i) - filter.reach;
        gain += static_cast<double>(filter.first[i]) * std::cos(2.0 * kPi * turns * at);
    }
    return std::fabs(gain);
}

// What the second step makes of a tone of `turns` cycles a middle pair.
struct SECOND {
    double gain = 0.0;     // of the tone itself
    double spurious = 0.0; // of everything else
    double most = 0.0;     // the largest gain between two middle pairs
};
SECOND SecondGain(const RESAMPLER_FILTER& filter, double turns) {
    constexpr int kPlaces = 257; // not a multiple of the rows
    const size_t width = size_t{2} * filter.half;
    std::complex<double> mean;
    double power = 0.0;
    SECOND result;
    for (int i = 0; i < kPlaces; ++i) {
        const double place = (i + 0.5) / kPlaces;
        const double row = place * filter.rows;
        const float* const taps = filter.taps.data() + static_cast<size_t>(row) * width;
        const double share = row - std::floor(row);
        std::complex<double> gain;
        for (size_t tap = 0; tap < width; ++tap) {
            const double here = taps[tap];
            const double value = here + (static_cast<double>(taps[tap + width]) - here) * share;
            const double at = static_cast<double>(tap) - (filter.half - 1.0) - place;
            gain += value * std::polar(1.0, 2.0 * kPi * turns * at);
        }
        mean += gain / static_cast<double>(kPlaces);
        power += std::norm(gain) / kPlaces;
        result.most = std::max(result.most, std::abs(gain));
    }
    result.gain = std::abs(mean);
    result.spurious = std::sqrt(std::max(0.0, power - std::norm(mean)));
    return result;
}

struct MEASURED {
    double ripple = 0.0;  // dB, in the pass band
    double images = 0.0;  // dB
    double aliases = 0.0; // dB
};

MEASURED Measure(int32_t quality, const RATES& rates) {
    const auto filter = ResamplerFilterFor(quality, rates.source, rates.output);
    const double lower = std::min(rates.source, rates.output);
    MEASURED result;
    double images = 1.0e-12;
    double aliases = 1.0e-12;
    for (double hertz = 0.0; hertz <= rates.source / 2.0; hertz += lower / 441.0) {
        const double first = FirstGain(*filter, hertz / rates.source);
        const SECOND second = SecondGain(*filter, hertz * filter->stride / rates.source);
        if (hertz <= lower * 18000.0 / 44100.0 + 1.0e-6) {
            result.ripple = std::max(result.ripple, std::fabs(Decibels(first * second.gain)));
            images = std::max(images, first * second.spurious);
        } else if (hertz >= lower / 2.0) {
            aliases = std::max(aliases, first * second.most);
        }
    }
    result.images = Decibels(images);
    result.aliases = Decibels(aliases);
    return result;
}

} // namespace

// 18 kHz of 44,100, and as much of other rates.
TEST(ResamplerFilter, IsFlatInTheBandAndCleanBeyond) {
    for (const RATES& rates : kRates) {
        const MEASURED good = Measure(1, rates);
        EXPECT_LT(good.ripple, 0.1) << rates.source << " to " << rates.output;
        EXPECT_LT(good.images, -96.0) << rates.source << " to " << rates.output;
        EXPECT_LT(good.aliases, -96.0) << rates.source << " to " << rates.output;
        const MEASURED best = Measure(2, rates);
        EXPECT_LT(best.ripple, 0.1) << rates.source << " to " << rates.output;
        EXPECT_LT(best.images, -110.0) << rates.source << " to " << rates.output;
        EXPECT_LT(best.aliases, -110.0) << rates.source << " to " << rates.output;
    }
}

// No output waits for more than a millisecond of source pairs.
TEST(ResamplerFilter, DelaysLessThanAMillisecond) {
    for (const int32_t quality : {1, 2}) {
        const auto filter = ResamplerFilterFor(quality, 223721.5625, 44100.0);
        EXPECT_LT((filter->half * filter->stride + filter->reach) / 223721.5625, 0.001);
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
