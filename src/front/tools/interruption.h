// Ctrl-C, for commands that must not end in the middle of a file.
#pragma once

#include <atomic>

// While one exists, SIGINT and SIGTERM are only noted, and the command ends at its next chance. A wait for a
// file that never comes, such as a pipe that nobody writes to, ends with an error. A program that was started to
// ignore SIGINT goes on ignoring it. Main thread; one at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    [[nodiscard]] bool Requested() const;
    // The same as a flag for other threads.
    [[nodiscard]] const std::atomic<bool>& Flag() const;
};
