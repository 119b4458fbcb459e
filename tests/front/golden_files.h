// The golden states of tests/golden: NAME.game, NAME.state.gz and NAME.txt, which says what follows.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
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
