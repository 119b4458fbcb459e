// How the picture of a game is shown over the whole window, by the keys and by the settings.
//
// The settings: `video_integer_window` and `video_integer_full`, whether the picture is shown in whole multiples in a
// window and on the whole display; `video_aspect`, a PictureAspect; `video_crt`, the CRT filter's strength from 0 to
// 1; and for each machine, by its folder's name, `sms_overscan_left`, `_top`, `_right` and `_bottom`, dots that are
// cut off.
#pragma once

#include "display/full_screen.h"
#include "front/game_view.h"

#include <cstdint>

// `system`: the machine's number.
[[nodiscard]] FULL_SCREEN_VIEW FullScreenViewOf(const GAME_VIEW& view, uint32_t system);

// The CRT filter's strength, 0 to 1. The filter draws the machine's own dots, so no scaler is used with it.
[[nodiscard]] float CrtStrength();
