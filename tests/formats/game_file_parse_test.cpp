// Records read from memory, in and out of order, whole and damaged.
#include "formats/game_file.h"
#include "formats/hand_made.h"
#include "formats/packing.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

bool ParseHeader(const Bytes& bytes) {
    CGameFile game;
    const bool parsed = game.Parse(bytes.data(), bytes.size(), false);
    EXPECT_EQ(parsed, game.HeaderParsed());
    return parsed;
}

bool ParseWhole(const Bytes& bytes) {
    CGameFile game;
    const bool parsed = game.Parse(bytes.data(), bytes.size(), true);
    EXPECT_EQ(parsed, game.DataUnpacked());
    return parsed;
}

const Bytes kBody = PackImage(Text("sixteen bytes..."));

Bytes FileWithBody(size_t rawSize, const Bytes& body) {
    return HandGame(5, 88, rawSize, body.size()) + body;
}

} // namespace

TEST(GameFileParse, HeaderAloneIsAGameWithoutNames) {
    const Bytes bytes = HandGame(5, 88);
    CGameFile game;
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    EXPECT_EQ(game.NameCount(), 0u);
    EXPECT_EQ(game.RomCount(), 0u);
    EXPECT_FALSE(game.DataUnpacked());
}

TEST(GameFileParse, EmptyAndTinyInputIsRefused) {
    EXPECT_FALSE(ParseHeader({}));
    EXPECT_FALSE(ParseHeader(Text("GAM")));
    EXPECT_FALSE(ParseHeader(Text("GAME")));
    EXPECT_FALSE(ParseHeader(Slice(HandGame(5, 88), 0, 87)));
    EXPECT_FALSE(ParseHeader(Text("GADA")));
    CGameFile game;
    EXPECT_FALSE(game.Parse(nullptr, 0, true));
}

TEST(GameFileParse, UnknownTagIsRefused) {
    EXPECT_FALSE(ParseHeader(Text("gAME") + Bytes(84)));
    EXPECT_FALSE(ParseHeader(HandGame(5, 92) + Text("NAM0")));
}

TEST(GameFileParse, SecondHeaderIsRefused) {
    EXPECT_FALSE(ParseHeader(HandGame(5, 176) + HandGame(5, 176)));
}

TEST(GameFileParse, SecondGadaIsRefused) {
    EXPECT_FALSE(ParseHeader(HandGada("a") + HandGada("b") + HandGame(5, 88)));
}

TEST(GameFileParse, RecordsBeforeTheHeaderAreRefused) {
    for (const Bytes& record :
         {HandName("n", {}), HandRom("r", 1), HandMachine("GDF0", 4), HandMachine("SMS0", 24),
          HandMachine("GAG0", 23), HandMachine("ARC0", 16)}) {
        EXPECT_FALSE(ParseHeader(record + HandGame(5, 88 + record.size())));
    }
}

TEST(GameFileParse, GadaCountsBesideTheHeaderSize) {
    const Bytes bytes = HandGada("set") + HandGame(6, 88);
    CGameFile game;
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    EXPECT_EQ(game.GadaText(), "set");
    EXPECT_EQ(game.Header().headerSize, 88u);
    // Also after the header, if more records follow.
    EXPECT_TRUE(ParseHeader(HandGame(6, 88 + 80) + HandGada("set") + HandRom("r", 1)));
}

TEST(GameFileParse, RecordsMayComeInAnyOrderAfterTheHeader) {
    const size_t headerSize = 88 + 368 + 2 * 80 + 16;
    const Bytes bytes = HandGame(6, headerSize) + HandRom("x", 1) + HandMachine("ARC0", 16) +
                        HandName("n", {1}) + HandRom("y", 2);
    CGameFile game;
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    EXPECT_EQ(game.Serialise(false), HandGame(6, headerSize) + HandName("n", {1}) +
                                         HandRom("x", 1) + HandRom("y", 2) +
                                         HandMachine("ARC0", 16));
}

TEST(GameFileParse, RecordsStopExactlyAtTheHeaderSize) {
    const Bytes records = HandName("n", {}) + HandRom("r", 1);
    EXPECT_TRUE(ParseHeader(HandGame(5, 88 + 448) + records + Text("NAME, cut off")));
    EXPECT_FALSE(ParseHeader(HandGame(5, 88 + 447) + records));
    EXPECT_FALSE(ParseHeader(HandGame(5, 88 + 449) + records));
    EXPECT_FALSE(ParseHeader(HandGame(5, 0)));
    EXPECT_FALSE(ParseHeader(HandGame(5, 87)));
    EXPECT_FALSE(ParseHeader(HandGame(5, 0xFFFFFFFF) + records));
}

TEST(GameFileParse, RecordThatFitsItsTagButNotTheInputIsRefused) {
    const std::tuple<uint16_t, Bytes> rows[] = {
        {5, HandName("n",       {})},
        {5, HandRom("r",        1) },
        {1, HandMachine("SMS0", 24)},
        {2, HandMachine("GAG0", 23)},
        {6, HandMachine("ARC0", 16)},
    };
    for (const auto& [system, record] : rows) {
        const Bytes whole = HandGame(system, 88 + record.size()) + record;
        EXPECT_TRUE(ParseHeader(whole));
        for (size_t length = 0; length < whole.size(); ++length) {
            EXPECT_FALSE(ParseHeader(Slice(whole, 0, length))) << length;
        }
    }
}

TEST(GameFileParse, MachineRecordsLengthComesFromTheSystem) {
    // "SMS0" in an arcade file takes 16 bytes.
    EXPECT_TRUE(ParseHeader(HandGame(6, 88 + 16) + HandMachine("SMS0", 16)));
    EXPECT_FALSE(ParseHeader(HandGame(6, 88 + 24) + HandMachine("SMS0", 24)));
    EXPECT_TRUE(ParseHeader(HandGame(4, 88 + 4) + HandMachine("ARC0", 4)));
}

TEST(GameFileParse, RecordOfNoLengthIsRefused) {
    // A system without machine records has no length for them: nothing would ever be consumed.
    EXPECT_FALSE(ParseHeader(HandGame(3, 200) + HandMachine("SMS0", 112)));
    EXPECT_FALSE(ParseHeader(HandGame(0, 200) + HandMachine("ARC0", 112)));
}

TEST(GameFileParse, ShortDefaultRecordOfAGameGearFileGrowsWhenRewritten) {
    const Bytes bytes = HandGame(2, 88 + 4) + Text("GDF0");
    CGameFile game;
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    EXPECT_EQ(game.Header().headerSize, 92u);
    EXPECT_EQ(game.HeaderSize(false), 88u + 23);
    Bytes record(23);
    PutText(record, 0, "GAG0");
    PutInteger(record, 20, 2, 1);
    record[22] = 1;
    EXPECT_EQ(game.Serialise(false), HandGame(2, 88 + 23) + record);
}

TEST(GameFileParse, ShortDefaultRecordOfOtherSystemsIsItsTag) {
    for (const uint16_t system : {uint16_t{4}, uint16_t{5}}) {
        const Bytes bytes = HandGame(system, 88 + 4) + Text("GDF0");
        CGameFile game;
        ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
        EXPECT_EQ(game.Serialise(false), bytes);
    }
}

TEST(GameFileParse, ShortDefaultRecordInALongRecordsPlaceCanBeReadBackWhenRewritten) {
    const Bytes bytes = HandGame(1, 88 + 4) + Text("GDF0");
    CGameFile game;
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    ASSERT_TRUE(game.GetMachineRecord(0, record, length));
    EXPECT_EQ(Bytes(record, record + length), Text("GDF0") + Bytes(20));
    EXPECT_EQ(game.Serialise(false), HandGame(1, 88 + 24) + Text("SMS0") + Bytes(20));
}

TEST(GameFileParse, UnpackNeedsExactlyThePackedBytes) {
    const Bytes whole = FileWithBody(16, kBody);
    EXPECT_TRUE(ParseWhole(whole));
    EXPECT_TRUE(ParseHeader(whole));
    EXPECT_FALSE(ParseWhole(whole + Bytes(1)));
    EXPECT_TRUE(ParseHeader(whole + Bytes(1)));
    EXPECT_FALSE(ParseWhole(Slice(whole, 0, whole.size() - 1)));
    EXPECT_TRUE(ParseHeader(Slice(whole, 0, whole.size() - 1)));
}

TEST(GameFileParse, UnpacksTheImage) {
    const Bytes whole = FileWithBody(16, kBody);
    CGameFile game;
    ASSERT_TRUE(game.Parse(whole.data(), whole.size(), true));
    EXPECT_EQ(Bytes(game.Data().begin(), game.Data().end()), Text("sixteen bytes..."));
}

TEST(GameFileParse, DamagedBodyShowsOnlyInWhatComesOut) {
    Bytes body = kBody;
    body[10] ^= 0xFF;
    Bytes whole = FileWithBody(16, body);
    CGameFile game;
    ASSERT_TRUE(game.Parse(whole.data(), whole.size(), true));
    EXPECT_EQ(game.Data().size(), 16u);
    EXPECT_NE(Bytes(game.Data().begin(), game.Data().end()), Text("sixteen bytes..."));
    // Invalid properties: nothing is unpacked.
    body[0] = 255;
    whole = FileWithBody(16, body);
    ASSERT_TRUE(game.Parse(whole.data(), whole.size(), true));
    EXPECT_EQ(Bytes(game.Data().begin(), game.Data().end()), Bytes(16));
}

TEST(GameFileParse, BodyShorterThanItsPropertiesReadsAsZero) {
    for (size_t length = 1; length < 5; ++length) {
        const Bytes whole = FileWithBody(16, Slice(kBody, 0, length));
        CGameFile game;
        ASSERT_TRUE(game.Parse(whole.data(), whole.size(), true)) << length;
        EXPECT_EQ(Bytes(game.Data().begin(), game.Data().end()), Bytes(16)) << length;
    }
    EXPECT_FALSE(ParseWhole(FileWithBody(16, {})));
    EXPECT_TRUE(ParseWhole(FileWithBody(0, {})));
}

TEST(GameFileParse, ForgedRawSizeIsRefused) {
    const Bytes body = kBody + Bytes(1000);
    EXPECT_TRUE(ParseWhole(FileWithBody(LargestUnpackedSize(body.size()), body)));
    EXPECT_FALSE(ParseWhole(FileWithBody(LargestUnpackedSize(body.size()) + 1, body)));
    EXPECT_FALSE(ParseWhole(FileWithBody(0xFFFFFFFF, body)));
    EXPECT_FALSE(ParseWhole(FileWithBody(0xFFFFFFFF, Bytes(1 << 20))));
    EXPECT_TRUE(ParseHeader(FileWithBody(0xFFFFFFFF, body)));
}

TEST(GameFileParse, ParseEmptiesWhatWasThereBefore) {
    const Bytes whole = FileWithBody(16, kBody);
    CGameFile game;
    ASSERT_TRUE(game.Parse(whole.data(), whole.size(), true));
    EXPECT_FALSE(game.Parse(whole.data(), 3, true));
    EXPECT_FALSE(game.HeaderParsed());
    EXPECT_FALSE(game.DataUnpacked());
    EXPECT_TRUE(game.Data().empty());
}

TEST(GameDatabase, EntriesFollowEachOtherWithoutGaps) {
    const Bytes first = HandGame(5, 88 + 80) + HandRom("a", 1, 1);
    const Bytes second =
        HandGada("set") + HandGame(6, 88 + 368 + 16) + HandName("n", {}) + HandMachine("ARC0", 16);
    const Bytes third = HandGame(5, 88);
    const Bytes all = first + second + third;
    std::vector<CGameFile> entries = ParseDatabase(all.data(), all.size());
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].Serialise(true), first);
    EXPECT_EQ(entries[1].Serialise(true), second);
    EXPECT_EQ(entries[2].Serialise(true), third);
}

TEST(GameDatabase, NoBytesAreNoEntries) {
    EXPECT_TRUE(ParseDatabase(nullptr, 0).empty());
}

TEST(GameDatabase, EntriesAfterShortDefaultRecordsAreFound) {
    const Bytes entry = HandGame(2, 88 + 4) + Text("GDF0");
    const Bytes all = entry + entry + entry;
    EXPECT_EQ(ParseDatabase(all.data(), all.size()).size(), 3u);
}

TEST(GameDatabase, StopsAtTheFirstBytesThatAreNoEntry) {
    const Bytes entry = HandGame(5, 88);
    Bytes all = entry + Bytes(500) + entry;
    EXPECT_EQ(ParseDatabase(all.data(), all.size()).size(), 1u);
    all = entry + HandGame(5, 0) + entry;
    EXPECT_EQ(ParseDatabase(all.data(), all.size()).size(), 1u);
    all = entry + Slice(entry, 0, 50);
    EXPECT_EQ(ParseDatabase(all.data(), all.size()).size(), 1u);
}
