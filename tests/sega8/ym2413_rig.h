// A YM2413 whose samples are collected, and the voices that its tests play.
#pragma once

#include "base/audio_rate.h"
#include "sega8/ym2413.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

class YmRig : public testing::Test {
protected:
    static constexpr uint32_t kClock = 3'579'545; // 53,693,175 / 15
    static constexpr double kRate = kClock / 72.0;

    YmRig() { Start(); }

    void Start() {
        RegisterDefaultSettings(Settings());
        YmInit(*ym, kClock);
        YmReset(*ym);
    }

    void TearDown() override {
        SetAudioRate(44100);
        Settings().SetInt(L"audio_app_quality", 1);
    }

    // Runs 72 clocks a sample.
    std::vector<double> Run(size_t count) {
        std::vector<double> out;
        out.reserve(count);
        for (size_t i = 0; i < count; ++i) {
            ym->pairs->sampleCount = 0;
            for (uint32_t clock = 0; clock < 72; ++clock) {
                YmTick(*ym);
            }
            out.push_back(ym->pairs->samples[0]);
        }
        ym->pairs->sampleCount = 0;
        return out;
    }

    // The same without the samples.
    void Skip(size_t count) {
        for (size_t i = 0; i < count; ++i) {
            ym->pairs->sampleCount = 0;
            YmMakeSample(*ym);
        }
        ym->pairs->sampleCount = 0;
    }

    void Write(std::initializer_list<std::pair<int, int>> writes) {
        for (const auto& [reg, value] : writes) {
            YmWrite(*ym, static_cast<uint8_t>(reg), static_cast<uint8_t>(value));
        }
    }

    // The user's voice as a plain sine with an instant attack and no decay; the modulator never
    // attacks.
    void PureVoice() {
        Write({
            {0, 0x20},
            {1, 0x21},
            {2, 0x3F},
            {3, 0x00},
            {4, 0x00},
            {5, 0xF0},
            {6, 0x00},
            {7, 0x0F}
        });
    }

    void KeyOn(int channel, int block, int fnum, int more = 0) {
        Write({
            {0x10 + channel, fnum & 0xFF                         },
            {0x20 + channel, 0x10 | block << 1 | fnum >> 8 | more}
        });
    }

    void KeyOff(int channel, int block, int fnum, int more = 0) {
        Write({
            {0x20 + channel, block << 1 | fnum >> 8 | more}
        });
    }

    YM_SLOT& Modulator(size_t channel) { return ym->channels[channel].slots[0]; }
    YM_SLOT& Carrier(size_t channel) { return ym->channels[channel].slots[1]; }

    std::unique_ptr<HEARD_CHIP<YM2413>> ym = std::make_unique<HEARD_CHIP<YM2413>>();
};
