// The sound device, the pump and one channel a session. See sound_ring.h for the rings.
//
// Threads: opening, closing and the pump's start and stop, one at a time; CreateSoundChannel on the session
// thread from the host's open callback, DestroySoundChannel from close; PumpSound on the pump thread;
// the device pulls on a thread of its own. Places, listener, volume and the room's flag may be set by
// any thread.
// Locks: all that is kept here stands under the sound mutex of host_data.h, but for the listener's
// numbers, which have a small lock of their own, single atomic words, and the pump's thread.
// Opening and closing may take seconds; the mutex is free meanwhile.
// Order: DestroySoundChannel before the host frees the session's data.
// Failure: no device, or one that vanishes, leaves a silent running program: samples are dropped, and
// frames last as long as their samples say, with no bias. A device that is opened later serves the
// sessions that run by then.
#pragma once

#include <cstdint>
#include <string>

struct EMU_THREAD;

// Opens the default output at the program's rate and takes the volume from `audio_volume`. False with
// a line that says why. True when one is open already.
[[nodiscard]] bool OpenSoundDevice(std::string& error);

// The same with a device that no output pulls, for tests: whoever calls RenderSound hears it.
[[nodiscard]] bool OpenSoundLoopback(std::string& error);
void RenderSound(int16_t* out, uint32_t frames);

// Also for an output that has gone. Stop the pump first. Channels stay, without a device, and go on with the next one that is opened.
void CloseSoundDevice();

// SDL's number of the open output, by which it reports that this one has gone; 0 without one.
[[nodiscard]] uint32_t SoundDeviceNumber();

// After the session has its host data. Without a device, or when the device has no room for it, the
// session is silent until the next device is opened.
void CreateSoundChannel(EMU_THREAD& session);
void DestroySoundChannel(EMU_THREAD& session);

// One transfer, at any time, for one session; takes the sound mutex.
void PumpSound(EMU_THREAD& session);

// The pump thread: a round every 5 ms. Not started without a device, nor twice.
void StartSoundPump();
void StopSoundPump();

// Whether the 3D room is shown: every session is then heard from its television. False at start.
void SoundSetRoomVisible(bool visible);
[[nodiscard]] bool SoundRoomVisible();

// The final gain, 1.0 at start. What is no finite number is ignored.
void SoundSetVolume(float volume);
[[nodiscard]] float SoundVolume();

// Where the television of that session key stands, in room units. Holds for the session that plays on
// the key now and for those to come.
void SoundSetTelevision(uint32_t sessionKey, float x, float y, float z);

// The ears, in room units on the room's axes (x right, y up, z towards the viewer at the start); the
// ears' height does not count. `front` points where the listener looks, `top` out of its head; any
// length. The pump hands them to the device every seventh round.
//
// A device with left-handed axes would take every z negated. OpenAL's axes are right-handed like the
// room's, so z keeps its sign here; left and right are the same either way.
struct SOUND_LISTENER {
    float x = 0.0f;
    float z = 0.0f;
    float front[3] = {0.0f, 0.0f, -1.0f};
    float top[3] = {0.0f, 1.0f, 0.0f};
};
void SoundSetListener(const SOUND_LISTENER& listener);
