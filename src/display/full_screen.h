// Shows the picture of one session on the whole screen, with black bars where it doesn't reach.
#pragma once

#include "display/session_picture.h"
#include "display/texture.h"
#include "machine/emu_system.h"

#include <cstdint>

// A rectangle on the screen and the part of the texture shown in it.
struct SCREEN_QUAD {
    uint32_t left; // of the screen, in its pixels from the top left
    uint32_t top;
    uint32_t width; // at least 1, or all fields are 0 if there is nothing to show
    uint32_t height;
    float textureLeft; // 0 to 1 over the allocated texture
    float textureTop;
    float textureRight;
    float textureBottom;
};

struct FULL_SCREEN_VIEW {
    bool crop;   // the active window alone
    bool linear; // linear filtering, else the nearest texel
};

// Places the picture, or its active window: as high as the screen and as wide as its aspect requires;
// if that is too wide, as wide as the screen and lower. Centred, an odd pixel goes right or below. The
// texture is cut by half a texel on each side, so that no filter reaches over the edge of what is
// shown; the outermost texels are therefore half as wide on the screen as the others. An invalid aspect
// (0, negative, NaN, infinite) means square pixels, an empty active window means the whole picture, and
// one that leaves the picture is clipped.
[[nodiscard]] SCREEN_QUAD PlaceFullScreen(const EMU_VIDEO_FRAME& picture,
                                          const TEXTURE_RECORD& texture, bool crop,
                                          uint32_t screenWidth, uint32_t screenHeight);

// Clears the whole back buffer to black, leaves it in Ortho2D and draws the session's newest picture,
// if there is one.
void DrawFullScreen(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                    uint32_t screenWidth, uint32_t screenHeight);
