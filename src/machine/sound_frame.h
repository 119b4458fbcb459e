// How machines put their chips' resampled sound into an EMU_AUDIO_FRAME.
//
// Sound and states: after the chips a state holds the resamplers' history, so that a loaded run makes
// exactly the samples of the saved one. A state without it, or of other sound settings, differs only in
// the first milliseconds: the resamplers then start empty.
#pragma once

#include "machine/chip_sound.h"
#include "machine/emu_system.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>

// The size of a machine's resamplers in a state.
[[nodiscard]] inline uint32_t SoundStateSize(std::initializer_list<const ChipSound*> resamplers) {
    uint32_t size = 0;
    for (const ChipSound* resampler : resamplers) {
        size += resampler->StateSize();
    }
    return size;
}

inline void SaveSoundState(std::initializer_list<const ChipSound*> resamplers, StateOut out) {
    for (const ChipSound* resampler : resamplers) {
        out = resampler->SaveState(out);
    }
}

// Loads the end of a state; `data` may be null if nothing is left. From the first piece that does not
// fit, the resamplers start empty.
inline void LoadSoundState(std::initializer_list<ChipSound*> resamplers, const uint8_t* data,
                           uint32_t size) {
    for (ChipSound* resampler : resamplers) {
        const uint32_t used = resampler->LoadState(data, size);
        data += used;
        size = used != 0 ? size - used : 0;
    }
}

[[nodiscard]] inline int16_t ClipSample(int32_t value) {
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

// The ready values that fit into the frame.
[[nodiscard]] inline uint32_t ReadyValues(const ChipSound& resampler) {
    const auto ready = static_cast<uint32_t>(resampler.Output().size());
    return std::min(ready, kAudioFramePairs * 2) & ~1u;
}

// All the sound of one chip.
inline void TakeSound(ChipSound& from, EMU_AUDIO_FRAME& audio) {
    const uint32_t values = ReadyValues(from);
    std::copy_n(from.Output().begin(), values, audio.samples);
    from.Consume(static_cast<int32_t>(values));
    audio.sampleCount = values / 2;
}

// `values` values of both chips, combined by `mix` (int32_t, int32_t to int32_t) and clipped; fewer if
// one of them has fewer.
template <typename Mix>
inline void MixSound(ChipSound& first, ChipSound& second, uint32_t values, EMU_AUDIO_FRAME& audio,
                     Mix mix) {
    const uint32_t count = std::min({values, ReadyValues(first), ReadyValues(second)});
    for (uint32_t i = 0; i < count; ++i) {
        audio.samples[i] = ClipSample(mix(first.Output()[i], second.Output()[i]));
    }
    first.Consume(static_cast<int32_t>(count));
    second.Consume(static_cast<int32_t>(count));
    audio.sampleCount = count / 2;
}
