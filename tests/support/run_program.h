// Runs a program as a child, as a user's shell would, and gathers what it says. One that hangs is ended
// after a time, and the last line of `error` says so.
#pragma once

#include <string>
#include <vector>

struct PROGRAM_RESULT {
    int exitCode = -1; // -1 when it was ended by a signal
    std::string output;
    std::string error;
};

[[nodiscard]] PROGRAM_RESULT RunProgram(const std::string& program,
                                        const std::vector<std::string>& arguments,
                                        unsigned longestSeconds = 240);
