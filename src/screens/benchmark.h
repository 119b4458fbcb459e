// CGUIBenchmark: measures how fast this computer runs one Master System, for five seconds in which the interface
// stands still. Before that it shows a picture that says so.
#pragma once

#include "screens/screen_panel.h"

class CGhostButton;
class CGhostListView;
class CGhostTextBox;
class ScreenHost;

class CGUIBenchmark final : public CGUIPanel {
public:
    CGUIBenchmark(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program);

    void Layout(int32_t width, int32_t height) override;
    void Update() override; // in which a run that was asked for takes place
    void TakeFocus() override;

    // As a click on the button does. Nothing while a run is under way.
    void Start();

    [[nodiscard]] CGhostListView* Results() const { return results; }
    [[nodiscard]] CGhostButton* StartButton() const { return start; }
    [[nodiscard]] const CGhostTextBox* Notice() const { return notice; }
    [[nodiscard]] bool Running() const { return running; }
    [[nodiscard]] uint32_t Frames() const { return frames; }

private:
    void Run();

    ScreenHost& host;
    CGhostTextBox* title;
    CGhostTextBox* notice;
    CGhostListView* results;
    CGhostButton* start;
    bool running = false;
    bool announced =
        false; // the tick has painted the notice; it is seen when it has been composited
    bool finished = false; // the run is over, and `running` until the next round
    uint32_t frames = 0;
};
