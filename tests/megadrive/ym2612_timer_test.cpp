// Timers, their flags and line, CSM and the status byte.
#include "megadrive/ym2612_rig.h"

namespace {

class Ym2612Timer : public Ym2612Rig {
protected:
    void TimerA(int value) {
        Set(0x24, value >> 2);
        Set(0x25, value & 3);
    }

    // Samples until a status bit is set; 0 if it stays clear.
    size_t SamplesUntil(int bit, size_t most = 20'000) {
        for (size_t i = 1; i <= most; ++i) {
            Skip(1);
            if ((ym->status & bit) != 0) {
                return i;
            }
        }
        return 0;
    }

    // A loud voice on channel 3, keyed by nobody.
    void CsmVoice() {
        PureVoice(3);
        SetOperators(3, 0x40, 0);
        Pitch(3, 4, 1000);
    }
};

} // namespace

TEST_F(Ym2612Timer, TimerATakesItsValueToTheTopInSamples) {
    for (const int value : {0, 1, 500, 1000, 1022, 1023}) {
        Start();
        TimerA(value);
        Set(0x27, 0x05);
        for (int trial = 0; trial < 3; ++trial) {
            EXPECT_EQ(SamplesUntil(1), static_cast<size_t>(1024 - value)) << value;
            Set(0x27, 0x15);
            EXPECT_EQ(ym->status, 0);
        }
    }
}

TEST_F(Ym2612Timer, TimerBTakesSixteenTimesAsLong) {
    for (const int value : {0, 1, 200, 255}) {
        Start();
        Set(0x26, value);
        Set(0x27, 0x0A);
        for (int trial = 0; trial < 3; ++trial) {
            EXPECT_EQ(SamplesUntil(2), static_cast<size_t>(256 - value) * 16) << value;
            Set(0x27, 0x2A);
            EXPECT_EQ(ym->status, 0);
        }
    }
}

// In clocks: nothing happens between two samples.
TEST_F(Ym2612Timer, TimersMoveOncePerSample) {
    TimerA(1020);
    Set(0x27, 0x05);
    for (int clock = 1; clock < 4 * 144; ++clock) {
        Ym2612Tick(*ym);
        ASSERT_EQ(ym->status, 0) << clock;
    }
    Ym2612Tick(*ym);
    EXPECT_EQ(ym->status, 1);
}

TEST_F(Ym2612Timer, FlagsAreSetOnlyWhenAskedFor) {
    TimerA(1020);
    Set(0x26, 255);
    Set(0x27, 0x03);
    Skip(100);
    EXPECT_EQ(ym->status, 0);
    Set(0x27, 0x07);
    EXPECT_LE(SamplesUntil(1), 4u); // it ran on all the time
    Skip(40);
    EXPECT_EQ(ym->status, 1);
    Set(0x27, 0x0F);
    EXPECT_LE(SamplesUntil(2), 16u);
    EXPECT_EQ(ym->status, 3);
}

TEST_F(Ym2612Timer, FlagsAreClearedOneByOne) {
    TimerA(1020);
    Set(0x26, 255);
    Set(0x27, 0x0F);
    Skip(100);
    ASSERT_EQ(ym->status, 3);
    Set(0x27, 0x10);
    EXPECT_EQ(ym->status, 2);
    Set(0x27, 0x20);
    EXPECT_EQ(ym->status, 0);
}

TEST_F(Ym2612Timer, LineFollowsTheFlags) {
    TimerA(1020);
    Set(0x26, 255);
    Set(0x27, 0x0F);
    EXPECT_EQ(ym->irq, 0);
    Skip(4);
    EXPECT_EQ(ym->irq, 1);
    Skip(20);
    Set(0x27, 0x10);
    EXPECT_EQ(ym->irq, 1); // timer B holds it
    Set(0x27, 0x20);
    EXPECT_EQ(ym->irq, 0);
    ym->irqMask = 2;
    Set(0x27, 0x05);
    Skip(10);
    EXPECT_EQ(ym->status, 1);
    EXPECT_EQ(ym->irq, 0);
}

TEST_F(Ym2612Timer, RunBitThatIsSetAlreadyDoesNotReload) {
    TimerA(24);
    Set(0x26, 156);
    Set(0x27, 0x0F);
    Skip(600);
    Set(0x27, 0x0F);
    EXPECT_EQ(SamplesUntil(1), 400u);
    Set(0x27, 0x3F);
    EXPECT_EQ(SamplesUntil(2), 600u);
    Set(0x27, 0x3C); // stopped, and begun anew
    Skip(5000);
    EXPECT_EQ(ym->status, 0);
    Set(0x27, 0x0F);
    EXPECT_EQ(SamplesUntil(1), 1000u);
}

TEST_F(Ym2612Timer, NewPeriodCountsFromTheNextReload) {
    TimerA(924);
    Set(0x27, 0x05);
    Skip(10);
    TimerA(1014);
    EXPECT_EQ(SamplesUntil(1), 90u);
    Set(0x27, 0x15);
    EXPECT_EQ(SamplesUntil(1), 10u);
}

TEST_F(Ym2612Timer, RegistersOfTimerAAreTwo) {
    Set(0x24, 0xAB);
    Set(0x25, 0xFE);
    EXPECT_EQ(ym->timerA, 0x2AEu);
    Set(0x24, 0x00);
    EXPECT_EQ(ym->timerA, 0x002u);
}

TEST_F(Ym2612Timer, StatusIsNeverBusyAndReadingChangesNothing) {
    for (int reg = 0; reg < 0x200; ++reg) {
        Ym2612Write(*ym, reg < 0x100 ? 0 : 2, static_cast<uint8_t>(reg));
        EXPECT_EQ(ym->status & 0x80, 0);
        Ym2612Write(*ym, 1, 0xFF);
        EXPECT_EQ(ym->status & 0xFC, 0) << reg;
        Ym2612Tick(*ym);
        EXPECT_EQ(ym->status & 0xFC, 0) << reg;
    }
}

// --- CSM ----------------------------------------------------------------------------------------

TEST_F(Ym2612Timer, CsmKeysLastOneSample) {
    CsmVoice();
    TimerA(1024 - 500);
    Set(0x27, 0x81);
    Skip(499);
    EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kOff);
    for (int trial = 0; trial < 3; ++trial) {
        Skip(1);
        EXPECT_EQ(ym->csmKey, 1);
        for (int op = 1; op <= 4; ++op) {
            EXPECT_EQ(Slot(3, op).state, Ym2612Envelope::kSustain);
            EXPECT_EQ(Slot(3, op).volume, 0);
            EXPECT_EQ(Slot(3, op).keyOn, 0);
        }
        Skip(1);
        EXPECT_EQ(ym->csmKey, 0);
        for (int op = 1; op <= 4; ++op) {
            EXPECT_EQ(Slot(3, op).state, Ym2612Envelope::kRelease);
        }
        Skip(498);
    }
}

TEST_F(Ym2612Timer, CsmIsHeardAndStartsTheWaveAgain) {
    CsmVoice();
    TimerA(1024 - 600); // whole clocks of the envelope
    Set(0x27, 0x81);
    Skip(600);
    const std::vector<double> first = Run(600);
    const std::vector<double> second = Run(600);
    EXPECT_GT(PeakOf(first), 4000.0);
    EXPECT_EQ(second, first);
    EXPECT_EQ(PeakOf(first, 500, 100), 0.0);
}

TEST_F(Ym2612Timer, CsmLeavesHeldKeysAlone) {
    CsmVoice();
    TimerA(1024 - 100);
    Set(0x27, 0x81);
    Keys(3, 2);
    Skip(100);
    const uint32_t phase = Slot(3, 2).phase;
    EXPECT_GT(phase, 0u);
    Skip(1);
    EXPECT_GT(Slot(3, 2).phase, phase);
    EXPECT_EQ(Slot(3, 2).state, Ym2612Envelope::kSustain);
    EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kRelease);
}

// A key that is released while CSM holds it, too, goes when CSM lets go.
TEST_F(Ym2612Timer, CsmHoldsAKeyThatIsReleasedMeanwhile) {
    CsmVoice();
    TimerA(1024 - 100);
    Set(0x27, 0x81);
    Keys(3, 15);
    Skip(100);
    Keys(3, 0);
    EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kSustain);
    EXPECT_EQ(Slot(3, 1).keyOn, 0);
    Skip(1);
    EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kRelease);
}

TEST_F(Ym2612Timer, LeavingCsmReleasesItsKeys) {
    for (const int mode : {0x01, 0x41, 0xC1}) {
        Start();
        CsmVoice();
        TimerA(1024 - 100);
        Set(0x27, 0x81);
        Skip(100);
        ASSERT_EQ(ym->csmKey, 1);
        Keys(3, 4);
        Set(0x27, mode);
        EXPECT_EQ(ym->csmKey, 0);
        EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kRelease) << mode;
        EXPECT_EQ(Slot(3, 3).state, Ym2612Envelope::kSustain) << mode;
    }
}

TEST_F(Ym2612Timer, OnlyModeTwoOfFourPressesKeys) {
    for (const int mode : {0x00, 0x40, 0xC0}) {
        Start();
        CsmVoice();
        TimerA(1024 - 10);
        Set(0x27, mode | 5);
        Skip(100);
        EXPECT_EQ(ym->status, 1);
        EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kOff) << mode;
    }
}

TEST_F(Ym2612Timer, CsmIsOfChannelThreeAlone) {
    for (int channel = 1; channel <= 6; ++channel) {
        PureVoice(channel);
    }
    TimerA(1024 - 10);
    Set(0x27, 0x81);
    Skip(10);
    for (int channel = 1; channel <= 6; ++channel) {
        EXPECT_EQ(Slot(channel, 1).state,
                  channel == 3 ? Ym2612Envelope::kSustain : Ym2612Envelope::kOff);
    }
}

// Whatever the channel: within the sample that CSM holds its keys, the register's keys don't start.
TEST_F(Ym2612Timer, KeyPressedWhileCsmHoldsIsNotedButNotStarted) {
    PureVoice(1);
    TimerA(1024 - 10);
    Set(0x27, 0x81);
    Skip(10);
    Keys(1, 15);
    EXPECT_EQ(Slot(1, 1).keyOn, 1);
    EXPECT_EQ(Slot(1, 1).state, Ym2612Envelope::kOff);
    Skip(1);
    Keys(1, 0);
    Keys(1, 15);
    EXPECT_EQ(Slot(1, 1).state, Ym2612Envelope::kSustain);
}

// With an overflow at every sample, CSM never lets go.
TEST_F(Ym2612Timer, CsmAtEverySampleHoldsItsKeys) {
    CsmVoice();
    TimerA(1023);
    Set(0x27, 0x81);
    Skip(1);
    const uint32_t phase = Slot(3, 1).phase;
    for (int i = 0; i < 100; ++i) {
        Skip(1);
        EXPECT_EQ(ym->csmKey, 1);
        EXPECT_EQ(Slot(3, 1).state, Ym2612Envelope::kSustain);
    }
    EXPECT_GT(Slot(3, 1).phase, phase);
}
