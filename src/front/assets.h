// How the program looks: what assets/ holds, embedded by the build. The toolkit itself knows none of it.
#pragma once

#include "gui/bitmap.h"

#include <cstdint>
#include <span>
#include <string_view>

// The 54 images that a theme may name, as PNG.
[[nodiscard]] std::span<const GUI_IMAGE_ROW> BuiltInImages();

struct FONT_ASSET {
    std::string_view name;
    std::span<const uint8_t> data;
};
// `Default`, `DefaultBold`, `DefaultMono` and `DefaultMonoBold`.
[[nodiscard]] std::span<const FONT_ASSET> BuiltInFonts();

// The text of theme.xml.
[[nodiscard]] std::string_view BuiltInTheme();

// A model or an image of the room's furniture, by its file's name.
struct OBJECT_ASSET {
    std::string_view name;
    std::span<const uint8_t> data;
};
[[nodiscard]] std::span<const OBJECT_ASSET> BuiltInObjects();

// Pictures and texts of our own games, by their files' names: NAME.jpg the box, NAME-1.png and so on the
// screenshots, NAME.txt the texts, with the demo's name.
[[nodiscard]] std::span<const OBJECT_ASSET> BuiltInMedia();
