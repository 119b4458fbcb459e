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

    // `now` in microseconds of any steady clock. A line that is shown already is shown anew.
    void Post(const std::string& text, int64_t now);

    // The lines to be shown, oldest first; those whose time is over are gone.
    [[nodiscard]] std::vector<std::string> Lines(int64_t now);

private:
    struct LINE {
        std::string text;
        int64_t until;
    };

    RankedMutex<LockRank::kLeaf> lock;
    std::deque<LINE> lines;
};

// The program's own, with SDL-free wiring for the host: reports go to it and to standard error.
[[nodiscard]] Notices& ProgramNotices();
void PostNotice(const std::string& text);
void PostReport(const std::string& text);
