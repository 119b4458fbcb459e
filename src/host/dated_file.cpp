#include "host/dated_file.h"

#include "base/files.h"

#include <ctime>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// " 2030-01-31 23-59-59"
std::string TimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm time{};
#ifdef _WIN32
    localtime_s(&time, &now);
#else
    localtime_r(&now, &time);
#endif
    char text[64];
    return {text, std::strftime(text, sizeof text, " %Y-%m-%d %H-%M-%S", &time)};
}

} // namespace

fs::path DatedFile(const std::string& folder, const std::string& title,
                   const std::string& extension) {
    const std::string stem = folder + FileNameFromTitle(title) + TimeText();
    fs::path path = ResolvePath(stem + extension);
    std::error_code ignored;
    for (uint32_t attempt = 1; fs::exists(path, ignored); ++attempt) {
        path = ResolvePath(stem + "-" + std::to_string(attempt) + extension);
    }
    return path;
}
