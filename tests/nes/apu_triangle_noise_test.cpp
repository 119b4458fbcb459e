#include "nes/apu_rig.h"

namespace {

class TriangleRig : public ApuRig {
public:
    explicit TriangleRig(int period) {
        Write(0x4017, 0x40);
        Write(0x4015, 0x04);
        Write(0x4008, 0xFF);
        SetPeriod(period);
        QuarterFrame(); // loads the linear counter
    }

    void SetPeriod(int period) {
        Write(0x400A, period & 255);
        Write(0x400B, 0x08 | period >> 8);
    }

    bool Moves() {
        const std::vector<int> samples = Raw(600);
        return Highest(samples) != Lowest(samples);
    }
};

class NoiseRig : public ApuRig {
public:
    NoiseRig(int period, int volume) {
        Write(0x4017, 0x40);
        Write(0x4015, 0x08);
        Write(0x400C, 0x30 | volume);
        Write(0x400E, period);
        Write(0x400F, 0x08);
    }

    // The sign of the output after each of the next shifts.
    std::vector<int> Bits(size_t count) {
        std::vector<int> bits;
        uint16_t before = apu->noise.shift;
        while (bits.size() < count) {
            Run(1);
            if (apu->noise.shift != before) {
                bits.push_back(apu->noise.output < 0 ? 1 : 0);
                before = apu->noise.shift;
            }
        }
        return bits;
    }
};

// The shortest period of the bits, 0 if none.
size_t RepeatLength(const std::vector<int>& bits, size_t longest) {
    for (size_t length = 1; length <= longest; ++length) {
        if (std::equal(bits.begin() + static_cast<ptrdiff_t>(length), bits.end(), bits.begin())) {
            return length;
        }
    }
    return 0;
}

} // namespace

// A wave is 32 steps of period + 1 cycles.
TEST(ApuTriangle, FrequencyFollowsThePeriod) {
    for (const int period : {4, 5, 50, 253, 1000, 2047}) {
        TriangleRig rig(period);
        const double expected = kApuClock / (32.0 * (period + 1));
        EXPECT_NEAR(Frequency(rig.Raw(450'000)), expected, expected * 0.001) << period;
    }
}

// Steps of 8 x 50 from -8 to 7 and back, each end twice.
TEST(ApuTriangle, WaveStepByStep) {
    TriangleRig rig(799); // a step is 800 cycles, a hundred pairs
    rig.Align();
    std::vector<int> samples = rig.Raw(6500);
    // Starts where the next lowest span begins.
    size_t at = 0;
    while (samples[at] == -3200) {
        ++at;
    }
    while (samples[at] != -3200) {
        ++at;
    }
    std::vector<int> steps;
    for (size_t step = 0; step < 32; ++step) {
        steps.push_back(samples[at + step * 100 + 50] / 400);
    }
    std::vector<int> expected;
    for (int level = -8; level <= 7; ++level) {
        expected.push_back(level);
    }
    for (int level = 7; level >= -8; --level) {
        expected.push_back(level);
    }
    // That is the wave's last step, before its first.
    std::rotate(expected.begin(), expected.end() - 1, expected.end());
    EXPECT_EQ(steps, expected);
    for (const int sample : samples) {
        ASSERT_EQ(sample % 400, 0);
    }
}

TEST(ApuTriangle, PeriodUnderFourIsSilent) {
    for (int period = 0; period < 6; ++period) {
        TriangleRig rig(100);
        rig.SetPeriod(period);
        rig.Run(200);
        const std::vector<int> samples = rig.Raw(1000);
        EXPECT_EQ(Highest(samples) == 0 && Lowest(samples) == 0, period < 4) << period;
        EXPECT_EQ(rig.Status() & 4, 4);
    }
}

TEST(ApuTriangle, StopsAtItsLevelWithoutLengthOrLinearCounter) {
    for (const bool byLength : {false, true}) {
        TriangleRig rig(100);
        rig.Run(101 * 12);
        if (byLength) {
            rig.Write(0x4015, 0);
        } else {
            rig.Write(0x4008, 0); // control off: the next quarter frame clears the reload flag
            rig.QuarterFrame();
        }
        rig.Raw(50);
        const std::vector<int> samples = rig.Raw(1000);
        EXPECT_EQ(Highest(samples), Lowest(samples));
        EXPECT_EQ(rig.Status() & 4, byLength ? 0 : 4);
    }
}

// The level is computed when the wave moves: a stopped channel keeps it whatever its period, and one that was
// silenced by its period stays silent.
TEST(ApuTriangle, PeriodUnderFourLeavesAStoppedChannelAlone) {
    for (const bool byLength : {false, true}) {
        for (const bool isSilentBefore : {false, true}) {
            TriangleRig rig(100);
            while (rig.apu->triangle.output != 40) { // the wave's 5, of -8 to 7
                rig.Run(1);
            }
            if (isSilentBefore) {
                rig.Write(0x400A, 3);
                rig.Run(200);
            }
            if (byLength) {
                rig.Write(0x4015, 0);
            } else {
                rig.apu->triangle.linear = 0; // expired
                rig.apu->triangle.linearReload = false;
            }
            rig.Write(0x400A, isSilentBefore ? 100 : 3);
            rig.Run(200); // the timer expires at either period
            const std::vector<int> samples = rig.Raw(100);
            EXPECT_EQ(Lowest(samples), isSilentBefore ? 0 : 40 * 50) << byLength;
            EXPECT_EQ(Highest(samples), Lowest(samples)) << byLength;
        }
    }
}

// The first quarter frame loads the counter n; it is 0 after n more.
TEST(ApuTriangle, LinearCounterCountsQuarterFrames) {
    for (const int linear : {1, 2, 10, 127}) {
        TriangleRig rig(20);
        rig.Write(0x4008, linear);
        rig.Write(0x400B, 0x08);
        for (int quarter = 0; quarter <= linear; ++quarter) {
            EXPECT_TRUE(rig.Moves()) << linear << " at " << quarter;
            rig.QuarterFrame();
        }
        EXPECT_FALSE(rig.Moves()) << linear;
    }
}

TEST(ApuTriangle, ControlFlagKeepsReloadingTheLinearCounter) {
    TriangleRig rig(20);
    rig.Write(0x4008, 0x80 | 2);
    rig.Write(0x400B, 0x08);
    for (int quarter = 0; quarter < 10; ++quarter) {
        rig.QuarterFrame();
        EXPECT_TRUE(rig.Moves());
    }
    rig.Write(0x4008, 2); // one more reload, then 2, 1, 0
    for (int quarter = 0; quarter < 2; ++quarter) {
        rig.QuarterFrame();
        EXPECT_TRUE(rig.Moves());
    }
    rig.QuarterFrame();
    EXPECT_FALSE(rig.Moves());
}

TEST(ApuTriangle, HighRegisterKeepsTheStep) {
    TriangleRig rig(100);
    rig.Run(1000);
    const uint8_t position = rig.apu->triangle.position;
    rig.Write(0x400B, 0x08);
    EXPECT_EQ(rig.apu->triangle.position, position);
    EXPECT_EQ(rig.apu->triangle.period, 100);
}

// Cycles between two shifts, by the published table.
TEST(ApuNoise, PeriodFollowsTheRate) {
    const std::array<uint64_t, 16> periods{4,   8,   16,  32,  64,  96,   128,  160,
                                           202, 254, 380, 508, 762, 1016, 2034, 4068};
    for (size_t rate = 0; rate < periods.size(); ++rate) {
        NoiseRig rig(static_cast<int>(rate), 15);
        rig.Bits(1); // from one shift on
        const uint64_t start = rig.cycle;
        rig.Bits(100);
        EXPECT_EQ(rig.cycle - start, periods[rate] * 100) << rate;
    }
}

// The periods of the two feedback polynomials: the long one runs through every state but zero.
TEST(ApuNoise, SequenceLengths) {
    NoiseRig rig(0, 15);
    EXPECT_EQ(RepeatLength(rig.Bits(32'767 * 2 + 100), 32'800), 32'767u);
    NoiseRig shortRig(0x80, 15);
    EXPECT_EQ(RepeatLength(shortRig.Bits(93 * 4), 100), 93u);
}

// A whole sequence has 16,384 ones and 16,383 zeroes.
TEST(ApuNoise, LongSequenceIsBalanced) {
    NoiseRig rig(0, 15);
    const std::vector<int> bits = rig.Bits(32'767);
    EXPECT_EQ(std::count(bits.begin(), bits.end(), 1), 16'384);
}

// From 1 the register shifts left. The fourteenth shift brings the 1 to the top bit; feedback begins when it
// reaches a tap.
TEST(ApuNoise, RegisterMovesLeft) {
    NoiseRig rig(0, 15);
    std::vector<int> states;
    uint16_t before = 1;
    ASSERT_EQ(rig.apu->noise.shift, 1);
    while (states.size() < 16) {
        rig.Run(1);
        if (rig.apu->noise.shift != before) {
            before = rig.apu->noise.shift;
            states.push_back(before);
        }
    }
    std::vector<int> expected;
    for (int i = 1; i <= 13; ++i) {
        expected.push_back(1 << i);
    }
    // Bit 13 feeds a 1 in; so does bit 14 next.
    expected.insert(expected.end(), {0x4001, 0x0003, 0x0006});
    EXPECT_EQ(states, expected);

    NoiseRig shortRig(0x80, 15);
    for (int i = 0; i < 9; ++i) {
        shortRig.Bits(1);
    }
    EXPECT_EQ(shortRig.apu->noise.shift, 0x0201); // bit 8 has fed a 1 in
}

TEST(ApuNoise, LevelIsAHundredTimesTheVolumeEitherWay) {
    for (int volume = 0; volume < 16; ++volume) {
        NoiseRig rig(2, volume);
        rig.Raw(10);
        const std::vector<int> samples = rig.Raw(2000);
        EXPECT_EQ(Highest(samples), volume * 100);
        EXPECT_EQ(Lowest(samples), volume * -100);
    }
}

TEST(ApuNoise, TopBitSetIsTheLowLevel) {
    NoiseRig rig(4, 15);
    for (int i = 0; i < 5000; ++i) {
        rig.Run(64);
        ASSERT_EQ(rig.apu->noise.output, (rig.apu->noise.shift & 0x4000) != 0 ? -30 : 30);
    }
}

TEST(ApuNoise, EnvelopeDecaysAndStartsWithTheLengthRegister) {
    NoiseRig rig(0, 0);
    rig.Write(0x400C, 0x01); // decays every two quarter frames
    rig.Write(0x400F, 0x08);
    for (int quarter = 0; quarter < 8; ++quarter) {
        rig.QuarterFrame();
        rig.Raw(4); // the new level applies at the next shift
        EXPECT_EQ(Highest(rig.Raw(100)), (15 - quarter / 2) * 100) << quarter;
    }
    rig.Write(0x400F, 0x08);
    rig.QuarterFrame();
    rig.Raw(4);
    EXPECT_EQ(Highest(rig.Raw(100)), 1500);
}

TEST(ApuNoise, SilentWithoutLength) {
    NoiseRig rig(0, 15);
    rig.Run(100);
    rig.Write(0x4015, 0);
    rig.Raw(2);
    const std::vector<int> samples = rig.Raw(1000);
    EXPECT_EQ(Highest(samples), 0);
    EXPECT_EQ(Lowest(samples), 0);
}

TEST(ApuNoise, RegisterRunsOnWhileSilent) {
    ApuRig rig;
    rig.Run(4 * 50);
    EXPECT_NE(rig.apu->noise.shift, 1);
}
