// Files of the player's that a save would replace: finding them and keeping them under another name.
//
// `name.zip` is kept as `name.<word>-<n>.zip` beside it, with the smallest free n.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// One that cannot be asked about may well be there; reading it then tells.
[[nodiscard]] bool FileMayExist(const std::filesystem::path& path);

[[nodiscard]] std::filesystem::path FreeAsidePath(const std::filesystem::path& file,
                                                  const std::string& word);

// Keeps `content`, which was read from the file, under another name, unless `same` finds a copy of that
// word that was made before. `why` tells the user what it is for. False, after a report, when no copy can
// be made. Files longer than `limit` bytes are no copies.
using SameContent = std::function<bool(const std::vector<uint8_t>& kept)>;
[[nodiscard]] bool KeepCopy(const std::filesystem::path& file, const std::string& word,
                            const std::vector<uint8_t>& content, const std::string& why,
                            const SameContent& same, uint64_t limit);
