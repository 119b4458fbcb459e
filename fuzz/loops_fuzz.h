// For the entries that run a program on both frame loops of a machine: pictures, sound and the last state must be
// the same.
#pragma once

#include "machine_fuzz.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct FUZZ_FRAME {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint32_t> pixels;
    std::vector<int16_t> samples;

    [[nodiscard]] bool operator==(const FUZZ_FRAME&) const = default;
};

inline FUZZ_FRAME FuzzFrame(CEmuSystem& machine) {
    FUZZ_FRAME frame;
    frame.pixels.resize(size_t{machine.width} * machine.height);
    frame.samples.resize(size_t{kAudioFramePairs} * 2);
    EMU_VIDEO_FRAME video{};
    video.pixels = frame.pixels.data();
    EMU_AUDIO_FRAME audio{};
    audio.samples = frame.samples.data();
    audio.sampleRate = 44100;
    EMU_INPUT_STATE input{};
    machine.RunFrame(&input, &video, &audio);
    frame.width = video.width;
    frame.height = video.height;
    frame.samples.resize(size_t{audio.sampleCount} * 2);
    return frame;
}

// `start` makes a machine with its program, or null if the machine refuses it.
template <typename Start>
void FuzzLoops(Start&& start, int frames) {
    const auto fast = start();
    const auto plain = start();
    if (!fast || !plain) {
        FuzzRequire(!fast && !plain);
        return;
    }
    plain->SetPlainLoop(true);
    for (int frame = 0; frame < frames; ++frame) {
        FuzzRequire(FuzzFrame(*fast) == FuzzFrame(*plain));
    }
    FuzzRequire(FuzzSave(*fast) == FuzzSave(*plain));
}
