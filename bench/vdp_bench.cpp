// Cost of a tick and of a frame of the 8-bit VDP. A tick is half a dot; a 262-line frame has
// 179,208.
#include "sega8/vdp.h"
#include "sega8/vdp_run.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr uint32_t kTicksPerFrame = 262 * kVdpTicksPerLine;

struct Board {
    VDP vdp;
    uint32_t irq = 0;
    uint32_t nmi = 0;
    std::vector<uint8_t> vram = std::vector<uint8_t>(kVdpVramBytes);
    std::vector<uint32_t> pixels = std::vector<uint32_t>(256 * 256);

    explicit Board(uint8_t mode0, uint8_t mode1) {
        VdpInit(vdp, &irq, &nmi, false, kVdpSecond);
        vdp.vram = vram.data();
        VdpReset(vdp);
        uint32_t noise = 1;
        for (uint8_t& byte : vram) {
            noise = noise * 1664525 + 1013904223;
            byte = static_cast<uint8_t>(noise >> 24);
        }
        const uint8_t regs[11] = {mode0, mode1, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 3, 5, 0xFF};
        for (uint8_t i = 0; i < sizeof regs; ++i) {
            VdpControlWrite(vdp, regs[i]);
            VdpControlWrite(vdp, static_cast<uint8_t>(0x80 | i));
        }
    }
};

enum class Way { kTick, kRun };

void RunFrames(benchmark::State& state, uint8_t mode0, uint8_t mode1, Way way) {
    Board board(mode0, mode1);
    for (auto _ : state) {
        VdpBeginFrame(board.vdp, board.pixels.data(), 256);
        while (!board.vdp.frameDone) {
            if (way == Way::kRun) {
                VdpRun(board.vdp, VdpTicksToEvent(board.vdp));
            } else {
                VdpTick(board.vdp);
            }
        }
        benchmark::DoNotOptimize(board.pixels.data());
    }
    state.counters["ticks/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * kTicksPerFrame, benchmark::Counter::kIsRate);
    state.counters["s/tick"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kTicksPerFrame,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) / 59.92, benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK_CAPTURE(RunFrames, mode4, 0x06, 0x60, Way::kTick)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, mode4Run, 0x06, 0x60, Way::kRun)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, mode4BlankRun, 0x06, 0x20, Way::kRun)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, mode2Run, 0x02, 0x60, Way::kRun)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RunFrames, textRun, 0x00, 0x70, Way::kRun)->Unit(benchmark::kMicrosecond);
