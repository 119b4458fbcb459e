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

// Writes a screenshot when "Take ScreenShot" has just been pressed. One process-wide flag remembers the
// key's last state; only the active session, the one that gets input, uses it. Session thread. A
// failure is reported and changes nothing.
void EmuTakeScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);

// Encodes and writes a screenshot, without looking at the hotkey.
bool WriteScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);
