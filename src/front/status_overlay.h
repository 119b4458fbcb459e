// StatusOverlay: the lines of text over the window's contents: two status lines at the top, notices at
// the bottom, of which only the newest is shown, in one line. The first status line is the frame rate, the second the statistics of the session; one key shows both, as
// nothing else would show the first.
//
// Units: positions are those of a screen of 1280 by 720, scaled to the window's height.
// Thread: main, with the OpenGL context current.
#pragma once

#include "display/overlay_text.h"
#include "front/screen.h"

#include <memory>
#include <string>
#include <vector>

class StatusOverlay {
public:
    // False if the driver has no memory for the letters; nothing is drawn then.
    [[nodiscard]] bool Start();
    void End();

    // Reads the current notices. True if the text has changed. The status lines are shown only with
    // `statistics`.
    [[nodiscard]] bool Update(const DRAW_TARGET& target, bool statistics,
                              const std::string& frameRate, int64_t now);

    // Call in Ortho2D, after drawing the screen below it.
    void Draw(const DRAW_TARGET& target) const;

private:
    std::unique_ptr<OverlayText> text;
    std::vector<std::string> statusLines;
    std::string notice;
};
