#include "machine/emu_system.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(LastError, NewestTextWins) {
    EmuSetLastError("first");
    EmuSetLastError("second");
    EXPECT_EQ(EmuLastError(), "second");
    EmuSetLastError({});
    EXPECT_EQ(EmuLastError(), "");
}

TEST(LastError, TextsOfTwoThreadsStayWhole) {
    EmuSetLastError("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        while (!stop) {
            EmuSetLastError("bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
            EmuSetLastError("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::string text = EmuLastError();
        EXPECT_EQ(text, std::string(40, text.at(0)));
    }
    stop = true;
    writer.join();
    EmuSetLastError({});
}
