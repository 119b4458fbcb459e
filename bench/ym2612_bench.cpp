// The Mega Drive's FM chip, as samples a second and as multiples of real time. A frame is a sixtieth
// of a second of clocks; with the resampler it is flushed and taken at its end.
#include "base/audio_rate.h"
#include "machine/sound_settings.h"
#include "megadrive/ym2612.h"
#include "megadrive/ym2612_tick.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t kClock = 7'670'453;
constexpr uint32_t kFrameClocks = kClock / 60;

void Prepare(int quality) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", quality);
    SetAudioRate(44100);
}

void Report(benchmark::State& state, double samplesPerIteration) {
    const auto iterations = static_cast<double>(state.iterations());
    state.counters["samples"] =
        benchmark::Counter(iterations * samplesPerIteration, benchmark::Counter::kIsRate);
    state.counters["timesRealTime"] =
        benchmark::Counter(iterations * samplesPerIteration * kYm2612ClocksPerSample / kClock,
                           benchmark::Counter::kIsRate);
}

void Set(YM2612& ym, uint32_t reg, uint32_t value) {
    const uint32_t port = reg >> 8 << 1;
    Ym2612Write(ym, port, static_cast<uint8_t>(reg));
    Ym2612Write(ym, port + 1, static_cast<uint8_t>(value));
}

// All six channels, of six algorithms and with feedback, long envelopes and all operators heard.
// `lfo` gives them vibrato and tremolo.
std::unique_ptr<HEARD_CHIP<YM2612>> Playing(bool lfo) {
    auto ym = std::make_unique<HEARD_CHIP<YM2612>>();
    Ym2612SetClock(*ym, kClock);
    Ym2612Reset(*ym);
    ym->sound.Init(kClock / 144.0, SoundChoiceFromSettings());
    Set(*ym, 0x22, lfo ? 0x0C : 0);
    for (uint32_t channel = 0; channel < 6; ++channel) {
        const uint32_t base = (channel >= 3 ? 0x100 : 0) + channel % 3;
        for (uint32_t slot = 0; slot < 16; slot += 4) {
            Set(*ym, base + 0x30 + slot, 0x31 + slot / 4);
            Set(*ym, base + 0x40 + slot, 0x10);
            Set(*ym, base + 0x50 + slot, 0x1C);
            Set(*ym, base + 0x60 + slot, lfo ? 0x82 : 0x02);
            Set(*ym, base + 0x70 + slot, 0x01);
            Set(*ym, base + 0x80 + slot, 0x28);
        }
        Set(*ym, base + 0xA4, 0x22 + channel);
        Set(*ym, base + 0xA0, 0x69);
        Set(*ym, base + 0xB0, 0x20 | channel);
        Set(*ym, base + 0xB4, lfo ? 0xF4 : 0xC0);
        Set(*ym, 0x28, 0xF0 | (channel >= 3 ? channel + 1 : channel));
    }
    return ym;
}

void Ym2612Samples(benchmark::State& state) {
    constexpr uint32_t kSamples = 1000;
    Prepare(0);
    const auto ym = Playing(state.range(0) != 0);
    for ([[maybe_unused]] auto _ : state) {
        Ym2612Run(*ym, kSamples * kYm2612ClocksPerSample);
        benchmark::DoNotOptimize(ym->pairs->samples[0]);
        ym->pairs->sampleCount = 0;
    }
    Report(state, kSamples);
}

void Ym2612Silence(benchmark::State& state) {
    constexpr uint32_t kSamples = 1000;
    Prepare(0);
    const auto ym = std::make_unique<HEARD_CHIP<YM2612>>();
    Ym2612SetClock(*ym, kClock);
    Ym2612Reset(*ym);
    ym->sound.Init(kClock / 144.0, SoundChoiceFromSettings());
    for ([[maybe_unused]] auto _ : state) {
        Ym2612Run(*ym, kSamples * kYm2612ClocksPerSample);
        benchmark::DoNotOptimize(ym->pairs->samples[0]);
        ym->pairs->sampleCount = 0;
    }
    Report(state, kSamples);
}

void Ym2612Frames(benchmark::State& state) {
    Prepare(static_cast<int>(state.range(0)));
    const auto ym = Playing(false);
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t clock = 0; clock < kFrameClocks; ++clock) {
            Ym2612Tick(*ym);
        }
        ym->sound.Flush();
        ym->sound.Consume(static_cast<int32_t>(ym->sound.Output().size()));
    }
    Report(state, double{kFrameClocks} / kYm2612ClocksPerSample);
}

void Ym2612States(benchmark::State& state) {
    Prepare(0);
    const auto ym = Playing(true);
    std::vector<uint8_t> block(Ym2612StateSize());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Ym2612SaveState(*ym, block.data()));
    }
    state.counters["bytes"] = static_cast<double>(block.size());
}

} // namespace

BENCHMARK(Ym2612Samples)->ArgName("lfo")->DenseRange(0, 1);
BENCHMARK(Ym2612Silence);
BENCHMARK(Ym2612Frames)->ArgName("quality")->DenseRange(0, 2);
BENCHMARK(Ym2612States);
