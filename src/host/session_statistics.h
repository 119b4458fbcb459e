// What is counted of a session, and the line that shows it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

struct SESSION_STATISTICS {
    // Frames overwritten before the display took them. The session's thread counts, under the frame mutex.
    std::atomic<uint32_t> framesMissed{0};
    // Times the place that sound is written to had to move. The session's thread and the pump count,
    // under the sound mutex.
    std::atomic<uint32_t> soundRepositions{0};
};

// One line of statistics for the active session; empty without one.
[[nodiscard]] std::string EmuFormatStats();

// The largest gap between play and write cursor that the sound pump has seen, in milliseconds.
// Process-wide, never reset.
void EmuRaiseSoundGap(uint32_t milliseconds);
[[nodiscard]] uint32_t EmuSoundGapMs();
