// A YM2612 whose samples are taken as they come, and the voices that its tests play. Channels count
// from 1 to 6 and operators from 1 to 4, as in the part's manual.
#pragma once

#include "base/audio_rate.h"
#include "megadrive/ym2612.h"
#include "megadrive/ym2612_tick.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

class Ym2612Rig : public testing::Test {
protected:
    static constexpr uint32_t kClock = 7'670'453; // 53,693,175 / 7
    static constexpr double kRate = kClock / 144.0;
    static constexpr int32_t kPeak = 8168; // of one carrier

    Ym2612Rig() { Start(); }

    void Start() {
        RegisterDefaultSettings(Settings());
        Ym2612SetClock(*ym, kClock);
        Ym2612Reset(*ym);
    }

    void TearDown() override {
        SetAudioRate(44100);
        Settings().SetInt(L"audio_app_quality", 1);
    }

    // --- registers ---

    // Bit 8 of `reg` is the second port.
    void Set(int reg, int value) {
        const uint32_t port = (reg & 0x100) != 0 ? 2 : 0;
        Ym2612Write(*ym, port, static_cast<uint8_t>(reg));
        Ym2612Write(*ym, port + 1, static_cast<uint8_t>(value));
    }

    // A register that every channel has.
    void SetChannel(int channel, int reg, int value) {
        Set(channel > 3 ? 0x100 | (reg + channel - 4) : reg + channel - 1, value);
    }

    // A register that every operator has. The manual's order of their offsets is 1, 3, 2, 4.
    void SetOperator(int channel, int op, int reg, int value) {
        constexpr std::array<int, 4> kOffset{0, 8, 4, 12};
        SetChannel(channel, reg + kOffset.at(static_cast<size_t>(op - 1)), value);
    }

    void SetOperators(int channel, int reg, int value) {
        for (int op = 1; op <= 4; ++op) {
            SetOperator(channel, op, reg, value);
        }
    }

    // All four operators are silent sines that sound at once, are held, and end quickly.
    void PureVoice(int channel, int algorithm = 7) {
        SetOperators(channel, 0x30, 0x01);
        SetOperators(channel, 0x40, 0x7F);
        SetOperators(channel, 0x50, 0x1F);
        SetOperators(channel, 0x60, 0x00);
        SetOperators(channel, 0x70, 0x00);
        SetOperators(channel, 0x80, 0x0F);
        SetOperators(channel, 0x90, 0x00);
        SetChannel(channel, 0xB0, algorithm);
    }

    void Level(int channel, int op, int level) { SetOperator(channel, op, 0x40, level); }

    void Pitch(int channel, int block, int fnum) {
        SetChannel(channel, 0xA4, block << 3 | fnum >> 8);
        SetChannel(channel, 0xA0, fnum & 0xFF);
    }

    // `operators` has bit n for operator n + 1.
    void Keys(int channel, int operators) {
        Set(0x28, operators << 4 | (channel > 3 ? channel : channel - 1));
    }

    // One operator of a channel as a sine at full level, everything else silent.
    void PlayOne(int channel, int op, int block, int fnum) {
        PureVoice(channel);
        Level(channel, op, 0);
        Pitch(channel, block, fnum);
        Keys(channel, 15);
    }

    YM2612_SLOT& Slot(int channel, int op) {
        constexpr std::array<size_t, 4> kPlace{0, 2, 1, 3};
        return ym->channels.at(static_cast<size_t>(channel - 1))
            .slots.at(kPlace.at(static_cast<size_t>(op - 1)));
    }

    // --- sound ---

    // Runs 144 clocks a sample; side 0 is left.
    std::vector<double> Run(size_t count, size_t side = 0) {
        std::vector<double> out;
        out.reserve(count);
        for (size_t i = 0; i < count; ++i) {
            ym->pairs->sampleCount = 0;
            for (uint32_t clock = 0; clock < 144; ++clock) {
                Ym2612Tick(*ym);
            }
            out.push_back(ym->pairs->samples.at(side));
        }
        ym->pairs->sampleCount = 0;
        return out;
    }

    // The same without listening.
    void Skip(size_t count) {
        for (size_t i = 0; i < count; ++i) {
            ym->pairs->sampleCount = 0;
            Ym2612MakeSample(*ym);
        }
        ym->pairs->sampleCount = 0;
    }

    // Cycles a second between the first and the last rising zero crossing.
    static double FrequencyOf(const std::vector<double>& samples) {
        double first = -1.0;
        double last = -1.0;
        int cycles = -1;
        for (size_t i = 1; i < samples.size(); ++i) {
            if (samples[i - 1] < 0.0 && samples[i] >= 0.0) {
                const double at =
                    static_cast<double>(i) - samples[i] / (samples[i] - samples[i - 1]);
                first = cycles < 0 ? at : first;
                last = at;
                ++cycles;
            }
        }
        return cycles < 1 ? 0.0 : cycles * kRate / (last - first);
    }

    static double PeakOf(const std::vector<double>& samples, size_t from, size_t count) {
        double peak = 0.0;
        for (size_t i = from; i < std::min(from + count, samples.size()); ++i) {
            peak = std::max(peak, std::fabs(samples[i]));
        }
        return peak;
    }
    static double PeakOf(const std::vector<double>& samples) {
        return PeakOf(samples, 0, samples.size());
    }

    // How many dB under one full carrier; silence is 999.
    static double AttenuationOf(double peak) {
        return peak < 0.5 ? 999.0 : 20.0 * std::log10(kPeak / peak);
    }

    // The manual's formula: F-number x 2^(block - 1) x multiple x rate / 2^20.
    static double PublishedFrequency(int block, int fnum, double multiple) {
        return fnum * std::exp2(block - 1) * multiple * kRate / 1'048'576.0;
    }

    static std::vector<uint8_t> StateOf(const YM2612& chip) {
        std::vector<uint8_t> state(Ym2612StateSize());
        EXPECT_EQ(Ym2612SaveState(chip, state.data()).At(), state.data() + state.size());
        return state;
    }

    std::unique_ptr<HEARD_CHIP<YM2612>> ym = std::make_unique<HEARD_CHIP<YM2612>>();
};
