#include "base/file_stamp.h"

#include <algorithm>

#ifdef _WIN32
#include <chrono>
#include <fstream>
#include <system_error>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

#ifdef _WIN32

bool StampFile(const std::filesystem::path& path, FILE_STAMP& stamp) {
    std::error_code code;
    stamp.bytes = std::filesystem::file_size(path, code);
    if (code) {
        return false;
    }
    const auto modified = std::filesystem::last_write_time(path, code);
    stamp.modified =
        std::chrono::duration_cast<std::chrono::nanoseconds>(
            std::chrono::clock_cast<std::chrono::system_clock>(modified).time_since_epoch())
            .count();
    return !code;
}

bool ReadFileFront(const std::filesystem::path& path, size_t most, FILE_STAMP& stamp,
                   std::vector<uint8_t>& bytes) {
    std::ifstream file(path, std::ios::binary);
    if (!file || !StampFile(path, stamp)) {
        return false;
    }
    bytes.resize(static_cast<size_t>(std::min<uint64_t>(most, stamp.bytes)));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return !file.bad();
}

#else

namespace {

bool StampOf(const struct stat& status, FILE_STAMP& stamp) {
    constexpr int64_t kNanoseconds = 1'000'000'000;
    stamp.bytes = static_cast<uint64_t>(status.st_size);
    stamp.modified = int64_t{status.st_mtim.tv_sec} * kNanoseconds + status.st_mtim.tv_nsec;
    return S_ISREG(status.st_mode);
}

bool ReadFront(int descriptor, size_t most, FILE_STAMP& stamp, std::vector<uint8_t>& bytes) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !StampOf(status, stamp)) {
        return false;
    }
    bytes.resize(static_cast<size_t>(std::min<uint64_t>(most, stamp.bytes)));
    size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = pread(descriptor, bytes.data() + filled, bytes.size() - filled,
                                    static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            break; // it was cut meanwhile
        }
        filled += static_cast<size_t>(count);
    }
    bytes.resize(filled);
    return true;
}

} // namespace

bool StampFile(const std::filesystem::path& path, FILE_STAMP& stamp) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && StampOf(status, stamp);
}

bool ReadFileFront(const std::filesystem::path& path, size_t most, FILE_STAMP& stamp,
                   std::vector<uint8_t>& bytes) {
    bytes.clear();
    // Without blocking, or the open would wait for a writer of a pipe that has the name of a game.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        return false;
    }
    const bool read = ReadFront(descriptor, most, stamp, bytes);
    close(descriptor);
    return read;
}

#endif
