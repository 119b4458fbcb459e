// Runs a program as a child on a terminal of its own, as a person at a keyboard would.
#pragma once

#include <functional>
#include <string>
#include <vector>

struct TERMINAL_RESULT {
    int exitCode = -1;  // -1 if it was killed by a signal
    std::string screen; // everything that it wrote, control sequences included
};

// When the program writes nothing for a moment and `interrupts` says so of what it has written, Ctrl-C is typed, again
// and again until the program ends. One that hangs is killed after a time.
[[nodiscard]] TERMINAL_RESULT
RunOnTerminal(const std::string& program, const std::vector<std::string>& arguments,
              const std::function<bool(const std::string& screen)>& interrupts = {});
