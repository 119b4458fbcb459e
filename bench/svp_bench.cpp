// The signal processor of a Mega Drive cartridge, in instructions a second; a console runs it at three
// times its 68000, when it doesn't wait.
#include "megadrive/svp.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr double kConsoleInstructions = 3 * 7'670'453.0;
constexpr int kInstructionsACall = 30; // for a 68000 instruction of ten cycles
constexpr int kCallsPerIteration = 1000;
constexpr size_t kStart = 0x400;

// Sums of products, and pixels stored by cells through PM4, as a game that turns polygons does.
constexpr std::array<uint16_t, 37> kProgram{
    0x08E0,        0x0000, // 400 ld PMC, 0
    0x08E0,        0x4418, // 402 ld PMC, DRAM by cells, overwrite
    0x00C0,                // 404 ld PM4, -
    0x0840,        0x0004, // 405 ld ST, modulo 16
    0x1800,        0x1C10, // 407 ld r0, 0; ld r4, 10
    0x1920,                // 409 ld r1, 20
    0xB6CC,                // 40A mld (r4+), (r0+)
    0x96CC,                // 40B mpya (r4+), (r0+)
    0x96CC,                // 40C mpya
    0x36CC,                // 40D mpys
    0x9002,                // 40E mod shift right
    0x0405 | 0x30,         // 40F ld (r1+!), A
    0x0313 | 0x08,         // 410 ld X, |12
    0x0021,                // 411 ld Y, X
    0x8007,                // 412 ADD A, P
    0xA800,        0x0FFF, // 413 AND A, imm
    0x00C3,                // 415 ld PM4, A
    0x9801,                // 416 ADD A, 1
    0x00C3,                // 417 ld PM4, A
    0x4800,        0x0421, // 418 call
    0x0A11,                // 41A ld X, ((r1))
    0x7803,                // 41B CMP 3
    0x4C50,        0x040A, // 41C bra not zero
    0x4C00,        0x0400, // 41E bra
    0x0000,                // 420 nop
    0x1239,                // 421 ld A, r1
    0x0F40,                // 422 ld 140, A
    0x0740,                // 423 ld A, 140
    0x0065                 // 424 ret
};

void BenchRun(benchmark::State& state) {
    std::vector<uint16_t> rom(kSvpRomWords);
    std::copy(kProgram.begin(), kProgram.end(), rom.begin() + kStart);
    const auto svp = std::make_unique<MD_SVP>();
    SvpReset(*svp, rom.data());
    for (auto& bank : svp->ram) {
        for (size_t i = 0; i < bank.size(); ++i) {
            bank[i] = static_cast<uint16_t>((i * 0x3B7) & 0xFFFF);
        }
    }
    for (auto _ : state) {
        for (int i = 0; i < kCallsPerIteration; ++i) {
            SvpRun(*svp, kInstructionsACall);
        }
        benchmark::DoNotOptimize(svp->gr[kSvpA]);
    }
    const double instructions =
        static_cast<double>(state.iterations()) * kCallsPerIteration * kInstructionsACall;
    state.counters["instructions/s"] =
        benchmark::Counter(instructions, benchmark::Counter::kIsRate);
    state.counters["timesRealTime"] =
        benchmark::Counter(instructions / kConsoleInstructions, benchmark::Counter::kIsRate);
}

void BenchWaiting(benchmark::State& state) {
    const std::vector<uint16_t> rom(kSvpRomWords);
    const auto svp = std::make_unique<MD_SVP>();
    SvpReset(*svp, rom.data());
    svp->emuStatus = kSvpWaitsForPm0;
    for (auto _ : state) {
        SvpRun(*svp, kInstructionsACall);
        benchmark::DoNotOptimize(svp->gr[kSvpA]);
    }
    state.counters["calls/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(BenchRun);
BENCHMARK(BenchWaiting);
