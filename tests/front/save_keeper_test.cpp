#include "front/save_keeper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using testing::ElementsAre;

TEST(SaveKeeper, KeepsMemoriesEverySecondAndResumeFilesEveryTen) {
    constexpr int kSeconds = 25;
    int second = 0;
    int memories = 0;
    std::vector<int> resumeFiles;
    KeepSaves([&] { return ++second <= kSeconds; },
              [&] {
                  ++memories;
                  EXPECT_EQ(memories, second);
              },
              [&] {
                  EXPECT_EQ(memories, second)
                      << "a game's memory is written before its resume file";
                  resumeFiles.push_back(second);
              });
    EXPECT_EQ(memories, kSeconds);
    EXPECT_THAT(resumeFiles, ElementsAre(10, 20));
}

TEST(SaveKeeper, WritesNothingMoreOnceItIsToEnd) {
    int kept = 0;
    KeepSaves([] { return false; }, [&] { ++kept; }, [&] { ++kept; });
    EXPECT_EQ(kept, 0);
}
