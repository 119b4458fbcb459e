#include "audio/sound_device.h"

#include "audio/clocked_output.h"
#include "audio/driver_messages.h"
#include "audio/sound_ring.h"
#include "base/ranked_mutex.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>
#include <SDL.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <string_view>
#include <vector>

namespace {

// A source whose queue runs empty stops, so a few frames more than the pull needs stay in it.
constexpr uint32_t kLookaheadFrames = 64;
constexpr uint32_t kPumpMs = 5; // between two looks of the pump
constexpr size_t kQueueBuffers = 4;

// About 10 ms at every rate, as a power of two.
uint32_t SdlPullFrames(uint32_t rate) {
    uint32_t frames = 128;
    while (frames * 2 * 1000 <= rate * 12) {
        frames *= 2;
    }
    return frames;
}

// SDL's dummy driver for a system without an output; it counts time in whole milliseconds.
bool IsStandIn(const char* driver) {
    return driver != nullptr && std::string_view(driver) == "dummy";
}

struct LOOPBACK_CALLS {
    LPALCLOOPBACKOPENDEVICESOFT openDevice = nullptr;
    LPALCISRENDERFORMATSUPPORTEDSOFT isFormatSupported = nullptr;
    LPALCRENDERSAMPLESSOFT renderSamples = nullptr;
};

template <typename Call>
void FindCall(Call& call, const char* name) {
    call = reinterpret_cast<Call>(alcGetProcAddress(nullptr, name));
}

bool FindLoopback(LOOPBACK_CALLS& calls) {
    if (alcIsExtensionPresent(nullptr, "ALC_SOFT_loopback") != ALC_TRUE) {
        return false;
    }
    FindCall(calls.openDevice, "alcLoopbackOpenDeviceSOFT");
    FindCall(calls.isFormatSupported, "alcIsRenderFormatSupportedSOFT");
    FindCall(calls.renderSamples, "alcRenderSamplesSOFT");
    return calls.openDevice != nullptr && calls.isFormatSupported != nullptr &&
           calls.renderSamples != nullptr;
}

struct QUEUED_BUFFER {
    ALuint buffer;
    uint32_t frames;
};

// One ring and the streaming source that plays it.
struct SOURCE_LINE {
    SoundRing* ring = nullptr;
    RingKind kind = RingKind::kDirect;
    ALuint source = 0;
    std::vector<ALuint> spare;        // buffers not in the queue
    std::vector<QUEUED_BUFFER> queue; // oldest first
    uint32_t queuedFrames = 0;
    uint32_t heardFrames = 0; // of the queue, already reported to the ring
    uint32_t epoch = 0;
};

bool IsFinite(const SOUND_PLACE& place) {
    return std::isfinite(place.x) && std::isfinite(place.y) && std::isfinite(place.z);
}

// Neither is zero, and they are not parallel.
bool IsBearing(const SOUND_PLACE& front, const SOUND_PLACE& top) {
    if (!IsFinite(front) || !IsFinite(top)) {
        return false;
    }
    const float x = front.y * top.z - front.z * top.y;
    const float y = front.z * top.x - front.x * top.z;
    const float z = front.x * top.y - front.y * top.x;
    return x * x + y * y + z * z > 1.0e-8f;
}

void DropQueue(SOURCE_LINE& line) {
    alSourceStop(line.source);
    alSourcei(line.source, AL_BUFFER, 0);
    for (const QUEUED_BUFFER& queued : line.queue) {
        line.spare.push_back(queued.buffer);
    }
    line.queue.clear();
    line.queuedFrames = 0;
    line.heardFrames = 0;
}

// After a render: reports to the ring what was heard, and takes back the finished buffers.
void Settle(SOURCE_LINE& line) {
    if (line.queue.empty()) {
        return;
    }
    ALint state = AL_STOPPED;
    alGetSourcei(line.source, AL_SOURCE_STATE, &state);
    uint32_t position = line.queuedFrames; // a source that ran out has played everything
    if (state == AL_PLAYING) {
        ALint offset = 0;
        alGetSourcei(line.source, AL_SAMPLE_OFFSET, &offset);
        position = std::min(static_cast<uint32_t>(std::max(offset, 0)), line.queuedFrames);
    }
    if (position > line.heardFrames) {
        line.ring->Heard(line.epoch, position - line.heardFrames);
        line.heardFrames = position;
    }
    ALint done = 0;
    alGetSourcei(line.source, AL_BUFFERS_PROCESSED, &done);
    for (; done > 0 && !line.queue.empty(); --done) {
        const QUEUED_BUFFER oldest = line.queue.front();
        ALuint buffer = 0;
        alSourceUnqueueBuffers(line.source, 1, &buffer);
        line.queue.erase(line.queue.begin());
        line.spare.push_back(oldest.buffer);
        line.queuedFrames -= oldest.frames;
        line.heardFrames -= std::min(line.heardFrames, oldest.frames);
    }
}

// Before a render of `frames`: fills the queue for the render and the lookahead.
void Feed(SOURCE_LINE& line, uint32_t frames, uint32_t rate, std::vector<int16_t>& block) {
    const SoundRing::DEVICE_VIEW view = line.ring->View();
    if (view.epoch != line.epoch || !view.playing) {
        if (!line.queue.empty()) {
            DropQueue(line);
        }
        line.epoch = view.epoch;
    }
    if (!view.playing) {
        return;
    }
    const uint32_t ready = line.queuedFrames - line.heardFrames;
    const uint32_t wanted = frames + kLookaheadFrames;
    if (ready < wanted && !line.spare.empty()) {
        const uint32_t taken = wanted - ready;
        const uint32_t channels = line.ring->Channels();
        const std::span<int16_t> samples(block.data(), size_t{taken} * channels);
        if (!line.ring->Take(view.epoch, samples)) {
            return;
        }
        ALuint buffer = line.spare.back();
        line.spare.pop_back();
        alBufferData(buffer, channels == 2 ? AL_FORMAT_STEREO16 : AL_FORMAT_MONO16, samples.data(),
                     static_cast<ALsizei>(samples.size_bytes()), static_cast<ALsizei>(rate));
        alSourceQueueBuffers(line.source, 1, &buffer);
        line.queue.push_back({buffer, taken});
        line.queuedFrames += taken;
    }
    ALint state = AL_PLAYING;
    alGetSourcei(line.source, AL_SOURCE_STATE, &state);
    if (state != AL_PLAYING) {
        alSourcePlay(line.source);
    }
}

void DeleteLine(SOURCE_LINE& line) {
    DropQueue(line);
    alDeleteSources(1, &line.source);
    alDeleteBuffers(static_cast<ALsizei>(line.spare.size()), line.spare.data());
}

} // namespace

struct SoundDevice::Private {
    mutable RankedMutex<LockRank::kDevice> lock;
    LOOPBACK_CALLS calls;
    ALCdevice* device = nullptr;
    ALCcontext* context = nullptr;
    uint32_t rate = 0;
    uint32_t pullFrames = 0;
    std::vector<SOURCE_LINE> lines;
    std::vector<int16_t> block; // one feed
    std::vector<float> mixed;   // one pull
    SDL_AudioDeviceID sdlDevice = 0;
    bool sdlReady = false; // we have started SDL's audio subsystem
    ClockedOutput clocked; // pulls if SDL has only its dummy driver

    [[nodiscard]] uint32_t ReserveFrames() const {
        // At least one pull, or all that fall between two looks of the pump.
        const uint32_t framesPerLook = rate * kPumpMs / 1000;
        return kLookaheadFrames + (framesPerLook + pullFrames - 1) / pullFrames * pullFrames;
    }

    [[nodiscard]] SOURCE_LINE* Find(const SoundRing& ring) {
        const auto found = std::find_if(lines.begin(), lines.end(),
                                        [&ring](const SOURCE_LINE& x) { return x.ring == &ring; });
        return found == lines.end() ? nullptr : &*found;
    }

    [[nodiscard]] bool OpenContext(std::string& error);
    [[nodiscard]] bool MakeContext(ALCint hrtf);
    [[nodiscard]] bool HasHrtf() const;
    void DropContext();
    void CloseContext();
    void RenderPiece(int16_t* out, uint32_t frames);
};

bool SoundDevice::Private::OpenContext(std::string& error) {
    if (!FindLoopback(calls)) {
        error = "no sound: this OpenAL library has no loopback device";
        return false;
    }
    device = calls.openDevice(nullptr);
    if (device == nullptr) {
        error = "no sound: OpenAL cannot open its loopback device";
        return false;
    }
    const auto frequency = static_cast<ALCsizei>(rate);
    if (calls.isFormatSupported(device, frequency, ALC_STEREO_SOFT, ALC_FLOAT_SOFT) != ALC_TRUE) {
        error = "no sound: OpenAL cannot render stereo at " + std::to_string(rate) + " Hz";
        return false;
    }
    // Without HRTF data for the rate the library would still mix for headphones, so it is then opened
    // again without HRTF.
    bool made = MakeContext(ALC_TRUE);
    if (made && !HasHrtf()) {
        DropContext();
        made = MakeContext(ALC_FALSE);
    }
    if (!made) {
        error = "no sound: OpenAL cannot make a context at " + std::to_string(rate) + " Hz";
    }
    return made;
}

bool SoundDevice::Private::MakeContext(ALCint hrtf) {
    // Floats and no limiter, so that a stereo ring passes unchanged, without dither.
    const std::array<ALCint, 11> attributes{ALC_FORMAT_CHANNELS_SOFT,
                                            ALC_STEREO_SOFT,
                                            ALC_FORMAT_TYPE_SOFT,
                                            ALC_FLOAT_SOFT,
                                            ALC_FREQUENCY,
                                            static_cast<ALCint>(rate),
                                            ALC_HRTF_SOFT,
                                            hrtf,
                                            ALC_OUTPUT_LIMITER_SOFT,
                                            ALC_FALSE,
                                            0};
    context = alcCreateContext(device, attributes.data());
    return context != nullptr && alcMakeContextCurrent(context) == ALC_TRUE;
}

void SoundDevice::Private::DropContext() {
    if (context != nullptr) {
        alcMakeContextCurrent(nullptr);
        alcDestroyContext(context);
        context = nullptr;
    }
}

bool SoundDevice::Private::HasHrtf() const {
    ALCint on = ALC_FALSE;
    if (device != nullptr) {
        alcGetIntegerv(device, ALC_HRTF_SOFT, 1, &on);
    }
    return on == ALC_TRUE;
}

void SoundDevice::Private::CloseContext() {
    for (SOURCE_LINE& line : lines) {
        DeleteLine(line);
    }
    lines.clear();
    DropContext();
    if (device != nullptr) {
        alcCloseDevice(device);
        device = nullptr;
    }
}

void SoundDevice::Private::RenderPiece(int16_t* out, uint32_t frames) {
    for (SOURCE_LINE& line : lines) {
        Feed(line, frames, rate, block);
    }
    calls.renderSamples(device, mixed.data(), static_cast<ALCsizei>(frames));
    for (SOURCE_LINE& line : lines) {
        Settle(line);
    }
    std::transform(mixed.begin(), mixed.begin() + ptrdiff_t{frames} * 2, out, [](float sample) {
        return static_cast<int16_t>(
            std::lrintf(std::clamp(sample * 32768.0f, -32768.0f, 32767.0f)));
    });
}

SoundDevice::SoundDevice()
    : p(std::make_unique<Private>()) {}

SoundDevice::~SoundDevice() {
    Close();
}

bool SoundDevice::OpenLoopback(uint32_t rate, uint32_t framesPerPull, std::string& error) {
    Close();
    const std::lock_guard guard(p->lock);
    p->rate = rate;
    p->pullFrames = std::clamp(framesPerPull, 16u, 16384u);
    p->block.assign(size_t{p->pullFrames + kLookaheadFrames} * 2, 0);
    p->mixed.assign(size_t{p->pullFrames} * 2, 0.0f);
    if (!p->OpenContext(error)) {
        p->CloseContext();
        return false;
    }
    return true;
}

bool SoundDevice::OpenSdl(uint32_t rate, std::string& error) {
    Close();
    SilenceDriverMessages();
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        error = std::string("no sound: ") + SDL_GetError();
        return false;
    }
    p->sdlReady = true;
    SDL_AudioSpec wanted{};
    wanted.freq = static_cast<int>(rate);
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 2;
    wanted.samples = static_cast<Uint16>(SdlPullFrames(rate));
    wanted.userdata = this;
    wanted.callback = [](void* user, Uint8* stream, int bytes) {
        // SDL's buffers are aligned for any sample format.
        static_cast<SoundDevice*>(user)->Render(reinterpret_cast<int16_t*>(stream),
                                                static_cast<uint32_t>(bytes) / 4);
    };
    SDL_AudioSpec obtained{};
    const SDL_AudioDeviceID opened = SDL_OpenAudioDevice(nullptr, 0, &wanted, &obtained, 0);
    if (opened == 0) {
        error = std::string("no sound: ") + SDL_GetError();
        Close();
        return false;
    }
    // The device is still paused, so nothing pulls while the rest opens. OpenLoopback first closes what
    // is open, and does not know this output yet.
    p->sdlReady = false;
    const bool open = OpenLoopback(rate, obtained.samples, error);
    p->sdlReady = true;
    p->sdlDevice = opened;
    if (!open) {
        Close();
        return false;
    }
    if (IsStandIn(SDL_GetCurrentAudioDriver())) {
        p->clocked.Start(rate, obtained.samples,
                         [this](int16_t* out, uint32_t frames) { Render(out, frames); });
    } else {
        SDL_PauseAudioDevice(opened, 0);
    }
    return true;
}

void SoundDevice::Close() {
    // Without the lock: both wait for a pull that may be waiting for it.
    p->clocked.Stop();
    if (p->sdlDevice != 0) {
        SDL_CloseAudioDevice(p->sdlDevice);
        p->sdlDevice = 0;
    }
    if (p->sdlReady) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        p->sdlReady = false;
    }
    const std::lock_guard guard(p->lock);
    p->CloseContext();
}

uint32_t SoundDevice::SdlDevice() const {
    return p->sdlDevice;
}

bool SoundDevice::UsesHrtf() const {
    const std::lock_guard guard(p->lock);
    return p->HasHrtf();
}

void SoundDevice::Render(int16_t* out, uint32_t frames) {
    const std::lock_guard guard(p->lock);
    if (p->context == nullptr) {
        std::fill_n(out, size_t{frames} * 2, int16_t{0});
        return;
    }
    while (frames > 0) {
        const uint32_t piece = std::min(frames, p->pullFrames);
        p->RenderPiece(out, piece);
        out += size_t{piece} * 2;
        frames -= piece;
    }
}

bool SoundDevice::Attach(SoundRing& ring, RingKind kind) {
    const std::lock_guard guard(p->lock);
    if (p->context == nullptr) {
        return false;
    }
    alGetError();
    SOURCE_LINE line;
    line.ring = &ring;
    line.kind = kind;
    alGenSources(1, &line.source);
    if (alGetError() != AL_NO_ERROR) {
        return false;
    }
    line.spare.assign(kQueueBuffers, 0);
    line.queue.reserve(kQueueBuffers);
    alGenBuffers(static_cast<ALsizei>(line.spare.size()), line.spare.data());
    if (alGetError() != AL_NO_ERROR) {
        alDeleteSources(1, &line.source);
        return false;
    }
    if (kind == RingKind::kDirect) {
        alSourcei(line.source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
        alSourcei(line.source, AL_SOURCE_RELATIVE, AL_TRUE);
    }
    ring.SetReserveFrames(p->ReserveFrames());
    line.epoch = ring.View().epoch;
    p->lines.push_back(std::move(line));
    return true;
}

void SoundDevice::Detach(SoundRing& ring) {
    const std::lock_guard guard(p->lock);
    SOURCE_LINE* const line = p->Find(ring);
    if (line != nullptr) {
        DeleteLine(*line);
        p->lines.erase(p->lines.begin() + (line - p->lines.data()));
    }
}

void SoundDevice::PlaceRing(SoundRing& ring, const SOUND_PLACE& place) {
    const std::lock_guard guard(p->lock);
    const SOURCE_LINE* const line = p->Find(ring);
    if (line != nullptr && IsFinite(place)) {
        alSource3f(line->source, AL_POSITION, place.x, place.y, place.z);
    }
}

void SoundDevice::PlaceListener(const SOUND_PLACE& place, const SOUND_PLACE& front,
                                const SOUND_PLACE& top) {
    const std::lock_guard guard(p->lock);
    if (p->context == nullptr) {
        return;
    }
    // Both changes take effect together.
    alcSuspendContext(p->context);
    if (IsFinite(place)) {
        alListener3f(AL_POSITION, place.x, place.y, place.z);
    }
    if (IsBearing(front, top)) {
        const std::array<ALfloat, 6> bearing{front.x, front.y, front.z, top.x, top.y, top.z};
        alListenerfv(AL_ORIENTATION, bearing.data());
    }
    alcProcessContext(p->context);
}
