#include "front/notices.h"

#include "front/notice_lines.h"
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
    texts.reserve(lines.size());
    for (const LINE& line : lines) {
        texts.push_back(line.text);
    }
    return texts;
}

std::string Notices::Shown(int64_t now, size_t letters) {
    const std::scoped_lock hold(lock);
    std::erase_if(lines, [&](const LINE& line) { return line.until <= now; });
    if (lines.empty()) {
        return {};
    }
    LINE newest = lines.back();
    lines.pop_back();
    std::erase_if(lines, [](const LINE& line) { return line.kind == Kind::kWord; });
    for (LINE& fault : lines) {
        fault.until = INT64_MAX; // it was hidden, and begins again
    }
    const std::vector<std::string> parts = NoticeParts(newest.text, letters);
    const int64_t partTime = newest.seconds * kMicroseconds;
    if (newest.until == INT64_MAX) {
        newest.from = now;
        newest.until = now + partTime * static_cast<int64_t>(parts.size());
    }
    lines.push_back(newest);
    const auto part = static_cast<size_t>(std::max<int64_t>(now - newest.from, 0) / partTime);
    return parts[std::min(part, parts.size() - 1)];
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
