#include "audio/sound_pump.h"

#include "host/host_data.h"
#include "host/session.h"
#include "settings/settings.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double kBoostLowHz = 600.0;
constexpr double kBoostHighHz = 5000.0;
constexpr uint32_t kPairBytes = 4;

// A write position further ahead of the play cursor than the gap plus this is moved back.
constexpr uint32_t kLargestLeadMs = 20;
// A moved write position is set to the gap plus this.
constexpr uint32_t kLeadMs = 5;

// Waiting sound below which frames get shorter, and above which they get longer.
constexpr uint32_t kShortenBelowMs = 20;
constexpr uint32_t kLengthenAboveMs = 35;

// The ring that plays, with the channel's numbers for it.
struct LINE {
    SoundRing& ring;
    uint32_t& lastPlay;
    uint32_t& write;
    bool positional;
};

// Bytes of 5 ms of stereo, the unit of the first write positions.
uint32_t UnitBytes(uint32_t rate) {
    return rate * kPairBytes / 200;
}

double FiniteGain(float gain) {
    return std::isfinite(gain) ? static_cast<double>(gain) : 1.0;
}

void SwitchRings(SoundRing& from, SoundRing& to) {
    from.Stop();
    to.SetPosition(0);
    to.Play();
}

void ResetCursors(SoundChannel& channel) {
    const uint64_t unit = UnitBytes(channel.rate);
    channel.lastPlayStereo = 0;
    channel.lastPlayMono = 0;
    channel.writeStereo = channel.stereo.Wrap(8 * unit);
    channel.writeMono = channel.mono.Wrap(4 * unit);
}

// Chooses full screen or room, and heard or not.
void ChooseRing(EMU_THREAD& session, SoundChannel& channel, const PUMP_SURROUNDINGS& surroundings) {
    if (surroundings.inFront && !surroundings.roomVisible) {
        if (session.sound.directSound == 0) {
            SwitchRings(channel.mono, channel.stereo);
            ResetCursors(channel);
        }
        session.sound.directSound = 1;
        session.sound.audible = 1;
        return;
    }
    session.sound.audible = surroundings.roomVisible ? 1 : 0;
    if (surroundings.roomVisible && session.sound.directSound != 0) {
        SwitchRings(channel.stereo, channel.mono);
        ResetCursors(channel);
        session.sound.directSound = 0;
    }
}

// The bands are summed in double precision, the volume is applied in single. NaN becomes the lowest
// sample.
float Clip(double value) {
    return static_cast<float>(value >= -32768.0 ? std::min(value, 32767.0) : -32768.0);
}

// Clipped before the volume, so that clipping does not depend on a low volume; and after it, so that a
// volume above one cannot wrap.
int16_t Finish(float value) {
    return static_cast<int16_t>(Clip(value));
}

int16_t SampleAt(const uint8_t* bytes, size_t index) {
    int16_t sample = 0;
    std::memcpy(&sample, bytes + index * 2, sizeof(sample));
    return sample;
}

void BoostStereo(SoundChannel& channel, const uint8_t* pending, size_t pairs, float volume) {
    for (size_t i = 0; i < pairs * 2; ++i) {
        const double boosted = channel.filters[i % 2].Process(SampleAt(pending, i));
        channel.scratch[i] = Finish(Clip(boosted) * volume);
    }
}

void BoostMono(SoundChannel& channel, const uint8_t* pending, size_t pairs, float volume) {
    for (size_t i = 0; i < pairs; ++i) {
        const float left = Clip(channel.filters[0].Process(SampleAt(pending, i * 2)));
        const float right = Clip(channel.filters[1].Process(SampleAt(pending, i * 2 + 1)));
        channel.scratch[i] = Finish((left + right) * volume * 0.5f);
    }
}

// The waiting bytes for this round, at most those in the buffer or what a ring holds.
uint32_t BoundWaiting(EMU_THREAD& session, EMU_HOST_DATA& data, SoundChannel& channel) {
    const auto waiting = std::min<uint32_t>(
        session.sound.soundBytes.load(std::memory_order_relaxed),
        static_cast<uint32_t>(std::min<size_t>(data.pending.size(), channel.stereo.LengthBytes())));
    const uint32_t kept = channel.backlog.Bound(data.pending.data(), waiting);
    if (kept != waiting) {
        session.sound.soundBytes.store(kept, std::memory_order_relaxed);
        session.statistics.soundRepositions.fetch_add(1, std::memory_order_relaxed);
    }
    return kept;
}

// Whether the write position was out of bounds and had to be moved.
bool Reposition(const LINE& line, uint32_t play, uint32_t soundGapMs) {
    const uint32_t ahead = line.ring.Distance(play, line.write) / line.ring.BytesPerMs();
    const uint32_t largest = soundGapMs + kLargestLeadMs;
    const bool tooFar = line.positional ? ahead >= largest : ahead > largest;
    if (ahead > soundGapMs && !tooFar) {
        return false;
    }
    line.write = line.ring.Wrap(play + uint64_t{soundGapMs + kLeadMs} * line.ring.BytesPerMs());
    line.lastPlay = play;
    return true;
}

void WriteLine(const EMU_THREAD& session, EMU_HOST_DATA& data, SoundChannel& channel,
               const LINE& line, uint32_t bytes, float volume) {
    const size_t frames = bytes / line.ring.FrameBytes();
    if (session.sound.audible == 0) {
        line.ring.WriteSilence(line.write, bytes);
    } else {
        if (line.positional) {
            BoostMono(channel, data.pending.data(), frames, volume);
        } else {
            BoostStereo(channel, data.pending.data(), frames, volume);
        }
        line.ring.Write(line.write, {channel.scratch.data(), bytes / 2});
    }
    line.write = line.ring.Wrap(uint64_t{line.write} + bytes);
}

int32_t BiasFor(uint32_t waitingBytes, const SoundRing& stereo) {
    if (waitingBytes < kShortenBelowMs * stereo.BytesPerMs()) {
        return -1;
    }
    return waitingBytes > kLengthenAboveMs * stereo.BytesPerMs() ? 1 : 0;
}

} // namespace

SoundChannel::SoundChannel(uint32_t rateValue)
    : rate(rateValue)
    , stereo(2, rateValue)
    , mono(1, rateValue)
    , backlog(rateValue)
    , scratch(static_cast<size_t>(rateValue) * 2 * 2) {
    for (BandSplitter& filter : filters) {
        filter.SetCrossovers(rate, kBoostLowHz, kBoostHighHz);
    }
    ReadBoosts();
    Restart();
}

void SoundChannel::ReadBoosts() {
    const SettingsStore& settings = Settings();
    for (BandSplitter& filter : filters) {
        filter.gains = {FiniteGain(settings.GetFloat(L"audio_boost_low")),
                        FiniteGain(settings.GetFloat(L"audio_boost_mid")),
                        FiniteGain(settings.GetFloat(L"audio_boost_high"))};
    }
}

void SoundChannel::Restart() {
    stereo.Stop();
    mono.Stop();
    stereo.WriteSilence(0, stereo.LengthBytes());
    mono.WriteSilence(0, mono.LengthBytes());
    backlog.Restart();
    lastPlayStereo = 0;
    lastPlayMono = 0;
    writeStereo = stereo.Wrap(uint64_t{10} * UnitBytes(rate));
    writeMono = mono.Wrap(uint64_t{5} * UnitBytes(rate));
    mono.SetPosition(0);
    mono.Play();
}

void PumpChannel(EMU_THREAD& session, EMU_HOST_DATA& data, SoundChannel& channel,
                 const PUMP_SURROUNDINGS& surroundings, uint32_t& soundGapMs) {
    ChooseRing(session, channel, surroundings);
    const bool direct = session.sound.directSound != 0;
    const LINE line = direct
                          ? LINE{channel.stereo, channel.lastPlayStereo, channel.writeStereo, false}
                          : LINE{channel.mono, channel.lastPlayMono, channel.writeMono, true};

    const auto [play, safe] = line.ring.Cursors();
    const uint32_t gap = line.ring.Distance(play, safe);
    soundGapMs = std::max(soundGapMs, gap / line.ring.BytesPerMs());
    // What has been heard is cleared: the ring of a game that makes no more sound, as while it is paused, falls silent
    // instead of repeating its last second.
    const uint32_t heard = line.ring.Distance(line.lastPlay, play);
    line.ring.WriteSilence(line.lastPlay, heard);

    const uint32_t waiting = BoundWaiting(session, data, channel);
    const uint32_t usable = line.positional ? waiting / 2 : waiting;
    const uint32_t bytes =
        std::min(heard, usable) / line.ring.FrameBytes() * line.ring.FrameBytes();
    if (bytes == 0) {
        return;
    }
    line.lastPlay = line.ring.Wrap(uint64_t{line.lastPlay} + bytes);
    if (Reposition(line, play, soundGapMs)) {
        session.statistics.soundRepositions.fetch_add(1, std::memory_order_relaxed);
    }
    WriteLine(session, data, channel, line, bytes, surroundings.volume);
    data.syncBias.store(BiasFor(waiting, channel.stereo), std::memory_order_relaxed);

    const uint32_t used = line.positional ? bytes * 2 : bytes;
    channel.backlog.Taken(waiting, used);
    std::memmove(data.pending.data(), data.pending.data() + used, waiting - used);
    session.sound.soundBytes.store(waiting - used, std::memory_order_relaxed);
}
