// What lies in a system's folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// What a file is, by its extension in any case.
enum class FolderFile : uint8_t {
    kGame,
    kSource, // a game image of the system, or a zip
    kOther,
};
[[nodiscard]] FolderFile KindOfFile(uint16_t system, const std::filesystem::path& name);

[[nodiscard]] bool IsZipName(const std::filesystem::path& name);

// The name without the extension, that is, without its last dot and what follows.
[[nodiscard]] std::string StemOfName(const std::filesystem::path& name);

// Whether a file is one that is being written (WriteFile in base/files.h), or was when a program was
// killed.
[[nodiscard]] bool IsTemporaryName(std::string_view name);

// The names of a folder's files, in alphabetical order: no folders, lock files and temporary files.
// False, with the names so far, when the folder cannot be read.
[[nodiscard]] bool ListFolder(const std::filesystem::path& folder,
                              std::vector<std::filesystem::path>& names, std::string& error);
