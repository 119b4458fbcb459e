// What every machine takes out of a game file: the image, and words for the user when there is nothing
// to run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CGameFile;

// Title of the chosen variant, in quotes, for messages.
[[nodiscard]] std::string GameTitle(const CGameFile& game);

// The image of the chosen variant. Nothing, with the last error set, when there is no file (null), no
// image, an empty one, or one of more than `largest` bytes.
[[nodiscard]] std::optional<std::vector<uint8_t>> TakeImage(const CGameFile* game,
                                                            uint32_t largest);
