// The golden states of tests/golden: NAME.game, NAME.state.gz and NAME.txt, which says what follows.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

inline const std::filesystem::path kGoldenFolder = OMBRELUNE_SOURCE_FOLDER "/tests/golden";

inline std::vector<std::string> GoldenNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kGoldenFolder)) {
        if (entry.path().extension() == ".txt") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

// A picture and its sound, as a line of hashes has them: number, width, height, picture, pairs, sound. "-" where
// nothing is said.
using GOLDEN_LINE = std::array<std::string, 6>;

struct GOLDEN_CASE {
    std::vector<std::string> settings; // "name=value"
    std::vector<GOLDEN_LINE> lines;
};

inline std::vector<GOLDEN_LINE> ReadGoldenLines(std::istream& text) {
    std::vector<GOLDEN_LINE> lines;
    for (GOLDEN_LINE line;
         text >> line[0] >> line[1] >> line[2] >> line[3] >> line[4] >> line[5];) {
        lines.push_back(line);
    }
    return lines;
}

inline GOLDEN_CASE ReadGoldenCase(const std::string& name) {
    std::ifstream file(kGoldenFolder / (name + ".txt"));
    GOLDEN_CASE what;
    std::string line;
    while (std::getline(file, line) && line.starts_with('#')) {
    }
    std::istringstream words(line);
    std::string word;
    words >> word;
    EXPECT_EQ(word, "options") << name;
    while (words >> word) {
        what.settings.push_back(word);
    }
    what.lines = ReadGoldenLines(file);
    return what;
}

// The state itself, unpacked.
inline std::vector<uint8_t> ReadGoldenState(const std::string& name) {
    std::vector<uint8_t> bytes;
    const gzFile file = gzopen((kGoldenFolder / (name + ".state.gz")).c_str(), "rb");
    EXPECT_NE(file, nullptr) << name;
    if (file != nullptr) {
        std::array<uint8_t, 4096> part{};
        for (int got = 0; (got = gzread(file, part.data(), part.size())) > 0;) {
            bytes.insert(bytes.end(), part.begin(), part.begin() + got);
        }
        gzclose(file);
    }
    return bytes;
}
