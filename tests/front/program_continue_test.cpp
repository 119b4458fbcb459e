// The program ends while games are on, and starts again.
#include "base/files.h"
#include "front/program_rig.h"
#include "front/resume_texts.h"
#include "gui/text_box.h"
#include "host/aligned_block.h"
#include "host/frame_loop.h"
#include "host/picture.h"
#include "host/session_saves.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Bytes = std::vector<uint8_t>;

class ProgramContinue : public ProgramTest {
protected:
    [[nodiscard]] fs::path FileOf(uint32_t key) const {
        return folder.Path() / "resume" / "1" / ("set-" + std::to_string(key) + ".resume");
    }
    [[nodiscard]] STATE_SNAPSHOT Written(uint32_t key) const {
        STATE_SNAPSHOT snapshot;
        std::string error;
        EXPECT_TRUE(ReadSnapshot(FileOf(key), snapshot, error)) << error;
        return snapshot;
    }

    // As the window's close button does.
    static void Quit(Application& application) {
        SDL_Event quit{};
        quit.type = SDL_QUIT;
        SDL_PushEvent(&quit);
        EXPECT_FALSE(application.Round());
        application.Stop();
    }

    // A run of the program that ends while `count` sets are on: our own game, and the one that was dropped last.
    std::vector<uint32_t> PlayAndQuit(size_t count) {
        std::vector<uint32_t> keys;
        Application application;
        ProgramScreen* const program = Open(application);
        if (program == nullptr) {
            return keys;
        }
        if (program->Continuing() != nullptr) {
            EXPECT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        }
        EXPECT_TRUE(OpenBrowser(application, *program));
        uint32_t key = 0;
        EXPECT_TRUE(StartChosen(application, *program, key));
        keys.push_back(key);
        if (count == 2) {
            EXPECT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
            EXPECT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
            EXPECT_TRUE(PlayDropped(application, *program, LatchGame(), key));
            keys.push_back(key);
        }
        Quit(application);
        return keys;
    }

    static Bytes StateOf(EMU_THREAD& session) {
        const SessionHold hold(session);
        uint32_t size = 0;
        const StateBlob blob = session.machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    // Whether the game comes from the one state to the other when nobody touches it.
    static bool LeadsTo(const STATE_SNAPSHOT& from, const Bytes& to) {
        constexpr int kMostFrames = 20000;
        OPENED_GAME opened;
        std::string error;
        EXPECT_TRUE(OpenResumed(from, opened, error)) << error;
        CGameFile* const games[2] = {&opened.game, nullptr};
        const auto session = EmuCreateSession(99, games, opened.options.data(), opened.title);
        if (session == nullptr || !EmuGiveState(*session, from.state)) {
            return false;
        }
        const AlignedBlock<uint32_t> pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        SOUND_FRAME sound;
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.get();
        EMU_INPUT_STATE input{};
        for (int frame = 0; frame < kMostFrames; ++frame) {
            if (StateOf(*session) == to) {
                return true;
            }
            EmuStep(*session, &input, &video, &sound.frame, false);
        }
        return false;
    }

    static testing::AssertionResult RunUntilAsked(Application& application, bool asked,
                                                  ProgramScreen& program) {
        return RunUntil(application, [&] { return (program.Continuing() != nullptr) == asked; });
    }
};

} // namespace

TEST_F(ProgramContinue, TwoGamesGoOnOnTheirSetsFromExactlyTheirStates) {
    const std::vector<uint32_t> keys = PlayAndQuit(2);
    ASSERT_EQ(keys.size(), 2u);
    ASSERT_NE(keys[0], keys[1]);
    EXPECT_FALSE(SaveExists("luciole")) << "no autosave";
    EXPECT_FALSE(SaveExists("latch"));
    const STATE_SNAPSHOT first = Written(keys[0]);
    const STATE_SNAPSHOT second = Written(keys[1]);
    EXPECT_FALSE(first.picture.pixels.empty());

    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ContinueWindow* const window = program->Continuing();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->Count(), 2u);
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), window->ContinueButton()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_EQ(program->Continuing(), nullptr);
    for (const uint32_t key : keys) {
        ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
        EXPECT_EQ(PinSession(key)->staticFrames, 0u);
    }
    EXPECT_EQ(program->Room().Games().TitleOn(keys[0]), "Luciole");
    EXPECT_EQ(program->Room().Games().TitleOn(keys[1]), "latch");
    EXPECT_TRUE(LeadsTo(first, StateOf(*PinSession(keys[0]))));
    EXPECT_TRUE(LeadsTo(second, StateOf(*PinSession(keys[1]))));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "before the set that he played on";
    EXPECT_EQ(program->Room().Selected().id, keys[1]);
    EXPECT_EQ(InputActiveKey(), keys[1]);
    for (const uint32_t key : kAllSets) {
        EXPECT_EQ(SessionRuns(key), key == keys[0] || key == keys[1]) << key;
    }
    EXPECT_THAT(ProgramNotices().UnreadFaults(0), IsEmpty());
}

TEST_F(ProgramContinue, AGameThatFilledTheWindowDoesSoAgain) {
    uint32_t key = 0;
    {
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_EQ(program->Continuing(), nullptr) << "nothing was on";
        ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
        program->Room().Take(ModeInput::kTelevision);
        ASSERT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
        ASSERT_TRUE(application.Round());
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10)); // to the button QUIT
        Quit(application);
    }
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_NE(program->Continuing(), nullptr);
    ASSERT_TRUE(ClickOn(application, program->Continuing()->ContinueButton()));
    ASSERT_TRUE(RunUntilOn(application, program->Room(), key));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    EXPECT_EQ(InputActiveKey(), key);
    ASSERT_TRUE(RunUntilColour(application, kRed));
}

TEST_F(ProgramContinue, NotNowLeavesAllForTheNextStart) {
    const std::vector<uint32_t> keys = PlayAndQuit(2);
    ASSERT_EQ(keys.size(), 2u);
    const Bytes before = folder.Read("resume/1/" + FileOf(keys[0]).filename().string());
    {
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        EXPECT_EQ(program->Continuing(), nullptr);
        EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
        EXPECT_EQ(CGhostManager::Get().FocusWindow(),
                  program->Menu().MenuButton(kPanelBrowser)->window);
        EXPECT_FALSE(SessionRuns(keys[0]));
        Quit(application);
    }
    EXPECT_EQ(folder.Read("resume/1/" + FileOf(keys[0]).filename().string()), before);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_NE(program->Continuing(), nullptr);
    EXPECT_EQ(program->Continuing()->Count(), 2u);
}

// Whoever says "Not Now" and then starts the game expects it where he left it.
TEST_F(ProgramContinue, AGameThatIsStartedAgainGoesOn) {
    const std::vector<uint32_t> keys = PlayAndQuit(1);
    ASSERT_EQ(keys.size(), 1u);
    const STATE_SNAPSHOT was = Written(keys[0]);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(OpenBrowser(application, *program));
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_EQ(PinSession(key)->staticFrames, 0u);
    EXPECT_TRUE(LeadsTo(was, StateOf(*PinSession(key))));
}

TEST_F(ProgramContinue, WithoutLoadingAtTheStartAGameThatIsStartedAgainBeginsAnew) {
    ASSERT_EQ(PlayAndQuit(1).size(), 1u);
    Settings().SetInt(L"emu_autosaves", 2);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(OpenBrowser(application, *program));
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_NE(PinSession(key)->staticFrames, 0u);
}

TEST_F(ProgramContinue, AGameThatGoesOnAndIsTurnedOffIsNotOfferedAgain) {
    const std::vector<uint32_t> keys = PlayAndQuit(1);
    ASSERT_EQ(keys.size(), 1u);
    {
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
        ASSERT_TRUE(RunUntilOn(application, program->Room(), keys[0]));
        program->Room().Take(ModeInput::kExitGame);
        ASSERT_TRUE(RunUntilOff(application, program->Room(), keys[0]));
        Quit(application);
    }
    EXPECT_TRUE(SaveExists("luciole"));
    EXPECT_FALSE(fs::exists(FileOf(keys[0])));
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Continuing(), nullptr);
}

TEST_F(ProgramContinue, ForgetDeletesTheFilesAndNothingElse) {
    const std::vector<uint32_t> keys = PlayAndQuit(1);
    ASSERT_EQ(keys.size(), 1u);
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(ClickOn(application, program->Continuing()->ForgetButton()));
    ASSERT_NE(program->Continuing(), nullptr) << "it asks";
    EXPECT_TRUE(fs::exists(FileOf(keys[0])));
    ASSERT_TRUE(ClickOn(application, program->Continuing()->ForgetButton()));
    EXPECT_EQ(program->Continuing(), nullptr);
    EXPECT_FALSE(fs::exists(FileOf(keys[0])));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    EXPECT_FALSE(SessionRuns(keys[0]));
}

TEST_F(ProgramContinue, AGameWhoseFileIsGoneIsNamedAndTheOthersGoOn) {
    const std::vector<uint32_t> keys = PlayAndQuit(2);
    ASSERT_EQ(keys.size(), 2u);
    fs::remove(LatchGame());
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
        ASSERT_NE(entry.path().filename(), "latch.sms");
    }
    const std::string file = SnapshotText(Written(keys[1]), "game");
    fs::remove(ResolvePath(file));
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    ASSERT_TRUE(RunUntilOn(application, program->Room(), keys[0]));
    EXPECT_FALSE(SessionRuns(keys[1]));
    EXPECT_FALSE(fs::exists(FileOf(keys[1])));
    EXPECT_TRUE(fs::exists(FileOf(keys[1]).replace_extension(".refused-1.resume")));
    const std::vector<std::string> faults = ProgramNotices().UnreadFaults(0);
    EXPECT_THAT(faults, testing::ElementsAre(
                            AllOf(HasSubstr("latch cannot go on"), HasSubstr("refused-1.resume"))));
}

TEST_F(ProgramContinue, AGameThatHasChangedDoesNotGoOn) {
    ASSERT_EQ(PlayAndQuit(1).size(), 1u);
    STATE_SNAPSHOT snapshot;
    std::string error;
    const fs::path path = fs::directory_iterator(folder.Path() / "resume" / "1")->path();
    ASSERT_TRUE(ReadSnapshot(path, snapshot, error)) << error;
    for (SNAPSHOT_TEXT& text : snapshot.texts) {
        if (text.name == "identity") {
            text.value[0] = text.value[0] == 'a' ? 'b' : 'a';
        }
    }
    ASSERT_TRUE(WriteSnapshot(path, snapshot, error)) << error;
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu) << "there is nothing to go to";
    EXPECT_THAT(ProgramNotices().UnreadFaults(0),
                testing::ElementsAre(HasSubstr("is another game than it was")));
}

TEST_F(ProgramContinue, AMachineThatRefusesItsStateLeavesTheSetDark) {
    const std::vector<uint32_t> keys = PlayAndQuit(1);
    ASSERT_EQ(keys.size(), 1u);
    STATE_SNAPSHOT snapshot = Written(keys[0]);
    snapshot.state.resize(snapshot.state.size() / 2);
    std::string error;
    ASSERT_TRUE(WriteSnapshot(FileOf(keys[0]), snapshot, error)) << error;
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_TRUE(RunUntil(application, [] { return CGhostMessageBox::Count() == 1; }));
    ASSERT_TRUE(RunUntilOff(application, program->Room(), keys[0]));
    EXPECT_TRUE(fs::exists(FileOf(keys[0]).replace_extension(".refused-1.resume")));
    EXPECT_THAT(ProgramNotices().UnreadFaults(0),
                testing::ElementsAre(HasSubstr("Luciole cannot go on")));
}

TEST_F(ProgramContinue, ADamagedFileIsSetAsideAtTheStart) {
    const std::vector<uint32_t> keys = PlayAndQuit(1);
    ASSERT_EQ(keys.size(), 1u);
    folder.Write("resume/1/" + FileOf(keys[0]).filename().string(), "no snapshot");
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Continuing(), nullptr);
    EXPECT_TRUE(fs::exists(FileOf(keys[0]).replace_extension(".refused-1.resume")));
}
