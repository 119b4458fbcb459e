#include "screens/played_text.h"

#include "library/player_file.h"

#include <ctime>
#include <iterator>

std::wstring PlayedDate(int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    wchar_t text[64];
    if (seconds == 0) {
        return L"never";
    }
    if (localtime_r(&time, &parts) == nullptr ||
        std::wcsftime(text, std::size(text), L"%Y-%m-%d %H:%M", &parts) == 0) {
        return L"unknown";
    }
    return text;
}

std::wstring PlayedDuration(int64_t seconds) {
    constexpr int64_t kMinute = 60;
    constexpr int64_t kHour = 60 * kMinute;
    const std::wstring minutes = std::to_wstring(seconds % kHour / kMinute) + L" min";
    return seconds >= kHour     ? std::to_wstring(seconds / kHour) + L" h " + minutes
           : seconds >= kMinute ? minutes
                                : std::to_wstring(seconds) + L" s";
}

std::wstring PlayedText(const PLAYER_RECORD& played) {
    std::wstring text = L"Last played: " + PlayedDate(played.lastPlayed) + L"\n";
    if (played.starts != 0) {
        text += L"Time played: " + PlayedDuration(played.secondsPlayed) + L"\n";
        text += L"Started: " +
                (played.starts == 1 ? std::wstring(L"once")
                                    : std::to_wstring(played.starts) + L" times") +
                L"\n";
    }
    return text;
}
