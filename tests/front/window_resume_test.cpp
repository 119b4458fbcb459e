// The window of a single game: it is closed while the game runs, and the game is started again.
#include "front/window_rig.h"
#include "host/battery_file.h"
#include "host/session_list.h"
#include "host/state_snapshot.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class WindowResume : public WindowTest {
protected:
    [[nodiscard]] std::vector<fs::path> Files() const {
        std::vector<fs::path> files;
        std::error_code code;
        for (const auto& entry : fs::directory_iterator(folder.Path() / "resume" / "1", code)) {
            files.push_back(entry.path());
        }
        return files;
    }
    [[nodiscard]] bool HasAutosave() const {
        return fs::exists(folder.Path() / "sms" / "saves" / "latch.zip");
    }
    void PlayAndClose() {
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
        ASSERT_TRUE(RunUntilColour(application, kRed));
        application.Stop();
    }
    static bool HadStatic() { return PinSession(kFrontTelevision)->staticFrames != 0; }
    static std::vector<std::string> Told() { return ProgramNotices().Lines(0); }
};

TEST_F(WindowResume, TheGameGoesOnAndSaysSo) {
    ASSERT_NO_FATAL_FAILURE(PlayAndClose());
    EXPECT_FALSE(HasAutosave());
    ASSERT_EQ(Files().size(), 1u);
    EXPECT_TRUE(Files()[0].filename().string().starts_with("window-sms-"));
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    EXPECT_THAT(Told(),
                testing::Contains(HasSubstr("latch: goes on where it was when the program ended")));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_FALSE(HadStatic());
}

TEST_F(WindowResume, AnotherGameBeginsAnew) {
    ASSERT_NO_FATAL_FAILURE(PlayAndClose());
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    ASSERT_TRUE(RunFrames(application, 1));
    EXPECT_TRUE(HadStatic());
    EXPECT_EQ(Files().size(), 1u) << "the other game's stays";
}

TEST_F(WindowResume, WithoutLoadingAtTheStartTheGameBeginsAnew) {
    ASSERT_NO_FATAL_FAILURE(PlayAndClose());
    Settings().SetInt(L"emu_autosaves", 2);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunFrames(application, 1));
    EXPECT_TRUE(HadStatic());
}

TEST_F(WindowResume, AGameThatIsReplacedIsTurnedOff) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    EXPECT_TRUE(HasAutosave());
    application.Stop();
    ASSERT_EQ(Files().size(), 1u) << "that of the game that ran";
}

TEST_F(WindowResume, ARefusedStateIsSetAsideAndTheGameStarts) {
    ASSERT_NO_FATAL_FAILURE(PlayAndClose());
    ASSERT_EQ(Files().size(), 1u);
    STATE_SNAPSHOT snapshot;
    std::string error;
    ASSERT_TRUE(ReadSnapshot(Files()[0], snapshot, error)) << error;
    snapshot.state.resize(snapshot.state.size() / 2);
    ASSERT_TRUE(WriteSnapshot(Files()[0], snapshot, error)) << error;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_TRUE(HadStatic());
    EXPECT_THAT(ProgramNotices().UnreadFaults(0), ElementsAre(HasSubstr("refused-1.resume")));
}

TEST_F(WindowResume, AMeasurementNeitherGoesOnNorIsKept) {
    Application application;
    application.LeaveSavesAlone();
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    application.Stop();
    EXPECT_FALSE(fs::exists(folder.Path() / "resume"));
    EmuWriteBatteries(true);
}

} // namespace
