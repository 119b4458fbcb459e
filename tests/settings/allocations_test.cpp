// Counts the allocations of the calls that machines make at every poll.
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

thread_local size_t gAllocations = 0;

} // namespace

// Not inlined, or the compiler reports a mismatch of new and delete.
[[gnu::noinline]] void* operator new(size_t size) {
    ++gAllocations;
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, size_t) noexcept {
    std::free(block);
}

namespace {

TEST(Allocations, TheCounterSeesAnAllocation) {
    const size_t before = gAllocations;
    void* const block = ::operator new(100);
    EXPECT_EQ(gAllocations, before + 1);
    ::operator delete(block);
}

TEST(Allocations, AskingForInputOrANumberAllocatesNothing) {
    RegisterDefaultSettings(Settings());
    InputClearAll();
    InputKeyChanged(7, true);
    const size_t before = gAllocations;
    const bool down = InputIsDown(kApplicationKey, L"MEGADRIVE P1 BUTTONZ");
    const bool other = InputIsDown(kApplicationKey, L"megadrive p1 buttona");
    const bool unknown = InputIsDown(kApplicationKey, L"an action that is not there at all");
    const int32_t number = Settings().GetInt(L"audio_app_SAMPLERATE");
    const float real = Settings().GetFloat(L"megadrive_psgvolume");
    Settings().SetInt(L"app_window_width", 1280);
    EXPECT_EQ(gAllocations, before);
    EXPECT_TRUE(down);
    EXPECT_FALSE(other);
    EXPECT_FALSE(unknown);
    EXPECT_EQ(number, 44100);
    EXPECT_EQ(real, 1.25f);
    InputClearAll();
}

} // namespace
