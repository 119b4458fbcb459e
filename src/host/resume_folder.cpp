#include "host/resume_folder.h"

#include "base/files.h"
#include "host/kept_copy.h"
#include "host/report.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolder = ".\\resume";
constexpr const char* kExtension = ".resume";
constexpr const char* kUnfinished =
    ".tmp-"; // in the name of a file that WriteFile has not renamed yet
constexpr int kMostPrograms = 100;

fs::path LockOf(const fs::path& folder) {
    return folder.string() + ".lock";
}

FileLock::Result TakeLock(FileLock& lock, const fs::path& folder, std::string& error) {
    long holder = 0;
    return lock.Take(LockOf(folder), holder, error);
}

// Not those that were set aside.
bool IsResumeFile(const fs::directory_entry& entry) {
    std::error_code code;
    const fs::path& path = entry.path();
    return entry.is_regular_file(code) && path.extension() == kExtension &&
           path.stem().extension().empty();
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code code;
    fs::directory_iterator entry(folder, code);
    for (; !code && entry != fs::directory_iterator(); entry.increment(code)) {
        if (IsResumeFile(*entry)) {
            files.push_back(entry->path());
        }
    }
    std::ranges::sort(files);
    return files;
}

bool Rename(const fs::path& from, const fs::path& to) {
    std::error_code code;
    fs::rename(from, to, code);
    if (code) {
        HostReport(from.string() + ": cannot be renamed to " + to.string() + ": " + code.message());
    }
    return !code;
}

bool IsNewer(const fs::path& one, const fs::path& other) {
    std::error_code code;
    return fs::last_write_time(one, code) > fs::last_write_time(other, code);
}

// What a program left that was killed while it wrote. Nobody writes in a folder whose lock is ours.
void DeleteUnfinished(const fs::path& folder) {
    std::vector<fs::path> left;
    std::error_code code;
    fs::directory_iterator entry(folder, code);
    for (; !code && entry != fs::directory_iterator(); entry.increment(code)) {
        if (entry->path().filename().string().find(kUnfinished) != std::string::npos) {
            left.push_back(entry->path());
        }
    }
    for (const fs::path& path : left) {
        fs::remove(path, code);
    }
}

} // namespace

bool ResumeFolder::Open(std::string& error) {
    const fs::path all = ResolvePath(kFolder);
    std::error_code code;
    fs::create_directories(all, code);
    if (code) {
        error = all.string() + ": cannot be made: " + code.message();
        return false;
    }
    for (int number = 1; number <= kMostPrograms && !lock.Taken(); ++number) {
        folder = all / std::to_string(number);
        if (TakeLock(lock, folder, error) == FileLock::Result::kFailed) {
            return false;
        }
    }
    if (!lock.Taken()) {
        error = all.string() + ": too many programs use it";
        return false;
    }
    DeleteUnfinished(folder);
    for (int number = 1; number <= kMostPrograms; ++number) {
        const fs::path other = all / std::to_string(number);
        FileLock theirs;
        if (other != folder && fs::is_directory(other, code) &&
            TakeLock(theirs, other, error) == FileLock::Result::kTaken) {
            TakeOver(other);
        }
    }
    return true;
}

// The lock of the other folder is held meanwhile.
void ResumeFolder::TakeOver(const fs::path& other) const {
    DeleteUnfinished(other);
    std::error_code code;
    fs::create_directories(folder, code);
    for (const fs::path& theirs : FilesIn(other)) {
        const fs::path ours = folder / theirs.filename();
        if (!FileMayExist(ours)) {
            static_cast<void>(Rename(theirs, ours));
        } else if (!IsNewer(theirs, ours)) {
            static_cast<void>(Rename(theirs, FreeAsidePath(ours, "older")));
        } else if (Rename(ours, FreeAsidePath(ours, "older"))) {
            static_cast<void>(Rename(theirs, ours));
        }
    }
    FlushFolder(folder);
    fs::remove(other, code); // if it is empty
}

fs::path ResumeFolder::FileOf(std::string_view name) const {
    return folder / (std::string(name) + kExtension);
}

std::vector<std::string> ResumeFolder::Names(std::string_view prefix) const {
    std::vector<std::string> names;
    for (const fs::path& file : FilesIn(folder)) {
        if (std::string name = file.stem().string(); name.starts_with(prefix)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}
