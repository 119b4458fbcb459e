// The sound device, the pump and a channel for each session. See sound_ring.h for the rings.
//
// Threads: opening, closing and the pump's start and stop, one at a time; CreateSoundChannel on the session
// thread from the host's open callback, DestroySoundChannel from close; PumpSound on the pump thread;
// the device pulls on a thread of its own. Places, listener, volume and the room's flag may be set by
// any thread.
// Locks: the sound mutex of host_data.h guards everything here except the listener, which has a small
// lock of its own, single atomic words, and the pump's thread. Opening and closing may take seconds;
// the mutex is free meanwhile.
// Order: DestroySoundChannel before the host frees the session's data.
// Failure: without a device, or after one vanishes, the program runs on silently: samples are dropped,
// and frames last as long as their samples, with no bias. A device opened later also plays the sessions
// that already run.
#pragma once

#include <cstdint>
#include <string>

struct EMU_THREAD;

// Opens the default output at the program's rate and reads the volume from `audio_volume`. False with a
// line that says why. True if one is already open.
[[nodiscard]] bool OpenSoundDevice(std::string& error);

// The same with a device that no output pulls, for tests: RenderSound pulls it.
[[nodiscard]] bool OpenSoundLoopback(std::string& error);
void RenderSound(int16_t* out, uint32_t frames);

// Also for an output that has gone. Stop the pump first. Channels stay without a device and use the
// next one that is opened.
void CloseSoundDevice();

// SDL's number of the open output, with which it reports that the output has gone; 0 without one.
[[nodiscard]] uint32_t SoundDeviceNumber();

// Call after the session has its host data. Without a device, or if the device has no free source, the
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

// The final gain, 1.0 at start. NaN and infinities are ignored.
void SoundSetVolume(float volume);
[[nodiscard]] float SoundVolume();
// The sessions' boosts become those of the settings now; a new session reads them itself.
void SoundReadBoosts();

// The place of the television of that session key, in room units. For the current session of the key
// and later ones.
void SoundSetTelevision(uint32_t sessionKey, float x, float y, float z);

// The ears, in room units on the room's axes (x right, y up, z towards the viewer at the start); the
// ears' height is ignored. `front` points where the listener looks, `top` out of its head; any length.
// The pump hands them to the device every seventh round.
//
// OpenAL's axes are right-handed like the room's, so z keeps its sign.
struct SOUND_LISTENER {
    float x = 0.0f;
    float z = 0.0f;
    float front[3] = {0.0f, 0.0f, -1.0f};
    float top[3] = {0.0f, 1.0f, 0.0f};
};
void SoundSetListener(const SOUND_LISTENER& listener);
