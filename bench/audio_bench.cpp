// The resampler and the band splitter, as multiples of real time: how many seconds of sound of one
// chip or channel are made in a second.
#include "base/audio_rate.h"

#include "machine/band_splitter.h"
#include "machine/resampler.h"
#include "settings/settings.h"
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

std::vector<int16_t> Noise(size_t count) {
    std::vector<int16_t> samples(count);
    uint32_t state = 1;
    for (int16_t& sample : samples) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<int16_t>(state >> 17);
    }
    return samples;
}

// One frame of a sixtieth of a second at a time, taken at once, as a machine does.
void RunResampler(benchmark::State& state, double sourceRate, bool cutoff) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"audio_app_quality", static_cast<int32_t>(state.range(0)));
    Settings().SetBool(L"emu_audiocutoff_enabled", cutoff);
    SetAudioRate(44100);
    AudioResampler resampler;
    resampler.Init(sourceRate);
    std::vector<int16_t> samples = Noise(static_cast<size_t>(sourceRate / 60.0) * 2);
    for ([[maybe_unused]] auto step : state) {
        const int32_t added = resampler.Push(samples.data(), static_cast<int32_t>(samples.size()));
        benchmark::DoNotOptimize(resampler.Output().data());
        resampler.Consume(added);
    }
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) / 60.0, benchmark::Counter::kIsRate);
}

void ResampleFastChip(benchmark::State& state) {
    RunResampler(state, 223721.625, false);
}

void ResampleSlowChip(benchmark::State& state) {
    RunResampler(state, 53267.0, false);
}

void ResampleFastChipWithCutoff(benchmark::State& state) {
    RunResampler(state, 223721.625, true);
}

// One channel at 44,100 samples a second; a session has two.
void SplitBands(benchmark::State& state) {
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 600.0, 5000.0);
    splitter.gains = {1.25, 1.0, 1.0};
    const std::vector<int16_t> samples = Noise(44100 / 60);
    for ([[maybe_unused]] auto step : state) {
        double sum = 0.0;
        for (const int16_t sample : samples) {
            sum += splitter.Process(sample);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) / 60.0, benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(ResampleFastChip)->DenseRange(0, 2);
BENCHMARK(ResampleSlowChip)->DenseRange(0, 2);
BENCHMARK(ResampleFastChipWithCutoff)->Arg(1);
BENCHMARK(SplitBands);
