#include "front/notices.h"

#include "front/terminal.h"
#include "host/host_data.h"

#include <algorithm>
#include <mutex>

namespace {

constexpr int64_t kMicroseconds = 1000000;

} // namespace

void Notices::Post(const std::string& text, int64_t now, Kind kind, int64_t seconds) {
    const std::scoped_lock hold(lock);
    std::erase_if(lines, [&](const LINE& line) { return line.text == text; });
    lines.push_back({text, kind, seconds});
    if (lines.size() > kMostLines) {
        KeepAsUnread(lines.front(), now);
        lines.pop_front();
    }
}

void Notices::KeepAsUnread(const LINE& line, int64_t now) {
    if (line.kind == Kind::kFault && line.until > now) {
        std::erase(unread, line.text);
        unread.push_back(line.text);
        if (unread.size() > kMostUnread) {
            unread.pop_front();
        }
    }
}

std::vector<std::string> Notices::UnreadFaults(int64_t now) {
    const std::scoped_lock hold(lock);
    for (const LINE& line : lines) {
        KeepAsUnread(line, now);
    }
    std::erase_if(lines, [](const LINE& line) { return line.kind == Kind::kFault; });
    std::vector<std::string> texts(unread.begin(), unread.end());
    unread.clear();
    return texts;
}

std::vector<std::string> Notices::Lines(int64_t now) {
    const std::scoped_lock hold(lock);
    std::erase_if(lines, [&](const LINE& line) { return line.until <= now; });
    std::vector<std::string> texts;
    for (LINE& line : lines) {
        texts.push_back(line.text);
        line.until = std::min(line.until, now + line.seconds * kMicroseconds);
    }
    return texts;
}

Notices& ProgramNotices() {
    static Notices notices;
    return notices;
}

void PostNotice(const std::string& text) {
    ProgramNotices().Post(text, HostClock().nowMicroseconds());
}

void PostShortNotice(const std::string& text) {
    constexpr int64_t kSeconds = 2;
    ProgramNotices().Post(text, HostClock().nowMicroseconds(), Notices::Kind::kWord, kSeconds);
}

void PostReport(const std::string& text) {
    Complain(text);
    ProgramNotices().Post(text, HostClock().nowMicroseconds(), Notices::Kind::kFault);
}
