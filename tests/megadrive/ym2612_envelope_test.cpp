// Envelopes: times against the published rates, key scale, levels and the order of their parts.
#include "megadrive/ym2612_rig.h"
#include "megadrive/ym2612_tables.h"

namespace {

// The F-number with the given low two bits of the key code.
constexpr std::array<int, 4> kFnum{512, 900, 1024, 1200};

// Envelope increments in a sample at one of the 64 published rates. Four rates double the speed, and
// within four it goes as 4 : 5 : 6 : 7; the very slowest are coarser, and the last four are alike. An
// envelope steps once in three samples.
double StepsPerSample(int rate) {
    if (rate < 2) {
        return 0.0;
    }
    if (rate < 4) {
        return 0.5 / 2048.0 / 3.0;
    }
    if (rate < 8) {
        return (rate < 6 ? 0.5 : 0.75) / 1024.0 / 3.0;
    }
    if (rate >= 60) {
        return 8.0 / 3.0;
    }
    const int octave = rate / 4;
    return (4 + rate % 4) / 8.0 * std::exp2(octave - 11) / 3.0;
}

class Ym2612EnvelopeTest : public Ym2612Rig {
protected:
    YM2612_SLOT& Voice() { return Slot(1, 4); }

    // One operator at a key code; its envelope's registers are set before the key is pressed.
    void Prepare(int keyCode, int ar, int d1r, int d2r, int slAndRr) {
        Start();
        PureVoice(1);
        Level(1, 4, 0);
        Pitch(1, keyCode >> 2, kFnum.at(static_cast<size_t>(keyCode & 3)));
        SetOperator(1, 4, 0x50, ar);
        SetOperator(1, 4, 0x60, d1r);
        SetOperator(1, 4, 0x70, d2r);
        SetOperator(1, 4, 0x80, slAndRr);
        Skip(1);
    }

    // Samples until the envelope has moved by `steps`; 0 if that takes too long.
    size_t SamplesFor(int steps) {
        const int32_t target = Voice().volume + steps;
        for (size_t samples = 1; samples < 20'000'000; ++samples) {
            Skip(1);
            if (Voice().volume >= target) {
                return samples;
            }
        }
        return 0;
    }

    void SkipTo(Ym2612Envelope state) {
        for (int i = 0; i < 3'000'000 && Voice().state != state; ++i) {
            Skip(1);
        }
        ASSERT_EQ(Voice().state, state);
    }

    // Measured time of a fall at a published rate against the formula.
    void ExpectFall(int rate, const char* what) {
        const double perSample = StepsPerSample(std::min(rate, 63));
        ASSERT_GT(perSample, 0.0);
        const int steps = std::clamp(static_cast<int>(perSample * 50'000), 8, 800);
        const double expected = steps / perSample;
        // It may begin and end anywhere in the cycle of eight increments.
        EXPECT_NEAR(static_cast<double>(SamplesFor(steps)), expected, 2.0 / perSample + 9.0)
            << what << " at rate " << rate;
    }
};

} // namespace

TEST_F(Ym2612EnvelopeTest, RateTableIsThePublishedOne) {
    for (int index = 0; index < 128; ++index) {
        const YM2612_RATE rate = kYm2612RateTable.at(static_cast<size_t>(index));
        double perSample = 0.0;
        for (size_t i = 0; i < 8; ++i) {
            perSample += kYm2612Steps.at(rate.select + i);
        }
        perSample /= 8.0 * std::exp2(rate.shift) * 3.0;
        const double expected = index < 32 ? 0.0 : StepsPerSample(std::min(index - 32, 63));
        EXPECT_DOUBLE_EQ(perSample, expected) << index;
    }
}

TEST_F(Ym2612EnvelopeTest, DecayTimesFollowRateAndKeyScale) {
    for (int scale = 0; scale < 4; ++scale) {
        for (const int keyCode : {0, 9, 22, 31}) {
            for (int d1r = 2; d1r < 32; d1r += scale == 0 ? 1 : 4) {
                const int rate = 2 * d1r + (keyCode >> (3 - scale));
                if (rate < 8) {
                    continue; // takes long; see below
                }
                Prepare(keyCode, scale << 6 | 31, d1r, 0, 0xFF);
                Keys(1, 8);
                ASSERT_EQ(Voice().state, Ym2612Envelope::kDecay);
                ExpectFall(rate, "decay");
            }
        }
    }
}

TEST_F(Ym2612EnvelopeTest, SlowestRatesAndNone) {
    for (const int rate : {2, 4, 6}) {
        Prepare(0, 31, rate / 2, 0, 0xFF);
        Keys(1, 8);
        ExpectFall(rate, "slow decay");
    }
    Prepare(31, 0xDF, 0, 0, 0xFF); // 0 stays 0 at the fullest key scale
    Keys(1, 8);
    Skip(100'000);
    EXPECT_EQ(Voice().volume, 0);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kDecay);
}

TEST_F(Ym2612EnvelopeTest, SustainAndReleaseTimes) {
    for (int value = 3; value < 32; value += 3) {
        Prepare(9, 0x1F, 31, value, 0x1F);
        Keys(1, 8);
        SkipTo(Ym2612Envelope::kSustain);
        ExpectFall(2 * value + 1, "sustain");
    }
    // Four bits: twice the value and one more, on the scale of the other rates.
    for (int value = 1; value < 16; ++value) {
        for (const int keyCode : {0, 31}) {
            Prepare(keyCode, 0x5F, 0, 0, value);
            Keys(1, 8);
            Keys(1, 0);
            ASSERT_EQ(Voice().state, Ym2612Envelope::kRelease);
            ExpectFall(4 * value + 2 + (keyCode >> 2), "release");
        }
    }
}

// At 15, the rate of a voice that ends at once, the level has gone within 8 ms.
TEST_F(Ym2612EnvelopeTest, FastestReleaseIsSilentSoon) {
    Prepare(16, 31, 0, 0, 0x0F);
    Keys(1, 8);
    Skip(100);
    Keys(1, 0);
    Skip(static_cast<size_t>(kRate * 0.008));
    EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
    EXPECT_EQ(Voice().volume, 1023);
    EXPECT_EQ(PeakOf(Run(100)), 0.0);
}

TEST_F(Ym2612EnvelopeTest, SustainLevelsAreThreeDecibelsApart) {
    for (int level = 1; level < 16; ++level) {
        Prepare(0, 31, 16, 0, level << 4 | 15);
        Keys(1, 8);
        SkipTo(Ym2612Envelope::kSustain);
        const double decibels = Voice().volume * 96.0 / 1024.0;
        EXPECT_NEAR(decibels, level == 15 ? 93.0 : 3.0 * level, 0.1) << level;
        const int32_t held = Voice().volume;
        Skip(10'000);
        EXPECT_EQ(Voice().volume, held);
    }
}

TEST_F(Ym2612EnvelopeTest, DecayPassesToSustainWhenTheLevelIsMovedUp) {
    Prepare(0, 31, 12, 0, 0xFF);
    Keys(1, 8);
    while (Voice().volume < 100) {
        Skip(1);
    }
    ASSERT_EQ(Voice().state, Ym2612Envelope::kDecay);
    SetOperator(1, 4, 0x80, 0x4F); // 128
    EXPECT_EQ(Voice().state, Ym2612Envelope::kDecay);
    SetOperator(1, 4, 0x80, 0x3F); // 96
    EXPECT_EQ(Voice().state, Ym2612Envelope::kSustain);
}

TEST_F(Ym2612EnvelopeTest, SustainStopsAtTheBottom) {
    Prepare(0, 31, 31, 31, 0x1F);
    Keys(1, 8);
    Skip(2000);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kSustain);
    EXPECT_EQ(Voice().volume, 1023);
}

// Every increment takes a sixteenth of what is left, from silence to full level.
TEST_F(Ym2612EnvelopeTest, AttackTimesFollowTheRate) {
    int increments = 0;
    for (int left = 1024; left > 1; left -= (left + 15) / 16) {
        ++increments;
    }
    for (int ar = 5; ar <= 23; ++ar) { // above, increments are larger than one
        Prepare(0, ar, 0, 0, 0x0F);
        Keys(1, 8);
        ASSERT_EQ(Voice().state, Ym2612Envelope::kAttack);
        size_t samples = 0;
        while (Voice().state == Ym2612Envelope::kAttack && samples < 3'000'000) {
            Skip(1);
            ++samples;
        }
        const double expected = increments / StepsPerSample(2 * ar);
        EXPECT_NEAR(static_cast<double>(samples), expected, 2.0 / StepsPerSample(2 * ar) + 3.0)
            << ar;
        EXPECT_EQ(Voice().volume, 0);
    }
}

TEST_F(Ym2612EnvelopeTest, AttackIsExponential) {
    Prepare(0, 12, 0, 0, 0x0F);
    Keys(1, 8);
    int32_t before = Voice().volume;
    int moves = 0;
    while (Voice().state == Ym2612Envelope::kAttack) {
        Skip(1);
        const int32_t now = Voice().volume;
        if (now != before) {
            EXPECT_NEAR(before - now, (before + 1) / 16.0, 1.0);
            ++moves;
        }
        before = now;
    }
    EXPECT_GT(moves, 60);
    EXPECT_EQ(before, 0);
}

TEST_F(Ym2612EnvelopeTest, FasterAttacksTakeLessTime) {
    size_t before = 1'000'000;
    for (int ar = 20; ar < 31; ++ar) {
        Prepare(0, ar, 0, 0, 0x0F);
        Keys(1, 8);
        size_t samples = 0;
        while (Voice().state == Ym2612Envelope::kAttack && samples < 100'000) {
            Skip(1);
            ++samples;
        }
        EXPECT_LT(samples, before) << ar;
        before = samples;
    }
    EXPECT_LE(before, 3u * 10);
}

// Rate and key scale from 62 of 63 on.
TEST_F(Ym2612EnvelopeTest, HighestAttackRatesAreInstant) {
    struct ROW {
        int ar;
        int keyCode;
        bool instant;
    };
    for (const ROW row : {
             ROW{31, 0,  true }, // 62 + 0
             ROW{30, 8,  true }, // 60 + 2, key scale 1
             ROW{30, 7,  false}, // 60 + 1
             ROW{27, 31, false}, // 54 + 7
             ROW{28, 31, true }  // 56 + 7
    }) {
        Prepare(row.keyCode, 1 << 6 | row.ar, 4, 0, 0x8F);
        Keys(1, 8);
        EXPECT_EQ(Voice().volume, row.instant ? 0 : 1023) << row.ar << " " << row.keyCode;
        EXPECT_EQ(Voice().state, row.instant ? Ym2612Envelope::kDecay : Ym2612Envelope::kAttack);
        EXPECT_EQ(Voice().volOut, static_cast<uint32_t>(Voice().volume));
    }
}

TEST_F(Ym2612EnvelopeTest, AttackRateZeroNeverSounds) {
    Prepare(31, 0xC0, 0, 0, 0x0F);
    Keys(1, 8);
    Skip(100'000);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kAttack);
    EXPECT_EQ(Voice().volume, 1023);
}

TEST_F(Ym2612EnvelopeTest, FullLevelWithoutSustainLevelSkipsTheDecay) {
    Prepare(0, 31, 31, 0, 0x0F);
    Keys(1, 8);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kSustain);
    Prepare(0, 20, 31, 0, 0x0F);
    Keys(1, 8);
    while (Voice().state == Ym2612Envelope::kAttack) {
        Skip(1);
    }
    EXPECT_EQ(Voice().state, Ym2612Envelope::kSustain);
}

// A key pressed while its note dies attacks from where it is, and the wave starts anew.
TEST_F(Ym2612EnvelopeTest, KeyPressStartsFromTheLevelOfNow) {
    Prepare(16, 16, 0, 0, 0x08);
    Keys(1, 8);
    SkipTo(Ym2612Envelope::kSustain);
    Keys(1, 0);
    while (Voice().volume < 300) {
        Skip(1);
    }
    const int32_t level = Voice().volume;
    EXPECT_NE(Voice().phase, 0u);
    Keys(1, 8);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kAttack);
    EXPECT_EQ(Voice().volume, level);
    EXPECT_EQ(Voice().phase, 0u);
}

TEST_F(Ym2612EnvelopeTest, KeyThatIsHeldDoesNotStartAgain) {
    Prepare(16, 31, 0, 0, 0x0F);
    Keys(1, 8);
    Skip(100);
    const uint32_t phase = Voice().phase;
    Keys(1, 8);
    EXPECT_EQ(Voice().phase, phase);
    Keys(1, 0);
    Keys(1, 8);
    EXPECT_EQ(Voice().phase, 0u);
}

TEST_F(Ym2612EnvelopeTest, KeyUpOfASlotThatIsNotHeldDoesNothing) {
    Prepare(16, 31, 0, 0, 0x0F);
    Keys(1, 0);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
    Keys(1, 8);
    Keys(1, 0);
    Skip(1000);
    Keys(1, 0);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
}

TEST_F(Ym2612EnvelopeTest, KeyScaleIsReadAgainWithTheNextSample) {
    Prepare(0, 0xC8, 8, 8, 0x88);
    EXPECT_EQ(Voice().ksr, 0);
    Pitch(1, 7, 1200);
    EXPECT_EQ(Voice().ksr, 0);
    Skip(1);
    EXPECT_EQ(Voice().ksr, 31);
    // 2 x 8 + 31 is rate 47, the first that may step at every envelope clock; release 34 + 31 too.
    EXPECT_EQ(Voice().decay.shift, 0);
    EXPECT_EQ(Voice().attack.shift, 0);
    EXPECT_EQ(Voice().sustain.shift, 0);
    SetOperator(1, 4, 0x50, 0x08); // key scale 0: 31 >> 3
    Skip(1);
    EXPECT_EQ(Voice().ksr, 3);
    EXPECT_EQ(Voice().decay.shift, 7); // rate 19: 11 - 19 / 4
}

TEST_F(Ym2612EnvelopeTest, EnvelopesStepOnceInThreeSamples) {
    for (uint32_t i = 1; i <= 30; ++i) {
        Skip(1);
        EXPECT_EQ(ym->egCounter, i / 3) << i;
    }
}
