// Envelopes: their times against the application manual, their order, keys and levels.
#include "sega8/ym2413_rig.h"

#include <algorithm>
#include <cmath>

namespace {

class Ym2413Envelope : public YmRig {
protected:
    // Samples until the carrier of channel 0 leaves `state`; 0 if it stays longer than `most`.
    size_t LengthOf(YmEnvelope state, size_t most = 3'000'000) {
        for (size_t i = 1; i <= most; ++i) {
            Skip(1);
            if (Carrier(0).state != state) {
                return i;
            }
        }
        return 0;
    }

    void SkipTo(YmEnvelope state) {
        for (int i = 0; i < 2'000'000 && Carrier(0).state != state; ++i) {
            Skip(1);
        }
        ASSERT_EQ(Carrier(0).state, state);
    }

    // Samples until the carrier's envelope has moved by `steps` of 0.375 dB.
    size_t SamplesFor(int steps) {
        const int32_t target = Carrier(0).volume + steps;
        size_t samples = 0;
        while (Carrier(0).volume < target && samples < 4'000'000) {
            Skip(1);
            ++samples;
        }
        return samples;
    }

    // Runs to a multiple of the envelope counter, where slow rates start a cycle.
    void Align(uint32_t multiple) {
        while (ym->egCounter % multiple != 0) {
            Skip(1);
        }
    }
};

// By the manual the 127 steps of a decay over 48 dB take 20,926.60 ms at rate 4 of 63 and a clock
// of 3.579545 MHz. Every four rates halve that; four speeds in turn are as 4 : 5 : 6 : 7; the last
// four rates are equal. Settled: from rate 52 on the steps have twice the manual's speed.
double SamplesPerStep(int rate63) {
    const int capped = std::min(rate63, 60);
    const double slowest = 20.92660 * (3'579'545.0 / 72.0) / 127.0;
    const double octaves =
        (capped - 4) / 4 + (capped >= 52 ? 1 : 0); // NOLINT(bugprone-integer-division)
    return slowest / std::exp2(octaves) * 4.0 / (4 + capped % 4);
}

} // namespace

TEST_F(Ym2413Envelope, DecayTimesAreTheManuals) {
    // Block and F-number choose the key scale, which the rate bit of the voice divides by four.
    for (const int keyScaleRate : {0, 1}) {
        for (int kcode = 0; kcode < 16; kcode += 5) {
            for (int dr = 1; dr < 16; ++dr) {
                const int rate = std::min(63, dr * 4 + (keyScaleRate != 0 ? kcode : kcode >> 2));
                if (rate < 16 && (kcode != 0 || keyScaleRate != 0)) {
                    continue; // once is enough for the slowest rates
                }
                Start();
                PureVoice();
                Write({
                    {1, 0x21 | keyScaleRate << 4},
                    {5, 0xF0 | dr               },
                    {7, 0xF0                    }
                });
                KeyOn(0, kcode >> 1, (kcode & 1) << 8 | 0x40);
                SkipTo(YmEnvelope::kDecay);
                const double step = SamplesPerStep(rate);
                const int steps = std::clamp(static_cast<int>(200'000 / step), 16, 112);
                const auto samples = static_cast<double>(SamplesFor(steps));
                const double expected = step * steps;
                // It may start and end anywhere within the eight increments.
                EXPECT_NEAR(samples, expected, step * 1.5 + 3.0) << "rate " << rate << " dr " << dr;
            }
        }
    }
}

TEST_F(Ym2413Envelope, DecayRateZeroStaysLoud) {
    PureVoice();
    Write({
        {5, 0xF0},
        {7, 0xF0}
    });
    KeyOn(0, 4, 300);
    SkipTo(YmEnvelope::kDecay);
    Skip(200'000);
    EXPECT_EQ(Carrier(0).volume, 0);
}

TEST_F(Ym2413Envelope, AttackRateZeroNeverSounds) {
    PureVoice();
    Write({
        {5, 0x00}
    });
    KeyOn(0, 7, 300);
    Skip(100'000);
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kAttack);
    EXPECT_EQ(Carrier(0).volume, 255);
}

// Every step leaves three quarters of the 256 parts that an envelope starts with, in whole parts.
TEST_F(Ym2413Envelope, AttackTimesFollowTheRate) {
    for (int ar = 4; ar < 15; ++ar) {
        Start();
        PureVoice();
        Write({
            {5, ar << 4},
            {7, 0xF0   }
        });
        KeyOn(0, 0, 0x40);
        SkipTo(YmEnvelope::kAttack);
        const auto samples = static_cast<double>(LengthOf(YmEnvelope::kAttack));
        if (ar < 14) {
            EXPECT_NEAR(samples / SamplesPerStep(ar * 4), 16.0, 1.0) << ar;
        } else {
            // Steps of two halve it, every sample.
            EXPECT_NEAR(samples, 8.0, 1.0) << ar;
        }
    }
    int steps = 0;
    for (int left = 256; left > 1; left = left * 3 / 4) {
        ++steps;
    }
    EXPECT_EQ(steps, 16);
}

TEST_F(Ym2413Envelope, AttackIsExponential) {
    PureVoice();
    Write({
        {5, 0x40},
        {7, 0xF0}
    });
    KeyOn(0, 0, 0x40);
    SkipTo(YmEnvelope::kAttack);
    int32_t previous = Carrier(0).volume;
    while (Carrier(0).state == YmEnvelope::kAttack) {
        Skip(1);
        const int32_t now = Carrier(0).volume;
        if (now != previous && Carrier(0).state == YmEnvelope::kAttack) {
            EXPECT_NEAR(previous - now, (previous + 1) / 4.0, 1.0);
        }
        previous = now;
    }
    EXPECT_EQ(previous, 0);
}

TEST_F(Ym2413Envelope, HighestAttackRateIsInstant) {
    PureVoice();
    Write({
        {1, 0x31}
    });   // key scale in full
    KeyOn(0, 1, 0x40); // rate 60 + 2
    SkipTo(YmEnvelope::kAttack);
    Skip(1);
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kDecay);
    EXPECT_EQ(Carrier(0).volume, 0);
    EXPECT_EQ(Carrier(0).attack.shift, 0);
    EXPECT_EQ(Carrier(0).attack.select, 104);

    Start();
    PureVoice();
    Write({
        {1, 0x31}
    });
    KeyOn(0, 0, 0x140); // rate 60 + 1
    SkipTo(YmEnvelope::kAttack);
    EXPECT_EQ(Carrier(0).attack.select, 96);
}

TEST_F(Ym2413Envelope, DecayEndsAtTheSustainLevel) {
    for (int level = 1; level < 16; ++level) {
        Start();
        PureVoice();
        Write({
            {5, 0xFA      },
            {7, level << 4}
        });
        KeyOn(0, 4, 300);
        SkipTo(YmEnvelope::kSustain);
        // Three decibels a step of the register; a step of the envelope may overshoot.
        EXPECT_GE(Carrier(0).volume, level * 8);
        EXPECT_LE(Carrier(0).volume, level * 8 + 3);
    }
}

TEST_F(Ym2413Envelope, SustainedTonesHoldAndPercussiveOnesDieAway) {
    PureVoice();
    Write({
        {5, 0xFC},
        {7, 0x38}
    });
    KeyOn(0, 4, 300);
    SkipTo(YmEnvelope::kSustain);
    const int32_t held = Carrier(0).volume;
    Skip(50'000);
    EXPECT_EQ(Carrier(0).volume, held);

    Start();
    PureVoice();
    Write({
        {1, 0x01},
        {5, 0xFC},
        {7, 0x38}
    });
    KeyOn(0, 0, 0x40);
    SkipTo(YmEnvelope::kSustain);
    const double expected = SamplesPerStep(8 * 4) * 80;
    EXPECT_NEAR(static_cast<double>(SamplesFor(80)), expected, expected * 0.02);
    Skip(200'000);
    EXPECT_EQ(Carrier(0).volume, 255);
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kSustain);
}

// Sustained tones use their own release rate or, with the channel's sustain, rate 5; percussive
// tones use rate 7 or 5.
TEST_F(Ym2413Envelope, ReleaseRateDependsOnTypeAndSustain) {
    struct ROW {
        int flags;
        int sustain;
        int rr;
        int rate63;
    };
    for (const ROW row : {
             ROW{0x21, 0,    9, 36},
             ROW{0x21, 0,    6, 24},
             ROW{0x21, 0x20, 9, 20},
             ROW{0x01, 0,    9, 28},
             ROW{0x01, 0x20, 9, 20}
    }) {
        Start();
        PureVoice();
        Write({
            {1, row.flags    },
            {5, 0xF0         },
            {7, 0xF0 | row.rr}
        });
        KeyOn(0, 1, 0x40, row.sustain);
        Skip(2000);
        ASSERT_EQ(Carrier(0).volume, 0);
        KeyOff(0, 1, 0x40, row.sustain);
        ASSERT_EQ(Carrier(0).state, YmEnvelope::kRelease);
        const double expected = SamplesPerStep(row.rate63) * 80;
        EXPECT_NEAR(static_cast<double>(SamplesFor(80)), expected, expected * 0.03)
            << row.flags << " " << row.sustain << " " << row.rr;
        SkipTo(YmEnvelope::kOff);
        EXPECT_EQ(Carrier(0).volume, 255);
    }
}

TEST_F(Ym2413Envelope, ModulatorKeepsItsLevelAfterTheKey) {
    PureVoice();
    Write({
        {4, 0xF0},
        {6, 0x0F}
    });
    KeyOn(0, 4, 300);
    Skip(2000);
    KeyOff(0, 4, 300);
    Skip(50'000);
    EXPECT_EQ(Modulator(0).state, YmEnvelope::kRelease);
    EXPECT_EQ(Modulator(0).volume, 0);
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kOff);
}

TEST_F(Ym2413Envelope, ModulatorsOfTheRhythmDoRelease) {
    Write({
        {0x0E, 0x21},
        {0x37, 0x00}
    });
    Skip(500);
    Write({
        {0x0E, 0x20}
    });
    ASSERT_EQ(Modulator(7).state, YmEnvelope::kRelease);
    Skip(200'000);
    EXPECT_EQ(Modulator(7).state, YmEnvelope::kOff);
    EXPECT_EQ(Modulator(7).volume, 255);
}

TEST_F(Ym2413Envelope, KeyOnDumpsFromEveryState) {
    for (const YmEnvelope from : {YmEnvelope::kOff, YmEnvelope::kRelease, YmEnvelope::kSustain,
                                  YmEnvelope::kDecay, YmEnvelope::kAttack}) {
        Start();
        PureVoice();
        Write({
            {5, 0x54},
            {7, 0x45}
        });
        KeyOn(0, 4, 300);
        if (from == YmEnvelope::kOff) {
            KeyOff(0, 4, 300);
            SkipTo(from);
        } else if (from == YmEnvelope::kRelease) {
            SkipTo(YmEnvelope::kSustain);
            KeyOff(0, 4, 300);
        } else {
            SkipTo(from);
        }
        Skip(from == YmEnvelope::kOff ? 0 : 10);
        ASSERT_EQ(Carrier(0).state, from);
        KeyOff(0, 4, 300);
        KeyOn(0, 4, 300);
        EXPECT_EQ(Carrier(0).state, YmEnvelope::kDump) << static_cast<int>(from);
    }
}

TEST_F(Ym2413Envelope, PhaseRestartsOnlyWhenTheDumpEnds) {
    PureVoice();
    KeyOn(0, 4, 300);
    Skip(1000);
    KeyOff(0, 4, 300);
    KeyOn(0, 4, 300);
    uint32_t phase = Carrier(0).phase;
    EXPECT_NE(phase, 0u);
    int32_t volume = Carrier(0).volume;
    int samples = 0;
    while (Carrier(0).volume < 255) {
        Skip(1);
        ++samples;
        ASSERT_GE(Carrier(0).volume, volume);
        volume = Carrier(0).volume;
        if (Carrier(0).state == YmEnvelope::kDump) {
            ASSERT_EQ(Carrier(0).phase, phase + Carrier(0).incr);
            phase = Carrier(0).phase;
        }
    }
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kAttack);
    EXPECT_EQ(Carrier(0).phase, Carrier(0).incr); // one increment in the sample that ended the dump
    EXPECT_NEAR(samples, 255.0 * SamplesPerStep(52 + 2), 10.0);
}

TEST_F(Ym2413Envelope, KeyThatIsHeldDoesNotStartAgain) {
    PureVoice();
    KeyOn(0, 4, 300);
    Skip(2000);
    const YmEnvelope state = Carrier(0).state;
    KeyOn(0, 4, 310);
    EXPECT_EQ(Carrier(0).state, state);
}

TEST_F(Ym2413Envelope, KeyOffOfASlotThatIsNotHeldDoesNothing) {
    PureVoice();
    Write({
        {0x10, 0x55},
        {0x20, 0x04}
    });
    EXPECT_EQ(Carrier(0).state, YmEnvelope::kOff);
}

// --- levels -------------------------------------------------------------------------------------

namespace {

double Peak(const std::vector<double>& samples) {
    double peak = 0.0;
    for (const double sample : samples) {
        peak = std::max(peak, std::fabs(sample));
    }
    return peak;
}

double Decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

} // namespace

TEST_F(Ym2413Envelope, ChannelVolumeFallsThreeDecibelsAStep) {
    PureVoice();
    KeyOn(0, 3, 300);
    Skip(1000);
    const double full = Peak(Run(2000));
    EXPECT_EQ(full, 2042.0 * 4.0);
    for (int volume = 1; volume < 16; ++volume) {
        Write({
            {0x30, volume}
        });
        // The finest step of the output is 4.
        const double expected = full * std::pow(10.0, -3.0103 * volume / 20.0);
        EXPECT_NEAR(Peak(Run(2000)), expected, 8.0) << volume;
    }
}

// 0.75 dB a step of the modulator's level, seen at its output.
TEST_F(Ym2413Envelope, ModulatorLevelFallsThreeQuartersOfADecibelAStep) {
    PureVoice();
    Write({
        {4, 0xF0}
    });
    KeyOn(0, 3, 300);
    Skip(1000);
    for (int level = 0; level < 64; ++level) {
        Write({
            {2, level}
        });
        int32_t peak = 0;
        for (int i = 0; i < 1000; ++i) {
            Skip(1);
            peak = std::max(peak, Modulator(0).fbOut[1]);
        }
        EXPECT_NEAR(peak, 2042.0 * std::exp2(-level / 8.0), 1.5) << level;
    }
}

// At the top of the F-number a block is an octave: 0, 1.5, 3 and 6 dB for the four settings.
TEST_F(Ym2413Envelope, KeyScaleLevelFallsByItsSettingEveryOctave) {
    const std::array<double, 4> perOctave{0.0, 1.5, 3.0, 6.0};
    for (int setting = 0; setting < 4; ++setting) {
        double before = 0.0;
        for (int block = 2; block < 6; ++block) {
            Start();
            PureVoice();
            Write({
                {1, 0x20        },
                {3, setting << 6}
            });
            KeyOn(0, block, 0x1F0);
            Skip(1000);
            const double level = Decibels(Peak(Run(8000)) / 8168.0);
            if (block > 2) {
                EXPECT_NEAR(before - level, perOctave[static_cast<size_t>(setting)], 0.3)
                    << setting << " block " << block;
            }
            before = level;
        }
    }
}

TEST_F(Ym2413Envelope, DecayIsHeardInDecibels) {
    PureVoice();
    Write({
        {5, 0xF4},
        {7, 0xF0}
    }); // rate 16: 0.375 dB every SamplesPerStep
    KeyOn(0, 4, 300);
    SkipTo(YmEnvelope::kDecay);
    Align(1u << 13);
    const double first = Peak(Run(400));
    Skip(40'000 - 400);
    const double second = Peak(Run(400));
    EXPECT_NEAR(Decibels(first / second), 0.376287 * 40'000 / SamplesPerStep(16 + 2), 0.4);
}

TEST_F(Ym2413Envelope, EnvelopeAt176IsSilentAndShiftsTheOutputs) {
    PureVoice();
    Write({
        {2, 0x00},
        {4, 0xF0},
        {3, 0x07}
    });
    KeyOn(0, 4, 300);
    Skip(1000);
    YM_SLOT& slot = Modulator(0);
    slot.volume = 175; // 65.6 dB down: still counted, though it may come to 0
    slot.fbOut = {11, 22};
    Skip(1);
    EXPECT_EQ(slot.fbOut[0], 22);
    slot.state = YmEnvelope::kSustain;
    slot.volume = 176;
    slot.fbOut = {1000, 2000};
    Skip(1);
    EXPECT_EQ(slot.fbOut, (std::array<int32_t, 2>{2000, 0}));
    Skip(1);
    EXPECT_EQ(slot.fbOut, (std::array<int32_t, 2>{0, 0}));
}

TEST_F(Ym2413Envelope, CarrierAt176AddsNothing) {
    PureVoice();
    KeyOn(0, 4, 300);
    Skip(1000);
    Carrier(0).state = YmEnvelope::kSustain;
    Carrier(0).volume = 175;
    EXPECT_GT(Peak(Run(2000)), 0.0);
    Carrier(0).volume = 176;
    EXPECT_EQ(Peak(Run(2000)), 0.0);
}
