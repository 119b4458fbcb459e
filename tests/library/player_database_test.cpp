#include "base/file_stamp.h"
#include "library/full_disk.h"
#include "library/player_database.h"

#include "support/counted_helpers.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int64_t kDay = 24 * 60 * 60;

GAME_IDENTITY Game(uint8_t number, uint16_t system = kSystemMasterSystem) {
    GAME_IDENTITY game;
    game.system = system;
    game.hash.fill(number);
    return game;
}

class Player : public testing::Test { // NOLINT(readability-identifier-naming): a test's name
protected:
    // As a program that starts, and ends with the next Start.
    PlayerDatabase& Start() {
        database.reset();
        database = std::make_unique<PlayerDatabase>([this] { return now.load(); });
        database->Open(File());
        return *database;
    }
    void End() { database.reset(); }

    void Damage(const char* name) const {
        std::vector<uint8_t> bytes = folder.Read(name);
        ASSERT_GT(bytes.size(), 200U);
        std::fill(bytes.begin() + 100, bytes.begin() + 200, uint8_t{0x5A});
        folder.Write(name, bytes);
    }
    // When the backup was made, in seconds since 1970.
    [[nodiscard]] int64_t BackupTime() const {
        FILE_STAMP stamp;
        return StampFile(folder.Path() / "player.db.backup", stamp) ? stamp.modified / 1'000'000'000
                                                                    : 0;
    }
    [[nodiscard]] bool IsThere(const char* name) const { return fs::exists(folder.Path() / name); }
    [[nodiscard]] fs::path File() const { return folder.Path() / "player.db"; }

    TemporaryFolder folder;
    std::atomic<int64_t> now = 1'000'000; // the database asks on its own thread too
    std::unique_ptr<PlayerDatabase> database;
};

} // namespace

TEST_F(Player, KnowsNothingOfAGameThatWasNeverPlayed) {
    EXPECT_EQ(Start().Find(Game(1)), PLAYER_RECORD());
    EXPECT_EQ(database->TakeMessage(), "");
}

TEST_F(Player, RemembersFavouritesStartsAndTimes) {
    Start();
    database->SetFavourite(Game(1), true);
    database->NoteStart(Game(2));
    now += 100;
    database->NotePlayed(Game(2), 90);
    now += 1000;
    database->NoteStart(Game(2));
    database->NotePlayed(Game(2), 5);
    const PLAYER_RECORD favourite{true, 0, 0, 0};
    const PLAYER_RECORD played{false, 1'001'100, 95, 2};
    EXPECT_EQ(database->Find(Game(1)), favourite) << "at once";
    Start();
    EXPECT_EQ(database->Find(Game(1)), favourite);
    EXPECT_EQ(database->Find(Game(2)), played);
    EXPECT_EQ(database->TakeMessage(), "");
    database->SetFavourite(Game(1), false);
    EXPECT_FALSE(Start().Find(Game(1)).favourite);
}

TEST_F(Player, AnImageBelongsToItsSystem) {
    Start().SetFavourite(Game(1, kSystemMasterSystem), true);
    EXPECT_FALSE(Start().Find(Game(1, kSystemGameGear)).favourite);
}

TEST_F(Player, ItsThreadIsAHelper) {
    const CountedHelpers helpers;
    Start().SetFavourite(Game(1), true);
    database->Finish();
    EXPECT_EQ(CountedHelpers::Begun(), 1);
}

TEST_F(Player, WithoutAFileItWorksForThisRun) {
    PlayerDatabase alone;
    alone.SetFavourite(Game(1), true);
    alone.Finish();
    EXPECT_TRUE(alone.Find(Game(1)).favourite);
}

TEST_F(Player, NothingIsKeptOfWhatIsNoGame) {
    Start().SetFavourite(GAME_IDENTITY(), true);
    EXPECT_FALSE(database->Find(GAME_IDENTITY()).favourite);
}

TEST_F(Player, TwoProgramsAddToOneFile) {
    Start().NotePlayed(Game(1), 10);
    database->Finish();
    PlayerDatabase other([] { return int64_t{2'000'000}; });
    other.Open(File());
    database->NotePlayed(Game(1), 100);
    database->Finish();
    other.NotePlayed(Game(1), 1000);
    other.Finish();
    EXPECT_EQ(Start().Find(Game(1)), (PLAYER_RECORD{false, 2'000'000, 1110, 0}));
}

TEST_F(Player, TheBackupIsMadeOnceADay) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    ASSERT_TRUE(IsThere("player.db.backup"));
    const auto first = folder.Read("player.db.backup");
    now = BackupTime() + kDay - 1;
    database->SetFavourite(Game(2), true);
    database->Finish();
    EXPECT_EQ(folder.Read("player.db.backup"), first);
    now = BackupTime() + kDay;
    database->SetFavourite(Game(3), true);
    database->Finish();
    EXPECT_NE(folder.Read("player.db.backup"), first);
    End();
    EXPECT_FALSE(IsThere("player.db.copy"));
    fs::rename(folder.Path() / "player.db.backup", File());
    EXPECT_TRUE(Start().Find(Game(3)).favourite) << "a backup is a database";
}

TEST_F(Player, ABackupOfATimeToComeIsMadeAnew) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    const auto first = folder.Read("player.db.backup");
    now = BackupTime() - kDay;
    database->SetFavourite(Game(2), true);
    database->Finish();
    EXPECT_NE(folder.Read("player.db.backup"), first);
}

TEST_F(Player, AnEmptyDatabaseReplacesNoBackup) {
    Start();
    database->Finish();
    EXPECT_FALSE(IsThere("player.db.backup"));
}

TEST_F(Player, ADamagedFileIsSetAsideAndTheBackupTaken) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    now = BackupTime();
    database->SetFavourite(Game(2), true);
    End();
    Damage("player.db");
    const auto damaged = folder.Read("player.db");
    Start();
    EXPECT_TRUE(database->Find(Game(1)).favourite);
    EXPECT_FALSE(database->Find(Game(2)).favourite) << "from before the backup";
    EXPECT_EQ(folder.Read("player.db.damaged"), damaged);
    EXPECT_NE(database->TakeMessage().find("player.db.damaged"), std::string::npos);
    EXPECT_EQ(database->TakeMessage(), "");
    database->SetFavourite(Game(3), true);
    EXPECT_TRUE(Start().Find(Game(3)).favourite);
    EXPECT_EQ(database->TakeMessage(), "");
}

TEST_F(Player, SetsAsideUnderTheNextFreeName) {
    for (const char* const aside :
         {"player.db.damaged", "player.db.damaged-2", "player.db.damaged-3"}) {
        Start().SetFavourite(Game(1), true);
        database->Finish();
        now = BackupTime();
        End();
        Damage("player.db");
        EXPECT_FALSE(IsThere(aside));
        EXPECT_TRUE(Start().Find(Game(1)).favourite);
        EXPECT_TRUE(IsThere(aside));
    }
}

TEST_F(Player, WithoutASoundBackupItBeginsAnew) {
    Start().SetFavourite(Game(1), true);
    End();
    Damage("player.db");
    Damage("player.db.backup");
    EXPECT_FALSE(Start().Find(Game(1)).favourite);
    EXPECT_TRUE(IsThere("player.db.damaged"));
    EXPECT_TRUE(IsThere("player.db.backup.damaged")) << "no backup replaces it";
    EXPECT_NE(database->TakeMessage(), "");
    database->SetFavourite(Game(2), true);
    EXPECT_TRUE(Start().Find(Game(2)).favourite);
}

TEST_F(Player, AMissingOrEmptyFileIsTakenFromTheBackup) {
    Start().SetFavourite(Game(1), true);
    End();
    fs::remove(File());
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
    End();
    folder.Write("player.db", std::string_view());
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
}

// Else it would be taken for that of the backup, which takes the file's place.
TEST_F(Player, TheJournalOfAMissingFileIsSetAside) {
    Start().SetFavourite(Game(1), true);
    End();
    fs::remove(File());
    folder.Write("player.db-journal", std::string_view("not a journal, but in its place"));
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
    EXPECT_TRUE(IsThere("player.db.damaged-journal"));
}

TEST_F(Player, AFileThatIsNoDatabaseIsSetAside) {
    folder.Write("player.db", std::string_view("dear diary"));
    Start().SetFavourite(Game(1), true);
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
    const auto aside = folder.Read("player.db.damaged");
    EXPECT_EQ(std::string(aside.begin(), aside.end()), "dear diary");
}

TEST_F(Player, ANewerVersionIsLeftAlone) {
    {
        SqliteDatabase newer;
        ASSERT_TRUE(newer.Open(File()));
        ASSERT_TRUE(newer.Execute("CREATE TABLE games (other); PRAGMA user_version = 2; "
                                  "PRAGMA application_id = 0x4F504C02;"));
    }
    const auto before = folder.Read("player.db");
    Start().SetFavourite(Game(1), true);
    EXPECT_TRUE(database->Find(Game(1)).favourite) << "for this run";
    EXPECT_NE(database->TakeMessage().find("newer version"), std::string::npos);
    EXPECT_FALSE(Start().Find(Game(1)).favourite);
    End();
    EXPECT_EQ(folder.Read("player.db"), before);
    EXPECT_FALSE(IsThere("player.db.damaged"));
}

// One number says the version once more: a damaged one must not pass for a newer version.
TEST_F(Player, ADamagedVersionIsNoNewerOne) {
    Start().SetFavourite(Game(1), true);
    End();
    {
        SqliteDatabase changed;
        ASSERT_TRUE(changed.Open(File()));
        ASSERT_TRUE(changed.Execute("PRAGMA user_version = 2"));
    }
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
    EXPECT_TRUE(IsThere("player.db.damaged"));
}

TEST_F(Player, AFileThatGoesMissingWhileItRunsIsWrittenAnew) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    fs::remove(File());
    fs::remove(folder.Path() / "player.db.backup");
    database->SetFavourite(Game(2), true);
    database->Finish();
    EXPECT_NE(database->TakeMessage().find("written anew"), std::string::npos);
    Start();
    EXPECT_TRUE(database->Find(Game(1)).favourite);
    EXPECT_TRUE(database->Find(Game(2)).favourite);
}

TEST_F(Player, ANewerFileThatIsPutThereWhileItRunsIsLeftAlone) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    fs::remove(File());
    {
        SqliteDatabase newer;
        ASSERT_TRUE(newer.Open(File()));
        ASSERT_TRUE(newer.Execute("CREATE TABLE games (other); PRAGMA user_version = 2; "
                                  "PRAGMA application_id = 0x4F504C02;"));
    }
    const auto before = folder.Read("player.db");
    database->SetFavourite(Game(2), true);
    database->SetFavourite(Game(3), true);
    End();
    EXPECT_EQ(folder.Read("player.db"), before);
    EXPECT_FALSE(IsThere("player.db.damaged"));
}

TEST_F(Player, AFileThatWasGoneOnAFullDiskIsWrittenOnceThereIsRoom) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    fs::remove(File());
    fs::remove(folder.Path() / "player.db.backup");
    {
        const FullDisk full(0);
        database->NotePlayed(Game(2), 10);
        database->Finish();
        const std::string told = database->TakeMessage();
        EXPECT_NE(told.find("are not kept"), std::string::npos);
        EXPECT_TRUE(told.starts_with(File().string())) << told;
        database->NotePlayed(Game(2), 100);
        database->Finish();
        EXPECT_EQ(database->TakeMessage(), "") << "once is enough";
    }
    database->NotePlayed(Game(2), 1000);
    database->Finish();
    EXPECT_NE(database->TakeMessage().find("written anew"), std::string::npos);
    Start();
    EXPECT_TRUE(database->Find(Game(1)).favourite);
    EXPECT_EQ(database->Find(Game(2)).secondsPlayed, 1110);
    EXPECT_FALSE(IsThere("player.db.damaged")) << "nothing was there to be set aside";
}

TEST_F(Player, WritesAgainWhenAFileThatItMayNotWriteIsGone) {
    Start().SetFavourite(Game(1), true);
    database->Finish();
    const auto sound = folder.Read("player.db");
    fs::remove(File());
    {
        SqliteDatabase newer;
        ASSERT_TRUE(newer.Open(File()));
        ASSERT_TRUE(newer.Execute("CREATE TABLE games (other); PRAGMA user_version = 2; "
                                  "PRAGMA application_id = 0x4F504C02;"));
    }
    database->SetFavourite(Game(2), true);
    database->Finish();
    EXPECT_NE(database->TakeMessage().find("newer version"), std::string::npos);
    fs::remove(File());
    folder.Write("player.db", sound);
    database->SetFavourite(Game(3), true);
    Start();
    for (const uint8_t number : {uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
        EXPECT_TRUE(database->Find(Game(number)).favourite) << int{number};
    }
}

TEST_F(Player, MakesTheHomeFolder) {
    const fs::path file = folder.Path() / "home" / "player.db";
    {
        PlayerDatabase first;
        first.Open(file);
        first.SetFavourite(Game(1), true);
    }
    PlayerDatabase second;
    second.Open(file);
    EXPECT_TRUE(second.Find(Game(1)).favourite);
}

// As the tests' user without the right to everything. Threads of the test have it still, so the file is used
// without one.
TEST_F(Player, AHomeFolderThatMayNotBeWrittenIsReadOnly) {
    Start().SetFavourite(Game(1), true);
    End();
    const uid_t before = geteuid();
    constexpr fs::perms kRead =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    fs::permissions(File(), kRead);
    fs::permissions(folder.Path(),
                    kRead | fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec);
    if (before == 0) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    {
        PlayerFile file;
        PlayerRecords records;
        std::string message;
        static_cast<void>(file.Open(File(), records, message));
        EXPECT_TRUE(records[Game(1)].favourite) << message;
        EXPECT_FALSE(file.Write(
            {
                {Game(2), {true, 0, 0, 0}}
        },
            records, message));
        EXPECT_NE(message, "");
        PlayerFile none;
        message.clear();
        EXPECT_FALSE(none.Open(folder.Path() / "other.db", records, message));
        const std::string name = (folder.Path() / "other.db").string();
        EXPECT_TRUE(message.starts_with(name + ": unable to open")) << message;
        EXPECT_NE(message.find("; favourites and times played are not kept"), std::string::npos);
    }
    EXPECT_EQ(seteuid(before), 0);
    fs::permissions(folder.Path(), fs::perms::owner_all);
    EXPECT_TRUE(Start().Find(Game(1)).favourite);
}

TEST_F(Player, WhatCouldNotBeWrittenIsWrittenWithTheNextChange) {
    Start().NotePlayed(Game(1), 10);
    database->Finish();
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    void (*const handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    database->NotePlayed(Game(1), 100);
    database->SetFavourite(Game(2), true);
    database->Finish();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_NE(database->TakeMessage(), "");
    EXPECT_EQ(database->Find(Game(1)).secondsPlayed, 110);
    database->NotePlayed(Game(1), 1000);
    Start();
    EXPECT_EQ(database->Find(Game(1)).secondsPlayed, 1110);
    EXPECT_TRUE(database->Find(Game(2)).favourite);
    EXPECT_FALSE(IsThere("player.db.damaged"));
}

// Whatever happens to the bytes, what is read is what was written, or the backup, and nothing between.
TEST_F(Player, RandomDamageYieldsTheFileOrItsBackup) {
    PlayerRecords older;
    PlayerRecords present;
    std::string message;
    {
        PlayerFile file;
        PlayerRecords none;
        ASSERT_TRUE(file.Open(File(), none, message)) << message;
        const auto add = [&](uint8_t number, PlayerRecords& to) {
            const PLAYER_CHANGE change{number % 3 == 0, 1000 + number, number * 60, number};
            ApplyChange(change, to[Game(number)]);
            ASSERT_TRUE(file.Write(
                {
                    {Game(number), change}
            },
                to, message))
                << message;
        };
        for (uint8_t number = 1; number <= 60; ++number) {
            add(number, older);
        }
        file.BackUp(now);
        present = older;
        for (uint8_t number = 40; number <= 120; ++number) {
            add(number, present);
        }
    }
    const auto sound = folder.Read("player.db");
    const auto backup = folder.Read("player.db.backup");
    ASSERT_FALSE(backup.empty());
    int mended = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        std::vector<uint8_t> bytes = sound;
        if (seed % 10 == 0) {
            bytes.resize(random() % bytes.size());
        } else if (seed % 10 == 1) {
            const size_t from = random() % bytes.size();
            const size_t length = std::min<size_t>(bytes.size() - from, random() % 4096);
            std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), length, uint8_t{0});
        } else {
            for (unsigned changes = 1 + random() % 8; changes > 0; --changes) {
                // The header and the first page's tables as often as all of the rest.
                const size_t at = random() % (random() % 2 == 0 ? 512 : bytes.size());
                bytes[at] = static_cast<uint8_t>(random());
            }
        }
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            fs::remove(entry.path());
        }
        folder.Write("player.db", bytes);
        folder.Write("player.db.backup", backup);
        PlayerRecords read;
        {
            PlayerFile file;
            ASSERT_TRUE(file.Open(File(), read, message)) << "seed " << seed << ": " << message;
            ASSERT_TRUE(read == present || read == older) << "seed " << seed;
            mended += read == older ? 1 : 0;
            const PLAYER_CHANGE change{true, 5000, 7, 1};
            ApplyChange(change, read[Game(200)]);
            ASSERT_TRUE(file.Write(
                {
                    {Game(200), change}
            },
                read, message))
                << "seed " << seed << ": " << message;
        }
        PlayerRecords again;
        PlayerFile file;
        ASSERT_TRUE(file.Open(File(), again, message)) << "seed " << seed << ": " << message;
        EXPECT_EQ(message, "") << "seed " << seed;
        EXPECT_TRUE(again == read) << "seed " << seed;
    }
    EXPECT_GT(mended, 30);
}
