// Small `.game` files for tests and benchmarks of the library: valid records before bytes that stand for
// the packed image.
#pragma once

#include "formats/default_records.h"
#include "formats/game_file.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

inline std::vector<uint8_t> MadeGame(std::string_view title, uint32_t names = 1,
                                     size_t packedBytes = 100) {
    CGameFile game;
    game.Create(false, kSystemMasterSystem);
    for (uint32_t i = 0; i < names; ++i) {
        game.AddNameFromTitle(title, 1, 1, ToMachineRecord(DefaultSmsRecord()));
        const std::string key(title.substr(0, 40));
        NAME_TEXTS texts;
        texts.contentKey = key.c_str();
        texts.regions = "EU";
        game.SetNameText(i, texts);
        NAME_RECORD name{};
        name.playTypes = 1;
        name.year = 88;
        game.SetNameBytes(i, name, ToMachineRecord(DefaultSmsRecord()));
    }
    const std::vector<uint8_t> hashed(title.begin(), title.end());
    game.AddRom("v1.0", Sha256(hashed), 32768);
    for (uint32_t i = 0; i < names; ++i) {
        (void)game.LinkRom(i, 0);
    }
    std::vector<uint8_t> bytes = game.Serialise(false);
    bytes.resize(bytes.size() + packedBytes, 0xA5);
    return bytes;
}

// Files of tests are younger than what the index takes for settled.
inline void SetAge(const std::filesystem::path& file, std::chrono::hours age) {
    std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - age);
}
