// What the browser says of when and for how long a game was played: lines for METAINFO.
//
// Any thread may call.
#pragma once

#include <string>

struct PLAYER_RECORD;

// Each line ends with a line feed. The date is in the time of the place.
[[nodiscard]] std::wstring PlayedText(const PLAYER_RECORD& played);
