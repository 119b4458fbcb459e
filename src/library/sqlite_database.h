// A database in one file: a thin layer over SQLite.
//
// A file may be open in several programs at once. Whoever finds it locked waits for kSqlitePatience and
// then fails with kBusy. The file's bytes are not trusted: triggers and views in it do not run, and a
// value over kSqliteLargestValue is refused.
//
// Owner: one thread at a time. A statement lives no longer than its database.
// Failure: by result; Fault() then says of which kind and Error() is one line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

inline constexpr int kSqlitePatience = 2000;           // milliseconds
inline constexpr int kSqliteLargestValue = 16'000'000; // bytes

enum class SqliteFault {
    kNone,
    kBusy,     // another program has held the lock for too long
    kDamaged,  // the file is no database, or a damaged one
    kMoved,    // the file was deleted or replaced since it was opened
    kReadOnly, // reading works
    kOther,    // a full disk, wrong SQL and the rest
};

class SqliteDatabase {
public:
    SqliteDatabase() = default;
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    // Makes the file if there is none; its folder must exist. One that may not be written is opened for
    // reading. Damage shows only in the first statement.
    [[nodiscard]] bool Open(const std::filesystem::path& file);
    void Close();
    [[nodiscard]] bool IsOpen() const { return handle != nullptr; }

    // Statements that return no rows.
    [[nodiscard]] bool Execute(const char* sql);
    // Makes it an empty database in the same file, whatever the file holds. No transaction or statement
    // may be open.
    [[nodiscard]] bool Empty();
    // Frees the pages that are kept for the next statement.
    void ReleaseMemory();

    [[nodiscard]] SqliteFault Fault() const { return fault; }
    [[nodiscard]] const std::string& Error() const { return error; }

private:
    friend class SqliteStatement;
    friend class SqliteTransaction;

    bool Note(int code); // true for a success

    sqlite3* handle = nullptr;
    SqliteFault fault = SqliteFault::kNone;
    std::string error;
    std::string name; // of the file, for messages
};

// One prepared statement. Parameters count from 1, columns from 0.
class SqliteStatement {
public:
    SqliteStatement(SqliteDatabase& database, std::string_view sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    [[nodiscard]] bool Ready() const { return statement != nullptr; }

    // Bytes and text must live until the statement has run.
    SqliteStatement& Bind(int parameter, int64_t value);
    SqliteStatement& Bind(int parameter, std::span<const uint8_t> value);
    SqliteStatement& Bind(int parameter, std::string_view value);

    // True if there is a row; without one Failed() tells the end from a failure.
    [[nodiscard]] bool NextRow();
    // Runs a statement without rows, and makes it ready for the next parameters.
    [[nodiscard]] bool Run();
    [[nodiscard]] bool Failed() const { return failed; }

    [[nodiscard]] int64_t Integer(int column) const;
    // Valid until the next row.
    [[nodiscard]] std::span<const uint8_t> Bytes(int column) const;
    [[nodiscard]] std::string_view Text(int column) const;

private:
    SqliteDatabase& database;
    sqlite3_stmt* statement = nullptr;
    bool failed = false;
};

// A transaction that may write; taken back at the end of its life unless it was committed.
class SqliteTransaction {
public:
    explicit SqliteTransaction(SqliteDatabase& database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    [[nodiscard]] bool Begun() const { return open; }
    [[nodiscard]] bool Commit();

private:
    SqliteDatabase& database;
    bool open;
};
