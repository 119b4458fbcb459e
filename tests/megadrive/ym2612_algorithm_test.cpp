// Operators: the eight algorithms, feedback, level and wave.
#include "megadrive/ym2612_rig.h"

#include "support/spectrum.h"

#include <numbers>
#include <string>

namespace {

using Ym2612Algorithm = Ym2612Rig;

// The part's published layouts: who modulates whom, by operator number, and who is heard.
struct LAYOUT {
    std::array<std::vector<int>, 5> modulators; // index: operator; 0 is unused
    std::vector<int> carriers;
};

const std::array<LAYOUT, 8>& Layouts() {
    static const std::array<LAYOUT, 8> kLayouts{
        {
         {{{{}, {}, {1}, {2}, {3}}}, {4}},
         {{{{}, {}, {}, {1, 2}, {3}}}, {4}},
         {{{{}, {}, {}, {2}, {1, 3}}}, {4}},
         {{{{}, {}, {1}, {}, {2, 3}}}, {4}},
         {{{{}, {}, {1}, {}, {3}}}, {2, 4}},
         {{{{}, {}, {1}, {1}, {1}}}, {2, 3, 4}},
         {{{{}, {}, {1}, {}, {}}}, {2, 3, 4}},
         {{{{}, {}, {}, {}, {}}}, {1, 2, 3, 4}},
         }
    };
    return kLayouts;
}

// What an ideal chip plays: operator n at `multiple` n times the pitch and at its level in dB, with a
// modulator at full level turning the phase by 4 turns to either side.
std::vector<double> IdealSound(const LAYOUT& layout, double turnsPerSample,
                               const std::array<double, 5>& multiple,
                               const std::array<double, 5>& decibels, size_t count) {
    std::vector<double> sound;
    for (size_t t = 0; t < count; ++t) {
        std::array<double, 5> out{};
        double sum = 0.0;
        for (size_t op = 1; op <= 4; ++op) {
            double turns = turnsPerSample * multiple.at(op) * static_cast<double>(t);
            for (const int modulator : layout.modulators.at(op)) {
                turns += out.at(static_cast<size_t>(modulator)) * 4.0 * (8168.0 / 8192.0);
            }
            out.at(op) =
                std::sin(2.0 * std::numbers::pi * turns) * std::pow(10.0, -decibels.at(op) / 20.0);
        }
        for (const int carrier : layout.carriers) {
            sum += out.at(static_cast<size_t>(carrier)) * 8168.0;
        }
        sound.push_back(sum);
    }
    return sound;
}

double RootMeanSquare(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i) {
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    }
    return std::sqrt(sum / static_cast<double>(a.size()));
}

} // namespace

TEST_F(Ym2612Algorithm, CarriersAreHeardAtTheirPitchAndModulatorsAloneAreNot) {
    for (int algorithm = 0; algorithm < 8; ++algorithm) {
        const std::vector<int>& carriers = Layouts().at(static_cast<size_t>(algorithm)).carriers;
        for (int op = 1; op <= 4; ++op) {
            Start();
            PureVoice(2, algorithm);
            SetOperator(2, op, 0x30, op);
            Level(2, op, 0);
            Pitch(2, 4, 1000);
            Keys(2, 15);
            const std::vector<double> sound = Run(20'000);
            if (std::find(carriers.begin(), carriers.end(), op) == carriers.end()) {
                EXPECT_EQ(PeakOf(sound), 0.0) << algorithm << " " << op;
            } else {
                const double expected = PublishedFrequency(4, 1000, op);
                EXPECT_NEAR(FrequencyOf(sound), expected, expected * 0.001)
                    << algorithm << " " << op;
                EXPECT_EQ(PeakOf(sound), kPeak);
            }
        }
    }
}

// Every algorithm against an ideal chip with the published layout, and against the seven others.
TEST_F(Ym2612Algorithm, OutputIsThatOfThePublishedLayout) {
    constexpr std::array<double, 5> kMultiples{0, 3, 1, 2, 1};
    constexpr std::array<int, 5> kLevels{0, 28, 26, 27, 4};
    const double turns = 300.0 * 8.0 / 1'048'576.0; // block 4
    for (size_t algorithm = 0; algorithm < 8; ++algorithm) {
        Start();
        PureVoice(1, static_cast<int>(algorithm));
        std::array<double, 5> decibels{};
        for (int op = 1; op <= 4; ++op) {
            const auto i = static_cast<size_t>(op);
            // Carriers at similar levels, so that none masks another.
            const auto& carriers = Layouts().at(algorithm).carriers;
            const bool carrier = std::find(carriers.begin(), carriers.end(), op) != carriers.end();
            const int level = carrier ? 4 : kLevels.at(i);
            decibels.at(i) = level * 6.0206 / 8.0;
            SetOperator(1, op, 0x30, static_cast<int>(kMultiples.at(i)));
            Level(1, op, level);
        }
        Pitch(1, 4, 300);
        Keys(1, 15);
        const std::vector<double> sound = Run(4000);
        for (size_t layout = 0; layout < 8; ++layout) {
            const double error = RootMeanSquare(
                sound, IdealSound(Layouts().at(layout), turns, kMultiples, decibels, sound.size()));
            if (layout == algorithm) {
                EXPECT_LT(error, 150.0) << algorithm;
            } else {
                EXPECT_GT(error, 400.0) << algorithm << " as " << layout;
            }
        }
    }
}

// Published: a modulation of pi/16 at 1, doubling up to 4 pi at 7, by the mean of the last two outputs.
// From pi on the wave depends on the last digit, and no ideal predicts it.
TEST_F(Ym2612Algorithm, FeedbackTurnsThePhaseByThePublishedDepth) {
    const double turns = 300.0 * 8.0 / 1'048'576.0;
    std::vector<std::vector<double>> sounds;
    for (int feedback = 0; feedback <= 4; ++feedback) {
        Start();
        PureVoice(1, 7);
        SetChannel(1, 0xB0, feedback << 3 | 7);
        Level(1, 1, 0);
        Pitch(1, 4, 300);
        Keys(1, 15);
        sounds.push_back(Run(3000));

        const double depth =
            feedback == 0 ? 0.0 : std::numbers::pi / 16.0 * std::exp2(feedback - 1);
        std::vector<double> ideal;
        std::array<double, 2> last{};
        for (size_t t = 0; t < sounds.back().size(); ++t) {
            const double angle = 2.0 * std::numbers::pi * turns * static_cast<double>(t) +
                                 depth * (last[0] + last[1]) / 2.0;
            last = {last[1], std::sin(angle)};
            ideal.push_back(last[1] * kPeak);
        }
        EXPECT_LT(RootMeanSquare(sounds.back(), ideal), 120.0) << feedback;
    }
    for (size_t i = 3; i < sounds.size(); ++i) {
        EXPECT_GT(RootMeanSquare(sounds[i], sounds[i - 1]), 500.0) << i;
    }
}

TEST_F(Ym2612Algorithm, FeedbackBrightensTheSpectrum) {
    double before = -0.001;
    for (const int feedback : {0, 2, 4, 5, 7}) {
        Start();
        PlayOne(1, 1, 4, 500);
        SetChannel(1, 0xB0, feedback << 3 | 7);
        Skip(1000);
        const std::vector<double> sound = Run(16'384);
        // 500 x 8 turns in 2^20 samples are whole periods of 262.144; 62 of them come close enough.
        const TONE first =
            MeasureTone(std::span(sound).first(16'253), PublishedFrequency(4, 500, 1), kRate);
        const double above = MeasurePower(sound) / first.power - 1.0;
        EXPECT_GT(above, before) << feedback;
        before = above + 0.001;
    }
    EXPECT_GT(before, 1.0); // noise, mostly
}

TEST_F(Ym2612Algorithm, FeedbackIsOfOperatorOneAlone) {
    for (int op = 2; op <= 4; ++op) {
        Start();
        PlayOne(1, op, 4, 500);
        const std::vector<double> plain = Run(2000);
        Start();
        PlayOne(1, op, 4, 500);
        SetChannel(1, 0xB0, 7 << 3 | 7);
        EXPECT_EQ(Run(2000), plain) << op;
    }
}

TEST_F(Ym2612Algorithm, BareOperatorIsASine) {
    PlayOne(1, 4, 4, 1024);
    Skip(100);
    const std::vector<double> sound = Run(1280 * 8); // 2^20 / (1024 x 8) = 128 samples a period
    const TONE tone = MeasureTone(sound, PublishedFrequency(4, 1024, 1), kRate);
    EXPECT_NEAR(tone.amplitude, kPeak, 25.0);
    EXPECT_LT(MeasurePower(sound) - tone.power, tone.power * 0.0001); // 40 dB down
}

// 0.75 dB a step; from 104 steps (78 dB) on an operator is silent.
TEST_F(Ym2612Algorithm, TotalLevelFallsThreeQuartersOfADecibelAStep) {
    PlayOne(1, 4, 3, 700);
    for (int level = 0; level < 128; ++level) {
        Level(1, 4, level);
        const double peak = PeakOf(Run(1600));
        if (level >= 104) {
            EXPECT_EQ(peak, 0.0) << level;
        } else {
            // Levels are whole numbers, in steps of 4 before they are halved.
            EXPECT_NEAR(peak, kPeak * std::exp2(-level / 8.0), 2.5) << level;
        }
    }
}

TEST_F(Ym2612Algorithm, LevelIsTakenAtOnce) {
    PlayOne(1, 4, 3, 700);
    Skip(100);
    Level(1, 4, 40);
    EXPECT_EQ(Slot(1, 4).volOut, 320u);
    Level(1, 4, 0);
    EXPECT_EQ(Slot(1, 4).volOut, 0u);
}

// The DAC-side range: six channels of four carriers in step are clipped, at both ends.
TEST_F(Ym2612Algorithm, SumIsClippedToSixteenBits) {
    for (int channel = 1; channel <= 6; ++channel) {
        PureVoice(channel);
        SetOperators(channel, 0x40, 0);
        Pitch(channel, 4, 500);
    }
    for (int channel = 1; channel <= 6; ++channel) {
        Keys(channel, 15);
    }
    for (const size_t side : {size_t{0}, size_t{1}}) {
        const std::vector<double> sound = Run(1000, side);
        EXPECT_EQ(*std::max_element(sound.begin(), sound.end()), 32767.0);
        EXPECT_EQ(*std::min_element(sound.begin(), sound.end()), -32768.0);
    }
}

TEST_F(Ym2612Algorithm, ChannelsAddUpWithoutClippingOfTheirOwn) {
    // Four carriers of one channel reach 4 x 8168, which is just inside.
    PureVoice(1);
    SetOperators(1, 0x40, 0);
    Pitch(1, 4, 500);
    Keys(1, 15);
    EXPECT_EQ(PeakOf(Run(1000)), 4.0 * kPeak);
}
