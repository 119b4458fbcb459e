#include "nes/apu_rig.h"

#include <string>

namespace {

// A channel that plays: constant volume, length counter halted, sweep off and not muting.
class PulseRig : public ApuRig {
public:
    explicit PulseRig(int channelNumber = 0)
        : channel(channelNumber) {
        Write(0x4017, 0x40);
        Write(0x4015, 0x0F);
    }

    void Set(int offset, int value) { Write(0x4000 + channel * 4 + offset, value); }

    void Play(int period, int duty, int volume) {
        Set(0, duty << 6 | 0x30 | volume);
        Set(1, 0x08);
        Set(2, period & 255);
        Set(3, period >> 8 | 0x08);
    }

    [[nodiscard]] int Period() const { return apu->pulses[static_cast<size_t>(channel)].period; }

    // The audible volume, 0 for silence. Runs two waves of period 15.
    int Level() {
        const std::vector<int> samples = Raw(64 + 4);
        return Highest(std::vector<int>(samples.begin() + 4, samples.end())) / 200;
    }

    int channel;
};

} // namespace

TEST(ApuPulse, OnePairComesEveryEighthCycle) {
    ApuRig rig;
    for (int cycle = 1; cycle <= 80; ++cycle) {
        rig.Run(1);
        EXPECT_EQ(rig.raw.size(), static_cast<size_t>(cycle / 8));
    }
}

TEST(ApuPulse, ResetIsSilent) {
    ApuRig rig;
    for (const int sample : rig.Raw(10'000)) {
        ASSERT_EQ(sample, 0);
    }
    EXPECT_EQ(rig.Status() & 0x9F, 0);
}

// A wave is eight steps of 2 x (period + 1) cycles.
TEST(ApuPulse, FrequencyFollowsThePeriod) {
    for (const int period : {8, 9, 100, 253, 1000, 2047}) {
        for (int channel = 0; channel < 2; ++channel) {
            PulseRig rig(channel);
            rig.Play(period, 2, 15);
            const double expected = kApuClock / (16.0 * (period + 1));
            EXPECT_NEAR(Frequency(rig.Raw(450'000)), expected, expected * 0.001)
                << channel << " at " << period;
        }
    }
}

// A period of 399 makes a step of 800 cycles, a hundred pairs. The first step after a restart is the wave's
// second.
TEST(ApuPulse, DutiesStepByStep) {
    const std::array<std::string, 4> waves{"-+------", "-++-----", "-++++---", "+--+++++"};
    for (size_t duty = 0; duty < waves.size(); ++duty) {
        for (int channel = 0; channel < 2; ++channel) {
            PulseRig rig(channel);
            rig.Play(399, static_cast<int>(duty), 1);
            rig.Align();
            rig.Raw(200);
            rig.Set(3, 0x09); // restarts the wave, not the timer
            const std::vector<int> samples = rig.Raw(800 + 100);
            const auto next = std::find_if(samples.begin(), samples.end(),
                                           [&](int sample) { return sample != samples[0]; });
            ASSERT_NE(next, samples.end());
            std::string seen;
            // The middle of every step: every step begins at the same pair of each hundred.
            const auto offset = static_cast<size_t>(next - samples.begin()) % 100 + 50;
            for (size_t step = 0; step < 8; ++step) {
                const int sample = samples[step * 100 + offset];
                ASSERT_EQ(std::abs(sample), 200);
                seen.push_back(sample > 0 ? '+' : '-');
            }
            EXPECT_EQ(seen, waves[duty].substr(1) + waves[duty].substr(0, 1)) << duty;
        }
    }
}

TEST(ApuPulse, LevelIsTwoHundredTimesTheVolumeEitherWay) {
    for (int volume = 0; volume < 16; ++volume) {
        for (int duty = 0; duty < 4; ++duty) {
            PulseRig rig;
            rig.Play(15, duty, volume);
            rig.Raw(32);
            const std::vector<int> samples = rig.Raw(320);
            EXPECT_EQ(Highest(samples), volume * 200);
            EXPECT_EQ(Lowest(samples), volume * -200);
            EXPECT_FALSE(rig.sidesDiffer);
            // Of 32 pairs per wave: an eighth, a quarter, a half and three quarters.
            const std::array<int, 4> high{40, 80, 160, 240};
            if (volume != 0) {
                EXPECT_EQ(std::count(samples.begin(), samples.end(), volume * 200),
                          high[static_cast<size_t>(duty)]);
            }
        }
    }
}

TEST(ApuPulse, BothChannelsAddUp) {
    PulseRig rig(0);
    rig.Play(15, 2, 15);
    rig.channel = 1;
    rig.Play(15, 2, 15);
    rig.Raw(64);
    const std::vector<int> samples = rig.Raw(64);
    EXPECT_EQ(Highest(samples), 6000);
    EXPECT_EQ(Lowest(samples), -6000);
}

TEST(ApuPulse, HighRegisterRestartsTheWaveButNotTheTimer) {
    PulseRig rig;
    rig.Play(399, 0, 15);
    rig.Run(2500);
    const uint32_t counter = rig.apu->pulses[0].counter;
    rig.Set(3, 0x09);
    EXPECT_EQ(rig.apu->pulses[0].position, 0);
    EXPECT_EQ(rig.apu->pulses[0].counter, counter);
    EXPECT_EQ(rig.Period(), 0x18F);
}

TEST(ApuPulse, ConstantVolumeIgnoresTheEnvelope) {
    PulseRig rig;
    rig.Play(15, 2, 9);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(rig.Level(), 9);
        rig.QuarterFrame();
    }
}

// From 15 down by one every period + 1 quarter frames; then it stays at 0.
TEST(ApuPulse, EnvelopeDecaysStepByStep) {
    for (const int period : {0, 1, 5}) {
        PulseRig rig;
        rig.Play(15, 2, 0);
        rig.Set(0, 0x80 | period); // duty 2, decay, no loop
        rig.Set(3, 0x08);          // a length of 254
        std::vector<int> levels;
        std::vector<int> expected;
        for (int quarter = 0; quarter < 17 * (period + 1); ++quarter) {
            rig.QuarterFrame();
            levels.push_back(rig.Level());
            expected.push_back(std::max(0, 15 - quarter / (period + 1)));
        }
        EXPECT_EQ(levels, expected) << period;
    }
}

TEST(ApuPulse, EnvelopeLoopsFromZeroToFifteen) {
    PulseRig rig;
    rig.Play(15, 2, 0);
    rig.Set(0, 0xA0 | 1);
    rig.Set(3, 0x08);
    for (int quarter = 0; quarter < 100; ++quarter) {
        rig.QuarterFrame();
        EXPECT_EQ(rig.Level(), 15 - quarter / 2 % 16) << quarter;
    }
}

TEST(ApuPulse, EnvelopeStartsAgainWithTheHighRegister) {
    PulseRig rig;
    rig.Play(15, 2, 0);
    rig.Set(0, 0x80);
    rig.Set(3, 0x08);
    for (int i = 0; i < 5; ++i) {
        rig.QuarterFrame();
    }
    EXPECT_EQ(rig.Level(), 11);
    rig.Set(3, 0x08);
    EXPECT_EQ(rig.Level(), 11); // only with the next quarter frame
    rig.QuarterFrame();
    EXPECT_EQ(rig.Level(), 15);
}

// Period under 8: silent, even with the sweep off.
TEST(ApuPulse, PeriodUnderEightIsMuted) {
    for (int channel = 0; channel < 2; ++channel) {
        for (const int sweep : {0x00, 0x08, 0x80, 0x8F}) {
            for (int period = 0; period < 10; ++period) {
                PulseRig rig(channel);
                rig.Play(period, 2, 15);
                rig.Set(1, sweep);
                rig.Raw(50);
                const bool muted = Highest(rig.Raw(100)) == 0;
                EXPECT_EQ(muted, period < 8) << period << " sweep " << sweep;
                EXPECT_EQ(rig.Status() & 3, 1 << channel); // the length counter still runs
            }
        }
    }
}

// An additive sweep mutes as soon as period + (period >> shift) needs a twelfth bit, even when off.
TEST(ApuPulse, SweepThatWouldOverflowMutes) {
    struct ROW {
        int period;
        int shift;
        bool muted;
    };
    for (const ROW row : {
             ROW{0x3FF, 0, false},
             ROW{0x400, 0, true },
             ROW{0x555, 1, false}, // 0x555 + 0x2AA = 0x7FF
             ROW{0x556, 1, true },
             ROW{0x666, 2, false}, // 0x666 + 0x199 = 0x7FF
             ROW{0x667, 2, true },
             ROW{0x7F0, 7, false}, // 0x7F0 + 0x00F = 0x7FF
             ROW{0x7F1, 7, true },
    }) {
        for (int channel = 0; channel < 2; ++channel) {
            PulseRig rig(channel);
            rig.Play(row.period, 2, 15);
            rig.Set(1, row.shift);
            rig.Raw(8000);
            EXPECT_EQ(Highest(rig.Raw(8000)) == 0, row.muted) << row.period;
            rig.Set(1, row.shift | 8); // a falling sweep never does
            rig.Raw(8000);
            EXPECT_EQ(Highest(rig.Raw(8000)), 3000) << row.period;
        }
    }
}

// The first clock only reloads the divider, which is 1 and so doesn't change the period.
TEST(ApuPulse, SweepGoesUpByTheShiftedPeriod) {
    for (int channel = 0; channel < 2; ++channel) {
        PulseRig rig(channel);
        rig.Play(0x100, 2, 15);
        rig.Set(1, 0x80 | 2);
        std::vector<int> periods;
        for (int i = 0; i < 6; ++i) {
            rig.HalfFrame();
            periods.push_back(rig.Period());
        }
        // 256, + 64, + 80, + 100, + 125, + 156
        EXPECT_EQ(periods, (std::vector<int>{256, 320, 400, 500, 625, 781})) << channel;
    }
}

TEST(ApuPulse, SweepDownTakesOneMoreOnTheFirstChannel) {
    for (int channel = 0; channel < 2; ++channel) {
        PulseRig rig(channel);
        rig.Play(0x200, 2, 15);
        rig.Set(1, 0x88 | 1);
        std::vector<int> periods;
        for (int i = 0; i < 8; ++i) {
            rig.HalfFrame();
            periods.push_back(rig.Period());
        }
        // Stops under 8: the channel is muted.
        EXPECT_EQ(periods, channel == 0 ? (std::vector<int>{512, 255, 127, 63, 31, 15, 7, 7})
                                        : (std::vector<int>{512, 256, 128, 64, 32, 16, 8, 4}));
    }
}

TEST(ApuPulse, SweepWaitsPeriodPlusOneHalfFrames) {
    PulseRig rig;
    rig.Play(0x100, 2, 15);
    rig.Set(1, 0x80 | 3 << 4 | 4);
    std::vector<int> periods;
    for (int i = 0; i < 10; ++i) {
        rig.HalfFrame();
        periods.push_back(rig.Period());
    }
    EXPECT_EQ(periods, (std::vector<int>{256, 256, 256, 256, 272, 272, 272, 272, 289, 289}));
}

TEST(ApuPulse, SweepRegisterRestartsTheDivider) {
    PulseRig rig;
    rig.Play(0x100, 2, 15);
    rig.Set(1, 0x80 | 3 << 4 | 4);
    for (int i = 0; i < 4; ++i) {
        rig.HalfFrame();
    }
    EXPECT_EQ(rig.Period(), 256);
    rig.Set(1,
            0x80 | 3 << 4 | 4); // one half frame before the step: the divider is 0 and steps still
    rig.HalfFrame();
    EXPECT_EQ(rig.Period(), 272);
    rig.HalfFrame();
    rig.Set(1, 0x80 | 3 << 4 | 4);
    for (int i = 0; i < 4; ++i) {
        rig.HalfFrame();
        EXPECT_EQ(rig.Period(), 272) << i;
    }
    rig.HalfFrame();
    EXPECT_EQ(rig.Period(), 289);
}

TEST(ApuPulse, SweepNeedsEnableAndShift) {
    for (const int sweep : {0x02, 0x80, 0x88, 0x0A}) {
        PulseRig rig;
        rig.Play(0x100, 2, 15);
        rig.Set(1, sweep);
        for (int i = 0; i < 10; ++i) {
            rig.HalfFrame();
        }
        EXPECT_EQ(rig.Period(), 0x100) << sweep;
    }
}

TEST(ApuPulse, SweepStopsWhereItMutes) {
    PulseRig rig;
    rig.Play(0x400, 2, 15);
    rig.Set(1, 0x81);
    for (int i = 0; i < 6; ++i) {
        rig.HalfFrame();
    }
    EXPECT_EQ(rig.Period(), 0x600); // 0x600 + 0x300 doesn't fit
    rig.Raw(4000);
    EXPECT_EQ(Highest(rig.Raw(4000)), 0);
}
