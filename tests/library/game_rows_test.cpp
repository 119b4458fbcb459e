#include "formats/hand_made.h"
#include "library/game_database.h"
#include "library/game_rows.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

CGameFile Game(const Bytes& bytes) {
    CGameFile game;
    EXPECT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    return game;
}

// Two names; the second one's first piece is the second piece.
Bytes TwoNames(uint16_t system = 4) {
    Bytes first = HandName("First", {0, 1});
    first[5] = 3;
    first[6] = 91;
    first[7] = 0x81; // class 1; bit 7 is ignored
    PutText(first, 208, "EU");
    PutText(first, 216, "key one");
    PutText(first, 260, "key two");
    const Bytes body = first + HandName("Second", {1}) + HandRom("a", 16, 7) + HandRom("b", 16, 8) +
                       HandMachine("GDF0", 4) + HandMachine("GDF0", 4);
    return HandGame(system, 88 + body.size(), 32) + body;
}

CGameDatabase Knowing(uint8_t hashByte) {
    const Bytes body = HandName("Known", {0}) + HandRom("x", 16, hashByte) + HandMachine("GDF0", 4);
    std::vector<CGameFile> entries;
    entries.push_back(Game(HandGame(4, 88 + body.size(), 16) + body));
    return CGameDatabase(std::move(entries));
}

} // namespace

TEST(GameRows, FlagsFollowTheLettersInTheirOrder) {
    using Images = std::array<int32_t, 3>;
    EXPECT_EQ(FlagImages(L""), (Images{-1, -1, -1}));
    EXPECT_EQ(FlagImages(L"E"), (Images{9, -1, -1}));
    EXPECT_EQ(FlagImages(L"UB"), (Images{10, 11, -1}));
    EXPECT_EQ(FlagImages(L"JKE"), (Images{12, 13, 9}));
    EXPECT_EQ(FlagImages(L"x-Ej U"), (Images{9, 10, -1})) << "other characters are passed over";
    EXPECT_EQ(FlagImages(L"EUBJK"), (Images{9, 10, 11})) << "a fourth has no slot";
}

TEST(GameRows, StatusColourFollowsTheClassAndTheDatabase) {
    const uint32_t unknown[] = {0, 1, 2, 2, 4, 3, 0, 0};
    const uint32_t known[] = {0, 5, 6, 6, 8, 7, 0, 0};
    for (uint8_t status = 0; status < 8; ++status) {
        for (const int ignored : {0x00, 0x80}) {
            const auto byte = static_cast<uint8_t>(status | ignored);
            EXPECT_EQ(StatusColour(byte, false), unknown[status]) << int{byte};
            EXPECT_EQ(StatusColour(byte, true), known[status]) << int{byte};
        }
    }
    EXPECT_EQ(StatusColour(127, true), 0u);
}

TEST(GameRows, RowHasTheFieldsOfItsName) {
    GameListRow row;
    ASSERT_TRUE(MakeRow("some/file.game", Game(TwoNames()), 0, CGameDatabase(), row));
    EXPECT_FALSE(row.known);
    EXPECT_EQ(row.title, L"First");
    EXPECT_EQ(row.path, "some/file.game");
    EXPECT_EQ(row.contentKey, L"key one");
    EXPECT_EQ(row.contentKey2, L"key two");
    EXPECT_EQ(row.regions, L"EU");
    EXPECT_EQ(row.flagImages, (std::array<int32_t, 3>{9, 10, -1}));
    EXPECT_EQ(row.year, 1991);
    EXPECT_EQ(row.statusColour, 1u);
    EXPECT_EQ(row.nameIndex, 0u);
    EXPECT_EQ(row.playTypes, 3);
}

TEST(GameRows, EndAfterTheLastName) {
    const CGameFile game = Game(TwoNames());
    GameListRow row;
    ASSERT_TRUE(MakeRow("x", game, 1, CGameDatabase(), row));
    EXPECT_EQ(row.title, L"Second");
    EXPECT_EQ(row.year, 1900);
    EXPECT_EQ(row.nameIndex, 1u);
    EXPECT_FALSE(MakeRow("x", game, 2, CGameDatabase(), row));
    EXPECT_FALSE(MakeRow("x", Game(HandGame(4, 88)), 0, CGameDatabase(), row));
}

TEST(GameRows, KnownByTheFirstPieceOfTheName) {
    const CGameFile game = Game(TwoNames());
    GameListRow row;
    const CGameDatabase first = Knowing(7);
    const CGameDatabase second = Knowing(8);
    ASSERT_TRUE(MakeRow("x", game, 0, first, row));
    EXPECT_TRUE(row.known);
    EXPECT_EQ(row.statusColour, 5u);
    ASSERT_TRUE(MakeRow("x", game, 1, first, row));
    EXPECT_FALSE(row.known);
    ASSERT_TRUE(MakeRow("x", game, 0, second, row));
    EXPECT_FALSE(row.known) << "its second piece does not count";
    ASSERT_TRUE(MakeRow("x", game, 1, second, row));
    EXPECT_TRUE(row.known);
}

TEST(GameRows, NameWithoutPiecesIsUnknown) {
    const Bytes body = HandName("None", {}) + HandName("Beyond", {9}) + HandRom("a", 16, 7) +
                       HandMachine("GDF0", 4) + HandMachine("GDF0", 4);
    const CGameFile game = Game(HandGame(4, 88 + body.size(), 16) + body);
    GameListRow row;
    const CGameDatabase database = Knowing(7);
    ASSERT_TRUE(MakeRow("x", game, 0, database, row));
    EXPECT_FALSE(row.known);
    ASSERT_TRUE(MakeRow("x", game, 1, database, row));
    EXPECT_FALSE(row.known);
}

TEST(GameRows, ArcadeGameIsKnownByItsRecords) {
    Bytes bytes = HandGame(6, 88 + 368 + 80 + 16, 16) + HandName("Set", {0}) + HandRom("a", 16, 7) +
                  HandMachine("ARC0", 16);
    std::fill(bytes.begin() + 56, bytes.begin() + 88, uint8_t{0x55});
    std::vector<CGameFile> entries;
    entries.push_back(Game(bytes));
    const CGameDatabase database(std::move(entries));
    GameListRow row;
    ASSERT_TRUE(MakeRow("x", Game(bytes), 0, database, row));
    EXPECT_TRUE(row.known);
    bytes[56] = 0x54;
    ASSERT_TRUE(MakeRow("x", Game(bytes), 0, database, row));
    EXPECT_FALSE(row.known) << "though its piece is in the database";
}
