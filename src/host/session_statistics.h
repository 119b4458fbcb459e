// A session's counters, and the line that shows them.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

struct SESSION_STATISTICS {
    // Frames overwritten before the display took them. The session's thread counts, under the frame mutex.
    std::atomic<uint32_t> framesMissed{0};
    // How often the write position had to be moved. The session's thread and the pump count, under the
    // sound mutex.
    std::atomic<uint32_t> soundRepositions{0};
};

// One line of statistics for the active session; empty if there is none.
[[nodiscard]] std::string EmuFormatStats();

// The largest gap between play and write cursor that the sound pump has seen, in milliseconds.
// Process-wide, never reset.
void EmuRaiseSoundGap(uint32_t milliseconds);
[[nodiscard]] uint32_t EmuSoundGapMs();
