// FramePacer: decides when the window is drawn again, and counts how often it is.
//
// With vertical sync the display sets the pace: every round draws and waits in the swap. Without it a
// round draws only if there is something new, and sleeps a little otherwise.
//
// Thread: main.
// Units: microseconds of the host's clock.
#pragma once

#include <cstdint>
#include <string>

class FramePacer {
public:
    // `followDisplay`: the swap is expected to wait for the display.
    void Start(bool followDisplay, int64_t now);

    // Something has changed since the last swap.
    void NoteNews() { news = true; }
    [[nodiscard]] bool WantsDrawing(bool visible) const {
        return visible && (followDisplay || news);
    }

    // After a swap. If swaps keep returning at once, they do not follow the display after all.
    void CountSwap(int64_t now);
    // Instead of a swap.
    static void Wait(bool visible);

    void EndRound(int64_t now);

    [[nodiscard]] float FrameTimeSeconds() const { return frameTimeSeconds; }
    // "60 frames/s", of the last whole second; empty in the first.
    [[nodiscard]] const std::string& RateText() const { return rateText; }

private:
    std::string rateText;
    int64_t roundStart = 0;
    int64_t rateStart = 0; // of the second being counted
    uint32_t swapsThisSecond = 0;
    uint32_t hastySwaps = 0; // in a row, too quick to follow a display
    float frameTimeSeconds = 0.0f;
    bool followDisplay = false;
    bool news = true;
};
