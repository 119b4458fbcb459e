// What stays of a game that runs: resume file, autosave and memory, whether it is turned off, the program ends, or the
// program is killed.
#include "base/files.h"
#include "host/host_data.h"
#include "host/host_fixture.h"
#include "host/report.h"
#include "host/session_saves.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <random>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Bytes = std::vector<uint8_t>;

class ResumeFile : public HostTest {
protected:
    [[nodiscard]] fs::path Path() const { return home.Path() / "resume" / "1" / "set-1.resume"; }
    [[nodiscard]] fs::path Archive() const { return home.Path() / "sms" / "saves" / "game.zip"; }

    // With a resume file, on key 1.
    uint32_t StartKept(const TEST_BEHAVIOUR& behaviour = {}, Bytes state = {}) const {
        CGameFile game = MakeGame(1);
        CGameFile* const games[2] = {&game, nullptr};
        SESSION_RESUME resume;
        resume.file = Path();
        resume.texts = {
            {"game", "game.sms"},
            {"set",  "1"       }
        };
        resume.state = std::move(state);
        return EmuStartSession(1, games, MakeOptions(behaviour).data(), "Game", std::move(resume));
    }
    // Past its static.
    static bool RunPast(uint32_t frame) {
        return Eventually([&] {
            bool past = false;
            WithMachine(1, [&](CTestMachine& machine) { past = machine.frame > frame; });
            return past;
        });
    }
    // What the machine would save now; the session may run on.
    static Bytes StateOf(CTestMachine& machine) {
        uint32_t size = 0;
        const StateBlob blob = machine.SaveState(size);
        return {blob.get(), blob.get() + size};
    }
    // A state of some other run, after that number of frames.
    [[nodiscard]] Bytes StateAfter(uint32_t frames) {
        const auto session = Create();
        std::vector<uint32_t> pixels(size_t{320} * 240);
        std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.data();
        EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
        for (uint32_t i = 0; i < frames; ++i) {
            session->machine->RunFrame(nullptr, &video, &audio);
        }
        return StateOf(MachineOf(*session));
    }
    [[nodiscard]] STATE_SNAPSHOT Written() const {
        STATE_SNAPSHOT snapshot;
        std::string error;
        EXPECT_TRUE(ReadSnapshot(Path(), snapshot, error)) << error;
        return snapshot;
    }
    static Bytes Content(const fs::path& path) {
        Bytes bytes;
        std::string error;
        EXPECT_TRUE(ReadFile(path, bytes, error)) << error;
        return bytes;
    }
    static STATE_SNAPSHOT Snapshot(uint8_t seed) {
        STATE_SNAPSHOT snapshot;
        snapshot.state = Bytes(300, seed);
        return snapshot;
    }
};

} // namespace

TEST_F(ResumeFile, IsAllThatTheProgramsEndLeavesOfARunningGame) {
    ASSERT_NE(StartKept(), 0u);
    ASSERT_TRUE(RunPast(5));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    EXPECT_FALSE(fs::exists(Archive())) << "no autosave";
    const STATE_SNAPSHOT snapshot = Written();
    EXPECT_EQ(SnapshotText(snapshot, "game"), "game.sms");
    EXPECT_EQ(SnapshotText(snapshot, "set"), "1");
    EXPECT_NE(snapshot.takenAt, 0);
    const auto later = Create();
    ASSERT_TRUE(EmuGiveState(*later, snapshot.state));
    EXPECT_GT(MachineOf(*later).frame, 5u);
    // The machine fills a frame's picture with its number.
    EXPECT_EQ(snapshot.picture.width, 320u);
    ASSERT_FALSE(snapshot.picture.pixels.empty());
    EXPECT_EQ(snapshot.picture.pixels[0] & 0xFFFFFF, MachineOf(*later).frame);
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(ResumeFile, TheProgramsEndLeavesThePlayersSavedStateAlone) {
    ASSERT_NE(StartKept(), 0u);
    ASSERT_TRUE(RunPast(5));
    InputSetActiveKey(1);
    Press(L"Save State", true);
    ASSERT_TRUE(Eventually([&] { return fs::exists(Archive()); }));
    Press(L"Save State", false);
    const Bytes saved = Content(Archive());
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    EXPECT_EQ(Content(Archive()), saved);
}

TEST_F(ResumeFile, TurningOffSavesTheGameAndDeletesTheFile) {
    ASSERT_NE(StartKept(), 0u);
    ASSERT_TRUE(RunPast(5));
    EmuKeepResumeFiles();
    ASSERT_TRUE(fs::exists(Path()));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_TRUE(fs::exists(Archive()));
    EXPECT_FALSE(fs::exists(Path()));
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(ResumeFile, AnotherGameOnTheSetTurnsTheOldOneOff) {
    ASSERT_NE(StartKept(), 0u);
    ASSERT_TRUE(RunPast(5));
    EmuKeepResumeFiles();
    ASSERT_NE(Start(1, "Other"), 0u);
    EXPECT_TRUE(fs::exists(Archive()));
    EXPECT_FALSE(fs::exists(Path()));
}

// The game would be lost otherwise.
TEST_F(ResumeFile, StaysWhenTheAutosaveCannotBeWritten) {
    home.Write("sms", "no folder");
    ASSERT_NE(StartKept(), 0u);
    ASSERT_TRUE(RunPast(5));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_EQ(TakeReports().size(), 1u);
    EXPECT_FALSE(Written().state.empty());
}

TEST_F(ResumeFile, GoesWithATurnedOffGameWithoutAutosaves) {
    Settings().SetInt(L"emu_autosaves", 0);
    ASSERT_NE(StartKept(), 0u);
    EmuKeepResumeFiles();
    ASSERT_TRUE(fs::exists(Path()));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    EXPECT_FALSE(fs::exists(Path()));
}

TEST_F(ResumeFile, TheProgramsEndWritesTheGamesOwnMemory) {
    ASSERT_NE(StartKept({.batteryBytes = 64}), 0u);
    ASSERT_TRUE(RunPast(5));
    WithMachine(1, [](CTestMachine& machine) { machine.battery.assign(64, 7); });
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    EXPECT_EQ(Content(home.Path() / "sms" / "saves" / "game.a5a5a5a5a5a5.sav"), Bytes(64, 7));
}

TEST_F(ResumeFile, AMachineThatCannotGoOnLeavesNone) {
    ASSERT_NE(StartKept({.endsAtFrame = 5}), 0u);
    EmuKeepResumeFiles();
    std::string reason;
    ASSERT_TRUE(Eventually([&] { return EmuHasEnded(1, reason); }));
    EmuKeepResumeFiles();
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    EXPECT_FALSE(fs::exists(Path()));
}

TEST_F(ResumeFile, ASessionWithoutOneLeavesNothing) {
    ASSERT_NE(Start(1), 0u);
    ASSERT_TRUE(RunPast(5));
    EmuKeepResumeFiles();
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    EXPECT_FALSE(fs::exists(home.Path() / "resume"));
    EXPECT_FALSE(fs::exists(Archive()));
}

TEST_F(ResumeFile, TheGameGoesOnFromItsStateWithoutStatic) {
    ASSERT_NE(Start(1), 0u); // an autosave, which must not be loaded
    ASSERT_TRUE(RunPast(0));
    EXPECT_TRUE(EmuStopSession(1, SessionEnd::kTurnedOff));
    ASSERT_TRUE(fs::exists(Archive()));
    Settings().SetInt(L"emu_autosaves", 3);
    const Bytes state = StateAfter(100000);
    ASSERT_NE(StartKept({}, state), 0u);
    ASSERT_TRUE(RunPast(0));
    WithMachine(1, [](CTestMachine& machine) { EXPECT_GE(machine.frame, 100000u); });
    EmuForEachSession([](EMU_THREAD& session) { EXPECT_EQ(session.staticFrames, 0u); });
}

TEST_F(ResumeFile, ARefusedStateStartsNothing) {
    EXPECT_EQ(StartKept({}, Bytes(10, 1)), 0u);
    EXPECT_THAT(EmuLastError(), HasSubstr("cannot go on"));
    EXPECT_EQ(CTestMachine::gLive, 0);
    EXPECT_FALSE(EmuStopSession(1, SessionEnd::kTurnedOff));
}

// After a crash the file of the game's own memory is newer than the state.
TEST_F(ResumeFile, TheGamesOwnMemoryIsThatOfItsFile) {
    home.Write("sms/saves/game.a5a5a5a5a5a5.sav", Bytes(64, 9));
    ASSERT_NE(StartKept({.batteryBytes = 64}, StateAfter(50)), 0u);
    WithMachine(1, [](CTestMachine& machine) { EXPECT_EQ(machine.battery, Bytes(64, 9)); });
}

TEST_F(ResumeFile, IsWrittenOnlyWhenSomethingHasChanged) {
    RESUME_FILE file;
    ResumeBegin(file, {Path(), {{"set", "1"}}, {}});
    const auto writes = [&](uint8_t seed) {
        fs::remove(Path());
        EXPECT_TRUE(ResumeWrite(file, Snapshot(seed)));
        return fs::exists(Path());
    };
    EXPECT_TRUE(writes(1));
    EXPECT_FALSE(writes(1)) << "the same state";
    EXPECT_TRUE(writes(2));
    ResumeSetText(file, "set", "1");
    EXPECT_FALSE(writes(2)) << "the same text";
    ResumeSetText(file, "place", "standing");
    EXPECT_TRUE(writes(2)) << "a new text";
    EXPECT_EQ(SnapshotText(Written(), "place"), "standing");
    ResumeSetText(file, "place", "");
    EXPECT_TRUE(writes(2)) << "another text";
    EXPECT_EQ(SnapshotText(Written(), "place"), "");
}

TEST_F(ResumeFile, ATextOfARunningSessionIsInTheNextFile) {
    EXPECT_FALSE(EmuSetResumeText(1, "place", "standing"));
    ASSERT_NE(StartKept(), 0u);
    EmuKeepResumeFiles();
    EXPECT_TRUE(EmuSetResumeText(1, "place", "standing"));
    EXPECT_EQ(SnapshotText(Written(), "place"), "");
    EmuKeepResumeFiles();
    EXPECT_EQ(SnapshotText(Written(), "place"), "standing");
}

TEST_F(ResumeFile, AFailedWriteIsToldOnceAndTriedAgain) {
    home.Write("resume", "no folder");
    RESUME_FILE file;
    ResumeBegin(file, {Path(), {{"set", "1"}}, {}});
    EXPECT_FALSE(ResumeWrite(file, Snapshot(1)));
    EXPECT_FALSE(ResumeWrite(file, Snapshot(2)));
    EXPECT_THAT(TakeReports(), ElementsAre(HasSubstr("resume/1: folder cannot be made")));
    fs::remove(home.Path() / "resume");
    EXPECT_TRUE(ResumeWrite(file, Snapshot(2)));
    EXPECT_EQ(Written().state, Bytes(300, 2));
    EXPECT_EQ(SnapshotText(Written(), "set"), "1");
}

TEST_F(ResumeFile, IsSetAsideUnderTheNextFreeName) {
    for (const char* const name : {"set-1.refused-1.resume", "set-1.refused-2.resume"}) {
        home.Write("resume/1/set-1.resume", name);
        const std::string line = ResumeSetAside(Path(), "its game is gone");
        EXPECT_THAT(line, HasSubstr("set-1.resume: its game is gone"));
        EXPECT_THAT(line, HasSubstr(name));
        EXPECT_FALSE(fs::exists(Path()));
        EXPECT_EQ(home.Read(std::string("resume/1/") + name),
                  Bytes(name, name + std::string_view(name).size()));
    }
}

namespace {

void Sleep(uint32_t microseconds) {
    const timespec time = {0, static_cast<long>(microseconds) * 1000};
    nanosleep(&time, nullptr);
}

} // namespace

// Whenever it comes, there is a whole file, no older than the one before.
TEST_F(ResumeFile, IsWholeAfterAKillAtAnyInstant) {
    constexpr int kKills = 60;
    uint32_t longest =
        30000; // microseconds: about two writes, which differs from computer to computer
    std::mt19937 random(16);
    uint32_t frame = 0;
    Bytes state;
    int progress = 0;
    for (int round = 0; round < kKills; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const pid_t child = fork();
        if (child == 0) {
            if (StartKept({}, state) == 0) {
                _exit(1);
            }
            while (true) {
                EmuKeepResumeFiles();
            }
        }
        ASSERT_TRUE(Eventually([&] { return fs::exists(Path()); }));
        Sleep(static_cast<uint32_t>(random()) % longest);
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        const STATE_SNAPSHOT snapshot = Written();
        ASSERT_FALSE(HasFailure());
        EXPECT_EQ(SnapshotText(snapshot, "game"), "game.sms");
        const auto session = Create();
        ASSERT_TRUE(EmuGiveState(*session, snapshot.state));
        EXPECT_GE(MachineOf(*session).frame, frame);
        const bool wrote = MachineOf(*session).frame > frame;
        longest = std::clamp(wrote ? longest - longest / 8 : longest + longest / 8, 2000u, 900000u);
        progress += wrote ? 1 : 0;
        frame = MachineOf(*session).frame;
        state = snapshot.state;
    }
    EXPECT_GT(progress, kKills / 4) << "hardly any child wrote before it was killed";
}

// The clock of the tests runs faster than the machine.
TEST_F(ResumeFile, CountsTheSecondsPlayedOnFromWhatTheyWere) {
    CGameFile game = MakeGame(1);
    CGameFile* const games[2] = {&game, nullptr};
    SESSION_RESUME resume;
    resume.file = Path();
    resume.state = StateAfter(5);
    resume.secondsPlayed = 7200;
    const int64_t before = HostClock().nowMicroseconds();
    ASSERT_NE(EmuStartSession(1, games, MakeOptions({}).data(), "Game", std::move(resume)), 0u);
    ASSERT_TRUE(Eventually([&] { return HostClock().nowMicroseconds() > before + 5'000'000; }));
    ASSERT_TRUE(EmuStopSession(1, SessionEnd::kProgramEnds));
    const int64_t most = (HostClock().nowMicroseconds() - before) / 1'000'000;
    STATE_SNAPSHOT snapshot;
    std::string error;
    ASSERT_TRUE(ReadSnapshotLabel(Path(), snapshot, error)) << error;
    EXPECT_GE(snapshot.secondsPlayed, 7200u + 4);
    EXPECT_LE(snapshot.secondsPlayed, 7200u + static_cast<uint64_t>(most));
}
