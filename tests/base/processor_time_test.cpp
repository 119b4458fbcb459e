#include "base/processor_time.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

TEST(ThreadProcessorTime, GrowsWithTheThreadsOwnWorkAlone) {
    const int64_t start = ThreadProcessorTime();
    int64_t others = 0;
    std::thread worker([&] { // works until its own time shows it
        const int64_t from = ThreadProcessorTime();
        while ((others = ThreadProcessorTime() - from) < 20000) {
        }
    });
    worker.join();
    EXPECT_GE(others, 20000);
    EXPECT_LT(ThreadProcessorTime() - start, others) << "this thread only waited";
}
