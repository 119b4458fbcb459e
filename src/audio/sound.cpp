#include "audio/sound.h"

#include "audio/sound_channel.h"
#include "audio/sound_device.h"
#include "audio/sound_pump.h"
#include "base/audio_rate.h"
#include "base/ranked_mutex.h"
#include "host/host_data.h"
#include "host/session.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <SDL.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr float kRoomToDevice = 0.01f; // room units to the device's
constexpr auto kPumpRound = std::chrono::milliseconds(5);
constexpr uint32_t kListenerRounds = 7;
constexpr uint32_t kLoopbackPull = 512; // frames

struct OPEN_CHANNEL {
    EMU_THREAD* session;
    EMU_HOST_DATA* data;
    SoundChannel* channel;
};

// Under the sound mutex.
struct SOUND_STATE {
    std::unique_ptr<SoundDevice> device; // null: silent
    std::vector<OPEN_CHANNEL> channels;
    std::map<uint32_t, SOUND_PLACE> televisions; // by session key, in the device's units
};

// Never freed: an open device uses libraries that may be gone when statics are destroyed.
SOUND_STATE& Sound() {
    static auto* sound = new SOUND_STATE;
    return *sound;
}

RankedMutex<LockRank::kLeaf> gListenerLock;
SOUND_LISTENER gListener;

std::atomic<bool> gRoomVisible{false};
std::atomic<float> gAudioVolume{1.0f};

// Stops when the program ends at the latest.
struct PUMP_THREAD {
    std::thread thread;
    std::atomic<bool> stop{false};

    void Stop() {
        stop = true;
        if (thread.joinable()) {
            thread.join();
        }
    }
    ~PUMP_THREAD() { Stop(); }
};
PUMP_THREAD gPump;

SOUND_PLACE Television(uint32_t sessionKey) {
    const auto found = Sound().televisions.find(sessionKey);
    return found == Sound().televisions.end() ? SOUND_PLACE{} : found->second;
}

// Attaches both rings or none.
bool AttachRings(SoundDevice& device, SoundChannel& channel, uint32_t sessionKey) {
    if (!device.Attach(channel.mono, RingKind::kPositioned)) {
        return false;
    }
    device.PlaceRing(channel.mono, Television(sessionKey));
    if (!device.Attach(channel.stereo, RingKind::kDirect)) {
        device.Detach(channel.mono);
        return false;
    }
    return true;
}

// Makes a session silent and paced only by its own samples.
void Silence(const OPEN_CHANNEL& open) {
    open.data->noSound = true;
    open.data->syncBias = 0;
    open.session->sound.soundBytes.store(0, std::memory_order_relaxed);
}

// A channel without a device until now starts from the beginning, and paces the frames from now on.
void RestartChannels(SoundDevice& device) {
    for (const OPEN_CHANNEL& open : Sound().channels) {
        Silence(open);
        open.channel->Restart();
        open.session->sound.directSound = 0;
        open.data->noSound = !AttachRings(device, *open.channel, open.session->key);
    }
}

void CommitListener() {
    SOUND_LISTENER listener;
    {
        const std::lock_guard guard(gListenerLock);
        listener = gListener;
    }
    const std::lock_guard guard(EmuSoundMutex());
    if (Sound().device) {
        Sound().device->PlaceListener(
            {listener.x * kRoomToDevice, 0.0f, listener.z * kRoomToDevice},
            {listener.front[0], listener.front[1], listener.front[2]},
            {listener.top[0], listener.top[1], listener.top[2]});
    }
}

// Opening can take seconds, and sessions hand in their sound under the mutex meanwhile.
template <typename Open>
bool OpenDevice(const Open& open) {
    {
        const std::lock_guard guard(EmuSoundMutex());
        if (Sound().device) {
            return true;
        }
    }
    auto device = std::make_unique<SoundDevice>();
    if (!open(*device)) {
        return false;
    }
    const std::lock_guard guard(EmuSoundMutex());
    SoundSetVolume(Settings().GetFloat(L"audio_volume"));
    Sound().device = std::move(device);
    RestartChannels(*Sound().device);
    return true;
}

void PumpThread() {
    // A delay of some milliseconds is audible, and the thread has little work. The system may refuse.
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_TIME_CRITICAL);
    uint32_t rounds = 0;
    while (!gPump.stop.load(std::memory_order_relaxed)) {
        EmuForEachSession([](EMU_THREAD& session) { PumpSound(session); });
        if (++rounds == kListenerRounds) {
            rounds = 0;
            CommitListener();
        }
        std::this_thread::sleep_for(kPumpRound);
    }
}

} // namespace

bool OpenSoundDevice(std::string& error) {
    return OpenDevice([&](SoundDevice& device) { return device.OpenSdl(AudioRate(), error); });
}

bool OpenSoundLoopback(std::string& error) {
    return OpenDevice([&](SoundDevice& device) {
        return device.OpenLoopback(AudioRate(), kLoopbackPull, error);
    });
}

// Not under the sound mutex, like a real output.
void RenderSound(int16_t* out, uint32_t frames) {
    SoundDevice* device = nullptr;
    {
        const std::lock_guard guard(EmuSoundMutex());
        device = Sound().device.get();
    }
    if (device != nullptr) {
        device->Render(out, frames);
    }
}

// The rings leave the device under the mutex; closing waits for the output, without the mutex, so that
// sessions don't wait.
void CloseSoundDevice() {
    std::unique_ptr<SoundDevice> device;
    const std::lock_guard guard(EmuSoundMutex());
    device = std::move(Sound().device);
    for (const OPEN_CHANNEL& open : Sound().channels) {
        Silence(open);
        if (device) {
            device->Detach(open.channel->mono);
            device->Detach(open.channel->stereo);
        }
    }
}

uint32_t SoundDeviceNumber() {
    const std::lock_guard guard(EmuSoundMutex());
    return Sound().device ? Sound().device->SdlDevice() : 0;
}

void CreateSoundChannel(EMU_THREAD& session) {
    EMU_HOST_DATA* const data = session.hostData.load();
    if (data == nullptr) {
        return;
    }
    auto channel = std::make_unique<SoundChannel>(AudioRate());
    const std::lock_guard guard(EmuSoundMutex());
    if (data->sound != nullptr) {
        return;
    }
    data->noSound = !Sound().device || !AttachRings(*Sound().device, *channel, session.key);
    Sound().channels.push_back({&session, data, channel.get()});
    data->sound = channel.release();
}

void DestroySoundChannel(EMU_THREAD& session) {
    EMU_HOST_DATA* const data = session.hostData.load();
    if (data == nullptr) {
        return;
    }
    const std::lock_guard guard(EmuSoundMutex());
    const std::unique_ptr<SoundChannel> channel(data->sound);
    data->sound = nullptr;
    data->noSound = true;
    if (!channel) {
        return;
    }
    if (Sound().device) {
        Sound().device->Detach(channel->mono);
        Sound().device->Detach(channel->stereo);
    }
    std::erase_if(Sound().channels,
                  [&channel](const OPEN_CHANNEL& open) { return open.channel == channel.get(); });
}

void PumpSound(EMU_THREAD& session) {
    const std::lock_guard guard(EmuSoundMutex());
    EMU_HOST_DATA* const data = session.hostData.load();
    if (data == nullptr || data->noSound || data->sound == nullptr) {
        return;
    }
    const PUMP_SURROUNDINGS surroundings{InputActiveKey() == session.key, SoundRoomVisible(),
                                         SoundVolume()};
    uint32_t gap = EmuSoundGapMs();
    PumpChannel(session, *data, *data->sound, surroundings, gap);
    EmuRaiseSoundGap(gap);
}

void StartSoundPump() {
    {
        const std::lock_guard guard(EmuSoundMutex());
        if (!Sound().device) {
            return;
        }
    }
    if (!gPump.thread.joinable()) {
        gPump.stop = false;
        gPump.thread = std::thread(PumpThread);
    }
}

void StopSoundPump() {
    gPump.Stop();
}

void SoundSetRoomVisible(bool visible) {
    gRoomVisible.store(visible, std::memory_order_relaxed);
}

bool SoundRoomVisible() {
    return gRoomVisible.load(std::memory_order_relaxed);
}

void SoundSetVolume(float volume) {
    if (std::isfinite(volume)) {
        gAudioVolume.store(volume, std::memory_order_relaxed);
    }
}

float SoundVolume() {
    return gAudioVolume.load(std::memory_order_relaxed);
}

void SoundSetTelevision(uint32_t sessionKey, float x, float y, float z) {
    const SOUND_PLACE place{x * kRoomToDevice, y * kRoomToDevice, z * kRoomToDevice};
    const std::lock_guard guard(EmuSoundMutex());
    Sound().televisions[sessionKey] = place;
    for (const OPEN_CHANNEL& open : Sound().channels) {
        if (open.session->key == sessionKey && Sound().device) {
            Sound().device->PlaceRing(open.channel->mono, place);
        }
    }
}

void SoundReadBoosts() {
    const std::lock_guard guard(EmuSoundMutex());
    for (const OPEN_CHANNEL& open : Sound().channels) {
        open.channel->ReadBoosts();
    }
}

void SoundSetListener(const SOUND_LISTENER& listener) {
    const std::lock_guard guard(gListenerLock);
    gListener = listener;
}
