#include "library/game_writer.h"

#include "base/files.h"
#include "formats/game_file.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

constexpr const char* kExtension = ".game";

// A link that leads nowhere takes its name too.
bool IsTaken(const fs::path& path) {
    std::error_code ignored;
    const fs::file_type type = fs::symlink_status(path, ignored).type();
    return type != fs::file_type::not_found && type != fs::file_type::none;
}

bool HasRecordsOf(const CGameFile& file, const GAME_TO_WRITE& game) {
    return file.Header().system == game.system &&
           std::ranges::equal(file.Header().headerHash, game.headerHash);
}

bool HoldsGame(const fs::path& path, const GAME_TO_WRITE& game) {
    std::error_code code;
    const fs::file_time_type time = fs::last_write_time(path, code);
    CGameFile file;
    return !code && time > game.newestSource && LoadGameFile(true, path, file) &&
           HasRecordsOf(file, game) && LoadGameFile(false, path, file) &&
           HasRecordsOf(file, game) && std::ranges::equal(file.Data(), game.image);
}

} // namespace

fs::path FindWrittenGame(const GAME_TO_WRITE& game,
                         const std::unordered_set<std::string>& candidates) {
    std::string name = game.stem + kExtension;
    for (; candidates.contains(name); name.insert(name.size() - 5, "0")) {
        if (HoldsGame(game.folder / name, game)) {
            return game.folder / name;
        }
    }
    return {};
}

bool UnpacksTo(std::span<const uint8_t> bytes, std::span<const uint8_t> image) {
    CGameFile file;
    return file.Parse(bytes.data(), bytes.size(), true) && std::ranges::equal(file.Data(), image);
}

bool WriteGameFile(const fs::path& folder, const std::string& stem, std::span<const uint8_t> bytes,
                   fs::path& target, std::string& error) {
    std::string name = stem;
    while (true) {
        target = folder / (name + kExtension);
        if (IsTaken(target)) {
            name += '0';
        } else if (WriteFile(target, bytes, error, WriteMode::kCreate)) {
            break;
        } else if (!IsTaken(target)) {
            return false;
        } // else another program has just made it
    }
    std::vector<uint8_t> written;
    if (!ReadFile(target, written, error)) {
        return false;
    }
    if (!std::ranges::equal(written, bytes)) {
        error = target.string() + ": does not hold what was written";
        std::error_code ignored;
        fs::remove(target, ignored);
        return false;
    }
    return true;
}
