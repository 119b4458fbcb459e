// A resampler with another one's state must make exactly the samples that the other one makes.
#include "base/audio_rate.h"
#include "machine/chip_sound.h"
#include "machine/sound_settings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

struct RATES {
    double source;
    uint32_t app;
};

// The rates of the chips and of the program, and some with whole and half steps.
constexpr RATES kRates[] = {
    {223721.5625, 44100 },
    {223721.625,  48000 },
    {221680.0,    22050 },
    {49715.9,     44100 },
    {53267.0,     96000 },
    {49715.9,     192000},
    {44100.0,     44100 },
    {88200.0,     44100 },
    {31250.0,     44100 }
};

// The sound of a chip with the current settings.
struct CHIP : ChipSound {
    void Init(double rate) { ChipSound::Init(rate, SoundChoiceFromSettings()); }
    void Push(const std::vector<int16_t>& samples) {
        for (size_t i = 0; i + 1 < samples.size(); i += 2) {
            pairs.Add(samples[i], samples[i + 1]);
            if (pairs.sampleCount == pairs.samples.size()) {
                Flush();
            }
        }
        Flush();
    }
};

class ResamplerState : public testing::TestWithParam<int> {
protected:
    void SetUp() override { RegisterDefaultSettings(Settings()); }
    void TearDown() override {
        RegisterDefaultSettings(Settings());
        SetAudioRate(44100);
    }
};

// Noise over a slow wave, so that no two places of the signal are the same.
class Source {
public:
    explicit Source(uint32_t seed)
        : random(seed) {}

    std::vector<int16_t> Next(size_t frames) {
        std::vector<int16_t> samples(frames * 2);
        for (int16_t& sample : samples) {
            wave = (wave + 37) & 0x3FFF;
            sample = static_cast<int16_t>(static_cast<int>(random() & 0x3FFF) + wave - 0x4000);
        }
        return samples;
    }

private:
    std::mt19937 random;
    int wave = 0;
};

std::vector<int16_t> PushAndTake(CHIP& resampler, const std::vector<int16_t>& samples,
                                 size_t left) {
    resampler.Push(samples);
    const size_t ready = resampler.Output().size();
    const size_t taken = ready > left ? ready - left : 0;
    std::vector<int16_t> out(resampler.Output().begin(),
                             resampler.Output().begin() + static_cast<ptrdiff_t>(taken));
    resampler.Consume(static_cast<int32_t>(taken));
    return out;
}

std::vector<uint8_t> StateOf(const CHIP& resampler) {
    std::vector<uint8_t> state(resampler.StateSize());
    EXPECT_EQ(resampler.SaveState(state.data()).At(), state.data() + state.size());
    return state;
}

TEST_P(ResamplerState, GoesOnWithTheSameSamples) {
    Settings().SetInt(L"audio_app_quality", GetParam());
    for (const bool cutoff : {false, true}) {
        Settings().SetBool(L"emu_audiocutoff_enabled", cutoff);
        for (const RATES& rates : kRates) {
            SCOPED_TRACE(std::to_string(rates.source) + " to " + std::to_string(rates.app) +
                         (cutoff ? " cut off" : ""));
            SetAudioRate(rates.app);
            CHIP first;
            CHIP second;
            first.Init(rates.source);
            second.Init(rates.source);
            Source source(7);
            std::mt19937 sizes(static_cast<uint32_t>(rates.source) + rates.app);
            const auto frame = static_cast<size_t>(rates.source / 60.0);
            for (size_t trial = 0; trial < 60; ++trial) {
                // Whole frames, single pairs and anything between; sometimes values are left in the
                // output.
                const size_t push = trial % 5 == 3 ? 1 : frame - sizes() % 40 * (trial % 3);
                const size_t left = trial % 4 == 0 ? 2 * (trial % 8) : 0;
                const auto samples = source.Next(push);
                const auto state = StateOf(first);
                ASSERT_EQ(second.LoadState(state.data(), static_cast<uint32_t>(state.size())),
                          state.size())
                    << trial;
                ASSERT_EQ(PushAndTake(second, samples, left), PushAndTake(first, samples, left))
                    << trial;
                ASSERT_EQ(StateOf(second).size(), StateOf(first).size());
            }
            // A loaded one stays equal for a long time.
            for (int trial = 0; trial < 60; ++trial) {
                const auto samples = source.Next(frame);
                ASSERT_EQ(PushAndTake(second, samples, 0), PushAndTake(first, samples, 0)) << trial;
            }
        }
    }
}

TEST_P(ResamplerState, OfTheFirstFewFramesGoesOnWithTheSameSamples) {
    Settings().SetInt(L"audio_app_quality", GetParam());
    SetAudioRate(44100);
    for (const double rate : {223721.0, 49716.0, 20000.0}) {
        CHIP first;
        first.Init(rate);
        Source source(3);
        for (int pushes = 0; pushes < 1200; ++pushes) {
            const auto state = StateOf(first);
            CHIP second;
            second.Init(rate);
            ASSERT_EQ(second.LoadState(state.data(), static_cast<uint32_t>(state.size())),
                      state.size());
            const auto samples = source.Next(1);
            const auto expected = PushAndTake(first, samples, 0);
            ASSERT_EQ(PushAndTake(second, samples, 0), expected) << rate << ' ' << pushes;
        }
    }
}

TEST_P(ResamplerState, OfOtherSettingsIsRefusedAndLeavesAnEmptyOne) {
    SetAudioRate(44100);
    Settings().SetInt(L"audio_app_quality", GetParam());
    CHIP first;
    first.Init(50000.0);
    Source source(5);
    PushAndTake(first, source.Next(5000), 6);
    const auto state = StateOf(first);

    Settings().SetInt(L"audio_app_quality", (GetParam() + 1) % 3);
    CHIP other;
    other.Init(50000.0);
    CHIP fresh;
    fresh.Init(50000.0);
    PushAndTake(other, source.Next(5000), 6);
    EXPECT_EQ(other.LoadState(state.data(), static_cast<uint32_t>(state.size())), 0u);
    EXPECT_TRUE(other.Output().empty());
    const auto samples = source.Next(3000);
    EXPECT_EQ(PushAndTake(other, samples, 0), PushAndTake(fresh, samples, 0));
}

TEST_P(ResamplerState, CutShortIsRefused) {
    SetAudioRate(44100);
    Settings().SetInt(L"audio_app_quality", GetParam());
    CHIP resampler;
    resampler.Init(50000.0);
    const auto state = StateOf(resampler);
    for (uint32_t size = 0; size < state.size(); ++size) {
        // A block of exactly that size, so that the sanitizer finds a read beyond it.
        const std::vector<uint8_t> block(state.begin(), state.begin() + size);
        ASSERT_EQ(resampler.LoadState(block.data(), size), 0u) << size;
    }
}

TEST_P(ResamplerState, WithAnyByteChangedEitherRunsOrIsRefused) {
    SetAudioRate(44100);
    Settings().SetInt(L"audio_app_quality", GetParam());
    Settings().SetBool(L"emu_audiocutoff_enabled", true);
    CHIP first;
    first.Init(223721.0);
    Source source(11);
    PushAndTake(first, source.Next(5000), 4);
    const auto state = StateOf(first);
    CHIP second;
    second.Init(223721.0);
    std::mt19937 random(1);
    const size_t head = std::min<size_t>(state.size(), 600);
    for (int trial = 0; trial < 3000; ++trial) {
        auto damaged = state;
        damaged[random() % head] = static_cast<uint8_t>(random());
        const uint32_t used =
            second.LoadState(damaged.data(), static_cast<uint32_t>(damaged.size()));
        ASSERT_TRUE(used == 0 || used == state.size());
        PushAndTake(second, source.Next(100), 0);
        ASSERT_LE(second.Output().size(), size_t{44100 / 40 * 2});
    }
}

INSTANTIATE_TEST_SUITE_P(EveryQuality, ResamplerState, testing::Values(0, 1, 2));

} // namespace
