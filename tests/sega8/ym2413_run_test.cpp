// YmRun against single ticks: the same samples and the same state, with random writes at random clocks.
#include "sega8/ym2413_private.h"
#include "sega8/ym2413_rig.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

class YmRunning : public YmRig {
protected:
    [[nodiscard]] static std::vector<uint8_t> StateOf(const YM2413& chip) {
        std::vector<uint8_t> state(YmStateSize());
        YmSaveState(chip, state.data());
        return state;
    }

    [[nodiscard]] static std::vector<int16_t> TakeSamples(YM2413& chip) {
        const auto count = static_cast<std::ptrdiff_t>(chip.pairs->sampleCount);
        chip.pairs->sampleCount = 0;
        return {chip.pairs->samples.begin(), chip.pairs->samples.begin() + count};
    }

    // Any register, but keys are mostly released, and the rhythm is on half of the time.
    void WriteBoth() {
        auto reg = static_cast<uint8_t>(random() & 0x3F);
        auto value = static_cast<uint8_t>(random());
        if (reg >= kYmRegKey && reg < kYmRegInstrument && random() % 3 != 0) {
            value = static_cast<uint8_t>(value & ~kYmKeyOn);
        }
        if (random() % 8 == 0) {
            reg = kYmRegRhythm;
            value = random() % 2 == 0 ? value : kYmRhythmOn;
        }
        YmWrite(*ym, reg, value);
        YmWrite(*other, reg, value);
    }

    // A state in which any operator may be at any level of any part of its envelope.
    void MixUp() {
        for (YM_CHANNEL& channel : ym->channels) {
            for (YM_SLOT& slot : channel.slots) {
                slot.state = static_cast<YmEnvelope>(random() % 6);
                slot.volume = random() % 2 == 0 ? kYmSilent : static_cast<int32_t>(random() % 256);
                slot.fbOut = {};
            }
        }
        std::vector<uint8_t> state = StateOf(*ym);
        ASSERT_EQ(YmLoadState(*other, state.data(), YmStateSize()), YmStateSize());
    }

    void RunBoth(uint32_t clocks) {
        YmRun(*ym, clocks);
        for (; clocks != 0; --clocks) {
            YmTick(*other);
        }
    }

    uint32_t Below(uint32_t end) { return static_cast<uint32_t>(random() % end); }

    std::mt19937 random{11};
    std::unique_ptr<HEARD_CHIP<YM2413>> other = std::make_unique<HEARD_CHIP<YM2413>>();
};

} // namespace

TEST_F(YmRunning, MakesTheSamplesAndTheStateOfTicks) {
    YmInit(*other, kClock);
    YmReset(*other);
    uint32_t sounding = 0;
    for (int round = 0; round < 3000; ++round) {
        if (round % 50 == 0) {
            MixUp();
        }
        for (uint32_t writes = Below(4); writes != 0; --writes) {
            WriteBoth();
        }
        RunBoth(Below(8) == 0 ? Below(60'000) : Below(300));
        const std::vector<int16_t> samples = TakeSamples(*ym);
        ASSERT_EQ(samples, TakeSamples(*other)) << round;
        ASSERT_EQ(StateOf(*ym), StateOf(*other)) << round;
        sounding += !samples.empty() && samples.back() != 0 ? 1U : 0U;
    }
    EXPECT_GT(sounding, 100u) << "few rounds are heard";
}
