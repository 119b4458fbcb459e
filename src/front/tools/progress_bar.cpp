#include "front/tools/progress_bar.h"

#include "front/terminal.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr size_t kBarWidth = 20;

// Of a terminal's control sequences. Without wrapping, a line that is too long is cut at the edge.
constexpr const char* kToStartAndErase = "\r\x1B[K";
constexpr const char* kNoWrap = "\x1B[?7l";
constexpr const char* kWrap = "\x1B[?7h";
constexpr const char* kHideCursor = "\x1B[?25l";
constexpr const char* kShowCursor = "\x1B[?25h";

void Draw(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

} // namespace

std::string ProgressText(size_t done, size_t total, std::string_view name) {
    std::string text = std::to_string(done);
    if (total > 0) {
        const std::string all = std::to_string(total);
        text.insert(0, all.size() - std::min(all.size(), text.size()), ' ');
        const size_t filled = std::min(done, total) * kBarWidth / total;
        text += "/" + all + " [" + std::string(filled, '=') + std::string(kBarWidth - filled, ' ') +
                "]";
    }
    return text + " " + Printable(name);
}

ProgressBar::ProgressBar()
    : terminal(ErrorIsTerminal()) {}

ProgressBar::~ProgressBar() {
    Clear();
    if (cursorHidden) {
        Draw(kShowCursor);
    }
}

void ProgressBar::Show(size_t done, size_t total, std::string_view name) {
    if (!terminal) {
        return;
    }
    std::string text = cursorHidden ? "" : kHideCursor;
    text += kToStartAndErase;
    text += kNoWrap + ProgressText(done, total, name) + kWrap;
    Draw(text);
    cursorHidden = true;
    drawn = true;
}

void ProgressBar::Print(const std::string& line) {
    Clear();
    std::printf("%s\n", Printable(line).c_str());
    if (terminal) {
        std::fflush(stdout); // before the next drawing on the other stream
    }
}

void ProgressBar::Complain(const std::string& message) {
    Clear();
    ::Complain(message);
}

void ProgressBar::Clear() {
    if (drawn) {
        Draw(kToStartAndErase);
        drawn = false;
    }
}
