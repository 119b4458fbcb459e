#include "library/free_name.h"

#include "base/files.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

enum class Place : uint8_t { kFree, kSame, kTaken };

// False also for a name that cannot be looked up, such as one that is too long.
bool IsThere(const fs::path& file) {
    std::error_code code;
    const fs::file_type type = fs::symlink_status(file, code).type();
    return type != fs::file_type::not_found && type != fs::file_type::none;
}

Place Look(const fs::path& file, std::span<const uint8_t> bytes) {
    if (!IsThere(file)) {
        return Place::kFree;
    }
    std::error_code code;
    std::vector<uint8_t> old;
    std::string ignored;
    const bool sameSize =
        fs::is_regular_file(file, code) && fs::file_size(file, code) == bytes.size();
    const bool same = sameSize && ReadFile(file, old, ignored) && std::ranges::equal(old, bytes);
    return same ? Place::kSame : Place::kTaken;
}

} // namespace

bool WriteBesideOthers(const fs::path& folder, const fs::path& stem, const std::string& extension,
                       std::span<const uint8_t> bytes, PLACED_FILE& placed, std::string& error) {
    fs::path name = stem;
    while (true) {
        fs::path file = folder / name;
        file += extension;
        const Place place = Look(file, bytes);
        placed = {file, place == Place::kSame};
        if (place == Place::kSame) {
            return true;
        }
        if (place == Place::kFree) {
            if (WriteFile(file, bytes, error, WriteMode::kCreate)) {
                return true;
            }
            // Another program may have taken the name meanwhile; anything else is a failure.
            if (!IsThere(file)) {
                return false;
            }
        }
        name += "0";
    }
}
