// Runs a program as a child, as a user's shell would, and gathers what it says.
#pragma once

#include <string>
#include <vector>

struct PROGRAM_RESULT {
    int exitCode = -1; // -1 when it was ended by a signal
    std::string output;
    std::string error;
};

[[nodiscard]] PROGRAM_RESULT RunProgram(const std::string& program,
                                        const std::vector<std::string>& arguments);
