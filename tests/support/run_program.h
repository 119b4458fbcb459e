// Runs a program as a child, as a shell would, and collects its output. One that hangs is killed after
// a time, and the last line of `error` says so.
#pragma once

#include <string>
#include <vector>

struct PROGRAM_RESULT {
    int exitCode = -1; // -1 if it was killed by a signal
    std::string output;
    std::string error;
};

[[nodiscard]] PROGRAM_RESULT RunProgram(const std::string& program,
                                        const std::vector<std::string>& arguments,
                                        unsigned longestSeconds = 240);
