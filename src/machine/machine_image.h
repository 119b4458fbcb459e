// What every machine takes from a game file: the image, or an error for the user.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CGameFile;

// Title of the chosen variant, in quotes, for messages.
[[nodiscard]] std::string GameTitle(const CGameFile& game);

// The image of the chosen variant. Empty, with the last error set, if there is no file (null), no
// image, or one of more than `largest` bytes.
[[nodiscard]] std::optional<std::vector<uint8_t>> TakeImage(const CGameFile* game,
                                                            uint32_t largest);
