#include "machine/band_splitter.h"

#include "support/spectrum.h"
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace {

struct SPLITS {
    double rate;
    double lowHz;
    double highHz;
};

// Response in dB at `frequency`, measured over a second of a sine after the filters have settled.
double Measure(const SPLITS& splits, const std::array<double, 3>& gains, double frequency) {
    BandSplitter splitter;
    splitter.SetCrossovers(splits.rate, splits.lowHz, splits.highHz);
    splitter.gains = gains;
    const auto second = static_cast<size_t>(splits.rate);
    std::vector<double> out(second);
    for (size_t i = 0; i < second * 2; ++i) {
        const double angle =
            2.0 * std::numbers::pi * frequency * static_cast<double>(i) / splits.rate;
        const double sample = splitter.Process(10000.0 * std::sin(angle));
        if (i >= second) {
            out[i - second] = sample;
        }
    }
    return ToDecibels(MeasureTone(out, frequency, splits.rate).amplitude / 10000.0);
}

// The analogue fourth-order pair at the normalised frequency w = tan(pi f / fs) / tan(pi fc / fs), to
// which the bilinear transform takes a sampled one: two Butterworth filters of second order in a row.
struct PAIR {
    std::complex<double> low;
    std::complex<double> high;
};

PAIR Analogue(double frequency, double split, double rate) {
    const double w =
        std::tan(std::numbers::pi * frequency / rate) / std::tan(std::numbers::pi * split / rate);
    const std::complex<double> s(0.0, w);
    const std::complex<double> butterworth = s * s + std::numbers::sqrt2 * s + 1.0;
    return {1.0 / (butterworth * butterworth), s * s * s * s / (butterworth * butterworth)};
}

double Theory(const SPLITS& splits, const std::array<double, 3>& gains, double frequency) {
    const PAIR first = Analogue(frequency, splits.lowHz, splits.rate);
    const PAIR second = Analogue(frequency, splits.highHz, splits.rate);
    return ToDecibels(std::abs(gains[0] * first.low +
                               first.high * (gains[1] * second.low + gains[2] * second.high)));
}

constexpr SPLITS kBoost{44100.0, 600.0, 5000.0};

// Whole Hz, so that a second holds whole periods.
constexpr std::array kFrequencies{20.0,   50.0,   100.0,   200.0,   400.0,   600.0,  700.0,
                                  789.0,  900.0,  1200.0,  1700.0,  2500.0,  4000.0, 5000.0,
                                  6000.0, 8000.0, 10000.0, 14000.0, 18000.0, 20000.0};

} // namespace

TEST(BandSplitter, EachBandIsSixDecibelsDownAtItsSplits) {
    // A pair of identical Butterworth filters in a row: 2 x 3.01 dB at the split. The other crossover
    // adds almost nothing there.
    const double down = 2.0 * ToDecibels(std::sqrt(0.5));
    EXPECT_NEAR(Measure(kBoost, {1, 0, 0}, 600.0), down, 0.01);
    EXPECT_NEAR(Measure(kBoost, {0, 1, 0}, 600.0), down, 0.01);
    EXPECT_NEAR(Measure(kBoost, {0, 1, 0}, 5000.0), down, 0.01);
    EXPECT_NEAR(Measure(kBoost, {0, 0, 1}, 5000.0), down, 0.01);
}

TEST(BandSplitter, EveryBandFollowsTheAnaloguePairs) {
    for (const SPLITS& splits : {
             kBoost, SPLITS{22050.0, 600.0, 5000.0 },
              SPLITS{49716.0, 800.0, 15000.0}
    }) {
        for (const std::array<double, 3>& gains : {
                 std::array<double, 3>{1,   0, 0},
                  {0,   1, 0},
                  {0,   0, 1},
                  {1.5, 1, 0},
                  {1,   1, 1}
        }) {
            for (const double frequency : kFrequencies) {
                const double theory = Theory(splits, gains, frequency);
                // Far down in a stop band the input's own rounding shows.
                if (frequency < splits.rate / 2.0 && theory > -100.0) {
                    EXPECT_NEAR(Measure(splits, gains, frequency), theory, 0.01)
                        << frequency << " Hz at " << splits.rate;
                }
            }
        }
    }
}

TEST(BandSplitter, TheSumIsFlatButForAShallowDipAboveTheLowerSplit) {
    // The low band has not gone through the second crossover's phase shift, so the three cannot sum
    // flat. Between 600 and 5,000 Hz theory predicts a dip of 0.152 dB at 789 Hz for this structure,
    // and under a tenth of a decibel below 570 and above 1,290 Hz.
    double lowest = 0.0;
    for (const double frequency : kFrequencies) {
        const double sum = Measure(kBoost, {1, 1, 1}, frequency);
        EXPECT_LT(sum, 0.01) << frequency;
        EXPECT_GT(sum, frequency > 570.0 && frequency < 1290.0 ? -0.16 : -0.1) << frequency;
        lowest = std::min(lowest, sum);
    }
    EXPECT_NEAR(lowest, -0.152, 0.005);
}

TEST(BandSplitter, OneCrossoverSumsFlat) {
    // With the upper split far away the mid band alone is left above the lower one.
    const SPLITS wide{44100.0, 600.0, 22000.0};
    for (const double frequency : {20.0, 300.0, 600.0, 900.0, 2000.0, 5000.0, 10000.0}) {
        EXPECT_NEAR(Measure(wide, {1, 1, 1}, frequency), 0.0, 0.01) << frequency;
    }
}

TEST(BandSplitter, GainsWeighTheBands) {
    // Well inside a band the gain of that band is the response.
    EXPECT_NEAR(Measure(kBoost, {4.0, 1.0, 1.0}, 20.0), ToDecibels(4.0), 0.01);
    EXPECT_NEAR(Measure(kBoost, {1.0, 1.0, 0.5}, 20000.0), ToDecibels(0.5), 0.01);
    EXPECT_LT(Measure(kBoost, {0.0, 1.0, 1.0}, 50.0), -80.0);
}

TEST(BandSplitter, HistoryLeavesTheBiasOut) {
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 600.0, 5000.0);
    (void)splitter.Process(0.0);
    EXPECT_EQ(splitter.lowCrossover.inputs[0], 0.0);
    EXPECT_NE(splitter.lowCrossover.lowOutputs[0], 0.0);
    EXPECT_EQ(splitter.highCrossover.inputs[0], splitter.lowCrossover.highOutputs[0]);
    (void)splitter.Process(123.0);
    EXPECT_EQ(splitter.lowCrossover.inputs[0], 123.0);
    EXPECT_EQ(splitter.lowCrossover.inputs[1], 0.0);
}

TEST(BandSplitter, BiasHasItsExactValue) {
    const BandSplitter splitter;
    EXPECT_EQ(splitter.denormalBias, 1.0 / 4294967295.0);
    EXPECT_EQ(splitter.highDenormalBias, splitter.denormalBias);
}

TEST(BandSplitter, SilenceNeverDecaysIntoDenormals) {
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 600.0, 5000.0);
    (void)splitter.Process(32767.0);
    for (int i = 0; i < 200000; ++i) {
        (void)splitter.Process(0.0);
    }
    for (const Crossover& crossover : {splitter.lowCrossover, splitter.highCrossover}) {
        for (const double value : crossover.lowOutputs) {
            EXPECT_NE(std::fpclassify(value), FP_SUBNORMAL);
        }
        for (const double value : crossover.highOutputs) {
            EXPECT_NE(std::fpclassify(value), FP_SUBNORMAL);
        }
    }
    // What the bias leaves of silence is the first high-pass's answer to a constant that its history
    // does not know: tan(pi fc / fs) to the power of -4, a sixteenth of that, 18,700 biases. The second
    // crossover's part is far smaller.
    const double tangent = std::tan(std::numbers::pi * 600.0 / 44100.0);
    const double rest = splitter.denormalBias / std::pow(tangent, 4.0) / 16.0;
    EXPECT_NEAR(splitter.Process(0.0), rest, rest * 0.05);
    EXPECT_LT(rest, 1.0e-5);
}

TEST(BandSplitter, SettingCrossoversClearsTheHistory) {
    BandSplitter used;
    used.SetCrossovers(44100.0, 600.0, 5000.0);
    for (int i = 0; i < 100; ++i) {
        (void)used.Process(20000.0);
    }
    used.SetCrossovers(44100.0, 600.0, 5000.0);
    BandSplitter fresh;
    fresh.SetCrossovers(44100.0, 600.0, 5000.0);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(used.Process(i * 10.0), fresh.Process(i * 10.0));
    }
}

TEST(BandSplitter, ImpossibleSplitsStayStable) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double split : {0.0, -5.0, 22050.0, 30000.0, 1.0e9, none}) {
        BandSplitter splitter;
        splitter.SetCrossovers(44100.0, split, split);
        for (int i = 0; i < 44100; ++i) {
            ASSERT_LT(std::fabs(splitter.Process(i % 50 < 25 ? 32767.0 : -32768.0)), 1.0e6)
                << split;
        }
    }
}
