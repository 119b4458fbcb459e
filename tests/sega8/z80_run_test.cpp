// Z80RunOn against Z80TickOn: random programs, registers, interrupts and lengths.

#include "sega8/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

// 64 KB of RAM, and ports that read as noise. Logs every access; ports with their clock, as chips
// that catch up see only those. A port may pull the interrupt line.
struct NOISE_BUS {
    Z80& z80;
    std::vector<uint8_t> memory;
    std::string trace;
    uint64_t runStart = 0; // clocks before this run
    uint64_t clock = 0;
    uint32_t noise = 1;

    void Note(char kind, uint32_t address, uint32_t value) {
        trace += kind;
        trace += std::to_string(address) + "=" + std::to_string(value) + " ";
    }
    uint8_t Read(uint16_t address) {
        Note('r', address, memory[address]);
        return memory[address];
    }
    uint8_t ReadOpcode(uint16_t address) {
        Note('f', address, memory[address]);
        return memory[address];
    }
    void Write(uint16_t address, uint8_t value) {
        Note('w', address, value);
        memory[address] = value;
    }
    uint8_t IoRead(uint16_t port) {
        noise = noise * 1664525 + 1013904223;
        const auto value = static_cast<uint8_t>(noise >> 24);
        Note('i', port, value);
        trace += "@" + std::to_string(clock) + " ";
        z80.irqLine = (noise >> 20) & 1;
        return value;
    }
    void IoWrite(uint16_t port, uint8_t value) {
        Note('o', port, value);
        trace += "@" + std::to_string(clock) + " ";
        z80.irqLine = value & 1;
    }
    void At(uint32_t ofRun) { clock = runStart + ofRun; }
};

struct MACHINE {
    Z80 z80;
    NOISE_BUS bus{z80, std::vector<uint8_t>(0x10000), {}};

    MACHINE() {
        Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
        Z80Reset(z80);
    }
    [[nodiscard]] std::vector<uint8_t> State() const {
        std::vector<uint8_t> bytes(Z80StateSize());
        Z80SaveState(z80, bytes.data());
        return bytes;
    }
};

// Half of the opcodes are prefixed, port or interrupt opcodes.
uint8_t RandomOpcode(std::mt19937& random) {
    constexpr uint8_t kRare[] = {0xCB, 0xDD, 0xED, 0xFD, 0xFB, 0x76, 0xD3, 0xDB,
                                 0xB0, 0xB1, 0xB2, 0xB3, 0xB8, 0x36, 0x10, 0x18};
    return random() % 2 == 0 ? kRare[random() % sizeof kRare] : static_cast<uint8_t>(random());
}

void CompareRuns(uint32_t seed) {
    std::mt19937 random(seed);
    MACHINE plain;
    MACHINE fast;
    for (uint8_t& byte : plain.bus.memory) {
        byte = RandomOpcode(random);
    }
    fast.bus.memory = plain.bus.memory;
    const auto mode = static_cast<uint32_t>(random() % 3);
    plain.z80.im = fast.z80.im = mode;
    for (uint32_t i = 0; i < kZ80RegisterCount; ++i) {
        plain.z80.regs[i] = fast.z80.regs[i] = static_cast<uint32_t>(random() & 0xFFFF);
    }
    uint64_t clocks = 0;
    for (int run = 0; run < 300; ++run) {
        const auto count = static_cast<uint32_t>(random() % (run % 2 == 0 ? 230 : 12));
        plain.bus.runStart = fast.bus.runStart = clocks;
        for (uint32_t i = 0; i < count; ++i) {
            plain.bus.At(i);
            Z80TickOn(plain.z80, plain.bus);
        }
        Z80RunOn(fast.z80, fast.bus, count);
        clocks += count;
        ASSERT_EQ(plain.bus.trace, fast.bus.trace) << "seed " << seed << " run " << run;
        ASSERT_EQ(plain.State(), fast.State()) << "seed " << seed << " run " << run;
        plain.bus.trace.clear();
        fast.bus.trace.clear();
        const auto event = static_cast<uint32_t>(random() % 16);
        const auto hold = static_cast<uint32_t>(random() % 8 == 0 ? 1 : 0);
        for (Z80* z80 : {&plain.z80, &fast.z80}) {
            z80->nmiEdge = event == 0 ? 1 : z80->nmiEdge;
            z80->irqLine = event < 4 ? event & 1 : z80->irqLine;
            z80->busHold = hold;
            z80->enabled = event == 5 ? 0 : 1;
        }
    }
    EXPECT_EQ(plain.bus.memory, fast.bus.memory) << "seed " << seed;
}

// The same, and stops the run after a number of accesses.
struct STOPPING_BUS : NOISE_BUS {
    uint32_t accessesLeft = 0;

    explicit STOPPING_BUS(Z80& cpu)
        : NOISE_BUS{cpu, std::vector<uint8_t>(0x10000), {}} {}
    void Count() { accessesLeft -= accessesLeft != 0 ? 1 : 0; }
    uint8_t Read(uint16_t address) {
        Count();
        return NOISE_BUS::Read(address);
    }
    uint8_t ReadOpcode(uint16_t address) {
        Count();
        return NOISE_BUS::ReadOpcode(address);
    }
    void Write(uint16_t address, uint8_t value) {
        Count();
        NOISE_BUS::Write(address, value);
    }
    uint8_t IoRead(uint16_t port) {
        Count();
        return NOISE_BUS::IoRead(port);
    }
    void IoWrite(uint16_t port, uint8_t value) {
        Count();
        NOISE_BUS::IoWrite(port, value);
    }
    [[nodiscard]] bool Stops() const { return accessesLeft == 0; }
};

} // namespace

TEST(Z80Run, EqualsSingleClocksOnRandomPrograms) {
    for (uint32_t seed = 1; seed <= 120 && !HasFatalFailure(); ++seed) {
        CompareRuns(seed);
    }
}

// Fetches too.
TEST(Z80Run, EndsWithTheAccessThatMakesTheBusStopIt) {
    constexpr uint32_t kClocks = 230;
    std::mt19937 random(7);
    MACHINE plain;
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    Z80Reset(z80);
    STOPPING_BUS bus(z80);
    for (uint8_t& byte : plain.bus.memory) {
        byte = RandomOpcode(random);
    }
    bus.memory = plain.bus.memory;
    uint64_t clocks = 0;
    for (int run = 0; run < 3000; ++run) {
        const auto accesses = static_cast<uint32_t>(1 + random() % 6);
        plain.bus.runStart = bus.runStart = clocks;
        bus.accessesLeft = accesses;
        const uint32_t done = kClocks - Z80RunOn(z80, bus, kClocks);
        for (uint32_t i = 0; i < done; ++i) {
            plain.bus.At(i);
            Z80TickOn(plain.z80, plain.bus);
        }
        clocks += done;
        ASSERT_EQ(std::ranges::count(bus.trace, '='), accesses) << bus.trace;
        ASSERT_EQ(bus.trace, plain.bus.trace) << "run " << run;
        std::vector<uint8_t> state(Z80StateSize());
        Z80SaveState(z80, state.data());
        ASSERT_EQ(state, plain.State()) << "run " << run << ": " << bus.trace;
        bus.trace.clear();
        plain.bus.trace.clear();
        if (z80.halted != 0) {
            for (Z80* each : {&z80, &plain.z80}) {
                each->nmiEdge = 1;
            }
        }
    }
}

TEST(Z80Run, TellsTheBusTheClockOfAPortAccess) {
    MACHINE machine;
    // NOP; OUT (1),A; IN A,(2). The write is the tenth clock of the OUT, the read the tenth of the
    // IN.
    const std::array<uint8_t, 5> program{0x00, 0xD3, 0x01, 0xDB, 0x02};
    std::copy(program.begin(), program.end(), machine.bus.memory.begin());
    machine.z80.regs[kZ80Af] = 0;
    machine.bus.runStart = 1000;
    Z80RunOn(machine.z80, machine.bus, 26);
    EXPECT_NE(machine.bus.trace.find("o1=0 @1013 "), std::string::npos) << machine.bus.trace;
    EXPECT_NE(machine.bus.trace.find("@1024 "), std::string::npos) << machine.bus.trace;
}

TEST(Z80Run, DoesNothingWhileNotEnabled) {
    MACHINE machine;
    machine.z80.enabled = 0;
    const std::vector<uint8_t> before = machine.State();
    Z80RunOn(machine.z80, machine.bus, 500);
    EXPECT_EQ(machine.State(), before);
    EXPECT_EQ(machine.bus.trace, "");
}

TEST(Z80Run, TakesAnInterruptThatAPortAccessPulls) {
    MACHINE machine;
    // EI; LD A,1; OUT (1),A; NOP ...: the interrupt follows the OUT at once.
    const std::array<uint8_t, 5> program{0xFB, 0x3E, 0x01, 0xD3, 0x01};
    std::copy(program.begin(), program.end(), machine.bus.memory.begin());
    machine.z80.im = 1;
    machine.z80.regs[kZ80Sp] = 0x8000;
    Z80RunOn(machine.z80, machine.bus, 4 + 7 + 11 + 13);
    EXPECT_EQ(machine.z80.regs[kZ80Pc], 0x38U);
    EXPECT_EQ(machine.bus.memory[0x7FFE], 5); // the return address
    EXPECT_EQ(machine.bus.memory[0x7FFF], 0);
}
