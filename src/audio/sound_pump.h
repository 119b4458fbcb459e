// The transfer of a session's waiting samples to the ring that plays, without device or thread.
//
// It decides which ring plays, drops what would be heard too late, keeps the write position a little
// ahead of the play cursor, boosts the bands, applies the volume, and sets the bias with which the
// session shortens or lengthens its frames. No allocation.
//
// Threads: under the sound mutex.
#pragma once

#include "audio/sound_channel.h"

#include <cstdint>

struct EMU_HOST_DATA;
struct EMU_THREAD;

// What the pump is told from outside.
struct PUMP_SURROUNDINGS {
    bool inFront;     // this session is the active one
    bool roomVisible; // the room is shown, and every television in it heard
    float volume;     // final gain
};

// `soundGapMs` is the largest distance between play and write cursor seen so far, in milliseconds; it
// rises here.
void PumpChannel(EMU_THREAD& session, EMU_HOST_DATA& data, SoundChannel& channel,
                 const PUMP_SURROUNDINGS& surroundings, uint32_t& soundGapMs);
