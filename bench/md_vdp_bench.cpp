// Cost of an H step and of a frame of the Mega Drive's VDP, by single ticks and by runs of many.
// A frame is 262 lines of 3,420 master clocks.
#include "megadrive/md_vdp.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

void IgnoreIrq(void*, uint32_t, uint32_t) {}

uint16_t ReadNothing(void*, uint32_t) {
    return 0;
}

struct Board {
    uint32_t zInt = 0;
    uint32_t stall = 0;
    std::unique_ptr<MD_VDP> vdp = std::make_unique<MD_VDP>();
    std::vector<uint32_t> pixels = std::vector<uint32_t>(kMdVdpPixels);

    // Noise everywhere, 80 sprites over the whole picture.
    explicit Board(uint8_t reg1, uint8_t reg12) {
        MdVdpInit(*vdp, nullptr, IgnoreIrq, ReadNothing, &zInt, &stall, kMdVdp60Hz);
        uint32_t noise = 1;
        const auto draw = [&noise] {
            noise = noise * 1664525 + 1013904223;
            return noise >> 24;
        };
        for (uint8_t& byte : vdp->vram) {
            byte = static_cast<uint8_t>(draw());
        }
        for (uint16_t& colour : vdp->cram) {
            colour = static_cast<uint16_t>(draw() * 2);
        }
        const uint8_t regs[][2] = {
            {1,  reg1 },
            {12, reg12},
            {2,  0x30 },
            {4,  7    },
            {5,  0x68 },
            {13, 0x37 },
            {11, 3    },
            {16, 1    },
            {10, 255  }
        };
        for (const auto& reg : regs) {
            MdVdpWriteRegister(*vdp, reg[0], reg[1]);
        }
        for (uint32_t i = 0; i < 80; ++i) {
            const uint32_t words[4] = {128 + i * 5 % 224, 0x0500 | (i + 1), draw() << 8 | draw(),
                                       128 + i * 37 % 320};
            for (uint32_t word = 0; word < 4; ++word) {
                uint8_t* at = &vdp->vram[0xD000 + i * 8 + word * 2];
                at[0] = static_cast<uint8_t>(words[word]);
                at[1] = static_cast<uint8_t>(words[word] >> 8);
            }
        }
    }
};

void Report(benchmark::State& state, uint32_t width) {
    const double frames = static_cast<double>(state.iterations());
    const double steps = frames * 262 * (width == 320 ? 422 : 342);
    state.counters["steps/s"] = benchmark::Counter(steps, benchmark::Counter::kIsRate);
    state.counters["s/step"] =
        benchmark::Counter(steps, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["timesRealTime"] =
        benchmark::Counter(frames / 59.92, benchmark::Counter::kIsRate);
}

void SingleClocks(benchmark::State& state, uint8_t reg1, uint8_t reg12) {
    Board board(reg1, reg12);
    for (auto _ : state) {
        MdVdpBeginFrame(*board.vdp, board.pixels.data());
        while (board.vdp->frameDone == 0) {
            MdVdpTick(*board.vdp);
        }
        benchmark::DoNotOptimize(board.pixels.data());
    }
    Report(state, (reg12 & 1) != 0 ? 320 : 256);
}

// `clocks` of 7 master clocks each time.
void Runs(benchmark::State& state, uint8_t reg1, uint8_t reg12, uint32_t clocks) {
    Board board(reg1, reg12);
    for (auto _ : state) {
        MdVdpBeginFrame(*board.vdp, board.pixels.data());
        while (board.vdp->frameDone == 0) {
            MdVdpRun(*board.vdp, clocks * 7);
        }
        benchmark::DoNotOptimize(board.pixels.data());
    }
    Report(state, (reg12 & 1) != 0 ? 320 : 256);
}

} // namespace

BENCHMARK_CAPTURE(SingleClocks, wide, 0x44, 0x81)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(SingleClocks, narrow, 0x44, 0x00)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(SingleClocks, shadow, 0x44, 0x89)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(SingleClocks, displayOff, 0x04, 0x81)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Runs, wideByInstruction, 0x44, 0x81, 10)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Runs, wideByLine, 0x44, 0x81, 488)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Runs, narrowByLine, 0x44, 0x00, 488)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Runs, shadowByLine, 0x44, 0x89, 488)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Runs, displayOffByLine, 0x04, 0x81, 488)->Unit(benchmark::kMicrosecond);
