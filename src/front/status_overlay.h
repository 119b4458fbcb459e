// StatusOverlay: the lines of text over whatever the window shows. At the top the two status lines, at
// the foot what the player is told.
//
// Units: places are those of a screen of 1280 by 720, scaled to the window's height.
// Thread: main, with the OpenGL context current.
#pragma once

#include "display/overlay_text.h"
#include "front/screen.h"

#include <memory>
#include <string>
#include <vector>

class StatusOverlay {
public:
    // False when the driver has no memory for the letters; nothing is drawn then.
    [[nodiscard]] bool Start();
    void End();

    // Takes the notices of the moment. True when they look different from now on. The status lines are
    // shown and kept up to date with `statistics` only.
    [[nodiscard]] bool Update(const DRAW_TARGET& target, bool statistics,
                              const std::string& frameRate, int64_t now);

    // In Ortho2D, after the screen below it.
    void Draw(const DRAW_TARGET& target) const;

private:
    std::unique_ptr<OverlayText> text;
    std::vector<std::string> statusLines;
    std::vector<std::string> noticeLines;
};
