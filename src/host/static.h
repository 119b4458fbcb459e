// Television static: what a session shows for its first 70 frames, before the machine starts.
#pragma once

#include "machine/emu_system.h"

struct EMU_THREAD;

inline constexpr uint32_t kStaticFrames = 70;

// One frame of noise in picture and sound; the last frame clears the session's showStatic. Under the
// session's lock.
void EmuStaticFrame(EMU_THREAD& session, EMU_VIDEO_FRAME& video, EMU_AUDIO_FRAME& audio);
