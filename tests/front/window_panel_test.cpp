// The menu over the game that plays alone in its window, which waits meanwhile.
#include "front/pad_chord.h"
#include "front/saved_states.h"
#include "front/virtual_joystick.h"
#include "front/window_rig.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "host/session_list.h"
#include "megadrive/md_rig.h"
#include "screens/game_menu.h"
#include "screens/key_card.h"
#include "settings/bindings.h"

#include <gmock/gmock.h>

#include <memory>
#include <utility>

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
    pad->Button(kStartButton, true);
    ASSERT_TRUE(RunUntil(application, [&] { return application.Menu() != nullptr; }));
    EXPECT_TRUE(IsPaused());
    pad->Button(kBackButton, false);
    pad->Button(kStartButton, false);
    ASSERT_TRUE(RunUntil(application, [] { return InputPadsDown() == 0; }));
    ASSERT_NE(application.Menu(), nullptr) << "letting go does not close it";
    ASSERT_TRUE(push(kEast));
    EXPECT_EQ(application.Menu(), nullptr);
    EXPECT_TRUE(RunUntil(application, [] { return !IsPaused(); }));
}

TEST_F(WindowPanel, AFirstGameShowsItsKeysForFiveSeconds) {
    Settings().SetInt(L"app_keycards", 0);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntil(application, [&] { return application.Keys() != nullptr; }));
    EXPECT_EQ(PinSession(kFrontTelevision)->showStatic, 0) << "not over the static";
    EXPECT_EQ(Settings().GetInt(L"app_keycards"), 1);
    ASSERT_GE(application.Keys()->Ways()->Words().size(), 2u);
    EXPECT_EQ(application.Keys()->Ways()->Words()[0].keys.front(), L"F1");
    EXPECT_FALSE(IsPaused()) << "the game plays on";
    ASSERT_TRUE(RunUntil(application, [&] { return application.Keys() == nullptr; }));
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(application.Keys(), nullptr) << "once for a game";
}

TEST_F(WindowPanel, TheKeysAreNotShownToWhoDoesNotWantThem) {
    Settings().SetInt(L"app_keycards", 0);
    Settings().SetBool(L"app_keycard", false);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(RunFrames(application, 90));
    EXPECT_EQ(application.Keys(), nullptr);
    EXPECT_EQ(Settings().GetInt(L"app_keycards"), 0);
    Settings().SetBool(L"app_keycard", true);
}

TEST_F(WindowPanel, AGameThatGoesOnFromItsAutosaveSaysSo) {
    using testing::AllOf;
    using testing::Contains;
    using testing::HasSubstr;
    const auto line =
        AllOf(HasSubstr("latch goes on from its autosave"), HasSubstr("F1, then Reset"));
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_THAT(ProgramNotices().Lines(0), testing::Not(Contains(line))) << "it is new";
    application.TurnOff();
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(line));
    constexpr size_t kLetters = 200; // more than the line has
    EXPECT_THAT(ProgramNotices().Shown(1, kLetters), line);
    EXPECT_THAT(ProgramNotices().Shown(2000000, kLetters), line);
    EXPECT_EQ(ProgramNotices().Shown(2000001, kLetters), "") << "two seconds";
}

TEST_F(WindowPanel, AGameThatStopsOffersToStartAgain) {
    MdProgram program;
    program.PutLong(4, kMdCodeStart + 1); // a program cannot start at an odd address
    const auto path = folder.Write("gone.md", program.Image());
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, path.string()));
    ASSERT_TRUE(RunUntil(application, [] { return CGhostMessageBox::Count() != 0; }));
    EXPECT_FALSE(application.Playing());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN)); // on Restart
    ASSERT_TRUE(RunUntil(application, [&] { return application.Playing(); }));
    ASSERT_TRUE(RunUntil(application, [&] { return !application.Playing(); })) << "and again";
    ASSERT_TRUE(RunUntil(application, [] { return CGhostMessageBox::Count() != 0; }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RIGHT));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN)); // on Quit
    static_cast<void>(application.Round());
    EXPECT_FALSE(application.Round());
}

TEST_F(WindowPanel, WhatKeysChangeOfThePictureStays) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    const GAME_VIEW before = application.View();
    for (const SDL_Scancode key : {SDL_SCANCODE_F3, SDL_SCANCODE_F5, SDL_SCANCODE_F6}) {
        ASSERT_TRUE(Press(application, key));
    }
    application.Stop();
    Application next;
    ASSERT_NO_FATAL_FAILURE(Start(next));
    EXPECT_NE(next.View().crop, before.crop);
    EXPECT_NE(next.View().linear, before.linear);
    EXPECT_EQ(next.View().scaler, PictureScaler::kEdge2x);
    SettingsStore kept;
    RegisterDefaultSettings(kept);
    std::string error;
    ASSERT_TRUE(LoadSettingsFile(kept, error)) << error;
    EXPECT_FALSE(kept.GetBool(L"emu_crop"));
    EXPECT_TRUE(kept.GetBool(L"emu_smooth"));
    EXPECT_EQ(kept.GetInt(L"emu_scaler"), 1);
}

TEST_F(WindowPanel, AWindowComesBackToWhereItWas) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), 500, 400);
    SDL_SetWindowPosition(SDL_GL_GetCurrentWindow(), 37, 41);
    ASSERT_TRUE(application.Round());
    application.Stop();
    EXPECT_EQ(Settings().GetInt(L"app_window_width"), 500);
    EXPECT_EQ(Settings().GetInt(L"app_window_height"), 400);
    EXPECT_EQ(Settings().GetString(L"app_window_place"), L"37 41");
    const auto placeOf = [&] {
        int x = 0;
        int y = 0;
        SDL_GetWindowPosition(SDL_GL_GetCurrentWindow(), &x, &y);
        return std::pair(x, y);
    };
    Application next;
    ASSERT_NO_FATAL_FAILURE(Start(next));
    EXPECT_EQ(placeOf(), std::pair(37, 41));
    next.Stop();
    Settings().SetString(L"app_window_place", L"90000 41"); // on a display that has gone
    Application last;
    ASSERT_NO_FATAL_FAILURE(Start(last));
    EXPECT_LT(placeOf().first, 10000);
}

TEST(IsReachable, AnEdgeToTakeHoldOfMustBeOnADisplay) {
    const std::vector<DESKTOP_RECT> displays = {
        {0,    0, 1920, 1080},
        {1920, 0, 1280, 1024}
    };
    EXPECT_TRUE(IsReachable({100, 100, 640, 480}, displays));
    EXPECT_TRUE(IsReachable({2500, 500, 640, 480}, displays));
    EXPECT_TRUE(IsReachable({-500, 10, 640, 480}, displays)) << "140 units of it";
    EXPECT_FALSE(IsReachable({-600, 10, 640, 480}, displays));
    EXPECT_FALSE(IsReachable({100, -40, 640, 480}, displays)) << "above: no title to drag it by";
    EXPECT_FALSE(IsReachable({100, 1060, 640, 480}, displays));
    EXPECT_FALSE(IsReachable({4000, 100, 640, 480}, displays));
    EXPECT_FALSE(IsReachable({100, 100, 640, 480}, {})) << "no display at all";
}
