#include "nes/m6502_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using STATE = std::array<uint8_t, kM6502StateSize>;

// Offsets of fields in the piece.
constexpr size_t kQueueAt = 12;
constexpr size_t kQueueIndexAt = kQueueAt + kM6502QueueSize;
constexpr size_t kOperandRegisterAt = kQueueIndexAt + 12;

STATE Save(const M6502& cpu) {
    STATE state{};
    EXPECT_EQ(M6502SaveState(cpu, state.data()).At(), state.data() + state.size());
    return state;
}

TEST(M6502State, FieldsLieInTheirOrder) {
    M6502 cpu;
    M6502Init(cpu, nullptr, nullptr, nullptr);
    cpu.pc = 0x0201;
    cpu.a = 3;
    cpu.x = 4;
    cpu.y = 5;
    cpu.sp = 6;
    cpu.p = 0x27;
    cpu.queue[1] = M6502Step::kLoad;
    cpu.queueIndex = 8;
    cpu.cycles = 0x0C0B0A09;
    cpu.opcode = 0x0D;
    cpu.operandRegister = kM6502Y;
    cpu.address = 0x0F0E;
    cpu.data = 0x10;
    cpu.busValue = 0x11;
    cpu.nmiLine = 1;
    cpu.irqLines = 7;
    cpu.nmiSeen = 1;
    cpu.irqSeen = 1;
    const STATE expected{1,    65,   0,    0,    0,             // header
                         1,    2,    3,    4,    5,    6, 0x27, // registers
                         0,    17,   0,    0,    0,    0, 0,    0, 0, 0, 0, 0, 0, 0, 0, 0, // queue
                         8,    0,    0,    0,                      // queueIndex
                         9,    0x0A, 0x0B, 0x0C,                   // cycles
                         0x0D, 0,    0,    0,    2,    0, 0,    0, // opcode, operandRegister
                         0x0E, 0x0F, 0x10, 0,    0x11,             // address, data, busValue
                         1,    0,    0,    0,    7,    0, 0,    0, // lines
                         1,    0,    0,    0,    1,    0, 0,    0};
    EXPECT_EQ(M6502StateSize(), kM6502StateSize);
    EXPECT_EQ(Save(cpu), expected);
}

TEST(M6502State, LoadedInAnyCycleItGoesOnTheSame) {
    for (uint32_t opcode = 0; opcode < 256; ++opcode) {
        for (uint32_t cycles = 0; cycles < 10; ++cycles) {
            TEST_6502 first{static_cast<uint8_t>(opcode), 0xF8, 0x02, 0x13, 0x40, 0x6D, 0xFF, 0x02};
            first.cpu.x = first.cpu.y = 0x10;
            first.cpu.irqLines = cycles == 3 ? 1 : 0;
            first.Cycles(cycles);
            TEST_6502 second;
            second.bus.memory = first.bus.memory;
            const STATE state = Save(first.cpu);
            ASSERT_EQ(M6502LoadState(second.cpu, state.data(), kM6502StateSize), kM6502StateSize);
            EXPECT_EQ(Save(second.cpu), state);
            first.bus.trace.clear();
            first.Cycles(20);
            second.Cycles(20);
            ASSERT_EQ(first.bus.trace, second.bus.trace) << opcode << " after " << cycles;
            EXPECT_EQ(Save(first.cpu), Save(second.cpu));
        }
    }
}

TEST(M6502State, OtherVersionOrSizeIsRefusedAndChangesNothing) {
    TEST_6502 test{0xE6, 0x20};
    test.Cycles(3);
    const STATE before = Save(test.cpu);
    STATE version = before;
    version[0] = 2;
    STATE size = before;
    size[1] = 66;
    EXPECT_EQ(M6502LoadState(test.cpu, version.data(), kM6502StateSize), 0U);
    EXPECT_EQ(M6502LoadState(test.cpu, size.data(), kM6502StateSize), 0U);
    for (uint32_t length = 0; length < kM6502StateSize; ++length) {
        const std::vector<uint8_t> cut(before.begin(), before.begin() + length);
        EXPECT_EQ(M6502LoadState(test.cpu, cut.data(), length), 0U);
    }
    EXPECT_EQ(Save(test.cpu), before);
}

TEST(M6502State, QueueThatNoInstructionMakesIsRefused) {
    TEST_6502 test{0xE6, 0x20};
    test.Cycles(2);
    const STATE before = Save(test.cpu);
    const auto refuses = [&](size_t at, uint8_t value) {
        STATE state = before;
        state[at] = value;
        return M6502LoadState(test.cpu, state.data(), kM6502StateSize) == 0;
    };
    const auto count = static_cast<uint8_t>(M6502Step::kCount);
    EXPECT_TRUE(refuses(kQueueAt + 4, count));
    EXPECT_TRUE(refuses(kQueueAt, 0xFF));
    EXPECT_FALSE(refuses(kQueueAt, static_cast<uint8_t>(count - 1)));
    EXPECT_TRUE(refuses(kQueueAt + kM6502QueueSize - 1, 1)); // no end
    EXPECT_TRUE(refuses(kQueueIndexAt, kM6502QueueSize));
    EXPECT_TRUE(refuses(kQueueIndexAt + 3, 1));
    EXPECT_FALSE(refuses(kQueueIndexAt, kM6502QueueSize - 1));
}

TEST(M6502State, OperandRegisterIsMaskedAndTheCallbacksAreKept) {
    TEST_6502 test;
    int owner = 0;
    test.cpu.context = &owner;
    std::vector<uint8_t> blob(200, 0xEE);
    M6502SaveState(test.cpu, blob.data());
    blob[kOperandRegisterAt] = 0xFF;
    blob[kOperandRegisterAt - 4] = 0x42; // opcode: only the low byte counts
    blob[kOperandRegisterAt - 3] = 0x01;
    EXPECT_EQ(M6502LoadState(test.cpu, blob.data(), 200), kM6502StateSize);
    EXPECT_EQ(test.cpu.operandRegister, uint32_t{kM6502Sp});
    EXPECT_EQ(test.cpu.opcode, 0x42U);
    EXPECT_EQ(test.cpu.context, &owner);
}

TEST(M6502State, ArbitraryQueuesRunWithinTheirBounds) {
    std::mt19937 random(6502);
    for (int trial = 0; trial < 4000; ++trial) {
        STATE state{};
        std::generate(state.begin(), state.end(), [&] { return static_cast<uint8_t>(random()); });
        state[0] = 1;
        state[1] = kM6502StateSize;
        state[2] = state[3] = state[4] = 0;
        for (size_t i = 0; i < kM6502QueueSize; ++i) {
            state[kQueueAt + i] %= static_cast<uint8_t>(M6502Step::kCount);
        }
        state[kQueueAt + kM6502QueueSize - 1] = 0;
        state[kQueueIndexAt] %= kM6502QueueSize;
        state[kQueueIndexAt + 1] = state[kQueueIndexAt + 2] = state[kQueueIndexAt + 3] = 0;
        TEST_6502 test;
        for (int i = 0; i < 1000; ++i) {
            test.bus.memory[random() & 0xFFFF] = static_cast<uint8_t>(random());
        }
        ASSERT_EQ(M6502LoadState(test.cpu, state.data(), kM6502StateSize), kM6502StateSize);
        const uint32_t before = test.cpu.cycles;
        for (int cycle = 0; cycle < 60; ++cycle) {
            test.Cycles(1);
            ASSERT_LT(test.cpu.queueIndex, kM6502QueueSize);
            ASSERT_EQ(test.cpu.queue.back(), M6502Step::kEnd);
        }
        EXPECT_EQ(test.cpu.cycles - before, 60U);
    }
}

} // namespace
