// States: exact continuation, refusal of what doesn't fit, and safety from any contents.
#include "megadrive/ym2612_rig.h"

#include "support/heard_chip.h"

#include <random>

namespace {

class Ym2612State : public Ym2612Rig {
protected:
    // Every register but the timers' mode gets some value, and keys go up and down.
    void WriteAtRandom(std::mt19937& random, int count) {
        for (int i = 0; i < count; ++i) {
            const auto reg = static_cast<int>(random() % 0x1B8u);
            Set(reg, static_cast<int>(random() & 0xFFu));
        }
        for (int channel = 1; channel <= 6; ++channel) {
            Keys(channel, static_cast<int>(random() & 15u));
        }
    }
};

// What indexes or shifts; the memory after an array in the record is the record's own.
void ExpectIndexesInRange(const YM2612& ym) {
    ASSERT_LT(ym.tickCount, 144u);
    ASSERT_LT(ym.lfoPm, 32u);
    ASSERT_LE(ym.lfoAm, 127u);
    ASSERT_LT(ym.egTimer, ym.egTimerOverflow);
    ASSERT_EQ(ym.egTimerOverflow, 196608u);
    ASSERT_LE(ym.timerA, 1023u);
    ASSERT_LE(ym.timerB, 255u);
    for (const YM2612_CHANNEL& channel : ym.channels) {
        ASSERT_LE(channel.algorithm, 7);
        ASSERT_LE(channel.feedback, 13);
        ASSERT_LE(channel.ams, 8);
        ASSERT_EQ(channel.pms & ~0xE0u, 0u);
        ASSERT_LE(channel.pitch.keyCode, 31);
        ASSERT_LE(channel.pitch.blockFnum, 0x3FFFu);
        ASSERT_LT(channel.pitch.fc, 1u << 23);
        for (const YM2612_SLOT& slot : channel.slots) {
            ASSERT_LE(slot.dt, 7u);
            ASSERT_LE(slot.mul, 30u);
            ASSERT_LE(std::max({slot.ar, slot.d1r, slot.d2r, slot.rr}) + slot.ksr, 125u);
            ASSERT_LE(slot.ksr, 31);
            ASSERT_LE(slot.ksrShift, 3);
            ASSERT_LE(slot.state, Ym2612Envelope::kAttack);
            for (const YM2612_RATE& rate : {slot.attack, slot.decay, slot.sustain, slot.release}) {
                ASSERT_LE(rate.shift, 15);
                ASSERT_LE(rate.select, 144);
            }
        }
    }
}

} // namespace

TEST_F(Ym2612State, SavedAtAnyClockMakesTheSameSound) {
    std::mt19937 random(7);
    auto other = std::make_unique<HEARD_CHIP<YM2612>>();
    bool heard = false;
    for (uint32_t trial = 0; trial < 60; ++trial) {
        WriteAtRandom(random, 300);
        Skip(150);
        Ym2612Run(*ym, trial * 3); // somewhere within a sample
        WriteAtRandom(random, 3);  // some channels wait for recalculation
        ym->pairs->sampleCount = 0;
        const std::vector<uint8_t> state = StateOf(*ym);
        EXPECT_EQ(state[0], 1);
        Ym2612SetClock(*other, kClock);
        Ym2612Reset(*other);
        ASSERT_EQ(Ym2612LoadState(*other, state.data(), Ym2612StateSize()), Ym2612StateSize());
        EXPECT_EQ(StateOf(*other), state);
        // Writes that go by what the chip remembers of earlier ones must come out alike too.
        const std::mt19937 before = random;
        const auto listen = [&] {
            random = before;
            std::vector<double> samples = Run(300);
            WriteAtRandom(random, 40);
            const std::vector<double> more = Run(300, 1);
            samples.insert(samples.end(), more.begin(), more.end());
            return samples;
        };
        const std::vector<double> expected = listen();
        const std::vector<uint8_t> end = StateOf(*ym);
        ym.swap(other);
        ASSERT_EQ(listen(), expected) << trial;
        ASSERT_EQ(StateOf(*ym), end) << trial;
        heard |= PeakOf(expected) > 0.0;
    }
    EXPECT_TRUE(heard);
}

TEST_F(Ym2612State, OfAnotherSizeOrVersionIsRefused) {
    std::vector<uint8_t> state = StateOf(*ym);
    Pitch(1, 4, 0x133);
    EXPECT_EQ(Ym2612LoadState(*ym, state.data(), Ym2612StateSize() - 1), 0u);
    EXPECT_EQ(Ym2612LoadState(*ym, state.data(), 0), 0u);
    state[0] = 0;
    EXPECT_EQ(Ym2612LoadState(*ym, state.data(), Ym2612StateSize()), 0u);
    state[0] = 1;
    ++state[2];
    EXPECT_EQ(Ym2612LoadState(*ym, state.data(), Ym2612StateSize()), 0u);
    EXPECT_EQ(ym->channels[0].pitch.blockFnum, 4u << 11 | 0x133u);
}

TEST_F(Ym2612State, AnyBytesAreSafe) {
    std::vector<uint8_t> state = StateOf(*ym);
    std::mt19937 random(1);
    bool heard = false;
    for (int trial = 0; trial < 300; ++trial) {
        for (size_t i = 5; i < state.size(); ++i) {
            state[i] = trial == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random());
        }
        ASSERT_EQ(Ym2612LoadState(*ym, state.data(), Ym2612StateSize()), Ym2612StateSize());
        ExpectIndexesInRange(*ym);
        heard |= PeakOf(Run(50)) > 0.0;
        for (int i = 0; i < 10; ++i) {
            WriteAtRandom(random, 5);
            Skip(10);
            ExpectIndexesInRange(*ym);
        }
    }
    EXPECT_TRUE(heard);
}

// Any registers at all keep the chip within its ranges, and the two ways to hold its derived fields
// agree: a reloaded chip finds the same.
TEST_F(Ym2612State, DerivedFieldsAreRebuilt) {
    SetOperator(2, 3, 0x90, 0x0A);
    SetOperator(6, 4, 0x90, 0x08);
    Pitch(4, 3, 700);
    const std::vector<uint8_t> state = StateOf(*ym);
    auto other = std::make_unique<HEARD_CHIP<YM2612>>();
    Ym2612SetClock(*other, kClock);
    Ym2612Reset(*other);
    ASSERT_NE(Ym2612LoadState(*other, state.data(), Ym2612StateSize()), 0u);
    EXPECT_EQ(other->ssgSlots, ym->ssgSlots);
    EXPECT_EQ(other->ssgSlots, 1u << (1 * 4 + 1) | 1u << (5 * 4 + 3));
    EXPECT_TRUE(other->recalculate);
    SetOperator(2, 3, 0x90, 0x00);
    EXPECT_EQ(ym->ssgSlots, 1u << (5 * 4 + 3));
}
