// What the browser says of when and for how long a game was played: lines for METAINFO.
//
// Any thread may call.
#pragma once

#include <cstdint>
#include <string>

struct PLAYER_RECORD;

// Each line ends with a line feed. The date is in the time of the place.
[[nodiscard]] std::wstring PlayedText(const PLAYER_RECORD& played);

// Seconds since 1970 as a date and a time of the place; "never" for 0.
[[nodiscard]] std::wstring PlayedDate(int64_t seconds);
// As "1 h 12 min".
[[nodiscard]] std::wstring PlayedDuration(int64_t seconds);
