#include "base/ordered_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <numeric>

TEST(OrderedWork, ResultsComeInOrderFromAnyNumberOfThreads) {
    for (const unsigned threads : {0U, 1U, 2U, 9U}) {
        const std::vector<uint64_t> weights(500, 1);
        std::vector<size_t> taken;
        EXPECT_TRUE(RunInOrder(
            weights, {threads, 20, 50},
            [](size_t index) { return std::make_unique<size_t>(index * 2); },
            [&](size_t index, const std::unique_ptr<size_t>& result) {
                EXPECT_EQ(*result, index * 2);
                taken.push_back(index);
                return true;
            }));
        std::vector<size_t> expected(500);
        std::iota(expected.begin(), expected.end(), size_t{0});
        EXPECT_EQ(taken, expected);
    }
}

TEST(OrderedWork, NothingToDoIsDone) {
    EXPECT_TRUE(RunInOrder(
        {}, {}, [](size_t) { return 0; }, [](size_t, int) { return false; }));
}

TEST(OrderedWork, WeightAndNumberInHandAreLimited) {
    // Every third item is heavier than the limit alone.
    std::vector<uint64_t> weights;
    for (size_t i = 0; i < 300; ++i) {
        weights.push_back(i % 3 == 0 ? 100 : 20);
    }
    std::atomic<uint64_t> inHand{0};
    std::atomic<uint64_t> items{0};
    std::atomic<bool> within{true};
    EXPECT_TRUE(RunInOrder(
        weights, {6, 50, 4},
        [&](size_t index) {
            const uint64_t weight = inHand += weights[index];
            const uint64_t count = ++items;
            if (count > 4 || (weight > 50 && count > 1)) {
                within = false;
            }
            return index;
        },
        [&](size_t index, size_t) {
            inHand -= weights[index];
            --items;
            return true;
        }));
    EXPECT_TRUE(within);
}

TEST(OrderedWork, StopEndsItWithoutFurtherItems) {
    const std::vector<uint64_t> weights(1000, 1);
    std::atomic<size_t> begun{0};
    size_t taken = 0;
    EXPECT_FALSE(RunInOrder(
        weights, {3, 1000, 8}, [&](size_t) { return ++begun; },
        [&](size_t, size_t) { return ++taken < 10; }));
    EXPECT_EQ(taken, 10u);
    EXPECT_LE(begun, 9u + 8u) << "those taken before the last one, and those in hand then";
}
