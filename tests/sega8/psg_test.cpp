#include "base/audio_rate.h"
#include "machine/sound_settings.h"
#include "sega8/psg.h"
#include "sega8/ym2413.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr uint32_t kClock = 3'579'545; // 53,693,175 / 15
constexpr uint32_t kClockPal = 3'546'895;
constexpr double kPairRate = kClock / 16.0;

constexpr uint8_t kSilence = 15;

// A chip whose raw pairs are collected.
class Psg : public testing::Test {
protected:
    Psg() { Start(1, false); }

    void Start(int model, bool stereo) {
        RegisterDefaultSettings(Settings());
        PsgInit(*psg, kClock, model, stereo);
        PsgReset(*psg);
    }

    void TearDown() override {
        SetAudioRate(44100);
        RegisterDefaultSettings(Settings());
        Settings().SetInt(L"audio_app_quality", 1);
    }

    // Runs 16 clocks a pair; returns the pairs, left and right in turn.
    std::vector<int16_t> RunBoth(size_t pairs) {
        std::vector<int16_t> out;
        out.reserve(pairs * 2);
        for (size_t i = 0; i < pairs; ++i) {
            psg->pairs->sampleCount = 0;
            for (uint32_t clock = 0; clock < 16; ++clock) {
                PsgTick(*psg);
            }
            out.push_back(psg->pairs->samples[0]);
            out.push_back(psg->pairs->samples[1]);
        }
        psg->pairs->sampleCount = 0;
        return out;
    }

    std::vector<int16_t> Run(size_t pairs) {
        const std::vector<int16_t> both = RunBoth(pairs);
        std::vector<int16_t> left;
        left.reserve(pairs);
        for (size_t i = 0; i < both.size(); i += 2) {
            left.push_back(both[i]);
        }
        return left;
    }

    void Write(std::initializer_list<int> values) {
        for (const int value : values) {
            PsgWrite(*psg, static_cast<uint8_t>(value));
        }
    }

    void Tone(int channel, int period, int attenuation) {
        Write(
            {0x80 | channel << 5 | (period & 15), period >> 4, 0x90 | channel << 5 | attenuation});
    }

    std::unique_ptr<HEARD_CHIP<PSG>> psg = std::make_unique<HEARD_CHIP<PSG>>();
};

// Cycles a second by the first and the last rising edge.
double Frequency(const std::vector<int16_t>& samples) {
    size_t first = 0;
    size_t last = 0;
    size_t edges = 0;
    for (size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] <= 0 && samples[i] > 0) {
            first = edges == 0 ? i : first;
            last = i;
            ++edges;
        }
    }
    return edges < 2
               ? 0.0
               : static_cast<double>(edges - 1) * kPairRate / static_cast<double>(last - first);
}

// The bits of the noise register's output, one for each of its shifts, `spacing` pairs apart.
std::vector<int> NoiseBits(const std::vector<int16_t>& samples, size_t from, size_t spacing) {
    std::vector<int> bits;
    for (size_t i = from; i < samples.size(); i += spacing) {
        bits.push_back(samples[i] != 0 ? 1 : 0);
    }
    return bits;
}

// The shortest period of the bits; 0 if they do not repeat.
size_t RepeatLength(const std::vector<int>& bits, size_t longest) {
    for (size_t length = 1; length <= longest; ++length) {
        if (std::equal(bits.begin() + static_cast<ptrdiff_t>(length), bits.end(), bits.begin())) {
            return length;
        }
    }
    return 0;
}

} // namespace

TEST_F(Psg, ResetIsSilentWithEverythingOpen) {
    Start(1, true);
    Tone(0, 100, 0);
    PsgStereoWrite(*psg, 0x01);
    PsgReset(*psg);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(psg->attenuation[i], kSilence);
        EXPECT_EQ(psg->leftEnable[i], 1);
        EXPECT_EQ(psg->rightEnable[i], 1);
    }
    EXPECT_EQ(psg->output, (std::array<int32_t, 3>{1, 1, 1}));
    EXPECT_EQ(psg->period[0], 0);
    EXPECT_EQ(psg->clock, kClock);
    EXPECT_EQ(psg->lfsrShift, 15u);
    for (const int16_t sample : RunBoth(1000)) {
        ASSERT_EQ(sample, 0);
    }
}

TEST_F(Psg, OnePairComesEverySixteenClocks) {
    for (uint32_t clock = 1; clock <= 160; ++clock) {
        PsgTick(*psg);
        EXPECT_EQ(psg->pairs->sampleCount, clock / 16 * 2) << clock;
    }
}

// A tone sounds at clock / (32 x period), on each of the three channels.
TEST_F(Psg, ToneFrequencyFollowsThePeriod) {
    for (const int period : {2, 3, 16, 254, 512, 1000, 1023}) {
        for (int channel = 0; channel < 3; ++channel) {
            PsgReset(*psg);
            Tone(channel, period, 0);
            const double expected = kClock / (32.0 * period);
            EXPECT_NEAR(Frequency(Run(224'000)), expected, expected * 0.001)
                << channel << " at " << period;
        }
    }
}

TEST_F(Psg, ToneIsASymmetricSquare) {
    Tone(1, 300, 0);
    Run(1000);
    const std::vector<int16_t> samples = Run(600 * 20);
    EXPECT_EQ(std::count(samples.begin(), samples.end(), 3276), 6000);
    EXPECT_EQ(std::count(samples.begin(), samples.end(), -3276), 6000);
}

// Two decibels a step from a tenth of the range at full level; the table is within 0.1 dB of that.
TEST_F(Psg, ToneLevelFallsTwoDecibelsAStep) {
    for (int attenuation = 0; attenuation < 15; ++attenuation) {
        PsgReset(*psg);
        Tone(2, 100, attenuation);
        const std::vector<int16_t> samples = Run(1000);
        const double expected = 3276.7 * std::pow(10.0, -attenuation / 10.0);
        const auto high = *std::max_element(samples.begin(), samples.end());
        EXPECT_NEAR(high, expected, 1.0 + expected * 0.005) << attenuation;
        EXPECT_EQ(*std::min_element(samples.begin(), samples.end()), -high);
    }
    Tone(2, 100, 15);
    for (const int16_t sample : Run(1000)) {
        ASSERT_EQ(sample, 0);
    }
}

// 2.5 times a tone: a quarter of the 16-bit range, on one side of zero.
TEST_F(Psg, NoiseLevelFallsTwoDecibelsAStep) {
    for (int attenuation = 0; attenuation < 15; ++attenuation) {
        PsgReset(*psg);
        Write({0xE4, 0xF0 | attenuation});
        const std::vector<int16_t> samples = Run(20'000);
        const double expected = 8191.75 * std::pow(10.0, -attenuation / 10.0);
        EXPECT_NEAR(*std::max_element(samples.begin(), samples.end()), expected,
                    1.0 + expected * 0.01)
            << attenuation;
        EXPECT_EQ(*std::min_element(samples.begin(), samples.end()), 0);
    }
    Write({0xFF});
    for (const int16_t sample : Run(1000)) {
        ASSERT_EQ(sample, 0);
    }
}

TEST_F(Psg, ChannelsAddUp) {
    Tone(0, 0, 0);
    Tone(1, 0, 5);
    Tone(2, 0, 14);
    EXPECT_EQ(Run(10).back(), 3276 + 1036 + 130);
}

// Games play samples this way: the level depends only on the attenuation.
TEST_F(Psg, PeriodsOfZeroAndOneGiveAConstantLevel) {
    for (const int period : {0, 1}) {
        PsgReset(*psg);
        Tone(0, 500, 0);
        Run(700); // within the lower half of a wave
        Tone(0, period, 0);
        Run(500);
        for (const int16_t sample : Run(5000)) {
            ASSERT_EQ(sample, 3276) << period;
        }
        Write({0x94});
        EXPECT_EQ(Run(1).front(), 1304);
    }
}

TEST_F(Psg, ANewPeriodCountsFromTheNextHalfWave) {
    Tone(0, 100, 0);
    Run(150);
    Tone(0, 20, 0);
    const std::vector<int16_t> samples = Run(100); // 50 pairs of the old half are left
    std::vector<size_t> changes;
    for (size_t i = 1; i < samples.size(); ++i) {
        if (samples[i] != samples[i - 1]) {
            changes.push_back(i);
        }
    }
    EXPECT_EQ(changes, (std::vector<size_t>{50, 70, 90}));
}

TEST_F(Psg, LatchWritesTheLowBitsAndDataTheHighBits) {
    Write({0x80 | 0x0A});
    EXPECT_EQ(psg->period[0], 0x00A);
    Write({0x3F});
    EXPECT_EQ(psg->period[0], 0x3FA);
    Write({0x05}); // a second data byte replaces the high bits again
    EXPECT_EQ(psg->period[0], 0x05A);
    Write({0x80 | 0x0C});
    EXPECT_EQ(psg->period[0], 0x05C);
    Write({0xC0 | 0x01, 0x40 | 0x12}); // bit 6 of a data byte does not count
    EXPECT_EQ(psg->period[2], 0x121);
    EXPECT_EQ(psg->period[0], 0x05C);
}

TEST_F(Psg, DataByteAfterAVolumeLatchWritesTheAttenuation) {
    Write({0xB3});
    EXPECT_EQ(psg->attenuation[1], 3);
    Write({0x3A});
    EXPECT_EQ(psg->attenuation[1], 10);
    EXPECT_EQ(psg->period[1], 0);
    Write({0xF2, 0x07});
    EXPECT_EQ(psg->attenuation[3], 7);
}

TEST_F(Psg, DataByteAfterANoiseLatchWritesTheNoiseRegister) {
    Write({0xE4, 0x03});
    EXPECT_EQ(psg->noiseControl, 3);
}

TEST_F(Psg, EveryWriteToTheNoiseRegisterRestartsIt) {
    for (const int model : {1, 4}) {
        Start(model, false);
        const uint32_t start = model == 1 ? 0x8000 : 0x4000;
        Write({0xE4});
        EXPECT_EQ(psg->lfsr, start);
        Run(5000);
        EXPECT_NE(psg->lfsr, start);
        Write({0xE4});
        EXPECT_EQ(psg->lfsr, start);
        Run(5000);
        EXPECT_NE(psg->lfsr, start);
        Write({0x04}); // by a data byte too
        EXPECT_EQ(psg->lfsr, start);
    }
}

TEST_F(Psg, NoiseIsSilentUntilItsRegisterIsWritten) {
    Write({0xF0});
    for (const int16_t sample : Run(5000)) {
        ASSERT_EQ(sample, 0);
    }
}

// The register shifts every 2 x 16, 32 or 64 pairs, or every two half waves of tone 2. Periodic
// noise is one rotating bit, so its pulses are one register length of shifts apart.
TEST_F(Psg, NoisePeriodFollowsTheControlBits) {
    struct ROW {
        int control;
        double shiftPairs;
    };
    for (const ROW row : {
             ROW{0, 32    },
             ROW{1, 64    },
             ROW{2, 128   },
             ROW{3, 2 * 77}
    }) {
        for (const int model : {1, 2, 3, 4, 5, 6}) {
            Start(model, false);
            Tone(2, 77, kSilence);
            Write({0xE0 | row.control, 0xF0});
            const double bits = model <= 3 ? 16 : 15;
            const double expected = kPairRate / (row.shiftPairs * bits);
            EXPECT_NEAR(Frequency(Run(300'000)), expected, expected * 0.001)
                << row.control << " model " << model;
        }
    }
}

TEST_F(Psg, NoiseFromAToneOfPeriodZeroShiftsEverySecondPair) {
    Tone(2, 0, kSilence);
    Write({0xE3, 0xF0});
    EXPECT_NEAR(Frequency(Run(64'000)), kPairRate / 32.0, kPairRate / 32000.0);
}

// Taps 0 and 3 of 16 bits repeat after 57,337 shifts, taps 0 and 1 of 15 bits after 32,767: the
// orders of x^16 + x^3 + 1 and x^15 + x + 1.
TEST_F(Psg, WhiteNoiseRepeatsAfterItsPolynomialsOrder) {
    for (const auto& [model, length] : {
             std::pair<int, size_t>{1, 57'337},
              {4, 32'767}
    }) {
        Start(model, false);
        Tone(2, 0, kSilence);
        Write({0xE7, 0xF0});
        const std::vector<int> bits = NoiseBits(Run(length * 2 * 2 + 4000), 1, 2);
        EXPECT_EQ(RepeatLength(bits, length + 100), length) << model;
    }
}

TEST_F(Psg, PeriodicNoiseRepeatsAfterTheRegistersLength) {
    for (const auto& [model, length] : {
             std::pair<int, size_t>{1, 16},
              {4, 15}
    }) {
        Start(model, false);
        Tone(2, 0, kSilence);
        Write({0xE3, 0xF0});
        const std::vector<int> bits = NoiseBits(Run(2000), 1, 2);
        EXPECT_EQ(RepeatLength(bits, 100), length) << model;
        EXPECT_EQ(std::count(bits.begin(), bits.begin() + static_cast<ptrdiff_t>(length), 1), 1);
    }
}

TEST_F(Psg, ModelZeroLeavesTheNoiseRegister) {
    Start(4, false);
    Start(0, false);
    EXPECT_EQ(psg->lfsrShift, 14u);
    EXPECT_EQ(psg->lfsrTaps, 3u);
}

TEST_F(Psg, PanningOpensEachSideByItsBits) {
    Start(1, true);
    const std::array<int, 4> levels{3276, 2602, 2067, 8191};
    Tone(0, 0, 0);
    Tone(1, 0, 1);
    Tone(2, 0, 2);
    Write({0xE0, 0xF0});
    psg->lfsr = 0xFFFF; // a noise that stays high for the test
    for (int value = 1; value < 256; ++value) {
        PsgStereoWrite(*psg, static_cast<uint8_t>(value));
        psg->lfsr = 0xFFFF;
        int left = 0;
        int right = 0;
        for (size_t i = 0; i < 4; ++i) {
            left += (value >> (4 + i) & 1) * levels[i];
            right += (value >> i & 1) * levels[i];
        }
        const std::vector<int16_t> pair = RunBoth(1);
        ASSERT_EQ(pair[0], left) << value;
        ASSERT_EQ(pair[1], right) << value;
    }
}

TEST_F(Psg, ZeroOnThePanningPortOpensEverything) {
    Start(1, true);
    PsgStereoWrite(*psg, 0x10);
    PsgStereoWrite(*psg, 0);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(psg->leftEnable[i], 1);
        EXPECT_EQ(psg->rightEnable[i], 1);
    }
}

TEST_F(Psg, WithoutStereoThePanningIsNotHeard) {
    Tone(0, 0, 0);
    PsgStereoWrite(*psg, 0x01);
    const std::vector<int16_t> pair = RunBoth(1);
    EXPECT_EQ(pair[0], 3276);
    EXPECT_EQ(pair[1], 3276);
}

TEST_F(Psg, FlushHandsOverWhatWasMade) {
    Settings().SetInt(L"audio_app_quality", 0);
    psg->sound.Init(kPairRate, SoundChoiceFromSettings());
    Tone(0, 0, 0);
    for (int i = 0; i < 16 * 1000; ++i) {
        PsgTick(*psg);
    }
    EXPECT_EQ(psg->pairs->sampleCount, 2000u);
    EXPECT_TRUE(psg->sound.Output().empty());
    psg->sound.Flush();
    EXPECT_EQ(psg->pairs->sampleCount, 0u);
    // 1000 pairs at 223,721 Hz are 197.1 at 44,100 Hz.
    EXPECT_EQ(psg->sound.Output().size() / 2, 198u);
    EXPECT_EQ(psg->sound.Output()[100], 3276);
}

TEST_F(Psg, OwnerThatNeverFlushesIsSafe) {
    Tone(0, 100, 0);
    PsgRun(*psg, 400'000);
    EXPECT_EQ(psg->pairs->sampleCount, psg->pairs->samples.size()) << "what comes then is lost";
}

// 313 lines of 228 clocks are the longest frame; no pair of it may be lost.
TEST_F(Psg, NoSoundOfAFrameIsLostAtAnyRateAndQuality) {
    constexpr int kFrames = 30;
    constexpr int kFrameClocks = 313 * 228;
    for (const uint32_t rate : {22050u, 44100u, 48000u, 96000u, 192000u}) {
        for (const int quality : {0, 1, 2}) {
            SetAudioRate(rate);
            Settings().SetInt(L"audio_app_quality", quality);
            PsgInit(*psg, kClockPal, 1, false);
            PsgReset(*psg);
            psg->sound.Init(kClockPal / 16.0, SoundChoiceFromSettings());
            Tone(0, 200, 0);
            size_t pairs = 0;
            for (int frame = 0; frame < kFrames; ++frame) {
                for (int clock = 0; clock < kFrameClocks; ++clock) {
                    PsgTick(*psg);
                }
                ASSERT_LT(psg->pairs->sampleCount, psg->pairs->samples.size());
                psg->sound.Flush();
                const size_t ready = psg->sound.Output().size();
                pairs += ready / 2;
                psg->sound.Consume(static_cast<int32_t>(ready));
            }
            const double expected = double{kFrames} * kFrameClocks / kClockPal * rate;
            // The resampler delays by the length of its filter: under 3 ms at every rate.
            EXPECT_NEAR(static_cast<double>(pairs), expected, rate * 0.003 + 2.0)
                << rate << " quality " << quality;
        }
    }
}

TEST_F(Psg, SoundUntilReadyIsMadeInWholePairs) {
    for (const int quality : {0, 1, 2}) {
        Settings().SetInt(L"audio_app_quality", quality);
        PsgReset(*psg);
        psg->sound.Init(kPairRate, SoundChoiceFromSettings());
        Tone(0, 200, 0);
        for (int i = 0; i < 7; ++i) {
            PsgTick(*psg);
        }
        psg->sound.FlushUntilReady(401, [this] { PsgRun(*psg, kPsgClocksPerPair); });
        EXPECT_GE(psg->sound.Output().size(), 401u);
        EXPECT_LE(psg->sound.Output().size(), 404u);
        EXPECT_EQ(psg->divider, 7u);
        const PSG& chip = *psg;
        const std::array<int32_t, 4> counter = chip.counter;
        psg->sound.FlushUntilReady(300,
                                   [this] { PsgRun(*psg, kPsgClocksPerPair); }); // enough is there
        EXPECT_EQ(chip.counter, counter);
    }
}

TEST_F(Psg, SoundUntilReadyEndsWhenTheResamplerIsFull) {
    psg->sound.FlushUntilReady(1'000'000, [this] { PsgRun(*psg, kPsgClocksPerPair); });
    EXPECT_EQ(psg->sound.Output().size(), 44100u / 40 * 2);
}

// The end of a frame in a machine with both chips.
TEST_F(Psg, BothChipsReachOneLengthAndNeitherRunsAway) {
    const auto ym = std::make_unique<HEARD_CHIP<YM2413>>();
    for (const uint32_t rate : {22050u, 44100u, 192000u}) {
        for (const int quality : {0, 1, 2}) {
            SetAudioRate(rate);
            Settings().SetInt(L"audio_app_quality", quality);
            PsgInit(*psg, kClockPal, 1, false);
            PsgReset(*psg);
            psg->sound.Init(kClockPal / 16.0, SoundChoiceFromSettings());
            YmInit(*ym, kClockPal);
            YmReset(*ym);
            ym->sound.Init(kClockPal / 72.0, SoundChoiceFromSettings());
            size_t taken = 0;
            for (int frame = 0; frame < 50; ++frame) {
                for (int clock = 0; clock < 313 * 228; ++clock) {
                    PsgTick(*psg);
                    YmTick(*ym);
                }
                psg->sound.Flush();
                ym->sound.Flush();
                psg->sound.FlushUntilReady(static_cast<uint32_t>(ym->sound.Output().size()),
                                           [this] { PsgRun(*psg, kPsgClocksPerPair); });
                ym->sound.FlushUntilReady(static_cast<uint32_t>(psg->sound.Output().size()),
                                          [&] { YmRun(*ym, kYmClocksPerSample); });
                const size_t psgValues = psg->sound.Output().size();
                const size_t ymValues = ym->sound.Output().size();
                ASSERT_GE(ymValues, psgValues);
                ASSERT_LE(ymValues - psgValues, 20u) << rate << " quality " << quality;
                taken += psgValues;
                psg->sound.Consume(static_cast<int32_t>(psgValues));
                ym->sound.Consume(static_cast<int32_t>(psgValues));
            }
            const double expected = 50.0 * 313 * 228 / kClockPal * rate * 2;
            EXPECT_NEAR(static_cast<double>(taken), expected, rate * 0.006 + 40.0);
        }
    }
}

TEST_F(Psg, StateSavedAtAnyClockContinuesWithTheSameSound) {
    Start(1, true);
    Tone(0, 123, 1);
    Tone(1, 45, 2);
    Tone(2, 678, 3);
    Write({0xE7, 0xF2});
    PsgStereoWrite(*psg, 0x5A);
    auto other = std::make_unique<HEARD_CHIP<PSG>>();
    for (int trial = 0; trial < 20; ++trial) {
        Run(37);
        for (int clock = 0; clock < trial; ++clock) {
            PsgTick(*psg);
        }
        psg->pairs->sampleCount = 0;
        std::vector<uint8_t> state(PsgStateSize());
        ASSERT_EQ(PsgSaveState(*psg, state.data()).At(), state.data() + state.size());
        EXPECT_EQ(state[0], 1);
        PsgInit(*other, kClock, 1, true);
        PsgReset(*other);
        ASSERT_EQ(PsgLoadState(*other, state.data(), PsgStateSize()), PsgStateSize());
        std::vector<uint8_t> again(PsgStateSize());
        PsgSaveState(*other, again.data());
        EXPECT_EQ(again, state);
        const std::vector<int16_t> expected = RunBoth(500);
        psg.swap(other);
        ASSERT_EQ(RunBoth(500), expected) << trial;
    }
}

TEST_F(Psg, StateOfAnotherSizeOrVersionIsRefused) {
    std::vector<uint8_t> state(PsgStateSize());
    PsgSaveState(*psg, state.data());
    Tone(0, 99, 0);
    EXPECT_EQ(PsgLoadState(*psg, state.data(), PsgStateSize() - 1), 0u);
    EXPECT_EQ(PsgLoadState(*psg, state.data(), 0), 0u);
    state[0] = 2;
    EXPECT_EQ(PsgLoadState(*psg, state.data(), PsgStateSize()), 0u);
    state[0] = 1;
    ++state[1];
    EXPECT_EQ(PsgLoadState(*psg, state.data(), PsgStateSize()), 0u);
    EXPECT_EQ(psg->period[0], 99);
}

TEST_F(Psg, StateDoesNotRewireTheChip) {
    std::vector<uint8_t> state(PsgStateSize());
    PsgSaveState(*psg, state.data());
    Start(4, true);
    ASSERT_EQ(PsgLoadState(*psg, state.data(), PsgStateSize()), PsgStateSize());
    EXPECT_EQ(psg->lfsrShift, 14u);
    EXPECT_TRUE(psg->stereo);
}

TEST_F(Psg, AnyBytesAsAStateAreSafe) {
    Start(1, true);
    std::vector<uint8_t> state(PsgStateSize());
    PsgSaveState(*psg, state.data());
    std::mt19937 random(1);
    for (int trial = 0; trial < 300; ++trial) {
        for (size_t i = 5; i < state.size(); ++i) {
            state[i] = trial == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random());
        }
        ASSERT_EQ(PsgLoadState(*psg, state.data(), PsgStateSize()), PsgStateSize());
        // Fields that index or shift. A sanitizer does not see an index into the next array.
        ASSERT_LE(psg->latchChannel, 3);
        ASSERT_LT(psg->divider, 16u);
        ASSERT_LE(*std::max_element(psg->attenuation.begin(), psg->attenuation.end()), 15);
        for (const int16_t sample : RunBoth(200)) {
            ASSERT_LE(std::abs(sample), 3 * 3276 + 8191);
        }
        PsgWrite(*psg, static_cast<uint8_t>(random()));
        PsgWrite(*psg, static_cast<uint8_t>(random()));
    }
}
