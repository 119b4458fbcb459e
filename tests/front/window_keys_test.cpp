// The keys that stop a game and that change the volume, in the window.
#include "audio/sound.h"
#include "front/notices.h"
#include "front/tools/key_injector.h"
#include "front/window_rig.h"
#include "host/session_list.h"
#include "settings/bindings.h"

#include <gmock/gmock.h>

using testing::Contains;

namespace {

void Key(const std::wstring& action, bool down) {
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        if (actions[i].name == action) {
            ASSERT_TRUE(InjectAction(i, down));
            return;
        }
    }
    FAIL() << "no such action";
}

void Focus(bool has) {
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.event = has ? SDL_WINDOWEVENT_FOCUS_GAINED : SDL_WINDOWEVENT_FOCUS_LOST;
    SDL_PushEvent(&event);
}

class WindowKeys : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
        ASSERT_TRUE(RunUntilColour(application, kRed));
    }
    void TearDown() override {
        application.Stop();
        SoundSetVolume(1.0f);
        WindowTest::TearDown();
    }

    void Tap(const wchar_t* action) {
        Key(action, true);
        ASSERT_TRUE(RunRounds(20));
        Key(action, false);
        ASSERT_TRUE(RunRounds(20));
    }
    testing::AssertionResult RunRounds(int rounds) {
        return RunUntil(application, [&] { return rounds-- == 0; });
    }
    testing::AssertionResult RunUntilPaused(bool paused) {
        return RunUntil(application, [&] {
            const SessionPin session = PinSession(kFrontTelevision);
            return session && session->pausedByPlayer == paused;
        });
    }
    static std::vector<std::string> Lines() { return ProgramNotices().Lines(0); }

    Application application;
};

} // namespace

TEST_F(WindowKeys, PauseKeepsThePictureAndTheGameGoesOnWithTheKeysOfThen) {
    Key(L"Pause", true);
    ASSERT_TRUE(RunUntilPaused(true));
    Key(L"Pause", false);
    EXPECT_THAT(Lines(), Contains("Paused"));
    const uint32_t frames = FramesPresented();
    Key(L"SMS P1 BUTTON1", true);
    ASSERT_TRUE(RunRounds(50));
    EXPECT_EQ(FramesPresented(), frames);
    EXPECT_EQ(MiddleOf(application), kRed);
    Key(L"Pause", true);
    EXPECT_TRUE(RunUntilColour(application, kBlue)) << "the button is still down";
    Key(L"Pause", false);
    Key(L"SMS P1 BUTTON1", false);
}

TEST_F(WindowKeys, AFrameStepShowsWhatItChanged) {
    Key(L"Pause", true);
    ASSERT_TRUE(RunUntilPaused(true));
    Key(L"Pause", false);
    Key(L"SMS P1 BUTTON1", true);
    // The colour is written after the frame in which the button is read.
    for (int step = 0; step < 3 && MiddleOf(application) == kRed; ++step) {
        const uint32_t frames = FramesPresented();
        Key(L"Frame Step", true);
        ASSERT_TRUE(RunFrames(application, 1));
        Key(L"Frame Step", false);
        ASSERT_TRUE(RunRounds(30));
        EXPECT_EQ(FramesPresented(), frames + 1);
    }
    EXPECT_EQ(MiddleOf(application), kBlue);
    Key(L"SMS P1 BUTTON1", false);
}

TEST_F(WindowKeys, TheVolumeGoesInTenthsAndIsKept) {
    Tap(L"Volume Down");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.9f);
    EXPECT_THAT(Lines(), Contains("Volume 90 %"));
    Tap(L"Volume Down");
    EXPECT_FLOAT_EQ(Settings().GetFloat(L"audio_volume"), 0.8f);
    Tap(L"Volume Up");
    Tap(L"Volume Up");
    Tap(L"Volume Up");
    EXPECT_FLOAT_EQ(SoundVolume(), 1.0f);
}

TEST_F(WindowKeys, AVolumeBetweenTwoTenthsGoesToTheNext) {
    Settings().SetFloat(L"audio_volume", 0.55f);
    Tap(L"Volume Down");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.5f);
    Settings().SetFloat(L"audio_volume", 0.55f);
    Tap(L"Volume Up");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.6f);
    Settings().SetFloat(L"audio_volume", 0.0f);
    Tap(L"Volume Down");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.0f);
}

TEST_F(WindowKeys, MuteIsNotKeptAndEndsWithAChangeOfTheVolume) {
    Tap(L"Mute");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.0f);
    EXPECT_FLOAT_EQ(Settings().GetFloat(L"audio_volume"), 1.0f);
    EXPECT_THAT(Lines(), Contains("Sound off"));
    Tap(L"Mute");
    EXPECT_FLOAT_EQ(SoundVolume(), 1.0f);
    Tap(L"Mute");
    Tap(L"Volume Down");
    EXPECT_FLOAT_EQ(SoundVolume(), 0.9f);
}

TEST_F(WindowKeys, GamesWaitForTheKeyboardWhereThePlayerWantsIt) {
    const auto waits = [] {
        const SessionPin session = PinSession(kFrontTelevision);
        return session && session->waitsForFocus;
    };
    Focus(false);
    ASSERT_TRUE(RunRounds(5));
    EXPECT_FALSE(waits());
    Settings().SetBool(L"emu_pauseunfocused", true);
    ASSERT_TRUE(RunRounds(5));
    EXPECT_TRUE(waits());
    ASSERT_TRUE(RunRounds(30)); // a frame under way ends
    const uint32_t frames = FramesPresented();
    ASSERT_TRUE(RunRounds(50));
    EXPECT_EQ(FramesPresented(), frames);
    Focus(true);
    EXPECT_TRUE(RunFrames(application, 5));
    EXPECT_FALSE(waits());
}

// The demo's first screen, once for each console.
TEST_F(WindowKeys, LinkedConsolesAreDividedAndEachHasItsPlayer) {
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:gg-glimmer", {"link=1"}));
    const auto& kept = application.Sets().Kept();
    ASSERT_TRUE(RunUntil(application, [&] { return kept.frame.width == 324; }));
    ASSERT_TRUE(RunFrames(application, 60));
    const auto screen = [&](uint32_t left) {
        std::vector<uint32_t> pixels;
        for (uint32_t y = 0; y < 144; ++y) {
            const auto row = kept.pixels.begin() + static_cast<ptrdiff_t>(y * 324 + left);
            pixels.insert(pixels.end(), row, row + 160);
        }
        return pixels;
    };
    EXPECT_EQ(screen(0), screen(164)) << "both show the same until somebody plays";
    Key(L"GG P2 START", true);
    EXPECT_TRUE(RunUntil(application, [&] { return screen(0) != screen(164); }));
    Key(L"GG P2 START", false);
}
