#include "machine/state_changes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Noise(std::mt19937& random, size_t size) {
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<uint8_t>(random()); });
    return bytes;
}

// Writes `newer` over the block in pieces of random kinds.
void Write(std::mt19937& random, StateOut out, const Bytes& newer) {
    for (size_t at = 0; at < newer.size();) {
        const size_t left = newer.size() - at;
        if (left >= 4 && random() % 2 == 0) {
            out.PutScalar(LoadLittleEndian<uint32_t>(newer.data() + at));
            at += 4;
        } else {
            const size_t size = 1 + random() % std::min<size_t>(left, 3000);
            out.PutBytes(newer.data() + at, size);
            at += size;
        }
    }
}

Bytes Noted(const StateChanges& changes) {
    return {changes.Noted().begin(), changes.Noted().end()};
}

} // namespace

TEST(StateChanges, WithoutThemAStateIsWrittenAsItIs) {
    Bytes block(8, 0xEE);
    StateOut out(block.data());
    out.PutScalar(uint16_t{0x1234});
    out.PutBytes("abc", 3);
    EXPECT_EQ(out.At(), block.data() + 5);
    EXPECT_EQ(block, (Bytes{0x34, 0x12, 'a', 'b', 'c', 0xEE, 0xEE, 0xEE}));
}

// The form that the header describes: a byte after 2 equal ones, and 3 after 20.
TEST(StateChanges, AreRunsOfXoredBytes) {
    Bytes block(30, 0x0F);
    StateChanges changes;
    changes.Reserve(block.size());
    StateOut out = changes.WriteOver(block.data());
    const auto put = [&](std::initializer_list<int> bytes) {
        for (const int byte : bytes) {
            out.PutScalar(static_cast<uint8_t>(byte));
        }
    };
    const Bytes same(20, 0x0F);
    put({0x0F, 0x0F, 0xFF});
    out.PutBytes(same.data(), same.size());
    put({0x00, 0x0E, 0x0D});
    const uint32_t expected[] = {2, 1, 20, 3};
    const auto* const numbers = reinterpret_cast<const uint8_t*>(expected);
    Bytes form(numbers, numbers + 8);
    form.push_back(0xF0);
    form.insert(form.end(), numbers + 8, numbers + 16);
    form.insert(form.end(), {0x0F, 0x01, 0x02});
    EXPECT_EQ(Noted(changes), form);
}

TEST(StateChanges, AShortGapIsPartOfARun) {
    Bytes block(20, 1);
    Bytes newer = block;
    newer[0] = newer[9] = 3;
    StateChanges changes;
    changes.Reserve(block.size());
    StateOut out = changes.WriteOver(block.data());
    for (const uint8_t byte : newer) {
        out.PutScalar(byte);
    }
    Bytes form{0, 0, 0, 0, 10, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 2};
    if constexpr (std::endian::native == std::endian::big) {
        std::reverse(form.begin() + 4, form.begin() + 8);
    }
    EXPECT_EQ(Noted(changes), form);
}

TEST(StateChanges, AnEqualStateHasNone) {
    std::mt19937 random(1);
    const Bytes state = Noise(random, 5000);
    Bytes block = state;
    StateChanges changes;
    changes.Reserve(block.size());
    Write(random, changes.WriteOver(block.data()), state);
    EXPECT_TRUE(changes.Noted().empty());
    EXPECT_EQ(block, state);
}

// Every other place of the longest sequence of runs, and any other: the changes are never longer than was reserved.
TEST(StateChanges, FitAndLeadBackWhateverChanges) {
    std::mt19937 random(2);
    for (int round = 0; round < 2000; ++round) {
        const Bytes older = Noise(random, 1 + random() % 5000);
        Bytes newer = older;
        newer.resize(1 + random() % older.size());
        const size_t distance = 1 + random() % 40;
        for (size_t at = random() % distance; at < newer.size(); at += distance) {
            newer[at] = static_cast<uint8_t>(random());
        }
        Bytes block = older;
        StateChanges changes;
        changes.Reserve(block.size());
        Write(random, changes.WriteOver(block.data()), newer);
        ASSERT_TRUE(std::equal(newer.begin(), newer.end(), block.begin()));
        ASSERT_TRUE(std::equal(older.begin() + static_cast<ptrdiff_t>(newer.size()), older.end(),
                               block.begin() + static_cast<ptrdiff_t>(newer.size())));
        ASSERT_LE(changes.Noted().size(), StateChanges::MostBytes(block.size()));
        TakeBackChanges(changes.Noted(), block.data());
        ASSERT_EQ(block, older);
    }
}
