// Cost of a dot and of a frame of the PPU. A frame has 89,342 dots.
#include "nes/ppu.h"
#include "nes/ppu_tick.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr double kDotsPerFrame = 262 * 341;

void CountRise(void* board, uint16_t address, uint32_t count) {
    auto& rises = *static_cast<uint32_t*>(board);
    rises += (uint32_t{address} >> 12 & 1) * count;
}

// Whether the board watches addresses.
enum class Watching { kNo, kYes };

struct Board {
    NES_PAGES pages;
    uint32_t nmi = 0;
    uint32_t rises = 0;
    std::unique_ptr<PPU> ppu = std::make_unique<PPU>();
    std::vector<uint8_t> patterns = std::vector<uint8_t>(8192);
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{kPpuWidth} * kPpuHeight);

    Board(uint8_t mask, Watching watching) {
        pages.board = &rises;
        pages.ppuAddressHook = watching == Watching::kNo ? nullptr : CountRise;
        PpuInit(*ppu, &pages);
        PpuReset(*ppu, true, &nmi);
        for (uint32_t page = 0; page < kNesPpuPages; ++page) {
            pages.ppu[page].data =
                page < 8 ? &patterns[page * kNesPpuPageBytes] : PpuNametable(*ppu, page & 1);
            pages.ppu[page].writable = 1;
        }
        uint32_t noise = 1;
        const auto fill = [&noise](auto& bytes) {
            for (uint8_t& byte : bytes) {
                noise = noise * 1664525 + 1013904223;
                byte = static_cast<uint8_t>(noise >> 24);
            }
        };
        fill(patterns);
        fill(ppu->nametables[0]);
        fill(ppu->nametables[1]);
        fill(ppu->oam);
        PpuWriteRegister(*ppu, 0, 0x08);
        PpuWriteRegister(*ppu, 1, mask);
    }
};

void RunFrames(benchmark::State& state, uint8_t mask, Watching watching) {
    Board board(mask, watching);
    for (auto _ : state) {
        PpuBeginFrame(*board.ppu, board.pixels.data(), kPpuWidth);
        while (!board.ppu->frameDone) {
            PpuTick(*board.ppu);
        }
        benchmark::DoNotOptimize(board.pixels.data());
    }
    const double frames = static_cast<double>(state.iterations());
    state.counters["dots/s"] =
        benchmark::Counter(frames * kDotsPerFrame, benchmark::Counter::kIsRate);
    state.counters["s/dot"] = benchmark::Counter(
        frames * kDotsPerFrame, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["timesRealTime"] =
        benchmark::Counter(frames / 60.0988, benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK_CAPTURE(RunFrames, allOn, 0x1E, Watching::kNo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, allOnWatched, 0x1E, Watching::kYes)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, backgroundOnly, 0x0A, Watching::kNo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, allOff, 0x00, Watching::kNo)->Unit(benchmark::kMicrosecond);
