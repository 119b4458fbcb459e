// How the machines here bring their chips' resampled sound into an EMU_AUDIO_FRAME.
//
// Guaranteed about sound and states: a state holds the sound chips but not what a resampler has on its
// way, so loading one empties the resamplers. Two runs from one state give the same samples. A run
// that goes on after saving and one that begins by loading give the same pictures, while their sound
// differs by the samples that were on their way: a converter that starts afresh gives its first
// samples later and differs from the other until its history is filled.
#pragma once

#include "audio/resampler.h"
#include "host/emu_system.h"

#include <algorithm>
#include <cstdint>

[[nodiscard]] inline int16_t ClipSample(int32_t value) {
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

// Values that fit into the frame, of those that are ready.
[[nodiscard]] inline uint32_t ReadyValues(const AudioResampler& resampler) {
    const auto ready = static_cast<uint32_t>(resampler.Output().size());
    return std::min(ready, kAudioFramePairs * 2) & ~1u;
}

// All the sound of one chip.
inline void TakeSound(AudioResampler& from, EMU_AUDIO_FRAME& audio) {
    const uint32_t values = ReadyValues(from);
    std::copy_n(from.Output().begin(), values, audio.samples);
    from.Consume(static_cast<int32_t>(values));
    audio.sampleCount = values / 2;
}

// `values` values of both chips, joined by `mix` (int32_t, int32_t to int32_t) and clipped; fewer when
// one of them has fewer.
template <typename Mix>
inline void MixSound(AudioResampler& first, AudioResampler& second, uint32_t values,
                     EMU_AUDIO_FRAME& audio, Mix mix) {
    const uint32_t count = std::min({values, ReadyValues(first), ReadyValues(second)});
    for (uint32_t i = 0; i < count; ++i) {
        audio.samples[i] = ClipSample(mix(first.Output()[i], second.Output()[i]));
    }
    first.Consume(static_cast<int32_t>(count));
    second.Consume(static_cast<int32_t>(count));
    audio.sampleCount = count / 2;
}
