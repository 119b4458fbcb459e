#include "host/frame_sound.h"

#include "base/audio_rate.h"

#include <algorithm>

namespace {

uint32_t FadePairs(uint32_t rate) {
    constexpr uint32_t kFadesInASecond = 200;
    return std::clamp<uint32_t>(rate / kFadesInASecond, 1, kAudioFramePairs);
}

// The value `step` / `steps` of the way from one sample to the next.
int16_t Between(int16_t from, int16_t to, uint32_t step, uint32_t steps) {
    const int32_t way = int32_t{to} - from;
    return static_cast<int16_t>(from + static_cast<int32_t>(int64_t{way} * step / steps));
}

} // namespace

SOUND_FRAME::SOUND_FRAME()
    : samples(AllocateAligned<int16_t>(size_t{kAudioFramePairs} * 2)) {
    frame.samples = samples.get();
    frame.sampleRate = AudioRate();
}

SoundPair EmuLastPair(const EMU_AUDIO_FRAME& audio, SoundPair before) {
    if (audio.sampleCount == 0) {
        return before;
    }
    const size_t last = size_t{audio.sampleCount - 1} * 2;
    return {audio.samples[last], audio.samples[last + 1]};
}

void EmuReverseSound(EMU_AUDIO_FRAME& audio) {
    const size_t pairs = audio.sampleCount;
    for (size_t i = 0, j = pairs; i < j--; ++i) {
        const int16_t early = audio.samples[2 * i];
        const int16_t late = audio.samples[2 * j];
        audio.samples[2 * i] = audio.samples[2 * i + 1] = late;
        audio.samples[2 * j] = audio.samples[2 * j + 1] = early;
    }
}

void EmuStretchSound(const EMU_AUDIO_FRAME& audio, uint32_t part, uint32_t parts, SoundPair before,
                     EMU_AUDIO_FRAME& out) {
    out.sampleCount = audio.sampleCount;
    for (uint32_t i = 0; i < audio.sampleCount; ++i) {
        const uint32_t at = part * audio.sampleCount + i;
        const size_t pair = at / parts;
        for (size_t side = 0; side < 2; ++side) {
            const int16_t from = pair == 0 ? before[side] : audio.samples[pair * 2 - 2 + side];
            out.samples[size_t{i} * 2 + side] =
                Between(from, audio.samples[pair * 2 + side], at % parts + 1, parts);
        }
    }
}

void EmuFadeOut(SoundPair last, EMU_AUDIO_FRAME& out) {
    const uint32_t pairs = FadePairs(out.sampleRate);
    out.sampleCount = pairs;
    for (uint32_t i = 0; i < pairs; ++i) {
        for (size_t side = 0; side < 2; ++side) {
            out.samples[size_t{i} * 2 + side] = Between(last[side], 0, i + 1, pairs);
        }
    }
}

void EmuFadeIn(EMU_AUDIO_FRAME& audio) {
    const uint32_t pairs = std::min(FadePairs(audio.sampleRate), audio.sampleCount);
    for (uint32_t i = 0; i < pairs; ++i) {
        for (size_t side = 0; side < 2; ++side) {
            int16_t& sample = audio.samples[size_t{i} * 2 + side];
            sample = Between(0, sample, i + 1, pairs);
        }
    }
}
