// An APU with memory for its sample channel, run cycle by cycle.
#pragma once

#include "nes/apu.h"
#include "nes/apu_tick.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

class ApuRig {
public:
    ApuRig() {
        RegisterDefaultSettings(Settings());
        ApuInit(*apu, ReadByte, this);
        ApuReset(*apu, true, &irqLines);
    }

    void Write(int address, int value) {
        ApuWrite(*apu, static_cast<uint16_t>(address), static_cast<uint8_t>(value));
    }
    void Writes(std::initializer_list<std::pair<int, int>> writes) {
        for (const auto& [address, value] : writes) {
            Write(address, value);
        }
    }
    int Status() { return ApuReadStatus(*apu); }

    void Run(uint64_t cycles) {
        for (uint64_t i = 0; i < cycles; ++i) {
            ApuTick(*apu);
            ++cycle;
            apu->stallCycles = 0;
            if (apu->pairs->sampleCount != 0) {
                raw.push_back(apu->pairs->samples[0]);
                sidesDiffer = sidesDiffer || apu->pairs->samples[0] != apu->pairs->samples[1];
                apu->pairs->sampleCount = 0;
            }
        }
    }

    // The raw pairs of the next `pairs` x 8 cycles, one value each: both sides are the same.
    std::vector<int> Raw(uint64_t pairs) {
        raw.clear();
        Run(pairs * 8);
        return raw;
    }

    // Makes the next cycles clock a half frame, and with it a quarter frame.
    void HalfFrame() {
        Write(0x4017, 0x80);
        Run(3);
    }
    // The same for a quarter frame only.
    void QuarterFrame() {
        Write(0x4017, 0x40);
        Run(7461);
    }

    // Runs to an even cycle, where a write to 0x4017 acts one cycle earlier.
    void Align() {
        while (apu->sampleClock != 0) {
            Run(1);
        }
    }

    std::unique_ptr<HEARD_CHIP<APU>> apu = std::make_unique<HEARD_CHIP<APU>>();
    uint32_t irqLines = 0;
    uint64_t cycle = 0;
    std::vector<int> raw;
    bool sidesDiffer = false;
    std::array<uint8_t, 0x10000> memory{};
    std::vector<int> fetched; // addresses that the sample channel has read

private:
    static uint8_t ReadByte(void* owner, uint16_t address) {
        auto& rig = *static_cast<ApuRig*>(owner);
        rig.fetched.push_back(address);
        return rig.memory[address];
    }
};

// Frequency in Hz, by the first and the last rise through zero.
inline double Frequency(const std::vector<int>& samples) {
    size_t first = 0;
    size_t last = 0;
    size_t edges = 0;
    for (size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] <= 0 && samples[i] > 0) {
            first = edges == 0 ? i : first;
            last = i;
            ++edges;
        }
    }
    return edges < 2 ? 0.0
                     : static_cast<double>(edges - 1) * kApuSampleRate /
                           static_cast<double>(last - first);
}

inline int Highest(const std::vector<int>& samples) {
    return *std::max_element(samples.begin(), samples.end());
}
inline int Lowest(const std::vector<int>& samples) {
    return *std::min_element(samples.begin(), samples.end());
}

// The published length table; index: value >> 3.
inline constexpr std::array<int, 32> kLengths{10, 254, 20,  2,  40, 4,  80, 6,  160, 8,  60,
                                              10, 14,  12,  26, 14, 12, 16, 24, 18,  48, 20,
                                              96, 22,  192, 24, 72, 26, 16, 28, 32,  30};
