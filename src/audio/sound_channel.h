// SoundChannel: the sound layer's side of one session, guarded by the sound mutex.
//
// Two rings, of which one plays: stereo while the session has the full screen, mono while it is on its
// television in the room. Each has a write position, which the pump keeps ahead of the play cursor, and
// the play cursor as the pump last saw it.
//
// Units: positions in bytes of their ring.
#pragma once

#include "audio/sound_backlog.h"
#include "audio/sound_ring.h"
#include "machine/band_splitter.h"

#include <array>
#include <cstdint>
#include <vector>

struct SoundChannel {
    // Reads the boosts from the settings. The mono ring plays first.
    explicit SoundChannel(uint32_t rate);

    void ReadBoosts(); // from the settings

    // Clears both rings and rewinds them; the mono one plays.
    void Restart();

    const uint32_t rate; // sample pairs a second
    SoundRing stereo;
    SoundRing mono;
    uint32_t lastPlayStereo = 0;
    uint32_t lastPlayMono = 0;
    uint32_t writeStereo = 0;
    uint32_t writeMono = 0;
    SoundBacklog backlog;                // of the session's waiting sound
    std::array<BandSplitter, 2> filters; // left, right: the boost
    std::vector<int16_t> scratch;        // two seconds of stereo
};
