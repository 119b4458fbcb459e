#include "host/rewind.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr uint64_t kMebibyte = 1 << 20;

void Push(REWIND_STACK& stack, uint8_t mark, uint32_t size, uint64_t limit) {
    auto state = std::make_unique<uint8_t[]>(size);
    state[0] = mark;
    RewindPush(stack, std::move(state), size, limit);
}

// The marks on the stack, newest first; also checks the links back from the oldest.
std::vector<uint8_t> Marks(const REWIND_STACK& stack) {
    std::vector<uint8_t> marks;
    for (const REWIND_NODE* node = stack.rewindHead.get(); node; node = node->next.get()) {
        marks.push_back(node->state[0]);
    }
    std::vector<uint8_t> back;
    for (const REWIND_NODE* node = stack.rewindTail; node; node = node->newer) {
        back.insert(back.begin(), node->state[0]);
    }
    EXPECT_EQ(marks, back);
    EXPECT_EQ(marks.size(), stack.rewindCount);
    return marks;
}

} // namespace

TEST(Rewind, LimitIsInMebibytesAndAtMostAThousandTwentyFour) {
    EXPECT_EQ(RewindLimitBytes(1), kMebibyte);
    EXPECT_EQ(RewindLimitBytes(1024), 1024 * kMebibyte);
    EXPECT_EQ(RewindLimitBytes(1025), 1024 * kMebibyte);
    EXPECT_EQ(RewindLimitBytes(INT32_MAX), 1024 * kMebibyte);
}

TEST(Rewind, ANegativeOrZeroSettingKeepsNothing) {
    EXPECT_EQ(RewindLimitBytes(0), 0u);
    EXPECT_EQ(RewindLimitBytes(-1), 0u);
    EXPECT_EQ(RewindLimitBytes(INT32_MIN), 0u);
}

TEST(Rewind, NewestStateIsOnTop) {
    REWIND_STACK stack;
    for (uint8_t mark = 1; mark <= 3; ++mark) {
        Push(stack, mark, 10, kMebibyte);
    }
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{3, 2, 1}));
}

// With states of 10 bytes and a limit of 30, three fit: the fourth finds 10 x 3 at the limit.
TEST(Rewind, OldestGoesWhenTheLimitIsReached) {
    REWIND_STACK stack;
    for (uint8_t mark = 1; mark <= 5; ++mark) {
        Push(stack, mark, 10, 30);
    }
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{5, 4, 3}));
}

TEST(Rewind, OneByteUnderTheLimitStillCounts) {
    REWIND_STACK stack;
    for (uint8_t mark = 1; mark <= 5; ++mark) {
        Push(stack, mark, 10, 31);
    }
    EXPECT_EQ(stack.rewindCount, 4u); // 10 x 3 is under 31, 10 x 4 is not
}

TEST(Rewind, WorthIsJudgedByTheNewestStateAlone) {
    REWIND_STACK stack;
    Push(stack, 1, 10, 100);
    Push(stack, 2, 10, 100);
    Push(stack, 3, 60, 100); // 60 x 2 reaches the limit: one goes, though all three hold 80
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{3, 2}));
    Push(stack, 4, 1, 100); // 1 x 2 does not
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{4, 3, 2}));
}

TEST(Rewind, ASmallerLimitTakesOneOffForEveryPush) {
    REWIND_STACK stack;
    for (uint8_t mark = 1; mark <= 6; ++mark) {
        Push(stack, mark, 10, 1000);
    }
    Push(stack, 7, 10, 20);
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{7, 6, 5, 4, 3, 2}));
}

TEST(Rewind, AStateAboveTheLimitIsKeptAlone) {
    REWIND_STACK stack;
    Push(stack, 1, 200, 100); // 200 x 0 has not reached it
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{1}));
    Push(stack, 2, 200, 100);
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{2}));
}

// The product passes 2^32 here.
TEST(Rewind, WorthIsReckonedInSixtyFourBits) {
    REWIND_STACK stack;
    Push(stack, 1, 10, kMebibyte);
    stack.rewindCount = 0x20000000;
    const uint32_t before = stack.rewindCount;
    Push(stack, 2, 16, 1024 * kMebibyte); // 2^33; its low half is 0
    EXPECT_EQ(stack.rewindCount, before); // so one was dropped instead
    stack.rewindCount = 1;
}

TEST(Rewind, ANullOrEmptyStateIsNotTaken) {
    REWIND_STACK stack;
    RewindPush(stack, nullptr, 10, kMebibyte);
    RewindPush(stack, std::make_unique<uint8_t[]>(1), 0, kMebibyte);
    EXPECT_TRUE(Marks(stack).empty());
}

TEST(Rewind, PopTakesTheNewest) {
    REWIND_STACK stack;
    Push(stack, 1, 10, kMebibyte);
    Push(stack, 2, 10, kMebibyte);
    RewindPop(stack);
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{1}));
    EXPECT_EQ(stack.rewindCursor, stack.rewindHead.get());
    RewindPop(stack);
    EXPECT_TRUE(Marks(stack).empty());
    EXPECT_EQ(stack.rewindTail, nullptr);
    Push(stack, 3, 10, kMebibyte);
    EXPECT_EQ(Marks(stack), (std::vector<uint8_t>{3}));
}

TEST(Rewind, ALongStackIsFreedWithoutRecursion) {
    REWIND_STACK stack;
    for (uint32_t i = 0; i < 1000000; ++i) {
        Push(stack, 1, 1, 1024 * kMebibyte);
    }
    EXPECT_EQ(stack.rewindCount, 1000000u);
    RewindClear(stack);
    EXPECT_EQ(stack.rewindCount, 0u);
    EXPECT_EQ(stack.rewindHead, nullptr);
}

TEST(Rewind, ASessionFreesALongStackAtItsEnd) {
    auto stack = std::make_unique<REWIND_STACK>();
    for (uint32_t i = 0; i < 1000000; ++i) {
        Push(*stack, 1, 1, 1024 * kMebibyte);
    }
    stack.reset(); // A chain of destructors would overflow the stack here.
}
