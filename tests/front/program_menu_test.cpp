// The menu of a game that is played: what the strip of buttons does, without a mouse.
#include "front/notices.h"
#include "front/program_rig.h"
#include "front/virtual_joystick.h"
#include "gui/multi_text.h"
#include "host/session_list.h"
#include "screens/game_menu.h"
#include "screens/key_card.h"

#include "support/least_images.h"
#include <gmock/gmock.h>

#include <memory>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Buttons of kController's raw device.

// Entries of the menu of a game.
constexpr size_t kSaveAndLoad = 1;
constexpr size_t kReset = 2;
constexpr size_t kTelevision = 7;
constexpr size_t kMainMenu = 10;

class ProgramGameMenu : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        // A window off the screen never has the focus, without which the library drops a joystick's events.
        HearControllersInBackground();
    }
    void TearDown() override {
        pad.reset();
        ProgramTest::TearDown();
    }

    testing::AssertionResult OpenByKey(Application& application, ProgramScreen& program) {
        const testing::AssertionResult pressed = Press(application, SDL_SCANCODE_F1);
        return pressed && program.Overlay().Menu() == nullptr
                   ? testing::AssertionFailure() << "it is not open"
                   : pressed;
    }
    static testing::AssertionResult ChooseByKeys(Application& application, size_t entry) {
        testing::AssertionResult done = testing::AssertionSuccess();
        for (size_t down = 0; done && down < entry; ++down) {
            done = Press(application, SDL_SCANCODE_DOWN);
        }
        done = done ? Press(application, SDL_SCANCODE_RETURN) : done;
        return done && application.Round() ? done : testing::AssertionFailure();
    }

    testing::AssertionResult Push(Application& application, int button) {
        pad->Button(button, true);
        const bool goesOn = application.Round();
        pad->Button(button, false);
        if (!goesOn || !application.Round()) {
            return testing::AssertionFailure() << "the program ended";
        }
        return RunUntil(application, [] { return InputPadsActing() == 0; });
    }
    testing::AssertionResult OpenByPad(Application& application, ProgramScreen& program) {
        pad->Button(kGuide, true);
        testing::AssertionResult opened =
            RunUntil(application, [&] { return program.Overlay().Menu() != nullptr; });
        pad->Button(kGuide, false);
        return opened ? RunUntil(application, [] { return InputPadsActing() == 0; }) : opened;
    }
    testing::AssertionResult ChooseByPad(Application& application, size_t entry) {
        testing::AssertionResult done = testing::AssertionSuccess();
        for (size_t down = 0; done && down < entry; ++down) {
            done = Push(application, kDown);
        }
        done = done ? Push(application, kSouth) : done;
        return done && application.Round() ? done : testing::AssertionFailure();
    }

    static bool IsPaused(uint32_t key) {
        const SessionPin session = PinSession(key);
        return session && session->paused;
    }

    // Makes the game that shows presses of button 1 show one.
    static testing::AssertionResult PressButton1(Application& application) {
        Key(SDL_SCANCODE_A, true);
        const testing::AssertionResult seen = RunUntilColour(application, kBlue);
        Key(SDL_SCANCODE_A, false);
        return seen;
    }

    std::unique_ptr<VirtualJoystick> pad;
};

} // namespace

TEST_F(ProgramGameMenu, AClickBesideItLeavesItTheKeys) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(OpenByKey(application, *program));
    PointAt(5, 5, true);
    PointAt(5, 5, false);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    ASSERT_NE(program->Overlay().Menu(), nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(program->Overlay().Menu(), nullptr);
}

TEST_F(ProgramGameMenu, KeysAloneShowTheSetFullScreenAndResetItsMachine) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    EXPECT_THAT(std::string(program->Room().HintText().begin(), program->Room().HintText().end()),
                HasSubstr("F1   Menu"));
    ASSERT_TRUE(OpenByKey(application, *program));
    EXPECT_EQ(InputActiveKey(), 0u) << "the machine does not listen";
    EXPECT_TRUE(IsPaused(key));
    ASSERT_TRUE(ChooseByKeys(application, kTelevision));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    EXPECT_EQ(program->Overlay().Menu(), nullptr);
    EXPECT_EQ(InputActiveKey(), key);
    EXPECT_TRUE(RunUntil(application, [&] { return !IsPaused(key); }));

    ASSERT_TRUE(PressButton1(application));
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(ChooseByKeys(application, kReset));
    EXPECT_TRUE(RunUntilColour(application, kRed));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);

    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(program->Overlay().Menu(), nullptr);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen) << "one escape closes one thing";
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F1));
    EXPECT_EQ(program->Overlay().Menu(), nullptr) << "the key that opens it closes it";
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(ChooseByKeys(application, kTelevision));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
}

TEST_F(ProgramGameMenu, WorksWhileThePlayerWalks) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(PressButton1(application));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(ChooseByKeys(application, kReset));
    EXPECT_TRUE(RunUntilColour(application, kRed));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(ChooseByKeys(application, kTelevision));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    EXPECT_EQ(InputActiveKey(), key);
}

TEST_F(ProgramGameMenu, AControllerAloneOpensItWithItsGuideButton) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    pad = std::make_unique<VirtualJoystick>(kController);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(PressButton1(application));
    ASSERT_TRUE(OpenByPad(application, *program));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "held, it does not leave";
    ASSERT_TRUE(ChooseByPad(application, kTelevision));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    ASSERT_TRUE(OpenByPad(application, *program));
    ASSERT_TRUE(ChooseByPad(application, kReset));
    EXPECT_TRUE(RunUntilColour(application, kRed)) << "nor does the press reach the machine";
    ASSERT_TRUE(OpenByPad(application, *program));
    ASSERT_TRUE(Push(application, kGuide));
    EXPECT_EQ(program->Overlay().Menu(), nullptr) << "guide closes it";
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);

    // Start is the machine's while one is played, and leads to the main menu while the player walks.
    ASSERT_TRUE(Push(application, kStartButton));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    ASSERT_TRUE(Push(application, kGuide));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(application.Round());
    EXPECT_THAT(program->Overlay().ShownHints(),
                ElementsAre(L"Main Menu [Menu]", L"Load Game [A]", L"Turn off Game [Y]",
                            L"Attach to TV [Guide]"));
    ASSERT_TRUE(Push(application, kStartButton));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    ASSERT_TRUE(Push(application, kGuide));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking) << "one press, one way";
    ASSERT_TRUE(OpenByPad(application, *program));
    ASSERT_TRUE(ChooseByPad(application, kMainMenu));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
}

TEST_F(ProgramGameMenu, BackAndStartHeldOpenIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    pad = std::make_unique<VirtualJoystick>(kController);
    ASSERT_TRUE(application.Round());
    pad->Button(kBackButton, true);
    pad->Button(kStartButton, true);
    ASSERT_TRUE(RunUntil(application, [&] { return program->Overlay().Menu() != nullptr; }));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    pad->Button(kBackButton, false);
    pad->Button(kStartButton, false);
    ASSERT_TRUE(RunUntil(application, [] { return InputPadsDown() == 0; }));
    ASSERT_NE(program->Overlay().Menu(), nullptr);
    EXPECT_TRUE(IsPaused(key));
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_EQ(program->Overlay().Menu(), nullptr);
    EXPECT_TRUE(RunUntil(application, [&] { return !IsPaused(key); }));
}

TEST_F(ProgramGameMenu, SavedStatesOpenInItsPlace) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(OpenByKey(application, *program));
    ASSERT_TRUE(ChooseByKeys(application, kSaveAndLoad));
    ASSERT_TRUE(RunUntil(application, [&] { return program->States().IsShown(); }));
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(IsPaused(key)) << "the menu's pause has become that of the states";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_TRUE(RunUntil(application, [&] { return !IsPaused(key); }));
}

TEST_F(ProgramGameMenu, ADroppedFileClosesIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(OpenByKey(application, *program));
    Drop(folder.Write("letter.txt", std::string_view("no game")).string());
    ASSERT_TRUE(RunUntil(
        application, [&] { return program->Adding().IsShown() && !program->Adding().Works(); }));
    EXPECT_EQ(program->Overlay().Menu(), nullptr);
    EXPECT_EQ(CGhostManager::Get().ModalWindow(), nullptr);
    EXPECT_FALSE(OpenByKey(application, *program)) << "nor does it open over the window";
}

TEST_F(ProgramGameMenu, WhatHasNoKeyIsNotHinted) {
    for (const wchar_t* const action : {L"INPUT Use", L"INPUT Turn Off", L"INPUT Move Left"}) {
        Settings().SetInt2(action, 0, 0);
    }
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    ASSERT_TRUE(ClickOn(application, program->Menu().Browser()->RoomButton()));
    MoveMouse(900, 0); // at the wall, where no set is
    ASSERT_TRUE(RunUntil(application, [&] { return program->Room().Selected().id == 0; }));
    const auto hint = [&] {
        const std::wstring& text = program->Room().HintText();
        return std::string(text.begin(), text.end());
    };
    EXPECT_THAT(hint(), HasSubstr("W S D   Walk"));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    ASSERT_TRUE(application.Round());
    EXPECT_THAT(program->Overlay().ShownHints(), ElementsAre(L"Main Menu [F10]"));
}

TEST_F(ProgramGameMenu, AGameThatCannotStartIsToldOnce) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    // A valid file, but the console does not know its board.
    Drop(folder.Write("unknown.nes", NesImageOfAnUnknownBoard()).string());
    ASSERT_TRUE(RunUntil(application, [] { return CGhostMessageBox::Count() != 0; }));
    const auto* const box =
        dynamic_cast<CGhostMessageBox*>(CGhostManager::Get().ModalWindow()->handler->next);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->Message()->Text(),
              L"NES Mapper #255 not supported. Tell us on the forum to add support for it!");
    for (const std::string& line : ProgramNotices().Lines(0)) {
        EXPECT_THAT(line, testing::Not(HasSubstr("Error loading game")));
    }
}

TEST_F(ProgramGameMenu, TheFirstThreeGamesShowTheirKeys) {
    Settings().SetInt(L"app_keycards", 2);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(RunUntil(application, [&] { return program->Keys() != nullptr; }));
    EXPECT_EQ(Settings().GetInt(L"app_keycards"), 3);
    EXPECT_EQ(program->Keys()->Ways()->Words()[1].keys.front(), L"Esc");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    EXPECT_EQ(program->Keys(), nullptr) << "the player walks on";
    EXPECT_EQ(InputActiveKey(), key);
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(RunFrames(application, 90));
    EXPECT_EQ(program->Keys(), nullptr) << "it was the third";
}
