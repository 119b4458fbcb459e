#include "front/window_icon.h"

#include "front/assets.h"
#include "gui/bitmap.h"

#include <algorithm>

std::vector<uint32_t> WindowIcon() {
    constexpr std::string_view kImage = "#OMBRELUNE_LOGO";
    const auto images = BuiltInImages();
    const auto row = std::find_if(images.begin(), images.end(),
                                  [&](const GUI_IMAGE_ROW& at) { return at.name == kImage; });
    std::vector<uint32_t> pixels;
    uint32_t width = 0;
    uint32_t height = 0;
    if (row == images.end() || !LoadEmbeddedImage(row->png, pixels, width, height)) {
        return std::vector<uint32_t>(size_t{kWindowIconSize} * kWindowIconSize);
    }
    return ReducePixels(pixels, static_cast<int32_t>(width), static_cast<int32_t>(height),
                        kWindowIconSize, kWindowIconSize);
}
