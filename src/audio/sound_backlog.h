// SoundBacklog: keeps the sound that waits for the pump short, since all of it is heard late.
//
// A device may ask for a second or more at once, at its start or after a standstill, and then take
// nothing until that has been played. The machine goes on meanwhile, and what it leaves waiting would
// delay every later sound: the bias of the frames' length wins back 12 ms in a second and no more. So
// sound over the bound is dropped at once, and a surplus that stays is dropped after half a second.
// The oldest goes. The cut is a crossfade from what would have come next, so that it does not click.
//
// Units: bytes of interleaved stereo, 16 bits; half a second is counted in what the device takes.
// Owner: the channel. Threads: under the sound mutex. Only the constructor allocates.
#pragma once

#include <cstdint>
#include <vector>

class SoundBacklog {
public:
    explicit SoundBacklog(uint32_t rate); // sample pairs a second

    // As if the device had taken nothing yet.
    void Restart();

    // Shortens the `waiting` bytes at `pending` where they are too many, and returns how many are
    // left.
    [[nodiscard]] uint32_t Bound(uint8_t* pending, uint32_t waiting);

    // The device has taken `used` of `waiting` bytes.
    void Taken(uint32_t waiting, uint32_t used);

private:
    void ForgetLevel();
    void CrossfadeOver(uint8_t* pending, uint32_t dropped, uint32_t kept);

    uint32_t rate;
    std::vector<int16_t> next;    // what would have come next, the length of a fade
    uint32_t nextBytes = 0;       // of it that are there
    bool nextKnown = false;       // since the device last took something
    uint32_t lowest = UINT32_MAX; // waiting bytes since the last decision about a surplus
    uint32_t taken = 0;           // bytes, since the same moment
    uint32_t surplus = 0;         // bytes to be dropped
};
