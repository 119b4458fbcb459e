#include "front/unread_notices.h"

#include "base/files.h"
#include "front/notices.h"
#include "host/host_data.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr const char* kUnreadFile = ".\\unread.txt";
constexpr uint64_t kLongestFile = 64 << 10; // bytes
constexpr const char* kLastTime = "Last time: ";

} // namespace

void TellUnreadNotices() {
    const std::filesystem::path path = ResolvePath(kUnreadFile);
    std::vector<uint8_t> bytes;
    std::string ignored;
    if (!ReadFile(path, bytes, ignored, kLongestFile)) {
        return;
    }
    std::error_code code;
    std::filesystem::remove(path, code);
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    for (std::string line; std::getline(text, line);) {
        if (!line.empty()) {
            PostReport(line.starts_with(kLastTime) ? line : kLastTime + line);
        }
    }
}

void KeepUnreadNotices() {
    std::string text;
    for (std::string line : ProgramNotices().UnreadFaults(HostClock().nowMicroseconds())) {
        std::ranges::replace(line, '\n', ' ');
        text.append(line).append("\n");
    }
    if (!text.empty()) {
        std::string ignored;
        static_cast<void>(WriteFile(ResolvePath(kUnreadFile),
                                    std::vector<uint8_t>(text.begin(), text.end()), ignored));
    }
}
