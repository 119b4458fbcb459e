// Where the room's games are heard: machines that play a tone each, by way of the pump and the loopback device.
#include "audio/sound.h"
#include "base/audio_rate.h"
#include "base/files.h"
#include "formats/game_file.h"
#include "front/room_sound.h"
#include "front/session_callbacks.h"
#include "host/machine_list.h"
#include "host/session.h"
#include "machine/emu_system.h"
#include "room/room_camera.h"
#include "room/room_objects.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

namespace {

constexpr uint32_t kLeftSet = 6;  // the first along the wall, its middle at (63.5, 111, 95)
constexpr uint32_t kRightSet = 9; // and the last
constexpr uint32_t kMachine = 2;  // any number

double ToneOf(uint32_t key) {
    return 300.0 + 100.0 * (key - 5); // hertz
}

class CToneMachine : public CEmuSystem {
public:
    explicit CToneMachine(uint32_t key)
        : CEmuSystem(key, 64, 64)
        , step(2.0 * std::numbers::pi * ToneOf(key) / AudioRate()) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override {}
    void RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override {
        video->width = video->height = 64;
        audio->sampleCount = AudioRate() / 60;
        for (uint32_t i = 0; i < audio->sampleCount; ++i) {
            const auto sample = static_cast<int16_t>(8000.0 * std::sin(phase));
            audio->samples[size_t{i} * 2] = audio->samples[size_t{i} * 2 + 1] = sample;
            phase = std::fmod(phase + step, 2.0 * std::numbers::pi);
        }
    }
    bool LoadState(const uint8_t*, uint32_t) override { return true; }
    uint32_t StateSize() override { return 1; }
    void WriteState(StateOut out) override { out.PutScalar(uint8_t{0}); }

private:
    double step;
    double phase = 0.0;
};

const MACHINE_LIST& ToneMachines() {
    static constexpr MACHINE_ENTRY kMachines[] = {
        {kMachine, ".\\tone",
         [](uint32_t key) -> std::unique_ptr<CEmuSystem> {
             return std::make_unique<CToneMachine>(key);
         }},
    };
    static constexpr MACHINE_LIST kList{kMachines, nullptr};
    return kList;
}

// The power of both ears at a tone.
struct EARS {
    double left = 0.0;
    double right = 0.0;
};

class RoomSound : public testing::Test {
protected:
    void SetUp() override {
        SetHomeFolder(folder.Path());
        RegisterDefaultSettings(Settings());
        Settings().SetInt(L"emu_autosaves", 0);
        EmuSetMachines(ToneMachines());
        InstallSessionCallbacks();
        std::string error;
        ASSERT_TRUE(OpenSoundLoopback(error)) << error;
        StartSoundPump();
        SoundSetRoomVisible(true);
        InputSetActiveKey(0);
        objects.Build(nullptr);
        PlaceTelevisionSounds(objects);
    }
    void TearDown() override {
        EmuStopSession(kLeftSet, SessionEnd::kTurnedOff);
        EmuStopSession(kRightSet, SessionEnd::kTurnedOff);
        StopSoundPump();
        CloseSoundDevice();
        SoundSetRoomVisible(false);
        PlaceListener(CRoomCamera());
    }

    static void Play(uint32_t key) {
        CGameFile game;
        game.Create(false, kMachine);
        CGameFile* const games[2] = {&game, nullptr};
        const std::vector<uint8_t> options(256);
        ASSERT_NE(EmuStartSession(key, games, options.data(), "Tone"), 0u);
    }

    static void Stand(VECTOR3 from, VECTOR3 at) {
        CRoomCamera camera;
        camera.SetUp(1.0f, from, at);
        PlaceListener(camera);
    }

    // Pulls the device at about its own speed and listens for the key's tone in the last half second.
    EARS Listen(uint32_t key) {
        constexpr uint32_t kPull = 512;
        constexpr size_t kHeard = 22050 * 2;
        std::vector<int16_t> pulled(size_t{kPull} * 2);
        RenderSound(pulled.data(), kPull);
        heard.insert(heard.end(), pulled.begin(), pulled.end());
        if (heard.size() > kHeard) {
            heard.erase(heard.begin(), heard.end() - kHeard);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return heard.size() < kHeard ? EARS{} : EARS{Power(key, 0), Power(key, 1)};
    }

    TemporaryFolder folder;
    CRoomObjects objects;

private:
    // Of one frequency, by a sum with its sine and its cosine.
    [[nodiscard]] double Power(uint32_t key, size_t side) const {
        const double step = 2.0 * std::numbers::pi * ToneOf(key) / AudioRate();
        double sine = 0.0;
        double cosine = 0.0;
        for (size_t i = side; i < heard.size(); i += 2) {
            const double angle = step * static_cast<double>(i / 2);
            sine += heard[i] * std::sin(angle);
            cosine += heard[i] * std::cos(angle);
        }
        const auto count = static_cast<double>(heard.size() / 2);
        return (sine * sine + cosine * cosine) / count / count;
    }

    std::vector<int16_t> heard;
};

constexpr double kAudible = 1000.0; // a tone of 8000 at a few metres is far louder
constexpr double kLouder =
    1.6; // as in SoundDevice's own test: at these tones the head shadows little

} // namespace

// The middles of the sets' boxes; the ears of a player are 118 above the floor.
TEST(RoomSoundPlaces, EachSetSoundsFromItsMiddleAsSeenFromTheEars) {
    CRoomObjects objects;
    objects.Build(nullptr);
    const struct {
        size_t slot;
        VECTOR3 place;
    } rows[] =
        {
            {0, {63.5f, -7.0f, 95.0f}   }, // on the unit, 70 high; half of 82 above that
            {1, {183.5f, -7.0f, 75.0f}  },
            {2, {303.5f, -7.0f, 65.0f}  },
            {3, {423.5f, -7.0f, 65.0f}  },
            {5, {92.5f, -28.0f, 769.5f} }, // on the floor, 180 high
            {6, {407.5f, -28.0f, 769.5f}},
            {7, {320.0f, -67.5f, 395.5f}}, // on the table, 49 high; half of 3 above that
            {8, {9.25f, -0.25f, 400.0f} }, // on the floor, 235.5 high; width and depth change places
    };
    for (const auto& row : rows) {
        const CRoomObject* const set = objects.Find(objects.Televisions()[row.slot]);
        ASSERT_NE(set, nullptr) << row.slot;
        const VECTOR3 place = SoundPlaceOf(*set);
        EXPECT_FLOAT_EQ(place.x, row.place.x) << row.slot;
        EXPECT_FLOAT_EQ(place.y, row.place.y) << row.slot;
        EXPECT_FLOAT_EQ(place.z, row.place.z) << row.slot;
    }
}

TEST_F(RoomSound, ASetIsHeardOnItsSideOfThePlayer) {
    Stand({200.0f, 118.0f, 95.0f}, {200.0f, 118.0f, 0.0f});
    ASSERT_NO_FATAL_FAILURE(Play(kLeftSet));
    EXPECT_TRUE(WaitUntil("the left ear", [&] {
        const EARS ears = Listen(kLeftSet);
        return ears.right > kAudible && ears.left > ears.right * kLouder;
    }));
    Stand({200.0f, 118.0f, 95.0f}, {200.0f, 118.0f, 800.0f}); // half round
    EXPECT_TRUE(WaitUntil("the right ear", [&] {
        const EARS ears = Listen(kLeftSet);
        return ears.left > kAudible && ears.right > ears.left * kLouder;
    }));
    Stand({63.5f, 118.0f, 250.0f},
          {400.0f, 118.0f, 250.0f}); // along the wall, with the set on the left
    EXPECT_TRUE(WaitUntil("the left ear again", [&] {
        const EARS ears = Listen(kLeftSet);
        return ears.right > kAudible && ears.left > ears.right * kLouder;
    }));
    Stand({63.5f, 118.0f, 250.0f}, {63.5f, 118.0f, 0.0f}); // straight at it
    EXPECT_TRUE(WaitUntil("both ears", [&] {
        const EARS ears = Listen(kLeftSet);
        return ears.left > kAudible && std::abs(ears.left / ears.right - 1.0) < 0.15;
    }));
}

TEST_F(RoomSound, AllSetsAreHeardInTheRoomAndOneOnTheFullScreen) {
    Stand({220.0f, 118.0f, 200.0f}, {220.0f, 118.0f, 0.0f});
    ASSERT_NO_FATAL_FAILURE(Play(kLeftSet));
    ASSERT_NO_FATAL_FAILURE(Play(kRightSet));
    const auto loud = [&](uint32_t key) { return Listen(key).left > kAudible; };
    EXPECT_TRUE(WaitUntil("both sets", [&] { return loud(kLeftSet) && loud(kRightSet); }));
    for (const uint32_t shown : {kLeftSet, kRightSet}) {
        const uint32_t other = shown == kLeftSet ? kRightSet : kLeftSet;
        SoundSetRoomVisible(false);
        InputSetActiveKey(shown);
        EXPECT_TRUE(WaitUntil("one set alone", [&] {
            const double heardOther = Listen(other).left;
            return loud(shown) && heardOther < kAudible / 100.0;
        })) << shown;
    }
    SoundSetRoomVisible(true);
    EXPECT_TRUE(WaitUntil("both sets again", [&] { return loud(kLeftSet) && loud(kRightSet); }));
}
