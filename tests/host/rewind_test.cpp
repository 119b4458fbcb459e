#include "base/bytes.h"
#include "host/rewind.h"

#include "support/allocation_counter.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr uint64_t kMebibyte = 1 << 20;
constexpr uint64_t kMost = 1024 * kMebibyte;
constexpr uint64_t kNoiseBytes = 65536; // of a state that cannot be packed

using State = std::vector<uint8_t>;

// A machine that is nothing but its state: a field of each size, and memory.
class StateMachine : public CEmuSystem {
public:
    explicit StateMachine(const State& stateValue)
        : CEmuSystem(1, 1, 1)
        , state(stateValue) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override {}
    void RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME*, EMU_AUDIO_FRAME*) override {}
    bool LoadState(const uint8_t*, uint32_t) override { return true; }
    uint32_t StateSize() override { return static_cast<uint32_t>(state.size()); }

    void WriteState(StateOut out) override {
        size_t at = 0;
        PutField<uint8_t>(out, at);
        PutField<uint16_t>(out, at);
        PutField<uint32_t>(out, at);
        PutField<uint64_t>(out, at);
        if (refusesMemory) {
            throw std::bad_alloc();
        }
        out.PutBytes(state.data() + at, state.size() - at);
    }

    bool refusesMemory = false; // in the middle of a state

private:
    template <typename Field>
    void PutField(StateOut& out, size_t& at) {
        if (at + sizeof(Field) <= state.size()) {
            out.PutScalar(LoadLittleEndian<Field>(state.data() + at));
            at += sizeof(Field);
        }
    }

    const State& state;
};

bool Push(REWIND_STACK& stack, const State& state, uint64_t limit = kMost) {
    StateMachine machine(state);
    return RewindPush(stack, machine, limit);
}

// A state of this size, filled with the mark.
State Filled(uint8_t mark, size_t size = 10) {
    return State(size, mark);
}

State Noise(std::mt19937& random, size_t size) {
    State state(size);
    std::generate(state.begin(), state.end(), [&] { return static_cast<uint8_t>(random()); });
    return state;
}

State Head(const REWIND_STACK& stack) {
    return {stack.rewindHead.get(), stack.rewindHead.get() + stack.rewindHeadBytes};
}

// Takes everything off the stack, newest first.
std::vector<State> PopAll(REWIND_STACK& stack) {
    std::vector<State> states;
    const uint32_t count = stack.rewindCount;
    states.reserve(count);
    for (uint32_t left = count; left > 0; --left) {
        EXPECT_EQ(stack.rewindCount, left);
        states.push_back(Head(stack));
        RewindPop(stack);
    }
    EXPECT_EQ(stack.rewindHead, nullptr);
    EXPECT_TRUE(stack.older.empty());
    EXPECT_EQ(stack.packedBytes, 0u);
    return states;
}

std::vector<State> NewestFirst(std::vector<State> states) {
    std::reverse(states.begin(), states.end());
    return states;
}

// What the machines' states do between two frames: a few bytes change here and there, and some areas are filled.
void ChangeSome(std::mt19937& random, State& state) {
    for (auto i = random() % 20; i > 0; --i) {
        state[random() % state.size()] = static_cast<uint8_t>(random());
    }
    if (random() % 4 == 0) {
        const size_t from = random() % state.size();
        const size_t length = random() % (state.size() - from + 1);
        std::fill_n(state.begin() + static_cast<ptrdiff_t>(from), length,
                    static_cast<uint8_t>(random()));
    }
}

} // namespace

TEST(Rewind, LimitIsInMebibytesAndAtMostAThousandTwentyFour) {
    EXPECT_EQ(RewindLimitBytes(1), kMebibyte);
    EXPECT_EQ(RewindLimitBytes(1024), 1024 * kMebibyte);
    EXPECT_EQ(RewindLimitBytes(1025), 1024 * kMebibyte);
    EXPECT_EQ(RewindLimitBytes(INT32_MAX), 1024 * kMebibyte);
}

TEST(Rewind, ANegativeOrZeroSettingKeepsNothing) {
    EXPECT_EQ(RewindLimitBytes(0), 0u);
    EXPECT_EQ(RewindLimitBytes(-1), 0u);
    EXPECT_EQ(RewindLimitBytes(INT32_MIN), 0u);
}

TEST(Rewind, NewestStateIsOnTop) {
    REWIND_STACK stack;
    for (uint8_t mark = 1; mark <= 3; ++mark) {
        EXPECT_TRUE(Push(stack, Filled(mark)));
    }
    EXPECT_EQ(PopAll(stack), (std::vector<State>{Filled(3), Filled(2), Filled(1)}));
}

TEST(Rewind, AStateThatCannotBeSavedIsNotTaken) {
    REWIND_STACK stack;
    EXPECT_TRUE(Push(stack, {}));
    EXPECT_EQ(stack.rewindCount, 0u);
    EXPECT_EQ(stack.rewindHead, nullptr);
}

TEST(Rewind, AnEmptiedStackTakesStatesAgain) {
    REWIND_STACK stack;
    EXPECT_TRUE(Push(stack, Filled(1)));
    EXPECT_TRUE(Push(stack, Filled(2)));
    PopAll(stack);
    EXPECT_EQ(RewindBytes(stack), 0u);
    EXPECT_TRUE(Push(stack, Filled(3)));
    EXPECT_EQ(PopAll(stack), std::vector<State>{Filled(3)});
}

// Sizes around those of a block (64 bytes) and a chunk (1024), with changes that touch their edges.
TEST(Rewind, ReturnsEveryByteAtEveryBoundaryOfBlocks) {
    for (const size_t size : {1u, 2u, 63u, 64u, 65u, 1023u, 1024u, 1025u, 1088u, 2048u, 4095u}) {
        REWIND_STACK stack;
        std::vector<State> pushed{State(size, 0x5A)};
        for (size_t at = 0; at < size; ++at) {
            if (at % 64 < 2 || at % 64 == 63 || at + 1 == size) {
                pushed.push_back(pushed.back());
                pushed.back()[at] ^= static_cast<uint8_t>(at | 1);
            }
        }
        for (const State& state : pushed) {
            ASSERT_TRUE(Push(stack, state));
        }
        EXPECT_EQ(PopAll(stack), NewestFirst(pushed)) << size;
    }
}

TEST(Rewind, StatesThatDoNotChangeOrChangeWhollyComeBack) {
    std::mt19937 random(7);
    std::vector<State> pushed;
    for (int i = 0; i < 8; ++i) {
        pushed.push_back(Noise(random, 5000));
        pushed.push_back(pushed.back());
    }
    REWIND_STACK stack;
    for (const State& state : pushed) {
        ASSERT_TRUE(Push(stack, state));
    }
    EXPECT_EQ(PopAll(stack), NewestFirst(pushed));
}

TEST(Rewind, EveryStateMayHaveItsOwnSize) {
    std::mt19937 random(3);
    const size_t sizes[] = {5000, 1, 5000, 6000, 1024, 1023, 1025, 2048, 100000, 64, 63, 99999, 1};
    std::vector<State> pushed;
    for (const size_t size : sizes) {
        pushed.push_back(Noise(random, size));
    }
    REWIND_STACK stack;
    for (const State& state : pushed) {
        ASSERT_TRUE(Push(stack, state));
    }
    EXPECT_EQ(stack.rewindRoomBytes, 100000u);
    EXPECT_EQ(PopAll(stack), NewestFirst(pushed));
}

// A full second, half a second back, and on from there.
TEST(Rewind, RecordingGoesOnFromWhereARewindEnded) {
    std::mt19937 random(5);
    REWIND_STACK stack;
    std::vector<State> reference;
    State state = Noise(random, 3000);
    const auto play = [&](int frames) {
        for (int i = 0; i < frames; ++i) {
            ChangeSome(random, state);
            reference.push_back(state);
            ASSERT_TRUE(Push(stack, state));
        }
    };
    play(90);
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(Head(stack), reference.back());
        reference.pop_back();
        RewindPop(stack);
    }
    state = Head(stack);
    play(45);
    EXPECT_EQ(stack.rewindCount, 105u);
    EXPECT_EQ(PopAll(stack), NewestFirst(reference));
}

// A plain list of states beside it: what the stack holds are the newest states of the list.
TEST(Rewind, RandomPushesAndPopsAreThoseOfAPlainList) {
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        const uint64_t limit = 60000 + random() % 200000;
        const bool resizes = seed % 3 == 0;
        REWIND_STACK stack;
        std::vector<State> reference;
        State state = Noise(random, 1 + random() % 20000);
        for (int step = 0; step < 3000; ++step) {
            if (random() % 100 < 60) {
                if (resizes && random() % 8 == 0) {
                    state.resize(1 + random() % 20000);
                }
                ChangeSome(random, state);
                ASSERT_TRUE(Push(stack, state, limit));
                reference.push_back(state);
                ASSERT_LE(stack.rewindCount, reference.size());
                reference.erase(reference.begin(),
                                reference.end() - static_cast<ptrdiff_t>(stack.rewindCount));
                ASSERT_TRUE(RewindBytes(stack) <= limit || stack.rewindCount == 1);
            } else if (stack.rewindCount > 0) {
                state = reference.back();
                ASSERT_EQ(Head(stack), state) << "seed " << seed << ", step " << step;
                RewindPop(stack);
                reference.pop_back();
            }
            ASSERT_EQ(stack.rewindCount, reference.size());
        }
        EXPECT_EQ(PopAll(stack), NewestFirst(reference)) << seed;
    }
}

// States of random bytes cannot be packed, so a limit of ten of them holds ten less the head's buffers.
TEST(Rewind, OldestGoesWhenTheLimitIsReached) {
    constexpr uint64_t kLimit = 10 * kNoiseBytes;
    std::mt19937 random(1);
    REWIND_STACK stack;
    std::vector<State> reference;
    for (int i = 0; i < 40; ++i) {
        reference.push_back(Noise(random, kNoiseBytes));
        ASSERT_TRUE(Push(stack, reference.back(), kLimit));
        EXPECT_LE(RewindBytes(stack), kLimit);
    }
    // The head, two buffers of a state's size, and six states; a seventh is some bytes too large.
    EXPECT_EQ(stack.rewindCount, 7u);
    reference.erase(reference.begin(), reference.end() - 7);
    EXPECT_EQ(PopAll(stack), NewestFirst(reference));
}

TEST(Rewind, ASmallerLimitHoldsFromTheNextPush) {
    std::mt19937 random(2);
    REWIND_STACK stack;
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(Push(stack, Noise(random, kNoiseBytes), 100 * kNoiseBytes));
    }
    EXPECT_EQ(stack.rewindCount, 40u);
    const State last = Noise(random, kNoiseBytes);
    ASSERT_TRUE(Push(stack, last, 10 * kNoiseBytes));
    EXPECT_EQ(stack.rewindCount, 7u);
    EXPECT_LE(RewindBytes(stack), 10 * kNoiseBytes);
    EXPECT_EQ(Head(stack), last);
}

TEST(Rewind, AStateAboveTheLimitIsKeptAlone) {
    REWIND_STACK stack;
    ASSERT_TRUE(Push(stack, Filled(1, 200), 100));
    ASSERT_TRUE(Push(stack, Filled(2, 200), 100));
    EXPECT_EQ(PopAll(stack), std::vector<State>{Filled(2, 200)});
}

// A frame of a Mega Drive changes some thousand of its 150,000 bytes.
TEST(Rewind, WhatDoesNotChangeTakesNoMemory) {
    std::mt19937 random(9);
    REWIND_STACK stack;
    State state = Noise(random, 150000);
    for (int frame = 0; frame < 600; ++frame) {
        for (int i = 0; i < 1000; ++i) {
            state[40000 + random() % 4000] = static_cast<uint8_t>(random());
        }
        ASSERT_TRUE(Push(stack, state));
    }
    EXPECT_EQ(stack.rewindCount, 600u);
    EXPECT_LT(RewindBytes(stack), 600u * 5000); // 90 million bytes as they are
}

TEST(Rewind, MemoryInUseIsThatOfItsBlocks) {
    REWIND_STACK stack;
    EXPECT_EQ(RewindBytes(stack), 0u);
    ASSERT_TRUE(Push(stack, Filled(1, 1000)));
    uint64_t expected = 1000 + stack.changes.BufferBytes() + stack.packed.capacity();
    EXPECT_EQ(RewindBytes(stack), expected);
    ASSERT_TRUE(Push(stack, Filled(2, 1000)));
    for (const PACKED_STATE& state : stack.older) {
        expected += (state.packedBytes + 15u) / 16 * 16 + 16 + sizeof(PACKED_STATE);
    }
    EXPECT_EQ(RewindBytes(stack), expected);
}

// At whichever allocation of a push the memory ends, the stack is as before, and takes the state later.
TEST(Rewind, APushWithoutMemoryIsRefusedAndChangesNothing) {
    std::mt19937 random(4);
    const std::vector<State> pushed = {Noise(random, 3000), Noise(random, 3000),
                                       Noise(random, 70000), Noise(random, 2000)};
    for (size_t refused = 0; refused < pushed.size(); ++refused) {
        for (size_t allocations = 0;; ++allocations) {
            ASSERT_LT(allocations, 100u);
            REWIND_STACK stack;
            for (size_t i = 0; i < refused; ++i) {
                ASSERT_TRUE(Push(stack, pushed[i]));
            }
            bool taken = false;
            {
                StateMachine machine(pushed[refused]);
                const AllocationLimit limit(allocations);
                taken = RewindPush(stack, machine, kMost);
            }
            EXPECT_EQ(stack.rewindCount, refused + (taken ? 1 : 0));
            for (size_t i = taken ? refused + 1 : refused; i < pushed.size(); ++i) {
                ASSERT_TRUE(Push(stack, pushed[i]));
            }
            EXPECT_EQ(PopAll(stack), NewestFirst(pushed)) << refused << ", " << allocations;
            if (taken) {
                EXPECT_GT(allocations, 0u);
                break;
            }
        }
    }
}

// What the machine has written by then is taken back.
TEST(Rewind, AMachineWithoutMemoryInTheMiddleOfAStateChangesNothing) {
    std::mt19937 random(8);
    const State first = Noise(random, 3000);
    for (const size_t size : {3000u, 9000u, 500u}) {
        REWIND_STACK stack;
        const State second = Noise(random, size);
        StateMachine machine(second);
        machine.refusesMemory = true;
        EXPECT_FALSE(RewindPush(stack, machine, kMost));
        EXPECT_EQ(stack.rewindHead, nullptr);
        ASSERT_TRUE(Push(stack, first));
        EXPECT_FALSE(RewindPush(stack, machine, kMost));
        EXPECT_EQ(stack.rewindCount, 1u);
        EXPECT_EQ(Head(stack), first);
        ASSERT_TRUE(Push(stack, second));
        EXPECT_EQ(PopAll(stack), (std::vector<State>{second, first}));
    }
}

// The first state makes room for those after it; each of them needs the block that keeps its changes.
TEST(Rewind, AFrameAllocatesItsPackedChangesOnly) {
    std::mt19937 random(10);
    REWIND_STACK stack;
    State state = Noise(random, 50000);
    ASSERT_TRUE(Push(stack, state));
    for (int frame = 0; frame < 100; ++frame) {
        ChangeSome(random, state);
        const size_t before = AllocationsSoFar();
        ASSERT_TRUE(Push(stack, state));
        EXPECT_LE(AllocationsSoFar() - before, 2u); // a block of the deque now and then
    }
}

// Or a rewind could fail in the middle.
TEST(Rewind, StepsBackAllocateNothing) {
    std::mt19937 random(6);
    REWIND_STACK stack;
    for (const size_t size : {4000u, 90000u, 100u, 5000u}) {
        ASSERT_TRUE(Push(stack, Noise(random, size)));
    }
    while (stack.rewindCount > 0) {
        const size_t before = AllocationsSoFar();
        RewindPop(stack);
        EXPECT_EQ(AllocationsSoFar(), before);
    }
}

TEST(Rewind, AnHourOfStatesIsTakenAndFreed) {
    auto stack = std::make_unique<REWIND_STACK>();
    for (uint32_t i = 0; i < 216000; ++i) {
        ASSERT_TRUE(Push(*stack, Filled(static_cast<uint8_t>(i), 1)));
    }
    EXPECT_EQ(stack->rewindCount, 216000u);
    RewindClear(*stack);
    EXPECT_EQ(stack->rewindCount, 0u);
    EXPECT_EQ(RewindBytes(*stack), 0u);
}
