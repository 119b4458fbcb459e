// What tells a changed file from an unchanged one without reading it, and the front of a file in one
// read. A scan of many files needs no more of each.
//
// Only regular files have a stamp, and links that lead to one. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

struct FILE_STAMP {
    uint64_t bytes = 0;   // length
    int64_t modified = 0; // nanoseconds since 1970

    [[nodiscard]] bool operator==(const FILE_STAMP&) const = default;
};

// False if there is no such regular file.
[[nodiscard]] bool StampFile(const std::filesystem::path& path, FILE_STAMP& stamp);

// Reads at most `most` bytes from the start. The stamp is taken before the read: a file that changes
// meanwhile differs from it afterwards. False if the file cannot be read.
[[nodiscard]] bool ReadFileFront(const std::filesystem::path& path, size_t most, FILE_STAMP& stamp,
                                 std::vector<uint8_t>& bytes);
