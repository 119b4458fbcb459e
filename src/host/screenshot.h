// Screenshots: files in `.\screenshots\`, named by the game and the time.
//
// A PNG holds the game's name, its machine and the time as texts; `app_screenshotbmp` chooses a 24-bit BMP instead.
// With `app_screenshotwindow` the window takes the picture, with everything in it, if there is one.
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

enum class ScreenshotKind : uint8_t { kPng, kBmp };

// What a file tells of its picture.
struct SCREENSHOT_FACTS {
    std::string gameName; // UTF-8
    std::string machine;  // for people
    std::tm time{};       // local
};

// The picture, or its active window alone, as a PNG file with the texts Title, Source, Creation Time and Software.
// Empty for a picture without pixels.
[[nodiscard]] std::vector<uint8_t>
EncodeScreenshotPng(const EMU_VIDEO_FRAME& video, bool wholePicture, const SCREENSHOT_FACTS& facts);

// File name for a screenshot taken at this local time; `attempt` 0 has no counter.
[[nodiscard]] std::string ScreenshotName(const std::string& gameName, const std::tm& time,
                                         uint32_t attempt, ScreenshotKind kind);

[[nodiscard]] SCREENSHOT_FACTS ScreenshotFacts(const EMU_THREAD& session);

// Encodes and writes a picture under a new name, as the settings say. Any thread. A failure is reported.
bool WriteScreenshotFile(const EMU_VIDEO_FRAME& video, bool wholePicture,
                         const SCREENSHOT_FACTS& facts);

// Who takes a picture of the window, on any session's thread; null: nobody.
using WindowShotSink = void (*)(const SCREENSHOT_FACTS& facts);
void HostSetWindowShotSink(WindowShotSink sink);

// Writes a screenshot when "Take ScreenShot" has just been pressed. One process-wide flag remembers the
// key's last state; only the active session, the one that gets input, uses it. Session thread. A
// failure is reported and changes nothing.
void EmuTakeScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);

// Encodes and writes a screenshot, without looking at the hotkey.
bool WriteScreenshot(const EMU_THREAD& session, const EMU_VIDEO_FRAME& video);
