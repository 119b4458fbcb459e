#include "machine/state_piece.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

namespace {

enum class Mode : uint8_t { kIdle = 0, kBusy = 3 };

struct RECORD {
    uint8_t byte = 0x11;
    uint16_t word = 0x2233;
    int32_t number = -2;
    uint64_t wide = 0x0102030405060708;
    bool on = true;
    Mode mode = Mode::kBusy;
    float real = 1.0f;
    uint16_t table[2] = {0x4455, 0x6677};
    std::array<bool, 2> flags{false, true};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(byte);
        visit(word);
        visit(number);
        visit(wide);
        visit(on);
        visit(mode);
        visit(real);
        visit(table);
        visit(flags);
    }
};

// By hand: version, size, then every field packed, lowest byte first.
const std::vector<uint8_t> kExpected = {
    1,    32,   0,    0,    0,                      // version, whole size
    0x11,                                           // byte
    0x33, 0x22,                                     // word
    0xFE, 0xFF, 0xFF, 0xFF,                         // number
    0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, // wide
    1,                                              // on
    3,                                              // mode
    0x00, 0x00, 0x80, 0x3F,                         // real
    0x55, 0x44, 0x77, 0x66,                         // table
    0,    1,                                        // flags
};

std::vector<uint8_t> Write(RECORD& record) {
    const auto fields = [&](auto& visit) { record.Fields(visit); };
    std::vector<uint8_t> piece(StatePieceSize(fields));
    EXPECT_EQ(StatePieceWrite(piece.data(), fields).At(), piece.data() + piece.size());
    return piece;
}

uint32_t Read(RECORD& record, const std::vector<uint8_t>& piece) {
    return StatePieceRead(piece.data(), static_cast<uint32_t>(piece.size()),
                          [&](auto& visit) { record.Fields(visit); });
}

RECORD Other() {
    RECORD record;
    record.byte = 0;
    record.word = 0;
    record.number = 0;
    record.wide = 0;
    record.on = false;
    record.mode = Mode::kIdle;
    record.real = 0.0f;
    record.table[0] = record.table[1] = 0;
    record.flags = {true, false};
    return record;
}

} // namespace

TEST(StatePiece, IsVersionSizeAndPackedFields) {
    RECORD record;
    EXPECT_EQ(Write(record), kExpected);
}

TEST(StatePiece, ReadsBackEveryField) {
    RECORD record = Other();
    EXPECT_EQ(Read(record, kExpected), kExpected.size());
    EXPECT_EQ(Write(record), kExpected);
    EXPECT_EQ(record.number, -2);
    EXPECT_EQ(record.mode, Mode::kBusy);
    EXPECT_TRUE(record.on);
}

TEST(StatePiece, TakesItsOwnBytesAndLeavesTheRest) {
    std::vector<uint8_t> blob = kExpected;
    blob.insert(blob.end(), {9, 9, 9});
    RECORD record = Other();
    EXPECT_EQ(Read(record, blob), kExpected.size());
}

TEST(StatePiece, RefusesAnotherVersionAndChangesNothing) {
    std::vector<uint8_t> blob = kExpected;
    blob[0] = 2;
    RECORD record = Other();
    RECORD untouched = Other();
    EXPECT_EQ(Read(record, blob), 0u);
    EXPECT_EQ(Write(record), Write(untouched));
}

TEST(StatePiece, RefusesAnotherSizeAndChangesNothing) {
    for (const int step : {-1, 1}) {
        std::vector<uint8_t> blob = kExpected;
        blob[1] = static_cast<uint8_t>(blob[1] + step);
        blob.push_back(0);
        RECORD record = Other();
        RECORD untouched = Other();
        EXPECT_EQ(Read(record, blob), 0u);
        EXPECT_EQ(Write(record), Write(untouched));
    }
}

TEST(StatePiece, RefusesEveryShorterBlob) {
    for (size_t length = 0; length < kExpected.size(); ++length) {
        const std::vector<uint8_t> blob(kExpected.begin(),
                                        kExpected.begin() + static_cast<ptrdiff_t>(length));
        RECORD record = Other();
        EXPECT_EQ(Read(record, blob), 0u) << length;
    }
}

TEST(StatePiece, AnyByteButZeroIsTrue) {
    std::vector<uint8_t> blob = kExpected;
    blob[20] = 0x80; // `on`
    RECORD record = Other();
    EXPECT_EQ(Read(record, blob), blob.size());
    EXPECT_TRUE(record.on);
    EXPECT_EQ(Write(record), kExpected);
}

TEST(StatePiece, TwoPiecesFollowEachOtherWithoutFraming) {
    RECORD first;
    RECORD second;
    second.byte = 0x77;
    std::vector<uint8_t> blob = Write(first);
    const std::vector<uint8_t> next = Write(second);
    blob.insert(blob.end(), next.begin(), next.end());

    RECORD one = Other();
    RECORD two = Other();
    const uint32_t used = Read(one, blob);
    ASSERT_EQ(used, kExpected.size());
    EXPECT_EQ(Read(two, {blob.begin() + used, blob.end()}), next.size());
    EXPECT_EQ(one.byte, 0x11);
    EXPECT_EQ(two.byte, 0x77);
}

// A piece whose fields have changed reads its present form, and asks for an older one by that one's version.
TEST(StatePiece, APieceMayHaveAVersionOfItsOwn) {
    uint16_t first = 0x1234;
    uint8_t added = 0x56;
    const auto present = [&](auto& visit) {
        visit(first);
        visit(added);
    };
    const auto former = [&](auto& visit) { visit(first); };
    uint8_t bytes[8] = {};
    EXPECT_EQ(StatePieceWrite(bytes, present, 2).At(), bytes + 8);
    EXPECT_EQ(bytes[0], 2);
    EXPECT_EQ(StatePieceRead(bytes, 8, present), 0u) << "not the first version";
    first = added = 0;
    EXPECT_EQ(StatePieceRead(bytes, 8, present, 2), 8u);
    EXPECT_EQ(first, 0x1234);
    EXPECT_EQ(added, 0x56);
    StatePieceWrite(bytes, former);
    EXPECT_EQ(StatePieceRead(bytes, 8, present, 2), 0u);
    EXPECT_EQ(StatePieceRead(bytes, 8, former), 7u);
}
