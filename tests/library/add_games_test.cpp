#include "facts/machine_facts.h"
#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/add_games.h"
#include "library/convert.h"

#include "support/least_images.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct ADDED {
    ADDED_GAMES counts;
    std::vector<std::string> notes;
    std::vector<std::string> faults;
};

ADDED Add(const std::vector<fs::path>& paths, const char* machine = nullptr) {
    ADDED added;
    ADD_REQUEST request;
    request.paths = paths;
    request.machine = machine != nullptr ? FindMachineFacts(std::string_view(machine)) : nullptr;
    ADD_SINK sink;
    sink.note = [&](const std::string& line) { added.notes.push_back(line); };
    sink.fault = [&](const std::string& line) { added.faults.push_back(line); };
    sink.progress = [](size_t done, size_t total, const std::string&) { EXPECT_LE(done, total); };
    added.counts = AddGames(request, sink);
    return added;
}

// What lies in a folder, without the conversion's own files.
std::set<std::string> FilesIn(const fs::path& folder) {
    std::set<std::string> names;
    std::error_code code;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, code)) {
        if (!entry.path().filename().string().starts_with('.')) {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

using Names = std::set<std::string>;

Bytes Zip(const std::vector<std::pair<std::string, Bytes>>& entries) {
    ZipWriter writer;
    std::string error;
    for (const auto& [name, bytes] : entries) {
        EXPECT_TRUE(writer.Add(name, bytes, error)) << error;
    }
    return writer.Finish(error);
}

Bytes NesImage(uint8_t fill) {
    return Text("NES\x1A\1") + Bytes(11) + Bytes(16384, fill);
}

// A database with one game of these pieces.
void WriteDatabase(const TemporaryFolder& home, const char* file, uint16_t system,
                   const std::vector<std::pair<std::string, Bytes>>& pieces) {
    CGameFile entry;
    entry.Create(true, system);
    entry.SetGadaText("board");
    entry.AddNameFromTitle("Board", 0, 1, {});
    uint32_t index = 0;
    for (const auto& [name, bytes] : pieces) {
        entry.AddRom(name, Sha256(bytes), static_cast<uint32_t>(bytes.size()));
        ASSERT_TRUE(entry.LinkRom(0, index++));
    }
    entry.ComputeHeaderHash();
    home.Write("dat/" + std::string(file), entry.Serialise(true));
}

Bytes ImageOf(const fs::path& game) {
    CGameFile file;
    EXPECT_TRUE(LoadGameFile(false, game, file));
    return {file.Data().begin(), file.Data().end()};
}

} // namespace

TEST(AddGames, FoldersAndZipsAreWalkedAndEveryImageGoesToItsMachine) {
    const TemporaryHome home;
    const TemporaryFolder from;
    from.Write("a/one.sms", Bytes(1024, 1));
    from.Write("a/b/two.gg", Bytes(1024, 2));
    from.Write("three.rom", NesImage(3));
    from.Write("four.zip", Zip({
                               {"x/four.md", Bytes(1024, 4)},
                               {"five.bad",           NesImage(5)           }
    }));
    const ADDED added = Add({from.Path()});
    EXPECT_THAT(added.faults, IsEmpty());
    EXPECT_EQ(added.counts.copied, 5u);
    EXPECT_EQ(added.notes.size(), 5u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"one.game"}));
    EXPECT_EQ(FilesIn(home.Path() / "gamegear"), (Names{"two.game"}));
    EXPECT_EQ(FilesIn(home.Path() / "nes"), (Names{"three.game", "five.game"}));
    EXPECT_EQ(FilesIn(home.Path() / "megadrive"), (Names{"four.game"}));
    EXPECT_EQ(ImageOf(home.Path() / "megadrive/four.game"), Bytes(1024, 4));
    EXPECT_EQ(ImageOf(home.Path() / "nes/five.game"), NesImage(5));
    EXPECT_EQ(from.Read("a/one.sms"), Bytes(1024, 1)) << "the original stays";
    EXPECT_TRUE(fs::exists(from.Path() / "four.zip"));
}

TEST(AddGames, WhatIsThereByHashIsPassedOver) {
    const TemporaryHome home;
    const TemporaryFolder from;
    from.Write("one.sms", Bytes(1024, 1));
    from.Write("the same.sms", Bytes(1024, 1));
    const ADDED first = Add({from.Path()});
    EXPECT_EQ(first.counts.copied, 1u);
    EXPECT_EQ(first.counts.alreadyThere, 1u);
    from.Write("other.sms", Bytes(1024, 2));
    const ADDED second = Add({from.Path()});
    EXPECT_EQ(second.counts.copied, 1u);
    EXPECT_EQ(second.counts.alreadyThere, 2u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"one.game", "other.game"}));
}

// The game holds the bytes in order.
TEST(AddGames, DumpOfAGameThatIsThereIsPassedOver) {
    const TemporaryHome home;
    const TemporaryFolder from;
    CRandom random(9);
    const Bytes image = random.Fill(32768);
    Bytes dump;
    ASSERT_TRUE(InterleaveImage(image, dump));
    ASSERT_EQ(Add({from.Write("a.md", image)}).counts.copied, 1u);
    EXPECT_EQ(Add({from.Write("a.smd", dump)}).counts.alreadyThere, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "megadrive"), (Names{"a.game"}));
}

TEST(AddGames, SameNameOfAnotherImageReplacesNothing) {
    const TemporaryHome home;
    const TemporaryFolder from;
    from.Write("1/game.sms", Bytes(1024, 1));
    from.Write("2/game.sms", Bytes(1024, 2));
    EXPECT_EQ(Add({from.Path()}).counts.copied, 2u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"game.game", "game0.game"}));
}

TEST(AddGames, AsksForTheMachineWhereNothingTellsItAndGoesOn) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const fs::path untold = from.Write("a.rom", Bytes(1024, 1));
    from.Write("b.sms", Bytes(1024, 2));
    from.Write("readme.txt", std::string_view("hello"));
    const ADDED added = Add({from.Path()});
    EXPECT_THAT(added.faults,
                ElementsAre(untold.string() + ": nothing tells which machine it is for"));
    EXPECT_EQ(added.counts.systems, std::vector<uint16_t>{kSystemMasterSystem});
    EXPECT_EQ(added.counts.untold, 1u);
    EXPECT_EQ(added.counts.others, 1u);
    EXPECT_EQ(added.counts.copied, 1u);
    const ADDED told = Add({from.Path()}, "gg");
    EXPECT_THAT(told.faults, IsEmpty());
    EXPECT_EQ(told.counts.alreadyThere, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "gamegear"), (Names{"a.game"}));
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"b.game"}));
}

TEST(AddGames, FileThatTheUserNamesIsOfTheMachineThatTheUserNames) {
    const TemporaryHome home;
    const TemporaryFolder from;
    EXPECT_EQ(Add({from.Write("a.gg", Bytes(1024, 2))}, "sms").counts.copied, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"a.game"}));
    EXPECT_EQ(Add({from.Write("odd.txt", Bytes(kLeastSegaImage + 5, 1))}).counts.untold, 1u);
    EXPECT_EQ(Add({from.Write("odd.txt", Bytes(kLeastSegaImage + 5, 1))}, "sms").counts.copied, 1u);
}

TEST(AddGames, GameFileIsCopiedAsItIsUnlessItsImageIsThere) {
    const TemporaryHome home;
    const TemporaryFolder from;
    Bytes game;
    bool known = false;
    ASSERT_TRUE(ConvertImage(kSystemGameGear, "a", Bytes(1024, 1), {}, game, known));
    const fs::path file = from.Write("a.game", game);
    EXPECT_EQ(Add({file}).counts.copied, 1u);
    EXPECT_EQ(home.Read("gamegear/a.game"), game);
    EXPECT_EQ(Add({file}).counts.alreadyThere, 1u);
    EXPECT_EQ(Add({from.Write("a.gg", Bytes(1024, 1))}).counts.alreadyThere, 1u);
}

TEST(AddGames, DamagedGameFileIsNotCopied) {
    const TemporaryHome home;
    const TemporaryFolder from;
    CRandom random(1);
    Bytes game;
    bool known = false;
    ASSERT_TRUE(ConvertImage(kSystemGameGear, "a", random.Fill(4096), {}, game, known));
    game[game.size() - 500] = static_cast<uint8_t>(game[game.size() - 500] ^ 1);
    const ADDED added =
        Add({from.Write("a.game", game), from.Write("b.game", std::string(99, 'x'))});
    EXPECT_EQ(added.counts.failed, 2u);
    EXPECT_EQ(added.counts.copied, 0u);
    EXPECT_THAT(added.faults, ElementsAre(HasSubstr("a.game: is damaged, or no game file: v1.0"),
                                          HasSubstr("b.game: is damaged, or no game file")));
    EXPECT_FALSE(fs::exists(home.Path() / "gamegear"));
}

TEST(AddGames, PiecesOfABoardAreKnownByTheirHashesAndBecomeOneGame) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const Bytes first(1024, 1);
    const Bytes second(32, 2);
    WriteDatabase(home, "arcade.dat", kSystemArcade,
                  {
                      {"epr-1.ic7", first },
                      {"epr-2",     second}
    });
    from.Write("some.zip", Zip({
                               {"7.bin",  first},
                               { "note.txt", Bytes(9,    9)}
    }));
    from.Write("named otherwise.sms", second);
    const ADDED added = Add({from.Path()});
    EXPECT_THAT(added.faults, IsEmpty());
    EXPECT_EQ(added.counts.copied, 2u);
    EXPECT_EQ(added.counts.waiting, 0u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"board.game"}));
    EXPECT_EQ(ImageOf(home.Path() / "arcade/board.game"), first + second);
    EXPECT_EQ(Add({from.Path()}).counts.alreadyThere, 2u);
}

TEST(AddGames, PieceOfABoardWaitsForTheOthers) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const Bytes first(1024, 1);
    const Bytes second(32, 2);
    WriteDatabase(home, "arcade.dat", kSystemArcade,
                  {
                      {"epr-1.ic7", first },
                      {"epr-2",     second}
    });
    EXPECT_EQ(Add({from.Write("one", first)}).counts.waiting, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"one"}));
    const ADDED again = Add({from.Path() / "one"});
    EXPECT_EQ(again.counts.copied, 0u);
    EXPECT_EQ(again.counts.alreadyThere, 1u);
    EXPECT_EQ(again.counts.waiting, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"one"}));
    EXPECT_EQ(Add({from.Write("two", second)}).counts.waiting, 0u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"board.game"}));
    const ADDED unknown = Add({from.Write("three", Bytes(512, 3))}, "arcade");
    EXPECT_THAT(unknown.faults,
                ElementsAre(HasSubstr("three: is no piece of a board that the database knows")));
    EXPECT_FALSE(fs::exists(home.Path() / "arcade/three"));
}

TEST(AddGames, FaultsAreNamedAndCountedAndTheOthersAreAdded) {
    const TemporaryHome home;
    const TemporaryFolder from;
    Bytes broken = Zip({
        {"in.sms", Bytes(1024, 1)}
    });
    broken.resize(broken.size() / 2);
    const ADDED added =
        Add({from.Path() / "missing.sms", from.Write("empty.sms", std::string_view()),
             from.Write("broken.zip", broken), from.Write("good.sms", Bytes(kLeastSegaImage, 1))});
    EXPECT_THAT(added.faults, ElementsAre(HasSubstr("missing.sms: cannot be opened"),
                                          HasSubstr("empty.sms: is empty"),
                                          HasSubstr("broken.zip: not a readable")));
    EXPECT_EQ(added.counts.failed, 3u);
    EXPECT_EQ(added.counts.copied, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"good.game"}));
}

// As an interrupted run leaves them.
TEST(AddGames, CopyThatWaitsInTheFolderIsConverted) {
    const TemporaryHome home;
    const TemporaryFolder from;
    home.Write("sms/a.sms", Bytes(1024, 1));
    EXPECT_EQ(Add({from.Write("a.sms", Bytes(1024, 1))}).counts.alreadyThere, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"a.game"}));
}

// Two boards share a piece: the first being there is no reason to leave the piece out of the second.
TEST(AddGames, PieceOfTwoBoardsGoesIntoBoth) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const Bytes shared(1024, 1);
    const auto entry = [&](const char* name, const Bytes& own) {
        CGameFile game;
        game.Create(true, kSystemArcade);
        game.SetGadaText(name);
        game.AddNameFromTitle(name, 0, 1, {});
        game.AddRom("shared", Sha256(shared), 1024);
        game.AddRom("own", Sha256(own), static_cast<uint32_t>(own.size()));
        EXPECT_TRUE(game.LinkRom(0, 0) && game.LinkRom(0, 1));
        game.ComputeHeaderHash();
        return game.Serialise(true);
    };
    home.Write("dat/arcade.dat", entry("first", Bytes(512, 2)) + entry("second", Bytes(512, 3)));
    const fs::path piece = from.Write("shared", shared);
    ASSERT_EQ(Add({piece, from.Write("own", Bytes(512, 2))}).counts.copied, 2u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"first.game"}));
    EXPECT_EQ(Add({piece, from.Write("own", Bytes(512, 3))}).counts.copied, 2u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"first.game", "second.game"}));
    EXPECT_EQ(Add({piece}).counts.alreadyThere, 1u);
}

TEST(AddGames, PieceThatTwoSetsNameDifferentlyIsCopiedOnce) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const Bytes piece(1024, 1);
    WriteDatabase(home, "arcade.dat", kSystemArcade,
                  {
                      {"piece", piece}
    });
    const ADDED added = Add({
        from.Write("board.zip", Zip({{"epr-1.ic7", piece}}
         )),
        from.Write("variant.zip", Zip({{"epr-2.ic7", piece}}
         ))
    });
    EXPECT_EQ(added.counts.copied, 1u);
    EXPECT_EQ(added.counts.alreadyThere, 1u);
    EXPECT_EQ(added.counts.waiting, 0u);
    EXPECT_EQ(FilesIn(home.Path() / "arcade"), (Names{"board.game"}));
}

TEST(AddGames, WhatCouldNotBeCopiedIsNotThere) {
    const TemporaryHome home;
    const TemporaryFolder from;
    home.Write("sms", "in the folder's place");
    const Bytes image(1024, 1);
    const ADDED added = Add({from.Write("a.sms", image), from.Write("b.sms", image)});
    EXPECT_EQ(added.counts.failed, 2u);
    EXPECT_EQ(added.counts.alreadyThere, 0u);
}

TEST(AddGames, CopierHeaderWithoutAnImageIsAFault) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const ADDED added = Add({from.Write("a.smd", Bytes(512, 0))});
    EXPECT_THAT(added.faults, ElementsAre(HasSubstr("only a copier's header")));
    EXPECT_FALSE(fs::exists(home.Path() / "megadrive"));
}

// Entries are files of the library's folder alone, whatever they are called.
TEST(AddGames, NamesInAZipLeadNowhereElse) {
    const TemporaryHome home;
    const TemporaryFolder from;
    from.Write("z.zip", Zip({
                            {"../../up.sms",  Bytes(1024, 1)},
                            {"/etc/root.sms", Bytes(1024, 2)},
                            {"..\\back.sms",  Bytes(1024, 3)},
                            {"nul:*?.sms",    Bytes(1024, 4)}
    }));
    EXPECT_EQ(Add({from.Path()}).counts.copied, 4u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"),
              (Names{"up.game", "root.game", "back.game", "nul___.game"}));
}

TEST(AddGames, WhatCanBeNoGameIsQuietInAFolderAndAFaultIfItIsNamed) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const std::string notes(3000, 'n');
    const fs::path readme = from.Write("README.md", notes);
    from.Write("game.zip", Zip({
                               {"READ.md",   Text(notes)},
                               { "game.sms", Bytes(1024,          1)}
    }));
    const ADDED added = Add({from.Path()});
    EXPECT_THAT(added.faults, IsEmpty());
    EXPECT_EQ(added.counts.copied, 1u);
    EXPECT_EQ(added.counts.others, 2u);
    EXPECT_FALSE(fs::exists(home.Path() / "megadrive"));
    const ADDED named = Add({readme});
    EXPECT_THAT(named.faults, ElementsAre(readme.string() + ": is a text, not a game"));
    EXPECT_EQ(named.counts.failed, 1u);
}

TEST(AddGames, CutOffImageIsAFaultWhereverItLies) {
    const TemporaryHome home;
    const TemporaryFolder from;
    Bytes image = NesImage(1);
    image.pop_back();
    from.Write("a/cut.nes", image);
    const ADDED added = Add({from.Path()});
    EXPECT_THAT(added.faults, ElementsAre(HasSubstr("cut.nes: is cut off")));
    EXPECT_FALSE(fs::exists(home.Path() / "nes"));
}

// Somebody has made a game of it, and the database says so.
TEST(AddGames, DatabaseOverrulesTheCheck) {
    const TemporaryHome home;
    const TemporaryFolder from;
    const Bytes tiny = Text("tiny and a text");
    WriteDatabase(home, "sms.dat", kSystemMasterSystem,
                  {
                      {"v1.0", tiny}
    });
    EXPECT_EQ(Add({from.Write("tiny.sms", tiny)}).counts.copied, 1u);
    EXPECT_EQ(FilesIn(home.Path() / "sms"), (Names{"board.game"}));
}
