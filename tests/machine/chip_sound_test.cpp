#include "base/audio_rate.h"
#include "machine/chip_sound.h"
#include "machine/sound_settings.h"
#include "settings/settings.h"

#include "support/allocation_counter.h"
#include "support/spectrum.h"
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

constexpr double kPsgRate = 223721.5625;

std::vector<int16_t> Send(ChipSound& sound, const std::vector<int16_t>& samples) {
    for (size_t i = 0; i + 1 < samples.size(); i += 2) {
        sound.pairs.Add(samples[i], samples[i + 1]);
    }
    sound.Flush();
    std::vector<int16_t> out(sound.Output().begin(), sound.Output().end());
    sound.Consume(1 << 20);
    return out;
}

SOUND_CHOICE CutOffAt(int32_t low, int32_t high) {
    SOUND_CHOICE choice;
    choice.quality = 0;
    choice.cutoff = true;
    choice.cutoffLow = low;
    choice.cutoffHigh = high;
    return choice;
}

} // namespace

TEST(ChipSound, CutoffLiftsTheLowsByHalfAndDropsTheHighs) {
    const double rate = 44100.0 * 4.0;
    const auto level = [rate](double frequency) {
        ChipSound sound;
        sound.Init(rate, CutOffAt(800, 15000));
        std::vector<double> heard;
        for (size_t at = 0; heard.size() < 8820 + 44100; at += 2940) {
            std::vector<int16_t> block;
            for (size_t i = 0; i < 2940; ++i) {
                const double angle =
                    2.0 * std::numbers::pi * frequency * static_cast<double>(at + i) / rate;
                const auto sample = static_cast<int16_t>(std::lrint(10000.0 * std::sin(angle)));
                block.insert(block.end(), {sample, sample});
            }
            const std::vector<int16_t> out = Send(sound, block);
            for (size_t i = 0; i < out.size(); i += 2) {
                heard.push_back(out[i]);
            }
        }
        heard.erase(heard.begin(), heard.begin() + 8820);
        heard.resize(44100);
        return MeasureTone(heard, frequency, 44100.0).amplitude / 10000.0;
    };
    EXPECT_NEAR(level(50.0), 1.5, 0.01);
    EXPECT_NEAR(level(3500.0), 1.0, 0.03);
    // 15,000 Hz is the upper split, 6 dB down; an octave above is 24 dB down more.
    EXPECT_NEAR(level(15000.0), 0.5, 0.01);
    EXPECT_LT(level(20000.0), 0.28);
}

TEST(ChipSound, CutoffWrapsInsteadOfClipping) {
    ChipSound sound;
    sound.Init(44100.0, CutOffAt(800, 15000));
    for (int round = 0; round < 4; ++round) {
        const std::vector<int16_t> out = Send(sound, std::vector<int16_t>(2000, 30000));
        // A steady 30,000 comes to 45,000, which is -20,536 in sixteen bits.
        if (round == 3) {
            EXPECT_NEAR(out[1998], 45000 - 65536, 1);
            EXPECT_NEAR(out[1999], 45000 - 65536, 1);
        }
    }
}

TEST(ChipSound, CutoffSplitsAreTheChoiceWithTheRateTruncated) {
    SOUND_CHOICE choice = CutOffAt(1234, 4321);
    choice.rate = 44100;
    ChipSound sound;
    sound.Init(44100.9, choice); // so near the program's that the pick takes each of these pairs
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 1234.0, 4321.0);
    splitter.gains = {1.5, 1.0, 0.0};
    std::vector<int16_t> samples(400);
    std::vector<int16_t> expected(400);
    for (size_t i = 0; i < 200; ++i) {
        samples[i * 2] = static_cast<int16_t>((i * 977) % 8000);
        expected[i * 2] = static_cast<int16_t>(splitter.Process(samples[i * 2]));
    }
    const std::vector<int16_t> out = Send(sound, samples);
    for (size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(out[i * 2], expected[i * 2]) << i;
        EXPECT_EQ(out[i * 2 + 1], 0) << "the other channel is filtered apart";
    }
}

TEST(ChipSound, DamagedCutoffDoesNoHarm) {
    for (const int32_t split : {0, -1, 2147483647, -2147483647}) {
        for (const int32_t quality : {0, 1, 2}) {
            SOUND_CHOICE choice = CutOffAt(split, split);
            choice.quality = quality;
            ChipSound sound;
            sound.Init(kPsgRate, choice);
            EXPECT_FALSE(Send(sound, std::vector<int16_t>(4000, 32767)).empty());
        }
    }
}

TEST(ChipSound, FlushDoesNotAllocate) {
    for (const bool cutoff : {false, true}) {
        SOUND_CHOICE choice;
        choice.cutoff = cutoff;
        ChipSound sound;
        sound.Init(kPsgRate, choice);
        const size_t before = AllocationsSoFar();
        for (int frame = 0; frame < 10; ++frame) {
            for (int i = 0; i < 3729; ++i) {
                sound.pairs.Add(static_cast<int16_t>(i * 7), static_cast<int16_t>(i * 5));
            }
            sound.Flush();
            sound.Consume(1 << 20);
        }
        EXPECT_EQ(AllocationsSoFar(), before);
    }
}

TEST(ChipSound, PieceHasAVersionOfItsOwnAndTheOldOneIsRefused) {
    ChipSound sound;
    sound.Init(kPsgRate, {});
    std::vector<uint8_t> state(sound.StateSize());
    EXPECT_EQ(sound.SaveState(state.data()), state.data() + state.size());
    EXPECT_EQ(state[0], 2);
    EXPECT_EQ(sound.LoadState(state.data(), sound.StateSize()), state.size());
    state[0] = 1;
    EXPECT_EQ(sound.LoadState(state.data(), sound.StateSize()), 0U);
}

TEST(ChipSound, ChoiceComesFromTheSettings) {
    RegisterDefaultSettings(Settings());
    SetAudioRate(48000);
    SOUND_CHOICE choice = SoundChoiceFromSettings();
    EXPECT_EQ(choice.rate, 48000U);
    EXPECT_EQ(choice.quality, 1);
    EXPECT_FALSE(choice.cutoff);
    EXPECT_EQ(choice.cutoffLow, 800);
    EXPECT_EQ(choice.cutoffHigh, 15000);
    Settings().SetInt(L"audio_app_quality", 2);
    Settings().SetBool(L"emu_audiocutoff_enabled", true);
    Settings().SetInt(L"emu_audiocutoff_low", 1);
    Settings().SetInt(L"emu_audiocutoff_high", 2);
    choice = SoundChoiceFromSettings();
    EXPECT_EQ(choice.quality, 2);
    EXPECT_TRUE(choice.cutoff);
    EXPECT_EQ(choice.cutoffLow, 1);
    EXPECT_EQ(choice.cutoffHigh, 2);
    RegisterDefaultSettings(Settings());
    SetAudioRate(44100);
}
