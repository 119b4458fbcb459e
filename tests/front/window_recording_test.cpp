// What a player records in the window, and plays there.
#include "front/tools/run_ombrelune.h"
#include "front/window_rig.h"
#include "host/recording_file.h"
#include "settings/bindings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

void Key(SDL_Scancode scancode, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    SDL_PushEvent(&event);
}

class WindowRecording : public WindowTest {
protected:
    // Holds the keys until there is a recording, and returns its file.
    fs::path SaveRecording(Application& application) {
        Key(SDL_SCANCODE_LSHIFT, true);
        Key(SDL_SCANCODE_F12, true);
        const fs::path where = folder.Path() / "recordings";
        fs::path file;
        EXPECT_TRUE(RunUntil(application, [&] {
            std::error_code ignored;
            for (const auto& entry : fs::directory_iterator(where, ignored)) {
                file = entry.path().extension() == ".recording" ? entry.path() : file;
            }
            return !file.empty();
        }));
        Key(SDL_SCANCODE_F12, false);
        Key(SDL_SCANCODE_LSHIFT, false);
        return file;
    }

    RECORDING Read(const fs::path& file) const {
        RECORDING recording;
        std::string error;
        std::vector<uint8_t> bytes;
        EXPECT_TRUE(ReadFile(file, bytes, error)) << error;
        EXPECT_TRUE(ReadRecording(bytes, recording, error)) << error;
        return recording;
    }
};

bool AnyPress(const RECORDING& recording) {
    return std::any_of(recording.steps.begin(), recording.steps.end(),
                       [](const RECORDING_STEP& step) { return step.inputs.actions != 0; });
}

} // namespace

// The game turns blue at the press of the button, so a replay that lacks the press shows another picture.
TEST_F(WindowRecording, TheKeySavesWhatWasJustPlayedAndItPlaysToTheSame) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    Key(SDL_SCANCODE_A, true);
    ASSERT_TRUE(RunUntilColour(application, kBlue));
    Key(SDL_SCANCODE_A, false);
    ASSERT_TRUE(RunFrames(application, 70));
    const fs::path file = SaveRecording(application);
    application.Stop();
    EXPECT_FALSE(fs::exists(folder.Path() / "screenshots")); // the same key without Shift

    const RECORDING recording = Read(file);
    EXPECT_GE(recording.frames, 70u);
    EXPECT_TRUE(AnyPress(recording));
    EXPECT_EQ(recording.about.game, ".\\latch.sms"); // below the home folder
    const PROGRAM_RESULT replay =
        Ombrelune({"play", "--headless", "--replay", file.string()}, folder);
    EXPECT_EQ(replay.exitCode, 0) << replay.error;
    EXPECT_THAT(replay.output, HasSubstr("pictures and sound are those of the recording"));
}

TEST_F(WindowRecording, AReplayPlaysInTheWindowWithoutThePlayer) {
    PLAY_OPTIONS options;
    {
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
        ASSERT_TRUE(RunUntilColour(application, kRed));
        Key(SDL_SCANCODE_A, true);
        ASSERT_TRUE(RunUntilColour(application, kBlue));
        Key(SDL_SCANCODE_A, false);
        ASSERT_TRUE(RunFrames(application, 5));
        options.replayFile = SaveRecording(application).string();
    }
    OPENED_GAME opened;
    std::string error;
    ASSERT_EQ(OpenForPlay(options, opened, error), 0) << error;
    Application application;
    application.LeaveSavesAlone();
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_TRUE(application.Play(opened, error)) << error;
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(RunUntilColour(application, kBlue)); // nobody presses
    std::string notices;
    EXPECT_TRUE(RunUntil(application, [&] {
        for (const std::string& line : ProgramNotices().Lines(0)) {
            notices += line;
        }
        return notices.find("those of the recording") != std::string::npos;
    }));
}

// The module is not beside this test's program.
TEST_F(WindowRecording, AVideoWithoutTheModuleSaysSo) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    Key(SDL_SCANCODE_LCTRL, true);
    Key(SDL_SCANCODE_F12, true);
    std::string notices;
    EXPECT_TRUE(RunUntil(application, [&] {
        for (const std::string& line : ProgramNotices().Lines(0)) {
            notices += line;
        }
        return notices.find("videos cannot be written") != std::string::npos;
    }));
    Key(SDL_SCANCODE_F12, false);
    Key(SDL_SCANCODE_LCTRL, false);
}
