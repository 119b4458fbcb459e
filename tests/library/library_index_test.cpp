#include "library/index_fixture.h"
#include "library/library_index.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using std::chrono::hours;

namespace {

// Titles of one length, so that files of them have one length.
constexpr std::string_view kOne = "Title one";
constexpr std::string_view kTwo = "Title two";

} // namespace

TEST_F(Library, AFileThatIsRememberedIsNotReadAgain) {
    const fs::path path = Put("a.game", kOne, 3);
    EXPECT_EQ(Scan()["a.game"], kOne);
    // Nothing but a read could tell.
    ReplaceUnseen(path, MadeGame(kTwo, 3));
    uint64_t filesRead = 1;
    EXPECT_EQ(Scan(&filesRead)["a.game"], kOne);
    EXPECT_EQ(filesRead, 0U);
}

TEST_F(Library, TheRecordsComeBackWhole) {
    const fs::path path = Put("a.game", kOne, 3);
    (void)Scan();
    LibraryIndex index;
    std::string error;
    ASSERT_TRUE(index.Open(Database(), error)) << error;
    index.LoadFolder(Games());
    CGameFile remembered;
    CGameFile plain;
    ASSERT_TRUE(index.LoadGame(path, remembered));
    ASSERT_TRUE(LoadGameFile(true, path, plain));
    EXPECT_EQ(index.FilesRead(), 0U);
    EXPECT_EQ(remembered.Serialise(false), plain.Serialise(false));
    EXPECT_FALSE(remembered.DataUnpacked());
}

TEST_F(Library, AnotherTimeOrLengthHasTheFileReadAgain) {
    const fs::path path = Put("a.game", kOne);
    (void)Scan();
    ReplaceUnseen(path, MadeGame(kTwo));
    fs::last_write_time(path, fs::last_write_time(path) + std::chrono::nanoseconds(1));
    EXPECT_EQ(Scan()["a.game"], kTwo) << "by its time";
    const auto time = fs::last_write_time(path);
    home.Write("sms/a.game", MadeGame(kOne, 1, 101));
    fs::last_write_time(path, time);
    EXPECT_EQ(Scan()["a.game"], kOne) << "by its length";
    EXPECT_EQ(FilesReadByAScan(), 0U) << "what was read again is remembered";
    EXPECT_EQ(Rows(), 1);
}

TEST_F(Library, AFileThatHasJustChangedIsReadEveryTime) {
    // It could change again at the same time of a coarse clock.
    Put("a.game", kOne, 1, hours(0));
    (void)Scan();
    EXPECT_EQ(FilesReadByAScan(), 1U);
    EXPECT_EQ(Rows(), 0);
    SetAge(Games() / "a.game", hours(-1));
    (void)Scan();
    EXPECT_EQ(FilesReadByAScan(), 0U) << "a time to come does not move on by itself";
}

TEST_F(Library, GoneFilesAreForgotten) {
    Put("a.game", kOne);
    const fs::path gone = Put("b.game", kTwo);
    (void)Scan();
    EXPECT_EQ(Rows(), 2);
    fs::remove(gone);
    EXPECT_EQ(Scan().size(), 1U);
    EXPECT_EQ(Rows(), 1);
}

TEST_F(Library, AScanThatWasStoppedForgetsNothing) {
    const fs::path first = Put("a.game", kOne);
    Put("b.game", kTwo);
    (void)Scan();
    {
        LibraryIndex index;
        std::string error;
        ASSERT_TRUE(index.Open(Database(), error)) << error;
        index.LoadFolder(Games());
        CGameFile game;
        ASSERT_TRUE(index.LoadGame(first, game));
        index.Commit();
    }
    EXPECT_EQ(FilesReadByAScan(), 0U);
}

TEST_F(Library, RefusesWhatLoadGameFileRefusesAndDoesNotRememberIt) {
    std::vector<uint8_t> longer = MadeGame(kOne);
    longer[4] = 0xFF; // headerSize
    longer[5] = 0xFF;
    std::vector<uint8_t> otherTag = MadeGame(kOne);
    otherTag[88] = 'X'; // of the NAME record
    std::vector<uint8_t> withGada(68);
    std::copy_n("GADA", 4, withGada.begin());
    const std::vector<uint8_t> whole = MadeGame(kOne);
    withGada.insert(withGada.end(), whole.begin(), whole.end());
    const auto front = [&](std::ptrdiff_t bytes) {
        return std::vector<uint8_t>(whole.begin(), whole.begin() + bytes);
    };
    std::map<std::string, std::vector<uint8_t>> files;
    files["empty.game"] = {};
    files["short.game"] = front(87);
    files["cut.game"] = front(300);
    files["longer.game"] = longer;
    files["tag.game"] = otherTag;
    files["gada.game"] = withGada;
    files["text.game"] = std::vector<uint8_t>(5000, 'x');
    for (const auto& [name, bytes] : files) {
        SetAge(home.Write("sms/" + name, bytes), hours(1));
        CGameFile game;
        EXPECT_FALSE(LoadGameFile(true, Games() / name, game)) << name;
    }
    fs::create_directory(Games() / "folder.game");
    ASSERT_EQ(mkfifo((Games() / "pipe.game").c_str(), 0600), 0);
    fs::create_symlink("nothing", Games() / "link.game");
    for (int scan = 0; scan < 2; ++scan) {
        for (const auto& [name, title] : Scan()) {
            EXPECT_EQ(title, "") << name;
        }
        EXPECT_EQ(Rows(), 0);
    }
}

TEST_F(Library, AGameThatBecomesDamagedIsForgotten) {
    Put("a.game", kOne);
    (void)Scan();
    SetAge(home.Write("sms/a.game", std::string(1000, 'x')), hours(1));
    EXPECT_EQ(Scan()["a.game"], "");
    EXPECT_EQ(Rows(), 0);
}

TEST_F(Library, GamesOfManyNamesAreReadWhole) {
    // 368 bytes a name and 24 a machine record: under a page, over one, and more than is remembered.
    const std::map<std::string, uint32_t> names = {
        {"some.game", 5  },
        {"many.game", 20 },
        {"most.game", 200}
    };
    for (const auto& [name, count] : names) {
        Put(name, kOne, count);
    }
    for (int scan = 0; scan < 2; ++scan) {
        LibraryIndex index;
        std::string error;
        ASSERT_TRUE(index.Open(Database(), error)) << error;
        index.LoadFolder(Games());
        for (const auto& [name, count] : names) {
            CGameFile game;
            ASSERT_TRUE(index.LoadGame(Games() / name, game)) << name;
            EXPECT_EQ(game.NameCount(), count) << name;
        }
        EXPECT_EQ(index.FilesRead(), scan == 0 ? 3U : 1U);
        index.Commit();
    }
}

TEST_F(Library, NamesOfAnyBytesAreRemembered) {
    Put("a\\b.game", kOne);
    Put("\xFF\xFE'\".game", kTwo);
    Put(std::string(200, 'n') + ".game", kOne);
    Put("A.GAME", kOne);
    Put("a.game", kTwo);
    const auto titles = Scan();
    EXPECT_EQ(titles.size(), 5U);
    uint64_t filesRead = 0;
    EXPECT_EQ(Scan(&filesRead), titles);
    EXPECT_EQ(filesRead, 0U);
}

TEST_F(Library, AHomeFolderMayBeMoved) {
    Put("a.game", kOne);
    (void)Scan();
    TemporaryFolder elsewhere;
    fs::rename(home.Path(), elsewhere.Path() / "moved");
    LibraryIndex index;
    std::string error;
    ASSERT_TRUE(index.Open(elsewhere.Path() / "moved" / kDatabase, error)) << error;
    index.LoadFolder(elsewhere.Path() / "moved" / "sms");
    CGameFile game;
    EXPECT_TRUE(index.LoadGame(elsewhere.Path() / "moved" / "sms" / "a.game", game));
    EXPECT_EQ(index.FilesRead(), 0U);
}

TEST_F(Library, AFolderIsTheSameHoweverItsPathIsWritten) {
    Put("a.game", kOne);
    (void)Scan();
    for (const std::string folder : {"sms/", "./sms", "sms/../sms"}) {
        LibraryIndex index;
        std::string error;
        ASSERT_TRUE(index.Open(Database(), error)) << error;
        index.LoadFolder(home.Path() / folder);
        CGameFile game;
        EXPECT_TRUE(index.LoadGame(home.Path() / folder / "a.game", game));
        EXPECT_EQ(index.FilesRead(), 0U) << folder;
    }
}

TEST_F(Library, WorksWithoutADatabase) {
    const fs::path path = Put("a.game", kOne);
    LibraryIndex never;
    CGameFile game;
    EXPECT_TRUE(never.LoadGame(path, game));
    never.Commit();

    fs::create_directory(Database());
    LibraryIndex index;
    std::string error;
    EXPECT_FALSE(index.Open(Database(), error));
    EXPECT_NE(error.find(Database().string() + ": "), std::string::npos) << error;
    EXPECT_EQ(ScanWith(index)["a.game"], kOne);
    EXPECT_EQ(ScanWith(index)["a.game"], kOne);
    EXPECT_TRUE(fs::is_directory(Database()));
}

TEST_F(Library, TheDatabaseMayBeDeletedBetweenScansAndDuringOne) {
    Put("a.game", kOne);
    Put("b.game", kTwo);
    const auto titles = Scan();
    fs::remove(Database());
    EXPECT_EQ(Scan(), titles);
    EXPECT_EQ(FilesReadByAScan(), 0U);

    LibraryIndex index;
    std::string error;
    ASSERT_TRUE(index.Open(Database(), error)) << error;
    Put("c.game", kOne);
    index.LoadFolder(Games());
    fs::remove(Database());
    EXPECT_EQ(ScanWith(index).size(), 3U);
    EXPECT_TRUE(fs::exists(Database())) << "made again by the first Commit that has news";
    EXPECT_EQ(FilesReadByAScan(), 0U) << "with the files that had been remembered before";
}

TEST_F(Library, AFileThatIsNoDatabaseIsMadeAnew) {
    const std::string contents[] = {"", "x", std::string(100'000, 'x'), "SQLite format 3"};
    Put("a.game", kOne);
    for (const std::string& content : contents) {
        home.Write(kDatabase, content);
        EXPECT_EQ(Scan()["a.game"], kOne) << content;
        EXPECT_EQ(FilesReadByAScan(), 0U) << content;
        EXPECT_EQ(Rows(), 1) << content;
    }
}

TEST_F(Library, ADatabaseOfAnotherVersionOrProgramIsMadeAnew) {
    const char* databases[] = {
        "CREATE TABLE files (a); PRAGMA user_version = 2",
        "CREATE TABLE files (folder, name)",
        "CREATE TABLE files (a); PRAGMA user_version = 1",
        "CREATE TABLE other (a)",
        "PRAGMA user_version = 1",
        ("CREATE VIEW files AS SELECT 1 AS folder, 2 AS name, 3 AS length, 4 AS modified, "
         "5 AS records, 6 AS checksum; PRAGMA user_version = 1"),
    };
    Put("a.game", kOne);
    for (const char* sql : databases) {
        fs::remove(Database());
        SqliteDatabase database;
        ASSERT_TRUE(database.Open(Database()));
        ASSERT_TRUE(database.Execute(sql)) << database.Error();
        database.Close();
        EXPECT_EQ(Scan()["a.game"], kOne) << sql;
        EXPECT_EQ(FilesReadByAScan(), 0U) << sql;
        EXPECT_EQ(Rows(), 1) << sql;
    }
}

TEST_F(Library, AChangedRowIsNoticedByItsChecksum) {
    Put("a.game", kOne);
    Put("b.game", kTwo);
    const auto titles = Scan();
    const char* changes[] = {
        "UPDATE files SET records = (SELECT records FROM files WHERE name = x'622E67616D65') "
        "WHERE name = x'612E67616D65'",
        "UPDATE files SET records = substr(records, 1, 100)",
        "UPDATE files SET records = zeroblob(100000)",
        "UPDATE files SET records = 'text', checksum = 5",
        "UPDATE files SET checksum = zeroblob(32)",
        "UPDATE files SET length = 'many'",
        // The rows of the two files exchanged.
        "UPDATE files SET name = x'00' WHERE name = x'612E67616D65';"
        "UPDATE files SET name = x'612E67616D65' WHERE name = x'622E67616D65';"
        "UPDATE files SET name = x'622E67616D65' WHERE name = x'00'",
    };
    for (const char* change : changes) {
        {
            SqliteDatabase database;
            ASSERT_TRUE(database.Open(Database()));
            ASSERT_TRUE(database.Execute(change)) << database.Error();
        }
        EXPECT_EQ(Scan(), titles) << change;
        EXPECT_EQ(FilesReadByAScan(), 0U) << "mended after: " << change;
    }
}

// Cuts, overwrites or changes bytes of the database or of a journal beside it.
void Damage(const fs::path& database, std::vector<uint8_t> bytes, std::mt19937& random) {
    const auto below = [&](size_t end) {
        return std::uniform_int_distribution<size_t>(0, end - 1)(random);
    };
    const auto write = [](const fs::path& path, const std::vector<uint8_t>& content) {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()),
                   static_cast<std::streamsize>(content.size()));
    };
    switch (below(5)) {
    case 0: // a few bytes anywhere
        for (size_t count = 1 + below(20); count > 0; --count) {
            bytes[below(bytes.size())] = static_cast<uint8_t>(below(256));
        }
        break;
    case 1: // in the header and the first page, where the structure is
        for (size_t count = 1 + below(4); count > 0; --count) {
            bytes[below(200)] ^= static_cast<uint8_t>(1U << below(8));
        }
        break;
    case 2: bytes.resize(below(bytes.size())); break;
    case 3: { // a stretch copied over another
        const size_t length = 1 + below(std::min<size_t>(bytes.size() / 2, 20'000));
        const std::vector<uint8_t> piece(bytes.begin(),
                                         bytes.begin() + static_cast<std::ptrdiff_t>(length));
        const size_t to = below(bytes.size() - length);
        std::copy(piece.begin(), piece.end(), bytes.begin() + static_cast<std::ptrdiff_t>(to));
        break;
    }
    default: { // a journal that asks for random pages to be put back
        std::vector<uint8_t> journal = {0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};
        journal.resize(512 + 2 * (16384 + 8));
        for (size_t i = 8; i < journal.size(); ++i) {
            journal[i] = i < 28 ? static_cast<uint8_t>(i % 4 == 3 ? below(8) : 0)
                                : static_cast<uint8_t>(below(256));
        }
        write(fs::path(database) += below(2) == 0 ? "-journal" : "-wal", journal);
        break;
    }
    }
    write(database, bytes);
}

TEST_F(Library, NoDamageToTheDatabaseYieldsWrongRecords) {
    constexpr int kFiles = 60;
    constexpr int kRounds = 300;
    std::map<std::string, std::string> titles;
    for (int i = 0; i < kFiles; ++i) {
        const std::string number = std::to_string(100 + i);
        Put("game " + number + ".game", "Title " + number, 1 + static_cast<uint32_t>(i) % 4);
        titles["game " + number + ".game"] = "Title " + number;
    }
    ASSERT_EQ(Scan(), titles);
    const std::vector<uint8_t> sound = home.Read(kDatabase);
    int noticed = 0;
    for (int round = 0; round < kRounds; ++round) {
        std::mt19937 random(static_cast<unsigned>(round));
        Damage(Database(), sound, random);
        uint64_t filesRead = 0;
        ASSERT_EQ(Scan(&filesRead), titles) << "round " << round;
        noticed += filesRead > 0 ? 1 : 0;
        ASSERT_EQ(Scan(), titles) << "again, round " << round;
        ASSERT_EQ(FilesReadByAScan(), 0U) << "not mended in round " << round;
    }
    // Some damage hits unused bytes, but most of it does not.
    EXPECT_GT(noticed, kRounds / 4);
}

TEST_F(Library, TwoScansAtOnceShareTheDatabase) {
    for (int i = 0; i < 200; ++i) {
        Put(std::to_string(i) + ".game", "Title " + std::to_string(i));
    }
    const auto titles = Scan();
    fs::remove(Database());
    std::atomic<int> wrong{0};
    std::vector<std::thread> programs;
    for (int program = 0; program < 3; ++program) {
        programs.emplace_back([&] {
            for (int round = 0; round < 10; ++round) {
                wrong += Scan() == titles ? 0 : 1;
            }
        });
    }
    for (std::thread& program : programs) {
        program.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(FilesReadByAScan(), 0U);
}

TEST_F(Library, ThreadsMayAskOneIndex) {
    constexpr int kFiles = 200;
    for (int i = 0; i < kFiles; ++i) {
        Put(std::to_string(i) + ".game", "Title " + std::to_string(i));
    }
    LibraryIndex index;
    std::string error;
    ASSERT_TRUE(index.Open(Database(), error)) << error;
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            index.LoadFolder(Games());
            for (int i = thread % 2; i < kFiles; i += 2) {
                CGameFile game;
                const std::string number = std::to_string(i);
                right += index.LoadGame(Games() / (number + ".game"), game) &&
                                 TitleOf(game) == "Title " + number
                             ? 1
                             : 0;
            }
            index.Commit();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 2 * kFiles);
    EXPECT_EQ(FilesReadByAScan(), 0U);
}
