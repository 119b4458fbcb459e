#include "base/file_lock.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

namespace fs = std::filesystem;

using Result = FileLock::Result;

TEST(FileLock, HoldsItsProcessNumberUntilItIsReleased) {
    TemporaryFolder folder;
    const fs::path file = folder.Path() / "lock";
    long holder = -1;
    std::string error;
    {
        FileLock lock;
        ASSERT_EQ(lock.Take(file, holder, error), Result::kTaken) << error;
        EXPECT_TRUE(lock.Taken());
        EXPECT_EQ(holder, 0) << "nobody left it behind";
        const std::vector<uint8_t> bytes = folder.Read("lock");
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), std::to_string(getpid()) + "\n");
    }
    EXPECT_FALSE(fs::exists(file));
}

TEST(FileLock, IsRefusedWhileAnotherHasIt) {
    TemporaryFolder folder;
    const fs::path file = folder.Path() / "lock";
    long holder = 0;
    std::string error;
    FileLock first;
    FileLock second;
    ASSERT_EQ(first.Take(file, holder, error), Result::kTaken);
    EXPECT_EQ(second.Take(file, holder, error), Result::kHeld);
    EXPECT_EQ(holder, getpid());
    EXPECT_FALSE(second.Taken());
    second.Release();
    EXPECT_TRUE(fs::exists(file)) << "only its holder deletes it";
    first.Release();
    EXPECT_EQ(second.Take(file, holder, error), Result::kTaken);
    EXPECT_EQ(holder, 0);
}

TEST(FileLock, TellsWhoLeftTheFileBehind) {
    TemporaryFolder folder;
    long holder = 0;
    std::string error;
    FileLock lock;
    ASSERT_EQ(lock.Take(folder.Write("lock", "4711\n"), holder, error), Result::kTaken);
    EXPECT_EQ(holder, 4711);
    ASSERT_EQ(lock.Take(folder.Write("other", "no number"), holder, error), Result::kTaken);
    EXPECT_EQ(holder, 0);
}

TEST(FileLock, SaysWhyTheFileCannotBeMade) {
    TemporaryFolder folder;
    long holder = 0;
    std::string error;
    FileLock lock;
    EXPECT_EQ(lock.Take(folder.Path() / "missing" / "lock", holder, error), Result::kFailed);
    EXPECT_NE(error.find("lock: cannot be made: No such file or directory"), std::string::npos);
    fs::create_symlink(folder.Write("target", "text"), folder.Path() / "link");
    EXPECT_EQ(lock.Take(folder.Path() / "link", holder, error), Result::kFailed)
        << "a link is not followed";
    EXPECT_EQ(folder.Read("target").size(), 4u);
}

TEST(FileLock, ManyThreadsHoldItOneAtATime) {
    TemporaryFolder folder;
    const fs::path file = folder.Path() / "lock";
    std::atomic<int> holders{0};
    std::atomic<int> most{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int taken = 0; taken < 10;) {
                FileLock lock;
                long holder = 0;
                std::string error;
                if (lock.Take(file, holder, error) == Result::kTaken) {
                    most = std::max(most.load(), ++holders);
                    std::this_thread::yield();
                    --holders;
                    ++taken;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(most, 1);
}
