// Whole files in and out, and the program's notation for paths.
//
// Paths inside the program are UTF-8 text with backslashes. One that begins `.\` lies in the home
// folder; one that begins `\` lies at the root of the home folder's drive. The platforms that the
// program runs on have no drives, so that root is the home folder itself. Any other path is the
// platform's own.
//
// Failure: every function reports by its result and fills `error` with one line that names the file
// and the cause. Only running out of memory throws.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The home folder holds settings, saves and games. It is set once, before any other thread runs.
void SetHomeFolder(const std::filesystem::path& folder);
[[nodiscard]] const std::filesystem::path& HomeFolder();

// Chooses the home folder: the folder of the executable when it is writable and holds `config.xml` or
// a file named `portable`, otherwise $XDG_DATA_HOME/ombrelune (~/.local/share/ombrelune without that).
[[nodiscard]] std::filesystem::path FindHomeFolder(const std::filesystem::path& executableFolder);

// Converts a path in the program's notation to one of the platform.
[[nodiscard]] std::filesystem::path ResolvePath(std::string_view path);

// Replaces every character that some platform does not allow in a file name with '_' and shortens what
// is too long. A title thus names a file and never a folder.
[[nodiscard]] std::string FileNameFromTitle(std::string_view title);

// Reads a file whole. A file that reports more than `limit` bytes is refused before anything is
// allocated; one that turns out longer is refused when the limit is reached.
[[nodiscard]] bool ReadFile(const std::filesystem::path& path, std::vector<uint8_t>& bytes,
                            std::string& error, uint64_t limit = uint64_t{1} << 30);

enum class WriteMode {
    kReplace, // an existing file is replaced and keeps its permissions
    kCreate,  // an existing file stays, and the write fails
    kPrivate, // as kReplace, and only the owner can read the file, at every moment
};

// Writes a file so that at every moment either the old one or the whole new one exists: writes a
// temporary beside it, flushes it to the disk and renames it over the old one. A temporary's name ends
// in ".tmp-", the process's number, "-" and a count. Creates missing folders
// and follows symbolic links. On failure the old file is untouched and the temporary is deleted.
[[nodiscard]] bool WriteFile(const std::filesystem::path& path, std::span<const uint8_t> bytes,
                             std::string& error, WriteMode mode = WriteMode::kReplace);

// Makes what was renamed, linked and deleted in a folder survive a power cut. A failure loses nothing.
void FlushFolder(const std::filesystem::path& folder);
