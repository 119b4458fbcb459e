// SaveKeeper: a thread that writes what must survive a crash while games run: their own memory within a second, their
// resume files every ten. Neither a picture nor a machine waits for the disk.
//
// Thread: main. At its end nothing is being written any more.
#pragma once

#include "base/ranked_mutex.h"

#include <condition_variable>
#include <functional>
#include <thread>

// What the thread does until `nextSecond`, which waits for the next second, returns false.
void KeepSaves(const std::function<bool()>& nextSecond, const std::function<void()>& keepBatteries,
               const std::function<void()>& keepResumeFiles);

class SaveKeeper {
public:
    SaveKeeper();
    ~SaveKeeper();
    SaveKeeper(const SaveKeeper&) = delete;
    SaveKeeper& operator=(const SaveKeeper&) = delete;

private:
    void Run();

    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    bool end = false;   // under `lock`
    std::thread thread; // last, as it uses the others
};
