// The player's files that a save would replace: reading them and keeping copies under another name.
//
// `name.zip` is kept as `name.<word>-<n>.zip` beside it, with the smallest free n.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// True if the file system cannot tell; reading it then fails with the cause.
[[nodiscard]] bool FileMayExist(const std::filesystem::path& path);

[[nodiscard]] std::filesystem::path FreeAsidePath(const std::filesystem::path& file,
                                                  const std::string& word);

// Keeps `content`, which was read from the file, under another name, unless `same` finds an earlier
// copy with that word. `why` tells the user the reason. False, after a report, if no copy can be made.
// Files longer than `limit` bytes don't count as copies.
using SameContent = std::function<bool(const std::vector<uint8_t>& kept)>;
[[nodiscard]] bool KeepCopy(const std::filesystem::path& file, const std::string& word,
                            const std::vector<uint8_t>& content, const std::string& why,
                            const SameContent& same, uint64_t limit);
