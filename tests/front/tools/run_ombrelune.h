// The built program with a home folder of the test's own.
#pragma once

#include "support/run_program.h"
#include "support/temporary_folder.h"

#include <string>
#include <vector>

inline const char* OmbrelunePath() {
    return OMBRELUNE_BUILD_FOLDER "/ombrelune";
}

inline std::vector<std::string> WithHome(std::vector<std::string> arguments,
                                         const TemporaryFolder& home) {
    arguments.insert(arguments.begin(), {"--home", home.Path().string()});
    return arguments;
}

inline PROGRAM_RESULT Ombrelune(std::vector<std::string> arguments, const TemporaryFolder& home) {
    return RunProgram(OmbrelunePath(), WithHome(std::move(arguments), home));
}
