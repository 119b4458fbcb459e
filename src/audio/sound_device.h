// SoundDevice: renders every playing ring to one stereo stream.
//
// A loopback device of OpenAL Soft renders on demand: stereo rings go straight to the two channels,
// mono rings come from a place in the room, by HRTF where the library has a set of measured ears for
// the rate (44,100 and 48,000 as installed), else by plain panning. SDL's audio callback pulls the
// loopback device, or whoever else calls Render.
//
// Units: frames are stereo pairs; places are room units x 0.01, on the room's own axes (x right, y up,
// z towards the viewer).
// Threads: one calls OpenSdl, OpenLoopback and Close; any may call the rest, behind one lock. SDL calls
// Render on a thread of its own. The library's current context is one for the process, so only one
// device is open at a time.
// Failure: an open that fails leaves the device closed and says why; a closed one takes every call
// and does nothing.
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

    // `framesPerPull` is how many frames one Render usually asks for; longer ones are cut into such
    // pieces.
    [[nodiscard]] bool OpenLoopback(uint32_t rate, uint32_t framesPerPull, std::string& error);

    // The loopback device, and SDL's default output pulling it; or a ClockedOutput, where SDL has no
    // more than a stand-in for one.
    [[nodiscard]] bool OpenSdl(uint32_t rate, std::string& error);

    void Close();

    // SDL's number of the open output, by which its events name it; 0 without one.
    [[nodiscard]] uint32_t SdlDevice() const;
    [[nodiscard]] bool UsesHrtf() const;

    // The next `frames` pairs; silence when closed.
    void Render(int16_t* out, uint32_t frames);

    // A ring must be detached before it goes. False when the library has no source left.
    [[nodiscard]] bool Attach(SoundRing& ring, RingKind kind);
    void Detach(SoundRing& ring);

    void PlaceRing(SoundRing& ring, const SOUND_PLACE& place);

    // Place and bearing of the ears, taken over at once. `front` and `top` that are no two different
    // directions leave the bearing as it was.
    void PlaceListener(const SOUND_PLACE& place, const SOUND_PLACE& front, const SOUND_PLACE& top);

private:
    struct Private;
    std::unique_ptr<Private> p;
};
