// SSG envelopes: the ramps' speed, their ends, what is heard of the eight shapes, and releases.
#include "megadrive/ym2612_rig.h"

namespace {

constexpr double kSilence = 999.0;

class Ym2612Ssg : public Ym2612Rig {
protected:
    // Decay rate 20 without key scale: a quarter increment in an envelope clock, which is one step of
    // a ramp. So 512 steps take 3 x 512 samples.
    static constexpr int kRampSamples = 3 * 512;

    YM2612_SLOT& Voice() { return Slot(1, 4); }

    void Prepare(int ssg) {
        Start();
        PlayOne(1, 4, 0, 0);
        Keys(1, 0);
        Skip(2000);
        Pitch(1, 0, 512);
        SetOperators(1, 0x30, 15);
        SetOperator(1, 4, 0x60, 20);
        SetOperator(1, 4, 0x70, 20);
        SetOperator(1, 4, 0x80, 0xFF);
        SetOperator(1, 4, 0x90, ssg);
        // Let the ramp begin with a whole cycle of the slowest increments.
        while (ym->egCounter % 64 != 0) {
            Skip(1);
        }
    }

    // Attenuation that is heard, in dB under a full carrier: the sine is held at its crest while it is
    // measured, so that one sample tells the level.
    double HeardNow() {
        Voice().phase = 256u << 16;
        return AttenuationOf(std::fabs(Run(1)[0]));
    }
};

} // namespace

// What is heard at these parts of a ramp from the key on; the ends come by the part's own rule, while
// the course of a ramp is turned over with the alternate bit alone: 1,023 less the level, which is
// silent to begin with and -48 dB in the end.
TEST_F(Ym2612Ssg, ShapesAsTheyAreHeard) {
    constexpr std::array<double, 5> kParts{0.25, 0.75, 1.25, 1.75, 2.75};
    const double turned = (1023 - 384) * 96.0 / 1024.0;
    struct ROW {
        int ssg;
        std::array<double, 5> decibels;
    };
    for (const ROW& row : {
             ROW{0x8, {12.0, 36.0, 12.0, 36.0, 36.0}                  }, // a saw that falls
             ROW{0x9, {12.0, 36.0, kSilence, kSilence, kSilence}      }, // falls, then silence
             ROW{0xA, {kSilence, turned, kSilence, turned, turned}    }, //
             ROW{0xB, {kSilence, turned, 0.0, 0.0, 0.0}               }, // loud in the end
             ROW{0xC, {12.0, 36.0, 12.0, 36.0, 36.0}                  }, //
             ROW{0xD, {12.0, 36.0, 0.0, 0.0, 0.0}                     }, // loud in the end
             ROW{0xE, {kSilence, turned, kSilence, turned, turned}    }, //
             ROW{0xF, {kSilence, turned, kSilence, kSilence, kSilence}}, // silent in the end
    }) {
        Prepare(row.ssg);
        Keys(1, 8);
        int now = 0;
        for (size_t i = 0; i < kParts.size(); ++i) {
            const int at = static_cast<int>(kParts.at(i) * kRampSamples);
            Skip(static_cast<size_t>(at - now));
            now = at + 1;
            // A step is 0.09 dB, and at -60 dB the output has only steps of a seventh.
            const double expected = row.decibels.at(i);
            const double tolerance = expected > 50.0 && expected < 100.0 ? 1.5 : 0.5;
            EXPECT_NEAR(HeardNow(), expected, tolerance)
                << std::hex << row.ssg << std::dec << " at " << kParts.at(i);
        }
    }
}

TEST_F(Ym2612Ssg, RampsGoFourTimesAsFastAndHalfAsFar) {
    Prepare(8);
    Keys(1, 8);
    int samples = 0;
    int32_t highest = 0;
    while (Voice().volume >= highest) {
        highest = Voice().volume;
        Skip(1);
        ++samples;
    }
    EXPECT_EQ(highest, 512);
    EXPECT_NEAR(samples, kRampSamples, 30);
    Prepare(0);
    Keys(1, 8);
    samples = 0;
    while (Voice().volume < 512) {
        Skip(1);
        ++samples;
    }
    EXPECT_NEAR(samples, 4 * kRampSamples, 60);
}

// A saw starts its wave again with each ramp; a shape that alternates doesn't.
TEST_F(Ym2612Ssg, RepeatedSawRestartsTheWave) {
    for (const int ssg : {0x8, 0xC, 0xA, 0xE}) {
        Prepare(ssg);
        Keys(1, 8);
        while (Voice().volume < 512) {
            Skip(1);
        }
        const uint32_t phase = Voice().phase;
        const auto step = static_cast<uint32_t>(Voice().phaseStep);
        ASSERT_GT(phase, step);
        Skip(1);
        EXPECT_EQ(Voice().phase, (ssg & 2) != 0 ? phase + step : step) << ssg;
        EXPECT_LT(Voice().volume, 8);
        EXPECT_EQ(Voice().state, Ym2612Envelope::kDecay);
        EXPECT_EQ(Voice().ssgInverted, (ssg & 2) != 0 ? 4 : 0);
    }
}

// With a slower attack, a ramp climbs back from where it is.
TEST_F(Ym2612Ssg, RepeatedRampAttacksUnlessItIsInstant) {
    Prepare(8);
    Keys(1, 8);
    SetOperator(1, 4, 0x50, 20);
    while (Voice().volume < 512) {
        Skip(1);
    }
    Skip(1);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kAttack);
    EXPECT_GE(Voice().volume, 480);
}

// Published: bit 2 starts the shape turned over. A key press shows it at once.
TEST_F(Ym2612Ssg, KeyPressAndLevelWritesGoByTheAttackBit) {
    for (const int ssg : {0x8, 0xA, 0xC, 0xE}) {
        Prepare(ssg);
        Keys(1, 8);
        const uint32_t expected = (ssg & 4) != 0 ? 512 : 0;
        EXPECT_EQ(Voice().volOut, expected) << ssg;
        Level(1, 4, 5);
        EXPECT_EQ(Voice().volOut, expected + 40) << ssg;
        SetOperator(1, 4, 0x90, ssg ^ 4);
        EXPECT_EQ(Voice().volOut, 512 - expected + 40) << ssg;
        SetOperator(1, 4, 0x90, 0);
        EXPECT_EQ(Voice().volOut, 40u) << ssg;
    }
}

// A loud end, which is a turned level of 512, dies away from loud.
TEST_F(Ym2612Ssg, ReleaseTurnsTheLevelBack) {
    for (const int ssg : {0xB, 0xD}) {
        Prepare(ssg);
        SetOperator(1, 4, 0x80, 0xF8);
        Keys(1, 8);
        Skip(2 * kRampSamples);
        ASSERT_EQ(Voice().volume, 512);
        EXPECT_EQ(HeardNow(), 0.0);
        Keys(1, 0);
        EXPECT_EQ(Voice().state, Ym2612Envelope::kRelease);
        EXPECT_EQ(Voice().volume, 0);
        EXPECT_EQ(Voice().volOut, 0u);
        // Rate 34 makes 6 increments in 64 envelope clocks, and a ramp four steps of each.
        const int expected = 3 * 512 * 64 / 6 / 4;
        int samples = 0;
        while (Voice().state == Ym2612Envelope::kRelease) {
            Skip(1);
            ++samples;
        }
        EXPECT_NEAR(samples, expected, 60);
        EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
        EXPECT_EQ(Voice().volume, 1023);
    }
}

TEST_F(Ym2612Ssg, ReleaseOfAQuietRampEndsAtOnce) {
    Prepare(9);
    Keys(1, 8);
    Skip(2 * kRampSamples);
    EXPECT_EQ(Voice().volume, 1023);
    Keys(1, 0);
    EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
    EXPECT_EQ(Voice().volOut, 1023u);
}

// Increments of 4 and 8 in turn, four steps each, pass 480 and 496 and go 16 beyond the end. Turned over that
// is -16, of which ten bits count: 1,008, which is beyond the end, too.
TEST_F(Ym2612Ssg, ReleaseOfARampBeyondItsEndIsSilent) {
    for (const int ssg : {0xB, 0xD}) {
        Prepare(ssg);
        SetOperator(1, 4, 0x60, 29);
        Skip(3); // so that the smaller increment comes first
        Keys(1, 8);
        Skip(200);
        ASSERT_EQ(Voice().volume, 528);
        ASSERT_NE(Voice().ssgInverted, ssg & 4);
        Keys(1, 0);
        EXPECT_EQ(Voice().state, Ym2612Envelope::kOff);
        EXPECT_EQ(Voice().volume, 1023);
        EXPECT_EQ(Voice().volOut, 1023u);
    }
}

// A shape that is written when the plain envelope is far below the end: 512 - 700 is 836 in ten bits.
TEST_F(Ym2612Ssg, ReleaseOfAPlainLevelBeyondTheEndIsSilent) {
    for (const int ssg : {0x8, 0xC}) {
        Prepare(0);
        Keys(1, 8);
        while (Voice().volume < 700) {
            Skip(1);
        }
        SetOperator(1, 4, 0x90, ssg);
        Keys(1, 0);
        EXPECT_EQ(Voice().state, Ym2612Envelope::kOff) << ssg;
        EXPECT_EQ(Voice().volume, 1023) << ssg;
        EXPECT_EQ(Voice().volOut, 1023u) << ssg;
    }
}

TEST_F(Ym2612Ssg, KeyPressForgetsTheTurn) {
    Prepare(0xA);
    Keys(1, 8);
    Skip(kRampSamples + 100);
    EXPECT_EQ(Voice().ssgInverted, 4);
    Keys(1, 0);
    Keys(1, 8);
    EXPECT_EQ(Voice().ssgInverted, 0);
}
