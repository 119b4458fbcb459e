// The commands of the command line with their options.
#pragma once

#include <functional>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

struct COMMAND {
    CLI::App* app;            // knows whether it was chosen
    std::function<int()> run; // returns the exit code
};

// Declares every command. What the options are read into belongs to the commands.
[[nodiscard]] std::vector<COMMAND> AddCommands(CLI::App& app);
