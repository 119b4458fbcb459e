#include "front/processor_binder.h"
#include "settings/settings.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <cstdlib>
#include <thread>
#include <vector>

TEST(ProcessorBinder, LeavesThreadsAloneUnlessAsked) {
    RegisterDefaultSettings(Settings());
    ProcessorBinderStart();
    EXPECT_EQ(BindProcessor(0), -1);
    for (uint32_t i = 0; i < ProcessorCount(); ++i) {
        EXPECT_EQ(BoundThreads(i), 0u);
    }
    ReleaseProcessor(-1);
    ReleaseProcessor(33);
    ReleaseProcessor(0);
    EXPECT_EQ(BoundThreads(0), 0u);
}

TEST(ProcessorBinder, TakesTheProcessorWithTheFewestThreads) {
    RegisterDefaultSettings(Settings());
    Settings().SetBool(L"app_managecpucores", true);
    ProcessorBinderStart();
    if (ProcessorCount() < 2) {
        EXPECT_EQ(BindProcessor(0), -1) << "one processor never binds";
        return;
    }
    std::vector<int> tokens;
    std::thread([&] {
        for (uint32_t i = 0; i <= ProcessorCount(); ++i) {
            tokens.push_back(BindProcessor(0));
        }
    }).join();
    for (uint32_t i = 0; i < ProcessorCount(); ++i) {
        EXPECT_EQ(tokens[i], static_cast<int>(i)) << "ties go to the lowest number";
    }
    EXPECT_EQ(tokens.back(), 0);
    EXPECT_EQ(BoundThreads(0), 2u);
    ReleaseProcessor(1);
    EXPECT_EQ(BoundThreads(1), 0u);
    std::thread([&] { EXPECT_EQ(BindProcessor(0), 1); }).join();
    Settings().SetBool(L"app_managecpucores", false);
}

TEST(ProcessorBinder, AHelperLetsGoOfTheProcessorOfItsStarter) {
    RegisterDefaultSettings(Settings());
    ProcessorBinderStart();
    if (ProcessorCount() < 2) {
        GTEST_SKIP() << "with one processor nothing is bound";
    }
    const auto processors = [] {
        cpu_set_t allowed;
        return sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : -1;
    };
    std::thread([&] {
        const int token = BindProcessor(1);
        EXPECT_GE(token, 0);
        std::thread([&] {
            EXPECT_EQ(processors(), 1) << "what it inherits";
            BecomeHelper();
            EXPECT_EQ(processors(), static_cast<int>(ProcessorCount()));
        }).join();
        ReleaseThisThread(token);
    }).join();
}

TEST(ProcessorBinder, AFullProcessorIsPassedOver) {
    RegisterDefaultSettings(Settings());
    ProcessorBinderStart();
    const uint32_t processors = ProcessorCount();
    if (processors < 2) {
        GTEST_SKIP() << "with one processor nothing is bound";
    }
    constexpr uint32_t kFull = 1000;
    const int last = static_cast<int>(processors) - 1;
    std::thread([&] {
        for (uint32_t i = 0; i < kFull * processors; ++i) {
            ASSERT_EQ(BindProcessor(1), static_cast<int>(i % processors));
        }
        EXPECT_EQ(BindProcessor(1), -1) << "all are full";
        ReleaseProcessor(last);
        EXPECT_EQ(BoundThreads(processors - 1), kFull - 1);
        EXPECT_EQ(BindProcessor(1), last) << "past those that are full";
        EXPECT_EQ(BindProcessor(1), -1);
    }).join();
    for (uint32_t i = 0; i < processors; ++i) {
        EXPECT_EQ(BoundThreads(i), kFull);
    }
    ProcessorBinderStart();
}

// In a process of its own, since a process checks only once which processors it may use.
TEST(ProcessorBinder, OneProcessorNeverBinds) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto runOnOne = [] {
        cpu_set_t allowed;
        cpu_set_t one;
        CPU_ZERO(&one);
        if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
            std::_Exit(2);
        }
        for (size_t bit = 0; bit < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++bit) {
            if (CPU_ISSET(bit, &allowed)) {
                CPU_SET(bit, &one);
            }
        }
        if (sched_setaffinity(0, sizeof one, &one) != 0) {
            std::_Exit(3);
        }
        RegisterDefaultSettings(Settings());
        Settings().SetBool(L"app_managecpucores", true);
        ProcessorBinderStart();
        const bool never = BindProcessor(0) == -1 && BindProcessor(1) == -1;
        std::_Exit(ProcessorCount() != 1 ? 4 : never && BoundThreads(0) == 0 ? 0 : 5);
    };
    EXPECT_EXIT(runOnOne(), testing::ExitedWithCode(0), "");
}
