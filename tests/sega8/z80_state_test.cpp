#include "z80_support.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using STATE = std::array<uint8_t, kZ80StateSize>;

STATE Save(const Z80& z80) {
    STATE state{};
    const uint8_t* end = Z80SaveState(z80, state.data()).At();
    EXPECT_EQ(end, state.data() + state.size());
    return state;
}

// Any bytes after a valid header.
STATE RandomState(std::mt19937& random) {
    STATE state{};
    for (uint8_t& byte : state) {
        byte = static_cast<uint8_t>(random());
    }
    state[0] = 1;
    state[1] = kZ80StateSize;
    state[2] = state[3] = state[4] = 0;
    return state;
}

} // namespace

TEST(Z80State, LayoutIsEightySevenBytes) {
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    std::iota(z80.queue.begin(), z80.queue.end(), uint8_t{0x80});
    z80.queueIndex = 1;
    z80.r7 = 2;
    z80.r8 = 3;
    z80.iff1 = 4;
    z80.iff2 = 5;
    z80.halted = 6;
    z80.im = 7;
    z80.i = 8;
    z80.pendingInterrupt = 9;
    z80.irqLine = 10;
    z80.nmiEdge = 11;
    z80.prefix = 12;
    z80.busHold = 13;
    z80.running = 14;
    z80.enabled = 15;
    z80.eiDelay = 16;
    z80.opcode = 17;
    z80.regIndex = 18;
    z80.temp = 0x2019;
    z80.wz = 0x221A;
    for (uint32_t i = 0; i < kZ80RegisterCount; ++i) {
        z80.regs[i] = 0xFFFF0000 | (0x3000 + i);
    }
    const STATE state = Save(z80);
    EXPECT_EQ(Z80StateSize(), 87U);
    EXPECT_EQ(state[0], 1);
    EXPECT_EQ(state[1], 87);
    EXPECT_EQ(state[2] | state[3] | state[4], 0);
    for (uint32_t i = 0; i < 32; ++i) {
        EXPECT_EQ(state[5 + i], 0x80 + i);
    }
    for (uint32_t i = 0; i < 18; ++i) {
        EXPECT_EQ(state[37 + i], 1 + i);
    }
    EXPECT_EQ(state[55], 0x19);
    EXPECT_EQ(state[56], 0x20);
    EXPECT_EQ(state[57], 0x1A);
    EXPECT_EQ(state[58], 0x22);
    for (uint32_t i = 0; i < 14; ++i) {
        EXPECT_EQ(state[59 + 2 * i], i);
        EXPECT_EQ(state[60 + 2 * i], 0x30);
    }
}

TEST(Z80State, LoadedStateSavesToTheSameBytes) {
    TEST_Z80 test{0xDD, 0xCB, 0x05, 0xC6, 0xED, 0xB0};
    for (uint32_t i = 0; i < 200; ++i) {
        test.Clocks(1);
        const STATE state = Save(test.z80);
        TEST_Z80 other;
        ASSERT_EQ(Z80LoadState(other.z80, state.data(), kZ80StateSize), kZ80StateSize);
        EXPECT_EQ(Save(other.z80), state);
    }
}

TEST(Z80State, OtherVersionOrSizeIsRefusedAndChangesNothing) {
    TEST_Z80 test{0x06, 0x7F};
    test.Clocks(5);
    const STATE before = Save(test.z80);
    STATE version = before;
    version[0] = 2;
    STATE size = before;
    size[1] = 88;
    EXPECT_EQ(Z80LoadState(test.z80, version.data(), kZ80StateSize), 0U);
    EXPECT_EQ(Z80LoadState(test.z80, size.data(), kZ80StateSize), 0U);
    for (uint32_t length = 0; length < kZ80StateSize; ++length) {
        const std::vector<uint8_t> cut(before.begin(), before.begin() + length);
        EXPECT_EQ(Z80LoadState(test.z80, cut.data(), length), 0U);
    }
    EXPECT_EQ(Save(test.z80), before);
}

TEST(Z80State, LoadTakesItsPieceFromTheFrontAndKeepsTheCallbacks) {
    TEST_Z80 test;
    int owner = 0;
    test.z80.context = &owner;
    std::vector<uint8_t> blob(200, 0xEE);
    Z80SaveState(test.z80, blob.data());
    EXPECT_EQ(Z80LoadState(test.z80, blob.data(), 200), kZ80StateSize);
    EXPECT_EQ(test.z80.context, &owner);
}

TEST(Z80State, ArbitraryStatesRunWithinTheirBoundsAndGoOnTheSame) {
    std::mt19937 random(1976);
    for (int trial = 0; trial < 4000; ++trial) {
        const STATE state = RandomState(random);
        TEST_Z80 first;
        for (uint32_t i = 0; i < 256; ++i) {
            first.bus.memory[random() & 0xFFFF] = static_cast<uint8_t>(random());
        }
        ASSERT_EQ(Z80LoadState(first.z80, state.data(), kZ80StateSize), kZ80StateSize);
        first.z80.running = first.z80.enabled = 1;
        first.z80.busHold = 0;
        first.Clocks(1 + static_cast<uint32_t>(random() % 100));
        EXPECT_LT(first.z80.queueIndex, kZ80QueueSize);

        TEST_Z80 second;
        second.bus.memory = first.bus.memory;
        const STATE middle = Save(first.z80);
        ASSERT_EQ(Z80LoadState(second.z80, middle.data(), kZ80StateSize), kZ80StateSize);
        first.Clocks(100);
        second.Clocks(100);
        ASSERT_EQ(Save(first.z80), Save(second.z80)) << "trial " << trial;
        ASSERT_EQ(first.bus.memory, second.bus.memory) << "trial " << trial;
    }
}

TEST(Z80State, EveryStepAtEveryIndexStaysWithinTheQueue) {
    TEST_Z80 test;
    const STATE fresh = Save(test.z80);
    for (uint32_t step = 0; step < 256; ++step) {
        for (uint32_t index = 0; index < 256; ++index) {
            STATE state = fresh;
            std::fill(state.begin() + 5, state.begin() + 37, static_cast<uint8_t>(step));
            state[37] = static_cast<uint8_t>(index);
            state[45] = static_cast<uint8_t>(index % 3); // pendingInterrupt
            state[54] = static_cast<uint8_t>(index);     // regIndex
            ASSERT_EQ(Z80LoadState(test.z80, state.data(), kZ80StateSize), kZ80StateSize);
            test.bus.trace.clear();
            test.Clocks(4);
            EXPECT_LT(test.z80.queueIndex, kZ80QueueSize);
        }
    }
}

TEST(Z80State, UnknownStepsAreIdleClocks) {
    for (const uint32_t step :
         {7U, 89U, 106U, 107U, 115U, 126U, 138U, 157U, 158U, 183U, 198U, 201U, 253U, 255U}) {
        TEST_Z80 test;
        test.z80.queue.fill(static_cast<uint8_t>(step));
        const STATE before = Save(test.z80);
        test.Clocks(kZ80QueueSize);
        EXPECT_EQ(Save(test.z80), before) << step;
        EXPECT_EQ(test.bus.trace, "") << step;
    }
}

TEST(Z80Reset, ClearsTheProcessorAndKeepsItsOwnersInputs) {
    TEST_Z80 test{0xDD, 0x00};
    test.Clocks(6);
    int owner = 0;
    test.z80.context = &owner;
    test.z80.irqLine = 1;
    test.z80.nmiEdge = 1;
    test.z80.busHold = 1;
    test.z80.running = 0;
    test.z80.enabled = 0;
    test.z80.pendingInterrupt = kZ80Maskable;
    test.z80.iff1 = test.z80.iff2 = test.z80.halted = test.z80.i = test.z80.r7 = test.z80.r8 = 1;
    test.z80.im = 2;
    Z80Reset(test.z80);
    EXPECT_EQ(test.z80.context, &owner);
    EXPECT_EQ(test.z80.irqLine, 1U);
    EXPECT_EQ(test.z80.nmiEdge, 1U);
    EXPECT_EQ(test.z80.busHold, 1U);
    EXPECT_EQ(test.z80.running, 0U);
    EXPECT_EQ(test.z80.enabled, 0U);
    STATE expected{};
    expected[0] = 1;
    expected[1] = 87;
    expected[5] = 2;     // the queue starts an instruction
    expected[46] = 1;    // irqLine
    expected[47] = 1;    // nmiEdge
    expected[49] = 1;    // busHold
    expected[59] = 0x40; // AF
    expected[67] = 0xFF; // IX
    expected[68] = 0xFF;
    expected[69] = 0xFF; // IY
    expected[70] = 0xFF;
    EXPECT_EQ(Save(test.z80), expected);
}

TEST(Z80Reset, InitClearsAllAndRuns) {
    Z80 z80;
    z80.irqLine = z80.busHold = 1;
    z80.running = z80.enabled = 0;
    z80.regs[kZ80Sp] = 5;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(z80.irqLine, 0U);
    EXPECT_EQ(z80.busHold, 0U);
    EXPECT_EQ(z80.running, 1U);
    EXPECT_EQ(z80.enabled, 1U);
    EXPECT_EQ(z80.regs[kZ80Sp], 0U);
}
