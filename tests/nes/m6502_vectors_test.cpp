// Published single-instruction cases: registers, memory and every cycle of the bus.
#include "nes/m6502.h"

#include "support/processor_cases.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kMostClocks = 16;

// In the order of the file.
enum CaseRegister : size_t { kPc, kS, kA, kX, kY, kP, kCaseRegisterCount };

constexpr std::array<const char*, kCaseRegisterCount> kNames{"PC", "S", "A", "X", "Y", "P"};

struct CASE_BUS {
    std::vector<uint8_t>& memory;
    std::vector<CASE_ACCESS> accesses;

    uint8_t Read(uint16_t address) {
        accesses.push_back({address, memory[address], 'r'});
        return memory[address];
    }
    void Write(uint16_t address, uint8_t value) {
        accesses.push_back({address, value, 'w'});
        memory[address] = value;
    }
};

// How an opcode differs here from the real chip.
enum class Kind {
    kSame,
    kNoDecimal, // A and the operation's flags differ in decimal mode
    kNoEffect,  // memory and all registers but PC stay
    kAddress,   // as kNoEffect; the last cycle is not compared
    kStops,     // the real chip stops: one cycle here
    kReads,     // the cases lack the last read, which the published cycle tables have
    kUnstable   // addresses only; on a page crossing the store's page follows the published rule
};

bool IsOneOf(uint32_t opcode, std::initializer_list<uint32_t> list) {
    return std::find(list.begin(), list.end(), opcode) != list.end();
}

Kind KindOf(const PROCESSOR_CASE& test) {
    const uint32_t opcode = CaseNumber(test.opcode);
    if (IsOneOf(opcode, {0x0B, 0x2B, 0x4B, 0x6B, 0x8B, 0xAB, 0xCB})) {
        return Kind::kNoEffect;
    }
    if (IsOneOf(opcode, {0x9B, 0xBB})) {
        return Kind::kAddress;
    }
    if (IsOneOf(opcode, {0x02, 0x12, 0x22, 0x32, 0x42, 0x52, 0x62, 0x72, 0x92, 0xB2, 0xD2, 0xF2})) {
        return Kind::kStops;
    }
    if (IsOneOf(opcode, {0x93, 0x9C, 0x9E, 0x9F})) {
        return Kind::kUnstable;
    }
    if (IsOneOf(opcode, {0x0C, 0x1C, 0x3C, 0x5C, 0x7C, 0xDC, 0xFC})) {
        return Kind::kReads;
    }
    // ADC and SBC are in columns 1 and 3 of rows 6, 7, E and F, and at EB.
    const uint32_t row = opcode >> 4;
    const bool isSum = (row == 6 || row == 7 || row == 0xE || row == 0xF) && (opcode & 1) != 0;
    return isSum && (test.before.registers[kP] & kM6502FlagD) != 0 ? Kind::kNoDecimal : Kind::kSame;
}

M6502 Prepare(const CASE_REGISTERS& before) {
    M6502 cpu;
    M6502Init(cpu, nullptr, nullptr, nullptr);
    cpu.pc = static_cast<uint16_t>(before[kPc]);
    cpu.sp = static_cast<uint8_t>(before[kS]);
    cpu.a = static_cast<uint8_t>(before[kA]);
    cpu.x = static_cast<uint8_t>(before[kX]);
    cpu.y = static_cast<uint8_t>(before[kY]);
    cpu.p = static_cast<uint8_t>((before[kP] & ~uint32_t{kM6502FlagB}) | kM6502FlagOne);
    return cpu;
}

CASE_REGISTERS Registers(const M6502& cpu) {
    return {cpu.pc, cpu.sp, cpu.a, cpu.x, cpu.y, cpu.p};
}

CASE_REGISTERS Expected(const PROCESSOR_CASE& test, Kind kind) {
    CASE_REGISTERS expected = test.after.registers;
    if (kind == Kind::kNoEffect || kind == Kind::kAddress || kind == Kind::kStops) {
        expected = test.before.registers;
        expected[kPc] =
            kind == Kind::kStops ? (expected[kPc] + 1) & 0xFFFF : test.after.registers[kPc];
    }
    return expected;
}

std::string CompareRegisters(const PROCESSOR_CASE& test, Kind kind, const M6502& cpu) {
    constexpr uint32_t kSumFlags = kM6502FlagC | kM6502FlagZ | kM6502FlagV | kM6502FlagN;
    CASE_REGISTERS actual = Registers(cpu);
    CASE_REGISTERS expected = Expected(test, kind);
    uint32_t leftOut = kM6502FlagB;
    if (kind == Kind::kNoDecimal) {
        leftOut |= kSumFlags;
        actual[kA] = expected[kA] = 0;
    }
    actual[kP] &= ~leftOut;
    expected[kP] &= ~leftOut;
    std::ostringstream wrong;
    for (size_t i = 0; i < kCaseRegisterCount; ++i) {
        if (actual[i] != expected[i]) {
            wrong << " " << kNames[i] << std::hex << " is " << actual[i] << ", not " << expected[i];
        }
    }
    return wrong.str();
}

std::string CompareMemory(const PROCESSOR_CASE& test, Kind kind,
                          const std::vector<uint8_t>& memory) {
    const bool isUnchanged = kind == Kind::kNoEffect || kind == Kind::kAddress;
    std::ostringstream wrong;
    wrong << std::hex;
    for (const CASE_CELL& cell : isUnchanged ? test.before.memory : test.after.memory) {
        if (memory[cell.address] != cell.value) {
            wrong << " [" << cell.address << "] is " << uint32_t{memory[cell.address]} << ", not "
                  << cell.value;
        }
    }
    return wrong.str();
}

// The accesses that are compared.
std::vector<CASE_ACCESS> Comparable(std::vector<CASE_ACCESS> bus, Kind kind) {
    if (kind == Kind::kStops) {
        bus.resize(1);
    } else if (kind == Kind::kAddress) {
        bus.pop_back();
    } else if (kind == Kind::kUnstable) {
        for (CASE_ACCESS& access : bus) {
            access.value = 0;
            access.kind = ' ';
        }
    }
    return bus;
}

// The bus of a three-byte NOP: a case ends with the address before the carry, or after the operand of 0C; the
// published tables go on to a read at the full address.
std::vector<CASE_ACCESS> WithLastRead(const PROCESSOR_CASE& test,
                                      const std::vector<uint8_t>& memory) {
    constexpr size_t kLow = 1;
    constexpr size_t kHigh = 2;
    std::vector<CASE_ACCESS> bus = test.accesses;
    const uint32_t index = CaseNumber(test.opcode) == 0x0C ? 0 : test.before.registers[kX];
    const uint32_t address = ((bus[kHigh].value << 8 | bus[kLow].value) + index) & 0xFFFF;
    if (bus.size() == kHigh + 1 || bus.back().address != address) {
        bus.push_back({address, memory[address], 'r'});
    }
    return bus;
}

// The bus of SHA, SHX, SHY: a case stores to the indexed page. If the index carries, the published rule makes the
// stored value the page: the registers AND (high byte of the address before the index, + 1). The cycle before
// shows that high byte.
std::vector<CASE_ACCESS> WithStorePage(const PROCESSOR_CASE& test) {
    std::vector<CASE_ACCESS> bus = test.accesses;
    const uint32_t high = bus.at(bus.size() - 2).address >> 8;
    if (bus.back().address >> 8 == high) {
        return bus;
    }
    const CASE_REGISTERS& before = test.before.registers;
    const uint32_t opcode = CaseNumber(test.opcode);
    const uint32_t stored = opcode == 0x9C   ? before[kY]
                            : opcode == 0x9E ? before[kX]
                                             : before[kA] & before[kX];
    bus.back().address = (stored & (high + 1) & 0xFF) << 8 | (bus.back().address & 0xFF);
    return bus;
}

std::vector<CASE_ACCESS> ExpectedBus(const PROCESSOR_CASE& test, Kind kind,
                                     const std::vector<uint8_t>& memory) {
    switch (kind) {
    case Kind::kReads: return WithLastRead(test, memory);
    case Kind::kUnstable: return WithStorePage(test);
    default: return test.accesses;
    }
}

std::string CompareBus(const PROCESSOR_CASE& test, Kind kind, const CASE_BUS& bus) {
    const std::vector<CASE_ACCESS> expected = Comparable(ExpectedBus(test, kind, bus.memory), kind);
    const size_t clocks =
        kind == Kind::kStops || kind == Kind::kReads ? expected.size() : test.clocks;
    if (bus.accesses.size() != clocks) {
        return " takes " + std::to_string(bus.accesses.size()) + " clocks, not " +
               std::to_string(clocks);
    }
    return Comparable(bus.accesses, kind) == expected ? "" : " the bus differs";
}

// What is wrong with a case; empty if it passes.
std::string RunCase(const PROCESSOR_CASE& test, std::vector<uint8_t>& memory) {
    const Kind kind = KindOf(test);
    M6502 cpu = Prepare(test.before.registers);
    for (const CASE_CELL& cell : test.before.memory) {
        memory[cell.address] = static_cast<uint8_t>(cell.value);
    }
    CASE_BUS bus{memory, {}};
    do {
        M6502Sample(cpu);
        M6502Cycle(cpu, bus);
    } while (bus.accesses.size() < kMostClocks && !M6502IsBetweenInstructions(cpu));
    std::string wrong = CompareBus(test, kind, bus);
    if (kind != Kind::kUnstable) {
        wrong += CompareRegisters(test, kind, cpu) + CompareMemory(test, kind, memory);
    }
    for (const CASE_CELL& cell : test.before.memory) {
        memory[cell.address] = 0;
    }
    for (const CASE_ACCESS& access : bus.accesses) {
        memory[access.address] = 0;
    }
    return wrong;
}

TEST(M6502Vectors, EveryPublishedCaseEndsWithItsRegistersMemoryAndBus) {
    std::vector<uint8_t> memory(0x10000, 0);
    RunProcessorCases(
        "m6502.txt.gz", [](const PROCESSOR_CASE& /*any*/) { return true; },
        [&memory](const PROCESSOR_CASE& test) { return RunCase(test, memory); });
}

} // namespace
