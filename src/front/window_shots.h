// WindowShots: screenshots of the window as it is shown, which the player asks for on a session's thread.
//
// The main thread reads the window; a helper encodes and writes the file, as that takes longer than a frame.
// Thread: main, except Ask.
#pragma once

#include "host/screenshot.h"

#include <cstdint>
#include <thread>
#include <vector>

class WindowShots {
public:
    WindowShots() = default;
    ~WindowShots() { Wait(); }
    WindowShots(const WindowShots&) = delete;
    WindowShots& operator=(const WindowShots&) = delete;

    // The next round takes one. The last asker's game is named. Any thread; the host's sink.
    static void Ask(const SCREENSHOT_FACTS& facts);
    [[nodiscard]] static bool Wanted();

    // Writes the window's pixels, 0xFFRRGGBB, top row first, for who has asked.
    void Take(std::vector<uint32_t> pixels, uint32_t width, uint32_t height);
    // Until the file is written.
    void Wait();

private:
    std::thread writer;
};
