#include "host/session_list.h"

#include <mutex>

namespace {

// Both under the list lock.
EMU_THREAD* gSessions = nullptr;
uint32_t gLastSerial = 0;

// Under the list lock.
SessionPin Pin(EMU_THREAD* session) {
    if (session != nullptr) {
        ++session->pins;
    }
    return SessionPin(session);
}

} // namespace

SessionListMutex& SessionListLock() {
    static auto* lock = new SessionListMutex;
    return *lock;
}

void LinkSession(EMU_THREAD& session) {
    session.serial = ++gLastSerial;
    session.next = gSessions;
    gSessions = &session;
}

void UnlinkSession(const EMU_THREAD& session) {
    EMU_THREAD** link = &gSessions;
    while (*link != &session) {
        link = &(*link)->next;
    }
    *link = session.next;
}

EMU_THREAD* FindSession(uint32_t key) {
    EMU_THREAD* session = gSessions;
    while (session != nullptr && session->key != key) {
        session = session->next;
    }
    return session;
}

SessionPin PinSession(uint32_t key) {
    const std::scoped_lock list(SessionListLock());
    return Pin(FindSession(key));
}

std::vector<SessionPin> PinSessions() {
    const std::scoped_lock list(SessionListLock());
    std::vector<SessionPin> pins;
    for (EMU_THREAD* session = gSessions; session != nullptr; session = session->next) {
        pins.push_back(Pin(session));
    }
    return pins;
}

void EmuForEachSession(const std::function<void(EMU_THREAD&)>& visit) {
    const std::scoped_lock list(SessionListLock());
    for (EMU_THREAD* session = gSessions; session != nullptr; session = session->next) {
        if (session->hostData != nullptr) {
            visit(*session);
        }
    }
}
