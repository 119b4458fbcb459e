// SessionWorker: a thread that starts and stops sessions, so that no picture waits for it.
//
// A start makes a machine and reads its saves; a stop waits for the machine's frame and writes the autosave. Both
// take tens of milliseconds, and longer on a slow disk. The orders are done one after the other, in their order.
//
// Threads: Order, TakeResults and Finish belong to the owner, the main thread.
#pragma once

#include "base/ranked_mutex.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

struct OPENED_GAME;

struct SESSION_ORDER {
    uint64_t number = 0; // the owner's, to know the result by
    uint32_t key = 0;
    std::shared_ptr<const OPENED_GAME> game; // to be started; null: the session is stopped
};

struct SESSION_RESULT {
    uint64_t number = 0;
    uint32_t key = 0;
    uint32_t serial = 0; // of a started session; 0 if it could not start, and after a stop
    bool failed = false; // it could not start
    std::string reason;  // of that
};

class SessionWorker {
public:
    SessionWorker();
    ~SessionWorker(); // does what is ordered first
    SessionWorker(const SessionWorker&) = delete;
    SessionWorker& operator=(const SessionWorker&) = delete;

    void Order(SESSION_ORDER order);
    // Of the orders done since the last call.
    [[nodiscard]] std::vector<SESSION_RESULT> TakeResults();
    // Waits until everything ordered is done.
    void Finish();

private:
    void Run();

    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    std::deque<SESSION_ORDER> orders;    // under `lock`; the first one is being done
    std::vector<SESSION_RESULT> results; // under `lock`
    bool end = false;                    // under `lock`
    std::thread thread;                  // last, as it uses the others
};
