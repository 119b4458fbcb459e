// The program as `cmake --install` puts it into a folder.
#pragma once

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

// Installed for /usr, but below a folder of the test's own, as packages are made.
class Installed : public testing::Test {
protected:
    void SetUp() override {
        const PROGRAM_RESULT result =
            RunProgram("/usr/bin/env", {"DESTDIR=" + folder.Path().string(), "cmake", "--install",
                                        OMBRELUNE_BUILD_FOLDER, "--prefix", "/usr"});
        ASSERT_EQ(result.exitCode, 0) << result.error;
    }

    [[nodiscard]] std::filesystem::path Share(const std::string& name) const {
        return folder.Path() / "usr/share" / name;
    }
    [[nodiscard]] std::string Text(const std::string& name) const {
        const auto bytes = folder.Read("usr/share/" + name);
        return {bytes.begin(), bytes.end()};
    }
    [[nodiscard]] PROGRAM_RESULT Ombrelune(std::vector<std::string> arguments) const {
        const std::filesystem::path program = folder.Path() / "usr/bin/ombrelune";
        arguments.insert(arguments.begin(), {"--home", (folder.Path() / "home").string()});
        return RunProgram(program.string(), arguments);
    }

    TemporaryFolder folder;
};

// A program of the system; its name is looked up as a shell does.
inline PROGRAM_RESULT System(std::vector<std::string> command) {
    return RunProgram("/usr/bin/env", command);
}
