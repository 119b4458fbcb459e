// The host's work on a machine's picture: checks it, draws the speed glyph over it, rotates it.
#pragma once

#include "machine/emu_system.h"

#include <cstddef>
#include <cstdint>
#include <vector>

struct EMU_THREAD;

inline constexpr uint32_t kStaticWidth = 256; // the picture of television static
inline constexpr uint32_t kStaticHeight = 192;

// Pixels in every picture buffer of this session: the machine's largest picture, at least that of the
// static.
[[nodiscard]] size_t EmuPicturePixels(const EMU_THREAD& session);

// Cuts a picture that claims more pixels than its buffer has to whole rows, and the active window to
// the picture, so that no later stage reads out of bounds.
void EmuClampPicture(EMU_VIDEO_FRAME& video, size_t capacityPixels);

enum class SpeedGlyph { kForward, kBack };

// Draws two chevrons in the middle of the picture: forward points right, back points left. A picture
// whose half width or half height is 25 pixels or less gets none; chevrons are clipped at its edges.
void EmuDrawSpeedGlyph(SpeedGlyph direction, EMU_VIDEO_FRAME& video);

// Puts a bar between the screens that are side by side in a picture, which becomes wider by it; no pixel of a game is
// lost. Nothing happens if the buffer of `capacityPixels` is too small, or with one screen.
void EmuDivideScreens(uint32_t screens, EMU_VIDEO_FRAME& video, size_t capacityPixels);

// Rotates the picture by 90 degrees clockwise in its buffer if it is marked `rotated`, and clears the
// mark, so that a picture that is shown again is not rotated twice. `scratch` is kept between frames.
void EmuRotateFrame(EMU_VIDEO_FRAME& video, std::vector<uint32_t>& scratch);

// Copies pixels, sizes, aspects and the `rotated` mark from one buffer to another. Both hold
// EmuPicturePixels.
void EmuCopyPicture(const EMU_VIDEO_FRAME& from, EMU_VIDEO_FRAME& to);

// Copies an earlier finished picture, to show it again. Both buffers hold EmuPicturePixels; does
// nothing if there was none yet or if it is the same buffer.
void EmuRepeatPicture(const EMU_VIDEO_FRAME& before, EMU_VIDEO_FRAME& video);
