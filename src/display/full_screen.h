// Where the picture of one session lies on the screen, and how it is drawn there without shaders.
#pragma once

#include "display/session_picture.h"
#include "display/texture.h"
#include "machine/emu_system.h"

#include <cstdint>

// The shape that a picture is shown in. The values are those of the display setting.
enum class PictureAspect : uint8_t {
    kMachine = 0,     // as the machine's picture says
    kFourByThree = 1, // as most televisions; each of several pictures side by side is of that shape
    kSquareDots = 2,
};

// Dots of the machine that are cut off at each edge of the active window.
struct PICTURE_CUT {
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t right = 0;
    uint32_t bottom = 0;

    bool operator==(const PICTURE_CUT&) const = default;
};

struct FULL_SCREEN_VIEW {
    bool crop = false;           // the active window alone
    bool linear = false;         // linear filtering, else hard pixels
    bool wholeMultiples = false; // as many screen pixels high for every row of dots
    PictureAspect aspect = PictureAspect::kMachine;
    PICTURE_CUT cut{};        // of the active window; nothing of the whole picture
    float crtStrength = 0.0f; // 0 to 1 (picture_painter.h)

    bool operator==(const FULL_SCREEN_VIEW&) const = default;
};

// A rectangle on the screen and the part of the texture shown in it.
struct SCREEN_QUAD {
    uint32_t left; // of the screen, in its pixels from the top left
    uint32_t top;
    uint32_t width; // at least 1, or all fields are 0 if there is nothing to show
    uint32_t height;
    uint32_t areaX; // of the texture, in texels
    uint32_t areaY;
    uint32_t areaWidth;
    uint32_t areaHeight;
    float textureLeft; // 0 to 1 over the allocated texture
    float textureTop;
    float textureRight;
    float textureBottom;
};

// Places the picture, or its active window without what is cut off: as high as the screen and as wide as its
// aspect requires; if that is too wide, as wide as the screen and lower. In whole multiples, the highest such
// place whose rows are all equally high, if there is one. Centred, an odd pixel goes right or below.
//
// An invalid aspect (0, negative, NaN, infinite) means square pixels, an empty active window means the whole
// picture, and one that leaves the picture is clipped. At least half of the active window stays in each direction.
// The texture coordinates are half a texel inside the area on each side, so that no filter reaches over its edge.
[[nodiscard]] SCREEN_QUAD PlaceFullScreen(const SESSION_PICTURE& session,
                                          const FULL_SCREEN_VIEW& view, uint32_t screenWidth,
                                          uint32_t screenHeight);

// Clears the whole back buffer to black, leaves it in Ortho2D and draws the session's newest picture,
// if there is one, with the nearest texel or with linear filtering.
void DrawFullScreen(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                    uint32_t screenWidth, uint32_t screenHeight);

// The rectangle with its texture coordinates, in what is enabled and bound; in Ortho2D.
void DrawQuad(const SCREEN_QUAD& quad);
