#include "front/object_files.h"

#include "base/files.h"
#include "front/assets.h"
#include "front/notices.h"

#include <string>

namespace {

constexpr uint64_t kMostBytes = 64 << 20;

// False without such a file.
bool ReadPlayersFile(std::string_view name, std::vector<uint8_t>& bytes) {
    const std::filesystem::path path = ResolvePath(".\\objects\\" + std::string(name));
    std::error_code missing;
    if (!std::filesystem::exists(path, missing)) {
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
    if (ReadPlayersFile(name, bytes)) {
        return bytes;
    }
    for (const OBJECT_ASSET& asset : BuiltInObjects()) {
        if (asset.name == name) {
            return {asset.data.begin(), asset.data.end()};
        }
    }
    return {};
}
