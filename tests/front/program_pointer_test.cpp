// The mouse pointer, the screen saver, and a window that is not seen, in the whole program.
#include "front/program_rig.h"
#include "front/program_robot.h"

namespace {

class ProgramPointer : public ProgramTest {
protected:
    static bool Seen() { return SDL_ShowCursor(SDL_QUERY) == SDL_ENABLE; }

    // A place in the window at which nothing is, in two rounds.
    static testing::AssertionResult MoveAbout(Application& application, int32_t x) {
        SDL_Event move{};
        move.type = SDL_MOUSEMOTION;
        move.motion.x = x;
        move.motion.y = 100;
        SDL_PushEvent(&move);
        return TwoRounds(application);
    }
    static testing::AssertionResult TwoRounds(Application& application) {
        return application.Round() && application.Round()
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "the program ended";
    }

    static constexpr int64_t kSecond = 1000000;
    const RobotClock clock;
};

} // namespace

TEST_F(ProgramPointer, IsSeenInTheMenuHoweverLongTheMouseRests) {
    Application application;
    ASSERT_NE(Open(application), nullptr);
    EXPECT_TRUE(Seen());
    RobotClock::Go(60 * kSecond);
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_TRUE(Seen());
}

TEST_F(ProgramPointer, GoesWithTheStripOfButtonsWhileAGameIsPlayed) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    program->Room().Play(kFrontSet, Opened("demo:sms-luciole"));
    static_cast<void>(program->Room().Take(ModeInput::kGameStarted));
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_FALSE(Seen()) << "the keys chose the game";
    for (const ProgramMode mode : {ProgramMode::kStanding, ProgramMode::kFullScreen}) {
        if (mode == ProgramMode::kFullScreen) {
            static_cast<void>(program->Room().Take(ModeInput::kTelevision));
        }
        ASSERT_TRUE(MoveAbout(application, mode == ProgramMode::kStanding ? 50 : 60));
        ASSERT_EQ(ModeOf(*program), mode);
        EXPECT_TRUE(Seen());
        EXPECT_TRUE(program->Overlay().Button(1)->IsVisible());
        RobotClock::Go(3 * kSecond - 100000);
        ASSERT_TRUE(TwoRounds(application));
        EXPECT_TRUE(Seen()) << "not yet three seconds";
        EXPECT_TRUE(program->Overlay().Button(1)->IsVisible());
        RobotClock::Go(200000);
        ASSERT_TRUE(TwoRounds(application));
        EXPECT_FALSE(Seen());
        EXPECT_FALSE(program->Overlay().Button(1)->IsVisible());
        ASSERT_TRUE(MoveAbout(application, 70));
        EXPECT_TRUE(Seen()) << "any move brings it back";
    }
}

TEST_F(ProgramPointer, IsCapturedByTheWalkAndSeenOverIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    static_cast<void>(program->Room().Take(ModeInput::kGameRoom));
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_EQ(program->PointerWanted(), Pointer::kCaptured);
    EXPECT_FALSE(Seen());
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"text");
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_EQ(program->PointerWanted(), Pointer::kSeen);
    EXPECT_TRUE(Seen());
    box->Dismiss();
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_EQ(program->PointerWanted(), Pointer::kCaptured);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(Seen());
}

TEST_F(ProgramPointer, IsHiddenFromAControllersPlayerUntilTheMouseMoves) {
    HearControllersInBackground();
    Application application;
    ASSERT_NE(Open(application), nullptr);
    const VirtualJoystick pad(kController);
    ASSERT_TRUE(application.Round());
    pad.Button(kRight, true);
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_FALSE(Seen());
    pad.Button(kRight, false);
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_FALSE(Seen());
    ASSERT_TRUE(MoveAbout(application, 50));
    EXPECT_TRUE(Seen());
}

TEST_F(ProgramPointer, TheScreenSaverIsHeldOffWhileAGameRuns) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    EXPECT_TRUE(SDL_IsScreenSaverEnabled()) << "a menu alone";
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    EXPECT_FALSE(SDL_IsScreenSaverEnabled());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_FALSE(SDL_IsScreenSaverEnabled()) << "also behind the menu";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_Q));
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    ASSERT_TRUE(TwoRounds(application));
    EXPECT_TRUE(SDL_IsScreenSaverEnabled());
}

TEST_F(ProgramPointer, AWindowThatIsNotSeenIsNotDrawnAndItsGameGoesOn) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    SDL_Window* const window = SDL_GL_GetCurrentWindow();
    SDL_HideWindow(window); // which is for the program what a minimised one is
    ASSERT_TRUE(TwoRounds(application));
    ASSERT_FALSE(application.MainWindow().IsVisible());
    // A set shows its first picture when the room is drawn.
    const uint32_t frame = FramesPresented();
    program->Room().Play(kRightSet, Opened("demo:sms-luciole"));
    ASSERT_TRUE(RunUntil(application, [&] {
        RobotClock::Go(17000);
        return SessionRuns(kRightSet) && FramesPresented() > frame + 200;
    }));
    EXPECT_FALSE(ShowsPicture(program->Room(), kRightSet));
    SDL_ShowWindow(window);
    EXPECT_TRUE(RunUntil(application, [&] { return ShowsPicture(program->Room(), kRightSet); }));
}
