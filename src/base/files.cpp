#include "base/files.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

// Never freed: a session's thread may still open a file while the program ends.
fs::path& Home() {
    static auto* home = new fs::path(".");
    return *home;
}

struct FILE_CLOSER {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, FILE_CLOSER>;

std::string Describe(const fs::path& path, const char* what, int code) {
    return path.string() + ": " + what + ": " + std::generic_category().message(code);
}

FilePointer OpenFile(const fs::path& path, const char* mode) {
#ifdef _WIN32
    return FilePointer(_wfopen(path.c_str(), std::wstring(mode, mode + std::strlen(mode)).c_str()));
#else
    return FilePointer(std::fopen(path.c_str(), mode));
#endif
}

bool FlushToDisk(std::FILE* file) {
    if (std::fflush(file) != 0) {
        return false;
    }
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0;
#endif
}

// A name no other writer of this or another process uses at the same time.
fs::path TemporaryBeside(const fs::path& path) {
    static std::atomic<unsigned> serial{0};
#ifdef _WIN32
    const long process = _getpid();
#else
    const long process = getpid();
#endif
    const std::string ending =
        ".tmp-" + std::to_string(process) + "-" + std::to_string(serial.fetch_add(1));
    // A file's name of the greatest length must not make one that is too long.
    constexpr size_t kLongestName = 255;
    std::string name = path.filename().string();
    name.resize(std::min(name.size(), kLongestName - ending.size()));
    return path.parent_path() / (name + ending);
}

bool FolderIsWritable(const fs::path& folder) {
    const fs::path probe = TemporaryBeside(folder / "probe");
    const bool writable = OpenFile(probe, "wb") != nullptr;
    std::error_code ignored;
    fs::remove(probe, ignored);
    return writable;
}

} // namespace

void FlushFolder([[maybe_unused]] const fs::path& folder) {
#ifndef _WIN32
    const int descriptor =
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
#endif
}

void SetHomeFolder(const fs::path& folder) {
    Home() = folder;
}

const fs::path& HomeFolder() {
    return Home();
}

fs::path FindHomeFolder(const fs::path& executableFolder) {
    std::error_code ignored;
    const bool claimed = fs::exists(executableFolder / "config.xml", ignored) ||
                         fs::exists(executableFolder / "portable", ignored);
    if (claimed && FolderIsWritable(executableFolder)) {
        return executableFolder;
    }
    // NOLINTBEGIN(concurrency-mt-unsafe): read at program start, before any other thread runs
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0') {
        return fs::path(data) / "ombrelune";
    }
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        return fs::path(home) / ".local" / "share" / "ombrelune";
    }
    // NOLINTEND(concurrency-mt-unsafe)
    return executableFolder;
}

fs::path ResolvePath(std::string_view path) {
    std::string text(path);
    const bool fromHome = text.starts_with(".\\");
    const bool fromRoot = text.starts_with("\\");
    if (!fromHome && !fromRoot) {
        return {text};
    }
    text.erase(0, fromHome ? 2 : 1);
    for (char& c : text) {
        c = c == '\\' ? '/' : c;
    }
    return (HomeFolder() / text).lexically_normal();
}

std::string FileNameFromTitle(std::string_view title) {
    constexpr size_t kLongestTitle = 180; // leaves room for endings below the usual limit of 255
    constexpr std::string_view kForbidden = "<>:\"/\\|?*";
    std::string name(title.substr(0, kLongestTitle));
    // Not in the middle of a character.
    while (name.size() < title.size() && !name.empty() &&
           (static_cast<unsigned char>(title[name.size()]) & 0xC0) == 0x80) {
        name.pop_back();
    }
    for (char& c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || kForbidden.find(c) != std::string_view::npos) {
            c = '_';
        }
    }
    // "." and ".." are folders, and a name that ends in a dot or space is not portable.
    for (size_t i = name.size(); i > 0 && (name[i - 1] == '.' || name[i - 1] == ' '); --i) {
        name[i - 1] = '_';
    }
    return name;
}

bool ReadFile(const fs::path& path, std::vector<uint8_t>& bytes, std::string& error,
              uint64_t limit) {
    bytes.clear();
    std::error_code code;
    if (fs::is_directory(path, code)) {
        error = path.string() + ": is a folder";
        return false;
    }
    const FilePointer file = OpenFile(path, "rb");
    if (!file) {
        error = Describe(path, "cannot be opened", errno);
        return false;
    }
    // Read in pieces: the reported size may be wrong, for a pipe or a growing file.
    constexpr size_t kPiece = size_t{1} << 16;
    const uint64_t stated = fs::file_size(path, code);
    if (!code && stated > limit) {
        error = path.string() + ": is larger than " + std::to_string(limit) + " bytes";
        return false;
    }
    if (!code) {
        bytes.reserve(static_cast<size_t>(stated));
    }
    while (true) {
        const size_t before = bytes.size();
        bytes.resize(before + kPiece);
        const size_t count = std::fread(bytes.data() + before, 1, kPiece, file.get());
        bytes.resize(before + count);
        if (bytes.size() > limit) {
            error = path.string() + ": is larger than " + std::to_string(limit) + " bytes";
            bytes.clear();
            return false;
        }
        if (count < kPiece) {
            break;
        }
    }
    if (std::ferror(file.get()) != 0) {
        error = Describe(path, "cannot be read", errno);
        bytes.clear();
        return false;
    }
    return true;
}

namespace {

FilePointer CreateForOwner(const fs::path& path) {
#ifdef _WIN32
    return OpenFile(path, "wbx"); // a home folder there is its owner's alone
#else
    constexpr mode_t kOwnerAlone = 0600;
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerAlone);
    return FilePointer(descriptor < 0 ? nullptr : fdopen(descriptor, "wb"));
#endif
}

// Opens a new temporary. One that a killed program has left may already have the name.
FilePointer OpenTemporary(const fs::path& target, WriteMode mode, fs::path& temporary) {
    constexpr int kTries = 1000;
    for (int i = 0; i < kTries; ++i) {
        temporary = TemporaryBeside(target);
        FilePointer file =
            mode == WriteMode::kPrivate ? CreateForOwner(temporary) : OpenFile(temporary, "wbx");
        if (file || errno != EEXIST) {
            return file;
        }
    }
    return nullptr;
}

bool FillAndFlush(FilePointer file, std::span<const uint8_t> bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
                         FlushToDisk(file.get());
    const int cause = errno;
    const bool closed = std::fclose(file.release()) == 0;
    errno = written ? errno : cause;
    return written && closed;
}

// Renames the finished temporary.
bool PutInPlace(const fs::path& temporary, const fs::path& target, WriteMode mode,
                std::error_code& code) {
    if (mode == WriteMode::kCreate) {
        // A link, unlike a rename, never replaces. A file system without links gets the rename.
        fs::create_hard_link(temporary, target, code);
        if (code == std::errc::file_exists) {
            return false;
        }
        if (!code) {
            std::error_code ignored;
            fs::remove(temporary, ignored);
            return true;
        }
        if (fs::exists(target, code)) {
            code = std::make_error_code(std::errc::file_exists);
            return false;
        }
    }
    fs::rename(temporary, target, code);
    return !code;
}

} // namespace

bool WriteFile(const fs::path& path, std::span<const uint8_t> bytes, std::string& error,
               WriteMode mode) {
    std::error_code code;
    fs::path target = path;
    if (mode != WriteMode::kCreate && fs::is_symlink(path, code)) {
        target = fs::weakly_canonical(path, code);
        if (code) {
            error = path.string() + ": its target cannot be found: " + code.message();
            return false;
        }
    }
    const fs::path folder = target.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, code)) {
        fs::create_directories(folder, code);
        if (code) {
            error = folder.string() + ": folder cannot be made: " + code.message();
            return false;
        }
    }
    fs::path temporary;
    FilePointer file = OpenTemporary(target, mode, temporary);
    if (!file) {
        error = Describe(path, "cannot be written", errno);
        return false;
    }
    std::error_code ignored;
    if (!FillAndFlush(std::move(file), bytes)) {
        error = Describe(path, "cannot be written", errno);
        fs::remove(temporary, ignored);
        return false;
    }
    if (const fs::file_status old = fs::status(target, ignored);
        mode != WriteMode::kPrivate && fs::is_regular_file(old)) {
        fs::permissions(temporary, old.permissions(), ignored);
    }
    if (!PutInPlace(temporary, target, mode, code)) {
        error = path.string() + ": cannot be put in place: " + code.message();
        fs::remove(temporary, ignored);
        return false;
    }
    FlushFolder(folder);
    return true;
}
