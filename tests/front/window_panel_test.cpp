// The menu over the game that plays alone in its window, which waits meanwhile.
#include "front/pad_chord.h"
#include "front/saved_states.h"
#include "front/virtual_joystick.h"
#include "front/window_rig.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "host/session_list.h"
#include "screens/game_menu.h"

#include <memory>

namespace {

// Buttons of the menu, from "Resume".
constexpr int kSaveAndLoad = 1;
constexpr int kReset = 2;
constexpr int kSound = 5;
constexpr int kQuit = 7;

class WindowPanel : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        HearControllersInBackground();
    }
    void TearDown() override {
        pad.reset();
        CGhostManager::Get().Reset();
        WindowTest::TearDown();
    }

    static testing::AssertionResult Press(Application& application, SDL_Scancode key) {
        for (const bool down : {true, false}) {
            SDL_Event event{};
            event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
            event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
            event.key.keysym.scancode = key;
            SDL_PushEvent(&event);
            if (!application.Round()) {
                return testing::AssertionFailure() << "the program ended";
            }
        }
        return testing::AssertionSuccess();
    }
    static testing::AssertionResult Choose(Application& application, int entry) {
        testing::AssertionResult done = Press(application, SDL_SCANCODE_F1);
        if (done && application.Menu() == nullptr) {
            return testing::AssertionFailure() << "it is not open";
        }
        for (int down = 0; done && down < entry; ++down) {
            done = Press(application, SDL_SCANCODE_DOWN);
        }
        return done ? Press(application, SDL_SCANCODE_RETURN) : done;
    }

    static bool IsPaused() {
        const SessionPin session = PinSession(kFrontTelevision);
        return session && session->paused;
    }

    std::unique_ptr<VirtualJoystick> pad;
};

constexpr uint64_t kBoth = PadBit(0, kPadBack) | PadBit(0, kPadStart);

} // namespace

TEST(PadChord, NeedsBothButtonsOfOneControllerForHalfASecond) {
    PadChord chord;
    EXPECT_FALSE(chord.Update(kBoth, 1000));
    EXPECT_FALSE(chord.Update(kBoth, 500999));
    EXPECT_TRUE(chord.Update(kBoth, 501000));
    EXPECT_FALSE(chord.Update(kBoth, 2000000)) << "once, until both are pressed again";
    EXPECT_FALSE(chord.Update(PadBit(0, kPadStart), 2000001));
    EXPECT_FALSE(chord.Update(kBoth, 2000002)) << "the time begins anew";
    EXPECT_FALSE(chord.Update(0, 2400000));
    EXPECT_FALSE(chord.Update(kBoth, 2600000));
    EXPECT_FALSE(chord.Update(kBoth, 3000000));
    EXPECT_TRUE(chord.Update(kBoth, 3100000));
    EXPECT_FALSE(chord.Update(0, 3100001));
    const uint64_t twoPlayers = PadBit(0, kPadBack) | PadBit(1, kPadStart);
    EXPECT_FALSE(chord.Update(twoPlayers, 4000000));
    EXPECT_FALSE(chord.Update(twoPlayers, 9000000)) << "of two controllers it is play";
}

TEST_F(WindowPanel, TheGameWaitsAndGoesOn) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F1));
    EXPECT_EQ(application.Menu(), nullptr) << "there is no game yet";
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F1));
    ASSERT_NE(application.Menu(), nullptr);
    EXPECT_TRUE(IsPaused());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_A)); // the game's button 1
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(application.Menu(), nullptr);
    ASSERT_TRUE(RunUntil(application, [] { return !IsPaused(); }));
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(MiddleOf(application), kRed) << "the game has not seen the button";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F1));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F1));
    EXPECT_EQ(application.Menu(), nullptr) << "the key that opens it closes it";
}

TEST_F(WindowPanel, ResetsTheMachineByKeys) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_A));
    ASSERT_TRUE(RunUntilColour(application, kBlue));
    ASSERT_TRUE(Choose(application, kReset));
    EXPECT_TRUE(RunUntilColour(application, kRed));
    EXPECT_FALSE(IsPaused());
}

TEST_F(WindowPanel, LeadsToTheSavedStates) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(Choose(application, kSaveAndLoad));
    ASSERT_TRUE(RunUntil(application, [&] { return application.States()->IsShown(); }));
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(IsPaused()) << "the menu's pause has become that of the states";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_TRUE(RunUntil(application, [] { return !IsPaused(); }));
}

TEST_F(WindowPanel, QuitEndsTheProgram) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(Choose(application, kQuit));
    static_cast<void>(application.Round()); // takes the choice
    EXPECT_FALSE(application.Round());
}

TEST_F(WindowPanel, WhatIsChangedInItStays) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    Settings().SetFloat(L"audio_volume", 1.0f);
    ASSERT_TRUE(Choose(application, kSound));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_LEFT)); // on the slider of the volume
    const float quieter = Settings().GetFloat(L"audio_volume");
    EXPECT_LT(quieter, 1.0f);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_NE(application.Menu(), nullptr) << "the first one leaves the page";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_EQ(application.Menu(), nullptr);
    SettingsStore kept;
    RegisterDefaultSettings(kept);
    std::string error;
    ASSERT_TRUE(LoadSettingsFile(kept, error)) << error;
    EXPECT_FLOAT_EQ(kept.GetFloat(L"audio_volume"), quieter);
    Settings().SetFloat(L"audio_volume", 1.0f);
}

TEST_F(WindowPanel, AControllerAloneOpensAndClosesIt) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    pad = std::make_unique<VirtualJoystick>(kController);
    const auto push = [&](int button) {
        pad->Button(button, true);
        const bool goesOn = application.Round();
        pad->Button(button, false);
        return goesOn && RunUntil(application, [] { return InputPadsDown() == 0; });
    };
    ASSERT_TRUE(RunUntil(application, [&] {
        pad->Button(kGuide, true);
        return application.Menu() != nullptr;
    }));
    pad->Button(kGuide, false);
    ASSERT_TRUE(RunUntil(application, [] { return InputPadsDown() == 0; }));
    ASSERT_NE(application.Menu()->Card(), nullptr);
    ASSERT_TRUE(push(kDown));
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), application.Menu()->Buttons()[1]->window);
    ASSERT_TRUE(push(kGuide));
    EXPECT_EQ(application.Menu(), nullptr);

    pad->Button(kBackButton, true);
    pad->Button(kStart, true);
    ASSERT_TRUE(RunUntil(application, [&] { return application.Menu() != nullptr; }));
    EXPECT_TRUE(IsPaused());
    pad->Button(kBackButton, false);
    pad->Button(kStart, false);
    ASSERT_TRUE(RunUntil(application, [] { return InputPadsDown() == 0; }));
    ASSERT_NE(application.Menu(), nullptr) << "letting go does not close it";
    ASSERT_TRUE(push(kEast));
    EXPECT_EQ(application.Menu(), nullptr);
    EXPECT_TRUE(RunUntil(application, [] { return !IsPaused(); }));
}
