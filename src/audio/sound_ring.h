// SoundRing: one second of 16-bit sound in a ring buffer, with two cursors.
//
// Each session has two: stereo for the full screen, mono for its television in the room. The pump
// writes into a ring, the device reads it in short blocks.
//
// Units: positions and lengths are bytes from the ring's start, always whole frames (2 bytes mono, 4
// stereo); others are rounded down.
// Cursors: the play cursor is the end of what has been heard; the write cursor is the first byte that
// is safe to write until the pump looks again, after all that the device has taken or may take by then.
// Threads: any; each operation takes the ring's own lock and no other under it. Only the constructor
// allocates.
#pragma once

#include "base/ranked_mutex.h"

#include <cstdint>
#include <span>
#include <vector>

class SoundRing {
public:
    // `channels` is 1 or 2; `rate` is in frames a second.
    SoundRing(uint32_t channels, uint32_t rate);

    [[nodiscard]] uint32_t Channels() const { return channels; }
    [[nodiscard]] uint32_t FrameBytes() const { return frameBytes; }
    [[nodiscard]] uint32_t LengthBytes() const { return lengthBytes; }

    // Bytes of a millisecond, truncated: the unit in which cursors are compared.
    [[nodiscard]] uint32_t BytesPerMs() const { return bytesPerMs; }

    // The distance from `first` forward to `second`, around the ring.
    [[nodiscard]] uint32_t Distance(uint32_t first, uint32_t second) const {
        return (second + lengthBytes - first) % lengthBytes;
    }
    [[nodiscard]] uint32_t Wrap(uint64_t position) const {
        return static_cast<uint32_t>(position % lengthBytes) / frameBytes * frameBytes;
    }

    // The pump's side. Setting the position discards what the device has taken and not yet played.
    void Play();
    void Stop();
    void SetPosition(uint32_t position);
    [[nodiscard]] bool Playing() const;
    struct CURSORS {
        uint32_t play;
        uint32_t write;
    };
    [[nodiscard]] CURSORS Cursors() const; // both at the same moment

    // Copies whole frames to `position`, in two pieces where the ring wraps; at most one ring full.
    void Write(uint32_t position, std::span<const int16_t> samples);
    void WriteSilence(uint32_t position, uint32_t bytes);

    // Copies whole frames from `position` without moving a cursor.
    void Read(uint32_t position, std::span<int16_t> samples) const;

    // The device's side. `epoch` changes with each start, stop and new position, so that the device
    // knows when to drop what it has queued.
    struct DEVICE_VIEW {
        uint32_t epoch;
        bool playing;
    };
    [[nodiscard]] DEVICE_VIEW View() const;

    // How far ahead of the play cursor the device may read until the pump looks again.
    void SetReserveFrames(uint32_t frames);

    // Takes the next samples from the ring, whole frames. False, with silence in `samples`, when the
    // ring is no longer in that epoch.
    [[nodiscard]] bool Take(uint32_t epoch, std::span<int16_t> samples);

    // Moves the play cursor by what has been heard, at most up to what was taken. Nothing happens in
    // another epoch.
    void Heard(uint32_t epoch, uint32_t frames);

private:
    using Mutex = RankedMutex<LockRank::kRing>;

    void CopyOut(uint32_t position, std::span<int16_t> samples) const; // under the lock

    const uint32_t channels;
    const uint32_t frameBytes;
    const uint32_t lengthBytes;
    const uint32_t bytesPerMs;

    mutable Mutex lock;
    std::vector<int16_t> data;
    uint32_t playPosition = 0;
    uint32_t takenBytes = 0; // taken by the device and not yet heard
    uint32_t reserveBytes = 0;
    uint32_t epochNumber = 0;
    bool playing = false;
};
