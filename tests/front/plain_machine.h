// A replacement for the Master System in tests of the window: it shows one plain colour in a picture
// whose place and shape the test chooses, and records the pointers it got.
#pragma once

#include "formats/game_file.h"
#include "host/machine_list.h"
#include "machine/emu_system.h"
#include "settings/bindings.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>

inline constexpr uint32_t kPlainWidth = 320;
inline constexpr uint32_t kPlainHeight = 240;
inline constexpr uint32_t kPlainColour = 0xFFC8B4A0; // not grey, as static is

// Of the whole picture and of its visible window, 256 by 192.
struct PLAIN_SHAPE {
    float aspect = 1.0f;
    float visibleAspect = 2.0f;
    uint32_t visibleX = 32;
    uint32_t visibleY = 24;
};
inline PLAIN_SHAPE gPlainShape{}; // set before a game starts

// Written by the session's thread in every frame, `frames` last.
struct PLAIN_INPUT {
    std::atomic<uint64_t> pointers[2]; // y << 32 | x
    std::atomic<bool> trigger;         // button 1 of player 1
    std::atomic<uint32_t> frames;
};
inline PLAIN_INPUT gPlainInput{};

class CPlainMachine : public CEmuSystem {
public:
    explicit CPlainMachine(uint32_t key)
        : CEmuSystem(key, kPlainWidth, kPlainHeight) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override {}

    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override {
        for (size_t player = 0; player < 2; ++player) {
            gPlainInput.pointers[player] =
                uint64_t{input->pointer[player].y} << 32 | input->pointer[player].x;
        }
        gPlainInput.trigger = InputIsDown(sessionKey, L"SMS P1 BUTTON1");
        ++gPlainInput.frames;
        video->width = kPlainWidth;
        video->height = kPlainHeight;
        video->aspect = gPlainShape.aspect;
        video->visibleX = gPlainShape.visibleX;
        video->visibleY = gPlainShape.visibleY;
        video->visibleWidth = 256;
        video->visibleHeight = 192;
        video->visibleAspect = gPlainShape.visibleAspect;
        std::fill_n(video->pixels, size_t{kPlainWidth} * kPlainHeight, kPlainColour);
        audio->sampleCount = 147; // a third of a hundredth of a second
        std::fill_n(audio->samples, size_t{147} * 2, int16_t{0});
    }

    bool LoadState(const uint8_t*, uint32_t) override { return true; }
    uint32_t StateSize() override { return 1; }
    void WriteState(StateOut out) override { out.PutScalar(uint8_t{0}); }
};

inline const MACHINE_LIST& PlainMachines() {
    static constexpr MACHINE_ENTRY kMachines[] = {
        {kSystemMasterSystem, ".\\sms",
         [](uint32_t key) -> std::unique_ptr<CEmuSystem> {
             return std::make_unique<CPlainMachine>(key);
         }},
    };
    static constexpr MACHINE_LIST kList{kMachines, nullptr};
    return kList;
}
