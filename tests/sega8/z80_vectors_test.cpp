// Published single-instruction cases: registers, memory, ports and the clock count, before and
// after.
#include "sega8/z80.h"

#include "support/processor_cases.h"
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

// In the order of the file.
enum CaseRegister : size_t {
    kPc,
    kSp,
    kAf,
    kBc,
    kDe,
    kHl,
    kIx,
    kIy,
    kAfPrime,
    kBcPrime,
    kDePrime,
    kHlPrime,
    kI,
    kR,
    kIm,
    kIff1,
    kIff2,
    kCaseRegisterCount
};

constexpr std::array<Z80Register, kI> kWords{kZ80Pc,      kZ80Sp,      kZ80Af,      kZ80Bc,
                                             kZ80De,      kZ80Hl,      kZ80Ix,      kZ80Iy,
                                             kZ80AfPrime, kZ80BcPrime, kZ80DePrime, kZ80HlPrime};
constexpr std::array<const char*, kCaseRegisterCount> kNames{
    "PC",  "SP",  "AF",  "BC", "DE", "HL", "IX",   "IY",  "AF'",
    "BC'", "DE'", "HL'", "I",  "R",  "IM", "IFF1", "IFF2"};

// Answers port reads from the case and logs accesses.
struct CASE_BUS {
    const PROCESSOR_CASE& expected;
    std::vector<uint8_t>& memory;
    std::vector<uint16_t> written;
    std::vector<CASE_ACCESS> ports;

    uint8_t Read(uint16_t address) const { return memory[address]; }
    uint8_t ReadOpcode(uint16_t address) const { return memory[address]; }
    void Write(uint16_t address, uint8_t value) {
        memory[address] = value;
        written.push_back(address);
    }
    uint8_t IoRead(uint16_t port) {
        const size_t index = ports.size();
        const uint32_t value =
            index < expected.accesses.size() ? expected.accesses[index].value : 0;
        ports.push_back({port, value, 'r'});
        return static_cast<uint8_t>(value);
    }
    void IoWrite(uint16_t port, uint8_t value) { ports.push_back({port, value, 'w'}); }
};

Z80 Prepare(const CASE_SNAPSHOT& before) {
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    Z80Reset(z80);
    for (size_t i = 0; i < kWords.size(); ++i) {
        z80.regs[kWords[i]] = before.registers[i];
    }
    z80.i = before.registers[kI];
    z80.r7 = before.registers[kR] & 0x7F;
    z80.r8 = before.registers[kR] & 0x80;
    z80.im = before.registers[kIm];
    z80.iff1 = before.registers[kIff1];
    z80.iff2 = before.registers[kIff2];
    return z80;
}

CASE_REGISTERS Registers(const Z80& z80) {
    CASE_REGISTERS registers{};
    for (size_t i = 0; i < kWords.size(); ++i) {
        registers[i] = z80.regs[kWords[i]] & 0xFFFF;
    }
    registers[kI] = z80.i;
    registers[kR] = (z80.r7 & 0x7F) | z80.r8;
    registers[kIm] = z80.im;
    registers[kIff1] = z80.iff1;
    registers[kIff2] = z80.iff2;
    return registers;
}

bool IsIndexedBits(const std::string& opcode) {
    return opcode.size() == 8;
}

// A two-byte opcode without its DD or FD.
std::string Plain(const std::string& opcode) {
    const bool hasIndex = opcode.starts_with("dd") || opcode.starts_with("fd");
    return hasIndex && opcode.size() == 4 ? opcode.substr(2) : opcode;
}

// Flag bits in which this chip differs from the real part on purpose.
uint32_t FlagsLeftOut(const PROCESSOR_CASE& test) {
    constexpr uint32_t kXAndY = kZ80FlagX | kZ80FlagY;
    const std::string opcode = Plain(test.opcode);
    if (opcode == "37" || opcode == "3f") { // SCF, CCF
        return kXAndY;
    }
    if (opcode.size() == 4 && opcode.starts_with("cb")) {
        const uint32_t code = CaseNumber(opcode.substr(2));
        return (code & 0xC7) == 0x46 ? kXAndY : 0; // BIT n,(HL)
    }
    const bool isRepeated = test.after.registers[kPc] == test.before.registers[kPc];
    if (isRepeated &&
        (opcode == "edb0" || opcode == "edb8" || opcode == "edb1" || opcode == "edb9")) {
        return kXAndY;
    }
    if (isRepeated &&
        (opcode == "edb2" || opcode == "edba" || opcode == "edb3" || opcode == "edbb")) {
        return 0xFF;
    }
    return 0;
}

// The register that a DD CB or FD CB form names keeps its value.
void KeepNamedRegister(const PROCESSOR_CASE& test, CASE_REGISTERS& expected) {
    const uint32_t code = CaseNumber(test.opcode.substr(6));
    const uint32_t name = code & 7;
    if ((code & 0xC0) == 0x40 || name == 6) {
        return;
    }
    static constexpr std::array<CaseRegister, 8> kHolders{kBc, kBc, kDe, kDe, kHl, kHl, kAf, kAf};
    const bool isHigh = name == 7 || name % 2 == 0;
    const uint32_t kept = isHigh ? 0xFF00 : 0x00FF;
    uint32_t& word = expected[kHolders[name]];
    word = (word & ~kept) | (test.before.registers[kHolders[name]] & kept);
}

CASE_REGISTERS Expected(const PROCESSOR_CASE& test) {
    auto expected = test.after.registers;
    if (IsIndexedBits(test.opcode)) {
        KeepNamedRegister(test, expected);
    } else if (Plain(test.opcode) == "76") { // HALT keeps PC on its opcode.
        expected[kPc] = (expected[kPc] - 1) & 0xFFFF;
    }
    return expected;
}

// The registers that differ; empty if none does.
std::string CompareRegisters(const PROCESSOR_CASE& test, const Z80& z80) {
    auto actual = Registers(z80);
    auto expected = Expected(test);
    const uint32_t leftOut = FlagsLeftOut(test);
    actual[kAf] &= ~leftOut;
    expected[kAf] &= ~leftOut;
    std::ostringstream wrong;
    for (size_t i = 0; i < kCaseRegisterCount; ++i) {
        if (actual[i] != expected[i]) {
            wrong << " " << kNames[i] << std::hex << " is " << actual[i] << ", not " << expected[i];
        }
    }
    return wrong.str();
}

std::string CompareMemory(const PROCESSOR_CASE& test, const CASE_BUS& bus) {
    std::ostringstream wrong;
    wrong << std::hex;
    for (const CASE_CELL& cell : test.after.memory) {
        if (bus.memory[cell.address] != cell.value) {
            wrong << " [" << cell.address << "] is " << uint32_t{bus.memory[cell.address]}
                  << ", not " << cell.value;
        }
    }
    for (const uint16_t address : bus.written) {
        bool isListed = false;
        for (const CASE_CELL& cell : test.after.memory) {
            isListed = isListed || cell.address == address;
        }
        if (!isListed) {
            wrong << " [" << address << "] is written";
        }
    }
    return wrong.str();
}

std::string ComparePorts(const PROCESSOR_CASE& test, const CASE_BUS& bus) {
    return bus.ports == test.accesses ? "" : " ports differ";
}

// Runs one case; returns what differs.
std::string Run(const PROCESSOR_CASE& test, std::vector<uint8_t>& memory) {
    constexpr uint32_t kLimit = 64;
    for (const CASE_CELL& cell : test.before.memory) {
        memory[cell.address] = static_cast<uint8_t>(cell.value);
    }
    Z80 z80 = Prepare(test.before);
    CASE_BUS bus{test, memory, {}, {}};
    uint32_t clocks = 0;
    do {
        Z80TickOn(z80, bus);
        ++clocks;
    } while (clocks < kLimit && (z80.queueIndex != 0 || z80.prefix != kZ80NoPrefix));
    std::string wrong =
        CompareRegisters(test, z80) + CompareMemory(test, bus) + ComparePorts(test, bus);
    if (clocks != test.clocks) {
        wrong += " takes " + std::to_string(clocks) + " clocks, not " + std::to_string(test.clocks);
    }
    for (const CASE_CELL& cell : test.before.memory) {
        memory[cell.address] = 0;
    }
    for (const uint16_t address : bus.written) {
        memory[address] = 0;
    }
    return wrong;
}

void RunCases(const std::function<bool(const std::string& opcode)>& chosen) {
    std::vector<uint8_t> memory(0x10000, 0);
    RunProcessorCases(
        "z80.txt.gz", [&chosen](const PROCESSOR_CASE& test) { return chosen(test.opcode); },
        [&memory](const PROCESSOR_CASE& test) { return Run(test, memory); });
}

} // namespace

TEST(Z80Vectors, BaseTablePasses) {
    RunCases([](const std::string& opcode) { return opcode.size() == 2; });
}

TEST(Z80Vectors, BitTablePasses) {
    RunCases(
        [](const std::string& opcode) { return opcode.size() == 4 && opcode.starts_with("cb"); });
}

TEST(Z80Vectors, ExtendedTablePasses) {
    RunCases(
        [](const std::string& opcode) { return opcode.size() == 4 && opcode.starts_with("ed"); });
}

TEST(Z80Vectors, IndexTablesPass) {
    RunCases([](const std::string& opcode) {
        return opcode.size() == 4 && (opcode.starts_with("dd") || opcode.starts_with("fd"));
    });
}

TEST(Z80Vectors, IndexedBitTablesPass) {
    RunCases([](const std::string& opcode) { return opcode.size() == 8; });
}
