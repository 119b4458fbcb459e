// The Z80 on an inlined 64 KB bus, in clocks a second; a console has 3.58 million.
#include "sega8/z80.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr double kConsoleClock = 3'579'545.0;
constexpr int kClocksPerIteration = 60'000; // about one frame

// An endless loop of copies, sums, branches and calls.
constexpr std::array<uint8_t, 27> kProgram{
    0x31, 0x00, 0xF0,       // LD SP,F000
    0x21, 0x00, 0x40,       // LD HL,4000
    0x06, 0x40,             // LD B,40
    0x7E,                   // LD A,(HL)
    0x81,                   // ADD A,C
    0x4F,                   // LD C,A
    0x77,                   // LD (HL),A
    0x23,                   // INC HL
    0xCD, 0x17, 0x00,       // CALL 0017
    0x10, 0xF6,             // DJNZ 0008
    0xCB, 0x3F,             // SRL A
    0xC3, 0x03, 0x00,       // JP 0003
    0xDD, 0x7E, 0x05, 0xC9, // LD A,(IX+5); RET
};

struct FLAT_BUS {
    std::vector<uint8_t> memory = std::vector<uint8_t>(0x10000);

    uint8_t Read(uint16_t address) const { return memory[address]; }
    uint8_t ReadOpcode(uint16_t address) const { return memory[address]; }
    static uint8_t IoRead(uint16_t) { return 0xFF; }
    void Write(uint16_t address, uint8_t value) { memory[address] = value; }
    static void IoWrite(uint16_t, uint8_t) {}
    static void At(uint32_t) {}
};

FLAT_BUS MakeBus() {
    FLAT_BUS bus;
    std::copy(kProgram.begin(), kProgram.end(), bus.memory.begin());
    return bus;
}

void Report(benchmark::State& state) {
    const auto clocks = static_cast<double>(state.iterations()) * kClocksPerIteration;
    state.counters["clocks/s"] = benchmark::Counter(clocks, benchmark::Counter::kIsRate);
    state.counters["timesRealTime"] =
        benchmark::Counter(clocks / kConsoleClock, benchmark::Counter::kIsRate);
}

void BenchInlinedBus(benchmark::State& state) {
    FLAT_BUS bus = MakeBus();
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    Z80Reset(z80);
    for (auto _ : state) {
        for (int i = 0; i < kClocksPerIteration; ++i) {
            Z80TickOn(z80, bus);
        }
        benchmark::DoNotOptimize(z80.regs);
    }
    Report(state);
}

// As a frame loop runs it: a line at a time.
void BenchRuns(benchmark::State& state) {
    constexpr uint32_t kClocksALine = 228;
    FLAT_BUS bus = MakeBus();
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    Z80Reset(z80);
    for (auto _ : state) {
        for (uint32_t left = kClocksPerIteration; left != 0;) {
            const uint32_t clocks = std::min(left, kClocksALine);
            Z80RunOn(z80, bus, clocks);
            left -= clocks;
        }
        benchmark::DoNotOptimize(z80.regs);
    }
    Report(state);
}

void BenchCallbacks(benchmark::State& state) {
    FLAT_BUS bus = MakeBus();
    Z80 z80;
    Z80Init(
        z80, &bus,
        [](void* owner, uint32_t address, uint32_t) {
            return static_cast<FLAT_BUS*>(owner)->memory[address];
        },
        [](void*, uint32_t) { return uint8_t{0xFF}; },
        [](void* owner, uint32_t address, uint8_t value) {
            static_cast<FLAT_BUS*>(owner)->memory[address] = value;
        },
        [](void*, uint32_t, uint8_t) {});
    Z80Reset(z80);
    for (auto _ : state) {
        for (int i = 0; i < kClocksPerIteration; ++i) {
            Z80Tick(z80);
        }
        benchmark::DoNotOptimize(z80.regs);
    }
    Report(state);
}

} // namespace

BENCHMARK(BenchInlinedBus);
BENCHMARK(BenchRuns);
BENCHMARK(BenchCallbacks);
