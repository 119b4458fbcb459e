// Notices: the few lines that tell the player what just happened, for some seconds each.
//
// Threads: any may post; the main thread reads. Locks: one small lock of its own, so that it may be
// posted to with any other lock held.
#pragma once

#include "base/ranked_mutex.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

class Notices {
public:
    static constexpr int64_t kSecondsShown = 4;
    static constexpr size_t kMostLines = 4; // the oldest make room
    static constexpr size_t kMostUnread = 16;

    enum class Kind : uint8_t { kWord, kFault };

    // `now` in microseconds of any steady clock. A line that is shown already is shown anew.
    void Post(const std::string& text, int64_t now, Kind kind = Kind::kWord);

    // The lines to be shown, oldest first; those whose time is over are gone.
    [[nodiscard]] std::vector<std::string> Lines(int64_t now);

    // The faults that have not been shown for their whole time, oldest first, and forgets them all.
    [[nodiscard]] std::vector<std::string> UnreadFaults(int64_t now);

private:
    struct LINE {
        std::string text;
        int64_t until;
        Kind kind;
    };

    void KeepAsUnread(const LINE& line, int64_t now);

    RankedMutex<LockRank::kLeaf> lock;
    std::deque<LINE> lines;
    std::deque<std::string> unread; // faults that had to make room
};

// The program's own, with SDL-free wiring for the host: reports, which tell of faults, go to it and to
// standard error.
[[nodiscard]] Notices& ProgramNotices();
void PostNotice(const std::string& text);
void PostReport(const std::string& text);
