// The list of sessions: new ones at the head, guarded by one lock for the whole process.
//
// The display and the sound pump wait for the lock, so it is held only to link, unlink and visit
// sessions, never while a machine starts, a frame runs or a disk is written. A thread that needs a
// session for longer pins it.
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

// Null if there is none on this key.
[[nodiscard]] EMU_THREAD* FindSession(uint32_t key);

// ---- Pins, under no lock.

struct UNPIN_SESSION {
    void operator()(EMU_THREAD* session) const { --session->pins; } // the last access to the record
};

// Keeps a session from being freed during this object's life. It may still leave the list.
using SessionPin = std::unique_ptr<EMU_THREAD, UNPIN_SESSION>;

[[nodiscard]] SessionPin PinSession(uint32_t key); // empty if there is none on this key
[[nodiscard]] std::vector<SessionPin> PinSessions();

// Takes a session's `lock` on another thread than its own. The session's thread retakes the lock at
// once after every step, so `lockWaiters` tells it that somebody waits.
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
