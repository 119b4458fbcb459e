// The host's side of a session: triple buffer, pacing and the samples that wait for the pump.
//
// One record for each session, made by the open callback and freed by close. The frame mutex guards the
// indices and flags of the triple buffer; the sound mutex guards `pending`, the session's `soundBytes`
// and all that the sound layer keeps. The session draws into frames[writeIndex] and the display reads
// frames[readIndex] without a lock: the two indices are never equal.
#pragma once

#include "base/ranked_mutex.h"
#include "host/aligned_block.h"
#include "machine/emu_system.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

struct EMU_THREAD;
struct SoundChannel;

struct EMU_HOST_DATA {
    EMU_VIDEO_FRAME frames[3]{};
    AlignedBlock<uint32_t> pixels[3]; // the memory of `frames`, EmuPicturePixels() each
    uint32_t writeIndex = 2;
    uint32_t readIndex = 0;
    std::atomic<int32_t> syncBias{0}; // -1, 0 or +1, set by the sound pump
    int64_t lastFrameTime = 0;        // clock at the end of the last wait, microseconds
    uint32_t overshoot = 0;           // microseconds by which the last wait ran over
    EMU_INPUT_STATE input{};
    std::vector<uint8_t> pending;  // interleaved stereo, twice rate x 4 bytes long
    SoundChannel* sound = nullptr; // owned by the sound layer; null without one
    bool noSound = true;           // no channel: the session is silent
};

using FrameMutex = RankedMutex<LockRank::kFrame>;
using SoundMutex = RankedMutex<LockRank::kSound>;
[[nodiscard]] FrameMutex& EmuFrameMutex();
[[nodiscard]] SoundMutex& EmuSoundMutex();

// The clock of pacing, replaceable so that tests need not wait. Both functions must be callable from
// any thread. Set while no session runs.
struct HOST_CLOCK {
    int64_t (*nowMicroseconds)();
    void (*sleepMicroseconds)(uint32_t microseconds); // at least so long
};
void HostSetClock(const HOST_CLOCK& clock); // null members restore the steady clock
[[nodiscard]] const HOST_CLOCK& HostClock();

// Frames of 1,000 to 50,000 microseconds are paced; others, such as those without sound, are not shown
// and only sleep 5 ms.
[[nodiscard]] constexpr bool IsPacedLength(uint32_t microseconds) {
    return microseconds >= 1000 && microseconds <= 50000;
}

// How long a paced frame waits, in microseconds: its length, 200 less or more by the sign of
// `syncBias`, less the previous wait's overshoot.
[[nodiscard]] uint32_t PaceWait(uint32_t length, int32_t syncBias, uint32_t overshoot);

// Waits until `wait` microseconds have passed since `data.lastFrameTime`, then records the end of the
// wait and its overshoot.
void PaceFrame(EMU_HOST_DATA& data, uint32_t wait);

// The callbacks of the windowed program that need no window: buffers, pacing and pending samples. All but
// HostClose run on the session's thread. For a session that was never opened the frames are null and
// every present sleeps 5 ms.
void HostOpen(EMU_THREAD* session);
void HostClose(EMU_THREAD* session);
[[nodiscard]] EMU_VIDEO_FRAME* HostGetVideoFrame(EMU_THREAD* session);
[[nodiscard]] EMU_INPUT_STATE* HostGetInput(EMU_THREAD* session); // zeroed for every frame
void HostPresent(EMU_THREAD* session, uint32_t microseconds);

// Appends the samples to `pending` under the sound mutex. At most one second is kept: beyond it the
// newest frame overwrites the end and counts as a reposition.
void HostSubmitAudio(EMU_THREAD* session, EMU_AUDIO_FRAME* audio);

// Publishes the frame at writeIndex and moves on to the next buffer, unless the frame is held. Under the
// frame mutex.
void HostPublishFrame(EMU_THREAD& session, EMU_HOST_DATA& data);

// The display's side, under the frame mutex: the next picture to show, already marked as shown, or null
// if there is no new one. It stays unchanged until the mutex is released; the session may then take the
// buffer back.
[[nodiscard]] EMU_VIDEO_FRAME* HostTakeFrame(EMU_HOST_DATA& data);
