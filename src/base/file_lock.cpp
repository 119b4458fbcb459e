#include "base/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>

namespace {

// 0 if the file does not begin with a number.
long ReadNumber(int descriptor) {
    std::array<char, 32> text{};
    const ssize_t count = pread(descriptor, text.data(), text.size(), 0);
    long number = 0;
    if (count > 0) {
        std::from_chars(text.data(), text.data() + count, number);
    }
    return number;
}

// The lock holds without the number too, so a full disk is no failure.
void WriteNumber(int descriptor, long number) {
    const std::string text = std::to_string(number) + "\n";
    if (ftruncate(descriptor, 0) == 0) {
        [[maybe_unused]] const ssize_t written = pwrite(descriptor, text.data(), text.size(), 0);
    }
}

bool IsStillAt(int descriptor, const std::filesystem::path& file) {
    struct stat opened {};
    struct stat named {};
    return fstat(descriptor, &opened) == 0 && lstat(file.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

} // namespace

FileLock::Result FileLock::Take(const std::filesystem::path& file, long& holder,
                                std::string& error) {
    Release();
    holder = 0;
    while (true) {
        const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (descriptor < 0) {
            break;
        }
        if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
            const bool held = errno == EWOULDBLOCK;
            holder = held ? ReadNumber(descriptor) : 0;
            error = std::generic_category().message(errno);
            close(descriptor);
            if (held) {
                return Result::kHeld;
            }
            error = file.string() + ": cannot be locked: " + error;
            return Result::kFailed;
        }
        if (IsStillAt(descriptor, file)) {
            holder = ReadNumber(descriptor);
            WriteNumber(descriptor, getpid());
            handle = descriptor;
            path = file;
            return Result::kTaken;
        }
        close(descriptor); // its last holder deleted it after we opened it
    }
    error = file.string() + ": cannot be made: " + std::generic_category().message(errno);
    return Result::kFailed;
}

void FileLock::Release() {
    if (handle == kNoHandle) {
        return;
    }
    // Deleted before it is unlocked: after that it may already be another one's.
    unlink(path.c_str());
    close(static_cast<int>(handle));
    handle = kNoHandle;
}
