// `ombrelune` and `ombrelune play GAME` as a user runs them.
#include "megadrive/md_rig.h"

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// Sets the variable, or unsets it for null, for the life of this object.
class Environment {
public:
    Environment(const char* variable, const char* value)
        : name(variable) {
        const char* const old = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
        had = old != nullptr;
        before = had ? old : "";
        Set(value);
    }
    ~Environment() { Set(had ? before.c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void Set(const char* value) const {
        if (value != nullptr) {
            setenv(name, value, 1); // NOLINT(concurrency-mt-unsafe)
        } else {
            unsetenv(name); // NOLINT(concurrency-mt-unsafe)
        }
    }

    const char* name;
    std::string before;
    bool had = false;
};

class WindowCommand : public testing::Test {
protected:
    PROGRAM_RESULT Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--home", folder.Path().string()});
        return RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", arguments);
    }

    // The path of a Mega Drive game that ends in its first frame: nothing starts at an odd address.
    [[nodiscard]] std::string EndingGame() const {
        MdProgram program;
        program.PutLong(4, kMdCodeStart + 1);
        return folder.Write("ending.md", program.Image()).string();
    }

    TemporaryFolder folder;
};

// Every file below a folder, with what it holds.
std::map<std::string, std::vector<uint8_t>> FilesBelow(const TemporaryFolder& folder,
                                                       const std::string& name) {
    std::map<std::string, std::vector<uint8_t>> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path() / name)) {
        if (entry.is_regular_file()) {
            const std::string path =
                std::filesystem::relative(entry.path(), folder.Path()).string();
            files[path] = folder.Read(path);
        }
    }
    return files;
}

} // namespace

// Off the screen a display has 1024 by 768 pixels; a picture of another size than asked for is none.
TEST_F(WindowCommand, TheGalleryShowsAPageOverAGameInTheSizeAskedFor) {
    const std::string shot = (folder.Path() / "over.png").string();
    const auto over = [&](const std::vector<std::string>& size) {
        std::vector<std::string> arguments = {
            "gallery", "--over", "demo:gg-glimmer", "--page", "2", "--screenshot", shot};
        arguments.insert(arguments.end(), size.begin(), size.end());
        return Run(arguments);
    };
    const PROGRAM_RESULT result = over({"--density", "0.5"});
    ASSERT_EQ(result.exitCode, 0) << result.error;
    const std::vector<uint8_t> png = folder.Read("over.png");
    ASSERT_GT(png.size(), 24u);
    const std::vector<uint8_t> size(png.begin() + 16, png.begin() + 24);
    EXPECT_EQ(size, (std::vector<uint8_t>{0, 0, 0x02, 0x80, 0, 0, 0x01, 0x68})); // 640 by 360
    const PROGRAM_RESULT refused = over({"--size", "8192", "8000"});
    EXPECT_NE(refused.exitCode, 0);
    EXPECT_THAT(refused.error, HasSubstr("no window of 8192 by 8000 pixels"));
}

TEST_F(WindowCommand, PlaysForTheGivenFramesAndTakesScreenshots) {
    const std::string shot = (folder.Path() / "shot.png").string();
    const std::string last = (folder.Path() / "last.png").string();
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30", "--screenshot",
                                       "10=" + shot, "--screenshot", "last=" + last});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_GT(std::filesystem::file_size(shot), 1000u);
    EXPECT_GT(std::filesystem::file_size(last), 1000u);
}

TEST_F(WindowCommand, WithoutADisplayRunsOffTheScreenAndSaysSo) {
    const Environment driver("SDL_VIDEODRIVER", nullptr);
    const Environment display("DISPLAY", nullptr);
    const Environment wayland("WAYLAND_DISPLAY", nullptr);
    const PROGRAM_RESULT result = Run({});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.error, HasSubstr("no display"));
    EXPECT_THAT(result.error, HasSubstr("demo:gg-glimmer")) << "what else there is";
    const auto picture = folder.Path() / "screenshots" / "without-a-display.png";
    EXPECT_THAT(result.error, HasSubstr(picture.string()));
    EXPECT_GT(std::filesystem::file_size(picture), 1000u);
}

TEST_F(WindowCommand, ARunOffTheScreenLeavesTheSavesAlone) {
    // A game that counts in its battery RAM forever.
    MdProgram program;
    program.Text(0x1B0, "RA").Bytes(0x1B2, {0xF8, 0x20});
    program.PutLong(0x1B4, 0x200001).PutLong(0x1B8, 0x20FFFF);
    program.Words({0x5239}).Long(0x200001); // addq.b #1
    program.Words({0x5239}).Long(0x200003);
    program.Words({0x60F2}); // bra to the first
    const std::string game = folder.Write("counter.md", program.Image()).string();
    ASSERT_EQ(Run({"play", game, "--frames", "30"}).exitCode, 0);
    const auto before = FilesBelow(folder, "megadrive");
    const auto resume = FilesBelow(folder, "resume");
    ASSERT_EQ(before.size(), 1u) << "no autosave";
    ASSERT_TRUE(before.begin()->first.ends_with(".sav"));
    ASSERT_EQ(resume.size(), 1u);
    ASSERT_TRUE(resume.begin()->first.starts_with("resume/1/window-"));

    const Environment driver("SDL_VIDEODRIVER", nullptr);
    const Environment display("DISPLAY", nullptr);
    const Environment wayland("WAYLAND_DISPLAY", nullptr);
    const PROGRAM_RESULT result = Run({"play", game, "--frames", "40"});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.error, HasSubstr("no display"));
    EXPECT_TRUE(FilesBelow(folder, "megadrive") == before);
    EXPECT_TRUE(FilesBelow(folder, "resume") == resume);
}

TEST_F(WindowCommand, AMasterSystemGameFindsItsBatteryRamAgain) {
    // Adds one to the first byte of the cartridge's RAM, once.
    std::vector<uint8_t> image(0x8000);
    const uint8_t code[] = {0x3E, 0x08, 0x32, 0xFC, 0xFF, 0x21, 0x00, 0x80, 0x34, 0x18, 0xFE};
    std::ranges::copy(code, image.begin());
    const std::string game = folder.Write("counter.sms", image).string();
    for (const int runs : {1, 2}) {
        // Neither a saved state nor a resume file carries it over.
        std::filesystem::remove_all(folder.Path() / "resume");
        ASSERT_EQ(Run({"play", game, "--frames", "30"}).exitCode, 0);
        const auto files = FilesBelow(folder, "sms");
        const auto save = std::ranges::find_if(files, [](const auto& file) {
            return file.first.ends_with(".sav") && !file.first.ends_with(".before.sav");
        });
        ASSERT_NE(save, files.end());
        ASSERT_EQ(save->second.size(), 0x2000u);
        EXPECT_EQ(save->second[0], runs);
    }
}

TEST_F(WindowCommand, AGameThatEndsEndsTheOffScreenRun) {
    const PROGRAM_RESULT result = Run({"play", EndingGame(), "--frames", "300"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("address error at 0x000201"));
}

// The run ends with its game, so nobody can have read why.
TEST_F(WindowCommand, AFaultOfARunThatWasOverAtOnceIsToldAtTheNextStart) {
    ASSERT_EQ(Run({"play", EndingGame(), "--frames", "300"}).exitCode, 1);
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "unread.txt"));
    const PROGRAM_RESULT next = Run({"play", "demo:gg-glimmer", "--frames", "5"});
    EXPECT_EQ(next.exitCode, 0);
    EXPECT_THAT(next.error, HasSubstr("Last time: "));
    EXPECT_THAT(next.error, HasSubstr("address error at 0x000201"));
}

TEST_F(WindowCommand, ScreenshotsOfFramesThatNeverCameAreNamed) {
    const std::string shot = (folder.Path() / "late.png").string();
    const std::string last = (folder.Path() / "last.png").string();
    const PROGRAM_RESULT result = Run({"play", EndingGame(), "--frames", "300", "--screenshot",
                                       "200=" + shot, "--screenshot", "last=" + last});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr(shot + ": not written, for frame 200 was never shown"));
    EXPECT_FALSE(std::filesystem::exists(shot));
    EXPECT_THAT(result.error, Not(HasSubstr(last))) << "there is always a last picture";
    EXPECT_GT(std::filesystem::file_size(last), 500u);
}

TEST_F(WindowCommand, ADriverThatIsNotThereIsAnError) {
    const Environment driver("SDL_VIDEODRIVER", "nonesuch");
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("no display"));
}

TEST_F(WindowCommand, TheDesktopProgramEndsWithZeroAlsoWithoutItsDriver) {
    const Environment driver("SDL_VIDEODRIVER", "nonesuch");
    const PROGRAM_RESULT result = Run({});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, HasSubstr("no display"));
}

TEST_F(WindowCommand, PlaysOnWithoutASoundDevice) {
    const Environment driver("SDL_AUDIODRIVER", "nonesuch");
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, HasSubstr("without sound"));
}

// Without its configuration ALSA's library would write a line when SDL's audio starts.
TEST_F(WindowCommand, SoundLibraryWithoutItsConfigurationAddsNoLine) {
    const Environment driver("SDL_AUDIODRIVER", "alsa");
    const Environment configuration("ALSA_CONFIG_PATH", "/nonexistent");
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, AllOf(StartsWith("ombrelune: no sound: "), EndsWith("\n")));
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
}

TEST_F(WindowCommand, OptionsForExactRunsNeedHeadless) {
    for (const char* option : {"--wav", "--frame-hashes", "--save-state", "--load-state"}) {
        const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", option, "file"});
        EXPECT_EQ(result.exitCode, 2) << option;
        EXPECT_THAT(result.error, HasSubstr("--headless"));
    }
}

TEST_F(WindowCommand, AFileThatIsNoGameIsAnError) {
    folder.Write("empty.sms", "");
    const PROGRAM_RESULT result = Run({"play", (folder.Path() / "empty.sms").string()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("empty.sms"));
}

// The window writes the module's video, and a recording that plays to the same without a window.
TEST_F(WindowCommand, RecordsInputsAndAVideo) {
    const Environment video("SDL_VIDEODRIVER", "offscreen");
    const Environment sound("SDL_AUDIODRIVER", "dummy");
    const std::string recording = (folder.Path() / "a.recording").string();
    const std::filesystem::path file = folder.Path() / "a.mkv";
    const PROGRAM_RESULT played = Run({"play", "demo:sms-luciole", "--frames", "90", "--record",
                                       recording, "--video", file.string()});
    ASSERT_EQ(played.exitCode, 0) << played.error;
    // A busy computer leaves pictures out, but not the first.
    EXPECT_GT(std::filesystem::file_size(file), 1'000u);
    const PROGRAM_RESULT replayed = Run({"play", "--headless", "--replay", recording});
    EXPECT_EQ(replayed.exitCode, 0) << replayed.error;
    EXPECT_THAT(replayed.output, HasSubstr("pictures and sound are those of the recording"));
    const PROGRAM_RESULT failed = Run({"play", "demo:sms-luciole", "--frames", "10", "--video",
                                       (folder.Path() / "a.avi").string()});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_THAT(failed.error, HasSubstr("a.avi: a video's name ends in .mkv or .mp4"));
}
