#include "host/turns.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using Table = Turns<std::string, LockRank::kArchive>;
using Holder = Turn<std::string, LockRank::kArchive>;

} // namespace

TEST(Turns, OneThreadAtATimeHasAValue) {
    Table table;
    int32_t sum = 0; // guarded by the turn alone
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                const Holder turn(table, "one");
                const int32_t before = sum;
                std::this_thread::yield();
                sum = before + 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sum, 4000);
}

TEST(Turns, AnotherValueIsFree) {
    Table table;
    const Holder turn(table, "one");
    bool had = false;
    std::thread other([&] {
        const Holder another(table, "other");
        had = true;
    });
    other.join(); // it would never end if it waited
    EXPECT_TRUE(had);
}

TEST(Turns, AValueIsFreeAgainAfterwards) {
    Table table;
    for (int i = 0; i < 3; ++i) {
        const Holder turn(table, "one");
    }
}

#ifdef OMBRELUNE_CHECK_LOCK_RANKS

TEST(TurnsDeathTest, ATurnUnderAHigherLockEndsTheProgram) {
    Table table;
    RankedMutex<LockRank::kLeaf> leaf;
    EXPECT_DEATH(
        {
            const std::scoped_lock outer(leaf);
            const Holder turn(table, "one");
        },
        "lock of rank 70 taken under one of rank 90");
}

#endif
