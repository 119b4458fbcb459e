// Pitches: block, F-number, multiple, detune, channel 3's own pitches and the LFO.
#include "megadrive/ym2612_rig.h"
#include "megadrive/ym2612_tables.h"

namespace {

class Ym2612Pitch : public Ym2612Rig {
protected:
    // How far a slot's phase goes in a sample, as parts of a turn.
    double TurnsOf(int channel, int op) {
        const uint32_t before = Slot(channel, op).phase;
        Skip(1);
        return (Slot(channel, op).phase - before) / 67'108'864.0;
    }

    // Peaks of windows of 16 samples: the course of the loudness of a tone of that length.
    std::vector<double> Course(size_t windows) {
        std::vector<double> course;
        for (size_t i = 0; i < windows; ++i) {
            course.push_back(PeakOf(Run(16)));
        }
        return course;
    }
};

} // namespace

TEST_F(Ym2612Pitch, FrequencyFollowsBlockNumberAndMultiple) {
    int measured = 0;
    for (int block = 0; block < 8; ++block) {
        for (const int fnum : {617, 1024, 1148, 2047}) {
            for (int multiple = 0; multiple < 16; ++multiple) {
                const double expected =
                    PublishedFrequency(block, fnum, multiple == 0 ? 0.5 : multiple);
                if (expected > kRate / 4.0 || expected < 30.0) {
                    continue;
                }
                Start();
                PlayOne(5, 3, block, fnum);
                SetOperator(5, 3, 0x30, multiple);
                Skip(2);
                const auto length = static_cast<size_t>(std::max(2000.0, 3.2 * kRate / expected));
                EXPECT_NEAR(FrequencyOf(Run(length)), expected, expected * 0.001)
                    << block << " " << fnum << " " << multiple;
                ++measured;
            }
        }
    }
    EXPECT_GT(measured, 350);
}

TEST_F(Ym2612Pitch, HighPartWaitsForTheLowOne) {
    PlayOne(1, 4, 4, 500);
    Skip(1);
    const double before = TurnsOf(1, 4);
    SetChannel(1, 0xA4, 5 << 3 | 3);
    EXPECT_EQ(TurnsOf(1, 4), before);
    SetChannel(1, 0xA0, 0x44);
    EXPECT_DOUBLE_EQ(TurnsOf(1, 4), 0x344 * 16 / 1'048'576.0);
    // One latch serves all channels.
    SetChannel(2, 0xA4, 2 << 3 | 1);
    SetChannel(1, 0xA0, 0x44);
    EXPECT_DOUBLE_EQ(TurnsOf(1, 4), 0x144 * 2 / 1'048'576.0);
}

// The manual's table in Hz, for a clock of 8 MHz, at its lowest and highest key codes.
TEST_F(Ym2612Pitch, DetuneIsTheManualsInHertz) {
    constexpr std::array<double, 4> kLowest{0.0, 0.0, 0.053, 0.106};
    constexpr std::array<double, 4> kHighest{0.0, 0.423, 0.846, 1.164};
    struct ROW {
        int block;
        int fnum;
        const std::array<double, 4>& hertz;
    };
    for (const ROW row : {
             ROW{0, 600,  kLowest },
             ROW{7, 1100, kHighest}
    }) {
        for (int dt = 0; dt < 8; ++dt) {
            Start();
            PlayOne(1, 4, row.block, row.fnum);
            SetOperator(1, 4, 0x30, dt << 4 | 1);
            Skip(1);
            const double plain = row.fnum * std::exp2(row.block - 1) / 1'048'576.0;
            const double hertz = (TurnsOf(1, 4) - plain) * 8'000'000.0 / 144.0;
            const double expected = row.hertz.at(static_cast<size_t>(dt & 3));
            EXPECT_NEAR(hertz, dt < 4 ? expected : -expected, 0.002) << row.block << " " << dt;
        }
    }
}

// As heard: 22 parts of 2^20 at the highest key code, three times that with the multiple.
TEST_F(Ym2612Pitch, DetuneIsHeardAndMultiplied) {
    for (const int multiple : {1, 3}) {
        Start();
        PlayOne(1, 4, 7, 1100);
        SetOperator(1, 4, 0x30, multiple);
        Skip(10);
        const double plain = FrequencyOf(Run(100'000));
        SetOperator(1, 4, 0x30, 0x70 | multiple);
        Skip(10);
        const double lower = FrequencyOf(Run(100'000));
        EXPECT_NEAR(plain - lower, multiple * 22.0 * kRate / 1'048'576.0, 0.02);
    }
}

// Published: neither along a row nor from row to row does the detune fall, and the rows from 4 on
// are the negatives.
TEST_F(Ym2612Pitch, DetuneRisesWithTheKeyCode) {
    for (int keyCode = 0; keyCode < 32; ++keyCode) {
        constexpr std::array<int, 4> kFnum{512, 900, 1024, 1200}; // the four codes of a block
        std::array<double, 4> steps{};
        for (int dt = 0; dt < 4; ++dt) {
            PlayOne(1, 4, keyCode >> 2, kFnum.at(static_cast<size_t>(keyCode & 3)));
            SetOperator(1, 4, 0x30, dt << 4 | 1);
            Skip(1);
            const double plain =
                kFnum.at(static_cast<size_t>(keyCode & 3)) * std::exp2((keyCode >> 2) - 1);
            steps.at(static_cast<size_t>(dt)) = TurnsOf(1, 4) * 1'048'576.0 - plain;
        }
        EXPECT_EQ(steps[0], 0.0);
        EXPECT_LE(steps[1], steps[2]);
        EXPECT_LE(steps[2], steps[3]);
        EXPECT_GE(steps[3], 2.0);
        EXPECT_EQ(steps[1], kYm2612Detune[1].at(static_cast<size_t>(keyCode)) / 64);
        if (keyCode > 0) {
            EXPECT_LE(kYm2612Detune[1].at(static_cast<size_t>(keyCode - 1)),
                      kYm2612Detune[1].at(static_cast<size_t>(keyCode)));
        }
        EXPECT_EQ(kYm2612Detune[7].at(static_cast<size_t>(keyCode)), -64.0 * steps[3]);
    }
}

// A frequency of 0 that is detuned downwards wraps to the top of 2^23.
TEST_F(Ym2612Pitch, DetuneBelowZeroComesRound) {
    PlayOne(1, 4, 0, 0);
    SetOperator(1, 4, 0x30, 0x71);
    Skip(1);
    EXPECT_EQ(Slot(1, 4).phaseStep, 8'388'608 - 2 * 64);
}

// Published: N4 = F11, N3 = F11 and (F10 or F9 or F8), or not F11 and F10 and F9 and F8.
TEST_F(Ym2612Pitch, KeyCodeComesFromTheUpperBits) {
    for (int fnum = 0; fnum < 2048; fnum += 64) {
        const bool f11 = (fnum & 1024) != 0;
        const bool f10 = (fnum & 512) != 0;
        const bool f9 = (fnum & 256) != 0;
        const bool f8 = (fnum & 128) != 0;
        const int n3 = (f11 && (f10 || f9 || f8)) || (!f11 && f10 && f9 && f8) ? 1 : 0;
        Pitch(1, 5, fnum);
        EXPECT_EQ(ym->channels[0].pitch.keyCode, 5 * 4 + (f11 ? 2 : 0) + n3) << fnum;
    }
}

// --- channel 3 ----------------------------------------------------------------------------------

TEST_F(Ym2612Pitch, ChannelThreeHasAPitchPerOperator) {
    // A9 is operator 1, AA 2, A8 3, and A2 remains for 4.
    constexpr std::array<int, 3> kHigh{0xAD, 0xAE, 0xAC};
    constexpr std::array<int, 3> kLow{0xA9, 0xAA, 0xA8};
    for (int op = 1; op <= 4; ++op) {
        Start();
        PlayOne(3, op, 4, 1000);
        for (size_t i = 0; i < 3; ++i) {
            const int fnum = 600 + 100 * static_cast<int>(i);
            Set(kHigh.at(i), 5 << 3 | fnum >> 8);
            Set(kLow.at(i), fnum & 0xFF);
        }
        EXPECT_NEAR(FrequencyOf(Run(20'000)), PublishedFrequency(4, 1000, 1), 0.5) << op;
        Set(0x27, 0x40);
        Skip(1);
        const double own =
            op == 4 ? PublishedFrequency(4, 1000, 1) : PublishedFrequency(5, 500 + 100 * op, 1);
        EXPECT_NEAR(FrequencyOf(Run(20'000)), own, own * 0.001) << op;
        Set(0x27, 0x00);
        Skip(1);
        EXPECT_NEAR(FrequencyOf(Run(20'000)), PublishedFrequency(4, 1000, 1), 0.5) << op;
    }
}

TEST_F(Ym2612Pitch, OwnPitchesBringTheirOwnKeyCodes) {
    PlayOne(3, 1, 1, 500);
    SetOperators(3, 0x50, 0xDF); // the full key code scales the rates
    Set(0xAD, 7 << 3 | 4);
    Set(0xA9, 0x80);
    Set(0x27, 0x40);
    Skip(1);
    EXPECT_EQ(Slot(3, 1).ksr, 31);
    EXPECT_EQ(Slot(3, 4).ksr, 4);
}

// Mode bit 6 switches them, also together with bit 7; bit 7 alone doesn't.
TEST_F(Ym2612Pitch, CsmAlonePlaysTheCommonPitch) {
    PlayOne(3, 1, 4, 1000);
    Set(0xAD, 5 << 3 | 2);
    Set(0xA9, 0x58);
    for (const auto& [mode, block, fnum] : {
             std::array{0x80, 4, 1000},
             std::array{0xC0, 5, 600 }
    }) {
        Set(0x27, mode);
        Skip(1);
        EXPECT_NEAR(FrequencyOf(Run(20'000)), PublishedFrequency(block, fnum, 1), 0.7) << mode;
    }
}

TEST_F(Ym2612Pitch, OwnPitchesAreOfTheFirstPortAlone) {
    PlayOne(3, 1, 4, 1000);
    Set(0x27, 0x40);
    Set(0xAD, 5 << 3 | 2);
    Set(0xA9, 0x58);
    const auto before = ym->channel3;
    Set(0x1AD, 0x07);
    Set(0x1A9, 0x11);
    Set(0xA9, 0x58);
    EXPECT_EQ(ym->channel3[1].blockFnum, before[1].blockFnum);
    Skip(1);
    EXPECT_NEAR(FrequencyOf(Run(20'000)), PublishedFrequency(5, 600, 1), 0.7);
}

// --- LFO ----------------------------------------------------------------------------------------

// The samples that each of the 128 positions lasts, at each of the eight speeds.
TEST_F(Ym2612Pitch, LfoSpeedsAreHeardAsTremolo) {
    constexpr std::array<int, 8> kSamples{108, 77, 71, 67, 62, 44, 8, 5};
    for (int speed = 0; speed < 8; ++speed) {
        Start();
        PlayOne(1, 4, 7, 1024); // 16 samples a period
        SetOperator(1, 4, 0x60, 0x80);
        SetChannel(1, 0xB4, 0xF0);
        Set(0x22, 8 | speed);
        const double period = 128.0 * kSamples.at(static_cast<size_t>(speed));
        const std::vector<double> course = Course(static_cast<size_t>(period * 12.5 / 16.0));
        const double middle = kPeak * std::pow(10.0, -5.9 / 20.0);
        double first = -1.0;
        double last = -1.0;
        int cycles = -1;
        for (size_t i = 1; i < course.size(); ++i) {
            if (course[i - 1] < middle && course[i] >= middle) {
                first = cycles < 0 ? static_cast<double>(i) : first;
                last = static_cast<double>(i);
                ++cycles;
            }
        }
        ASSERT_GE(cycles, 10) << speed;
        EXPECT_NEAR((last - first) * 16.0 / cycles, period, period * 0.003 + 2.0) << speed;
    }
}

TEST_F(Ym2612Pitch, TremoloDepthsAreTheManuals) {
    constexpr std::array<double, 4> kDecibels{0.0, 1.4, 5.9, 11.8};
    for (int depth = 0; depth < 4; ++depth) {
        Start();
        PlayOne(1, 4, 7, 1024);
        SetOperator(1, 4, 0x60, 0x80);
        SetChannel(1, 0xB4, 0xC0 | depth << 4);
        Set(0x22, 8);
        const std::vector<double> course = Course(128 * 108 / 16);
        const auto [quiet, loud] = std::minmax_element(course.begin(), course.end());
        EXPECT_EQ(*loud, kPeak);
        EXPECT_NEAR(AttenuationOf(*quiet), kDecibels.at(static_cast<size_t>(depth)), 0.06) << depth;
    }
}

TEST_F(Ym2612Pitch, TremoloIsOfTheOperatorsThatAskForIt) {
    PlayOne(1, 4, 7, 1024);
    SetOperator(1, 3, 0x60, 0x80);
    SetChannel(1, 0xB4, 0xF0);
    Set(0x22, 15);
    for (const double peak : Course(100)) {
        EXPECT_EQ(peak, kPeak);
    }
}

// Hundredths of a semitone to either side, with the F-number in the middle of its range.
TEST_F(Ym2612Pitch, VibratoDepthsAreTheManuals) {
    constexpr std::array<double, 8> kCents{0.0, 3.4, 6.7, 10.0, 14.0, 20.0, 40.0, 80.0};
    for (int depth = 0; depth < 8; ++depth) {
        Start();
        PlayOne(1, 4, 4, 1024);
        SetChannel(1, 0xB4, 0xC0 | depth);
        Set(0x22, 8 | 7);
        const double plain = 1024.0 * 8.0 / 1'048'576.0;
        double lowest = 1.0;
        double highest = 0.0;
        for (int i = 0; i < 128 * 5 * 2; ++i) {
            const double turns = TurnsOf(1, 4);
            lowest = std::min(lowest, turns);
            highest = std::max(highest, turns);
        }
        const double expected = kCents.at(static_cast<size_t>(depth));
        EXPECT_NEAR(1200.0 * std::log2(highest / plain), expected, 0.1 + expected * 0.04) << depth;
        EXPECT_NEAR(1200.0 * std::log2(lowest / plain), -expected, 0.1 + expected * 0.04) << depth;
    }
}

// As heard, at the deepest and slowest: a quarter of the wave up the pitch is at its highest.
TEST_F(Ym2612Pitch, VibratoIsHeard) {
    PlayOne(1, 4, 4, 1024);
    SetChannel(1, 0xB4, 0xC7);
    Set(0x22, 8);
    const double plain = PublishedFrequency(4, 1024, 1);
    Skip(28 * 108); // positions 7 and 8 of 32 are the top
    EXPECT_NEAR(1200.0 * std::log2(FrequencyOf(Run(860)) / plain), 80.0, 4.0);
    Skip(64 * 108 - 860);
    EXPECT_NEAR(1200.0 * std::log2(FrequencyOf(Run(860)) / plain), -80.0, 4.0);
}

// The wave: 8 positions up, 8 mirrored, and 16 more with the sign turned.
TEST_F(Ym2612Pitch, VibratoWaveIsMirroredAndTurned) {
    for (size_t fnum = 0; fnum < 128; ++fnum) {
        for (size_t depth = 0; depth < 8; ++depth) {
            const int16_t* const wave = &kYm2612Tables.lfoPhase[fnum * 256 + depth * 32];
            for (size_t i = 0; i < 16; ++i) {
                ASSERT_EQ(wave[i], wave[15 - i]);
                ASSERT_EQ(wave[i], -wave[i + 16]);
                ASSERT_TRUE(i == 0 || i > 7 || wave[i - 1] <= wave[i]) << "rises";
            }
        }
    }
    // Each bit of the F-number weighs twice the one below, down to what whole numbers hold.
    EXPECT_EQ(kYm2612Tables.lfoPhase[64 * 256 + 7 * 32 + 7], 96);
    EXPECT_EQ(kYm2612Tables.lfoPhase[32 * 256 + 7 * 32 + 7], 48);
    EXPECT_EQ(kYm2612Tables.lfoPhase[127 * 256 + 7 * 32 + 7], 96 + 48 + 24 + 12 + 6 + 3 + 1);
    EXPECT_EQ(kYm2612Tables.lfoPhase[64 * 256 + 1 * 32 + 7], 4);
}

TEST_F(Ym2612Pitch, VibratoFollowsChannelThreesOwnPitches) {
    PlayOne(3, 1, 4, 1024);
    Set(0xAD, 5 << 3 | 4);
    Set(0xA9, 0x00);
    Set(0x27, 0x40);
    SetChannel(3, 0xB4, 0xC7);
    Set(0x22, 8 | 7);
    double highest = 0.0;
    for (int i = 0; i < 128 * 5; ++i) {
        highest = std::max(highest, TurnsOf(3, 1));
    }
    EXPECT_DOUBLE_EQ(highest, (2048.0 + 96.0) * 8.0 / 1'048'576.0);
}

// Detune and multiple hold during vibrato, with the key code of the moved pitch.
TEST_F(Ym2612Pitch, VibratoKeepsDetuneAndMultiple) {
    PlayOne(1, 4, 7, 1024);
    SetOperator(1, 4, 0x30, 0x33);
    SetChannel(1, 0xB4, 0xC7);
    Set(0x22, 8 | 7);
    double highest = 0.0;
    for (int i = 0; i < 128 * 5; ++i) {
        highest = std::max(highest, TurnsOf(1, 4));
    }
    // 1,024 + 48 has key code 28 + 2: 22 parts.
    EXPECT_DOUBLE_EQ(highest, ((2048.0 + 96.0) * 32.0 + 22.0) * 3.0 / 1'048'576.0);
}

TEST_F(Ym2612Pitch, LfoStartsFromTheBeginningAndStopsWhereItIs) {
    PlayOne(1, 4, 4, 1024);
    Set(0x22, 8 | 7);
    Skip(40 * 5 + 2);
    EXPECT_EQ(ym->lfoAm, 80u);
    EXPECT_EQ(ym->lfoPm, 10u);
    Set(0x22, 8 | 6); // another speed goes on from there
    EXPECT_EQ(ym->lfoAm, 80u);
    Set(0x22, 0);
    Skip(1000);
    EXPECT_EQ(ym->lfoAm, 80u);
    EXPECT_EQ(ym->lfoPm, 10u);
    Set(0x22, 8 | 7);
    EXPECT_EQ(ym->lfoAm, 0u);
    EXPECT_EQ(ym->lfoPm, 0u);
    EXPECT_EQ(ym->lfoCounter, 0u);
}

TEST_F(Ym2612Pitch, LfoRegisterIsOfTheFirstPortAlone) {
    Set(0x122, 8 | 7);
    EXPECT_EQ(ym->lfoIncrement, 0u);
    Set(0x22, 8 | 7);
    Set(0x122, 0);
    EXPECT_EQ(ym->lfoIncrement, (1u << 24) / 5);
}
