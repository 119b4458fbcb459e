// What must not go wrong in a folder: odd files, archives of which something is left over, a full disk,
// files and folders that change while they are converted.
#include "library/folder_lock.h"
#include "library/full_disk.h"
#include "library/game_folder.h"

#include "support/least_images.h"
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

using testing::ElementsAre;

namespace {

constexpr uint16_t kSms = 1;
constexpr uint16_t kNes = 5;
constexpr uint16_t kArcade = 6;

using Counts = std::vector<int>;

// The tests' user without the right to everything.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const fs::path& folder)
        : before(geteuid()) {
        if (before == 0) {
            fs::permissions(folder, fs::perms::all);
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~OrdinaryUser() { EXPECT_EQ(seteuid(before), 0); }
    // From now on nothing in the folder can be made or deleted.
    void CloseFolder(const fs::path& folder) const {
        const uid_t now = geteuid();
        EXPECT_EQ(seteuid(before), 0);
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec |
                                    fs::perms::others_read | fs::perms::others_exec);
        EXPECT_EQ(seteuid(now), 0);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    uid_t before;
};

void WriteSparse(const fs::path& path, uint64_t size) {
    const int file = open(path.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(file, 0);
    EXPECT_EQ(ftruncate(file, static_cast<off_t>(size)), 0);
    close(file);
}

} // namespace

TEST(FolderSafety, ZipWithAnEntryInNoGameStays) {
    const Bytes known = Noise(1, 3000);
    GameFolder folder(kSms, EntryOf(kSms, "known",
                                    {
                                        {"x", known}
    }));
    const Bytes zip = ZipOf({
        {"known.sms",  known           },
        {"manual.txt", Text("a manual")}
    });
    folder.Write("set.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log,
                ElementsAre("Converted known.game",
                            "Kept: " + folder.At("set.zip") + ": manual.txt is in no game file"));
    EXPECT_EQ(folder.Read("set.zip"), zip);
    // As it is older than the game, the next conversion does not make another one.
    fs::last_write_time(folder.Path() / "set.zip",
                        fs::last_write_time(folder.Path() / "known.game") - std::chrono::hours(1));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.log[0], "Already converted: known.game");
    EXPECT_THAT(folder.Names(), ElementsAre("known.game", "set.zip"));
}

TEST(FolderSafety, ZipWithADamagedEntryStays) {
    const Bytes known = Noise(1, 3000);
    GameFolder folder(kSms, EntryOf(kSms, "known",
                                    {
                                        {"x", known}
    }));
    Bytes zip = ZipOf({
        {"known.sms", known},
        { "damaged.sms",    Noise(2, 3000)}
    });
    zip[3000 + 1500] ^= 1; // in the second entry's data
    folder.Write("set.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_TRUE(folder.Logged("Converted known.game"));
    EXPECT_TRUE(folder.LoggedOf("Kept: " + folder.At("set.zip"), "damaged.sms"));
    EXPECT_EQ(folder.Read("set.zip"), zip);
}

TEST(FolderSafety, ZipThatStatesNoSizeForAnEntryStays) {
    const Bytes known = Noise(1, 3000);
    for (const bool wrongSize : {false, true}) {
        GameFolder folder(kSms, EntryOf(kSms, "known",
                                        {
                                            {"x", known}
        }));
        Bytes zip = ZipOf({
            {"known.sms",      known},
            {           "empty.txt",              {}     },
            { "other.sms", wrongSize ? Noise(2,      3000) : Bytes()}
        });
        if (wrongSize) {
            const std::string_view mark = "PK\1\2"; // the last one begins the last entry's record
            const auto record = std::find_end(zip.begin(), zip.end(), mark.begin(), mark.end());
            ASSERT_NE(record, zip.end());
            PutInteger(zip, static_cast<size_t>(record - zip.begin()) + 24, 4, 0);
        }
        folder.Write("set.zip", zip);
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_EQ(folder.LoggedOf("Kept: " + folder.At("set.zip"), "other.sms"), wrongSize);
        EXPECT_EQ(fs::exists(folder.Path() / "set.zip"), wrongSize) << "empty files are no loss";
    }
}

TEST(FolderSafety, UnknownImageBesideAKnownOneIsNotLostWithItsZip) {
    const Bytes known = Noise(1, 3000);
    for (const bool knownIsLast : {true, false}) {
        GameFolder folder(kSms, EntryOf(kSms, "known",
                                        {
                                            {"x", known}
        }));
        std::vector<NAMED_BYTES> entries = {
            {"unknown.sms", Noise(2, 3000)},
            {"known.sms",             known         }
        };
        if (!knownIsLast) {
            std::swap(entries[0], entries[1]);
        }
        const Bytes zip = ZipOf(entries);
        folder.Write("set.zip", zip);
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_THAT(folder.Names(), ElementsAre("known.game", "set.game"));
        EXPECT_EQ(folder.ImageOf("known.game"), known);
        EXPECT_EQ(folder.ImageOf("set.game"), zip);
        EXPECT_EQ(folder.Counts(), (Counts{1, 1, 0, 0}));
    }
}

TEST(FolderSafety, ZipOfKnownGamesAloneGoes) {
    const Bytes one = Noise(1, 3000);
    const Bytes two = Noise(2, 3000);
    GameFolder folder(kSms, EntryOf(kSms, "one",
                                    {
                                        {"x", one}
    }) +
                                EntryOf(kSms, "two", {{"x", two}}));
    folder.Write("set.zip", ZipOf({
                                {"folder/one.sms", one},
                                {"folder/two.sms", two}
    }));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("one.game", "two.game"));
    EXPECT_EQ(folder.Counts(), (Counts{2, 0, 0, 0}));
}

TEST(FolderSafety, ArcadeZipWithAPieceThatNoEntryWantsStays) {
    const Bytes piece = Noise(1, 3000);
    GameFolder folder(kArcade, EntryOf(kArcade, "board",
                                       {
                                           {"x", piece}
    }));
    const Bytes zip = ZipOf({
        {"wanted.ic1", piece},
        { "other.ic2",     Noise(2, 3000)}
    });
    folder.Write("set.zip", zip);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.Read("set.zip"), zip);
    EXPECT_TRUE(folder.LoggedOf("Kept: " + folder.At("set.zip"), "not everything"));
}

// As sets of one board and of a variant of it do. With one thread the second item of a zip comes up when the first has
// removed the file.
TEST(FolderSafety, ArcadeZipsThatShareAPieceBothGo) {
    const NAMED_BYTES shared = {"shared.ic1", Noise(1, 3000)};
    const NAMED_BYTES own = {"own.ic2", Noise(2, 3000)};
    const NAMED_BYTES other = {"other.ic2", Noise(3, 3000)};
    for (const unsigned threads : {1u, 3u}) {
        GameFolder folder(kArcade, EntryOf(kArcade, "board", {shared, own}) +
                                       EntryOf(kArcade, "variant", {shared, other}));
        folder.threads = threads;
        folder.Write("board.zip", ZipOf({shared, own}));
        folder.Write("variant.zip", ZipOf({shared, other}));
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_THAT(folder.log, ElementsAre("Converted board.game", "Converted variant.game"));
        EXPECT_THAT(folder.Names(), ElementsAre("board.game", "variant.game"));
    }
}

// A downloaded file's time may lie in the future, so that no game is younger.
TEST(FolderSafety, ZipThatStaysDoesNotMakeItsGameAtEveryScan) {
    const Bytes known = Noise(1, 3000);
    for (const uint16_t system : {kSms, kArcade}) {
        GameFolder folder(system, EntryOf(system, "known",
                                          {
                                              {"x", known}
        }));
        const fs::path zip =
            folder.Write("set.zip", ZipOf({
                                        {"known.sms",  known           },
                                        {"manual.txt", Text("a manual")}
        }));
        fs::last_write_time(zip, fs::file_time_type::clock::now() + std::chrono::hours(10));
        for (int scan = 0; scan < 3; ++scan) {
            EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
            EXPECT_THAT(folder.Names(), ElementsAre("known.game", "set.zip"));
        }
        EXPECT_EQ(folder.log[0], "Already converted: known.game");
    }
}

// The second board's game does not fit on the disk; its pieces are also in the first one's.
TEST(FolderSafety, PieceStaysUntilEveryBoardOfItIsWritten) {
    const NAMED_BYTES shared = {"shared", Bytes(500, 1)};
    const NAMED_BYTES own = {"own", Bytes(500, 2)};
    const NAMED_BYTES other = {"other", Noise(3, 3000)};
    GameFolder folder(kArcade, EntryOf(kArcade, "first", {shared, own}) +
                                   EntryOf(kArcade, "second", {shared, other}));
    for (const NAMED_BYTES& piece : {shared, own, other}) {
        folder.Write(piece.name, piece.bytes);
    }
    {
        const FullDisk disk(1500);
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    }
    EXPECT_EQ(folder.Counts(), (Counts{1, 0, 1, 0}));
    EXPECT_THAT(folder.Names(), ElementsAre("first.game", "other", "shared"));
    EXPECT_TRUE(folder.LoggedOf("Kept: " + folder.At("shared"), "could not be written"));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("first.game", "second.game"));
    EXPECT_EQ(folder.ImageOf("second.game"), shared.bytes + other.bytes);
}

TEST(FolderSafety, FullDiskLosesNoSource) {
    const Bytes known = Noise(1, 3000);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.Write("k.nes", known);
    folder.Write("u.nes", Noise(2, kLeastNesImage));
    folder.Write("small.nes", Bytes(kLeastNesImage, 1)); // packs to less than the limit
    {
        const FullDisk disk(1500);
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    }
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 2, 0}));
    EXPECT_TRUE(folder.Logged("Failed to write known.game"));
    EXPECT_TRUE(folder.Logged("Failed to write unknown game: " + folder.At("u.game")));
    EXPECT_TRUE(folder.LoggedOf("u.game", "cannot be written: File too large"));
    EXPECT_TRUE(folder.LoggedOf("Kept: " + folder.At("k.nes"), "could not be written"));
    EXPECT_THAT(folder.Names(), ElementsAre("k.nes", "small.game", "u.nes"));
    EXPECT_EQ(folder.Read("k.nes"), known);
    EXPECT_EQ(folder.Read("u.nes"), Noise(2, kLeastNesImage));
    // With room again the rest is done.
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("known.game", "small.game", "u.game"));
}

TEST(FolderSafety, UnreadableFilesAreErrorsAndStay) {
    GameFolder folder(kNes);
    folder.Write("closed.nes", Noise(1, kLeastNesImage));
    folder.Write("fine.nes", Noise(2, kLeastNesImage));
    fs::permissions(folder.Path() / "closed.nes", fs::perms::none);
    fs::create_symlink("nowhere", folder.Path() / "dangling.nes");
    fs::create_symlink("loop.nes", folder.Path() / "loop.nes");
    ASSERT_EQ(mkfifo((folder.Path() / "pipe.nes").c_str(), 0666), 0);
    {
        const OrdinaryUser user(folder.Path());
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    }
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 4, 0}));
    for (const char* name : {"closed.nes", "dangling.nes", "loop.nes", "pipe.nes"}) {
        EXPECT_TRUE(folder.Logged("Failed to convert this unknown game: " + folder.At(name)));
    }
    EXPECT_TRUE(folder.LoggedOf("closed.nes", "Permission denied"));
    EXPECT_TRUE(folder.LoggedOf("dangling.nes", "No such file or directory"));
    EXPECT_TRUE(folder.LoggedOf("loop.nes", "Too many levels of symbolic links"));
    EXPECT_TRUE(folder.LoggedOf("pipe.nes", "is not a file"));
    EXPECT_THAT(folder.Names(),
                ElementsAre("closed.nes", "dangling.nes", "fine.game", "loop.nes", "pipe.nes"));
}

TEST(FolderSafety, LinkIsConvertedAndItsTargetStays) {
    TemporaryFolder elsewhere;
    const fs::path target = elsewhere.Write("image.nes", Noise(1, kLeastNesImage));
    fs::permissions(target, fs::perms::owner_read);
    for (const bool keep : {false, true}) {
        GameFolder folder(kNes);
        folder.keepSources = keep;
        fs::create_symlink(target, folder.Path() / "link.nes");
        fs::create_directory_symlink(elsewhere.Path(), folder.Path() / "folder.nes");
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_EQ(folder.ImageOf("link.game"), Noise(1, kLeastNesImage));
        EXPECT_FALSE(fs::is_symlink(folder.Path() / "link.nes"));
        EXPECT_EQ(fs::is_symlink(folder.Path() / "sources/link.nes"), keep);
        EXPECT_EQ(elsewhere.Read("image.nes"), Noise(1, kLeastNesImage));
        EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read);
        EXPECT_EQ(folder.Counts(), (Counts{0, 1, 0, 0})) << "a link to a folder is passed over";
    }
}

TEST(FolderSafety, KeptRelativeLinkStillLeadsToItsTarget) {
    GameFolder folder(kNes);
    folder.keepSources = true;
    folder.Write("deeper/image.bin", Noise(1, kLeastNesImage));
    fs::create_symlink("deeper/image.bin", folder.Path() / "link.nes");
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.Read("sources/link.nes"), Noise(1, kLeastNesImage));
}

TEST(FolderSafety, NameThatIsNoTextKeepsItsBytes) {
    GameFolder folder(kNes);
    const std::string name = "caf\xE9 \xFF";
    folder.Write(name + ".nes", Noise(1, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre(name + ".game"));
    CGameFile game;
    ASSERT_TRUE(LoadGameFile(true, folder.Path() / (name + ".game"), game));
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.title, "caf\xEF\xBF\xBD \xEF\xBF\xBD") << "the title is text";
    EXPECT_THAT(folder.log,
                ElementsAre("Converted unknown game: caf\xEF\xBF\xBD \xEF\xBF\xBD.game"));
}

TEST(FolderSafety, LongNamesAreConverted) {
    for (const size_t length : {200u, 250u}) {
        GameFolder folder(kNes);
        const std::string stem(length, 'n');
        folder.Write(stem + ".nes", Noise(1, kLeastNesImage));
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
        EXPECT_THAT(folder.Names(), ElementsAre(stem + ".game")) << length;
        EXPECT_EQ(folder.ImageOf(stem + ".game"), Noise(1, kLeastNesImage));
    }
    // One more byte than fits with the new ending.
    GameFolder folder(kNes);
    const std::string name = std::string(251, 'n') + ".nes";
    folder.Write(name, Noise(1, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre(name));
    EXPECT_EQ(folder.Counts(), (Counts{0, 0, 1, 0}));
    EXPECT_TRUE(folder.LoggedOf(".game", "File name too long"));
}

TEST(FolderSafety, NamesThatDifferInCaseAloneStayApart) {
    GameFolder folder(kNes);
    folder.Write("Game.nes", Noise(1, kLeastNesImage));
    folder.Write("GAME.nes", Noise(2, kLeastNesImage));
    folder.Write("GAME.NES", Noise(3, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("GAME.game", "GAME0.game", "Game.game"));
    EXPECT_EQ(folder.ImageOf("Game.game"), Noise(1, kLeastNesImage));
}

TEST(FolderSafety, EmptyFileStays) {
    GameFolder folder(kNes);
    folder.Write("empty.nes", "");
    folder.Write("empty.zip", "");
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log, ElementsAre(folder.At("empty.nes") + ": is empty",
                                        folder.At("empty.zip") + ": is empty"));
    EXPECT_EQ(folder.Counts(), (Counts{0, 0, 0, 2}));
    EXPECT_THAT(folder.Names(), ElementsAre("empty.nes", "empty.zip"));
}

TEST(FolderSafety, FileOfFourGibibytesIsRefusedUnread) {
    GameFolder folder(kNes);
    WriteSparse(folder.Path() / "huge.nes", uint64_t{4} << 30);
    WriteSparse(folder.Path() / "more.nes", (uint64_t{4} << 30) + 1000);
    WriteSparse(folder.Path() / "huge.zip", uint64_t{4} << 30);
    folder.Write("small.nes", Noise(1, kLeastNesImage));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_EQ(folder.Counts(), (Counts{0, 1, 2, 1}));
    EXPECT_TRUE(folder.LoggedOf("huge.nes", "is larger than 67108864 bytes"));
    EXPECT_TRUE(folder.LoggedOf("more.nes", "is larger than 67108864 bytes"));
    EXPECT_TRUE(folder.LoggedOf("huge.zip", "is larger than 268435456 bytes"));
    EXPECT_THAT(folder.Names(), ElementsAre("huge.nes", "huge.zip", "more.nes", "small.game"));
}

TEST(FolderSafety, CopierHeaderAloneStays) {
    GameFolder folder(4);
    folder.Write("header.smd", Bytes(512, 0xCC));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_TRUE(folder.LoggedOf("header.smd", "is only a copier's header"));
    EXPECT_THAT(folder.Names(), ElementsAre("header.smd"));
}

TEST(FolderSafety, WhatCanBeNoGameStaysAndIsCountedAsSkipped) {
    GameFolder folder(4);
    folder.Write("README.md", std::string(3000, 'n'));
    folder.Write("texts.zip", ZipOf({
                                  {"a.md", Bytes(3000, 'n')}
    }));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_TRUE(folder.Logged(folder.At("README.md") + ": is a text, not a game"));
    EXPECT_TRUE(folder.Logged(folder.At("texts.zip") + ": holds no game image"));
    EXPECT_EQ(folder.Counts(), (Counts{0, 0, 0, 2}));
    EXPECT_THAT(folder.Names(), ElementsAre("README.md", "texts.zip"));
}

// The game goes into the library, and the text is in no game.
TEST(FolderSafety, ZipWithAKnownGameAndATextOfAGamesNameStays) {
    const Bytes known = Noise(1, 2048);
    GameFolder folder(4, EntryOf(4, "known",
                                 {
                                     {"x", known}
    }));
    folder.Write("a.zip", ZipOf({
                              {"game.md",   known},
                              { "README.md", Bytes(3000,  'n')}
    }));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_TRUE(folder.LoggedOf("Kept: " + folder.At("a.zip"), "README.md is in no game file"));
    EXPECT_THAT(folder.Names(), ElementsAre("a.zip", "known.game"));
}

TEST(FolderSafety, FolderThatDisappearsEndsInErrors) {
    const Bytes known = Noise(1, kLeastNesImage);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.Write("inner/k.nes", known);
    folder.Write("inner/a.nes", Noise(2, kLeastNesImage));
    folder.Write("inner/b.nes", Noise(3, kLeastNesImage));
    // The folder goes after the games of step 2.
    CONVERSION conversion;
    conversion.folder = folder.Path() / "inner";
    conversion.system = kNes;
    conversion.database = &folder.database;
    std::vector<std::string> log;
    CONVERSION_SINK sink;
    sink.report = [&](ConversionCount, const std::wstring& line) {
        log.push_back(Utf8FromWide(line));
        fs::rename(conversion.folder, folder.Path() / "moved");
        sink.report = [&](ConversionCount, const std::wstring& next) {
            log.push_back(Utf8FromWide(next));
        };
    };
    EXPECT_EQ(ConvertFolder(conversion, sink), ConversionEnd::kDone);
    ASSERT_GE(log.size(), 3u);
    EXPECT_EQ(log[0], "Converted known.game");
    const std::string first = "Failed to convert this unknown game: ";
    EXPECT_EQ(log[1], first + (conversion.folder / "b.nes").string());
    for (const char* name : {"a.nes", "b.nes"}) {
        EXPECT_EQ(folder.Read(std::string("moved/") + name),
                  Noise(*name == 'a' ? 2 : 3, kLeastNesImage));
    }
    log.clear();
    fs::remove_all(folder.Path() / "inner");
    EXPECT_EQ(ConvertFolder(conversion, sink), ConversionEnd::kNoFolder);
    EXPECT_THAT(log, ElementsAre(conversion.folder.string() + ": is not a folder"));
}

TEST(FolderSafety, SourceThatChangedMeanwhileStays) {
    const Bytes known = Noise(1, kLeastNesImage);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.Write("k.nes", known);
    folder.onReport = [&] {
        if (folder.log.back() == "Converted known.game") {
            folder.Write("k.nes", known + Text("grown"));
        }
    };
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.log,
                ElementsAre("Converted known.game",
                            "Kept: " + folder.At("k.nes") + ": has changed since it was read"));
    EXPECT_EQ(folder.Read("k.nes"), known + Text("grown"));
}

TEST(FolderSafety, SourceThatCannotBeDeletedIsAnError) {
    const Bytes known = Noise(1, kLeastNesImage);
    GameFolder folder(kNes, EntryOf(kNes, "known",
                                    {
                                        {"x", known}
    }));
    folder.Write("k.nes", known);
    {
        const OrdinaryUser user(folder.Path());
        folder.onReport = [&] {
            if (folder.log.back() == "Converted known.game") {
                user.CloseFolder(folder.Path());
            }
        };
        EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    }
    EXPECT_EQ(folder.Counts(), (Counts{1, 0, 1, 0}));
    ASSERT_EQ(folder.log.size(), 3u);
    EXPECT_EQ(folder.log[1], "Failed to delete: " + folder.At("k.nes"));
    EXPECT_EQ(folder.Read("k.nes"), known);
}

TEST(FolderSafety, ReadOnlySourceIsDeleted) {
    GameFolder folder(kNes);
    fs::permissions(folder.Write("a.nes", Noise(1, kLeastNesImage)), fs::perms::owner_read);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("a.game"));
}

TEST(FolderSafety, FolderThatCannotBeWrittenIsLeftAlone) {
    GameFolder folder(kNes);
    folder.Write("a.nes", Noise(1, kLeastNesImage));
    {
        const OrdinaryUser user(folder.Path());
        user.CloseFolder(folder.Path());
        EXPECT_EQ(folder.Convert(), ConversionEnd::kLocked);
    }
    EXPECT_TRUE(folder.LoggedOf(folder.Path().string(), "nothing is converted"));
    EXPECT_THAT(folder.Names(), ElementsAre("a.nes"));
}
