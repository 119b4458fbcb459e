#include "host/kept_copy.h"

#include "base/files.h"
#include "host/report.h"

#include <system_error>

namespace fs = std::filesystem;

namespace {

fs::path AsidePath(const fs::path& file, const std::string& word, uint32_t number) {
    return file.parent_path() / (file.stem().string() + "." + word + "-" + std::to_string(number) +
                                 file.extension().string());
}

bool IsKeptAlready(const fs::path& file, const std::string& word, const SameContent& same,
                   uint64_t limit) {
    const std::string prefix = file.stem().string() + "." + word + "-";
    std::error_code code;
    fs::directory_iterator entry(file.parent_path(), code);
    for (; !code && entry != fs::directory_iterator(); entry.increment(code)) {
        const std::string name = entry->path().filename().string();
        std::vector<uint8_t> kept;
        std::string ignored;
        if (name.starts_with(prefix) && name.ends_with(file.extension().string()) &&
            ReadFile(entry->path(), kept, ignored, limit) && same(kept)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool FileMayExist(const fs::path& path) {
    std::error_code code;
    return fs::status(path, code).type() != fs::file_type::not_found;
}

fs::path FreeAsidePath(const fs::path& file, const std::string& word) {
    std::error_code code;
    uint32_t number = 1;
    // A path that the file system cannot check ends the search: writing to it then reports why.
    while (fs::exists(fs::symlink_status(AsidePath(file, word, number), code))) {
        ++number;
    }
    return AsidePath(file, word, number);
}

bool KeepCopy(const fs::path& file, const std::string& word, const std::vector<uint8_t>& content,
              const std::string& why, const SameContent& same, uint64_t limit) {
    if (IsKeptAlready(file, word, same, limit)) {
        return true;
    }
    const fs::path aside = FreeAsidePath(file, word);
    std::string error;
    if (!WriteFile(aside, content, error, WriteMode::kCreate)) {
        HostReport(file.string() + ": " + why + ", and no copy can be kept: " + error);
        return false;
    }
    HostReport(file.string() + ": " + why + "; a copy is kept as " + aside.string());
    return true;
}
