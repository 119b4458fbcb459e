// Single-instruction cases made by other people: the state before and after one instruction, and what it
// accessed.
//
// A file is gzipped text. All numbers but those of T are hexadecimal. A case is, in this order:
//     T opcode index clocks [title]      clocks in decimal
//     I registers | address:value ...    before
//     F registers | address:value ...    after
//     P or B address:value:r|w ...       accesses of ports, or of the whole bus; may be missing
// A file is looked for in the folder of the environment variable OMBRELUNE_VECTORS and there alone; without
// the variable in `shared/vectors` beside the project's own folder, then in `tests/vectors`, where a sample
// of the cases may lie.
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

// The path of a file of cases: in the folder `named`, unless it is null, else in the first of `folders`
// that has it, else in the last one.
[[nodiscard]] std::filesystem::path FindCaseFile(const std::string& file, const char* named,
                                                 const std::vector<std::filesystem::path>& folders);

[[nodiscard]] uint32_t CaseNumber(const std::string& hexadecimal);

// Runs every case of the file that `chosen` picks, reports at most twenty errors that `run` returns,
// and expects at least one case and no error. Skips the test if there is no such file.
void RunProcessorCases(const std::string& file,
                       const std::function<bool(const PROCESSOR_CASE&)>& chosen,
                       const std::function<std::string(const PROCESSOR_CASE&)>& run);
