// What all shells offer alike: the parts of which `completion_*.cpp` makes its scripts.
#pragma once

#include "front/tools/command_tree.h"

#include <string>
#include <string_view>
#include <vector>

// A command by its path: "" is the program itself, "database make" a command of a command.
struct COMMAND_AT {
    std::string path;
    const COMMAND_TREE* command;
};
// Parents before their commands. The records point into the tree.
[[nodiscard]] std::vector<COMMAND_AT> AllCommands(const COMMAND_TREE& program);

// The endings of files that may be games, without their dots.
[[nodiscard]] std::vector<std::string> GameExtensions();

// Our own games, without "demo:".
[[nodiscard]] std::vector<std::string> DemoNames();

[[nodiscard]] std::string Joined(const std::vector<std::string>& words, std::string_view between);

// In single quotes, for bash and zsh.
[[nodiscard]] std::string ShellQuoted(std::string_view text);
