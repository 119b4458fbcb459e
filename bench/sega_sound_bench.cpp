// The sound chips of the 8-bit machines: cost of a clock and multiple of real time. A frame is a
// sixtieth of a second of Z80 clocks; with the resampler its sound is resampled at the end.
#include "base/audio_rate.h"
#include "machine/sound_settings.h"
#include "sega8/psg.h"
#include "sega8/ym2413.h"
#include "settings/settings.h"

#include "support/heard_chip.h"
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t kClock = 3'579'545;
constexpr uint32_t kFrameClocks = kClock / 60;

void Prepare(int quality) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", quality);
    SetAudioRate(44100);
}

void Report(benchmark::State& state) {
    const auto frames = static_cast<double>(state.iterations());
    state.counters["timesRealTime"] =
        benchmark::Counter(frames / 60.0, benchmark::Counter::kIsRate);
    state.counters["perClock"] = benchmark::Counter(
        frames * kFrameClocks, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Three tones and white noise.
std::unique_ptr<HEARD_CHIP<PSG>> PlayingPsg() {
    auto psg = std::make_unique<HEARD_CHIP<PSG>>();
    PsgInit(*psg, kClock, 1, true);
    PsgReset(*psg);
    psg->sound.Init(kClock / 16.0, SoundChoiceFromSettings());
    for (const int value : {0x8E, 0x0F, 0x90, 0xA3, 0x12, 0xB2, 0xC5, 0x22, 0xD4, 0xE4, 0xF3}) {
        PsgWrite(*psg, static_cast<uint8_t>(value));
    }
    return psg;
}

// Six fixed voices, two of them with tremolo and vibrato, and all of the rhythm.
std::unique_ptr<HEARD_CHIP<YM2413>> PlayingYm() {
    auto ym = std::make_unique<HEARD_CHIP<YM2413>>();
    YmInit(*ym, kClock);
    YmReset(*ym);
    ym->sound.Init(kClock / 72.0, SoundChoiceFromSettings());
    for (uint8_t channel = 0; channel < 6; ++channel) {
        YmWrite(*ym, static_cast<uint8_t>(0x30 + channel),
                static_cast<uint8_t>((channel + 7) << 4));
        YmWrite(*ym, static_cast<uint8_t>(0x10 + channel), static_cast<uint8_t>(40 * channel));
        YmWrite(*ym, static_cast<uint8_t>(0x20 + channel), 0x19);
    }
    YmWrite(*ym, 0x27, 0x05);
    YmWrite(*ym, 0x28, 0x03);
    YmWrite(*ym, 0x0E, 0x3F);
    return ym;
}

void PsgClocks(benchmark::State& state) {
    Prepare(0);
    const auto psg = PlayingPsg();
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t clock = 0; clock < kFrameClocks; ++clock) {
            PsgTick(*psg);
        }
        benchmark::DoNotOptimize(psg->pairs->samples[0]);
        psg->pairs->sampleCount = 0;
    }
    Report(state);
}

void PsgFrames(benchmark::State& state) {
    Prepare(static_cast<int>(state.range(0)));
    const auto psg = PlayingPsg();
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t clock = 0; clock < kFrameClocks; ++clock) {
            PsgTick(*psg);
        }
        psg->sound.Flush();
        psg->sound.Consume(static_cast<int32_t>(psg->sound.Output().size()));
    }
    Report(state);
}

void YmClocks(benchmark::State& state) {
    Prepare(0);
    const auto ym = PlayingYm();
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t clock = 0; clock < kFrameClocks; ++clock) {
            YmTick(*ym);
        }
        benchmark::DoNotOptimize(ym->pairs->samples[0]);
        ym->pairs->sampleCount = 0;
    }
    Report(state);
}

void YmFrames(benchmark::State& state) {
    Prepare(static_cast<int>(state.range(0)));
    const auto ym = PlayingYm();
    for ([[maybe_unused]] auto _ : state) {
        for (uint32_t clock = 0; clock < kFrameClocks; ++clock) {
            YmTick(*ym);
        }
        ym->sound.Flush();
        ym->sound.Consume(static_cast<int32_t>(ym->sound.Output().size()));
    }
    Report(state);
}

void PsgStates(benchmark::State& state) {
    Prepare(0);
    const auto psg = PlayingPsg();
    std::vector<uint8_t> block(PsgStateSize());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(PsgSaveState(*psg, block.data()));
    }
    state.counters["bytes"] = static_cast<double>(block.size());
}

void YmStates(benchmark::State& state) {
    Prepare(0);
    const auto ym = PlayingYm();
    std::vector<uint8_t> block(YmStateSize());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(YmSaveState(*ym, block.data()));
    }
    state.counters["bytes"] = static_cast<double>(block.size());
}

} // namespace

BENCHMARK(PsgClocks);
BENCHMARK(PsgFrames)->DenseRange(0, 2);
BENCHMARK(YmClocks);
BENCHMARK(YmFrames)->DenseRange(0, 2);
BENCHMARK(PsgStates);
BENCHMARK(YmStates);
