// How the pictures of games are shown, on every screen; keys change it.
#pragma once

#include "display/picture_scaler.h"

struct GAME_VIEW {
    PictureScaler scaler = PictureScaler::kNone;
    bool linear = false;
    bool crop = true;        // the visible window of the picture, or the whole
    bool statistics = false; // two lines of text at the top

    bool operator==(const GAME_VIEW&) const = default;
};
