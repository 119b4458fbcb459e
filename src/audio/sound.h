// The sound device, the pump and one channel a session. See sound_ring.h for the rings.
//
// Threads: OpenSoundDevice and CloseSoundDevice on the main thread; CreateSoundChannel on the session
// thread from the host's open callback, DestroySoundChannel from close; PumpSound on the pump thread;
// the device pulls on a thread of its own.
// Failure: no device, or one that vanishes, leaves a silent running program.
#pragma once

#include <cstdint>
#include <string>

struct EMU_THREAD;

[[nodiscard]] bool OpenSoundDevice(std::string& error);
void CloseSoundDevice();

void CreateSoundChannel(EMU_THREAD& session);
void DestroySoundChannel(EMU_THREAD& session);

// One transfer, at any time, for one session; takes the sound mutex.
void PumpSound(EMU_THREAD& session);

// The pump thread: a round every 5 ms.
void StartSoundPump();
void StopSoundPump();
