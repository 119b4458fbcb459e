// The host's callbacks in the windowed program: those of host_data.h, and for every session a sound
// channel, the mouse as its light gun, numbered pictures and a processor of its own.
//
// Threads: InstallSessionCallbacks on the main thread, before any session starts. The callbacks run on the
// threads that host/session.h names.
#pragma once

#include <cstdint>

void InstallSessionCallbacks();

// Frames that machines have presented so far, television static not counted. Any thread. The main thread
// finds a frame's number in Televisions::FrameShown.
[[nodiscard]] uint32_t FramesPresented();
