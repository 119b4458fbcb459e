// Published single-instruction cases: registers, memory and every cycle of the bus.
#include "nes/m6502.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr size_t kFailuresShown = 20;
constexpr uint32_t kMostClocks = 16;

// In the order of the file.
enum CaseRegister : size_t { kPc, kS, kA, kX, kY, kP, kCaseRegisterCount };

constexpr std::array<const char*, kCaseRegisterCount> kNames{"PC", "S", "A", "X", "Y", "P"};

using REGISTERS = std::array<uint32_t, kCaseRegisterCount>;

struct CELL {
    uint32_t address;
    uint32_t value;
};

struct ACCESS {
    uint32_t address;
    uint32_t value;
    char kind;

    bool operator==(const ACCESS&) const = default;
};

struct SNAPSHOT {
    REGISTERS registers{};
    std::vector<CELL> memory;
};

struct CASE {
    uint32_t opcode = 0;
    std::string title;
    uint32_t clocks = 0;
    SNAPSHOT before;
    SNAPSHOT after;
    std::vector<ACCESS> bus;
};

std::filesystem::path VectorFile() {
    const char* named =
        std::getenv("OMBRELUNE_VECTORS"); // NOLINT(concurrency-mt-unsafe): one thread
    const std::filesystem::path folder =
        named != nullptr
            ? std::filesystem::path(named)
            : std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) / ".." / "shared" / "vectors";
    return folder / "m6502.txt.gz";
}

uint32_t Hex(const std::string& text) {
    return static_cast<uint32_t>(std::stoul(text, nullptr, 16));
}

SNAPSHOT ParseSnapshot(std::istringstream& line) {
    SNAPSHOT snapshot;
    std::string word;
    for (uint32_t& value : snapshot.registers) {
        line >> word;
        value = Hex(word);
    }
    line >> word; // the bar
    while (line >> word) {
        const size_t colon = word.find(':');
        snapshot.memory.push_back({Hex(word.substr(0, colon)), Hex(word.substr(colon + 1))});
    }
    return snapshot;
}

std::vector<ACCESS> ParseBus(std::istringstream& line) {
    std::vector<ACCESS> bus;
    std::string word;
    while (line >> word) {
        const size_t first = word.find(':');
        const size_t second = word.find(':', first + 1);
        bus.push_back({Hex(word.substr(0, first)), Hex(word.substr(first + 1, second - first - 1)),
                       word[second + 1]});
    }
    return bus;
}

// Hands every case of the file to `run`; gives false if it cannot be read.
bool ForEachCase(const std::filesystem::path& path, const std::function<void(const CASE&)>& run) {
    gzFile file = gzopen(path.c_str(), "rb");
    if (file == nullptr) {
        return false;
    }
    std::array<char, 4096> buffer{};
    CASE current;
    bool isFilled = false;
    while (gzgets(file, buffer.data(), static_cast<int>(buffer.size())) != nullptr) {
        std::istringstream line(buffer.data());
        std::string kind;
        line >> kind;
        if (kind == "T") {
            if (isFilled) {
                run(current);
            }
            current = CASE{};
            isFilled = true;
            std::string opcode;
            std::string index;
            line >> opcode >> index >> current.clocks;
            current.opcode = Hex(opcode);
            current.title = opcode + " number " + index;
        } else if (kind == "I") {
            current.before = ParseSnapshot(line);
        } else if (kind == "F") {
            current.after = ParseSnapshot(line);
        } else if (kind == "B") {
            current.bus = ParseBus(line);
        }
    }
    if (isFilled) {
        run(current);
    }
    gzclose(file);
    return true;
}

struct CASE_BUS {
    std::vector<uint8_t>& memory;
    std::vector<ACCESS> accesses;

    uint8_t Read(uint16_t address) {
        accesses.push_back({address, memory[address], 'r'});
        return memory[address];
    }
    void Write(uint16_t address, uint8_t value) {
        accesses.push_back({address, value, 'w'});
        memory[address] = value;
    }
};

// What of a case is another matter here than on the real chip.
enum class Kind {
    kSame,
    kNoDecimal, // A and the flags of the operation
    kNoEffect,  // registers but PC, and memory, stay
    kAddress,   // as kNoEffect, and what the last cycle does is not compared
    kStops,     // the real chip stops: one cycle here
    kReads,     // the cases lack the last read, which the chip's published cycle tables have
    kUnstable   // addresses alone
};

bool IsOneOf(uint32_t opcode, std::initializer_list<uint32_t> list) {
    return std::find(list.begin(), list.end(), opcode) != list.end();
}

Kind KindOf(const CASE& test) {
    const uint32_t opcode = test.opcode;
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
    // ADC and SBC stand in the columns 1 and 3 of rows 6, 7, E and F, and at EB.
    const uint32_t row = opcode >> 4;
    const bool isSum = (row == 6 || row == 7 || row == 0xE || row == 0xF) && (opcode & 1) != 0;
    return isSum && (test.before.registers[kP] & kM6502FlagD) != 0 ? Kind::kNoDecimal : Kind::kSame;
}

M6502 Prepare(const REGISTERS& before) {
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

REGISTERS Registers(const M6502& cpu) {
    return {cpu.pc, cpu.sp, cpu.a, cpu.x, cpu.y, cpu.p};
}

REGISTERS Expected(const CASE& test, Kind kind) {
    REGISTERS expected = test.after.registers;
    if (kind == Kind::kNoEffect || kind == Kind::kAddress || kind == Kind::kStops) {
        expected = test.before.registers;
        expected[kPc] =
            kind == Kind::kStops ? (expected[kPc] + 1) & 0xFFFF : test.after.registers[kPc];
    }
    return expected;
}

std::string CompareRegisters(const CASE& test, Kind kind, const M6502& cpu) {
    constexpr uint32_t kSumFlags = kM6502FlagC | kM6502FlagZ | kM6502FlagV | kM6502FlagN;
    REGISTERS actual = Registers(cpu);
    REGISTERS expected = Expected(test, kind);
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

std::string CompareMemory(const CASE& test, Kind kind, const std::vector<uint8_t>& memory) {
    const bool isUnchanged = kind == Kind::kNoEffect || kind == Kind::kAddress;
    std::ostringstream wrong;
    wrong << std::hex;
    for (const CELL& cell : isUnchanged ? test.before.memory : test.after.memory) {
        if (memory[cell.address] != cell.value) {
            wrong << " [" << cell.address << "] is " << uint32_t{memory[cell.address]} << ", not "
                  << cell.value;
        }
    }
    return wrong.str();
}

// The accesses as far as they are compared.
std::vector<ACCESS> Comparable(std::vector<ACCESS> bus, Kind kind) {
    if (kind == Kind::kStops) {
        bus.resize(1);
    } else if (kind == Kind::kAddress) {
        bus.pop_back();
    } else if (kind == Kind::kUnstable) {
        for (ACCESS& access : bus) {
            access.value = 0;
            access.kind = ' ';
        }
    }
    return bus;
}

// The bus of a three-byte no-operation: a case ends at the address as it is without the carry of an
// index, or behind the operand of 0C; the tables go on to a read at the full address.
std::vector<ACCESS> WithLastRead(const CASE& test, const std::vector<uint8_t>& memory) {
    constexpr size_t kLow = 1;
    constexpr size_t kHigh = 2;
    std::vector<ACCESS> bus = test.bus;
    const uint32_t index = test.opcode == 0x0C ? 0 : test.before.registers[kX];
    const uint32_t address = ((bus[kHigh].value << 8 | bus[kLow].value) + index) & 0xFFFF;
    if (bus.size() == kHigh + 1 || bus.back().address != address) {
        bus.push_back({address, memory[address], 'r'});
    }
    return bus;
}

std::string CompareBus(const CASE& test, Kind kind, const CASE_BUS& bus) {
    const std::vector<ACCESS> expected =
        Comparable(kind == Kind::kReads ? WithLastRead(test, bus.memory) : test.bus, kind);
    const size_t clocks =
        kind == Kind::kStops || kind == Kind::kReads ? expected.size() : test.clocks;
    if (bus.accesses.size() != clocks) {
        return " takes " + std::to_string(bus.accesses.size()) + " clocks, not " +
               std::to_string(clocks);
    }
    return Comparable(bus.accesses, kind) == expected ? "" : " the bus differs";
}

// What is wrong with a case; empty if nothing is.
std::string RunCase(const CASE& test, std::vector<uint8_t>& memory) {
    const Kind kind = KindOf(test);
    M6502 cpu = Prepare(test.before.registers);
    for (const CELL& cell : test.before.memory) {
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
    for (const CELL& cell : test.before.memory) {
        memory[cell.address] = 0;
    }
    for (const ACCESS& access : bus.accesses) {
        memory[access.address] = 0;
    }
    return wrong;
}

TEST(M6502Vectors, EveryPublishedCaseGivesItsRegistersMemoryAndBus) {
    const std::filesystem::path path = VectorFile();
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no published cases: set OMBRELUNE_VECTORS to their folder";
    }
    size_t cases = 0;
    size_t failed = 0;
    std::vector<uint8_t> memory(0x10000, 0);
    ASSERT_TRUE(ForEachCase(path, [&](const CASE& test) {
        ++cases;
        const std::string wrong = RunCase(test, memory);
        if (!wrong.empty() && ++failed <= kFailuresShown) {
            ADD_FAILURE() << test.title << ":" << wrong;
        }
    }));
    EXPECT_GT(cases, 0U);
    EXPECT_EQ(failed, 0U) << "of " << cases;
    RecordProperty("cases", static_cast<int>(cases));
}

} // namespace
