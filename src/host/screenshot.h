// Screenshots: a 24-bit BMP in `.\screenshots\`, named by the game and the time.
#pragma once

#include "machine/emu_system.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

struct EMU_THREAD;

// The picture, or its active window alone, as a BMP file: 54 bytes of header, then rows from the
// bottom up, each padded to four bytes. Empty for a picture without pixels.
[[nodiscard]] std::vector<uint8_t> EncodeBmp(const EMU_VIDEO_FRAME& video, bool wholePicture);

// File name for a screenshot taken at this local time; `attempt` 0 has no counter.
[[nodiscard]] std::string ScreenshotName(const std::string& gameName, const std::tm& time,
                                         uint32_t attempt);

// Writes a screenshot when "Take ScreenShot" has just gone down. One flag for the whole program
// remembers that it was down; only the active session, which alone gets input, touches it. Session
// thread. A failure is reported and changes nothing.
void EmuTakeScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);

// The part behind the hotkey: encodes and writes, whatever the key does.
bool WriteScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);
