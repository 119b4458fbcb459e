// The files that a conversion reads and then removes.
//
// Failure: false, and `error` holds one line that names the file and the cause.
#pragma once

#include "base/ranked_mutex.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What tells that a file has changed.
struct FILE_STAMP {
    uint64_t size = 0;
    std::filesystem::file_time_type time{};

    [[nodiscard]] bool operator==(const FILE_STAMP&) const = default;
};

[[nodiscard]] bool StampOf(const std::filesystem::path& path, FILE_STAMP& stamp,
                           std::string& error);

// Reads an image or a zip whole, up to kLargestImage or kLargestZip (game_source.h). Refuses whatever is
// not a file, as reading a pipe might never end.
[[nodiscard]] bool ReadSource(const std::filesystem::path& path, std::vector<uint8_t>& bytes,
                              FILE_STAMP& stamp, std::string& error);

// Unpacks entries of zips. Any thread may call; the archives read last are kept in memory, as the
// entries of one are mostly asked for one after the other.
class ZipMembers {
public:
    // The first entry of this name, compared in lower case.
    [[nodiscard]] bool Read(const std::filesystem::path& path, std::wstring_view member,
                            std::vector<uint8_t>& bytes);

private:
    using Bytes = std::shared_ptr<const std::vector<uint8_t>>;
    struct KEPT {
        std::filesystem::path path;
        Bytes bytes;
    };
    [[nodiscard]] Bytes Archive(const std::filesystem::path& path);

    RankedMutex<LockRank::kLeaf> lock;
    std::vector<KEPT> kept; // the one used last is the last
};

// Deletes a source, which may be read-only. Of a symbolic link, the link. One that is gone already is
// no failure.
[[nodiscard]] bool DeleteSource(const std::filesystem::path& path, std::string& error);

// The subfolder for sources that are kept.
inline constexpr const char* kSourcesFolder = "sources";

// Moves a source into the subfolder of its folder, which is made. A name that is taken there gets a
// number; nothing is replaced.
[[nodiscard]] bool KeepSource(const std::filesystem::path& path, std::string& error);
