// The cost of scaling a picture of 320 by 224 pixels: discs on a dithered sky, only dithering, and one
// colour.
#include "display/picture_scaler.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 224;

enum PictureKind : int64_t { kDiscs, kDithering, kFlat };

uint32_t PixelOf(int64_t kind, uint32_t x, uint32_t y) {
    constexpr uint32_t kCell = 40;
    const int32_t fromMiddleX = static_cast<int32_t>(x % kCell) - static_cast<int32_t>(kCell / 2);
    const int32_t fromMiddleY = static_cast<int32_t>(y % kCell) - static_cast<int32_t>(kCell / 2);
    const int32_t radius = static_cast<int32_t>(4 + x / kCell * 2);
    if (kind == kDiscs && fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY < radius * radius) {
        return 0xFFFFFF55;
    }
    const bool isDithered = kind == kDithering || (kind == kDiscs && y % 32 < 12);
    return isDithered && (x + y) % 2 == 0 ? 0xFF5500AA : 0xFF0000AA;
}

// Arguments: the scaler's number and the kind of picture.
void ScalePictures(benchmark::State& state) {
    const PictureScaler scaler = static_cast<PictureScaler>(state.range(0));
    std::vector<uint32_t> source;
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            source.push_back(PixelOf(state.range(1), x, y));
        }
    }
    const size_t factor = ScalerFactor(scaler);
    std::vector<uint32_t> target(source.size() * factor * factor);
    for ([[maybe_unused]] auto _ : state) {
        ScalePicture(scaler, source.data(), kWidth, kHeight, target.data());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(ScalePictures)
    ->ArgNames({
        "scaler", "picture"
})
    ->ArgsProduct({{0, 1, 2, 3}, {kDiscs, kDithering, kFlat}})
    ->Unit(benchmark::kMillisecond);
