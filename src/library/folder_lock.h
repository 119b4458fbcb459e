// Keeps two conversions from working on one folder, in one program or in two.
//
// A lock file in the folder holds the number of the process that has it. The operating system releases
// the lock itself when that process ends in any way, so a file that a killed one has left is recognised
// and taken over at once, whoever has its number now.
#pragma once

#include "base/file_lock.h"

#include <filesystem>
#include <string>

// The lock file's name. Scans pass it over.
inline constexpr const char* kFolderLockName = ".conversion-lock";

class FolderLock {
public:
    // False when another holds it, or when the folder cannot be written; `error` then names the folder
    // and the holder or the reason. Taking it over from a killed process deletes the temporary files
    // that this process was writing.
    [[nodiscard]] bool Take(const std::filesystem::path& folder, std::string& error);
    void Release() { lock.Release(); }

private:
    FileLock lock;
};
