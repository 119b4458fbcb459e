// A theme of any bytes: parsed, then every record of it is looked up and painted with, and the first bytes asked for
// as the name of a font.
#include "front/assets.h"
#include "gui/font.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace {

// The program's fonts, and those of its images that are small enough to be decoded often.
bool LoadAssets() {
    constexpr size_t kSmall = 3000; // bytes
    constexpr int32_t kFontSize = 14;
    static std::vector<GUI_IMAGE_ROW> images;
    for (const GUI_IMAGE_ROW& row : BuiltInImages()) {
        if (row.png.size() < kSmall) {
            images.push_back(row);
        }
    }
    SetThemeImages(images);
    for (const FONT_ASSET& font : BuiltInFonts()) {
        CGhostFontManager::Get().AddFont(font.name, font.data, kFontSize, 0);
    }
    return CGhostFontManager::Get().DefaultFont() != nullptr;
}

void Paint(CGhostSurface& surface, const GhostTextStyle& style) {
    PaintText(surface, style, L"text", {0, 0, surface.Width(), surface.Height()});
    PaintFill(surface, style.bg2, {-7, 3, 40, 9});
    PaintFrame(surface, style.border);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool loaded = LoadAssets();
    if (!loaded) {
        __builtin_trap();
    }
    constexpr size_t kLongestName = 40;
    const std::string_view name(reinterpret_cast<const char*>(data), std::min(size, kLongestName));
    static_cast<void>(CGhostFontManager::Get().GetFont(name, static_cast<int32_t>(size)));
    CGhostTheme theme;
    theme.ParseTheme({reinterpret_cast<const char*>(data), size});
    CGhostSurface surface;
    if (!surface.Create({3, 5, 64, 40}, 1.5)) {
        return 0;
    }
    for (const CGhostTheme::NAMED& named : theme.Names()) {
        GhostTextStyle text;
        GhostListViewStyle view;
        GhostScrollbarStyle bar;
        GhostBorderStyle border;
        if (theme.GetStyle(named.name, text)) {
            Paint(surface, text);
        }
        if (theme.GetStyle(named.name, view)) {
            Paint(surface, view.list.itemHot);
        }
        if (theme.GetStyle(named.name, bar)) {
            Paint(surface, bar.verMid.states[2]);
        }
        if (theme.GetStyle(named.name, border)) {
            PaintFrame(surface, border);
        }
    }
    return 0;
}
