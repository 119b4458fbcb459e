// What the host does to a machine's picture: checks it, draws the speed glyph over it, turns it.
#pragma once

#include "machine/emu_system.h"

#include <cstddef>
#include <cstdint>
#include <vector>

struct EMU_THREAD;

inline constexpr uint32_t kStaticWidth = 256; // the picture of television static
inline constexpr uint32_t kStaticHeight = 192;

// Pixels that every picture buffer of this session holds: the machine's largest picture, and no less
// than the static needs.
[[nodiscard]] size_t EmuPicturePixels(const EMU_THREAD& session);

// Cuts a picture that claims more pixels than its buffer has down to whole rows, and the active
// window down to the picture, so that nobody behind the machine reads past either.
void EmuClampPicture(EMU_VIDEO_FRAME& video, size_t capacityPixels);

enum class SpeedGlyph { kForward, kBack };

// Draws two chevrons in the middle of the picture: forward points right, back points left. A picture
// whose half width or half height is 25 pixels or less gets none; what lies beyond its edge is cut.
void EmuDrawSpeedGlyph(SpeedGlyph direction, EMU_VIDEO_FRAME& video);

// Turns the picture by 90 degrees clockwise in its buffer if it is marked `rotated`, and clears the
// mark, so that a picture that is shown again is not turned twice. `scratch` is kept between frames.
void EmuRotateFrame(EMU_VIDEO_FRAME& video, std::vector<uint32_t>& scratch);

// Copies pixels, sizes, aspects and the `rotated` mark from one buffer to another. Both hold
// EmuPicturePixels.
void EmuCopyPicture(const EMU_VIDEO_FRAME& from, EMU_VIDEO_FRAME& to);

// Copies a picture that was finished before, so that it is shown once more. Both buffers hold
// EmuPicturePixels; nothing happens when there was none yet or when it is the same buffer.
void EmuRepeatPicture(const EMU_VIDEO_FRAME& before, EMU_VIDEO_FRAME& video);
