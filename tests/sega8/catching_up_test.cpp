// The catch-up frame loops against the plain ones: same pixels, sound and states, on our own games
// with random button presses.

#include "formats/game_file.h"
#include "front/demos.h"
#include "library/convert.h"
#include "sega8/game_gear.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kKey = 1;
constexpr uint32_t kFrames = 150;

// A machine with its picture and sound buffers.
template <typename Machine>
class Rig {
public:
    Rig(const DEMO& demo, const uint8_t* options, bool plainLoop)
        : machine(std::make_unique<Machine>(kKey)) {
        CGameFile game;
        MACHINE_RECORD record{};
        ARC_RECORD arcade{};
        arcade.board = 3;
        if (demo.system == kSystemArcade) {
            std::memcpy(record.bytes, &arcade, sizeof arcade);
        }
        EXPECT_TRUE(BuildKnownGame(demo.system, demo.title, demo.image, record, game));
        game.selectedName = 0;
        CGameFile* const games[2] = {&game, nullptr};
        EXPECT_TRUE(machine->Init(options, games));
        machine->SetPlainLoop(plainLoop);
        pixels.resize(size_t{machine->width} * machine->height);
    }

    void Run() {
        video.pixels = pixels.data();
        audio.samples = samples.data();
        audio.sampleRate = 44100;
        machine->RunFrame(&input, &video, &audio);
    }

    [[nodiscard]] std::vector<uint8_t> State() {
        uint32_t size = 0;
        const StateBlob blob = machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    std::unique_ptr<Machine> machine;
    std::vector<uint32_t> pixels;
    std::vector<int16_t> samples = std::vector<int16_t>(kAudioFramePairs * 2);
    EMU_INPUT_STATE input{};
    EMU_VIDEO_FRAME video{};
    EMU_AUDIO_FRAME audio{};
};

// Presses or releases one key in every few frames.
class Fingers {
public:
    ~Fingers() { InputClearAll(); }
    void Move() {
        constexpr uint32_t kKeys[] = {82, 81, 80, 79, 4, 22, 40, 44, 34, 30};
        if (random() % 4 == 0) {
            InputKeyChanged(kKeys[random() % std::size(kKeys)], random() % 2 == 0);
        }
    }

private:
    std::mt19937 random{7};
};

template <typename Machine>
void CompareLoops(uint16_t system, const std::vector<uint8_t>& optionBytes) {
    RegisterDefaultSettings(Settings());
    InputSetActiveKey(kKey);
    std::vector<uint8_t> options(kMachineOptionBytes);
    std::copy(optionBytes.begin(), optionBytes.end(), options.begin());
    uint32_t compared = 0;
    for (const DEMO& demo : Demos()) {
        if (demo.system != system) {
            continue;
        }
        Rig<Machine> plain(demo, options.data(), true);
        Rig<Machine> fast(demo, options.data(), false);
        Fingers fingers;
        for (uint32_t frame = 0; frame < kFrames; ++frame) {
            fingers.Move();
            plain.Run();
            fast.Run();
            ASSERT_EQ(plain.video.height, fast.video.height) << demo.name << " frame " << frame;
            ASSERT_EQ(plain.pixels, fast.pixels) << demo.name << " frame " << frame;
            ASSERT_EQ(plain.audio.sampleCount, fast.audio.sampleCount) << demo.name;
            ASSERT_EQ(plain.samples, fast.samples) << demo.name << " frame " << frame;
            ASSERT_EQ(plain.State(), fast.State()) << demo.name << " frame " << frame;
            ++compared;
        }
    }
    EXPECT_GT(compared, 0u);
    InputSetActiveKey(0);
}

} // namespace

TEST(CatchingUp, MasterSystemMakesTheSameFrames) {
    CompareLoops<CSMS>(kSystemMasterSystem, {8, 0, 0, 1, 1});
}

TEST(CatchingUp, MasterSystemWithFmMakesTheSameFrames) {
    CompareLoops<CSMS>(kSystemMasterSystem, {8, 1, 0, 1, 1});
}

TEST(CatchingUp, PalMasterSystemWithAPhaserMakesTheSameFrames) {
    CompareLoops<CSMS>(kSystemMasterSystem, {1, 1, 0, 2, 4});
}

TEST(CatchingUp, GameGearMakesTheSameFrames) {
    CompareLoops<CGAMEGEAR>(kSystemGameGear, {0, 0, 1});
}

TEST(CatchingUp, TwoLinkedGameGearsGiveTheSameFrames) {
    CompareLoops<CGAMEGEAR>(kSystemGameGear, {0, 1, 0});
}

TEST(CatchingUp, SystemEMakesTheSameFrames) {
    CompareLoops<CSEGAE>(kSystemArcade, {});
}
