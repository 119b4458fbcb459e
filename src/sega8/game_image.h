// What the machines here take out of a game file: the image, the machine record, and words for the
// user when there is nothing to run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CGameFile;
struct SMS_RECORD;
struct GAG_RECORD;
struct ARC_RECORD;

// Title of the chosen variant, in quotes, for messages.
[[nodiscard]] std::string GameTitle(const CGameFile& game);

// The image of the chosen variant. Nothing, with the last error set, when there is no file (null), no
// image, an empty one, or one of more than `largest` bytes.
[[nodiscard]] std::optional<std::vector<uint8_t>> TakeImage(const CGameFile* game,
                                                            uint32_t largest);

// The machine record of the chosen variant; the defaults for a file without one of the right kind.
[[nodiscard]] SMS_RECORD SmsRecordOf(const CGameFile& game);
[[nodiscard]] GAG_RECORD GearRecordOf(const CGameFile& game);
[[nodiscard]] ARC_RECORD ArcadeRecordOf(const CGameFile& game);
