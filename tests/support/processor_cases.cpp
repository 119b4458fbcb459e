#include "support/processor_cases.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace {

constexpr size_t kFailuresShown = 20;
constexpr size_t kLongestLine = 16384;

CASE_SNAPSHOT ParseSnapshot(std::istringstream& line) {
    CASE_SNAPSHOT snapshot;
    std::string word;
    for (size_t i = 0; line >> word && word != "|"; ++i) {
        snapshot.registers.at(i) = CaseNumber(word);
    }
    while (line >> word) {
        const size_t colon = word.find(':');
        snapshot.memory.push_back(
            {CaseNumber(word.substr(0, colon)), CaseNumber(word.substr(colon + 1))});
    }
    return snapshot;
}

std::vector<CASE_ACCESS> ParseAccesses(std::istringstream& line) {
    std::vector<CASE_ACCESS> accesses;
    std::string word;
    while (line >> word) {
        const size_t first = word.find(':');
        const size_t second = word.find(':', first + 1);
        accesses.push_back({CaseNumber(word.substr(0, first)),
                            CaseNumber(word.substr(first + 1, second - first - 1)),
                            word.at(second + 1)});
    }
    return accesses;
}

PROCESSOR_CASE ParseTitle(std::istringstream& line) {
    PROCESSOR_CASE started;
    std::string index;
    std::string rest;
    line >> started.opcode >> index >> started.clocks;
    std::getline(line, rest);
    started.title = started.opcode + " number " + index + rest;
    return started;
}

// Passes on every case of the file; returns false if it cannot be read.
bool ForEachCase(const std::filesystem::path& path,
                 const std::function<void(const PROCESSOR_CASE&)>& with) {
    struct CLOSE {
        void operator()(gzFile_s* file) const { gzclose(file); }
    };
    const std::unique_ptr<gzFile_s, CLOSE> file(gzopen(path.c_str(), "rb"));
    if (!file) {
        return false;
    }
    std::vector<char> buffer(kLongestLine);
    PROCESSOR_CASE current;
    const auto finish = [&] {
        if (!current.opcode.empty()) {
            with(current);
        }
    };
    while (gzgets(file.get(), buffer.data(), static_cast<int>(buffer.size())) != nullptr) {
        std::istringstream line(buffer.data());
        std::string kind;
        line >> kind;
        if (kind == "T") {
            finish();
            current = ParseTitle(line);
        } else if (kind == "I") {
            current.before = ParseSnapshot(line);
        } else if (kind == "F") {
            current.after = ParseSnapshot(line);
        } else if (kind == "P" || kind == "B") {
            current.accesses = ParseAccesses(line);
        }
    }
    finish();
    return true;
}

} // namespace

std::filesystem::path CaseFile(const std::string& file, const char* named) {
    const bool isNamed = named != nullptr && *named != '\0';
    return std::filesystem::path(isNamed ? named : OMBRELUNE_VECTORS_FOLDER) / file;
}

uint32_t CaseNumber(const std::string& hexadecimal) {
    return static_cast<uint32_t>(std::stoul(hexadecimal, nullptr, 16));
}

void RunProcessorCases(const std::string& file,
                       const std::function<bool(const PROCESSOR_CASE&)>& chosen,
                       const std::function<std::string(const PROCESSOR_CASE&)>& run) {
    const char* const named =
        std::getenv("OMBRELUNE_VECTORS"); // NOLINT(concurrency-mt-unsafe): one thread
    const std::filesystem::path path = CaseFile(file, named);
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "no single-instruction cases at " << path;
    }
    size_t count = 0;
    size_t failures = 0;
    const bool isRead = ForEachCase(path, [&](const PROCESSOR_CASE& test) {
        if (!chosen(test)) {
            return;
        }
        ++count;
        const std::string wrong = run(test);
        if (!wrong.empty() && ++failures <= kFailuresShown) {
            ADD_FAILURE() << test.title << ":" << wrong;
        }
    });
    ASSERT_TRUE(isRead) << path;
    EXPECT_GT(count, 0U) << path;
    EXPECT_EQ(failures, 0U) << "of " << count << " cases";
    testing::Test::RecordProperty("cases", static_cast<int>(count));
    std::printf("%zu cases of %s, %zu of them fail\n", count, path.c_str(), failures);
}
