// Notices: the lines that tell the player what just happened, shown for some seconds each.
//
// Threads: any may post; the main thread reads. Locks: one leaf lock, so a post is allowed with any
// other lock held.
#pragma once

#include "base/ranked_mutex.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

class Notices {
public:
    static constexpr int64_t kSecondsShown = 4; // of each part
    static constexpr size_t kMostLines = 4;     // beyond these the oldest are dropped
    static constexpr size_t kMostUnread = 16;

    enum class Kind : uint8_t { kWord, kFault };

    // `now` in microseconds of any steady clock. A line's time starts when it is first shown, as the program may still
    // be starting; one that is already shown starts again.
    void Post(const std::string& text, int64_t now, Kind kind = Kind::kWord,
              int64_t seconds = kSecondsShown);

    // What the one line shows now, at most `letters` long: the newest notice, part after part; empty without one. An
    // older word is then gone. An older fault is shown when the newer ones are over, for its whole time.
    [[nodiscard]] std::string Shown(int64_t now, size_t letters);

    // All that is or will be shown, oldest first.
    [[nodiscard]] std::vector<std::string> Lines(int64_t now);

    // Returns and forgets the faults that have not been shown for their whole time, oldest first.
    [[nodiscard]] std::vector<std::string> UnreadFaults(int64_t now);

private:
    struct LINE {
        std::string text;
        Kind kind;
        int64_t seconds = kSecondsShown; // of each part
        int64_t from = 0;
        int64_t until = INT64_MAX; // that has not been shown yet
    };

    void KeepAsUnread(const LINE& line, int64_t now);

    RankedMutex<LockRank::kLeaf> lock;
    std::deque<LINE> lines;
    std::deque<std::string> unread; // faults dropped to make room
};

// The program's notices, and the host's sinks: reports, which are faults, go to the notices and to
// standard error.
[[nodiscard]] Notices& ProgramNotices();
void PostNotice(const std::string& text);
void PostShortNotice(const std::string& text); // for two seconds
void PostReport(const std::string& text);
