#include "library/file_walk.h"

#include <algorithm>
#include <set>

namespace fs = std::filesystem;

namespace {

struct WALK {
    std::vector<WALKED_FILE>& files;
    std::vector<std::string>& faults;
    const std::atomic<bool>* stop;
    std::set<fs::path> entered; // folders, without links in their paths

    [[nodiscard]] bool Stopped() const { return stop != nullptr && *stop; }
    void Fault(const fs::path& path, const std::error_code& code) const {
        faults.push_back(path.string() + ": cannot be read: " + code.message());
    }
};

bool IsHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

// The visible entries of a folder, sorted.
std::vector<fs::path> EntriesOf(const fs::path& folder, const WALK& walk) {
    std::vector<fs::path> entries;
    std::error_code code;
    fs::directory_iterator entry(folder, code);
    while (!code && entry != fs::directory_iterator() && !walk.Stopped()) {
        if (!IsHidden(entry->path())) {
            entries.push_back(entry->path());
        }
        entry.increment(code);
    }
    if (code) {
        walk.Fault(folder, code);
    }
    std::ranges::sort(entries);
    return entries;
}

// Folders wait in a list, the next one last.
void WalkFolder(const fs::path& first, WALK& walk) {
    std::vector<fs::path> folders{first};
    while (!folders.empty() && !walk.Stopped()) {
        const fs::path folder = std::move(folders.back());
        folders.pop_back();
        std::error_code code;
        const fs::path real = fs::canonical(folder, code);
        if (code) {
            walk.Fault(folder, code);
            continue;
        }
        if (!walk.entered.insert(real).second) {
            continue;
        }
        std::vector<fs::path> below;
        for (const fs::path& entry : EntriesOf(folder, walk)) {
            const fs::file_status status = fs::status(entry, code);
            if (status.type() == fs::file_type::none || status.type() == fs::file_type::not_found) {
                walk.Fault(entry, code
                                      ? code
                                      : std::make_error_code(std::errc::no_such_file_or_directory));
            } else if (fs::is_directory(status)) {
                below.push_back(entry);
            } else if (fs::is_regular_file(status)) {
                walk.files.push_back({entry, false});
            }
        }
        folders.insert(folders.end(), below.rbegin(), below.rend());
    }
}

} // namespace

void WalkFiles(std::span<const fs::path> paths, std::vector<WALKED_FILE>& files,
               std::vector<std::string>& faults, const std::atomic<bool>* stop) {
    WALK walk{files, faults, stop, {}};
    for (const fs::path& path : paths) {
        std::error_code code;
        if (fs::is_directory(path, code)) {
            WalkFolder(path, walk);
        } else {
            files.push_back({path, true}); // reading it tells what is wrong with it
        }
    }
}
