#include "base/ranked_mutex.h"

#include <gtest/gtest.h>

namespace {

using ListLock = RankedRecursiveMutex<LockRank::kSessionList>;
using SessionLock = RankedMutex<LockRank::kSession>;
using FrameLock = RankedMutex<LockRank::kFrame>;

} // namespace

TEST(RankedMutex, RisingRanksNest) {
    ListLock list;
    SessionLock session;
    FrameLock frame;
    for (int round = 0; round < 3; ++round) {
        const std::scoped_lock outer(list);
        const std::scoped_lock middle(session);
        const std::scoped_lock inner(frame);
    }
}

TEST(RankedMutex, ARecursiveMutexMayBeTakenAgainByItsOwner) {
    ListLock list;
    SessionLock session;
    const std::scoped_lock once(list);
    const std::scoped_lock between(session);
    const std::scoped_lock twice(list);
}

#ifdef OMBRELUNE_CHECK_LOCK_RANKS

TEST(RankedMutexDeathTest, AFallingRankEndsTheProgram) {
    SessionLock session;
    FrameLock frame;
    EXPECT_DEATH(
        {
            const std::scoped_lock outer(frame);
            const std::scoped_lock inner(session);
        },
        "lock of rank 20 taken under one of rank 30");
}

TEST(RankedMutexDeathTest, TwoLocksOfOneRankEndTheProgram) {
    SessionLock first;
    SessionLock second;
    EXPECT_DEATH(
        {
            const std::scoped_lock outer(first);
            const std::scoped_lock inner(second);
        },
        "lock of rank 20");
}

#endif
