// The sound: pitches, waves, feedback, oscillators, voices and the rhythm.
#include "sega8/ym2413_rig.h"

#include "support/spectrum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

class Ym2413Sound : public YmRig {
protected:
    // Cycles a second between the first and the last rising zero crossing.
    double FrequencyOf(const std::vector<double>& samples) {
        double first = -1.0;
        double last = -1.0;
        int cycles = -1;
        for (size_t i = 1; i < samples.size(); ++i) {
            if (samples[i - 1] < 0.0 && samples[i] >= 0.0) {
                const double at =
                    static_cast<double>(i) - samples[i] / (samples[i] - samples[i - 1]);
                first = cycles < 0 ? at : first;
                last = at;
                ++cycles;
            }
        }
        return cycles < 1 ? 0.0 : cycles * kRate / (last - first);
    }

    // The square roots of the spectrum's amplitudes, so that quiet parts count, then the loudness
    // over time; each of unit length.
    std::vector<double> Fingerprint(const std::vector<double>& samples) {
        std::vector<double> bands;
        for (double frequency = 30.0; frequency < 24'000.0; frequency *= 1.04) {
            bands.push_back(std::sqrt(MeasureTone(samples, frequency, kRate).amplitude));
        }
        std::vector<double> course;
        for (size_t i = 0; i + 512 <= samples.size(); i += 512) {
            course.push_back(std::sqrt(MeasurePower({samples.data() + i, 512})));
        }
        Normalise(bands);
        Normalise(course);
        bands.insert(bands.end(), course.begin(), course.end());
        Normalise(bands);
        return bands;
    }

    static void Normalise(std::vector<double>& values) {
        const double length = std::sqrt(Likeness(values, values));
        for (double& value : values) {
            value /= length;
        }
    }

    // 1 for equal spectra, 0 for spectra with nothing in common.
    static double Likeness(const std::vector<double>& a, const std::vector<double>& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    }
};

double PeakOf(const std::vector<double>& samples) {
    double peak = 0.0;
    for (const double sample : samples) {
        peak = std::max(peak, std::fabs(sample));
    }
    return peak;
}

double PublishedFrequency(int block, int fnum, double multiple) {
    return fnum * std::exp2(block - 1) / 262144.0 * (3'579'545.0 / 72.0) * multiple;
}

} // namespace

// The manual's formula: F-number x 2^(block - 1) x multiple x clock / (72 x 2^18).
TEST_F(Ym2413Sound, FrequencyFollowsBlockNumberAndMultiple) {
    const std::array<double, 16> multiples{0.5, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 10, 12, 12, 15, 15};
    int measured = 0;
    for (int block = 0; block < 8; ++block) {
        for (const int fnum : {172, 256, 345, 511}) {
            for (int multiple = 0; multiple < 16; ++multiple) {
                const double expected =
                    PublishedFrequency(block, fnum, multiples[static_cast<size_t>(multiple)]);
                if (expected > kRate / 4.0) {
                    continue;
                }
                Start();
                PureVoice();
                Write({
                    {1, 0x20 | multiple}
                });
                KeyOn(0, block, fnum);
                Skip(500);
                const auto length = static_cast<size_t>(std::max(2000.0, 3.2 * kRate / expected));
                EXPECT_NEAR(FrequencyOf(Run(length)), expected, expected * 0.001)
                    << block << " " << fnum << " " << multiple;
                ++measured;
            }
        }
    }
    EXPECT_GT(measured, 400);
}

TEST_F(Ym2413Sound, ConcertPitch) {
    PureVoice();
    KeyOn(3, 4, 290);
    Skip(500);
    EXPECT_NEAR(FrequencyOf(Run(50'000)), 440.0, 0.2);
}

TEST_F(Ym2413Sound, BareVoiceIsASine) {
    PureVoice();
    KeyOn(0, 4, 290);
    Skip(1000);
    const std::vector<double> samples = Run(49'715);
    const TONE tone = MeasureTone(samples, PublishedFrequency(4, 290, 1), kRate);
    EXPECT_NEAR(tone.amplitude, 8168.0, 30.0);
    EXPECT_LT(MeasurePower(samples) - tone.power, tone.power * 0.0001); // 40 dB down
}

// The mean of a half sine is the peak through pi; its second harmonic is 2 / (3 pi) of it.
TEST_F(Ym2413Sound, SecondWaveIsAHalfSine) {
    PureVoice();
    Write({
        {3, 0x10}
    });
    KeyOn(0, 4, 290);
    Skip(1000);
    const std::vector<double> samples = Run(49'715);
    EXPECT_GE(*std::min_element(samples.begin(), samples.end()), 0.0);
    const double mean = std::accumulate(samples.begin(), samples.end(), 0.0) / 49'715.0;
    EXPECT_NEAR(mean, 8168.0 / std::numbers::pi, 20.0);
    const double frequency = PublishedFrequency(4, 290, 1);
    EXPECT_NEAR(MeasureTone(samples, frequency, kRate).amplitude, 8168.0 / 2.0, 20.0);
    EXPECT_NEAR(MeasureTone(samples, 2 * frequency, kRate).amplitude,
                8168.0 * 2.0 / (3.0 * std::numbers::pi), 20.0);
}

TEST_F(Ym2413Sound, ModulatorOfTheSecondWaveIsAHalfSine) {
    PureVoice();
    Write({
        {2, 0x00},
        {3, 0x08},
        {4, 0xF0}
    });
    KeyOn(0, 4, 290);
    Skip(1000);
    for (int i = 0; i < 2000; ++i) {
        Skip(1);
        ASSERT_GE(Modulator(0).fbOut[1], 0);
    }
}

// Bessel functions of the first kind tell the spectrum of phase modulation: an index of b radians
// leaves J0(b) at the carrier and 2 J... at its sidebands. The modulator's 2042 / 1024 x 2 turns at
// full level are 8 pi; 0.75 dB steps take it down from there.
TEST_F(Ym2413Sound, ModulationDepthIsEightPiAtFullLevel) {
    for (const int level : {24, 28, 32, 40}) {
        Start();
        PureVoice();
        Write({
            {0, 0x21 },
            {1, 0x24 },
            {2, level},
            {4, 0xF0 }
        }); // carrier at four times the modulator
        KeyOn(0, 3, 290);
        Skip(1000);
        const std::vector<double> samples = Run(49'715);
        const double carrier = PublishedFrequency(3, 290, 4);
        const double side = PublishedFrequency(3, 290, 1);
        const double index = 2.0 * 2042.0 / 512.0 * std::numbers::pi * std::exp2(-level / 8.0);
        EXPECT_NEAR(MeasureTone(samples, carrier, kRate).amplitude / 8168.0,
                    std::fabs(std::cyl_bessel_j(0, index)), 0.05)
            << level;
        EXPECT_NEAR(MeasureTone(samples, carrier + side, kRate).amplitude / 8168.0,
                    std::fabs(std::cyl_bessel_j(1, index)), 0.05)
            << level;
    }
}

// The part of the modulator's output that is not its fundamental.
TEST_F(Ym2413Sound, FeedbackAddsHarmonicsStepByStep) {
    double before = -1.0;
    for (int feedback = 0; feedback < 7; ++feedback) {
        Start();
        PureVoice();
        Write({
            {0, 0x21    },
            {2, 0x00    },
            {3, feedback},
            {4, 0xF0    }
        });
        KeyOn(0, 4, 290);
        Skip(1000);
        std::vector<double> output;
        for (int i = 0; i < 49'715; ++i) {
            Skip(1);
            output.push_back(Modulator(0).fbOut[1]);
        }
        const double power = MeasurePower(output);
        const double rest =
            1.0 - MeasureTone(output, PublishedFrequency(4, 290, 1), kRate).power / power;
        if (feedback == 0) {
            EXPECT_LT(rest, 0.0001);
        } else {
            EXPECT_GT(rest, before) << feedback;
        }
        before = rest;
    }
    EXPECT_GT(before, 0.1);
}

// The carrier is modulated by the modulator's output of the sample before.
TEST_F(Ym2413Sound, CarrierIsModulatedOneSampleLater) {
    PureVoice();
    Write({
        {2, 0x00},
        {4, 0xF0}
    });
    KeyOn(0, 4, 290);
    Skip(1000);
    Modulator(0).fbOut = {0, 512}; // one whole turn: 512 << 17 is 2^26
    const uint32_t phase = Carrier(0).phase;
    const double angle = 2.0 * std::numbers::pi * ((phase >> 16 & 1023) + 0.5) / 1024.0;
    EXPECT_NEAR(Run(1).front(), 8168.0 * std::sin(angle), 20.0);
    EXPECT_EQ(Modulator(0).fbOut[0], 512);
}

// 4.875 dB at 3.7 Hz.
TEST_F(Ym2413Sound, TremoloDepthAndRate) {
    PureVoice();
    Write({
        {1, 0xA1}
    });
    KeyOn(0, 5, 400);
    Skip(1000);
    const std::vector<double> samples = Run(13'440 * 5);
    std::vector<double> peaks; // of 96 samples, several periods of the tone
    for (size_t i = 0; i + 96 <= samples.size(); i += 96) {
        peaks.push_back(*std::max_element(samples.begin() + static_cast<ptrdiff_t>(i),
                                          samples.begin() + static_cast<ptrdiff_t>(i + 96)));
    }
    const double depth = *std::max_element(peaks.begin(), peaks.end()) /
                         *std::min_element(peaks.begin(), peaks.end());
    EXPECT_NEAR(ToDecibels(depth), 4.875, 0.1);
    // It returns to the same level after 140 peaks and not before, except at its turning points.
    const double middle = std::sqrt(depth) * *std::min_element(peaks.begin(), peaks.end());
    std::vector<size_t> rises;
    for (size_t i = 1; i < peaks.size(); ++i) {
        if (peaks[i - 1] < middle && peaks[i] >= middle) {
            rises.push_back(i);
        }
    }
    ASSERT_GE(rises.size(), 3u);
    const double period = static_cast<double>(rises.back() - rises.front()) * 96.0 /
                          static_cast<double>(rises.size() - 1);
    EXPECT_NEAR(kRate / period, 3.7, 0.05);
}

// Up to 7 half F-numbers each way, 6.07 times a second.
TEST_F(Ym2413Sound, VibratoDepthAndRate) {
    struct ROW {
        int fnum;
        double halfSteps;
    };
    for (const ROW row : {
             ROW{40,  0},
             ROW{64,  1},
             ROW{500, 7},
             ROW{290, 4}
    }) {
        Start();
        PureVoice();
        Write({
            {1, 0x61}
        });
        KeyOn(0, 5, row.fnum);
        std::array<double, 8> steps{};
        Skip(1000);
        while (ym->lfoPm != 7 || (ym->lfoPmCnt & 0xFFFFFF) + 16384 < 0x1000000) {
            Skip(1);
        }
        for (double& step : steps) {
            const uint32_t before = Carrier(0).phase;
            Skip(1024);
            step = static_cast<double>(Carrier(0).phase - before) / 1024.0;
        }
        const double centre = Carrier(0).incr;
        EXPECT_NEAR(steps[0] / centre, 1.0 + row.halfSteps / (2.0 * row.fnum), 1e-6) << row.fnum;
        EXPECT_NEAR(steps[4] / centre, 1.0 - row.halfSteps / (2.0 * row.fnum), 1e-6);
        EXPECT_EQ(steps[2], centre);
        EXPECT_EQ(steps[6], centre);
    }
    EXPECT_NEAR(kRate / (8 * 1024), 6.07, 0.01);
}

TEST_F(Ym2413Sound, VibratoThatLeavesTheBlockContinuesInTheNext) {
    PureVoice();
    Write({
        {1, 0x61}
    });
    KeyOn(0, 3, 511);
    while (ym->lfoPm != 0 || (ym->lfoPmCnt & 0xFFFFFF) == 0) {
        Skip(1);
    }
    // 2 x 511 + 7 is 5 of the next block, where a half step counts twice.
    const uint32_t before = Carrier(0).phase;
    Skip(1);
    EXPECT_EQ(Carrier(0).phase - before, (5u * 4096 >> 3) * 2);
}

TEST_F(Ym2413Sound, EveryVoiceSoundsAndDiffersFromTheOthers) {
    std::vector<std::vector<double>> prints;
    for (int voice = 1; voice < 16; ++voice) {
        Start();
        Write({
            {0x30, voice << 4}
        });
        KeyOn(0, 4, 290);
        Skip(1500);
        const std::vector<double> samples = Run(8192);
        EXPECT_GT(PeakOf(samples), 500.0) << voice;
        prints.push_back(Fingerprint(samples));
    }
    for (size_t i = 0; i < prints.size(); ++i) {
        for (size_t j = i + 1; j < prints.size(); ++j) {
            EXPECT_LT(Likeness(prints[i], prints[j]), 0.99) << i + 1 << " and " << j + 1;
        }
    }
}

TEST_F(Ym2413Sound, EveryRhythmSoundDiffersFromTheOthers) {
    std::vector<std::vector<double>> prints;
    for (int bit = 0; bit < 5; ++bit) {
        Start();
        // The pitches of the rhythm in the manual.
        Write({
            {0x0E, 0x20},
            {0x16, 0x20},
            {0x17, 0x50},
            {0x18, 0xC0},
            {0x26, 0x05},
            {0x27, 0x05},
            {0x28, 0x01}
        });
        Skip(200);
        EXPECT_EQ(PeakOf(Run(500)), 0.0) << bit;
        Write({
            {0x0E, 0x20 | 1 << bit}
        });
        const std::vector<double> samples = Run(8192);
        EXPECT_GT(PeakOf(samples), 500.0) << bit;
        prints.push_back(Fingerprint(samples));
    }
    for (size_t i = 0; i < prints.size(); ++i) {
        for (size_t j = i + 1; j < prints.size(); ++j) {
            EXPECT_LT(Likeness(prints[i], prints[j]), 0.98) << i << " and " << j;
        }
    }
}

// Each of the five sounds alone, at phases set by hand, against the sine of its expected phase.
TEST_F(Ym2413Sound, MetalAndSnarePhasesAreMadeOfTwoOscillatorsAndNoise) {
    struct ROW {
        uint32_t a; // phase of channel 7's modulator
        uint32_t b; // phase of channel 8's carrier
        bool metal;
    };
    const std::array<ROW, 11> rows{
        ROW{0,                              0,                              false},
        {0,                              1u << 21,                       true },
        {0,                              1u << 19,                       true },
        {0,                              1u << 20 | 1u << 22 | 1u << 18, false},
        {1u << 23,                       0,                              true },
        {1u << 18,                       0,                              true },
        {1u << 23 | 1u << 18,            0,                              false},
        {1u << 19,                       0,                              true },
        {1u << 23 | 1u << 18 | 1u << 19, 0,                              true },
        {1u << 24,                       0,                              false},
        {1u << 24 | 1u << 23,            1u << 21,                       true },
    };
    Write({
        {0x0E, 0x20}
    });
    for (const ROW& row : rows) {
        for (const bool noise : {false, true}) {
            const uint32_t snare = (row.a >> 24 & 1) != 0 ? 0x200 : 0;
            const std::array<uint32_t, 4> words{
                noise ? (row.metal ? 0x2D0u : 0x034u) : (row.metal ? 0x234u : 0x0D0u),
                noise ? (snare != 0 ? 0x300u : 0u) : (snare != 0 ? 0x200u : 0x100u),
                0x123u,
                row.metal ? 0x300u : 0x100u,
            };
            for (size_t sound = 0; sound < 4; ++sound) {
                for (size_t i = 0; i < 4; ++i) {
                    YM_SLOT& slot = ym->channels[7 + i / 2].slots[i % 2];
                    slot.volume = i == sound ? 0 : 255;
                    slot.tll = 0;
                }
                ym->noiseRng = noise ? 1 : 2;
                Modulator(7).phase = row.a;
                Modulator(8).phase = 0x123u << 16 | 0x4567;
                Carrier(8).phase = row.b;
                const double angle = (words[sound] + 0.5) * 2.0 * std::numbers::pi / 1024.0;
                EXPECT_NEAR(Run(1).front(), 2.0 * 8168.0 * std::sin(angle), 40.0)
                    << "sound " << sound << " a " << row.a << " b " << row.b << " noise " << noise;
            }
        }
    }
}

// The bass drum is a channel of two operators whose carrier counts twice.
TEST_F(Ym2413Sound, RhythmCountsTwice) {
    Write({
        {0x0E, 0x30},
        {0x16, 0x20},
        {0x26, 0x05}
    });
    double peak = 0.0;
    for (int i = 0; i < 4000; ++i) {
        Skip(1);
        EXPECT_EQ(ym->outMelody, 0);
        EXPECT_EQ(ym->outRhythm % 2, 0);
        peak = std::max(peak, std::fabs(static_cast<double>(ym->outRhythm)));
    }
    EXPECT_GT(peak, 2042.0);
    EXPECT_LE(peak, 2.0 * 2042.0);
}

TEST_F(Ym2413Sound, Channels6To8AreSilentAsMelodyInRhythmMode) {
    for (int channel = 6; channel < 9; ++channel) {
        Start();
        Write({
            {0x30 + channel, 0x10}
        });
        KeyOn(channel, 4, 290);
        Skip(3000);
        EXPECT_GT(PeakOf(Run(2000)), 500.0);
        EXPECT_NE(ym->outMelody, 0);
        Write({
            {0x0E, 0x20}
        });
        Skip(10);
        EXPECT_EQ(ym->outMelody, 0);
    }
}

// 23 bits with the mask 0x800302: a sequence of the greatest length.
TEST_F(Ym2413Sound, NoiseRunsThroughAllItsStates) {
    const uint32_t start = ym->noiseRng;
    uint32_t value = start;
    uint32_t length = 0;
    for (uint32_t i = 0; i < 1000; ++i) {
        Skip(1);
        value = (value & 1) != 0 ? (value ^ 0x800302) >> 1 : value >> 1;
        ASSERT_EQ(ym->noiseRng, value);
    }
    value = start;
    do {
        value = (value & 1) != 0 ? (value ^ 0x800302) >> 1 : value >> 1;
        ++length;
    } while (value != start && length < 10'000'000);
    EXPECT_EQ(length, (1u << 23) - 1);
}
