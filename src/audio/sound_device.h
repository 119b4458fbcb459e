// SoundDevice: renders every playing ring to one stereo stream.
//
// A loopback device of OpenAL Soft renders on demand: stereo rings go straight to the two channels,
// mono rings come from a place in the room, with HRTF if the library has data for the rate (44,100 and
// 48,000 as installed), else by panning. SDL's audio callback, or another caller of Render, pulls the
// loopback device.
//
// Units: frames are stereo pairs; places are room units x 0.01, on the room's own axes (x right, y up,
// z towards the viewer).
// Threads: one calls OpenSdl, OpenLoopback and Close; any may call the rest, behind one lock. SDL calls
// Render on a thread of its own. The library's current context is one for the process, so only one
// device is open at a time.
// Failure: an open that fails leaves the device closed and says why; a closed device ignores every
// call.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

class SoundRing;

enum class RingKind { kDirect, kPositioned };

struct SOUND_PLACE {
    float x;
    float y;
    float z;
};

class SoundDevice {
public:
    SoundDevice();
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;

    // `framesPerPull` is the usual number of frames of a Render; longer ones are split into such
    // pieces.
    [[nodiscard]] bool OpenLoopback(uint32_t rate, uint32_t framesPerPull, std::string& error);

    // The loopback device, and SDL's default output pulling it; or a ClockedOutput, if SDL has only its
    // dummy driver.
    [[nodiscard]] bool OpenSdl(uint32_t rate, std::string& error);

    void Close();

    // SDL's number of the open output, used in its events; 0 without one.
    [[nodiscard]] uint32_t SdlDevice() const;
    [[nodiscard]] bool UsesHrtf() const;

    // The next `frames` pairs; silence when closed.
    void Render(int16_t* out, uint32_t frames);

    // A ring must be detached before it is destroyed. False if the library has no source left.
    [[nodiscard]] bool Attach(SoundRing& ring, RingKind kind);
    void Detach(SoundRing& ring);

    void PlaceRing(SoundRing& ring, const SOUND_PLACE& place);

    // Position and orientation of the ears, both at once. If `front` and `top` are zero or parallel,
    // the orientation stays.
    void PlaceListener(const SOUND_PLACE& place, const SOUND_PLACE& front, const SOUND_PLACE& top);

private:
    struct Private;
    std::unique_ptr<Private> p;
};
