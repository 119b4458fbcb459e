// One thread sets while others read: every value read is one that was set.
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int kRounds = 20'000;

TEST(SettingsThreads, ReadersSeeOnlyValuesThatWereSet) {
    SettingsStore store;
    RegisterDefaultSettings(store);
    store.SetInt(L"emu_fastforward", 0x11111111);
    store.SetFloat(L"audio_volume", 0.25f);
    store.SetString(L"login_username", L"a short one");
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::atomic<int> reading{0};
    const auto read = [&] {
        reading.fetch_add(1);
        while (!stop.load()) {
            const int32_t number = store.GetInt(L"emu_fastforward");
            const float real = store.GetFloat(L"audio_volume");
            const std::wstring text = store.GetString(L"login_username");
            const bool good = (number == 0x11111111 || number == 0x22222222) &&
                              (real == 0.25f || real == 0.75f) &&
                              (text == L"a short one" || text == std::wstring(64, L'b'));
            wrong.fetch_add(good ? 0 : 1);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back(read);
    }
    EXPECT_TRUE(WaitUntil("three readers", [&] { return reading.load() == 3; }));
    for (int i = 0; i < kRounds; ++i) {
        const bool first = i % 2 == 0;
        store.SetInt(L"emu_fastforward", first ? 0x22222222 : 0x11111111);
        store.SetFloat(L"audio_volume", first ? 0.75f : 0.25f);
        store.SetString(L"login_username", first ? std::wstring(64, L'b') : L"a short one");
    }
    stop.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(store.GetInt(L"emu_fastforward"), 0x11111111);
}

// The hat goes between left and down-left, so that left stays held; no reader may see it released.
TEST(SettingsThreads, AHeldDirectionOfAHatNeverLooksLetGo) {
    InputClearAll();
    const uint32_t left = JoystickBinding(0, JoystickHatCode(0, 0, 6));
    InputHatMoved(0, 0, kHatLeft);
    std::atomic<bool> stop{false};
    std::atomic<bool> reading{false};
    std::atomic<int> missed{0};
    std::thread reader([&] {
        while (!stop.load()) {
            missed.fetch_add(BindingIsDown(left, false) ? 0 : 1);
            reading.store(true);
        }
    });
    EXPECT_TRUE(WaitUntil("the reader", [&] { return reading.load(); }));
    for (int i = 0; i < kRounds; ++i) {
        InputHatMoved(0, 0, i % 2 == 0 ? kHatLeft | kHatDown : kHatLeft);
    }
    stop.store(true);
    reader.join();
    EXPECT_EQ(missed.load(), 0);
    InputClearAll();
}

} // namespace
