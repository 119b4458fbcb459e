// ScanWindow: how far the scan of a system's folder is, and what a conversion has done.
//
//   while files are listed    a bar, and the line "Loading..."
//   while they are converted  four counters and the log beside it
//   after a conversion        the log and the button "Finish", until the player presses it
// Thread: main.
#pragma once

#include "screens/progress_window.h"
#include "screens/screen_panel.h"

#include <functional>

class Catalogue;

class ScanWindow {
public:
    // `closed`: the window has gone, and with it the focus.
    explicit ScanWindow(std::function<void()> closed);

    // Once a round. Takes the catalogue's waiting log lines. True when a scan has just ended: the time to apply the
    // filters, which ends the scan's state.
    [[nodiscard]] bool Update(Catalogue& catalogue);

    // With the browser; a scan that goes on while it is hidden is seen again when it comes back.
    void SetActive(bool active);
    // Puts the focus on its button, or closes it, if it waits for the player; false if not.
    [[nodiscard]] bool TakeFocus();
    [[nodiscard]] bool TakeBack();

    [[nodiscard]] bool IsShown() const { return window.IsShown(); }
    [[nodiscard]] const CGhostTextBox* Text() const { return window.Text(); }
    [[nodiscard]] const CGhostTextBox* Counter(size_t index) const { return window.Counter(index); }
    [[nodiscard]] CGhostButton* Finish() const { return window.Button(); }
    [[nodiscard]] CGhostList* Log() const { return window.Log(); }
    [[nodiscard]] CGhostWindowEx* Bar() const { return window.Bar(); }

private:
    void Open();
    void Close();
    void BeginConversion();
    void ShowProgress(Catalogue& catalogue, bool converting);

    std::function<void()> closed;
    ProgressWindow window;
    bool converted = false; // this scan has converted something
    bool scanning = false;
    bool open = false;   // shown while the browser is
    bool active = false; // the browser is shown
    bool waits = false;  // for the button "Finish"
    ScreenSignals signals;
};
