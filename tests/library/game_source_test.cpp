#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/game_source.h"

#include "support/least_images.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr uint16_t kMasterSystem = 1;
constexpr uint16_t kMegaDrive = 4;
constexpr uint16_t kNes = 5;

Bytes Zip(const std::vector<std::pair<std::string, Bytes>>& entries) {
    ZipWriter writer;
    std::string error;
    for (const auto& [name, bytes] : entries) {
        EXPECT_TRUE(writer.Add(name, bytes, error)) << error;
    }
    return writer.Finish(error);
}

// A `.game` of that image, as a conversion of the whole archive writes it.
fs::path WriteGame(const TemporaryFolder& folder, uint16_t system, const Bytes& image) {
    CGameFile game;
    EXPECT_TRUE(BuildKnownGame(system, "whole archive", image, {}, game));
    return folder.Write("archive.game", game.WriteGame(image));
}

struct OPENED {
    bool opened = false;
    CGameFile game;
    std::string title;
    std::string note;
    std::string error;
};

OPENED Open(const fs::path& path, const MACHINE_FACTS* system = nullptr) {
    OPENED result;
    result.opened =
        OpenGame(path, {system, {}}, result.game, result.title, result.note, result.error);
    return result;
}

} // namespace

TEST(GameSource, GameInAnArchiveInAGameIsTheGameByItself) {
    const TemporaryHome home;
    const Bytes image(5000, 7);
    const fs::path file = WriteGame(
        home, kMasterSystem,
        Zip({
            {"readme.txt", Bytes(9, 1)},
            {"other.gg",            Bytes(8,          2)},
            {"dir/One.SMS",          image       }
    }));
    const OPENED inside = Open(file);
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "One");
    EXPECT_EQ(inside.note, file.string() + ": holds an archive; this is dir/One.SMS in it");
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == image);
    const OPENED alone = Open(home.Write("One.sms", image));
    ASSERT_TRUE(alone.opened);
    EXPECT_TRUE(alone.note.empty());
    // The key of its saves.
    EXPECT_TRUE(std::equal(alone.game.SelectedRomHash(), alone.game.SelectedRomHash() + 32,
                           inside.game.SelectedRomHash()));
}

// Larger than any image may be, as an archive of many is.
TEST(GameSource, LargeArchiveIsOpenedByItselfAndInAGame) {
    const TemporaryHome home;
    const Bytes image(5000, 7);
    Bytes zip = Zip({
        {"one.sms", image}
    });
    // Nothing refers to the bytes between the entries and their list, whose place is told near the end.
    const size_t told = zip.size() - 6;
    const uint64_t list = GetInteger(zip, told, 4);
    PutInteger(zip, told, 4, list + kLargestImage);
    zip.insert(zip.begin() + static_cast<std::ptrdiff_t>(list), kLargestImage, uint8_t{0});
    for (const fs::path& file :
         {home.Write("large.zip", zip), WriteGame(home, kMasterSystem, zip)}) {
        const OPENED opened = Open(file);
        ASSERT_TRUE(opened.opened) << opened.error;
        EXPECT_TRUE(opened.game.AssembleSelectedImage() == image);
    }
}

TEST(GameSource, OnlyFileOfAnArchiveInAGameNeedsNoExtension) {
    const TemporaryHome home;
    const OPENED inside = Open(WriteGame(home, kNes,
                                         Zip({
                                             {"game.rom", Bytes(kLeastNesImage, 7)}
    })));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.game.Header().system, kNes);
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == Bytes(kLeastNesImage, 7));
}

TEST(GameSource, ArchiveInAGameIsSearchedForTheMachineAskedFor) {
    const TemporaryHome home;
    const fs::path file =
        WriteGame(home, kMasterSystem,
                  Zip({
                      {"a.sms", Bytes(kLeastSegaImage, 1)},
                      {"b.nes", Bytes(kLeastNesImage,  2)}
    }));
    const OPENED inside = Open(file, FindMachineFacts(kNes));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "b");
    EXPECT_EQ(inside.game.Header().system, kNes);
}

// The entry that is taken is interleaved, and is prepared as any file.
TEST(GameSource, DumpInAnArchiveInAGameIsPutInOrder) {
    const TemporaryHome home;
    CRandom random(3);
    const Bytes image = random.Fill(32768);
    Bytes dump;
    ASSERT_TRUE(InterleaveImage(image, dump));
    const OPENED inside = Open(WriteGame(home, kMegaDrive,
                                         Zip({
                                             {"a.smd", dump}
    })));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == image);
}

TEST(GameSource, DamagedEntryOfAnArchiveInAGameIsPassedOver) {
    const TemporaryHome home;
    CRandom random(5);
    Bytes zip = Zip({
        {"a.sms",                random.Fill(kLeastSegaImage)},
        { "b.sms", Bytes(kLeastSegaImage,                           2)}
    });
    zip[200] = static_cast<uint8_t>(zip[200] ^ 0xFF); // in the data of the first
    const OPENED inside = Open(WriteGame(home, kMasterSystem, zip));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "b");
}

TEST(GameSource, ArchiveInAnArchiveInAGameIsNotOpened) {
    const TemporaryHome home;
    const Bytes inner = Zip({
        {"a.sms", Bytes(kLeastSegaImage, 1)}
    });
    const OPENED inside = Open(WriteGame(home, kMasterSystem,
                                         Zip({
                                             {"inner.zip", inner}
    })));
    EXPECT_FALSE(inside.opened);
    EXPECT_NE(inside.error.find("archive.game: holds no game image"), std::string::npos)
        << inside.error;
}

TEST(GameSource, DamagedArchiveInAGameIsRefusedWithItsReason) {
    const TemporaryHome home;
    const OPENED inside =
        Open(WriteGame(home, kMasterSystem, Text("PK\x03\x04 and no more") + Bytes(500)));
    EXPECT_FALSE(inside.opened);
    EXPECT_NE(inside.error.find("archive.game: not a readable zip archive"), std::string::npos)
        << inside.error;
}

TEST(GameSource, ArcadePieceThatIsAnArchiveStaysAsItIs) {
    const TemporaryHome home;
    const Bytes zip = Zip({
        {"a.sms", Bytes(kLeastSegaImage, 1)}
    });
    const OPENED opened = Open(WriteGame(home, 6, zip));
    ASSERT_TRUE(opened.opened) << opened.error;
    EXPECT_TRUE(opened.game.AssembleSelectedImage() == zip);
}

TEST(GameSource, WhatCanBeNoGameIsRefusedWithTheReason) {
    const TemporaryHome home;
    const fs::path readme = home.Write("README.md", std::string(3000, 'n'));
    EXPECT_EQ(Open(readme).error, readme.string() + ": is a text, not a game");
    // As an older program has made it.
    const fs::path game = WriteGame(home, kMegaDrive, Text(std::string(3000, 'n')));
    EXPECT_EQ(Open(game).error, game.string() + ": is a text, not a game");
    const fs::path zip =
        home.Write("texts.zip", Zip({
                                    {"a/README.md", Text(std::string(3000, 'n'))}
    }));
    EXPECT_EQ(Open(zip).error, zip.string() + ": a/README.md: is a text, not a game");
}

TEST(GameSource, TextsBesideTheOnlyGameOfAZipArePassedOver) {
    const TemporaryHome home;
    const OPENED opened =
        Open(home.Write("one.zip", Zip({
                                       {"README.md", Text(std::string(3000, 'n'))},
                                       {"list.txt",           Text("nothing")                      },
                                       {"game.md",           CRandom(1).Fill(2048) }
    })));
    ASSERT_TRUE(opened.opened) << opened.error;
    EXPECT_EQ(opened.title, "game");
    EXPECT_EQ(opened.note, "");
    EXPECT_EQ(opened.error, "");
}

namespace {

Bytes ZipOfThree() {
    return Zip({
        {"README.md",     Text(std::string(3000, 'n'))},
        {"pal/Game.sms",  Bytes(1024,            1)   },
        {"ntsc/Game.sms", Bytes(1024,            2)   },
        {"Other.gg",      Bytes(1024,            3)   }
    });
}

OPENED OpenEntry(const fs::path& path, const std::string& entry) {
    OPENED result;
    result.opened =
        OpenGame(path, {nullptr, entry}, result.game, result.title, result.note, result.error);
    return result;
}

} // namespace

TEST(GameSource, FirstOfSeveralGamesIsTakenAndTheNoteSaysSo) {
    const TemporaryHome home;
    const fs::path zip = home.Write("three.zip", ZipOfThree());
    const OPENED opened = Open(zip);
    ASSERT_TRUE(opened.opened) << opened.error;
    EXPECT_TRUE(opened.game.AssembleSelectedImage() == Bytes(1024, 1));
    EXPECT_EQ(opened.note, zip.string() + ": holds 3 games; this is pal/Game.sms, and --entry NAME "
                                          "takes another");
}

TEST(GameSource, EntryThatIsAskedForIsOpened) {
    const TemporaryHome home;
    const fs::path zip = home.Write("three.zip", ZipOfThree());
    const OPENED opened = OpenEntry(zip, "ntsc/Game.sms");
    ASSERT_TRUE(opened.opened) << opened.error;
    EXPECT_TRUE(opened.game.AssembleSelectedImage() == Bytes(1024, 2));
    EXPECT_EQ(opened.note, zip.string() + ": this is ntsc/Game.sms");
    EXPECT_FALSE(OpenEntry(zip, "none.sms").opened);
    EXPECT_EQ(OpenEntry(zip, "none.sms").error, zip.string() + ": holds no game none.sms");
    // The same within a `.game`, whose games are those of its machine.
    const OPENED inside = OpenEntry(WriteGame(home, kMasterSystem, ZipOfThree()), "ntsc/Game.sms");
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == Bytes(1024, 2));
}

TEST(GameSource, GamesOfAZipAreListedWithTheirFolders) {
    const TemporaryHome home;
    std::vector<ARCHIVED_GAME> games;
    std::string error;
    ASSERT_TRUE(ListArchivedGames(home.Write("three.zip", ZipOfThree()), nullptr, games, error));
    ASSERT_EQ(games.size(), 3u) << "without the text";
    EXPECT_EQ(games[0].entry, "pal/Game.sms");
    EXPECT_EQ(games[2].entry, "Other.gg");
    EXPECT_EQ(games[2].system, 2);
    const fs::path game = WriteGame(home, kMasterSystem, ZipOfThree());
    ASSERT_TRUE(ListArchivedGames(game, nullptr, games, error));
    EXPECT_EQ(games.size(), 2u) << "those of the machine";
    ASSERT_TRUE(ListArchivedGames(home.Write("one.sms", Bytes(1024, 1)), nullptr, games, error));
    EXPECT_TRUE(games.empty());
}

TEST(GameSource, ArchivedGameIsFoundByItsPathOrByANameThatOneHas) {
    const std::vector<ARCHIVED_GAME> games = {
        {"pal/Game.sms",  1},
        {"ntsc/Game.sms", 1},
        {"x/Other.gg",    2},
        {"other.gg",      2}
    };
    EXPECT_EQ(FindArchivedGame(games, "ntsc/Game.sms"), 1);
    EXPECT_EQ(FindArchivedGame(games, "NTSC/game.SMS"), 1);
    EXPECT_EQ(FindArchivedGame(games, "Game.sms"), -1) << "two have that name";
    EXPECT_EQ(FindArchivedGame(games, "other.gg"), 3) << "the whole path comes first";
    EXPECT_EQ(FindArchivedGame(games, "Other.gg"), -1);
    EXPECT_EQ(FindArchivedGame(games, "none"), -1);
    EXPECT_EQ(FindArchivedGame(games, ""), -1);
}
