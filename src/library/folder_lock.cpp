#include "library/folder_lock.h"

#include "library/folder_list.h"

#include <vector>

namespace fs = std::filesystem;

namespace {

// What a killed process was writing: base/files.h names its temporary files after the process.
void DeleteTemporaries(const fs::path& folder, long process) {
    const std::string mark = ".tmp-" + std::to_string(process) + "-";
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; entry != end;
         entry.increment(ignored)) {
        const std::string name = entry->path().filename().string();
        if (IsTemporaryName(name) && name.find(mark) != std::string::npos) {
            fs::remove(entry->path(), ignored);
        }
    }
}

} // namespace

bool FolderLock::Take(const fs::path& folder, std::string& error) {
    long holder = 0;
    switch (lock.Take(folder / kFolderLockName, holder, error)) {
    case FileLock::Result::kTaken:
        if (holder != 0) {
            DeleteTemporaries(folder, holder);
        }
        return true;
    case FileLock::Result::kHeld:
        error = folder.string() + ": is being converted by process " + std::to_string(holder);
        return false;
    default: error = folder.string() + ": nothing is converted: " + error; return false;
    }
}
