#include "host/session_statistics.h"

#include "host/session.h"
#include "host/session_list.h"
#include "settings/bindings.h"

#include <cstdio>
#include <mutex>

namespace {

std::atomic<uint32_t> gSoundGapMs{0};

} // namespace

std::string EmuFormatStats() {
    const std::scoped_lock list(SessionListLock());
    const EMU_THREAD* const session = FindSession(InputActiveKey());
    if (session == nullptr) {
        return {};
    }
    const auto number = [](uint32_t value) { return static_cast<int>(value); };
    char text[160];
    std::snprintf(text, sizeof text,
                  "Sound Repos %d | SoundBuffer %d, Sound Min %d | Frames Missed %d | dw1=%d",
                  number(session->statistics.soundRepositions), number(session->sound.soundBytes),
                  number(EmuSoundGapMs()), number(session->statistics.framesMissed),
                  number(session->machine->debugValue));
    return text;
}

void EmuRaiseSoundGap(uint32_t milliseconds) {
    uint32_t seen = gSoundGapMs;
    while (milliseconds > seen && !gSoundGapMs.compare_exchange_weak(seen, milliseconds)) {
    }
}

uint32_t EmuSoundGapMs() {
    return gSoundGapMs;
}
