// `ombrelune` and `ombrelune play GAME` as a user runs them.
#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using testing::HasSubstr;

namespace {

// The variable is set, or gone with null, while this lives.
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

    TemporaryFolder folder;
};

} // namespace

TEST_F(WindowCommand, PlaysForSoManyFramesAndTakesScreenshots) {
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

TEST_F(WindowCommand, ADriverThatIsNotThereIsAnError) {
    const Environment driver("SDL_VIDEODRIVER", "nonesuch");
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("no display"));
}

TEST_F(WindowCommand, PlaysOnWithoutASoundDevice) {
    const Environment driver("SDL_AUDIODRIVER", "nonesuch");
    const PROGRAM_RESULT result = Run({"play", "demo:gg-glimmer", "--frames", "30"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, HasSubstr("without sound"));
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
