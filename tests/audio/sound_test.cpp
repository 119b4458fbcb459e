#include "audio/sound.h"
#include "audio/sound_channel.h"
#include "audio/sound_device.h"
#include "audio/tone_ring.h"
#include "base/audio_rate.h"
#include "host/host_data.h"
#include "host/session.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/wait_until.h"
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

// SDL's driver without a device: its thread pulls at the pace of a real one.
class Sound : public testing::Test {
protected:
    void SetUp() override {
        RegisterDefaultSettings(Settings());
        SetAudioRate(44100);
        UseDriver("dummy");
    }
    void TearDown() override {
        StopSoundPump();
        CloseSoundDevice();
        SoundSetRoomVisible(false);
        SoundSetVolume(1.0f);
        InputSetActiveKey(0);
    }
    static void UseDriver(const char* name) { SDL_setenv("SDL_AUDIODRIVER", name, 1); }
};

// A session's records without machine or thread.
struct Session {
    EMU_THREAD thread;
    EMU_HOST_DATA data;

    explicit Session(uint32_t key) {
        thread.key = key;
        thread.hostData = &data;
        data.pending.assign(size_t{44100} * 8, 0);
    }
    void Submit() {
        std::vector<int16_t> samples(size_t{735} * 2, 1000);
        EMU_AUDIO_FRAME frame{samples.data(), 44100, 735};
        HostSubmitAudio(&thread, &frame);
    }
    // The cursors of the ring that plays, under the lock that guards the channel.
    [[nodiscard]] uint32_t PlayCursor() {
        const std::lock_guard guard(EmuSoundMutex());
        return thread.sound.directSound != 0 ? data.sound->stereo.Cursors().play
                                             : data.sound->mono.Cursors().play;
    }
};

// A tone from a ring at that place, in the device's units.
SIDES HeardByHand(const SOUND_PLACE& place, const SOUND_PLACE& listener) {
    SoundDevice device;
    std::string error;
    EXPECT_TRUE(device.OpenLoopback(AudioRate(), 512, error)) << error;
    SoundRing ring(1, AudioRate());
    FillWithTone(ring, true, true);
    EXPECT_TRUE(device.Attach(ring, RingKind::kPositioned));
    device.PlaceRing(ring, place);
    device.PlaceListener(listener, {0, 0, -1}, {0, 1, 0});
    ring.Play();
    const SIDES sides = MeasureSides(
        [&](int16_t* out, uint32_t frames) { device.Render(out, frames); }, AudioRate());
    device.Detach(ring);
    return sides;
}

// The output of the loopback device.
SIDES Heard() {
    return MeasureSides(RenderSound, AudioRate());
}

// Within half a decibel.
bool AreAlike(const SIDES& a, const SIDES& b) {
    const auto near = [](double first, double second) {
        return std::abs(10.0 * std::log10(first / second)) < 0.5;
    };
    return near(a.left, b.left) && near(a.right, b.right);
}

// Pumps until the device has taken everything that the session submitted.
testing::AssertionResult IsPlayed(Session& session) {
    return WaitUntil("the submitted sound to be taken", [&] {
        PumpSound(session.thread);
        return session.thread.sound.soundBytes == 0;
    });
}

std::string Decibels(const SIDES& sides) {
    return std::to_string(10.0 * std::log10(sides.left)) + " left, " +
           std::to_string(10.0 * std::log10(sides.right)) + " right";
}

} // namespace

TEST_F(Sound, NoDriverMeansAClearWordAndSilence) {
    UseDriver("no-such-driver");
    std::string error;
    EXPECT_FALSE(OpenSoundDevice(error));
    EXPECT_NE(error.find("no sound: "), std::string::npos);
    EXPECT_GT(error.size(), std::string("no sound: ").size());
    EXPECT_EQ(SoundDeviceNumber(), 0u);
    // Everything else does nothing.
    StartSoundPump();
    Session session(1);
    CreateSoundChannel(session.thread);
    EXPECT_TRUE(session.data.noSound);
    session.Submit();
    EXPECT_EQ(session.thread.sound.soundBytes, 0u);
    PumpSound(session.thread);
    SoundSetTelevision(1, 1, 2, 3);
    DestroySoundChannel(session.thread);
    CloseSoundDevice();
}

TEST_F(Sound, ADeviceThatCannotBeOpenedIsToldOfOnceAndByUs) {
    // ALSA's library would write a line of its own about such a name.
    UseDriver("alsa");
    SDL_setenv("AUDIODEV", "no-such-device", 1);
    testing::internal::CaptureStderr();
    std::string error;
    EXPECT_FALSE(OpenSoundDevice(error));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(error.find("no sound: "), std::string::npos);
    SDL_setenv("AUDIODEV", "", 1);
}

TEST_F(Sound, SessionWithoutHostDataIsPassedOver) {
    EMU_THREAD bare;
    CreateSoundChannel(bare);
    PumpSound(bare);
    DestroySoundChannel(bare);
    EXPECT_EQ(bare.sound.soundBytes, 0u);
}

TEST_F(Sound, DevicePullsTheRingsAndThePumpFillsThem) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    EXPECT_TRUE(OpenSoundDevice(error));
    EXPECT_NE(SoundDeviceNumber(), 0u);
    Session session(5);
    InputSetActiveKey(5);
    CreateSoundChannel(session.thread);
    ASSERT_FALSE(session.data.noSound);
    PumpSound(session.thread);
    EXPECT_EQ(session.thread.sound.directSound, 1);
    EXPECT_EQ(session.thread.sound.audible, 1);
    session.Submit();
    EXPECT_EQ(session.thread.sound.soundBytes, 735u * 4);
    EXPECT_TRUE(IsPlayed(session));
    EXPECT_GT(session.PlayCursor(), 0u);
    // The gap is one pull and the lookahead: 576 frames at 176 bytes a millisecond.
    EXPECT_GE(EmuSoundGapMs(), 13u);
    DestroySoundChannel(session.thread);
    EXPECT_EQ(session.data.sound, nullptr);
    EXPECT_TRUE(session.data.noSound);
}

// The device takes 10 ms at a time, as much as the steady session makes. No thread takes part.
TEST_F(Sound, SetsThatComeAndGoLeaveNoGapInAnother) {
    constexpr uint32_t kStep = 441; // frames
    constexpr size_t kSteady = 50;  // steps until the sound is there
    std::string error;
    ASSERT_TRUE(OpenSoundLoopback(error)) << error;
    SoundSetRoomVisible(true);
    SoundSetTelevision(1, 0.0f, 0.0f, -50.0f);
    Session steady(1);
    CreateSoundChannel(steady.thread);
    std::vector<std::unique_ptr<Session>> others;
    std::vector<int16_t> level(size_t{kStep} * 2, 8000);
    std::vector<int16_t> silence(size_t{kStep} * 2, 0);
    std::vector<int16_t> heard(size_t{kStep} * 2);
    int usual = 0;
    uint32_t repositions = 0;
    for (size_t step = 0; step < 800; ++step) {
        if (step > kSteady && step % 5 == 0 && others.size() < 7) {
            others.push_back(std::make_unique<Session>(static_cast<uint32_t>(2 + step % 8)));
            CreateSoundChannel(others.back()->thread);
        }
        if (step > kSteady && step % 7 == 0 && !others.empty()) {
            const auto gone = others.begin() + static_cast<std::ptrdiff_t>(step % others.size());
            DestroySoundChannel((*gone)->thread);
            others.erase(gone);
        }
        EMU_AUDIO_FRAME frame{level.data(), AudioRate(), kStep};
        HostSubmitAudio(&steady.thread, &frame);
        PumpSound(steady.thread);
        for (const auto& other : others) {
            EMU_AUDIO_FRAME quiet{silence.data(), AudioRate(), kStep};
            HostSubmitAudio(&other->thread, &quiet);
            PumpSound(other->thread);
        }
        RenderSound(heard.data(), kStep);
        const int lowest = *std::ranges::min_element(heard);
        if (step == kSteady) {
            usual = lowest;
            repositions = steady.thread.statistics.soundRepositions;
            ASSERT_GT(usual, 1000) << "the level is heard";
        } else if (step > kSteady) {
            ASSERT_GT(lowest, usual * 9 / 10) << "step " << step;
        }
    }
    EXPECT_EQ(steady.thread.statistics.soundRepositions, repositions);
    for (const auto& other : others) {
        DestroySoundChannel(other->thread);
    }
    DestroySoundChannel(steady.thread);
}

TEST_F(Sound, ActiveKeyAndRoomDecideWhatIsHeard) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    Session first(1);
    Session second(2);
    CreateSoundChannel(first.thread);
    CreateSoundChannel(second.thread);
    const auto pump = [&first, &second] {
        PumpSound(first.thread);
        PumpSound(second.thread);
    };
    InputSetActiveKey(2);
    pump();
    EXPECT_EQ(first.thread.sound.audible, 0);
    EXPECT_EQ(first.thread.sound.directSound, 0);
    EXPECT_EQ(second.thread.sound.audible, 1);
    EXPECT_EQ(second.thread.sound.directSound, 1);
    SoundSetRoomVisible(true);
    pump();
    EXPECT_EQ(first.thread.sound.audible, 1);
    EXPECT_EQ(second.thread.sound.audible, 1);
    EXPECT_EQ(second.thread.sound.directSound, 0);
    DestroySoundChannel(first.thread);
    DestroySoundChannel(second.thread);
}

TEST_F(Sound, VolumeComesFromTheSettingsWhenTheDeviceOpens) {
    Settings().SetFloat(L"audio_volume", 0.25f);
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    EXPECT_EQ(SoundVolume(), 0.25f);
    SoundSetVolume(0.5f);
    EXPECT_EQ(SoundVolume(), 0.5f);
    SoundSetVolume(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(SoundVolume(), 0.5f);
}

TEST_F(Sound, LostDeviceSilencesItsSessionsAndANewOneGoesOn) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    Session session(1);
    InputSetActiveKey(1);
    CreateSoundChannel(session.thread);
    PumpSound(session.thread);
    EXPECT_TRUE(WaitUntil("the device to play", [&] { return session.PlayCursor() > 0; }));
    session.data.syncBias = -1;
    CloseSoundDevice();
    const uint32_t stood = session.PlayCursor();
    EXPECT_EQ(session.data.syncBias, 0) << "frames last what their samples say";
    for (int i = 0; i < 100; ++i) {
        session.Submit();
        PumpSound(session.thread);
        ASSERT_EQ(session.thread.sound.soundBytes, 0u);
    }
    EXPECT_EQ(session.PlayCursor(), stood);
    EXPECT_EQ(session.data.syncBias, 0);

    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    EXPECT_FALSE(session.data.noSound);
    PumpSound(session.thread);
    session.Submit();
    EXPECT_GT(session.thread.sound.soundBytes, 0u);
    EXPECT_TRUE(IsPlayed(session));
    DestroySoundChannel(session.thread);
}

TEST_F(Sound, SessionStartedWithoutADeviceIsHeardOnceThereIsOne) {
    Session session(1);
    InputSetActiveKey(1);
    CreateSoundChannel(session.thread);
    EXPECT_TRUE(session.data.noSound);
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    EXPECT_FALSE(session.data.noSound);
    PumpSound(session.thread);
    session.Submit();
    EXPECT_TRUE(IsPlayed(session));
    DestroySoundChannel(session.thread);
}

TEST_F(Sound, ChannelOutlivesTheDeviceAndIsDestroyedAfterIt) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    Session session(1);
    CreateSoundChannel(session.thread);
    CloseSoundDevice();
    DestroySoundChannel(session.thread);
    DestroySoundChannel(session.thread);
    EXPECT_TRUE(OpenSoundDevice(error));
}

TEST_F(Sound, MoreSessionsThanTheLibraryHasSourcesAreSilent) {
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    std::vector<std::unique_ptr<Session>> sessions;
    uint32_t silent = 0;
    for (uint32_t key = 0; key < 200; ++key) {
        sessions.push_back(std::make_unique<Session>(key));
        CreateSoundChannel(sessions.back()->thread);
        silent += sessions.back()->data.noSound ? 1u : 0u;
    }
    EXPECT_GT(silent, 0u);
    EXPECT_LT(silent, 200u);
    for (const auto& session : sessions) {
        PumpSound(session->thread);
        DestroySoundChannel(session->thread);
    }
}

TEST_F(Sound, AHundredRoomUnitsAreOneOfTheDevice) {
    constexpr struct {
        SOUND_PLACE television;
        SOUND_PLACE ring;
    } kRows[] = {
        {{100, 0, 0},     {1, 0, 0}      },
        {{-100, 0, 0},    {-1, 0, 0}     },
        {{0, 0, -400},    {0, 0, -4}     },
        {{300, 200, 100}, {3.0f, 2.0f, 1}},
    };
    for (const auto& row : kRows) {
        const SIDES expected = HeardByHand(row.ring, {0, 0, 0});
        std::string error;
        ASSERT_TRUE(OpenSoundLoopback(error)) << error;
        // Placed before the session starts, and once more while it plays.
        SoundSetTelevision(5, row.television.x, row.television.y, row.television.z);
        Session session(5);
        CreateSoundChannel(session.thread);
        ASSERT_FALSE(session.data.noSound);
        FillWithTone(session.data.sound->mono, true, true);
        const SIDES early = Heard();
        EXPECT_TRUE(AreAlike(early, expected)) << Decibels(early) << "; " << Decibels(expected);
        SoundSetTelevision(5, 0, 0, 0);
        SoundSetTelevision(5, row.television.x, row.television.y, row.television.z);
        const SIDES late = Heard();
        EXPECT_TRUE(AreAlike(late, expected)) << Decibels(late) << "; " << Decibels(expected);
        DestroySoundChannel(session.thread);
        CloseSoundDevice();
    }
    SoundSetTelevision(5, 0, 0, 0);
}

TEST_F(Sound, TheListenerIsInRoomUnitsTooAndOnTheFloor) {
    // One unit to the right and one above the ears, once they have gone one to the right and one ahead.
    const SIDES expected = HeardByHand({2, 1, -1}, {1, 0, -1});
    const SIDES before = HeardByHand({2, 1, -1}, {0, 0, 0});
    ASSERT_FALSE(AreAlike(before, expected));
    std::string error;
    ASSERT_TRUE(OpenSoundLoopback(error)) << error;
    SoundSetTelevision(5, 200, 100, -100);
    Session session(5);
    CreateSoundChannel(session.thread);
    ASSERT_FALSE(session.data.noSound);
    FillWithTone(session.data.sound->mono, true, true);
    const SIDES first = Heard();
    EXPECT_TRUE(AreAlike(first, before)) << Decibels(first) << "; " << Decibels(before);
    SOUND_LISTENER listener;
    listener.x = 100.0f;
    listener.z = -100.0f;
    SoundSetListener(listener);
    StartSoundPump();
    EXPECT_TRUE(WaitUntil("the listener's new place", [&] { return !AreAlike(Heard(), first); }));
    const SIDES after = Heard(); // all of it after the move
    EXPECT_TRUE(AreAlike(after, expected)) << Decibels(after) << "; " << Decibels(expected);
    StopSoundPump();
    DestroySoundChannel(session.thread);
    SoundSetListener({});
    SoundSetTelevision(5, 0, 0, 0);
}

TEST_F(Sound, ThreadsMeetWithoutHarm) {
    // Session threads that submit, a pump, a main thread that moves things and loses the device, and
    // SDL's thread, which pulls.
    std::string error;
    ASSERT_TRUE(OpenSoundDevice(error)) << error;
    StartSoundPump();
    StartSoundPump();
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (uint32_t key = 1; key <= 2; ++key) {
        threads.emplace_back([key, &stop] {
            while (!stop) {
                Session session(key);
                CreateSoundChannel(session.thread);
                for (int frame = 0; frame < 20; ++frame) {
                    session.Submit();
                    PumpSound(session.thread);
                }
                DestroySoundChannel(session.thread);
            }
        });
    }
    for (uint32_t round = 0; round < 60; ++round) {
        InputSetActiveKey(round % 3);
        SoundSetRoomVisible(round % 2 == 0);
        SoundSetTelevision(round % 3, static_cast<float>(round), 10.0f, 20.0f);
        SOUND_LISTENER listener;
        listener.x = static_cast<float>(round);
        SoundSetListener(listener);
        if (round % 20 == 19) {
            CloseSoundDevice();
            EXPECT_TRUE(OpenSoundDevice(error)) << error;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    StopSoundPump();
    StopSoundPump();
}
