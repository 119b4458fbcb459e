#include "library/player_file.h"

#include "base/bytes.h"
#include "base/file_stamp.h"
#include "base/files.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

// The number changes with the tables and with what the checksums cover.
constexpr int64_t kVersion = 1;
constexpr int64_t kLargestVersion = 255;
// The version is in the file twice, in two forms, so that damage to one is not taken for a newer version.
constexpr int64_t kApplication = 0x4F504C00; // "OPL" and the version
constexpr const char* kMakeTables =
    "CREATE TABLE games ("
    "system INTEGER NOT NULL, hash BLOB NOT NULL, favourite INTEGER NOT NULL, "
    "last_played INTEGER NOT NULL, seconds_played INTEGER NOT NULL, starts INTEGER NOT NULL, "
    "checksum BLOB NOT NULL, PRIMARY KEY (system, hash)) WITHOUT ROWID;"
    "CREATE TABLE summary (games INTEGER NOT NULL, checksum BLOB NOT NULL);"
    "INSERT INTO summary VALUES (0, zeroblob(32));"
    "PRAGMA application_id = 0x4F504C01;"
    "PRAGMA user_version = 1;";

constexpr std::string_view kSelectAll =
    "SELECT favourite, last_played, seconds_played, starts, checksum, system, hash FROM games "
    "ORDER BY system, hash";
constexpr std::string_view kSelectOne =
    "SELECT favourite, last_played, seconds_played, starts, checksum FROM games "
    "WHERE system = ?1 AND hash = ?2";
constexpr std::string_view kInsert =
    "INSERT OR REPLACE INTO games (system, hash, favourite, last_played, seconds_played, starts, "
    "checksum) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)";
constexpr std::string_view kSelectSummary = "SELECT games, checksum FROM summary";
constexpr std::string_view kUpdateSummary = "UPDATE summary SET games = ?1, checksum = ?2";

// Far more than anybody plays. A damaged tree may lead to the same rows again and again.
constexpr size_t kMostGames = 1'000'000;
constexpr uint64_t kLargestFile = uint64_t{1} << 28; // bytes
constexpr int64_t kMostCounted = int64_t{1} << 52;
constexpr int64_t kDay = 24 * 60 * 60; // seconds
constexpr int64_t kNanoseconds = 1'000'000'000;
constexpr const char* kEndings[] = {"", "-journal", "-wal", "-shm"};

fs::path WithEnding(fs::path path, const std::string& ending) {
    path += ending;
    return path;
}

bool IsThere(const fs::path& path) {
    std::error_code code;
    return fs::symlink_status(path, code).type() != fs::file_type::not_found;
}

// Something that cannot be looked at counts as well.
bool HasContent(const fs::path& path) {
    std::error_code code;
    return IsThere(path) && (fs::file_size(path, code) != 0 || code);
}

bool Tell(const std::string& error, std::string& message) {
    message = error;
    return false;
}

int64_t Added(int64_t a, int64_t b) {
    return std::clamp(a, int64_t{0}, kMostCounted) + std::clamp(b, int64_t{0}, kMostCounted);
}

Sha256Digest ChecksumOf(const GAME_IDENTITY& game, const PLAYER_RECORD& record) {
    std::vector<uint8_t> bytes(game.hash.begin(), game.hash.end());
    for (const int64_t number : {int64_t{game.system}, int64_t{record.favourite}, record.lastPlayed,
                                 record.secondsPlayed, record.starts}) {
        bytes.resize(bytes.size() + sizeof number);
        StoreLittleEndian(bytes.data() + bytes.size() - sizeof number,
                          static_cast<uint64_t>(number));
    }
    return Sha256(bytes);
}

bool TakeDigest(std::span<const uint8_t> bytes, Sha256Digest& digest) {
    if (bytes.size() != digest.size()) {
        return false;
    }
    std::copy(bytes.begin(), bytes.end(), digest.begin());
    return true;
}

void Combine(Sha256Digest& sum, const Sha256Digest& with) {
    for (size_t i = 0; i < sum.size(); ++i) {
        sum[i] = static_cast<uint8_t>(sum[i] ^ with[i]);
    }
}

// The first five columns. False for what was not written like this.
bool TakeRecord(const SqliteStatement& row, const GAME_IDENTITY& game, PLAYER_RECORD& record,
                Sha256Digest& checksum) {
    const int64_t favourite = row.Integer(0);
    record = {favourite != 0, row.Integer(1), row.Integer(2), row.Integer(3)};
    return (favourite == 0 || favourite == 1) && TakeDigest(row.Bytes(4), checksum) &&
           checksum == ChecksumOf(game, record);
}

bool ReadNumber(SqliteDatabase& from, std::string_view sql, int64_t& number) {
    SqliteStatement select(from, sql);
    if (!select.NextRow()) {
        return false;
    }
    number = select.Integer(0);
    return true;
}

bool PagesAreSound(SqliteDatabase& from) {
    SqliteStatement check(from, "PRAGMA integrity_check(1)");
    return check.NextRow() && check.Text(0) == "ok";
}

bool ReadRows(SqliteDatabase& from, PlayerRecords& records) {
    SqliteStatement select(from, kSelectAll);
    Sha256Digest sum{};
    while (select.NextRow()) {
        GAME_IDENTITY game;
        PLAYER_RECORD record;
        Sha256Digest checksum{};
        game.system = static_cast<uint16_t>(select.Integer(5));
        if (!TakeDigest(select.Bytes(6), game.hash) || select.Integer(5) != game.system ||
            !TakeRecord(select, game, record, checksum) || records.size() >= kMostGames ||
            !records.emplace(game, record).second) {
            return false;
        }
        Combine(sum, checksum);
    }
    if (select.Failed()) {
        return false;
    }
    SqliteStatement summary(from, kSelectSummary);
    Sha256Digest expected{};
    return summary.NextRow() && summary.Integer(0) == static_cast<int64_t>(records.size()) &&
           TakeDigest(summary.Bytes(1), expected) && expected == sum;
}

// Under a free name, with what SQLite keeps beside it: the journal of one file would ruin another.
bool SetAside(const fs::path& file, fs::path& aside) {
    aside = WithEnding(file, ".damaged");
    for (int number = 2; IsThere(aside); ++number) {
        aside = WithEnding(file, ".damaged-" + std::to_string(number));
    }
    std::error_code code;
    for (const char* ending : kEndings) {
        const fs::path from = WithEnding(file, ending);
        if (IsThere(from)) {
            fs::rename(from, WithEnding(aside, ending), code);
        }
        if (code) {
            return false;
        }
    }
    FlushFolder(file.parent_path());
    return true;
}

} // namespace

void ApplyChange(const PLAYER_CHANGE& change, PLAYER_RECORD& record) {
    record.favourite = change.favourite.value_or(record.favourite);
    record.lastPlayed = std::max(record.lastPlayed, change.lastPlayed);
    record.secondsPlayed = Added(record.secondsPlayed, change.secondsPlayed);
    record.starts = Added(record.starts, change.starts);
}

void AddChange(const PLAYER_CHANGE& later, PLAYER_CHANGE& to) {
    to.favourite = later.favourite ? later.favourite : to.favourite;
    to.lastPlayed = std::max(to.lastPlayed, later.lastPlayed);
    to.secondsPlayed = Added(to.secondsPlayed, later.secondsPlayed);
    to.starts = Added(to.starts, later.starts);
}

PlayerFile::State PlayerFile::Read(SqliteDatabase& from, const fs::path& path,
                                   PlayerRecords& records) {
    records.clear();
    if (!IsThere(path)) {
        return State::kUnreadable; // opening it would make it
    }
    int64_t version = 0;
    int64_t application = 0;
    const bool opened = from.Open(path) && ReadNumber(from, "PRAGMA user_version", version) &&
                        ReadNumber(from, "PRAGMA application_id", application);
    const bool ours = opened && application == kApplication + version;
    if (ours && version > kVersion && version <= kLargestVersion) {
        return State::kNewer;
    }
    if (ours && version == kVersion && PagesAreSound(from) && ReadRows(from, records)) {
        return State::kSound;
    }
    records.clear();
    std::vector<uint8_t> ignored;
    std::string error;
    const bool readable = from.Fault() != SqliteFault::kBusy &&
                          from.Fault() != SqliteFault::kReadOnly &&
                          ReadFile(path, ignored, error, kLargestFile);
    return readable ? State::kDamaged : State::kUnreadable;
}

bool PlayerFile::Open(const fs::path& path, PlayerRecords& records, std::string& message) {
    std::error_code code;
    file = fs::absolute(path, code);
    std::error_code ignored; // without the folder the database cannot be opened, which is told
    fs::create_directories(file.parent_path(), ignored);
    records.clear();
    message.clear();
    const bool usable = !code && OpenSound(records, message);
    if (!usable) {
        if (message.empty()) {
            message = code ? path.string() + ": " + code.message() : Refusal(State::kUnreadable);
        }
        database.Close();
        message += "; favourites and times played are not kept this time";
    }
    return usable;
}

bool PlayerFile::OpenSound(PlayerRecords& records, std::string& message) {
    if (!HasContent(file)) {
        return IsThere(WithEnding(file, ".backup")) ? Mend(records, message) : MakeTables();
    }
    const State state = Read(database, file, records);
    switch (state) {
    case State::kSound:
        // A damaged header may ask for another kind of journal.
        (void)database.Execute("PRAGMA journal_mode = DELETE");
        return true;
    case State::kDamaged: return Mend(records, message);
    default: break;
    }
    message = Refusal(state);
    return false;
}

// Why a file in that state is not written.
std::string PlayerFile::Refusal(State state) const {
    if (state == State::kNewer) {
        return file.string() + ": was made by a newer version";
    }
    return database.Error().empty() ? file.string() + ": cannot be read" : database.Error();
}

// Sets aside what is there and puts the backup in its place; without a sound one, an empty database.
bool PlayerFile::Mend(PlayerRecords& records, std::string& message) {
    database.Close();
    const fs::path backup = WithEnding(file, ".backup");
    fs::path aside;
    const bool wasThere = IsThere(file);
    if (!SetAside(file, aside)) {
        SqliteDatabase copy; // what it has is shown at least
        (void)Read(copy, backup, records);
        message = file.string() + ": is damaged and cannot be set aside";
        return false;
    }
    message = wasThere
                  ? file.string() + ": was damaged, and is kept as " + aside.filename().string()
                  : file.string() + ": was missing";
    std::vector<uint8_t> bytes;
    std::string error;
    if (ReadFile(backup, bytes, error, kLargestFile)) {
        // Another program may have done the same meanwhile.
        if (!WriteFile(file, bytes, error, WriteMode::kCreate) && !IsThere(file)) {
            SqliteDatabase copy;
            (void)Read(copy, backup, records);
            message += "; the copy could not be taken: " + error;
            return false;
        }
        const State state = Read(database, file, records);
        if (state == State::kSound) {
            message += "; the copy of favourites and times played is in its place";
            return true;
        }
        database.Close();
        if (state != State::kDamaged) {
            return false;
        }
        std::error_code code;
        fs::remove(file, code);
        if (!SetAside(backup, aside)) {
            return false;
        }
    }
    message += "; there is no sound copy, so favourites and times played begin anew";
    return MakeTables();
}

bool PlayerFile::MakeTables() {
    if (!database.Open(file)) {
        return false;
    }
    // None of these matters if it fails.
    (void)database.Execute("PRAGMA temp_store = MEMORY");
    SqliteTransaction transaction(database);
    int64_t version = 0;
    // Another program may have made the tables meanwhile.
    return transaction.Begun() && ReadNumber(database, "PRAGMA user_version", version) &&
           (version == kVersion || (database.Execute(kMakeTables) && transaction.Commit()));
}

bool PlayerFile::Write(const PlayerChanges& changes, const PlayerRecords& whole,
                       std::string& message) {
    if (database.IsOpen()) {
        if (WriteRows(changes)) {
            return true;
        }
        const SqliteFault fault = database.Fault();
        message = database.Error();
        if (!rowDamaged && fault != SqliteFault::kDamaged && fault != SqliteFault::kMoved) {
            return false;
        }
    }
    const bool written = WriteAgain(changes, whole, message);
    if (!written) {
        database.Close(); // the next change begins here again
    }
    return written;
}

// The file is not what was opened, or an earlier write has failed here.
bool PlayerFile::WriteAgain(const PlayerChanges& changes, const PlayerRecords& whole,
                            std::string& message) {
    database.Close();
    if (!HasContent(file)) {
        return WriteAnew(whole, message);
    }
    PlayerRecords present;
    const State state = Read(database, file, present);
    switch (state) {
    case State::kSound: // another program has put it there, or its fault is over
        message.clear();
        return WriteRows(changes) || Tell(database.Error(), message);
    case State::kDamaged: return WriteAnew(whole, message);
    default: message = Refusal(state); return false;
    }
}

bool PlayerFile::WriteAnew(const PlayerRecords& whole, std::string& message) {
    database.Close();
    fs::path aside;
    const bool there = HasContent(file);
    // An empty file is what an earlier attempt has left on a full disk.
    if ((there || !IsThere(file)) && !SetAside(file, aside)) {
        message = file.string() + ": is damaged and cannot be set aside";
        return false;
    }
    if (!MakeTables()) {
        message = database.Error();
        return false;
    }
    PlayerChanges all;
    for (const auto& [game, record] : whole) {
        all[game] = {record.favourite, record.lastPlayed, record.secondsPlayed, record.starts};
    }
    message = there ? file.string() + ": was damaged, is kept as " + aside.filename().string() +
                          " and was written anew"
                    : file.string() + ": was gone and was written anew";
    return WriteRows(all) || Tell(database.Error(), message);
}

bool PlayerFile::WriteRows(const PlayerChanges& changes) {
    rowDamaged = false;
    SqliteTransaction transaction(database);
    int64_t games = 0;
    Sha256Digest sum{};
    if (!transaction.Begun()) {
        return false;
    }
    {
        SqliteStatement summary(database, kSelectSummary);
        if (!summary.NextRow()) {
            return false;
        }
        games = summary.Integer(0);
        if (!TakeDigest(summary.Bytes(1), sum)) {
            rowDamaged = true;
            return false;
        }
    }
    for (const auto& [game, change] : changes) {
        if (!WriteRow(game, change, games, sum)) {
            return false;
        }
    }
    SqliteStatement update(database, kUpdateSummary);
    return update.Bind(1, games).Bind(2, sum).Run() && transaction.Commit();
}

bool PlayerFile::WriteRow(const GAME_IDENTITY& game, const PLAYER_CHANGE& change, int64_t& games,
                          Sha256Digest& sum) {
    PLAYER_RECORD record;
    SqliteStatement select(database, kSelectOne);
    if (select.Bind(1, int64_t{game.system}).Bind(2, game.hash).NextRow()) {
        Sha256Digest before{};
        if (!TakeRecord(select, game, record, before)) {
            rowDamaged = true;
            return false;
        }
        Combine(sum, before);
    } else if (select.Failed()) {
        return false;
    } else {
        ++games;
    }
    ApplyChange(change, record);
    const Sha256Digest checksum = ChecksumOf(game, record);
    Combine(sum, checksum);
    SqliteStatement insert(database, kInsert);
    return insert.Bind(1, int64_t{game.system})
        .Bind(2, game.hash)
        .Bind(3, int64_t{record.favourite})
        .Bind(4, record.lastPlayed)
        .Bind(5, record.secondsPlayed)
        .Bind(6, record.starts)
        .Bind(7, checksum)
        .Run();
}

void PlayerFile::BackUp(int64_t now) {
    const fs::path backup = WithEnding(file, ".backup");
    FILE_STAMP stamp;
    if (StampFile(backup, stamp)) {
        const int64_t age = now - stamp.modified / kNanoseconds;
        if (age >= 0 && age < kDay) {
            return; // a time to come is that of a clock that was put right
        }
    }
    int64_t games = 0;
    if (!database.IsOpen() || !ReadNumber(database, "SELECT games FROM summary", games) ||
        games == 0) {
        return; // nothing that a copy could save
    }
    const fs::path copy = WithEnding(file, ".copy");
    const std::string name = copy.string();
    std::error_code code;
    fs::remove(copy, code); // of a program that was killed
    SqliteStatement vacuum(database, "VACUUM INTO ?1");
    PlayerRecords copied;
    SqliteDatabase check;
    std::vector<uint8_t> bytes;
    std::string error;
    if (vacuum.Bind(1, std::string_view(name)).Run() &&
        Read(check, copy, copied) == State::kSound) {
        check.Close();
        // Written whole and flushed, and only then in the old one's place.
        if (ReadFile(copy, bytes, error, kLargestFile)) {
            (void)WriteFile(backup, bytes, error);
        }
    }
    check.Close();
    fs::remove(copy, code);
}
