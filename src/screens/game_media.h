// What lies on this computer about a game: box art and screenshots, and for our own games texts.
//
// It is one archive, `media/KEY.zip` in the folder of the game's system (media_archive.h). A file `.txt` in it has
// the tags of the web service's answer (service_texts.h) and is shown as that is.
// Thread: any. Failure: what cannot be read is left out.
#pragma once

#include "gui/bitmap.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct GAME_MEDIA {
    std::vector<GUI_BITMAP> covers; // at most six
    std::vector<GUI_BITMAP> shots;  // at most five, each 200 by 150
    std::vector<uint8_t> texts;     // of the service's form; empty without
};

inline constexpr int32_t kShotWidth = 200; // units
inline constexpr int32_t kShotHeight = 150;

// Without an archive, or without covers in it, the folder's `media/default.jpg` is the only cover.
[[nodiscard]] GAME_MEDIA ReadGameMedia(std::string_view systemFolder, std::wstring_view contentKey);
