// The picture of one session over the whole screen, with black beside it or above and below it.
#pragma once

#include "display/session_picture.h"
#include "display/texture.h"
#include "machine/emu_system.h"

#include <cstdint>

// Where a picture goes and which part of its texture goes there.
struct SCREEN_QUAD {
    uint32_t left; // of the screen, in its pixels from the top left
    uint32_t top;
    uint32_t width; // at least 1, unless there is nothing to show: then all fields are 0
    uint32_t height;
    float textureLeft; // 0 to 1 over the allocated texture
    float textureTop;
    float textureRight;
    float textureBottom;
};

struct FULL_SCREEN_VIEW {
    bool crop;   // the active window alone
    bool linear; // between texels; otherwise the nearest one
};

// The picture, or its active window, as high as the screen, as wide as its aspect then makes it; and
// when that is too wide, as wide as the screen and lower. In the middle, the odd pixel right or
// below. The texture is cut by half a texel on each side, so that no filter reaches over the edge of what
// is shown; the outermost texels are therefore half as wide on the screen as the others. A picture with an
// aspect that is none (0, below, not a number, infinite) gets square pixels, an active window without
// size means the whole, and one that leaves the picture is cut.
[[nodiscard]] SCREEN_QUAD PlaceFullScreen(const EMU_VIDEO_FRAME& picture,
                                          const TEXTURE_RECORD& texture, bool crop,
                                          uint32_t screenWidth, uint32_t screenHeight);

// Clears the whole back buffer to black, leaves it in Ortho2D and draws the session's newest picture;
// nothing but black before the first one.
void DrawFullScreen(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                    uint32_t screenWidth, uint32_t screenHeight);
