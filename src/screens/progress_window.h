// ProgressWindow: the window of long work, in the middle of the screen: a line of text, a bar, four counters, a log and a
// button. What it tells and when is its owner's.
//
// It begins small, with the line, the bar and the button; the counters and the log take more room.
// Thread: main. Units: those of the virtual screen.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

class CGhostButton;
class CGhostList;
class CGhostTextBox;
class CGhostWindowEx;

// How far the parts are from the upper edge, where two owners differ.
struct PROGRESS_LAYOUT {
    int32_t plainHeight; // of the small window
    int32_t bar;
    int32_t counters;
    int32_t log;
};

class ProgressWindow {
public:
    static constexpr size_t kCounters = 4;
    static constexpr int32_t kBarWidth = 400; // of a full bar
    using CounterTexts = std::array<const wchar_t*, kCounters>;

    ProgressWindow(const CounterTexts& texts, const PROGRESS_LAYOUT& places);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    // The small window, over all others.
    void Open(const std::wstring& line);
    void Show(); // as it is
    void Hide();
    [[nodiscard]] bool IsShown() const;

    void SetText(const std::wstring& line);
    void SetProgress(int32_t units); // 0 to kBarWidth
    void HideBar();
    void AddLine(const std::wstring& line); // to the log, shown or not
    void ClearLog();
    void ShowLog();
    void ShowCounters(std::span<const size_t, kCounters> values);
    void Grow(); // to the room that counters and log take

    [[nodiscard]] const CGhostTextBox* Text() const { return text; }
    [[nodiscard]] const CGhostTextBox* Counter(size_t index) const { return counters[index]; }
    [[nodiscard]] CGhostButton* Button() const { return button; }
    [[nodiscard]] CGhostList* Log() const { return log; }
    [[nodiscard]] CGhostWindowEx* Bar() const { return bar; }

private:
    void Layout(int32_t height);

    CounterTexts counterTexts;
    PROGRESS_LAYOUT layout;
    CGhostWindowEx* window;
    CGhostTextBox* text;
    CGhostWindowEx* barBack;
    CGhostWindowEx* bar;
    std::array<CGhostTextBox*, kCounters> counters{};
    CGhostList* log;
    CGhostButton* button;
};
