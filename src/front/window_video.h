// The video that is made of the game in the window: begun and ended by the key of "Record Video", or for the whole run
// by the command line.
//
// One video at a time. It ends with the session whose pictures it has. Pictures are those that the player sees, also
// while he rewinds; television static is not in it.
//
// Threads: WindowVideoFrame and WindowVideoSound on a session's thread; the others any, with no lock held unless said.
#pragma once

#include "machine/emu_system.h"

#include <string>

struct EMU_THREAD;

// The next frame of a game begins this video.
void WindowVideoWanted(const std::string& path, bool lossless);

// A frame of a machine, before it is presented, and the sound that was submitted for it. Reads the key.
void WindowVideoSound(const EMU_AUDIO_FRAME& audio);
void WindowVideoFrame(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);

// The session ends, and its video with it. Returns at once; any of the host's locks may be held.
void WindowVideoSessionEnds(const EMU_THREAD& session);

// Ends the video that is made and waits until all are whole. False if one of the program's could not be written.
bool WindowVideoFinish();
