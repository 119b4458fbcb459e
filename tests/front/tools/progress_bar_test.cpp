#include "front/tools/progress_bar.h"

#include <gtest/gtest.h>

TEST(ProgressText, BarIsFilledAsFarAsTheCount) {
    EXPECT_EQ(ProgressText(0, 4, "a"), "0/4 [                    ] a");
    EXPECT_EQ(ProgressText(1, 4, "a"), "1/4 [=====               ] a");
    EXPECT_EQ(ProgressText(4, 4, "a"), "4/4 [====================] a");
    EXPECT_EQ(ProgressText(9, 4, "a"), "9/4 [====================] a");
}

TEST(ProgressText, CountKeepsItsWidth) {
    EXPECT_EQ(ProgressText(7, 1000, "a").substr(0, 9), "   7/1000");
}

TEST(ProgressText, WithoutATotalThereIsNoBar) {
    EXPECT_EQ(ProgressText(7, 0, "a"), "7 a");
}

// The name of a file may hold anything; the terminal must not obey it.
TEST(ProgressText, ControlCharactersOfTheNameAreNotShown) {
    EXPECT_EQ(ProgressText(7, 0, "a\x1B[31m\n"), "7 a?[31m?");
}
