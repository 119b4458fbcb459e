// What lies behind something else gets no input: the browser behind the room and a game, and the room, its machines
// and the browser behind the window that adds games. What comes to the front again is up to date.
#include "front/program_rig.h"
#include "gui/multi_text.h"

namespace {

class ProgramBehind : public ProgramTest {
protected:
    // Until the window that adds games tells of a file that is none.
    testing::AssertionResult DropALetter(Application& application, ProgramScreen& program) {
        Drop(from.Write("letter.txt", std::string_view("no game")).string());
        return RunUntil(application,
                        [&] { return program.Adding().IsShown() && !program.Adding().Works(); });
    }

    TemporaryFolder from;
};

} // namespace

TEST_F(ProgramBehind, TheBrowserKnowsWhatWasPlayedWhenItIsBack) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    const CGhostMultiText* const meta =
        program->Menu().Browser()->Content().Text(ContentTab::kMetaInfo);
    ASSERT_NE(meta->Text().find(L"Last played: never"), std::wstring::npos);
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_E));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    EXPECT_EQ(meta->Text().find(L"Last played: never"), std::wstring::npos);
    EXPECT_NE(meta->Text().find(L"Started: once"), std::wstring::npos);
}

TEST_F(ProgramBehind, TheBrowserRestsWhileAGameIsPlayed) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_FALSE(browser->IsActive());

    // Games that are added meanwhile are listed when it is shown again.
    const int32_t before = browser->List()->RowCount();
    from.Write("more/one.sms", LatchingRom());
    Drop((from.Path() / "more").string());
    ASSERT_TRUE(RunUntil(
        application, [&] { return program->Adding().IsShown() && !program->Adding().Works(); }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN)); // Finish
    ASSERT_FALSE(program->Adding().IsShown());
    for (int rounds = 0; rounds < 10; ++rounds) {
        ASSERT_TRUE(application.Round());
        ASSERT_FALSE(browser->Library().ScanRuns());
        ASSERT_FALSE(browser->Scan().IsShown()) << "over the game";
    }
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_E));
    EXPECT_TRUE(browser->IsActive());
    EXPECT_TRUE(RunUntil(application, [&] {
        return !browser->Library().ScanRuns() && browser->List()->RowCount() == before + 1;
    }));
}

TEST_F(ProgramBehind, AScanThatIsLeftIsToldInTheBrowserAlone) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    folder.Write("sms/one.sms", LatchingRom());
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    ASSERT_TRUE(browser->Scan().IsShown()) << "it tells what was converted";
    ASSERT_TRUE(ClickOn(application, browser->RoomButton()));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    EXPECT_FALSE(browser->Scan().IsShown());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    EXPECT_TRUE(browser->Scan().IsShown()) << "until the player has read it";
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), browser->Scan().Finish()->window);
}

TEST_F(ProgramBehind, NoMachineHearsTheKeysOfTheWindowThatAddsGames) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(DropALetter(application, *program));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(InputActiveKey(), 0u);
    Key(SDL_SCANCODE_A, true); // button 1
    ASSERT_TRUE(RunFrames(application, 10));
    Key(SDL_SCANCODE_A, false);
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(MiddleOf(application), kRed);

    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(program->Adding().IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "one escape closes one thing";
    EXPECT_EQ(InputActiveKey(), key);
}

TEST_F(ProgramBehind, NobodyWalksBehindTheWindowThatAddsGames) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    ASSERT_TRUE(ClickOn(application, program->Menu().Browser()->RoomButton()));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    ASSERT_NE(program->Room().Selected().id, 0u);
    ASSERT_TRUE(DropALetter(application, *program));
    ASSERT_TRUE(application.Round());
    const VECTOR3 before = program->Room().Camera().Position();
    Key(SDL_SCANCODE_W, true);
    for (int rounds = 0; rounds < 10; ++rounds) {
        ASSERT_TRUE(application.Round());
    }
    Key(SDL_SCANCODE_W, false);
    EXPECT_EQ(program->Room().Camera().Position(), before);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_E));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking) << "no browser is opened";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking) << "one escape closes one thing";
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(InputWalkingRoom());
}

// Rounds may be long: the benchmark takes five seconds.
TEST_F(ProgramBehind, TwoPressesInOneRoundCloseThePanelFirst) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    for (const SDL_Scancode second : {SDL_SCANCODE_ESCAPE, SDL_SCANCODE_F10}) {
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
        ASSERT_TRUE(ClickOn(application, program->Menu().MenuButton(kPanelOptions)));
        ASSERT_EQ(ModeOf(*program), ProgramMode::kPanel);
        for (const SDL_Scancode press : {SDL_SCANCODE_ESCAPE, second}) {
            Key(press, true);
            Key(press, false);
        }
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
        EXPECT_EQ(program->Menu().Panel(), nullptr) << "its values are stored";
        EXPECT_EQ(program->Menu().CurrentPanel(), kNoPanel);
    }
}
