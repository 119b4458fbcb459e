// The room, played with keys and mouse: walking, sets turned on and off, full screen and back.
#include "front/notices.h"
#include "front/room_rig.h"
#include "front/saved_states.h"
#include "gui/handler.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "gui/text_box.h"
#include "host/host_data.h"
#include "megadrive/md_rig.h"

#include "support/least_images.h"
#include <SDL_opengl.h>
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using RoomScreenTest = RoomTest;

void Drop(const std::string& path) {
    SDL_Event event{};
    event.type = SDL_DROPFILE;
    event.drop.file = SDL_strdup(path.c_str());
    SDL_PushEvent(&event);
}

std::string Hint(const RoomScreen& room) {
    return {room.HintText().begin(), room.HintText().end()};
}

} // namespace

TEST_F(RoomScreenTest, IsEnteredWalkingWithAllSetsOff) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    EXPECT_TRUE(room->Modes().RoomVisible());
    EXPECT_TRUE(room->Modes().Walking());
    EXPECT_TRUE(InputWalkingRoom());
    for (const uint32_t key : kAllSets) {
        EXPECT_EQ(room->Games().StateOf(key), SetState::kOff) << key;
        EXPECT_FALSE(SessionRuns(key)) << key;
    }
    EXPECT_THAT(Hint(*room), AllOf(HasSubstr("E   Turn on"), HasSubstr("latch")));
}

// Everything is in a new context after it: the room, the set's picture, the toolkit's line at the foot.
TEST_F(RoomScreenTest, ALostContextIsMadeAgainWithEverythingInIt) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntil(application, [&] { return IsRed(MiddleOfWindow(application)); }));
    const uint64_t shown = application.Sets().PicturesShown();
    ASSERT_TRUE(RunUntil(application, [&] { // the light's colour has settled
        return application.Sets().PicturesShown() >= shown + kColourHistory;
    }));
    const std::vector<uint32_t> before = application.ReadWindow();
    const uint32_t uploads = static_cast<uint32_t>(application.Gui().Uploads());
    GLuint mark = 0;
    glGenTextures(1, &mark);
    glBindTexture(GL_TEXTURE_2D, mark);
    ASSERT_TRUE(glIsTexture(mark));
    glBindTexture(GL_TEXTURE_2D, 0);
    const SDL_GLContext first = SDL_GL_GetCurrentContext();
    for (int times = 0; times < 3; ++times) {
        SDL_Event event{};
        event.type = SDL_RENDER_DEVICE_RESET;
        SDL_PushEvent(&event);
        ASSERT_TRUE(application.Round());
        ASSERT_NE(SDL_GL_GetCurrentContext(), nullptr);
        EXPECT_TRUE(application.ReadWindow() == before) << times;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    EXPECT_FALSE(glIsTexture(mark) && SDL_GL_GetCurrentContext() == first) << "it is the old one";
    EXPECT_GT(application.Gui().Uploads(), uploads);
    EXPECT_EQ(room->Games().StateOf(kFrontSet), SetState::kPlaying);
}

TEST_F(RoomScreenTest, AContextThatIsNotCurrentIsMadeCurrentAgain) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    constexpr int kUntilEveryLightHasItsProgram = 20;
    for (int round = 0; round < kUntilEveryLightHasItsProgram; ++round) {
        ASSERT_TRUE(application.Round());
    }
    const std::vector<uint32_t> before = application.ReadWindow();
    const SDL_GLContext context = SDL_GL_GetCurrentContext();
    ASSERT_EQ(SDL_GL_MakeCurrent(SDL_GL_GetCurrentWindow(), nullptr), 0);
    ASSERT_EQ(SDL_GL_GetCurrentContext(), nullptr);
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(SDL_GL_GetCurrentContext(), context);
    EXPECT_EQ(application.ReadWindow(), before);
}

namespace {

class Night : public CGhostGUIHandler {
public:
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        surface->FillRect({0, 0, surface->Width(), surface->Height()}, 0xFF12162E);
    }
};

} // namespace

TEST_F(RoomScreenTest, AWindowThatAsksForASceneHasTheGamesBoxes) {
    Night night;
    CGhostManager& manager = CGhostManager::Get();
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    Settings().SetBool(L"app_lighting", false);
    ASSERT_EQ(manager.ScreenRect().width, 640) << "two units are a pixel";
    GHOSTMANAGER_WINDOW* const window =
        manager.CreateWindow(nullptr, kWindowBackgroundPass, &night, false);
    manager.SetWindowPos(window, 160, 80, 320, 240);
    ASSERT_TRUE(application.Round());
    const auto at = [&](uint32_t x, uint32_t y) {
        return application.ReadWindow()[size_t{y} * 320 + x];
    };
    EXPECT_EQ(at(160, 100), 0xFF12162Eu) << "no game is chosen";

    const std::vector<uint32_t> red(64, kRed);
    const COVER_IMAGE cover{red, 8, 8, 0};
    room->SetCovers(std::vector<COVER_IMAGE>{cover, cover, cover}, false);
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(at(160, 100), kRed) << "the middle box is in the middle of the window";
    EXPECT_EQ(at(84, 42), 0xFF12162Eu) << "the window's own corner";
    EXPECT_NE(at(40, 100), kRed) << "outside the window";
    const std::vector<uint32_t> before = application.ReadWindow();

    SDL_Event event{};
    event.type = SDL_RENDER_DEVICE_RESET;
    SDL_PushEvent(&event);
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(at(160, 100), kRed) << "in a new context";
    EXPECT_EQ(application.ReadWindow(), before);

    room->SetCovers({}, false);
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(at(160, 100), 0xFF12162Eu);
    manager.DestroyWindow(window);
    manager.Tick(0);
}

TEST_F(RoomScreenTest, HintsCanBeHidden) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    EXPECT_FALSE(room->HintText().empty());
    room->ShowHints(false);
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(room->HintText().empty());
}

TEST_F(RoomScreenTest, EachKeyWalksItsWayUntilItIsLetGo) {
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    const auto position = [&] { return room->Camera().Position(); };
    const struct {
        SDL_Scancode key;
        float x;
        float z;
    } rows[] = {
        {SDL_SCANCODE_W, 0.0f,  -1.0f}, // the way that the player looks at the start
        {SDL_SCANCODE_S, 0.0f,  1.0f },
        {SDL_SCANCODE_A, -1.0f, 0.0f },
        {SDL_SCANCODE_D, 1.0f,  0.0f },
    };
    for (const auto& row : rows) {
        const VECTOR3 from = position();
        Key(row.key, true);
        const auto gone = [&] {
            return (position().x - from.x) * row.x + (position().z - from.z) * row.z;
        };
        ASSERT_TRUE(RunUntil(application, [&] { return gone() > 20.0f; })) << row.key;
        Key(row.key, false);
        EXPECT_NEAR((position().x - from.x) * row.z, 0.0f, 0.01f) << row.key;
        EXPECT_NEAR((position().z - from.z) * row.x, 0.0f, 0.01f) << row.key;
        EXPECT_FLOAT_EQ(position().y, from.y);
        VECTOR3 last{};
        ASSERT_TRUE(RunUntil(application, [&] { // he comes to rest
            return std::exchange(last, position()) == position();
        })) << row.key;
    }
}

TEST_F(RoomScreenTest, TheMouseLooksAroundAndTheSlowKeySteadiesIt) {
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    MoveMouse(100, 50);
    ASSERT_TRUE(application.Round());
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), -20.0f);
    EXPECT_FLOAT_EQ(room->Camera().Pitch(), -10.0f);
    Key(SDL_SCANCODE_SPACE, true);
    MoveMouse(-100, -40);
    ASSERT_TRUE(application.Round());
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), -15.0f);
    EXPECT_FLOAT_EQ(room->Camera().Pitch(), -8.0f);
    Key(SDL_SCANCODE_SPACE, false);
}

TEST_F(RoomScreenTest, UseTurnsASetOnAndThenShowsItFullScreen) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame(), "demo:sms-luciole"});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    EXPECT_NE(room->Games().StateOf(kFrontSet), SetState::kOff);
    EXPECT_TRUE(room->Modes().Walking());
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    EXPECT_EQ(room->Games().TitleOn(kFrontSet), "latch");
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_TRUE(IsRed(MiddleOfWindow(application))) << std::hex << MiddleOfWindow(application);
    EXPECT_THAT(Hint(*room), AllOf(HasSubstr("E   Play latch"), HasSubstr("Q   Turn off")));
    EXPECT_EQ(room->Games().NextTitle(), "Luciole");

    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    EXPECT_FALSE(room->Modes().RoomVisible());
    EXPECT_EQ(InputActiveKey(), kFrontSet);
    Key(SDL_SCANCODE_A, true); // button 1
    EXPECT_TRUE(RunUntilColour(application, kBlue)) << "it gets the input";
    Key(SDL_SCANCODE_A, false);
    EXPECT_EQ(MiddleOfWindow(application), kBlue);
}

TEST_F(RoomScreenTest, TheLeftButtonDoesAsUseDoes) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    const auto click = [&] {
        Click(SDL_BUTTON_LEFT);
        ASSERT_TRUE(application.Round());
    };
    click();
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    click();
    EXPECT_FALSE(room->Modes().RoomVisible());
}

TEST_F(RoomScreenTest, FullScreenAndBackTheNextPictureIsTheRightOne) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
        ASSERT_FALSE(room->Modes().RoomVisible());
        EXPECT_EQ(MiddleOfWindow(application), kRed);
        ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
        ASSERT_TRUE(room->Modes().Walking());
        EXPECT_TRUE(IsRed(MiddleOfWindow(application))) << std::hex << MiddleOfWindow(application);
    }
}

// The program's clock, which the test stops: then no machine makes a new picture.
class StoppedClock : public RoomTest {
protected:
    void SetUp() override {
        RoomTest::SetUp();
        stoppedAt = 0;
        HostSetClock({Now, nullptr});
    }
    void TearDown() override {
        HostSetClock({nullptr, nullptr});
        RoomTest::TearDown();
    }
    static void StopClock() { stoppedAt = Running(); }
    static void StartClock() { stoppedAt = 0; }

private:
    static int64_t Running() {
        return std::chrono::duration_cast<std::chrono::microseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }
    static int64_t Now() {
        const int64_t stopped = stoppedAt;
        return stopped != 0 ? stopped : Running();
    }
    static inline std::atomic<int64_t> stoppedAt;
};

TEST_F(StoppedClock, TheFullScreenNeedsNoNewPicture) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    StopClock();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(application.Round()); // what was made before is shown
    }
    const uint32_t frames = FramesPresented();
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    EXPECT_EQ(MiddleOfWindow(application), kRed);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
    EXPECT_TRUE(IsRed(MiddleOfWindow(application)));
    EXPECT_LE(FramesPresented(), frames + 1);
    StartClock();
}

TEST_F(RoomScreenTest, WhileThePlayerWalksNoMachineGetsInput) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    Settings().SetInt2(L"INPUT SMS P1 BUTTON1", SDL_SCANCODE_B, 0); // no key of the room's
    Key(SDL_SCANCODE_B, true);
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(MiddleOf(application), kRed);
    Key(SDL_SCANCODE_B, false);
    ASSERT_TRUE(RunFrames(application, 2));

    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE)); // standing in front of it he plays
    EXPECT_TRUE(room->Modes().RoomVisible());
    EXPECT_FALSE(room->Modes().Walking());
    Key(SDL_SCANCODE_B, true);
    EXPECT_TRUE(RunUntilColour(application, kBlue));
    Key(SDL_SCANCODE_B, false);
    const VECTOR3 from = room->Camera().Position();
    Key(SDL_SCANCODE_W, true);
    MoveMouse(50, 0);
    ASSERT_TRUE(RunFrames(application, 5));
    EXPECT_EQ(room->Camera().Position(), from);
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), 0.0f);
    Key(SDL_SCANCODE_W, false);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
    EXPECT_TRUE(room->Modes().Walking());
}

TEST_F(RoomScreenTest, TheMiddleButtonFreesTheHandsAtASetThatIsOn) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    const auto middle = [&] {
        Click(SDL_BUTTON_MIDDLE);
        ASSERT_TRUE(application.Round());
    };
    middle();
    EXPECT_TRUE(room->Modes().Walking()) << "the set is off";
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    middle();
    EXPECT_FALSE(room->Modes().Walking());
    middle();
    EXPECT_TRUE(room->Modes().Walking());
}

TEST_F(RoomScreenTest, AFreeClickTakesTheCameraAgainWhereNobodyPlays) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(room->Modes().Walking());
    MouseButton(SDL_BUTTON_LEFT, true);
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(room->Modes().Walking());
    EXPECT_EQ(room->Games().StateOf(kFrontSet), SetState::kOff) << "the click did nothing else";
}

TEST_F(RoomScreenTest, TurnOffSavesEndsAndDarkens) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_FALSE(SaveExists("latch"));
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_Q));
    EXPECT_FALSE(IsRed(MiddleOfWindow(application))) << "dark at once, whatever the disk does";
    EXPECT_FALSE(ShowsPicture(*room, kFrontSet));
    EXPECT_TRUE(room->Modes().Walking());
    ASSERT_TRUE(RunUntilOff(application, *room, kFrontSet));
    EXPECT_FALSE(SessionRuns(kFrontSet));
    EXPECT_TRUE(SaveExists("latch"));
    EXPECT_FALSE(IsRed(MiddleOfWindow(application)));
    EXPECT_THAT(Hint(*room), HasSubstr("Turn on"));
}

TEST_F(RoomScreenTest, ASetTurnedOnAgainBeforeItIsOffPlaysOn) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame(), "demo:sms-luciole"});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_Q));
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    EXPECT_EQ(room->Games().TitleOn(kFrontSet), "Luciole");
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    EXPECT_EQ(room->Games().TitleOn(kFrontSet), "Luciole");
    EXPECT_TRUE(SaveExists("latch"));
}

TEST_F(RoomScreenTest, TheLampGoesOutAtItsKey) {
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    const auto brightness = [&] {
        uint64_t sum = 0;
        for (const uint32_t pixel : application.ReadWindow()) {
            sum += (pixel & 0xFF) + (pixel >> 8 & 0xFF) + (pixel >> 16 & 0xFF);
        }
        return sum;
    };
    const uint64_t lit = brightness();
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_F4));
    EXPECT_LT(brightness(), lit / 2);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_F4));
    EXPECT_EQ(brightness(), lit);
}

TEST_F(RoomScreenTest, ADroppedGamePlaysOnTheSetThatIsLookedAt) {
    Application application;
    RoomScreen* const room = Enter(application, {"demo:sms-luciole"});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    Drop(LatchGame());
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(room->Games().TitleOn(kFrontSet), "latch") << "in the place of what played";
    EXPECT_FALSE(ShowsPicture(*room, kFrontSet) && IsRed(MiddleOfWindow(application)));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_TRUE(SaveExists("luciole"));
    for (const uint32_t key : kAllSets) {
        EXPECT_EQ(SessionRuns(key), key == kFrontSet) << key;
    }
}

TEST_F(RoomScreenTest, ADroppedGamePlaysOnTheFirstFreeSetOtherwise) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    room->StartGames(7);
    MoveMouse(900, 0); // at the wall behind, where no set is
    ASSERT_TRUE(RunUntil(application, [&] { return room->Selected().id == 0; }));
    Drop(LatchGame());
    ASSERT_TRUE(RunUntilOn(application, *room, kAllSets[7]));
    Drop(LatchGame());
    ASSERT_TRUE(application.Round());
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("all televisions are on")));
}

TEST_F(RoomScreenTest, AGameThatCannotStartIsReportedAndTheOthersPlayOn) {
    Application application;
    // A valid file, but the console does not know its board.
    const auto path = folder.Write("unknown.nes", NesImageOfAnUnknownBoard());
    RoomScreen* const room = Enter(application, {LatchGame(), path.string(), LatchGame()});
    ASSERT_NE(room, nullptr);
    room->StartGames(3);
    ASSERT_TRUE(RunUntilOn(application, *room, kAllSets[0]));
    ASSERT_TRUE(RunUntilOff(application, *room, kAllSets[1]));
    ASSERT_TRUE(RunUntilOn(application, *room, kAllSets[2]));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("NES Mapper #255 not supported")));
    EXPECT_TRUE(room->Modes().Walking());
}

class EndedMachine : public RoomTest {
protected:
    [[nodiscard]] std::string GoneGame() {
        MdProgram program;
        program.PutLong(4, kMdCodeStart + 1); // a program cannot start at an odd address
        return folder.Write("gone.md", program.Image()).string();
    }
};

TEST_F(EndedMachine, DarkensItsSet) {
    Application application;
    RoomScreen* const room = Enter(application, {GoneGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntil(application, [&] { return ShowsPicture(*room, kFrontSet); })) << "static";
    ASSERT_TRUE(RunUntilOff(application, *room, kFrontSet));
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(ShowsPicture(*room, kFrontSet));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("address error")));
    EXPECT_TRUE(room->Modes().Walking());
}

TEST_F(EndedMachine, LeavesTheTitleOfTheGameInTheWindow) {
    Application application;
    RoomScreen* const room = Enter(application, {GoneGame()});
    ASSERT_NE(room, nullptr);
    std::string error;
    ASSERT_TRUE(application.Play(Opened(LatchGame()), error)) << error;
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntil(application, [&] { return room->Games().SerialOn(kFrontSet) != 0; }));
    ASSERT_TRUE(RunUntilOff(application, *room, kFrontSet));
    EXPECT_TRUE(application.Playing());
    EXPECT_THAT(SDL_GetWindowTitle(SDL_GL_GetCurrentWindow()), HasSubstr("latch"));
}

TEST_F(EndedMachine, LeadsBackFromTheFullScreen) {
    Settings().SetBool(L"emu_startfullscreen", true);
    Application application;
    RoomScreen* const room = Enter(application, {GoneGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_FALSE(room->Modes().RoomVisible());
    ASSERT_TRUE(RunUntil(application, [&] { return room->Modes().RoomVisible(); }));
    EXPECT_TRUE(room->Modes().Walking());
    EXPECT_EQ(room->Games().SerialOn(kFrontSet), 0u);
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(ShowsPicture(*room, kFrontSet));
    EXPECT_TRUE(RunUntilOff(application, *room, kFrontSet));
}

TEST_F(RoomScreenTest, ClosingTheWindowKeepsAllGamesForTheNextStart) {
    for (const char* name : {"one", "two", "three"}) {
        folder.Write(std::string(name) + ".sms", LatchingRom());
    }
    const auto game = [&](const char* name) {
        return (folder.Path() / (std::string(name) + ".sms")).string();
    };
    {
        Application application;
        RoomScreen* const room = Enter(application, {game("one"), game("two"), game("three")});
        ASSERT_NE(room, nullptr);
        room->StartGames(3);
        for (size_t i = 0; i < 3; ++i) {
            ASSERT_TRUE(RunUntilOn(application, *room, kAllSets[i]));
        }
        SDL_Event quit{};
        quit.type = SDL_QUIT;
        SDL_PushEvent(&quit);
        EXPECT_FALSE(application.Round());
        application.Stop();
        for (const uint32_t key : kAllSets) {
            EXPECT_FALSE(SessionRuns(key)) << key;
        }
    }
    for (const char* name : {"one", "two", "three"}) {
        EXPECT_FALSE(SaveExists(name)) << name;
    }
    EXPECT_THAT(ProgramNotices().UnreadFaults(0), IsEmpty());

    // Without a question, as there is no menu to ask in.
    Application application;
    RoomScreen* const room = Enter(application, {game("one"), game("two"), game("three")});
    ASSERT_NE(room, nullptr);
    room->StartGames(3);
    EXPECT_TRUE(RunUntil(application, [] {
        const SessionPin session = PinSession(kAllSets[0]);
        return session != nullptr && session->hostData != nullptr;
    }));
    EXPECT_EQ(PinSession(kAllSets[0])->staticFrames, 0u) << "it goes on";
}

TEST_F(RoomScreenTest, LosingTheKeyboardStopsTheWalk) {
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    const VECTOR3 from = room->Camera().Position();
    Key(SDL_SCANCODE_D, true);
    ASSERT_TRUE(RunUntil(application, [&] { return room->Camera().Position().x > from.x + 5.0f; }));
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.event = SDL_WINDOWEVENT_FOCUS_LOST;
    SDL_PushEvent(&event);
    VECTOR3 last{};
    EXPECT_TRUE(RunUntil(application, [&] {
        return std::exchange(last, room->Camera().Position()) == room->Camera().Position();
    }));
    EXPECT_LT(room->Camera().Position().x, 490.0f) << "not because of the wall";
}

TEST_F(RoomScreenTest, FillsAWindowOfAnotherSize) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), 480, 270);
    ASSERT_TRUE(
        RunUntil(application, [&] { return application.MainWindow().PixelWidth() == 480; }));
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(IsRed(MiddleOfWindow(application)));
    const MATRIX4 projection = room->Camera().Projection();
    EXPECT_NEAR(projection[5] / projection[0], 480.0f / 270.0f, 0.001f) << "nothing is stretched";
}

TEST_F(RoomScreenTest, WithoutAJoystickNothingMovesByItself) {
    Application application;
    RoomScreen* const room = Enter(application, {});
    ASSERT_NE(room, nullptr);
    const VECTOR3 from = room->Camera().Position();
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(application.Round());
    }
    EXPECT_EQ(room->Camera().Position(), from);
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), 0.0f);
    EXPECT_TRUE(room->Modes().Walking());
}

// All eight, the cabinets and the large set among them, which a look does not choose where they stand.
TEST_F(RoomScreenTest, PageDownAndUpGoFromSetToSet) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    std::vector<uint32_t> sets(kAllSets.begin(), kAllSets.end());
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t first = room->Selected().id;
    const auto start = std::find(sets.begin(), sets.end(), first);
    ASSERT_NE(start, sets.end());
    std::rotate(sets.begin(), start, sets.end());
    for (size_t i = 1; i <= sets.size(); ++i) {
        ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEDOWN));
        EXPECT_EQ(room->Selected().id, sets[i % sets.size()]) << i;
    }
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEUP));
    EXPECT_EQ(room->Selected().id, sets.back());
    constexpr uint32_t kCabinet = 10;
    while (room->Selected().id != kCabinet) {
        ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEDOWN));
    }
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    EXPECT_TRUE(RunUntil(application, [&] { return SessionRuns(kCabinet); }));

    Key(SDL_SCANCODE_S, true);
    ASSERT_TRUE(RunUntil(application, [&] { return room->Selected().id != kCabinet; }))
        << "a step chooses by looking again";
    Key(SDL_SCANCODE_S, false);
}

TEST_F(RoomScreenTest, TheSavedStatesOfTheSetThatIsLookedAtAreAPanel) {
    Application application;
    RoomScreen* const room = Enter(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_NE(application.States(), nullptr);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_F9));
    EXPECT_FALSE(application.States()->IsShown()) << "the set is off";

    ASSERT_TRUE(Tap(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilOn(application, *room, kFrontSet));
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_F9));
    CGUISlotsPanel& panel = application.States()->Panel();
    ASSERT_TRUE(RunUntil(application, [&] { return panel.IsShown() && !panel.Waits(); }));
    EXPECT_TRUE(PinSession(kFrontSet)->paused);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_RETURN)); // the first slot
    ASSERT_TRUE(RunUntil(application, [&] { return !panel.Waits(); }));
    EXPECT_EQ(panel.Message()->Text(), L"Saved to slot 1");

    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(panel.IsShown());
    EXPECT_TRUE(room->Modes().Walking()) << "escape closed the panel, and nothing else";
    ASSERT_TRUE(RunUntil(application, [] { return !PinSession(kFrontSet)->paused; }));
}

TEST_F(RoomScreenTest, IsEnteredWhereThePlayerStoodAtTheEnd) {
    VECTOR3 place;
    {
        Application application;
        RoomScreen* const room = Enter(application, {LatchGame()});
        ASSERT_NE(room, nullptr);
        Key(SDL_SCANCODE_S, true); // backwards, away from the sets
        const float start = room->Camera().Position().z;
        ASSERT_TRUE(
            RunUntil(application, [&] { return room->Camera().Position().z > start + 50; }));
        Key(SDL_SCANCODE_S, false);
        ASSERT_TRUE(application.Round());
        MoveMouse(100, 0); // 20 degrees to the right
        ASSERT_TRUE(application.Round());
        place = room->Camera().Position();
        EXPECT_NEAR(room->Camera().Yaw(), -20.0F, 0.1F);
        application.Stop();
    }
    Application application;
    Start(application);
    const RoomScreen& room = application.ShowRoom({});
    EXPECT_NEAR(room.Camera().Position().x, place.x, 0.01F);
    EXPECT_NEAR(room.Camera().Position().z, place.z, 0.01F);
    EXPECT_NEAR(room.Camera().Yaw(), -20.0F, 0.1F);

    application.Stop();
    Settings().SetString(L"room_place", L"250 118 60 0 0"); // where the unit with the sets stands
    Application again;
    Start(again);
    EXPECT_EQ(again.ShowRoom({}).Camera().Position(), (VECTOR3{180, 118, 200})) << "the door";
}
