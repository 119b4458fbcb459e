#include "library/sqlite_database.h"

#include <sqlite3.h>

#include <system_error>

namespace {

SqliteFault FaultOfCode(int code) {
    if (code == SQLITE_READONLY_DBMOVED) {
        return SqliteFault::kMoved;
    }
    switch (code & 0xFF) { // the kind; the bits above it say more
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE: return SqliteFault::kNone;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return SqliteFault::kBusy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_TOOBIG: // no value this long is written
        return SqliteFault::kDamaged;
    case SQLITE_READONLY: return SqliteFault::kReadOnly;
    default: return SqliteFault::kOther;
    }
}

// What a file of unknown bytes must not do.
void Distrust(sqlite3* handle) {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, kSqliteLargestValue);
    // No memory mapping: a file that another program cuts would end this one.
    (void)sqlite3_exec(handle, "PRAGMA cell_size_check = 1; PRAGMA mmap_size = 0;", nullptr,
                       nullptr, nullptr);
}

} // namespace

SqliteDatabase::~SqliteDatabase() {
    Close();
}

bool SqliteDatabase::Note(int code) {
    fault = FaultOfCode(code);
    if (fault == SqliteFault::kNone) {
        return true;
    }
    error = name + ": " + (handle != nullptr ? sqlite3_errmsg(handle) : sqlite3_errstr(code));
    return false;
}

bool SqliteDatabase::Open(const std::filesystem::path& file) {
    Close();
    // Absolute, so that no name is taken for a URI or a database in memory.
    std::error_code code;
    const std::filesystem::path absolute = std::filesystem::absolute(file, code);
    name = file.string();
    if (code) {
        fault = SqliteFault::kOther;
        error = name + ": " + code.message();
        return false;
    }
    constexpr int kFlags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    if (!Note(sqlite3_open_v2(absolute.string().c_str(), &handle, kFlags, nullptr))) {
        const SqliteFault why = fault;
        Close();
        fault = why;
        return false;
    }
    sqlite3_busy_timeout(handle, kSqlitePatience);
    Distrust(handle);
    return true;
}

void SqliteDatabase::Close() {
    sqlite3_close(handle);
    handle = nullptr;
    fault = SqliteFault::kNone;
}

bool SqliteDatabase::Execute(const char* sql) {
    return Note(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr));
}

bool SqliteDatabase::Empty() {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    const bool emptied = Execute("VACUUM");
    sqlite3_db_config(handle, SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr);
    return emptied;
}

void SqliteDatabase::ReleaseMemory() {
    if (handle != nullptr) {
        (void)sqlite3_db_release_memory(handle);
    }
}

SqliteStatement::SqliteStatement(SqliteDatabase& owner, std::string_view sql)
    : database(owner) {
    failed = !database.Note(sqlite3_prepare_v2(database.handle, sql.data(),
                                               static_cast<int>(sql.size()), &statement, nullptr));
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(statement);
}

SqliteStatement& SqliteStatement::Bind(int parameter, int64_t value) {
    failed |= !database.Note(sqlite3_bind_int64(statement, parameter, value));
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::span<const uint8_t> value) {
    // Not null for an empty value: a null pointer would bind NULL.
    const void* bytes = value.empty() ? "" : static_cast<const void*>(value.data());
    failed |= !database.Note(
        sqlite3_bind_blob64(statement, parameter, bytes, value.size(), SQLITE_STATIC));
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::string_view value) {
    failed |= !database.Note(sqlite3_bind_text64(statement, parameter, value.data(), value.size(),
                                                 SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

bool SqliteStatement::NextRow() {
    if (failed) {
        return false;
    }
    const int code = sqlite3_step(statement);
    failed = !database.Note(code);
    return code == SQLITE_ROW;
}

bool SqliteStatement::Run() {
    const bool ran = !NextRow() && !failed;
    sqlite3_reset(statement);
    failed = false;
    return ran;
}

int64_t SqliteStatement::Integer(int column) const {
    return sqlite3_column_int64(statement, column);
}

std::span<const uint8_t> SqliteStatement::Bytes(int column) const {
    const void* bytes = sqlite3_column_blob(statement, column);
    const auto length = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    return {static_cast<const uint8_t*>(bytes), bytes != nullptr ? length : 0};
}

std::string_view SqliteStatement::Text(int column) const {
    const unsigned char* text = sqlite3_column_text(statement, column);
    const auto length = static_cast<size_t>(sqlite3_column_bytes(statement, column));
    return {reinterpret_cast<const char*>(text), text != nullptr ? length : 0};
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& owner)
    : database(owner)
    , open(owner.Execute("BEGIN IMMEDIATE")) {}

SqliteTransaction::~SqliteTransaction() {
    if (open) {
        // Not through Note: the fault that ended the transaction is what the caller asks about.
        (void)sqlite3_exec(database.handle, "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

bool SqliteTransaction::Commit() {
    if (open && database.Execute("COMMIT")) {
        open = false;
        return true;
    }
    return false;
}
