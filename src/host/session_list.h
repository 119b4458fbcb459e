// The list of sessions: new ones at the head, behind one lock for the whole process.
//
// The display and the sound pump wait for the lock, so it is held to link, to unlink and to walk the list,
// and never while a machine starts, a frame runs or a disk is written. A thread that needs a session for
// longer pins it.
#pragma once

#include "base/ranked_mutex.h"
#include "host/session.h"

#include <cstdint>
#include <memory>
#include <vector>

using SessionListMutex = RankedRecursiveMutex<LockRank::kSessionList>;
[[nodiscard]] SessionListMutex& SessionListLock();

// ---- Under the list lock.

// Puts the session at the head of the list and gives it the next serial.
void LinkSession(EMU_THREAD& session);
void UnlinkSession(const EMU_THREAD& session);

// Null when there is none on this key.
[[nodiscard]] EMU_THREAD* FindSession(uint32_t key);

// ---- Pins, under no lock.

struct UNPIN_SESSION {
    void operator()(EMU_THREAD* session) const { --session->pins; } // the last act on the record
};

// A session that is not freed before this object goes. It may leave the list all the same.
using SessionPin = std::unique_ptr<EMU_THREAD, UNPIN_SESSION>;

[[nodiscard]] SessionPin PinSession(uint32_t key); // empty when there is none on this key
[[nodiscard]] std::vector<SessionPin> PinSessions();

// Takes a session's `lock` from another thread than its own. The session's thread takes it again at once
// after every step, so it is told that somebody waits.
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
