// What a session and the sound pump share besides the samples (EMU_HOST_DATA::pending).
#pragma once

#include <atomic>
#include <cstdint>

struct SESSION_SOUND {
    // Written by the pump and by the thread that opens a device, under the sound mutex.
    uint8_t audible = 0;     // 1: this session is heard
    uint8_t directSound = 0; // 1: the stereo ring plays; 0: the mono ring, placed in the room

    // Bytes that wait in `pending`. The session's thread adds to them and the pump takes from them, both
    // under the sound mutex; the statistics line reads them without it.
    std::atomic<uint32_t> soundBytes{0};
};
