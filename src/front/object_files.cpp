#include "front/object_files.h"

#include "base/files.h"
#include "base/text.h"
#include "front/assets.h"
#include "front/notices.h"

#include <string>

namespace {

constexpr uint64_t kMostBytes = 64 << 20;

// The player's file of this name, in whatever case it is written; empty if there is none. Of several, the one in
// the same case, or else the first.
std::filesystem::path FindPlayersFile(std::string_view name) {
    const std::filesystem::path exact = ResolvePath(".\\objects\\" + std::string(name));
    std::error_code missing;
    if (std::filesystem::exists(exact, missing)) {
        return exact;
    }
    const std::string wanted = LowerAscii(name);
    std::filesystem::path found;
    std::filesystem::directory_iterator entry(exact.parent_path(), missing);
    for (; !missing && entry != std::filesystem::directory_iterator(); entry.increment(missing)) {
        const std::filesystem::path& path = entry->path();
        if (LowerAscii(path.filename().string()) == wanted && (found.empty() || path < found)) {
            found = path;
        }
    }
    return found;
}

// False without such a file.
bool ReadPlayersFile(std::string_view name, std::vector<uint8_t>& bytes) {
    const std::filesystem::path path = FindPlayersFile(name);
    if (path.empty()) {
        return false;
    }
    std::string error;
    if (!ReadFile(path, bytes, error, kMostBytes)) {
        PostReport(error + "; the built-in one is used");
        return false;
    }
    return true;
}

} // namespace

std::vector<uint8_t> ReadObjectFile(std::string_view name) {
    std::vector<uint8_t> bytes;
    return ReadPlayersFile(name, bytes) ? bytes : ReadBuiltInObject(name);
}

std::vector<uint8_t> ReadBuiltInObject(std::string_view name) {
    const std::string wanted = LowerAscii(name);
    for (const OBJECT_ASSET& asset : BuiltInObjects()) {
        if (asset.name == wanted) {
            return {asset.data.begin(), asset.data.end()};
        }
    }
    return {};
}
