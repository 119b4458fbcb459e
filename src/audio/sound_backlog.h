// SoundBacklog: limits the sound that waits for the pump, since all of it is delay.
//
// A device may take a second or more at once, at its start or after a pause, and then nothing until
// that has been played. The machine runs on meanwhile, and its waiting sound would delay all later
// sound: the bias of the frames' length recovers only 12 ms a second. So sound over the bound is
// dropped at once, and a lasting surplus after half a second. The oldest sound is dropped, with a
// crossfade from what would have come next, so that it does not click.
//
// Units: bytes of interleaved stereo, 16 bits; half a second is measured by what the device takes.
// Owner: the channel. Threads: under the sound mutex. Only the constructor allocates.
#pragma once

#include <cstdint>
#include <vector>

class SoundBacklog {
public:
    explicit SoundBacklog(uint32_t rate); // sample pairs a second

    // Resets: the device has taken nothing yet.
    void Restart();

    // Shortens the `waiting` bytes at `pending` if they are too many, and returns how many are left.
    [[nodiscard]] uint32_t Bound(uint8_t* pending, uint32_t waiting);

    // The device has taken `used` of `waiting` bytes.
    void Taken(uint32_t waiting, uint32_t used);

private:
    void ForgetLevel();
    void CrossfadeOver(uint8_t* pending, uint32_t dropped, uint32_t kept);

    uint32_t rate;
    std::vector<int16_t> next;    // what would have come next, the length of a fade
    uint32_t nextBytes = 0;       // valid bytes of `next`
    bool nextKnown = false;       // `next` is set since the device last took something
    uint32_t lowest = UINT32_MAX; // waiting bytes since the last decision about a surplus
    uint32_t taken = 0;           // bytes taken since the same moment
    uint32_t surplus = 0;         // bytes to be dropped
};
