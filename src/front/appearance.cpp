#include "front/appearance.h"

#include "base/files.h"
#include "front/assets.h"
#include "front/notices.h"
#include "gui/font.h"
#include "gui/theme.h"

#include <string>
#include <vector>

namespace {

constexpr int32_t kFontSize = 14; // that of the default font

// Empty without a theme of the player's.
std::string PlayersTheme(const std::filesystem::path& path) {
    std::error_code missing;
    if (!std::filesystem::exists(path, missing)) {
        return {};
    }
    constexpr uint64_t kMostBytes = 4 << 20;
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kMostBytes)) {
        PostReport(error + "; the built-in theme is used");
        return {};
    }
    return {bytes.begin(), bytes.end()};
}

// Without the main menu's buttons a player sees nothing and can ask for nothing.
bool ShowsTheMenu() {
    GhostButtonStyle button;
    return CGhostTheme::Get().GetStyle(L"BUTTON", button);
}

} // namespace

void LoadAppearance() {
    for (const FONT_ASSET& font : BuiltInFonts()) {
        CGhostFontManager::Get().AddFont(font.name, font.data, kFontSize, 0);
    }
    // Chosen before the theme asks for fonts: one of those could be taken for it.
    static_cast<void>(CGhostFontManager::Get().DefaultFont());
    SetThemeImages(BuiltInImages());
    const std::filesystem::path path = ResolvePath(".\\theme.xml");
    const std::string theme = PlayersTheme(path);
    CGhostTheme::Get().ParseTheme(theme.empty() ? BuiltInTheme() : theme);
    if (!theme.empty() && !ShowsTheMenu()) {
        PostReport(path.string() +
                   ": is not a theme, or has no buttons; the built-in theme is used");
        CGhostTheme::Get().ParseTheme(BuiltInTheme());
    }
}
