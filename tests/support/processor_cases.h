// Single-instruction cases made by other people: the state before and after one instruction, and what it
// accessed.
//
// A file is gzipped text. All numbers but those of T are hexadecimal. A case is, in this order:
//     T opcode index clocks [title]      clocks in decimal
//     I registers | address:value ...    before
//     F registers | address:value ...    after
//     P or B address:value:r|w ...       accesses of ports, or of the whole bus; may be missing
// The files are in tests/vectors, which has a few cases of every opcode. A larger set is named when the tests
// are configured, by the CMake variable OMBRELUNE_VECTORS, or when they run, by the environment variable of
// the same name, which has precedence. No other folder is searched.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// In the order of the file; missing ones are 0.
inline constexpr size_t kMostCaseRegisters = 21;
using CASE_REGISTERS = std::array<uint32_t, kMostCaseRegisters>;

struct CASE_CELL {
    uint32_t address;
    uint32_t value;
};

struct CASE_ACCESS {
    uint32_t address;
    uint32_t value;
    char kind; // r or w

    bool operator==(const CASE_ACCESS&) const = default;
};

struct CASE_SNAPSHOT {
    CASE_REGISTERS registers{};
    std::vector<CASE_CELL> memory;
};

struct PROCESSOR_CASE {
    std::string opcode; // as the file has it
    std::string title;
    uint32_t clocks = 0;
    CASE_SNAPSHOT before;
    CASE_SNAPSHOT after;
    std::vector<CASE_ACCESS> accesses;
};

// The path of a file of cases: in the folder `named`, or in the configured one if that is null or empty.
[[nodiscard]] std::filesystem::path CaseFile(const std::string& file, const char* named);

[[nodiscard]] uint32_t CaseNumber(const std::string& hexadecimal);

// Runs every case of the file that `chosen` picks, reports at most twenty errors that `run` returns,
// and expects at least one case and no error. Skips the test if there is no such file.
void RunProcessorCases(const std::string& file,
                       const std::function<bool(const PROCESSOR_CASE&)>& chosen,
                       const std::function<std::string(const PROCESSOR_CASE&)>& run);
