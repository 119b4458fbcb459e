#include "web/play_reports.h"

#include "web/download_queue.h"

bool PlayReports::Note(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member,
                       uint32_t key, uint32_t serial, uint32_t system, const std::wstring& game) {
    const auto before = sets.find(key);
    if (before != sets.end()) {
        if (before->second.serial == serial) {
            return false;
        }
        Stop(addresses, member, before->second);
        sets.erase(before);
    }
    if (serial == 0) {
        return false;
    }
    sets[key] = {serial, system, game, member.token};
    return Send(PlayReportUrl(addresses, PlayReport::kStarted, system, game, member));
}

void PlayReports::StopAll(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member) {
    for (const auto& [key, played] : sets) {
        Stop(addresses, member, played);
    }
    sets.clear();
}

void PlayReports::Stop(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member,
                       const PLAYED& played) {
    if (!played.token.empty() && played.token == member.token) {
        (void)Send(
            PlayReportUrl(addresses, PlayReport::kStopped, played.system, played.game, member));
    }
}

bool PlayReports::Send(const std::wstring& url) {
    if (url.empty()) {
        return false;
    }
    queue.QueueRequest(url, {}, 0, nullptr, {});
    return true;
}
