// What a session and the sound pump share, beside the samples themselves (EMU_HOST_DATA::pending).
#pragma once

#include <atomic>
#include <cstdint>

struct SESSION_SOUND {
    // Written by the pump's thread alone, under the sound mutex.
    uint8_t audible = 0; // 1: this session is heard
    uint8_t directSound =
        0; // 1: its stereo ring is the one that plays, not the one placed in the room

    // Bytes that wait in `pending`. The session's thread adds to them and the pump takes from them, both
    // under the sound mutex; the statistics line reads them without it.
    std::atomic<uint32_t> soundBytes{0};
};
