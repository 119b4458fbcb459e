// Names of files that the player makes while playing: the game's title and the time.
#pragma once

#include <filesystem>
#include <string>

// A path that no file has yet: `folder` and `extension` as in ".\recordings\" and ".recording".
[[nodiscard]] std::filesystem::path DatedFile(const std::string& folder, const std::string& title,
                                              const std::string& extension);
