#include "library/library_index.h"

#include "base/bytes.h"

#include <chrono>
#include <cstring>
#include <mutex>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

// One page of a disk, which the records of nearly every game fit in.
constexpr size_t kFrontBytes = 4096;
// The few games with more are read every time.
constexpr size_t kMostRemembered = 65536;
// Far more files than a folder holds. A damaged tree may lead to the same rows again and again.
constexpr int kMostRows = 1'000'000;

// The number changes with the table and with what the checksum covers.
constexpr int64_t kVersion = 1;

constexpr const char* kMakeTable =
    "CREATE TABLE files ("
    "folder BLOB NOT NULL, name BLOB NOT NULL, length INTEGER NOT NULL, "
    "modified INTEGER NOT NULL, records BLOB NOT NULL, checksum BLOB NOT NULL, "
    "PRIMARY KEY (folder, name)) WITHOUT ROWID;"
    "PRAGMA user_version = 1;";
constexpr std::string_view kSelectFolder =
    "SELECT name, length, modified, records, checksum FROM files WHERE folder = ?1";
constexpr std::string_view kCountFolder = "SELECT count(*) FROM files WHERE folder = ?1";
constexpr std::string_view kInsert =
    "INSERT OR REPLACE INTO files (folder, name, length, modified, "
    "records, checksum) VALUES (?1, ?2, ?3, ?4, ?5, ?6)";
constexpr std::string_view kDelete = "DELETE FROM files WHERE folder = ?1 AND name = ?2";

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string TextOf(std::span<const uint8_t> bytes) {
    return {bytes.begin(), bytes.end()};
}

// The folder and the name of a path, as `fs::path` would split it, but without allocating.
std::pair<std::string_view, std::string_view> Split(std::string_view path) {
    constexpr char kSeparators[] = {'/', static_cast<char>(fs::path::preferred_separator), '\0'};
    const size_t slash = path.find_last_of(kSeparators);
    if (slash == std::string_view::npos) {
        return {{}, path};
    }
    const size_t root = slash == 0 ? 1 : 0; // the root keeps its slash
    return {path.substr(0, slash + root), path.substr(slash + 1)};
}

// A file may change again within one step of its clock, and keep its length: its time tells nothing
// until the step is over. The coarsest file system counts in steps of two seconds.
bool IsSettled(const FILE_STAMP& stamp) {
    using std::chrono::nanoseconds;
    constexpr nanoseconds kStep = std::chrono::seconds(2);
    const auto now = std::chrono::duration_cast<nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    const nanoseconds age = now - nanoseconds(stamp.modified);
    return age > kStep || age < -kStep;
}

// Reads the records of a game: nearly always with one read.
bool ReadRecords(const fs::path& path, FILE_STAMP& stamp, std::vector<uint8_t>& bytes) {
    if (!ReadFileFront(path, kFrontBytes, stamp, bytes)) {
        return false;
    }
    size_t wanted = GameRecordBytes(bytes, stamp.bytes);
    if (wanted > bytes.size()) {
        if (!ReadFileFront(path, wanted, stamp, bytes)) {
            return false;
        }
        wanted = GameRecordBytes(bytes, stamp.bytes);
    }
    if (wanted == 0 || wanted > bytes.size()) {
        return false;
    }
    bytes.resize(wanted);
    return true;
}

} // namespace

bool LibraryIndex::Open(const fs::path& path, std::string& error) {
    const std::scoped_lock lock(databaseMutex);
    std::error_code code;
    file = fs::absolute(path, code).lexically_normal();
    if (!code && Prepare(error)) {
        return true;
    }
    if (code) {
        error = path.string() + ": " + code.message();
    }
    database.Close();
    return false;
}

bool LibraryIndex::Prepare(std::string& error) {
    if (database.Open(file)) {
        Configure();
        if (IsUsable() || MakeTable() || MakeAnew()) {
            return true;
        }
    }
    error = database.Error();
    return false;
}

// None of this matters if it fails, which it does for a damaged database.
void LibraryIndex::Configure() {
    // A power cut may cost the database, which is then made anew.
    (void)database.Execute("PRAGMA synchronous = OFF");
    (void)database.Execute("PRAGMA temp_store = MEMORY");
    // Of a new database. Rows of the usual length lie whole in a page of this size.
    (void)database.Execute("PRAGMA page_size = 16384");
    // Kilobytes. Nothing is read twice.
    (void)database.Execute("PRAGMA cache_size = -512");
}

bool LibraryIndex::IsUsable() {
    SqliteStatement version(database, "PRAGMA user_version");
    return version.NextRow() && version.Integer(0) == kVersion &&
           SqliteStatement(database, kSelectFolder).Ready();
}

// In an empty database. Another program may have made the table in the meantime.
bool LibraryIndex::MakeTable() {
    SqliteTransaction transaction(database);
    return transaction.Begun() &&
           (IsUsable() || (database.Execute(kMakeTable) && transaction.Commit()));
}

bool LibraryIndex::MakeAnew() {
    const auto cannot = [&] {
        return database.Fault() == SqliteFault::kBusy || database.Fault() == SqliteFault::kReadOnly;
    };
    if (cannot()) {
        return false;
    }
    // In the same file, since another program may have it open.
    if (database.Empty()) {
        Configure();
        if (MakeTable()) {
            return true;
        }
    }
    if (cannot()) {
        return false;
    }
    database.Close();
    for (const char* ending : {"", "-journal", "-wal", "-shm"}) {
        std::error_code ignored;
        fs::remove(fs::path(file) += ending, ignored);
    }
    if (!database.Open(file)) {
        return false;
    }
    Configure();
    return MakeTable();
}

// Relative to the database if the folder lies beside it: a home folder may be moved.
std::string LibraryIndex::KeyOfFolder(const std::string& folder) const {
    std::error_code code;
    fs::path absolute = fs::absolute(folder.empty() ? "." : folder, code).lexically_normal();
    if (!absolute.has_filename()) {
        absolute = absolute.parent_path(); // ended by a slash
    }
    const fs::path relative = absolute.lexically_relative(file.parent_path());
    if (relative.empty() || *relative.begin() == "..") {
        return absolute.string();
    }
    return relative.string();
}

void LibraryIndex::LoadFolder(const fs::path& folder) {
    const std::string path =
        folder.has_filename() ? folder.string() : folder.parent_path().string();
    FOLDER loaded;
    {
        const std::scoped_lock lock(databaseMutex);
        loaded.key = KeyOfFolder(path);
        bool sound = true;
        if (database.IsOpen() && !QueryFolder(loaded, sound) && !sound) {
            loaded.files.clear();
            if (!MakeAnew()) {
                database.Close();
            }
        }
    }
    const std::scoped_lock lock(mutex);
    FOLDER& known = folders[path];
    known.key = loaded.key;
    known.files.merge(loaded.files); // what was read since the last Commit stays
}

bool LibraryIndex::QueryFolder(FOLDER& folder, bool& sound) {
    SqliteStatement select(database, kSelectFolder);
    select.Bind(1, BytesOf(folder.key));
    std::string last;
    for (int row = 0; sound && select.NextRow(); ++row) {
        REMEMBERED remembered;
        std::string name = TextOf(select.Bytes(0));
        remembered.stamp.bytes = static_cast<uint64_t>(select.Integer(1));
        remembered.stamp.modified = select.Integer(2);
        const auto records = select.Bytes(3);
        const auto checksum = select.Bytes(4);
        if (records.size() <= kMostRemembered && checksum.size() == remembered.checksum.size()) {
            remembered.records.assign(records.begin(), records.end());
            std::memcpy(remembered.checksum.data(), checksum.data(), checksum.size());
        } // else the checksum is wrong, and says that the database is damaged
        // Names that are not in the order of the key would be lost to every later search.
        sound = row < kMostRows && (row == 0 || last < name);
        last = name;
        folder.files.insert_or_assign(std::move(name), std::move(remembered));
    }
    sound &= !select.Failed() || database.Fault() != SqliteFault::kDamaged;
    return sound && !select.Failed();
}

Sha256Digest LibraryIndex::ChecksumOf(std::string_view folderKey, std::string_view name,
                                      const REMEMBERED& remembered) {
    std::vector<uint8_t> bytes;
    bytes.reserve(32 + folderKey.size() + name.size() + remembered.records.size());
    const auto addNumber = [&](uint64_t number) {
        bytes.resize(bytes.size() + sizeof number);
        StoreLittleEndian(bytes.data() + bytes.size() - sizeof number, number);
    };
    addNumber(folderKey.size());
    addNumber(name.size());
    addNumber(remembered.stamp.bytes);
    addNumber(static_cast<uint64_t>(remembered.stamp.modified));
    bytes.insert(bytes.end(), folderKey.begin(), folderKey.end());
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.insert(bytes.end(), remembered.records.begin(), remembered.records.end());
    return Sha256(bytes);
}

bool LibraryIndex::LoadGame(const fs::path& path, CGameFile& game) {
    const std::string text = path.string();
    const auto [folder, name] = Split(text);
    REMEMBERED read;
    if (!StampFile(path, read.stamp)) {
        return false; // Commit finds that it is gone
    }
    if (Recall(folder, name, read.stamp, game)) {
        return true;
    }
    const bool loaded = ReadRecords(path, read.stamp, read.records) &&
                        game.Parse(read.records.data(), read.records.size(), false);
    const bool kept = loaded && read.records.size() <= kMostRemembered && IsSettled(read.stamp);
    read.state = kept ? REMEMBERED::State::kRead : REMEMBERED::State::kForget;
    Remember(folder, name, std::move(read));
    return loaded;
}

bool LibraryIndex::Recall(std::string_view folder, std::string_view name, const FILE_STAMP& stamp,
                          CGameFile& game) {
    const std::scoped_lock lock(mutex);
    const auto known = folders.find(folder);
    if (known == folders.end()) {
        return false;
    }
    const auto found = known->second.files.find(name);
    if (found == known->second.files.end()) {
        return false;
    }
    REMEMBERED& remembered = found->second;
    if (remembered.state == REMEMBERED::State::kUnasked &&
        ChecksumOf(known->second.key, name, remembered) != remembered.checksum) {
        damaged = true;
        return false;
    }
    if (remembered.state == REMEMBERED::State::kForget || !(remembered.stamp == stamp) ||
        !game.Parse(remembered.records.data(), remembered.records.size(), false)) {
        return false;
    }
    if (remembered.state == REMEMBERED::State::kUnasked) {
        remembered.state = REMEMBERED::State::kCurrent;
    }
    return true;
}

void LibraryIndex::Remember(std::string_view folder, std::string_view name, REMEMBERED read) {
    const std::scoped_lock lock(mutex);
    ++filesRead;
    auto known = folders.find(folder);
    if (known == folders.end()) {
        known = folders.emplace(std::string(folder), FOLDER{}).first;
        known->second.key = KeyOfFolder(known->first);
    }
    auto& files = known->second.files;
    if (read.state == REMEMBERED::State::kRead) {
        read.records.shrink_to_fit(); // from what was read at once
        read.checksum = ChecksumOf(known->second.key, name, read);
    } else if (files.find(name) == files.end()) {
        return; // nothing to forget
    }
    files.insert_or_assign(std::string(name), std::move(read));
}

void LibraryIndex::Commit() {
    Folders done;
    bool all = false;
    {
        const std::scoped_lock lock(mutex);
        done.swap(folders);
        all = std::exchange(damaged, false);
    }
    const std::scoped_lock lock(databaseMutex);
    if (database.IsOpen()) {
        WriteOrMend(done, all);
        database.ReleaseMemory();
    }
}

void LibraryIndex::WriteOrMend(const Folders& done, bool all) {
    bool sound = true;
    if ((all && !MakeAnew()) || Write(done, all, sound)) {
        return;
    }
    std::string ignored;
    const bool again =
        database.Fault() == SqliteFault::kMoved ? Prepare(ignored) : !sound && MakeAnew();
    if (again) {
        (void)Write(done, true, sound);
    }
}

bool LibraryIndex::Write(const Folders& done, bool all, bool& sound) {
    bool changed = false;
    for (const auto& [path, folder] : done) {
        for (const auto& [name, remembered] : folder.files) {
            changed |= all || remembered.state != REMEMBERED::State::kCurrent;
        }
    }
    if (!changed) {
        return true;
    }
    SqliteTransaction transaction(database);
    bool written = transaction.Begun();
    for (const auto& [path, folder] : done) {
        written = written && WriteFolder(path, folder, all) && HasRows(folder, sound);
    }
    written = written && transaction.Commit();
    sound &= database.Fault() != SqliteFault::kDamaged;
    return written;
}

// In a tree with a wrong key rows go where no search looks for them.
bool LibraryIndex::HasRows(const FOLDER& folder, bool& sound) {
    int64_t current = 0;
    for (const auto& [name, remembered] : folder.files) {
        current += remembered.state == REMEMBERED::State::kCurrent ||
                           remembered.state == REMEMBERED::State::kRead
                       ? 1
                       : 0;
    }
    SqliteStatement count(database, kCountFolder);
    count.Bind(1, BytesOf(folder.key));
    if (!count.NextRow()) {
        return false;
    }
    sound = count.Integer(0) >= current;
    return sound;
}

bool LibraryIndex::WriteFolder(const std::string& path, const FOLDER& folder, bool all) {
    using State = REMEMBERED::State;
    SqliteStatement insert(database, kInsert);
    SqliteStatement remove(database, kDelete);
    for (const auto& [name, remembered] : folder.files) {
        bool ran = true;
        FILE_STAMP ignored;
        if (remembered.state == State::kRead || (all && remembered.state == State::kCurrent)) {
            ran = insert.Bind(1, BytesOf(folder.key))
                      .Bind(2, BytesOf(name))
                      .Bind(3, static_cast<int64_t>(remembered.stamp.bytes))
                      .Bind(4, remembered.stamp.modified)
                      .Bind(5, remembered.records)
                      .Bind(6, remembered.checksum)
                      .Run();
        } else if (remembered.state == State::kForget ||
                   // A scan that was stopped has not asked for every file.
                   (remembered.state == State::kUnasked &&
                    !StampFile(fs::path(path) / name, ignored))) {
            ran = remove.Bind(1, BytesOf(folder.key)).Bind(2, BytesOf(name)).Run();
        }
        if (!ran) {
            return false;
        }
    }
    return true;
}

uint64_t LibraryIndex::FilesRead() const {
    const std::scoped_lock lock(mutex);
    return filesRead;
}
