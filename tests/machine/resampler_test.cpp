#include "base/audio_rate.h"
#include "machine/resampler.h"

#include "support/allocation_counter.h"
#include "support/spectrum.h"
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr double kPsgRate = 223721.0;
constexpr double kAmplitude = 32700.0; // almost full scale

int32_t gQuality = 1; // of the resamplers that a test makes

class Resampler : public testing::Test {
protected:
    void SetUp() override {
        gQuality = 1;
        SetAudioRate(44100);
    }
    void TearDown() override { SetAudioRate(44100); }
};

std::vector<int16_t> Frames(std::initializer_list<int> left) {
    std::vector<int16_t> samples;
    for (const int value : left) {
        samples.push_back(static_cast<int16_t>(value));
        samples.push_back(static_cast<int16_t>(-value));
    }
    return samples;
}

std::vector<int> LeftOf(const AudioResampler& resampler) {
    std::vector<int> left;
    for (size_t i = 0; i < resampler.Output().size(); i += 2) {
        left.push_back(resampler.Output()[i]);
    }
    return left;
}

// A second of left output samples after a settling time, from a sine pushed a sixtieth at a time.
std::vector<double> Convert(double sourceRate, double frequency, double amplitude) {
    AudioResampler resampler;
    resampler.Init(sourceRate, AudioRate(), gQuality);
    const size_t outRate = AudioRate();
    const size_t settle = outRate / 5;
    std::vector<double> out;
    const auto block = static_cast<size_t>(sourceRate / 60.0);
    std::vector<int16_t> samples(block * 2);
    for (size_t at = 0; out.size() < settle + outRate; at += block) {
        for (size_t i = 0; i < block; ++i) {
            const double angle =
                2.0 * std::numbers::pi * frequency * static_cast<double>(at + i) / sourceRate;
            const auto sample = static_cast<int16_t>(std::lrint(amplitude * std::sin(angle)));
            samples[i * 2] = sample;
            samples[i * 2 + 1] = sample;
        }
        const int32_t added = resampler.Push(samples.data(), static_cast<int32_t>(samples.size()));
        EXPECT_EQ(static_cast<size_t>(added), resampler.Output().size());
        for (size_t i = 0; i < resampler.Output().size(); i += 2) {
            out.push_back(resampler.Output()[i]);
            EXPECT_EQ(resampler.Output()[i], resampler.Output()[i + 1]);
        }
        resampler.Consume(added);
    }
    out.erase(out.begin(), out.begin() + static_cast<ptrdiff_t>(settle));
    out.resize(outRate);
    return out;
}

int RisingCrossings(const std::vector<double>& samples) {
    int crossings = 0;
    for (size_t i = 1; i < samples.size(); ++i) {
        crossings += samples[i - 1] < 0.0 && samples[i] >= 0.0 ? 1 : 0;
    }
    return crossings;
}

} // namespace

TEST_F(Resampler, SincQualitiesKeepATonePure) {
    // Noise of the whole band against a tone of full scale. Rounding to 16 bits costs 98.1 dB once at the
    // output over its whole band and once at the input, of which a fifth is left in the output's band: 105 dB.
    // Together they leave 97.3 dB; the bound of 96.4 leaves the rest to the filter.
    struct ROW {
        int32_t quality;
        double noise;    // dB under the tone, whole band
        double harmonic; // dB under the tone, each
    };
    for (const ROW& row : {
             ROW{1, 96.4, 103.0},
             ROW{2, 96.4, 103.0}
    }) {
        gQuality = row.quality;
        const std::vector<double> out = Convert(kPsgRate, 1000.0, kAmplitude);
        EXPECT_NEAR(RisingCrossings(out), 1000, 1);
        const TONE tone = MeasureTone(out, 1000.0, 44100.0);
        EXPECT_NEAR(ToDecibels(tone.amplitude / (kAmplitude)), 0.0, 0.02);
        const double noise = MeasurePower(out) - tone.power;
        EXPECT_GT(10.0 * std::log10(tone.power / noise), row.noise) << row.quality;
        RecordProperty("snr" + std::to_string(row.quality),
                       std::to_string(10.0 * std::log10(tone.power / noise)));
        for (int number = 2; number <= 22; ++number) {
            const double frequency = number * 1000.0;
            const TONE harmonic = MeasureTone(out, frequency, 44100.0);
            EXPECT_LT(ToDecibels(harmonic.amplitude / tone.amplitude), -row.harmonic)
                << row.quality << " at " << frequency;
        }
    }
}

TEST_F(Resampler, SincQualitiesLeaveNoAliasOfWhatIsAboveTheBand) {
    // 60,000 Hz would fold to 15,900.
    for (const int32_t quality : {1, 2}) {
        gQuality = quality;
        const std::vector<double> out = Convert(kPsgRate, 60000.0, kAmplitude);
        EXPECT_LT(MeasureTone(out, 15900.0, 44100.0).amplitude, kAmplitude * 1.5e-5) << quality;
    }
}

TEST_F(Resampler, SincQualitiesLeaveNoImageWhenTheRateRises) {
    // 1,000 Hz at 20,000 has its first image at 19,000.
    for (const int32_t quality : {1, 2}) {
        gQuality = quality;
        const std::vector<double> out = Convert(20000.0, 1000.0, kAmplitude);
        const TONE tone = MeasureTone(out, 1000.0, 44100.0);
        EXPECT_NEAR(RisingCrossings(out), 1000, 1);
        EXPECT_LT(ToDecibels(MeasureTone(out, 19000.0, 44100.0).amplitude / tone.amplitude), -97.0);
    }
}

TEST_F(Resampler, NearestPickLeavesTheAliasesThatSincRemoves) {
    // Shows that the measure above can fail.
    gQuality = 0;
    const std::vector<double> out = Convert(kPsgRate, 60000.0, kAmplitude);
    EXPECT_GT(MeasureTone(out, 15900.0, 44100.0).amplitude, 0.5 * kAmplitude);
}

TEST_F(Resampler, FasterChipDropsFrames) {
    gQuality = 0;
    AudioResampler resampler;
    resampler.Init(88200.0, AudioRate(), gQuality);
    std::vector<int16_t> samples = Frames({10, 11, 12, 13, 14});
    EXPECT_EQ(resampler.Push(samples.data(), 10), 6);
    // Phases 0, 2, 4; the next is 6, which is frame 1 of the next five.
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{10, 12, 14}));
    samples = Frames({20, 21, 22, 23, 24});
    EXPECT_EQ(resampler.Push(samples.data(), 10), 4);
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{10, 12, 14, 21, 23}));
    EXPECT_EQ(resampler.Output()[1], -10);
}

TEST_F(Resampler, SlowerChipRepeatsFrames) {
    gQuality = 0;
    AudioResampler resampler;
    resampler.Init(29400.0, AudioRate(), gQuality); // step 2/3
    std::vector<int16_t> samples = Frames({1, 2, 3, 4});
    EXPECT_EQ(resampler.Push(samples.data(), 8), 12);
    // Phases 0, 0.67, 1.33, 2, 2.67, 3.33.
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{1, 1, 2, 3, 3, 4}));
}

TEST_F(Resampler, AfterAnOddCountIsConsumedNothingIsWrittenBeyondTheOutput) {
    for (const int32_t quality : {0, 1, 2}) {
        gQuality = quality;
        AudioResampler resampler;
        resampler.Init(44100.0, AudioRate(), quality);
        const std::vector<int16_t> samples(6000, 100);
        resampler.Push(samples.data(), 600);
        resampler.Consume(1);
        resampler.Push(samples.data(), 6000);
        // A pair fits whole or not at all: an odd count stays odd, below the end.
        EXPECT_EQ(resampler.Output().size() % 2, 1u) << quality;
        EXPECT_LT(resampler.Output().size(), size_t{44100} / 40 * 2) << quality;
    }
}

TEST_F(Resampler, NearestPickKeepsTimeOverManyPushes) {
    gQuality = 0;
    AudioResampler resampler;
    resampler.Init(223721.625, AudioRate(), gQuality);
    std::vector<int16_t> samples(size_t{3729} * 2);
    int64_t frames = 0;
    for (int push = 0; push < 600; ++push) {
        const int32_t added = resampler.Push(samples.data(), static_cast<int32_t>(samples.size()));
        frames += added / 2;
        resampler.Consume(added);
    }
    // 600 x 3,729 source frames; single precision may cost a frame in ten thousand.
    const double expected = 600.0 * 3729.0 * 44100.0 / 223721.625;
    EXPECT_NEAR(static_cast<double>(frames), expected, expected * 1.0e-4);
}

TEST_F(Resampler, NearestPickOfNothingKeepsThePhase) {
    gQuality = 0;
    AudioResampler resampler;
    resampler.Init(88200.0, AudioRate(), gQuality);
    std::vector<int16_t> samples = Frames({1, 2, 3});
    EXPECT_EQ(resampler.Push(samples.data(), 6), 4); // phase is 1 now
    EXPECT_EQ(resampler.Push(samples.data(), 0), 0);
    EXPECT_EQ(resampler.Push(nullptr, 0), 0);
    resampler.Consume(4);
    EXPECT_EQ(resampler.Push(samples.data(), 6), 2);
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{2}));
}

TEST_F(Resampler, QualityOutOfRangeCountsAsZero) {
    for (const int32_t setting : {3, -1, 99, 0}) {
        gQuality = setting;
        AudioResampler resampler;
        resampler.Init(88200.0, AudioRate(), gQuality);
        EXPECT_EQ(resampler.Quality(), 0) << setting;
        // The pattern of picked samples, without a filter's delay.
        std::vector<int16_t> samples = Frames({5, 6, 7, 8});
        EXPECT_EQ(resampler.Push(samples.data(), 8), 4);
        EXPECT_EQ(LeftOf(resampler), (std::vector<int>{5, 7}));
    }
}

TEST_F(Resampler, QualityIsFixedByInit) {
    gQuality = 2;
    AudioResampler resampler;
    resampler.Init(88200.0, AudioRate(), gQuality);
    gQuality = 0;
    resampler.Reset();
    EXPECT_EQ(resampler.Quality(), 2);
    resampler.Init(88200.0, AudioRate(), gQuality);
    EXPECT_EQ(resampler.Quality(), 0);
}

TEST_F(Resampler, PushLeavesTheSamplesAsTheyAre) {
    for (const int32_t quality : {0, 1, 2}) {
        gQuality = quality;
        AudioResampler resampler;
        resampler.Init(44100.0, AudioRate(), gQuality);
        std::vector<int16_t> samples = Frames({32767, -32768 + 1, 5, 600, -7});
        const std::vector<int16_t> before = samples;
        (void)resampler.Push(samples.data(), 10);
        EXPECT_EQ(samples, before) << quality;
    }
}

TEST_F(Resampler, OutputHoldsTwentyFiveMillisecondsAndDropsTheNewest) {
    for (const uint32_t rate : {22050u, 44100u, 192000u}) {
        SetAudioRate(rate);
        for (const int32_t quality : {0, 1, 2}) {
            gQuality = quality;
            AudioResampler resampler;
            resampler.Init(kPsgRate, AudioRate(), gQuality);
            std::vector<int16_t> samples(static_cast<size_t>(kPsgRate) * 2);
            for (size_t i = 0; i < samples.size(); ++i) {
                samples[i] = static_cast<int16_t>(i / 64);
            }
            const auto room = static_cast<int32_t>(rate / 40 * 2);
            EXPECT_EQ(resampler.Push(samples.data(), static_cast<int32_t>(samples.size())), room);
            const std::vector<int16_t> ready(resampler.Output().begin(), resampler.Output().end());
            EXPECT_EQ(resampler.Push(samples.data(), 5000), 0);
            EXPECT_TRUE(std::equal(ready.begin(), ready.end(), resampler.Output().begin()));
            // It continues when there is room again.
            resampler.Consume(room);
            EXPECT_GT(resampler.Push(samples.data(), 5000), 0) << quality;
        }
    }
}

TEST_F(Resampler, PiecesOfAnySizeGiveTheSameSamples) {
    for (const int32_t quality : {1, 2}) {
        gQuality = quality;
        AudioResampler whole;
        AudioResampler pieces;
        whole.Init(kPsgRate, AudioRate(), gQuality);
        pieces.Init(kPsgRate, AudioRate(), gQuality);
        std::vector<int16_t> samples(size_t{3000} * 2);
        for (size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<int16_t>(i * 7919);
        }
        (void)whole.Push(samples.data(), 6000);
        int32_t at = 0;
        for (int32_t size = 2; at + size <= 6000; size += 2) {
            (void)pieces.Push(samples.data() + at, size);
            at += size;
        }
        (void)pieces.Push(samples.data() + at, 6000 - at);
        ASSERT_GT(whole.Output().size(), 1000u);
        ASSERT_EQ(whole.Output().size(), pieces.Output().size());
        EXPECT_TRUE(
            std::equal(whole.Output().begin(), whole.Output().end(), pieces.Output().begin()));
    }
}

TEST_F(Resampler, OddAndNegativeCountsLeaveTheLonelyValueOut) {
    for (const int32_t quality : {0, 1, 2}) {
        gQuality = quality;
        AudioResampler resampler;
        resampler.Init(44100.0, AudioRate(), gQuality);
        int16_t one = 5;
        EXPECT_EQ(resampler.Push(&one, 1), 0);
        EXPECT_EQ(resampler.Push(&one, -3), 0);
        resampler.Consume(-5);
        resampler.Consume(1000);
        EXPECT_TRUE(resampler.Output().empty());
    }
}

TEST_F(Resampler, ConsumeMovesTheRestDown) {
    gQuality = 0;
    AudioResampler resampler;
    resampler.Init(44100.0, AudioRate(), gQuality);
    std::vector<int16_t> samples = Frames({1, 2, 3, 4});
    (void)resampler.Push(samples.data(), 8);
    resampler.Consume(4);
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{3, 4}));
    samples = Frames({5});
    (void)resampler.Push(samples.data(), 2);
    EXPECT_EQ(LeftOf(resampler), (std::vector<int>{3, 4, 5}));
}

TEST_F(Resampler, ResetForgetsEverythingHeard) {
    for (const int32_t quality : {0, 1, 2}) {
        gQuality = quality;
        AudioResampler used;
        AudioResampler fresh;
        used.Init(kPsgRate, AudioRate(), gQuality);
        fresh.Init(kPsgRate, AudioRate(), gQuality);
        std::vector<int16_t> noise(size_t{3001} * 2, 20000);
        (void)used.Push(noise.data(), static_cast<int32_t>(noise.size()));
        used.Reset();
        EXPECT_TRUE(used.Output().empty());
        std::vector<int16_t> first(4000);
        for (size_t i = 0; i < first.size(); ++i) {
            first[i] = static_cast<int16_t>(i * 31);
        }
        std::vector<int16_t> second = first;
        EXPECT_EQ(used.Push(first.data(), 4000), fresh.Push(second.data(), 4000));
        EXPECT_TRUE(std::equal(used.Output().begin(), used.Output().end(), fresh.Output().begin()));
    }
}

TEST_F(Resampler, ImpossibleRatesAreTakenAsTheNearestPossible) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double rate : {0.0, -1.0, 1.0e-9, 1.0e12, none}) {
        for (const int32_t quality : {0, 1, 2}) {
            gQuality = quality;
            AudioResampler resampler;
            resampler.Init(rate, AudioRate(), gQuality);
            std::vector<int16_t> samples(70000, 1);
            const int32_t added = resampler.Push(samples.data(), 70000);
            EXPECT_GE(added, 0);
            EXPECT_LE(added, 2204);
        }
    }
}

TEST_F(Resampler, PushAndConsumeDoNotAllocate) {
    for (const int32_t quality : {0, 1, 2}) {
        gQuality = quality;
        AudioResampler resampler;
        resampler.Init(kPsgRate, AudioRate(), gQuality);
        std::vector<int16_t> samples(20000);
        const size_t before = AllocationsSoFar();
        for (int i = 0; i < 10; ++i) {
            const int32_t added = resampler.Push(samples.data(), 20000);
            resampler.Consume(added);
        }
        EXPECT_EQ(AllocationsSoFar(), before);
    }
}

TEST_F(Resampler, EveryProgramRateKeepsTheTonesPitch) {
    for (const uint32_t rate : {22050u, 44100u, 48000u, 96000u, 192000u}) {
        SetAudioRate(rate);
        for (const int32_t quality : {0, 1, 2}) {
            gQuality = quality;
            const std::vector<double> out = Convert(53267.0, 1000.0, 20000.0);
            EXPECT_EQ(out.size(), rate);
            EXPECT_NEAR(RisingCrossings(out), 1000, 1) << rate << " quality " << quality;
        }
    }
}

// The ratio is exact: an hour of the PSG's pairs makes an hour of the program's, less the filter's
// delay.
TEST_F(Resampler, CountsFollowTheRatioOverHours) {
    for (const double rate : {223721.5625, 223721.625, 3579545.0 / 72.0, 7670453.0 / 144.0}) {
        for (const uint32_t appRate : {22050U, 44100U, 48000U, 192000U}) {
            SetAudioRate(appRate);
            AudioResampler resampler;
            resampler.Init(rate, appRate, 1);
            const auto block = static_cast<int32_t>(rate / 60.0);
            int64_t made = 0;
            constexpr int64_t kBlocks = 3600 * 60;
            for (int64_t i = 0; i < kBlocks; ++i) {
                made += resampler.PushRun(0, 0, block) / 2;
                resampler.Consume(1 << 20);
            }
            const double expected = static_cast<double>(kBlocks) * block * appRate / rate;
            EXPECT_NEAR(static_cast<double>(made), expected, appRate * 0.002) << rate;
            EXPECT_LT(static_cast<double>(made), expected);
        }
    }
}

// In one push, in single pairs and as a run, also after other samples and before more.
TEST_F(Resampler, RunsOfOnePairComeOutAsTheSameSamples) {
    for (const int32_t quality : {0, 1, 2}) {
        for (const double rate : {223721.5625, 53267.0, 31250.0}) {
            gQuality = quality;
            AudioResampler pushed;
            AudioResampler counted;
            AudioResampler single;
            for (AudioResampler* resampler : {&pushed, &counted, &single}) {
                resampler->Init(rate, 44100, quality);
            }
            std::mt19937 random(static_cast<uint32_t>(rate));
            for (int trial = 0; trial < 40; ++trial) {
                const auto left = static_cast<int16_t>(trial % 7 == 0 ? 0x8000 : random() & 0xFFFF);
                const auto right = static_cast<int16_t>(trial % 3 == 0 ? static_cast<uint16_t>(left)
                                                                       : random() & 0xFFFF);
                const auto pairs = static_cast<int32_t>(random() % (trial % 2 == 0 ? 30 : 1000));
                std::vector<int16_t> samples;
                for (int32_t i = 0; i < pairs; ++i) {
                    samples.push_back(left);
                    samples.push_back(right);
                }
                pushed.Push(samples.data(), pairs * 2);
                counted.PushRun(left, right, pairs);
                for (int32_t i = 0; i < pairs && quality != 0; ++i) {
                    single.Push(samples.data(), 2);
                }
                const std::vector<int16_t> expected(pushed.Output().begin(), pushed.Output().end());
                ASSERT_EQ(std::vector<int16_t>(counted.Output().begin(), counted.Output().end()),
                          expected)
                    << quality << ' ' << rate << ' ' << trial;
                if (quality != 0) { // single precision tells the pieces of quality 0 apart
                    ASSERT_EQ(std::vector<int16_t>(single.Output().begin(), single.Output().end()),
                              expected);
                }
                for (AudioResampler* resampler : {&pushed, &counted, &single}) {
                    resampler->Consume(1 << 20);
                }
            }
        }
    }
}
