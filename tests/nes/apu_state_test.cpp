#include "base/audio_rate.h"
#include "base/bytes.h"
#include "machine/sound_settings.h"
#include "nes/apu_rig.h"

#include <random>

namespace {

// Every channel busy.
void PlayAll(ApuRig& rig) {
    for (size_t i = 0; i < rig.memory.size(); ++i) {
        rig.memory[i] = static_cast<uint8_t>(i * 37 >> 3);
    }
    rig.Write(0x4015, 0x0F);
    rig.Writes({
        {0x4000, 0x43}, // a decaying envelope
        {0x4001, 0xA3},
        {0x4002, 0x51},
        {0x4003, 0x0A},
        {0x4004, 0xBA},
        {0x4005, 0x9C},
        {0x4006, 0xFF},
        {0x4007, 0x4B},
        {0x4008, 0x50},
        {0x400A, 0x77},
        {0x400B, 0x09},
        {0x400C, 0x25},
        {0x400E, 0x84},
        {0x400F, 0x18},
        {0x4010, 0x4C},
        {0x4012, 0x05},
        {0x4013, 0x07},
        {0x4015, 0x1F},
    });
}

std::vector<uint8_t> Save(const ApuRig& rig) {
    std::vector<uint8_t> block(ApuStateSize() + 1, 0xA5);
    EXPECT_EQ(ApuSaveState(*rig.apu, block.data()).At(), block.data() + block.size() - 1);
    EXPECT_EQ(block.back(), 0xA5);
    block.pop_back();
    return block;
}

uint32_t Load(ApuRig& rig, const std::vector<uint8_t>& block) {
    return ApuLoadState(*rig.apu, block.data(), static_cast<uint32_t>(block.size()));
}

} // namespace

TEST(ApuState, LoadedChipMakesTheSameSamples) {
    for (const uint64_t cycles : {1u, 777u, 12'345u, 29'830u, 29'831u, 100'003u}) {
        ApuRig saved;
        PlayAll(saved);
        saved.Run(cycles);
        saved.Write(0x400F, 0x20); // a pending length load
        const std::vector<uint8_t> block = Save(saved);
        ApuRig loaded;
        loaded.memory = saved.memory;
        loaded.Write(0x4015, 0x1F);
        loaded.Write(0x4011, 0x33);
        loaded.Run(5001);
        ASSERT_EQ(Load(loaded, block), block.size());
        EXPECT_EQ(loaded.irqLines, saved.irqLines);
        EXPECT_EQ(Save(loaded), block);
        const std::vector<int> expected = saved.Raw(20'000);
        EXPECT_EQ(loaded.Raw(20'000), expected) << cycles;
        EXPECT_NE(Highest(expected), Lowest(expected));
        EXPECT_EQ(Save(loaded), Save(saved));
    }
}

TEST(ApuState, InterruptsComeBackAndOthersLinesStay) {
    ApuRig rig;
    rig.irqLines = kNesIrqFrame;
    const std::vector<uint8_t> block = Save(rig);
    rig.irqLines = kNesIrqSample | kNesIrqBoard;
    ASSERT_NE(Load(rig, block), 0u);
    EXPECT_EQ(rig.irqLines, kNesIrqFrame | kNesIrqBoard);
}

TEST(ApuState, WrongVersionOrLengthIsRefusedWithNothingChanged) {
    ApuRig rig;
    PlayAll(rig);
    rig.Run(1000);
    const std::vector<uint8_t> before = Save(rig);
    const ApuRig other;
    const std::vector<uint8_t> block = Save(other);
    EXPECT_EQ(block[0], 1);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(block.data() + 1), block.size());
    for (const size_t byte : {0u, 1u, 2u, 3u, 4u}) {
        std::vector<uint8_t> wrong = block;
        wrong[byte] ^= 1;
        EXPECT_EQ(Load(rig, wrong), 0u) << byte;
    }
    std::vector<uint8_t> cut = block;
    cut.pop_back();
    EXPECT_EQ(Load(rig, cut), 0u);
    EXPECT_EQ(Load(rig, {}), 0u);
    EXPECT_EQ(Save(rig), before);
    std::vector<uint8_t> more = block;
    more.push_back(0);
    EXPECT_EQ(Load(rig, more), block.size());
}

// Any loaded bytes leave the chip within the sum of its channels' ranges and running: every timer and the
// sequencer expire.
TEST(ApuState, TamperedStatesAreSafe) {
    std::mt19937 random(1);
    for (int trial = 0; trial < 200; ++trial) {
        ApuRig rig;
        std::vector<uint8_t> block = Save(rig);
        for (size_t i = 5; i < block.size(); ++i) {
            const std::array<uint32_t, 3> kinds{static_cast<uint32_t>(random()), 0xFF, 0};
            block[i] = static_cast<uint8_t>(kinds[static_cast<size_t>(trial) % 3]);
        }
        ASSERT_EQ(Load(rig, block), block.size());
        const std::vector<int> samples = rig.Raw(2000);
        EXPECT_GE(Lowest(samples), (-60 - 60 - 64 - 30 - 192) * 50);
        EXPECT_LE(Highest(samples), (60 + 60 + 56 + 30 + 192) * 50);
        for (const int address : rig.fetched) {
            EXPECT_GE(address, 0x8000);
        }
        rig.Write(0x4017, 0x00);
        rig.Run(30'000);
        EXPECT_EQ(rig.Status() & 0x40, 0x40);
    }
}

TEST(ApuState, FlushHandsOverWhatWasMade) {
    ApuRig rig;
    Settings().SetInt(L"audio_app_quality", 0);
    rig.apu->sound.Init(kApuSampleRate, SoundChoiceFromSettings());
    rig.Write(0x4011, 64);
    for (int i = 0; i < 8 * 1000; ++i) {
        ApuTick(*rig.apu);
    }
    EXPECT_EQ(rig.apu->pairs->sampleCount, 2000u);
    EXPECT_TRUE(rig.apu->sound.Output().empty());
    rig.apu->sound.Flush();
    EXPECT_EQ(rig.apu->pairs->sampleCount, 0u);
    // 1000 pairs at 223,721.625 a second are 197.1 at 44,100.
    EXPECT_EQ(rig.apu->sound.Output().size() / 2, 198u);
    EXPECT_EQ(rig.apu->sound.Output()[100], 150);
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", 1);
}

TEST(ApuState, OwnerThatNeverFlushesIsSafe) {
    ApuRig rig;
    PlayAll(rig);
    for (int i = 0; i < 200'000; ++i) {
        ApuTick(*rig.apu);
    }
    EXPECT_EQ(rig.apu->pairs->sampleCount, rig.apu->pairs->samples.size())
        << "what comes then is lost";
}

// Frames of 29,781 cycles, the longest; no sample may be dropped.
TEST(ApuState, NoSoundOfAFrameIsLostAtAnyRateAndQuality) {
    constexpr int kFrames = 20;
    for (const uint32_t rate : {22050u, 44100u, 192000u}) {
        for (const int quality : {0, 1, 2}) {
            ApuRig rig;
            SetAudioRate(rate);
            Settings().SetInt(L"audio_app_quality", quality);
            rig.apu->sound.Init(kApuSampleRate, SoundChoiceFromSettings());
            PlayAll(rig);
            size_t pairs = 0;
            for (int frame = 0; frame < kFrames; ++frame) {
                for (int cycle = 0; cycle < 29'781; ++cycle) {
                    ApuTick(*rig.apu);
                }
                ASSERT_LT(rig.apu->pairs->sampleCount, rig.apu->pairs->samples.size());
                rig.apu->sound.Flush();
                const size_t ready = rig.apu->sound.Output().size();
                pairs += ready / 2;
                rig.apu->sound.Consume(static_cast<int32_t>(ready));
            }
            const double expected = kFrames * 29'781.0 / kApuClock * rate;
            // The resampler holds back half of its filter; one lost frame would be 367 samples or more.
            EXPECT_NEAR(static_cast<double>(pairs), expected, 64.0)
                << rate << " quality " << quality;
        }
    }
    SetAudioRate(44100);
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", 1);
}
