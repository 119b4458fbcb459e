#include "formats/hand_made.h"
#include "library/game_database.h"

#include <gtest/gtest.h>

#include <map>

namespace {

struct PIECE {
    std::string name;
    Bytes bytes;
};

// An entry of arcade pieces.
Bytes Entry(std::string_view gada, const std::vector<PIECE>& pieces, uint8_t headerHash = 0x11) {
    Bytes roms;
    size_t rawSize = 0;
    for (const PIECE& piece : pieces) {
        Bytes rom = HandRom(piece.name, piece.bytes.size());
        const Sha256Digest hash = Sha256(piece.bytes);
        PutBytes(rom, 48, {hash.begin(), hash.end()});
        roms = roms + rom;
        rawSize += piece.bytes.size();
    }
    const Bytes body = HandName("Title" + std::string(gada), {0}) + roms + HandMachine("ARC0", 16);
    Bytes game = HandGame(6, 88 + body.size(), rawSize) + body;
    std::fill(game.begin() + 56, game.begin() + 88, headerHash);
    return (gada.empty() ? Bytes() : HandGada(gada)) + game;
}

CGameDatabase Database(const Bytes& bytes) {
    return CGameDatabase(ParseDatabase(bytes.data(), bytes.size()));
}

// Files and zip entries that AssembleNextKnown reads.
struct DISK {
    std::map<std::string, Bytes> files;
    std::map<std::pair<std::string, std::wstring>, Bytes> members;

    FileReader Files() {
        return [this](const std::filesystem::path& path, Bytes& bytes) {
            const auto found = files.find(path.string());
            bytes = found == files.end() ? Bytes() : found->second;
            return found != files.end();
        };
    }
    MemberReader Members() {
        return [this](const std::filesystem::path& path, std::wstring_view member, Bytes& bytes) {
            const auto found = members.find({path.string(), std::wstring(member)});
            bytes = found == members.end() ? Bytes() : found->second;
            return found != members.end();
        };
    }
    void Queue(CGameDatabase& database) const {
        for (const auto& [name, bytes] : files) {
            database.QueueFile(name, L"", bytes);
        }
        for (const auto& [name, bytes] : members) {
            database.QueueFile(name.first, name.second, bytes);
        }
    }
};

const Bytes kOne = Text("the first piece");
const Bytes kTwo = Text("the second");
const Bytes kThree = Text("another game's piece");

} // namespace

TEST(GameDatabase, FindsPiecesAndRecordsByTheirHashes) {
    const CGameDatabase database = Database(Entry("one",
                                                  {
                                                      {"a", kOne},
                                                      {"b", kTwo}
    },
                                                  0x11) +
                                            Entry("two", {{"c", kThree}}, 0x22));
    EXPECT_EQ(database.EntryCount(), 2);
    EXPECT_TRUE(database.FindKnownRom(Sha256(kOne)));
    EXPECT_TRUE(database.FindKnownRom(Sha256(kTwo)));
    EXPECT_TRUE(database.FindKnownRom(Sha256(kThree)));
    EXPECT_FALSE(database.FindKnownRom(Sha256(Text("unknown"))));
    Sha256Digest header;
    header.fill(0x22);
    EXPECT_TRUE(database.FindKnownHeader(header));
    header[31] = 0x23;
    EXPECT_FALSE(database.FindKnownHeader(header));
}

TEST(GameDatabase, EmptyOneKnowsNothing) {
    CGameDatabase database;
    EXPECT_FALSE(database.FindKnownRom(Sha256(kOne)));
    EXPECT_FALSE(database.FindKnownHeader({}));
    std::string name;
    Bytes data;
    DISK disk;
    EXPECT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), -1);
}

TEST(GameDatabase, PendingFilesComeBackNewestFirst) {
    CGameDatabase database;
    database.QueueFile("a", L"", kOne);
    database.QueueFile("b", L"member", kTwo);
    EXPECT_EQ(database.QueuedCount(), 2u);
    ASSERT_NE(database.FirstPending(), nullptr);
    EXPECT_EQ(database.FirstPending()->member, L"member");
    EXPECT_EQ(database.FirstPending()->size, kTwo.size());
    EXPECT_EQ(database.FirstPending()->sha256, Sha256(kTwo));
    std::filesystem::path path;
    bool used = true;
    ASSERT_TRUE(database.TakeNextPending(path, used));
    EXPECT_EQ(path, "b");
    EXPECT_FALSE(used);
    ASSERT_TRUE(database.TakeNextPending(path, used));
    EXPECT_EQ(path, "a");
    EXPECT_FALSE(database.TakeNextPending(path, used));
}

TEST(GameDatabase, ManyPendingFilesAreFreed) {
    CGameDatabase database;
    for (int i = 0; i < 300000; ++i) {
        database.QueueHashed("x", L"", 1, {});
    }
    EXPECT_EQ(database.QueuedCount(), 300000u);
    database.ClearPending();
    EXPECT_EQ(database.FirstPending(), nullptr);
    EXPECT_EQ(database.QueuedCount(), 0u);
}

TEST(GameDatabase, AssemblesAnEntryWhosePiecesAreAllThere) {
    CGameDatabase database = Database(Entry("myset", {
                                                         {"a", kOne},
                                                         {"b", kTwo}
    }));
    DISK disk;
    disk.files["file of two"] = kTwo;
    disk.members[{"set.zip", L"One.BIN"}] = kOne;
    disk.Queue(database);
    std::string name;
    Bytes data;
    ASSERT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), 1);
    EXPECT_EQ(name, "myset");
    EXPECT_EQ(database.ProducedCount(), 1u);
    CGameFile game;
    ASSERT_TRUE(game.Parse(data.data(), data.size(), true));
    EXPECT_FALSE(game.HasGada());
    EXPECT_TRUE(std::ranges::equal(game.Data(), kOne + kTwo)) << "in the entry's order";
    EXPECT_EQ(Bytes(game.Header().headerHash, game.Header().headerHash + 32), Bytes(32, 0x11))
        << "as the database has it";
    const size_t headerSize = game.Header().headerSize;
    const Sha256Digest packed = Sha256(Slice(data, headerSize, data.size() - headerSize));
    EXPECT_TRUE(std::ranges::equal(game.Header().dataHash, packed));
    EXPECT_EQ(game.Header().packedSize, data.size() - headerSize);
    std::filesystem::path path;
    bool used = false;
    while (database.TakeNextPending(path, used)) {
        EXPECT_TRUE(used) << path;
    }
    EXPECT_EQ(database.AssembleNextKnown(1, disk.Files(), disk.Members(), name, data), -1);
    EXPECT_TRUE(data.empty());
}

TEST(GameDatabase, PassesOverEntriesThatLackAPiece) {
    CGameDatabase database = Database(Entry("lacks",
                                            {
                                                {"a", kOne           },
                                                {"x", Text("missing")}
    }) +
                                      Entry("nothing", {}) + Entry("whole", {{"c", kThree}}) +
                                      Entry("again", {{"c", kThree}}));
    DISK disk;
    disk.files["one"] = kOne;
    disk.files["three"] = kThree;
    disk.Queue(database);
    std::string name;
    Bytes data;
    EXPECT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), 3);
    EXPECT_EQ(name, "whole");
    EXPECT_EQ(database.AssembleNextKnown(3, disk.Files(), disk.Members(), name, data), 4);
    EXPECT_EQ(name, "again") << "a piece may go into several games";
    EXPECT_EQ(database.AssembleNextKnown(4, disk.Files(), disk.Members(), name, data), -1);
}

TEST(GameDatabase, GivesUpAnEntryWhosePieceHasChanged) {
    for (const Bytes& now : {Text("the first piecE"), Text("short"), Bytes()}) {
        CGameDatabase database = Database(Entry("set",
                                                {
                                                    {"a", kOne}
        }) +
                                          Entry("b", {{"b", kTwo}}));
        DISK disk;
        disk.files["one"] = kOne;
        disk.files["two"] = kTwo;
        disk.Queue(database);
        disk.files["one"] = now;
        std::string name;
        Bytes data;
        EXPECT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), 2);
        EXPECT_EQ(name, "b");
        disk.files.erase("two");
        EXPECT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), -1);
    }
}

TEST(GameDatabase, NewestOfEqualFilesIsUsed) {
    CGameDatabase database = Database(Entry("set", {
                                                       {"a", kOne}
    }));
    database.QueueFile("older", L"", kOne);
    database.QueueFile("newer", L"", kOne);
    DISK disk;
    disk.files["older"] = disk.files["newer"] = kOne;
    std::string name;
    Bytes data;
    ASSERT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), 1);
    std::filesystem::path path;
    bool used = false;
    ASSERT_TRUE(database.TakeNextPending(path, used));
    EXPECT_TRUE(used);
    EXPECT_EQ(path, "newer");
    // The other one counts once the newest is gone.
    ASSERT_EQ(database.AssembleNextKnown(0, disk.Files(), disk.Members(), name, data), 1);
    ASSERT_TRUE(database.TakeNextPending(path, used));
    EXPECT_TRUE(used);
    EXPECT_EQ(path, "older");
}

TEST(GameDatabase, EntryNamesAFileAndNeverAPath) {
    const CGameDatabase database = Database(Entry("../../out/side",
                                                  {
                                                      {"a", kOne}
    }) +
                                            Entry("", {{"b", kTwo}}));
    EXPECT_EQ(database.NameOfEntry(0), ".._.._out_side");
    EXPECT_EQ(database.NameOfEntry(1), "Title") << "without a name of its own, the title";
}
