#include "library/convert.h"
#include "library/game_folder.h"

#include "support/least_images.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

using testing::Each;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

constexpr uint16_t kSms = 1;
constexpr uint16_t kMegaDrive = 4;
constexpr uint16_t kNes = 5;
constexpr uint16_t kArcade = 6;

using Counts = std::vector<int>;

} // namespace

TEST(FolderConversion, UnknownImageBecomesAGameAndItsSourceGoes) {
    GameFolder folder(kNes);
    const Bytes image = Noise(1, kLeastNesImage);
    folder.Write("My Game.nes", image);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted unknown game: My Game.game"));
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 0, 0}));
    EXPECT_THAT(folder.Names(), ElementsAre("My Game.game"));
    EXPECT_EQ(folder.ImageOf("My Game.game"), image);
    // As the conversion of one file makes it.
    Bytes expected;
    bool known = true;
    ASSERT_TRUE(ConvertImage(kNes, "My Game", image, {}, expected, known));
    EXPECT_EQ(folder.Read("My Game.game"), expected);
}

TEST(FolderConversion, KnownGameIsAssembledUnderItsName) {
    const Bytes image = Noise(1, 3000);
    GameFolder folder(kNes, EntryOf(kNes, "The Game",
                                    {
                                        {"v1.1", image}
    }));
    folder.Write("whatever.nes", image);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted The Game.game"));
    EXPECT_EQ(folder.Counts(), (Counts{1, 0, 0, 0}));
    EXPECT_THAT(folder.Names(), ElementsAre("The Game.game"));
    CGameFile game;
    ASSERT_TRUE(LoadGameFile(false, folder.Path() / "The Game.game", game));
    EXPECT_TRUE(std::ranges::equal(game.Data(), image));
    EXPECT_TRUE(std::ranges::equal(game.Header().headerHash,
                                   folder.database.Entries()[0].Header().headerHash));
}

TEST(FolderConversion, HalfOfAKnownGameKeepsItsNamesAndCountsAsGood) {
    const Bytes one = Noise(1, 3000);
    const Bytes two = Noise(2, 2000);
    GameFolder folder(kNes, EntryOf(kNes, "Both",
                                    {
                                        {"one", one},
                                        {"two", two}
    }));
    folder.Write("half.nes", two);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted: half.game"));
    EXPECT_EQ(folder.Counts(), (Counts{1, 0, 0, 0}));
    CGameFile game;
    ASSERT_TRUE(LoadGameFile(true, folder.Path() / "half.game", game));
    NAME_VIEW name;
    ASSERT_TRUE(game.GetName(0, name));
    EXPECT_EQ(name.title, "Known Both");
    EXPECT_EQ(game.RomCount(), 1u);
}

TEST(FolderConversion, EqualStemsGetZerosAppended) {
    GameFolder folder(kMegaDrive);
    const std::vector<NAMED_BYTES> files = {
        {"a.bin", Noise(1, 1024)},
        {"a.gen", Noise(2, 1024)},
        {"a.md",  Noise(3, 1024)}
    };
    for (const NAMED_BYTES& file : files) {
        folder.Write(file.name, file.bytes);
    }
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    // The newest pending file comes first.
    EXPECT_THAT(folder.Names(), ElementsAre("a.game", "a0.game", "a00.game"));
    EXPECT_EQ(folder.ImageOf("a.game"), files[2].bytes);
    EXPECT_EQ(folder.ImageOf("a0.game"), files[1].bytes);
    EXPECT_EQ(folder.ImageOf("a00.game"), files[0].bytes);
    EXPECT_EQ(folder.Counts(), (Counts{0, 3, 0, 0}));
    EXPECT_THAT(folder.log, Each("Converted unknown game: a.game"));
}

TEST(FolderConversion, EqualFilesOfOneStemMakeTwoGames) {
    GameFolder folder(kMegaDrive);
    folder.Write("a.bin", Noise(1, 1024));
    folder.Write("a.md", Noise(1, 1024));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.game", "a0.game"));
}

TEST(FolderConversion, GameThatWasThereIsNeverReplaced) {
    GameFolder folder(kNes);
    folder.Write("a.game", "anything");
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.Read("a.game"), Text("anything"));
    EXPECT_EQ(folder.ImageOf("a0.game"), Noise(1, kLeastNesImage));
}

TEST(FolderConversion, InterleavedDumpIsPutInOrder) {
    GameFolder folder(kMegaDrive);
    const Bytes dump = Bytes(512, 0xCC) + Bytes(8192, 1) + Bytes(8192, 2);
    folder.Write("dump.smd", dump);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    const Bytes image = folder.ImageOf("dump.game");
    ASSERT_EQ(image.size(), 16384u);
    EXPECT_EQ(Slice(image, 0, 4), (Bytes{2, 1, 2, 1}));
    EXPECT_THAT(folder.Names(), ElementsAre("dump.game"));
}

TEST(FolderConversion, ArcadeGameIsAssembledFromFilesAndZips) {
    const Bytes one = Noise(1, 2000);
    const Bytes two = Noise(2, kLeastNesImage);
    GameFolder folder(kArcade, EntryOf(kArcade, "board",
                                       {
                                           {"one", one},
                                           {"two", two}
    }));
    folder.Write("piece.ic1", one);
    folder.Write("set.zip", ZipOf({
                                {"inner/PIECE.ic2", two}
    }));
    folder.Write("other.ic9", Noise(9, 500));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted board.game"));
    EXPECT_EQ(folder.Counts(), (Counts{1, 0, 0, 0}));
    EXPECT_EQ(folder.ImageOf("board.game"), one + two);
    EXPECT_THAT(folder.Names(), ElementsAre("board.game", "other.ic9"))
        << "a piece that no entry wants stays, and nothing is said";
}

TEST(FolderConversion, UnknownImageInAZipBecomesAGameOfTheWholeZip) {
    GameFolder folder(kSms);
    const Bytes zip = ZipOf({
        {"a game.sms", Noise(1, 4000)}
    });
    folder.Write("pack.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted unknown game: pack.game"));
    EXPECT_EQ(folder.ImageOf("pack.game"), zip);
    EXPECT_THAT(folder.Names(), ElementsAre("pack.game"));
}

TEST(FolderConversion, FurtherUnknownImageOfAConvertedZipIsAnError) {
    GameFolder folder(kSms);
    const Bytes zip = ZipOf({
        {"a.sms", Noise(1, 4000)},
        {"b.sms", Noise(2, 4000)}
    });
    folder.Write("pack.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    ASSERT_EQ(folder.log.size(), 3u);
    EXPECT_EQ(folder.log[0], "Converted unknown game: pack.game");
    EXPECT_EQ(folder.log[1], "Failed to convert this unknown game: " + folder.At("pack.zip"));
    EXPECT_EQ(folder.log[2],
              folder.At("pack.zip") + ": is in pack.game as a whole, with every image")
        << "the player is told that nothing is lost";
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 1, 0}));
    EXPECT_EQ(folder.ImageOf("pack.game"), zip);
}

TEST(FolderConversion, ZipOfTwoUnknownImagesThatCannotGoIsConvertedOnce) {
    GameFolder folder(kSms);
    const Bytes zip = ZipOf({
        {"a.sms", Noise(1, 4000)},
        {"b.sms", Noise(2, 4000)}
    });
    folder.Write("pack.zip", zip);
    folder.onReport = [&] {
        if (folder.log.back() == "Converted unknown game: pack.game") {
            folder.Write("pack.zip", zip + Text("grown"));
        }
    };
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("pack.game", "pack.zip"));
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 0, 0}));
}

TEST(FolderConversion, ZipWithoutImagesIsSkipped) {
    GameFolder folder(kSms);
    folder.Write("text.zip", ZipOf({
                                 {"a.txt", Text("text")}
    }));
    folder.Write("none.zip", ZipOf({}));
    folder.Write("no.zip", "this is no zip");
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.Counts(), (Counts{0, 0, 0, 3}));
    EXPECT_THAT(folder.Names(), ElementsAre("no.zip", "none.zip", "text.zip"));
    EXPECT_TRUE(folder.LoggedOf("no.zip", "not a readable zip archive"));
    EXPECT_TRUE(folder.LoggedOf("text.zip", "holds no game image"));
}

TEST(FolderConversion, MegaDriveZipIsNotTakenForAnInterleavedDump) {
    GameFolder folder(kMegaDrive);
    Bytes zip;
    // Bit 9 of the size is what tells a dump.
    for (size_t size = 3000; (zip.size() & 512) == 0; size += 100) {
        zip = ZipOf({
            {"a.bin", Noise(1, size)}
        });
    }
    folder.Write("game.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.ImageOf("game.game"), zip);
    ZipReader reader;
    std::string error;
    const Bytes image = folder.ImageOf("game.game");
    EXPECT_TRUE(reader.Open(image, error)) << error;
}

TEST(FolderConversion, OnlyThisFoldersSystemIsConverted) {
    GameFolder folder(kSms);
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    folder.Write("readme.txt", "text");
    folder.Write("media/b.sms", Noise(2, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.nes", "media/", "readme.txt"));
    EXPECT_THAT(folder.Names("media"), ElementsAre("b.sms"));
    EXPECT_TRUE(folder.log.empty());
}

TEST(FolderConversion, OrderIsThatOfOneThread) {
    Bytes entries;
    for (uint64_t i = 0; i < 12; ++i) {
        entries = entries + EntryOf(kNes, "known " + std::to_string(i),
                                    {
                                        {"x", Noise(100 + i, 2000)}
        });
    }
    std::vector<std::vector<std::string>> logs;
    for (const unsigned threads : {1u, 2u, 7u}) {
        GameFolder folder(kNes, entries);
        folder.threads = threads;
        for (uint64_t i = 0; i < 12; ++i) {
            folder.Write("k" + std::to_string(i) + ".nes", Noise(100 + i, 2000));
            folder.Write("u" + std::to_string(i) + ".nes",
                         Noise(i, kLeastNesImage + 9970 * (i * 7 % 11)));
        }
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_EQ(folder.Counts(), (Counts{12, 12, 0, 0}));
        logs.push_back(folder.log);
    }
    ASSERT_EQ(logs[0].size(), 24u);
    EXPECT_EQ(logs[0][0], "Converted known 0.game") << "in the order of the database";
    EXPECT_EQ(logs[0][11], "Converted known 11.game");
    EXPECT_EQ(logs[0][12], "Converted unknown game: u9.game") << "the file queued last comes first";
    EXPECT_EQ(logs[0][23], "Converted unknown game: u0.game");
    EXPECT_EQ(logs[0], logs[1]);
    EXPECT_EQ(logs[0], logs[2]);
}

TEST(FolderConversion, ProgressRisesEvenlyToItsEnd) {
    GameFolder folder(kNes);
    for (uint64_t i = 0; i < 50; ++i) {
        folder.Write("f" + std::to_string(i) + ".nes",
                     Noise(i, i % 2 == 0 ? kLeastNesImage : 60000));
    }
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    ASSERT_FALSE(folder.progress.empty());
    EXPECT_DOUBLE_EQ(folder.progress.back(), 1.0);
    double before = 0.0;
    for (const double done : folder.progress) {
        EXPECT_GE(done, before);
        EXPECT_LT(done - before, 0.05) << "no step is larger than two of fifty files";
        before = done;
    }
}

TEST(FolderConversion, StoppedOneGoesOnWhereItWas) {
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", Noise(3, kLeastNesImage)}
    }));
    std::set<std::string> games = {"known.game"};
    for (uint64_t i = 0; i < 20; ++i) {
        folder.Write("f" + std::to_string(i) + ".nes", Noise(i, kLeastNesImage));
        if (i != 3) {
            games.insert("f" + std::to_string(i) + ".game");
        }
    }
    int rounds = 0;
    ConversionEnd end = ConversionEnd::kStopped;
    size_t before = 0;
    while (end == ConversionEnd::kStopped && rounds < 100) {
        int reports = 0;
        folder.stop = false;
        folder.onReport = [&] { folder.stop = ++reports == 4; };
        end = folder.Convert();
        size_t converted = 0;
        for (const std::string& name : folder.Names()) {
            converted += name.ends_with(".game") ? 1u : 0u;
        }
        EXPECT_EQ(folder.Names().size(), 20u) << "each is either a source or a game";
        EXPECT_EQ(converted, std::min<size_t>(before + 4, 20));
        before = converted;
        ++rounds;
    }
    EXPECT_EQ(end, ConversionEnd::kDone);
    EXPECT_EQ(rounds, 5);
    EXPECT_EQ(folder.Names(), games);
}

// The piece that two boards have is removed after both games are there, and a stop comes between them.
TEST(FolderConversion, StopBetweenTwoBoardsKeepsTheirPiece) {
    const NAMED_BYTES shared = {"shared", Noise(1, 500)};
    const NAMED_BYTES own = {"own", Noise(2, 500)};
    const NAMED_BYTES other = {"other", Noise(3, 500)};
    GameFolder folder(kArcade, EntryOf(kArcade, "first", {shared, own}) +
                                   EntryOf(kArcade, "second", {shared, other}));
    for (const NAMED_BYTES& piece : {shared, own, other}) {
        fs::last_write_time(folder.Write(piece.name, piece.bytes),
                            fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    folder.threads = 1;
    folder.onReport = [&] { folder.stop = true; };
    EXPECT_EQ(folder.Convert(), ConversionEnd::kStopped);
    EXPECT_THAT(folder.log, ElementsAre("Converted first.game"));
    EXPECT_THAT(folder.Names(), ElementsAre("first.game", "other", "shared"));
    folder.stop = false;
    folder.onReport = nullptr;
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_TRUE(folder.Logged("Converted second.game"));
    EXPECT_EQ(folder.ImageOf("second.game"), shared.bytes + other.bytes);
}

TEST(FolderConversion, KeptSourcesMoveToASubfolder) {
    const Bytes known = Noise(7, kLeastNesImage);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.keepSources = true;
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    folder.Write("k.nes", known);
    folder.Write("sources/a.nes", "an older one");
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.game", "known.game", "sources/"));
    EXPECT_THAT(folder.Names("sources"), ElementsAre("a (2).nes", "a.nes", "k.nes"));
    EXPECT_EQ(folder.Read("sources/a.nes"), Text("an older one"));
    EXPECT_EQ(folder.Read("sources/a (2).nes"), Noise(1, kLeastNesImage));
    EXPECT_EQ(folder.Read("sources/k.nes"), known);
    EXPECT_EQ(folder.Counts(), (Counts{1, 1, 0, 0}));
}

TEST(FolderConversion, GameYoungerThanItsSourceIsNotWrittenAgain) {
    const Bytes known = Noise(7, kLeastNesImage);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    folder.Write("k.nes", known);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    const Bytes first = folder.Read("a.game");
    // As if the sources could not have been removed.
    const auto earlier = fs::last_write_time(folder.Path() / "a.game") - std::chrono::hours(1);
    fs::last_write_time(folder.Write("a.nes", Noise(1, kLeastNesImage)), earlier);
    fs::last_write_time(folder.Write("k.nes", known), earlier);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log,
                ElementsAre("Already converted: known.game", "Already converted: a.game"));
    EXPECT_EQ(folder.Counts(), (Counts{0, 0, 0, 0}));
    EXPECT_THAT(folder.Names(), ElementsAre("a.game", "known.game"));
    EXPECT_EQ(folder.Read("a.game"), first);
    // A damaged game does not count, however young it is.
    Bytes damaged = first;
    damaged[damaged.size() / 2 + 300] ^= 1;
    folder.Write("a.game", damaged);
    fs::last_write_time(folder.Write("a.nes", Noise(1, kLeastNesImage)), earlier);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre("Converted unknown game: a.game"));
    EXPECT_EQ(folder.ImageOf("a0.game"), Noise(1, kLeastNesImage));
    // A file that came later is a new one.
    fs::last_write_time(folder.Write("k.nes", known),
                        fs::last_write_time(folder.Path() / "known.game") + std::chrono::hours(1));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.game", "a0.game", "known.game", "known0.game"));
}
