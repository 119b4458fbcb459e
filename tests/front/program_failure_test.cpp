// Games that fail while they are started or played: the player is told, the set is dark, and he goes on.
#include "front/program_rig.h"
#include "megadrive/md_rig.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

class ProgramFailure : public ProgramTest {
protected:
    // A Mega Drive game that begins at an odd address, which the 68000 cannot.
    std::string GameThatEnds() {
        MdProgram program;
        program.PutLong(4, 0x201);
        return folder.Write("ends.md", program.Image()).string();
    }

    // Until a message is shown. Returns what it says.
    static testing::AssertionResult WaitForMessage(Application& application) {
        return RunUntil(application, [] { return CGhostMessageBox::Count() != 0; });
    }
    static void CloseMessage(Application& application) {
        ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        ASSERT_TRUE(application.Round());
        ASSERT_EQ(CGhostMessageBox::Count(), 0u);
    }
};

} // namespace

TEST_F(ProgramFailure, AGameThatTheMachineRefusesIsToldAndItsSetIsDark) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    // The file that the browser has listed is fine; what the machine is given has no image.
    OPENED_GAME none;
    none.title = "None";
    program->Room().Play(kFrontSet, std::move(none));
    static_cast<void>(program->Room().Take(ModeInput::kGameStarted));
    ASSERT_TRUE(WaitForMessage(application));
    EXPECT_THAT(MessageText(), HasSubstr(L"no machine has the system number 0"));
    EXPECT_EQ(InputActiveKey(), 0u);
    EXPECT_EQ(program->Room().Games().StateOf(kFrontSet), SetState::kOff);
    EXPECT_FALSE(SessionRuns(kFrontSet));
    ASSERT_NO_FATAL_FAILURE(CloseMessage(application));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    EXPECT_FALSE(ShowsPicture(program->Room(), kFrontSet));

    // And the set can be used again.
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    EXPECT_EQ(key, kFrontSet);
}

TEST_F(ProgramFailure, AMachineThatEndsWhileItIsPlayedFullScreenLeavesThePlayerInTheRoom) {
    Settings().SetBool(L"emu_startfullscreen", true);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    Drop(GameThatEnds());
    ASSERT_TRUE(WaitForMessage(application));
    EXPECT_THAT(MessageText(), HasSubstr(L"0x000201"));
    const uint32_t key = program->Room().Selected().id;
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    EXPECT_EQ(InputActiveKey(), 0u);
    ASSERT_NO_FATAL_FAILURE(CloseMessage(application));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    EXPECT_TRUE(InputWalkingRoom());
}

TEST_F(ProgramFailure, AMachineThatEndsBehindTheMenuIsToldThere) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    program->Room().Play(kFrontSet, Opened(GameThatEnds()));
    ASSERT_TRUE(WaitForMessage(application));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    ASSERT_TRUE(RunUntilOff(application, program->Room(), kFrontSet));
    ASSERT_NO_FATAL_FAILURE(CloseMessage(application));
    EXPECT_EQ(CGhostManager::Get().FocusWindow(),
              program->Menu().MenuButton(kPanelBrowser)->window);
}

TEST_F(ProgramFailure, AGameThatHasStoppedIsStartedAgainOrAnotherIsChosen) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    Drop(GameThatEnds());
    ASSERT_TRUE(WaitForMessage(application));
    EXPECT_THAT(MessageText(), HasSubstr(L"cannot go on"));
    EXPECT_THAT(MessageText(), HasSubstr(L"Details: "));
    const uint32_t key = program->Room().Selected().id;
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN)); // on Restart
    ASSERT_TRUE(RunUntil(application, [] { return CGhostMessageBox::Count() == 0; }));
    ASSERT_TRUE(WaitForMessage(application)) << "it has run again, and stopped again";
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RIGHT));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN)); // on Library
    EXPECT_TRUE(RunUntil(application, [&] { return ModeOf(*program) == ProgramMode::kBrowser; }));
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
}
