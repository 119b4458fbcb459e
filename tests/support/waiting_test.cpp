// No test waits forever: a wait that fails says what it waited for, a program that hangs is killed.
#include "support/run_program.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <string>

TEST(WaitUntil, ThatHasRunOutSaysForWhatItWaited) {
    const testing::AssertionResult result = WaitUntil(
        "what never comes", [] { return false; }, std::chrono::seconds{0});
    EXPECT_FALSE(result);
    EXPECT_STREQ(result.message(), "waited 0 seconds for what never comes");
}

TEST(WaitUntil, LooksUntilItIsSo) {
    int looks = 0;
    EXPECT_TRUE(WaitUntil("the third look", [&looks] { return ++looks == 3; }));
    EXPECT_EQ(looks, 3);
}

TEST(RunProgram, OneThatHangsIsEndedAndNamed) {
    const PROGRAM_RESULT result = RunProgram("/bin/sleep", {"1000"}, 1);
    EXPECT_EQ(result.exitCode, -1);
    EXPECT_EQ(result.error, "ended after 1 seconds: /bin/sleep 1000");
}
