// A table of turns: one thread at a time has the turn of a value, such as a key or a file's path.
//
// A thread that wants a turn waits while another one has it. Turns of different values never wait for
// each other, so a thread may keep one during disk access. A turn counts as a lock of its rank, and a
// thread has at most one turn of a table at a time.
#pragma once

#include "base/ranked_mutex.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <utility>

template <typename Value, LockRank Rank>
class Turns {
public:
    void Take(const Value& value) {
#ifdef OMBRELUNE_CHECK_LOCK_RANKS
        LockRankPush(Rank, &taken, false);
#endif
        std::unique_lock hold(lock);
        given.wait(hold, [&] { return taken.insert(value).second; });
    }

    void Give(const Value& value) {
        {
            const std::scoped_lock hold(lock);
            taken.erase(value);
        }
        given.notify_all();
#ifdef OMBRELUNE_CHECK_LOCK_RANKS
        LockRankPop(&taken);
#endif
    }

private:
    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any given;
    std::set<Value> taken; // under `lock`; its address identifies turns to the rank check
};

// Has the turn of a value for the life of this object.
template <typename Value, LockRank Rank>
class Turn {
public:
    Turn(Turns<Value, Rank>& turnsOfAll, Value turnOf)
        : turns(turnsOfAll)
        , value(std::move(turnOf)) {
        turns.Take(value);
    }
    ~Turn() { turns.Give(value); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    Turns<Value, Rank>& turns;
    const Value value;
};
