// A session with a sound channel but without thread, machine or device, for the pump's tests. The
// test plays the device: it moves the rings by hand.
#pragma once

#include "audio/sound_channel.h"
#include "audio/sound_pump.h"
#include "base/audio_rate.h"
#include "host/host_data.h"
#include "host/session.h"
#include "settings/settings.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

struct SoundRig {
    EMU_THREAD session;
    EMU_HOST_DATA data;
    std::unique_ptr<SoundChannel> channel;
    PUMP_SURROUNDINGS surroundings{true, false, 1.0f};
    uint32_t gapMs = 0;
    uint32_t reserveFrames = 0; // 25 ms unless a test sets it

    explicit SoundRig(uint32_t rate = 44100) {
        SetAudioRate(rate);
        reserveFrames = rate / 40;
        RegisterDefaultSettings(Settings());
        Settings().SetFloat(L"audio_boost_low", 1.0f);
        MakeChannel();
        data.pending.assign(size_t{rate} * 8, 0);
        session.hostData = &data;
    }
    ~SoundRig() { SetAudioRate(44100); }
    SoundRig(const SoundRig&) = delete;
    SoundRig& operator=(const SoundRig&) = delete;

    // Again, with the current settings.
    void MakeChannel() {
        channel = std::make_unique<SoundChannel>(AudioRate());
        data.sound = channel.get();
        data.noSound = false;
        SetReserve(reserveFrames);
    }

    // The device reads this far ahead of the play cursor.
    void SetReserve(uint32_t frames) {
        reserveFrames = frames;
        channel->stereo.SetReserveFrames(frames);
        channel->mono.SetReserveFrames(frames);
    }

    void Pump() { PumpChannel(session, data, *channel, surroundings, gapMs); }

    [[nodiscard]] SoundRing& Active() {
        return session.sound.directSound != 0 ? channel->stereo : channel->mono;
    }

    // The device plays `frames` of the ring in use and returns what was heard.
    std::vector<int16_t> Play(uint32_t frames) {
        SoundRing& ring = Active();
        std::vector<int16_t> heard(size_t{frames} * ring.Channels());
        const uint32_t epoch = ring.View().epoch;
        (void)ring.Take(epoch, heard);
        ring.Heard(epoch, frames);
        return heard;
    }

    // Adds samples for the pump, as the host does.
    void Append(std::span<const int16_t> samples) {
        const uint32_t at = session.sound.soundBytes;
        std::memcpy(data.pending.data() + at, samples.data(), samples.size_bytes());
        session.sound.soundBytes = at + static_cast<uint32_t>(samples.size_bytes());
    }
    void AppendPairs(uint32_t pairs, int16_t left, int16_t right) {
        std::vector<int16_t> samples;
        for (uint32_t i = 0; i < pairs; ++i) {
            samples.push_back(left);
            samples.push_back(right);
        }
        Append(samples);
    }

    // The contents of a ring, read without moving its cursors.
    [[nodiscard]] static std::vector<int16_t> Content(const SoundRing& source, uint32_t position,
                                                      uint32_t frames) {
        std::vector<int16_t> samples(size_t{frames} * source.Channels());
        source.Read(position, samples);
        return samples;
    }
};
