// The 68000 on pages and on callbacks, in instructions a second; a Mega Drive runs 7.67 million clocks, about
// a million instructions.
#include "megadrive/m68000_tick.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr double kConsoleClock = 7'670'454.0;
constexpr int kTicksPerIteration = 10'000;
constexpr uint32_t kStart = 0x400;
constexpr uint32_t kPageWords = 0x8000;

// Copies, adds up, shifts, multiplies, branches and calls, forever.
constexpr std::array<uint16_t, 30> kProgram{
    0x41F8, 0x2000, // 400 LEA 2000.W,A0
    0x43F8, 0x3000, // 404 LEA 3000.W,A1
    0x303C, 0x003F, // 408 MOVE.W #63,D0
    0x3218,         // 40C MOVE.W (A0)+,D1
    0xD441,         // 40E ADD.W D1,D2
    0xE349,         // 410 LSL.W #1,D1
    0x32C1,         // 412 MOVE.W D1,(A1)+
    0x0C41, 0x1000, // 414 CMPI.W #1000,D1
    0x6402,         // 418 BCC 41C
    0x5283,         // 41A ADDQ.L #1,D3
    0x4EB8, 0x0430, // 41C JSR 430.W
    0x51C8, 0xFFEA, // 420 DBF D0,40C
    0x48E7, 0xF0C0, // 424 MOVEM.L D0-D3/A0-A1,-(A7)
    0x4CDF, 0x030F, // 428 MOVEM.L (A7)+,D0-D3/A0-A1
    0x60D2, 0x4E71, // 42C BRA 400; NOP
    0x2805,         // 430 MOVE.L D5,D4
    0xC8C1,         // 432 MULU D1,D4
    0xDA84,         // 434 ADD.L D4,D5
    0x4E75,         // 436 RTS
};

struct BENCH_BUS {
    std::vector<uint16_t> words = std::vector<uint16_t>(kPageWords);

    uint16_t& At(uint32_t address) { return words[(address & 0xFFFF) >> 1]; }
    static BENCH_BUS& Of(void* owner) { return *static_cast<BENCH_BUS*>(owner); }
};

uint32_t ReadWord(void* owner, uint32_t address) {
    return BENCH_BUS::Of(owner).At(address);
}

void WriteWord(void* owner, uint32_t address, uint32_t value) {
    BENCH_BUS::Of(owner).At(address) = static_cast<uint16_t>(value);
}

void Connect(M68K_STATE& cpu, BENCH_BUS& bus) {
    bus.At(2) = 0x8000;
    bus.At(6) = kStart;
    for (uint32_t i = 0; i < kProgram.size(); ++i) {
        bus.At(kStart + 2 * i) = kProgram[i];
    }
    cpu.owner = &bus;
    cpu.readImmediate = ReadWord;
    cpu.readWord = ReadWord;
    cpu.writeWord = WriteWord;
    cpu.readLong = [](void* owner, uint32_t address) {
        return ReadWord(owner, address) << 16 | ReadWord(owner, address + 2);
    };
    cpu.writeLong = [](void* owner, uint32_t address, uint32_t value) {
        WriteWord(owner, address, value >> 16);
        WriteWord(owner, address + 2, value);
    };
}

void Measure(benchmark::State& state, bool usesPages) {
    BENCH_BUS bus;
    M68K_STATE cpu;
    Connect(cpu, bus);
    if (usesPages) {
        cpu.readPages[0] = bus.words.data();
        cpu.writePages[0] = bus.words.data();
    }
    M68kReset(cpu);
    uint64_t clocks = 0;
    for (auto _ : state) {
        for (int i = 0; i < kTicksPerIteration; ++i) {
            clocks += M68kTick(cpu);
        }
    }
    const auto instructions = static_cast<double>(state.iterations()) * kTicksPerIteration;
    state.counters["instructions/s"] =
        benchmark::Counter(instructions, benchmark::Counter::kIsRate);
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(clocks) / kConsoleClock, benchmark::Counter::kIsRate);
}

void BenchPages(benchmark::State& state) {
    Measure(state, true);
}

void BenchCallbacks(benchmark::State& state) {
    Measure(state, false);
}

} // namespace

BENCHMARK(BenchPages);
BENCHMARK(BenchCallbacks);
