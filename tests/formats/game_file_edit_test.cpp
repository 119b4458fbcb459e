// Changes to the records of database entries.
#include "formats/game_file.h"
#include "formats/hand_made.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// Three pieces, two names, Master System records.
CGameFile Entry(std::initializer_list<uint8_t> firstList = {0, 1, 2},
                std::initializer_list<uint8_t> secondList = {2}) {
    const size_t headerSize = 88 + 2 * 368 + 3 * 80 + 2 * 24;
    Bytes secondMachine = HandMachine("SMS0", 24);
    secondMachine[20] = 77;
    const Bytes bytes = HandGame(1, headerSize, 100 + 20 + 3) + HandName("First", firstList) +
                        HandName("Second", secondList) + HandRom("a", 100, 1) +
                        HandRom("b", 20, 2) + HandRom("c", 3, 3) + HandMachine("SMS0", 24) +
                        secondMachine;
    CGameFile game;
    EXPECT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    return game;
}

Bytes RomList(const CGameFile& game, uint32_t index, size_t length) {
    NAME_RECORD name{};
    EXPECT_TRUE(game.GetRawName(index, name));
    return {name.romList, name.romList + length};
}

} // namespace

TEST(GameFileEdit, OnlyTheGivenTextsChange) {
    CGameFile game = Entry();
    NAME_TEXTS texts;
    texts.altTitle = "Alt";
    texts.regions = "EU";
    game.SetNameText(1, texts);
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(1, view));
    EXPECT_EQ(view.title, "Second");
    EXPECT_EQ(view.altTitle, "Alt");
    EXPECT_EQ(view.regions, "EU");
    EXPECT_EQ(view.contentKey, "");
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.altTitle, "");
}

TEST(GameFileEdit, TextsAreCutAtTheirFieldsAndNotEnded) {
    CGameFile game = Entry();
    const std::string longText(200, 'x');
    const NAME_TEXTS texts{longText.c_str(), longText.c_str(), longText.c_str(), longText.c_str(),
                           longText.c_str()};
    game.SetNameText(0, texts);
    NAME_RECORD name{};
    ASSERT_TRUE(game.GetRawName(0, name));
    const Bytes bytes(reinterpret_cast<const uint8_t*>(&name),
                      reinterpret_cast<const uint8_t*>(&name) + sizeof name);
    EXPECT_EQ(Slice(bytes, 16, 288), Text(std::string(288, 'x')));
    EXPECT_EQ(name.romList[0], 0);
}

TEST(GameFileEdit, ShorterTextLeavesNothingOfTheOldOne) {
    CGameFile game = Entry();
    NAME_TEXTS texts;
    texts.title = "F";
    game.SetNameText(0, texts);
    EXPECT_EQ(Slice(game.Serialise(false), 88 + 16, 8), Text("F") + Bytes(7));
}

TEST(GameFileEdit, NameBytesTakeFourBytesAndTheMachineRecord) {
    CGameFile game = Entry();
    NAME_RECORD pattern{};
    std::memset(&pattern, 0x55, sizeof pattern);
    pattern.reserved4 = 1;
    pattern.playTypes = 2;
    pattern.year = 3;
    pattern.status = 4;
    MACHINE_RECORD machine{};
    std::memset(machine.bytes, 0x66, sizeof machine.bytes);
    std::memcpy(machine.bytes, "SMS0", 4);
    game.SetNameBytes(1, pattern, machine);
    Bytes expected = HandName("Second", {2});
    PutBytes(expected, 4, {1, 2, 3, 4});
    const Bytes bytes = game.Serialise(false);
    EXPECT_EQ(Slice(bytes, 88, 368), HandName("First", {0, 1, 2}));
    EXPECT_EQ(Slice(bytes, 88 + 368, 368), expected);
    EXPECT_EQ(Slice(bytes, bytes.size() - 48, 24), HandMachine("SMS0", 24));
    EXPECT_EQ(Slice(bytes, bytes.size() - 24, 24), Text("SMS0") + Bytes(20, 0x66));
}

TEST(GameFileEdit, RomNameIsClearedAndCutTo31Bytes) {
    CGameFile game = Entry();
    game.RenameRom(1, std::string(40, 'n'));
    const size_t field = 88 + 2 * 368 + 80 + 16;
    EXPECT_EQ(Slice(game.Serialise(false), field, 32), Text(std::string(31, 'n')) + Bytes(1));
    game.RenameRom(1, "m");
    EXPECT_EQ(Slice(game.Serialise(false), field, 32), Text("m") + Bytes(31));
}

TEST(GameFileEdit, UnlinkShiftsTheRestDown) {
    CGameFile game = Entry();
    game.UnlinkRom(0, 1, false);
    EXPECT_EQ(RomList(game, 0, 4), (Bytes{0, 2, 255, 255}));
    EXPECT_EQ(RomList(game, 1, 2), (Bytes{2, 255}));
}

TEST(GameFileEdit, UnlinkRenumbersWhatIsAboveButNot255) {
    CGameFile game = Entry();
    game.UnlinkRom(0, 0, true);
    EXPECT_EQ(RomList(game, 0, 64), (Bytes{0, 1} + Bytes(62, 255)));
}

TEST(GameFileEdit, UnlinkRenumbersAListThatDoesNotHoldThePiece) {
    CGameFile game = Entry();
    game.UnlinkRom(1, 0, true);
    EXPECT_EQ(RomList(game, 1, 2), (Bytes{1, 255}));
}

TEST(GameFileEdit, UnlinkTakesEveryEntryOfThePiece) {
    CGameFile game = Entry({1, 0, 1, 2});
    game.UnlinkRom(0, 1, true);
    EXPECT_EQ(RomList(game, 0, 4), (Bytes{0, 1, 255, 255}));
}

TEST(GameFileEdit, UnlinkOfAFullListFreesItsLastSlot) {
    CGameFile game = Entry();
    while (game.NameRomAt(1, 63) == -1) {
        ASSERT_TRUE(game.LinkRom(1, 1));
    }
    game.UnlinkRom(1, 2, false);
    EXPECT_EQ(RomList(game, 1, 64), Bytes(63, 1) + Bytes{255});
}

TEST(GameFileEdit, RemovedRomIsGoneFromListsSizesAndRecords) {
    CGameFile game = Entry();
    game.RemoveRom(1);
    const size_t headerSize = 88 + 2 * 368 + 2 * 80 + 2 * 24;
    const Bytes bytes = game.Serialise(false);
    EXPECT_EQ(Slice(bytes, 0, 88), HandGame(1, headerSize, 103));
    EXPECT_EQ(RomList(game, 0, 3), (Bytes{0, 1, 255}));
    EXPECT_EQ(RomList(game, 1, 2), (Bytes{1, 255}));
    EXPECT_EQ(Slice(bytes, 88 + 2 * 368, 160), HandRom("a", 100, 1) + HandRom("c", 3, 3));
}

TEST(GameFileEdit, RemovedNameTakesItsMachineRecordAlong) {
    CGameFile game = Entry();
    game.RemoveName(0);
    EXPECT_EQ(game.NameCount(), 1u);
    EXPECT_EQ(game.MachineRecordCount(), 1u);
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.title, "Second");
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    ASSERT_TRUE(game.GetMachineRecord(0, record, length));
    EXPECT_EQ(record[20], 77);
}

TEST(GameFileEdit, IndicesOutOfRangeChangeNothing) {
    CGameFile game = Entry();
    const Bytes before = game.Serialise(false);
    NAME_TEXTS texts;
    texts.title = "no";
    game.SetNameText(2, texts);
    game.SetNameBytes(2, {}, {});
    game.RenameRom(3, "no");
    game.UnlinkRom(2, 0, true);
    game.UnlinkRom(0, 3, true);
    game.UnlinkRom(0, 255, true);
    game.RemoveRom(3);
    game.RemoveName(2);
    EXPECT_EQ(game.Serialise(false), before);
}
