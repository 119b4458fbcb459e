// The resampler and the band splitter, as multiples of real time: how many seconds of sound of one
// chip or channel are made in a second. And what a quality of the resampler costs the sound, in figures.
#include "machine/band_splitter.h"
#include "machine/resampler.h"

#include "support/resampler_figures.h"
#include <benchmark/benchmark.h>
#include <samplerate.h>

#include <cstdint>
#include <vector>

namespace {

void ReportFrames(benchmark::State& state) {
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) / 60.0, benchmark::Counter::kIsRate);
}

std::vector<int16_t> Noise(size_t count) {
    std::vector<int16_t> samples(count);
    uint32_t state = 1;
    for (int16_t& sample : samples) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<int16_t>(state >> 17);
    }
    return samples;
}

// Pushes a sixtieth of a second at a time and takes it at once, as a machine does. `mono`: both sides
// the same, as of all chips of this rate but the Game Gear's.
void RunResampler(benchmark::State& state, double sourceRate, bool mono) {
    AudioResampler resampler;
    resampler.Init(sourceRate, 44100, static_cast<int32_t>(state.range(0)));
    std::vector<int16_t> samples = Noise(static_cast<size_t>(sourceRate / 60.0) * 2);
    for (size_t i = 0; mono && i < samples.size(); i += 2) {
        samples[i + 1] = samples[i];
    }
    for ([[maybe_unused]] auto _ : state) {
        const int32_t added = resampler.Push(samples.data(), static_cast<int32_t>(samples.size()));
        benchmark::DoNotOptimize(resampler.Output().data());
        resampler.Consume(added);
    }
    ReportFrames(state);
}

void ResampleFastChip(benchmark::State& state) {
    RunResampler(state, 223721.5625, false);
}

void ResampleFastMonoChip(benchmark::State& state) {
    RunResampler(state, 223721.5625, true);
}

void ResampleSlowChip(benchmark::State& state) {
    RunResampler(state, 53267.0, false);
}

// The library to compare ours with.
void ResampleFastChipWithLibsamplerate(benchmark::State& state) {
    int error = 0;
    SRC_STATE* const converter = src_new(SRC_SINC_FASTEST, 2, &error);
    const std::vector<int16_t> samples = Noise(size_t{3728} * 2);
    std::vector<float> in(samples.size());
    src_short_to_float_array(samples.data(), in.data(), static_cast<int>(in.size()));
    std::vector<float> out(in.size());
    for ([[maybe_unused]] auto _ : state) {
        SRC_DATA data{};
        data.data_in = in.data();
        data.data_out = out.data();
        data.input_frames = static_cast<long>(in.size() / 2);
        data.output_frames = static_cast<long>(out.size() / 2);
        data.src_ratio = 44100.0 / 223721.5625;
        benchmark::DoNotOptimize(src_process(converter, &data));
    }
    src_delete(converter);
    ReportFrames(state);
}

// What the time buys: the figures of a quality, as resampler_filter_test.cpp holds them to their limits.
void FiguresOfResampler(benchmark::State& state) {
    const auto quality = static_cast<int32_t>(state.range(0));
    RESAMPLER_FIGURES figures;
    double noise = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        figures = MeasureFilter(quality, 223721.5625, 44100.0);
        noise = MeasureSignalToNoise(quality, 223721.5625, 44100);
    }
    state.counters["rippleDb"] = figures.ripple;
    state.counters["imagesDb"] = figures.images;
    state.counters["aliasesDb"] = figures.aliases;
    state.counters["signalToNoiseDb"] = noise;
    state.counters["delayMs"] = MeasureDelay(quality, 223721.5625, 44100) * 1000.0;
}

// One channel at 44,100 samples a second; a session has two.
void SplitBands(benchmark::State& state) {
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 600.0, 5000.0);
    splitter.gains = {1.25, 1.0, 1.0};
    const std::vector<int16_t> samples = Noise(44100 / 60);
    for ([[maybe_unused]] auto _ : state) {
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
BENCHMARK(ResampleFastMonoChip)->DenseRange(1, 2);
BENCHMARK(ResampleFastChipWithLibsamplerate);
BENCHMARK(ResampleSlowChip)->DenseRange(0, 2);
BENCHMARK(FiguresOfResampler)->DenseRange(0, 2)->Iterations(1);
BENCHMARK(SplitBands);
