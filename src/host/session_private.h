// What the frame loop shares with the list of sessions.
#pragma once

#include "host/session.h"

using SessionListMutex = RankedRecursiveMutex<LockRank::kSessionList>;
[[nodiscard]] SessionListMutex& SessionListLock();

// The callbacks as installed. A session's thread copies them at its start, while nobody may change
// them, and never looks again.
[[nodiscard]] const EMU_HOST_CALLBACKS& SessionHost();

// The last act of a session's thread.
void SessionThreadEnded();

// Takes a session's lock from another thread. The session's own thread takes it again at once after
// every step, so it is told that somebody waits.
class SessionHold {
public:
    explicit SessionHold(EMU_THREAD& waitedFor)
        : session(waitedFor) {
        ++session.lockWaiters;
        session.lock.lock();
        --session.lockWaiters;
    }
    ~SessionHold() { session.lock.unlock(); }
    SessionHold(const SessionHold&) = delete;
    SessionHold& operator=(const SessionHold&) = delete;

private:
    EMU_THREAD& session;
};
