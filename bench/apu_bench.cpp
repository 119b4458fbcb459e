// The APU: cost of a cycle and multiple of real time. A frame is a sixtieth of a second of CPU cycles; with the
// resampler its sound is flushed and taken at the end.
#include "base/audio_rate.h"
#include "machine/sound_settings.h"
#include "nes/apu.h"
#include "nes/apu_tick.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t kFrameCycles = 29'781;

void Prepare(int quality) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", quality);
    SetAudioRate(44100);
}

void Report(benchmark::State& state) {
    const auto frames = static_cast<double>(state.iterations());
    state.counters["timesRealTime"] =
        benchmark::Counter(frames / 60.0988, benchmark::Counter::kIsRate);
    state.counters["perCycle"] = benchmark::Counter(
        frames * kFrameCycles, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

uint8_t SampleByte(void* /*owner*/, uint16_t address) {
    return static_cast<uint8_t>(address >> 2);
}

// Both pulses, triangle, noise, and a sample that loops.
std::unique_ptr<HEARD_CHIP<APU>> PlayingApu(uint32_t& irqLines) {
    auto apu = std::make_unique<HEARD_CHIP<APU>>();
    ApuInit(*apu, SampleByte, nullptr);
    apu->sound.Init(kApuSampleRate, SoundChoiceFromSettings());
    ApuReset(*apu, true, &irqLines);
    constexpr std::pair<uint16_t, uint8_t> kWrites[]{
        {0x4015, 0x0F},
        {0x4017, 0x40},
        {0x4000, 0xBF},
        {0x4001, 0x08},
        {0x4002, 0xFD},
        {0x4003, 0x08},
        {0x4004, 0x7A},
        {0x4005, 0x08},
        {0x4006, 0x7E},
        {0x4007, 0x09},
        {0x4008, 0xFF},
        {0x400A, 0xFD},
        {0x400B, 0x08},
        {0x400C, 0x36},
        {0x400E, 0x05},
        {0x400F, 0x08},
        {0x4010, 0x4C},
        {0x4012, 0x00},
        {0x4013, 0xFF},
        {0x4015, 0x1F},
    };
    for (const auto& [address, value] : kWrites) {
        ApuWrite(*apu, address, value);
    }
    return apu;
}

void ApuCycles(benchmark::State& state) {
    Prepare(0);
    uint32_t irqLines = 0;
    const auto apu = PlayingApu(irqLines);
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t cycle = 0; cycle < kFrameCycles; ++cycle) {
            ApuTick(*apu);
        }
        benchmark::DoNotOptimize(apu->pairs->samples[0]);
        apu->pairs->sampleCount = 0;
    }
    Report(state);
}

void ApuFrames(benchmark::State& state) {
    Prepare(static_cast<int>(state.range(0)));
    uint32_t irqLines = 0;
    const auto apu = PlayingApu(irqLines);
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t cycle = 0; cycle < kFrameCycles; ++cycle) {
            ApuTick(*apu);
        }
        apu->sound.Flush();
        apu->sound.Consume(static_cast<int32_t>(apu->sound.Output().size()));
    }
    Report(state);
}

void ApuStates(benchmark::State& state) {
    Prepare(0);
    uint32_t irqLines = 0;
    const auto apu = PlayingApu(irqLines);
    std::vector<uint8_t> block(ApuStateSize());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(ApuSaveState(*apu, block.data()));
    }
    state.counters["bytes"] = static_cast<double>(block.size());
}

} // namespace

BENCHMARK(ApuCycles);
BENCHMARK(ApuFrames)->DenseRange(0, 2);
BENCHMARK(ApuStates);
