// Files that are dropped on the window of the whole program.
#include "front/program_screen.h"
#include "front/room_rig.h"

namespace fs = std::filesystem;

namespace {

class ProgramDrop : public RoomTest {
protected:
    void SetUp() override {
        RoomTest::SetUp();
        Settings().SetInt(L"app_window_width", 640); // a smaller one is warned of
        Settings().SetInt(L"app_window_height", 360);
    }
    ProgramScreen& Enter(Application& application) {
        ProgramScreen& program = application.ShowProgram();
        EXPECT_TRUE(application.Round());
        return program;
    }
    static void Drop(const fs::path& path) {
        SDL_Event event{};
        event.type = SDL_DROPFILE;
        event.drop.file = SDL_strdup(path.string().c_str()); // the pump frees it
        SDL_PushEvent(&event);
    }
    // A folder of its own, as the home folder's files are games already.
    TemporaryFolder from;
};

} // namespace

TEST_F(ProgramDrop, AGameIsAddedAndPlayedFromTheMainMenu) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ProgramScreen& program = Enter(application);
    EXPECT_EQ(program.Room().Modes().Mode(), ProgramMode::kMenu);
    Drop(from.Write("latch.sms", LatchingRom()));
    uint32_t key = 0;
    ASSERT_TRUE(RunUntil(application, [&] {
        key = program.Room().Selected().id;
        return key != 0 && program.Room().Games().StateOf(key) == SetState::kPlaying;
    }));
    EXPECT_EQ(program.Room().Games().TitleOn(key), "latch");
    EXPECT_FALSE(program.Room().Modes().Covered());
    EXPECT_FALSE(program.Adding().IsShown());
    EXPECT_TRUE(fs::exists(folder.Path() / "sms" / "latch.game"));
}

TEST_F(ProgramDrop, AGamePlaysOnTheSetBeforeThePlayer) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ProgramScreen& program = Enter(application);
    program.Room().Take(ModeInput::kPlayGames);
    program.Room().Take(ModeInput::kGameRoom);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEDOWN));
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t key = program.Room().Selected().id;
    ASSERT_NE(key, 0u);
    Drop(from.Write("latch.sms", LatchingRom()));
    ASSERT_TRUE(RunUntil(
        application, [&] { return program.Room().Games().StateOf(key) == SetState::kPlaying; }));
    EXPECT_FALSE(program.Room().Modes().Walking()) << "he plays";
}

TEST_F(ProgramDrop, WhatIsNoGameSaysSoAndEscapeCloses) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ProgramScreen& program = Enter(application);
    Drop(from.Write("letter.txt", std::string_view("no game")));
    ASSERT_TRUE(RunUntil(application,
                         [&] { return program.Adding().IsShown() && !program.Adding().Works(); }));
    EXPECT_EQ(program.Room().Modes().Mode(), ProgramMode::kMenu);
    ASSERT_TRUE(Tap(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(program.Adding().IsShown());
    EXPECT_EQ(program.Room().Modes().Mode(), ProgramMode::kMenu) << "the escape was the window's";
}
