// The 6502 on an inlined 64 KB bus, in cycles per second; an NES runs it at 1.79 million.
#include "nes/m6502.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr double kConsoleClock = 1'789'773.0;
constexpr int kCyclesPerIteration = 29'781; // about one frame
constexpr uint16_t kStart = 0x8000;

// Copies, adds, branches and calls in an endless loop.
constexpr std::array<uint8_t, 32> kProgram{
    0xA2, 0x40,       // 8000 LDX #40
    0xA0, 0x00,       // 8002 LDY #00
    0xB1, 0x10,       // 8004 LDA (10),Y
    0x18,             // 8006 CLC
    0x7D, 0x00, 0x03, // 8007 ADC 0300,X
    0x9D, 0x00, 0x03, // 800A STA 0300,X
    0x20, 0x1A, 0x80, // 800D JSR 801A
    0xC8,             // 8010 INY
    0xCA,             // 8011 DEX
    0xD0, 0xF0,       // 8012 BNE 8004
    0x4E, 0x00, 0x04, // 8014 LSR 0400
    0x4C, 0x00, 0x80, // 8017 JMP 8000
    0x48,             // 801A PHA
    0xE6, 0x20,       // 801B INC 20
    0x68,             // 801D PLA
    0x60,             // 801E RTS
    0xEA,
};

struct FLAT_BUS {
    std::vector<uint8_t> memory = std::vector<uint8_t>(0x10000);

    uint8_t Read(uint16_t address) const { return memory[address]; }
    void Write(uint16_t address, uint8_t value) { memory[address] = value; }
};

FLAT_BUS MakeBus() {
    FLAT_BUS bus;
    std::copy(kProgram.begin(), kProgram.end(), bus.memory.begin() + kStart);
    bus.memory[0x0011] = 0x05;
    bus.memory[0xFFFD] = kStart >> 8;
    return bus;
}

void Report(benchmark::State& state) {
    const auto cycles = static_cast<double>(state.iterations()) * kCyclesPerIteration;
    state.counters["cycles/s"] = benchmark::Counter(cycles, benchmark::Counter::kIsRate);
    state.counters["timesRealTime"] =
        benchmark::Counter(cycles / kConsoleClock, benchmark::Counter::kIsRate);
}

void BenchInlinedBus(benchmark::State& state) {
    FLAT_BUS bus = MakeBus();
    M6502 cpu;
    M6502Init(cpu, nullptr, nullptr, nullptr);
    M6502ResetOn(cpu, bus);
    for (auto _ : state) {
        for (int i = 0; i < kCyclesPerIteration; ++i) {
            M6502Sample(cpu);
            M6502Cycle(cpu, bus);
        }
        benchmark::DoNotOptimize(cpu.a);
    }
    Report(state);
}

void BenchCallbacks(benchmark::State& state) {
    FLAT_BUS bus = MakeBus();
    M6502 cpu;
    M6502Init(
        cpu, &bus,
        [](void* owner, uint16_t address) {
            return static_cast<FLAT_BUS*>(owner)->memory[address];
        },
        [](void* owner, uint16_t address, uint8_t value) {
            static_cast<FLAT_BUS*>(owner)->memory[address] = value;
        });
    M6502Reset(cpu);
    for (auto _ : state) {
        for (int i = 0; i < kCyclesPerIteration; ++i) {
            M6502Tick(cpu);
        }
        benchmark::DoNotOptimize(cpu.a);
    }
    Report(state);
}

} // namespace

BENCHMARK(BenchInlinedBus);
BENCHMARK(BenchCallbacks);
