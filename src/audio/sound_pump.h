// Moves a session's waiting samples to the ring that plays. Knows no device or thread.
//
// It chooses the ring that plays, drops sound that would be heard too late, keeps the write position a
// little ahead of the play cursor, boosts the bands, applies the volume, and sets the bias by which the
// session shortens or lengthens its frames. No allocation.
//
// Threads: under the sound mutex.
#pragma once

#include "audio/sound_channel.h"

#include <cstdint>

struct EMU_HOST_DATA;
struct EMU_THREAD;

// The pump's view of the program.
struct PUMP_SURROUNDINGS {
    bool inFront;     // this session is the active one
    bool roomVisible; // the room is shown, and every television in it heard
    float volume;     // final gain
};

// `soundGapMs` is the largest distance between play and write cursor seen so far, in milliseconds; it
// rises here.
void PumpChannel(EMU_THREAD& session, EMU_HOST_DATA& data, SoundChannel& channel,
                 const PUMP_SURROUNDINGS& surroundings, uint32_t& soundGapMs);
