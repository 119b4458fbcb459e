#include "host/host_data.h"

#include "base/audio_rate.h"
#include "host/picture.h"
#include "host/session.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

namespace {

constexpr int64_t kBiasMicroseconds = 200;
constexpr uint32_t kUnpacedSleep = 5000; // microseconds
// The system wakes a thread about this many microseconds late, so it is asked to be earlier. What is then left is
// polled.
constexpr int64_t kWakesLate = 60;
constexpr uint32_t kBytesAPair = 4;
constexpr uint32_t kPendingSeconds = 2;

int64_t SteadyMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void SteadySleep(uint32_t microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

HOST_CLOCK gClock{SteadyMicroseconds, SteadySleep};

} // namespace

FrameMutex& EmuFrameMutex() {
    static auto* mutex = new FrameMutex;
    return *mutex;
}

SoundMutex& EmuSoundMutex() {
    static auto* mutex = new SoundMutex;
    return *mutex;
}

void HostSetClock(const HOST_CLOCK& clock) {
    gClock.nowMicroseconds =
        clock.nowMicroseconds != nullptr ? clock.nowMicroseconds : SteadyMicroseconds;
    gClock.sleepMicroseconds =
        clock.sleepMicroseconds != nullptr ? clock.sleepMicroseconds : SteadySleep;
}

const HOST_CLOCK& HostClock() {
    return gClock;
}

uint32_t PaceWait(uint32_t length, int32_t syncBias, uint32_t overshoot) {
    int64_t wait = length;
    if (syncBias < 0) {
        wait -= kBiasMicroseconds;
    } else if (syncBias > 0) {
        wait += kBiasMicroseconds;
    }
    return static_cast<uint32_t>(std::max<int64_t>(wait - overshoot, 0));
}

void PaceFrame(EMU_HOST_DATA& data, uint32_t wait) {
    int64_t now = gClock.nowMicroseconds();
    while (now - data.lastFrameTime < wait) {
        const int64_t left = wait - (now - data.lastFrameTime);
        if (left > kWakesLate) {
            gClock.sleepMicroseconds(static_cast<uint32_t>(left - kWakesLate));
        }
        now = gClock.nowMicroseconds();
    }
    const int64_t over = now - data.lastFrameTime - wait;
    data.overshoot = static_cast<uint32_t>(std::min<int64_t>(over, UINT32_MAX));
    data.lastFrameTime = now;
}

void HostOpen(EMU_THREAD* session) {
    auto data = std::make_unique<EMU_HOST_DATA>();
    for (size_t i = 0; i < std::size(data->frames); ++i) {
        data->pixels[i] = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
        data->frames[i].pixels = data->pixels[i].get();
        data->frames[i].tvKey = session->key;
    }
    data->pending.resize(size_t{AudioRate()} * kBytesAPair * kPendingSeconds);
    data->lastFrameTime = gClock.nowMicroseconds();
    session->hostData = data.release();
}

void HostClose(EMU_THREAD* session) {
    const std::unique_ptr<EMU_HOST_DATA> data(session->hostData.exchange(nullptr));
}

// Only the session's thread changes the write index; the mutex is for threads that read it.
EMU_VIDEO_FRAME* HostGetVideoFrame(EMU_THREAD* session) {
    EMU_HOST_DATA* const data = session->hostData;
    return data == nullptr ? nullptr : &data->frames[data->writeIndex];
}

EMU_INPUT_STATE* HostGetInput(EMU_THREAD* session) {
    EMU_HOST_DATA* const data = session->hostData;
    if (data == nullptr) {
        return nullptr;
    }
    data->input = {};
    return &data->input;
}

void HostPublishFrame(EMU_THREAD& session, EMU_HOST_DATA& data) {
    constexpr uint32_t kFrames = std::size(decltype(data.frames){});
    if (data.frames[data.writeIndex].hold == 0) {
        data.frames[data.writeIndex].fresh = 1;
        data.frames[data.writeIndex].shown = 0;
        data.writeIndex = (data.writeIndex + 1) % kFrames;
        if (data.writeIndex == data.readIndex) {
            data.readIndex = (data.readIndex + 1) % kFrames;
        }
        data.frames[data.writeIndex].fresh = 0;
        if (data.frames[data.writeIndex].shown == 0) {
            ++session.statistics.framesMissed;
        }
    }
    data.frames[data.writeIndex].hold = 0;
}

EMU_VIDEO_FRAME* HostTakeFrame(EMU_HOST_DATA& data) {
    if (data.frames[data.readIndex].fresh == 0) {
        const uint32_t following = (data.readIndex + 1) % 3;
        if (following != data.writeIndex) {
            data.readIndex = following;
        }
    }
    EMU_VIDEO_FRAME& frame = data.frames[data.readIndex];
    if (frame.fresh == 0 || frame.width == 0 || frame.height == 0) {
        return nullptr;
    }
    frame.shown = 1;
    frame.fresh = 0;
    return &frame;
}

void HostPresent(EMU_THREAD* session, uint32_t microseconds) {
    EMU_HOST_DATA* const data = session->hostData;
    if (data == nullptr || !IsPacedLength(microseconds)) {
        gClock.sleepMicroseconds(kUnpacedSleep);
        return;
    }
    const uint32_t wait = PaceWait(microseconds, data->syncBias, data->overshoot);
    {
        const std::scoped_lock hold(EmuFrameMutex());
        HostPublishFrame(*session, *data);
    }
    PaceFrame(*data, wait);
}

void HostSubmitAudio(EMU_THREAD* session, EMU_AUDIO_FRAME* audio) {
    EMU_HOST_DATA* const data = session->hostData;
    if (data == nullptr) {
        return;
    }
    const std::scoped_lock hold(EmuSoundMutex());
    if (data->noSound) {
        return;
    }
    const auto second = static_cast<uint32_t>(data->pending.size() / kPendingSeconds);
    const uint32_t bytes = std::min(audio->sampleCount * kBytesAPair, second);
    if (session->sound.soundBytes + bytes > second) {
        session->sound.soundBytes = second - bytes;
        ++session->statistics.soundRepositions;
    }
    std::memcpy(data->pending.data() + session->sound.soundBytes, audio->samples, bytes);
    session->sound.soundBytes += bytes;
}
