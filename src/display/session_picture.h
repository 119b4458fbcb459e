// SESSION_PICTURE: what the display keeps of one session's picture: the newest picture as a texture,
// its record in texels of that texture, and the light that it casts into the room.
//
// Units: `picture` counts in texels, that is in the machine's pixels times the scaler's factor.
// Colours of light run from 0.05 upwards; 1.05 is white.
// Owner: the main thread, from StartSessionPicture to EndSessionPicture with the context current.
// Order: StartSessionPicture; UploadPicture for every picture; then drawing code reads `texture` and
// `picture`.
#pragma once

#include "display/picture_scaler.h"
#include "display/texture.h"
#include "machine/emu_system.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

inline constexpr size_t kColourHistory = 5; // pictures

// A running mean of the pictures, so that a flickering picture does not make the room flicker.
struct COLOUR_HISTORY {
    std::array<std::array<float, kColourHistory>, 3> means{}; // red, green, blue; each 0 to 1
    size_t next = 0; // the oldest mean, to be replaced by the next picture's
    std::array<float, 3> light{0.05f, 0.05f, 0.05f}; // the mean of the means and 0.05
};

// Adds the mean of every fourth pixel in each direction, from the top left one, to the history.
void AddToColourHistory(COLOUR_HISTORY& history, const uint32_t* pixels, uint32_t width,
                        uint32_t height);

struct SESSION_PICTURE {
    TEXTURE_RECORD texture{};
    EMU_VIDEO_FRAME picture{}; // size and active window times the factor; `pixels` is null
    uint32_t factor = 1;       // texels a pixel each way, the scaler's
    COLOUR_HISTORY colours;
    size_t largestPixels = 0;      // of the machine's largest picture
    std::vector<uint32_t> scratch; // 16 times that, made when a scaler is first used
    bool inRoom = false;           // set by the drawing side: seen on a television, from a distance
    bool glows = false;            // set by the drawing side: the glow is wanted
    TEXTURE_RECORD glow{}; // the picture's light, blurred (picture_glow.h); only while it is wanted
};

// `largestPixels` is EmuPicturePixels of the session.
void StartSessionPicture(SESSION_PICTURE& session, size_t largestPixels);
void EndSessionPicture(SESSION_PICTURE& session);

// Scales a picture and makes it the session's. Skips the scaler if no texture can hold its result.
// False, with nothing changed, for a picture without pixels or with more than the largest; false,
// without a texture, if the driver has no memory for one.
bool UploadPicture(const EMU_VIDEO_FRAME& picture, SESSION_PICTURE& session, PictureScaler scaler);
