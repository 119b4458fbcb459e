// A lock file: one holder at a time, among all threads and processes of a computer.
//
// The file holds the process number of the holder as decimal text. The operating system releases the
// lock when the holder's process ends in any way; the file that stays then is no lock any more.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

class FileLock {
public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    enum class Result : uint8_t { kTaken, kHeld, kFailed };

    // kHeld: `holder` is the process number of who has it, 0 if unknown. kTaken: `holder` is that of a
    // process that ended without releasing it, 0 if there was none. kFailed: `error` says why the file
    // cannot be made.
    [[nodiscard]] Result Take(const std::filesystem::path& file, long& holder, std::string& error);
    // Deletes the file.
    void Release();
    [[nodiscard]] bool Taken() const { return handle != kNoHandle; }

private:
    static constexpr intptr_t kNoHandle = -1;

    intptr_t handle = kNoHandle;
    std::filesystem::path path;
};
