#include "front/picture_view.h"

#include "facts/machine_facts.h"
#include "settings/settings.h"

#include <algorithm>
#include <string>

namespace {

constexpr int32_t kLastAspect = static_cast<int32_t>(PictureAspect::kSquareDots);

PictureAspect AspectWanted() {
    const int32_t wanted = Settings().GetInt(L"video_aspect");
    return wanted > 0 && wanted <= kLastAspect ? static_cast<PictureAspect>(wanted)
                                               : PictureAspect::kMachine;
}

PICTURE_CUT CutOf(uint32_t system) {
    const MACHINE_FACTS* const facts = FindMachineFacts(static_cast<uint16_t>(system));
    if (facts == nullptr) {
        return {};
    }
    const std::string_view folder = facts->folder;
    const std::wstring prefix = std::wstring(folder.begin(), folder.end()) + L"_overscan_";
    const auto dots = [&](const wchar_t* edge) {
        constexpr int32_t kMost = 1000; // any picture is smaller
        return static_cast<uint32_t>(std::clamp(Settings().GetInt(prefix + edge), 0, kMost));
    };
    return {dots(L"left"), dots(L"top"), dots(L"right"), dots(L"bottom")};
}

} // namespace

float CrtStrength() {
    return std::clamp(Settings().GetFloat(L"video_crt"), 0.0f, 1.0f);
}

FULL_SCREEN_VIEW FullScreenViewOf(const GAME_VIEW& view, uint32_t system) {
    const bool full = Settings().GetBool(L"app_fullscreen");
    FULL_SCREEN_VIEW shown;
    shown.crop = view.crop;
    shown.linear = view.linear;
    shown.wholeMultiples =
        Settings().GetBool(full ? L"video_integer_full" : L"video_integer_window");
    shown.aspect = AspectWanted();
    shown.cut = CutOf(system);
    shown.crtStrength = CrtStrength();
    return shown;
}
