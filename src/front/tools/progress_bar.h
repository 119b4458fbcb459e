// A line on the terminal that says how far a command is.
//
// It is drawn on standard error, and only if that is a terminal; into a file or a pipe nothing of it is written.
// While it shows, the command writes its own lines through Print and Complain, so that they do not mix.
// One thread at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// "  3/12 [=====               ] name". `total` 0: as many as are not known yet, and no bar.
[[nodiscard]] std::string ProgressText(size_t done, size_t total, std::string_view name);

class ProgressBar {
public:
    ProgressBar();
    ~ProgressBar(); // removes the line and shows the cursor again
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Draws the line. Every time, as a file that takes long may follow at once on a short one.
    void Show(size_t done, size_t total, std::string_view name);
    // One line on standard output, and one on standard error.
    void Print(const std::string& line);
    void Complain(const std::string& message);

private:
    void Clear();

    bool terminal;
    bool cursorHidden = false;
    bool drawn = false;
};
