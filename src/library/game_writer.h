// Writes a finished `.game` into a folder and makes sure that it is there.
#pragma once

#include "formats/sha256.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

// A game that is to be written.
struct GAME_TO_WRITE {
    std::filesystem::path folder;
    std::string stem; // the file's name without ".game", with the bytes of the source's name
    uint16_t system = 0;
    Sha256Digest headerHash{};
    std::span<const uint8_t> image; // unpacked
    std::filesystem::file_time_type newestSource = std::filesystem::file_time_type::min();
};

// The game that an earlier conversion wrote from the same sources without removing them, as it was
// stopped: it has the name that this one would get, is younger than the sources and holds the same
// records and image. Only names in `candidates` count. Empty if there is none.
[[nodiscard]] std::filesystem::path
FindWrittenGame(const GAME_TO_WRITE& game, const std::unordered_set<std::string>& candidates);

// Whether these bytes of a `.game` unpack to the image.
[[nodiscard]] bool UnpacksTo(std::span<const uint8_t> bytes, std::span<const uint8_t> image);

// Writes the bytes as the folder's file of that stem. While it exists, "0" is appended to the stem. The
// file has been flushed, read again and compared when this returns true; `target` is its path in any
// case.
[[nodiscard]] bool WriteGameFile(const std::filesystem::path& folder, const std::string& stem,
                                 std::span<const uint8_t> bytes, std::filesystem::path& target,
                                 std::string& error);
