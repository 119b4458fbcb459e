// The manual page of the program, in the language of man(7).
#pragma once

#include "front/tools/command_tree.h"

#include <string>

struct PROGRAM_VERSION {
    std::string number;
    std::string date; // year-month-day
};

// The text for `ombrelune.1`.
[[nodiscard]] std::string ManualPage(const COMMAND_TREE& program, const PROGRAM_VERSION& version);
