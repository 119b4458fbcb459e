#include "library/sqlite_database.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

class Sqlite : public testing::Test { // NOLINT(readability-identifier-naming): a test's name
protected:
    void Open() { ASSERT_TRUE(database.Open(file)) << database.Error(); }
    void OpenWithTable() {
        Open();
        ASSERT_TRUE(database.Execute("CREATE TABLE t (a, b)")) << database.Error();
    }
    // Of the table's rows; -1 if they cannot be counted.
    int64_t Rows() {
        SqliteStatement count(database, "SELECT count(*) FROM t");
        return count.NextRow() ? count.Integer(0) : -1;
    }

    TemporaryFolder folder;
    const fs::path file = folder.Path() / "some.db";
    SqliteDatabase database;
};

} // namespace

TEST_F(Sqlite, ValuesComeBackAsTheyWere) {
    OpenWithTable();
    const int64_t numbers[] = {0, -1, std::numeric_limits<int64_t>::max(),
                               std::numeric_limits<int64_t>::min()};
    const Bytes bytes = {0, 1, 0, 255};
    const std::string text("a\0\xC3\xA9", 4);
    SqliteStatement insert(database, "INSERT INTO t VALUES (?1, ?2)");
    for (const int64_t number : numbers) {
        EXPECT_TRUE(insert.Bind(1, number).Bind(2, bytes).Run());
    }
    EXPECT_TRUE(insert.Bind(1, text).Bind(2, Bytes{}).Run());
    SqliteStatement select(database, "SELECT a, b FROM t ORDER BY rowid");
    for (const int64_t number : numbers) {
        ASSERT_TRUE(select.NextRow());
        EXPECT_EQ(select.Integer(0), number);
        const auto found = select.Bytes(1);
        EXPECT_EQ(Bytes(found.begin(), found.end()), bytes);
    }
    ASSERT_TRUE(select.NextRow());
    EXPECT_EQ(select.Text(0), text);
    EXPECT_TRUE(select.Bytes(1).empty());
    EXPECT_FALSE(select.NextRow());
    EXPECT_FALSE(select.Failed());
    SqliteStatement nulls(database, "SELECT count(*) FROM t WHERE b IS NULL");
    ASSERT_TRUE(nulls.NextRow());
    EXPECT_EQ(nulls.Integer(0), 0) << "empty bytes are no missing value";
}

TEST_F(Sqlite, ATransactionThatIsNotCommittedIsTakenBack) {
    OpenWithTable();
    {
        const SqliteTransaction transaction(database);
        ASSERT_TRUE(transaction.Begun());
        ASSERT_TRUE(database.Execute("INSERT INTO t VALUES (1, 2)"));
        EXPECT_EQ(Rows(), 1);
    }
    EXPECT_EQ(Rows(), 0);
    {
        SqliteTransaction transaction(database);
        ASSERT_TRUE(database.Execute("INSERT INTO t VALUES (1, 2)"));
        EXPECT_TRUE(transaction.Commit());
    }
    EXPECT_EQ(Rows(), 1);
}

TEST_F(Sqlite, AWrongStatementFailsWithTheFilesNameAndTheReason) {
    OpenWithTable();
    SqliteStatement wrong(database, "SELECT c FROM t");
    EXPECT_FALSE(wrong.Ready());
    EXPECT_FALSE(wrong.NextRow());
    EXPECT_TRUE(wrong.Failed());
    EXPECT_EQ(database.Fault(), SqliteFault::kOther);
    EXPECT_EQ(database.Error(), file.string() + ": no such column: c");
}

TEST_F(Sqlite, AFolderInPlaceOfTheFileIsNotOpened) {
    fs::create_directory(file);
    EXPECT_FALSE(database.Open(file));
    EXPECT_FALSE(database.IsOpen());
    EXPECT_NE(database.Error(), "");
}

TEST_F(Sqlite, AFileThatIsNoDatabaseIsDamagedUntilItIsEmptied) {
    folder.Write("some.db", std::string(5000, 'x'));
    Open();
    EXPECT_FALSE(database.Execute("CREATE TABLE t (a, b)"));
    EXPECT_EQ(database.Fault(), SqliteFault::kDamaged);
    ASSERT_TRUE(database.Empty()) << database.Error();
    EXPECT_TRUE(database.Execute("CREATE TABLE t (a, b)")) << database.Error();
    EXPECT_EQ(Rows(), 0);
}

TEST_F(Sqlite, EmptyingSucceedsWhileAnotherHasItOpen) {
    OpenWithTable();
    ASSERT_TRUE(database.Execute("INSERT INTO t VALUES (1, 2)"));
    SqliteDatabase other;
    ASSERT_TRUE(other.Open(file));
    ASSERT_TRUE(other.Empty()) << other.Error();
    EXPECT_EQ(Rows(), -1) << "the table is gone for both";
    Open();
    EXPECT_TRUE(database.Execute("CREATE TABLE t (a, b)")) << database.Error();
    EXPECT_EQ(Rows(), 0);
}

TEST_F(Sqlite, ALockedFileIsBusy) {
    OpenWithTable();
    SqliteDatabase other;
    ASSERT_TRUE(other.Open(file));
    const SqliteTransaction lock(other);
    ASSERT_TRUE(lock.Begun());
    ASSERT_TRUE(database.Execute("PRAGMA busy_timeout = 0"));
    EXPECT_FALSE(database.Execute("INSERT INTO t VALUES (1, 2)"));
    EXPECT_EQ(database.Fault(), SqliteFault::kBusy);
}

TEST_F(Sqlite, AFileThatWasReplacedHasMoved) {
    OpenWithTable();
    fs::remove(file);
    EXPECT_FALSE(database.Execute("INSERT INTO t VALUES (1, 2)"));
    EXPECT_EQ(database.Fault(), SqliteFault::kMoved);
    EXPECT_FALSE(fs::exists(file.string() + "-journal"));
}

TEST_F(Sqlite, AValueOverTheLimitIsRefused) {
    OpenWithTable();
    const Bytes large(size_t{kSqliteLargestValue} + 1);
    SqliteStatement insert(database, "INSERT INTO t VALUES (1, ?1)");
    EXPECT_FALSE(insert.Bind(1, large).Run());
    EXPECT_EQ(Rows(), 0);
}

TEST_F(Sqlite, TriggersOfTheFileDoNotRun) {
    OpenWithTable();
    ASSERT_TRUE(database.Execute("CREATE TABLE u (a);"
                                 "CREATE TRIGGER tr AFTER INSERT ON u BEGIN "
                                 "INSERT INTO t VALUES (1, 2); END;"));
    ASSERT_TRUE(database.Execute("INSERT INTO u VALUES (1)")) << database.Error();
    EXPECT_EQ(Rows(), 0);
}
