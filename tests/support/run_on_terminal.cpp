#include "support/run_on_terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr unsigned kLongestSeconds = 240;
constexpr int kBetweenKeys = 50; // milliseconds
constexpr char kCtrlC = 3;

void RunChild(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    alarm(kLongestSeconds);     // survives exec and ends the program
    setenv("TERM", "xterm", 1); // NOLINT(concurrency-mt-unsafe): the child has one thread
    execv(program.c_str(), pointers.data());
    _exit(127);
}

enum class Heard : uint8_t { kText, kSilence, kEnd };

// kEnd once the program has closed the terminal.
Heard ReadSome(int terminal, std::string& screen) {
    pollfd wait{terminal, POLLIN, 0};
    if (poll(&wait, 1, kBetweenKeys) <= 0) {
        return Heard::kSilence;
    }
    std::array<char, 4096> piece{};
    const ssize_t count = read(terminal, piece.data(), piece.size());
    if (count > 0) {
        screen.append(piece.data(), static_cast<size_t>(count));
    }
    return count > 0 ? Heard::kText : Heard::kEnd;
}

} // namespace

TERMINAL_RESULT RunOnTerminal(const std::string& program, const std::vector<std::string>& arguments,
                              const std::function<bool(const std::string& screen)>& interrupts) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0) {
        throw std::runtime_error("forkpty failed");
    }
    if (child == 0) {
        RunChild(program, arguments);
    }
    TERMINAL_RESULT result;
    for (Heard heard{}; heard != Heard::kEnd; heard = ReadSome(terminal, result.screen)) {
        if (heard == Heard::kSilence && interrupts && interrupts(result.screen) &&
            write(terminal, &kCtrlC, 1) < 0) {
            break;
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    close(terminal);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}
