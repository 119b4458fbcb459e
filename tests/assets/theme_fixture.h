// The built-in theme with its fonts and images, loaded once.
#pragma once

#include "front/assets.h"
#include "gui/font.h"
#include "gui/theme.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// In the program's order: fonts, the default font, images, theme.
inline CGhostTheme& LoadedTheme() {
    static const bool loaded = [] {
        for (const FONT_ASSET& font : BuiltInFonts()) {
            CGhostFontManager::Get().AddFont(font.name, font.data, 14, 0);
        }
        static_cast<void>(CGhostFontManager::Get().DefaultFont());
        SetThemeImages(BuiltInImages());
        CGhostTheme::Get().ParseTheme(BuiltInTheme());
        return true;
    }();
    static_cast<void>(loaded);
    return CGhostTheme::Get();
}

inline std::string TextOfFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
