// The pictures of a game that lie on this computer: box art and screenshots in one zip.
//
// Any thread. Failure: what cannot be read is left out.
#pragma once

#include "gui/bitmap.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct LOCAL_MEDIA {
    bool archive = false;              // there is a zip of the game
    std::vector<GUI_BITMAP> covers;    // at most six
    std::vector<GUI_BITMAP> shots;     // at most five, each 200 by 150
};

inline constexpr size_t kMostCoverImages = 6;
inline constexpr size_t kMostShots = 5;
inline constexpr int32_t kShotWidth = 200;
inline constexpr int32_t kShotHeight = 150;

// A zip's entries in their order. An image of exactly 200 by 150 is a screenshot, any other one box art; what is
// beyond the most is dropped.
[[nodiscard]] LOCAL_MEDIA ReadMedia(const std::vector<uint8_t>& zip);

// The media of a game, `media/KEY.zip` in its system's folder. Without one, or without covers in it, the folder's
// `default.jpg` is the only cover.
[[nodiscard]] LOCAL_MEDIA ReadLocalMedia(const std::filesystem::path& systemFolder, std::wstring_view contentKey);

// Where they lie: folder and name. The key is a name and never a path.
[[nodiscard]] std::filesystem::path MediaFile(const std::filesystem::path& systemFolder,
                                              std::wstring_view contentKey);
