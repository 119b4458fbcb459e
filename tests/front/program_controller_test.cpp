// The whole program, with a game controller alone.
#include "front/program_rig.h"
#include "front/virtual_joystick.h"

#include <memory>

namespace {

// Buttons of kController's raw device.

class ProgramController : public ProgramTest {
protected:
    // A window off the screen never has the focus, without which the library drops a joystick's events. To be said
    // before each start of the program, as its end forgets it.
    void TearDown() override {
        pad.reset();
        ProgramTest::TearDown();
    }

    ProgramScreen* OpenWithPad(Application& application) {
        HearControllersInBackground();
        ProgramScreen* const program = Open(application);
        if (program == nullptr) {
            return nullptr;
        }
        pad = std::make_unique<VirtualJoystick>(kController);
        EXPECT_TRUE(application.Round());
        return HasFailure() ? nullptr : program;
    }

    // The library holds the guide button's release back for a moment.
    testing::AssertionResult Push(Application& application, int button) const {
        pad->Button(button, true);
        const bool goesOn = application.Round();
        pad->Button(button, false);
        if (!goesOn || !application.Round()) {
            return testing::AssertionFailure() << "the program ended";
        }
        return RunUntil(application, [] { return InputPadsActing() == 0; });
    }

    std::unique_ptr<VirtualJoystick> pad;
};

} // namespace

TEST_F(ProgramController, DirectionsMoveTheFocusALeadsInAndBLeadsBack) {
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    const CGUIBattleGround& menu = program->Menu();
    for (const int32_t panel : {kPanelBenchmark, kPanelOptions, kPanelCredits}) {
        ASSERT_TRUE(Push(application, kRight));
        ASSERT_EQ(CGhostManager::Get().FocusWindow(), menu.MenuButton(panel)->window) << panel;
        ASSERT_TRUE(Push(application, kSouth));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kPanel) << panel;
        EXPECT_EQ(menu.CurrentPanel(), panel);
        EXPECT_NE(CGhostManager::Get().FocusWindow(), nullptr) << panel;
        ASSERT_TRUE(Push(application, kEast));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu) << panel;
        EXPECT_EQ(CGhostManager::Get().FocusWindow(), menu.MenuButton(panel)->window)
            << "where it was";
    }
}

TEST_F(ProgramController, ShouldersStepTheSystemAndStartStartsTheGame) {
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Push(application, kSouth));
    ASSERT_TRUE(RunUntilListed(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    ASSERT_TRUE(Push(application, kRightShoulder));
    EXPECT_EQ(browser->Library().Selector(), 1);
    ASSERT_TRUE(RunUntilListed(application, *program));
    ASSERT_TRUE(Push(application, kLeftShoulder));
    ASSERT_TRUE(RunUntilListed(application, *program));
    ASSERT_TRUE(Push(application, kLeftShoulder));
    EXPECT_EQ(browser->Library().Selector(), 4) << "round the end";
    ASSERT_TRUE(RunUntilListed(application, *program));
    ASSERT_TRUE(Push(application, kRightShoulder));
    ASSERT_TRUE(RunUntilListed(application, *program));
    ASSERT_TRUE(Push(application, kDown)); // the second game
    const std::wstring title = browser->List()->Cell(1, 0)->text;

    ASSERT_TRUE(Push(application, kStartButton));
    const uint32_t key = program->Room().Selected().id;
    ASSERT_NE(key, 0u);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    const std::string playing = program->Room().Games().TitleOn(key);
    EXPECT_EQ(std::wstring(playing.begin(), playing.end()), title);
    EXPECT_EQ(InputActiveKey(), key);

    ASSERT_TRUE(Push(application, kGuide));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(Push(application, kNorth));
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    ASSERT_TRUE(Push(application, kSouth)); // another game for the set
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
}

TEST_F(ProgramController, AMessageTakesTheControllerUntilItIsClosed) {
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Push(application, kSouth));
    ASSERT_TRUE(RunUntilListed(application, *program));
    CGhostMessageBox::Show(L"Title", L"text");
    ASSERT_TRUE(application.Round());
    for (const int button : {kGuide, kStartButton, kRightShoulder}) {
        ASSERT_TRUE(Push(application, button));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << button;
        EXPECT_EQ(program->Menu().Browser()->Library().Selector(), 0) << button;
        EXPECT_EQ(CGhostMessageBox::Count(), 1u) << button;
    }
    ASSERT_TRUE(Push(application, kSouth));
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
}

TEST_F(ProgramController, GamesGoOnWithOneButton) {
    uint32_t key = 0;
    {
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    }
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    ASSERT_NE(program->Continuing(), nullptr);
    ASSERT_TRUE(Push(application, kRight));
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), program->Continuing()->NotNowButton()->window);
    ASSERT_TRUE(Push(application, kRight));
    ASSERT_TRUE(Push(application, kSouth));
    EXPECT_TRUE(program->Continuing()->Asks());
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_FALSE(program->Continuing()->Asks());
    ASSERT_TRUE(Push(application, kSouth));
    EXPECT_EQ(program->Continuing(), nullptr);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
}

TEST_F(ProgramController, TheSecondButtonPutsTheQuestionOff) {
    uint32_t key = 0;
    {
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    }
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_EQ(program->Continuing(), nullptr);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    EXPECT_FALSE(SessionRuns(key));
}

// The browser and the game behind it stay as they are.
TEST_F(ProgramController, TheWindowThatAddsGamesHasTheControllerAlone) {
    Application application;
    ProgramScreen* const program = OpenWithPad(application);
    ASSERT_NE(program, nullptr);
    const TemporaryFolder from;
    const std::string letter = from.Write("letter.txt", std::string_view("no game")).string();
    const auto drop = [&] {
        Drop(letter);
        return RunUntil(application,
                        [&] { return program->Adding().IsShown() && !program->Adding().Works(); });
    };
    ASSERT_TRUE(Push(application, kSouth));
    ASSERT_TRUE(RunUntilListed(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    ASSERT_TRUE(drop());
    for (const int button : {kRightShoulder, kStartButton}) {
        ASSERT_TRUE(Push(application, button));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << button;
        EXPECT_EQ(browser->Library().Selector(), 0) << button;
        EXPECT_TRUE(program->Adding().IsShown()) << button;
    }
    ASSERT_TRUE(Push(application, kSouth)); // Finish
    EXPECT_FALSE(program->Adding().IsShown());

    ASSERT_TRUE(Push(application, kStartButton));
    const uint32_t key = program->Room().Selected().id;
    ASSERT_NE(key, 0u);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    const uint32_t serial = program->Room().Games().SerialOn(key);
    ASSERT_TRUE(drop());
    for (const int button : {kRightShoulder, kStartButton}) {
        ASSERT_TRUE(Push(application, button));
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(program->Room().Games().SerialOn(key), serial) << button;
        EXPECT_EQ(browser->Library().Selector(), 0) << button;
    }
    ASSERT_TRUE(Push(application, kGuide));
    EXPECT_FALSE(program->Adding().IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "the press was the window's";
    EXPECT_EQ(InputActiveKey(), key);
}
