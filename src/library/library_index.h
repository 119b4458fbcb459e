// What the library remembers of the `.game` files that it has read: their records, so that a scan reads
// only what is new. It lies in `library-cache.db` in the home folder.
//
// A file is known by its folder, name, length and modification time; if one of them differs it is read
// again. The database may be deleted at any moment without loss. One of another version, a damaged one
// and a file that is no database are made anew. Every remembered file has a checksum over all of this,
// so that damage to the database costs time and never yields wrong records.
//
// Thread-safe; two programs may use one database. Nothing here fails outward: without a database, in a
// folder that may not be written or on a full disk, every file is read.
//
// Order, once a scan: LoadFolder, LoadGame for each file, Commit.
#pragma once

#include "base/file_stamp.h"
#include "base/ranked_mutex.h"
#include "formats/game_file.h"
#include "library/sqlite_database.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

inline constexpr std::string_view kLibraryIndexFile = ".\\library-cache.db";

class LibraryIndex {
public:
    // Without a usable database, says why and returns false; the index then works without one.
    [[nodiscard]] bool Open(const std::filesystem::path& file, std::string& error);

    // Takes what is remembered of a folder's files into memory.
    void LoadFolder(const std::filesystem::path& folder);

    // The records of a `.game`, without its image. False for the files that LoadGameFile refuses.
    [[nodiscard]] bool LoadGame(const std::filesystem::path& path, CGameFile& game);

    // Remembers what has been read since the last Commit, in one transaction, and forgets the files that
    // are gone. Then nothing is held in memory until the next LoadFolder.
    void Commit();

    // Files that LoadGame has opened, because they were not remembered.
    [[nodiscard]] uint64_t FilesRead() const;

private:
    struct REMEMBERED {
        enum class State : uint8_t {
            kUnasked, // from the database; not compared with the file yet
            kCurrent, // from the database, and the file is the same
            kRead,    // from the file; to be written
            kForget,  // to be deleted from the database
        };
        FILE_STAMP stamp;
        std::vector<uint8_t> records; // as in the file
        Sha256Digest checksum{};
        State state = State::kUnasked;
    };

    struct STRING_HASH {
        using is_transparent = void; // NOLINT(readability-identifier-naming): the standard's name
        size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>{}(text);
        }
    };

    struct FOLDER {
        std::string key; // in the database
        std::unordered_map<std::string, REMEMBERED, STRING_HASH, std::equal_to<>> files; // by name
    };
    using Folders = std::map<std::string, FOLDER, std::less<>>; // by the callers' path

    // These use the database, with its lock held.
    [[nodiscard]] bool Prepare(std::string& error);
    void Configure();
    [[nodiscard]] bool IsUsable();
    [[nodiscard]] bool MakeTable();
    [[nodiscard]] bool MakeAnew();
    // `sound` becomes false for a damaged database.
    [[nodiscard]] bool QueryFolder(FOLDER& folder, bool& sound);
    void WriteOrMend(const Folders& done, bool all);
    [[nodiscard]] bool Write(const Folders& done, bool all, bool& sound);
    [[nodiscard]] bool WriteFolder(const std::string& path, const FOLDER& folder, bool all);
    [[nodiscard]] bool HasRows(const FOLDER& folder, bool& sound);

    [[nodiscard]] std::string KeyOfFolder(const std::string& folder) const;
    [[nodiscard]] bool Recall(std::string_view folder, std::string_view name,
                              const FILE_STAMP& stamp, CGameFile& game);
    void Remember(std::string_view folder, std::string_view name, REMEMBERED read);
    static Sha256Digest ChecksumOf(std::string_view folderKey, std::string_view name,
                                   const REMEMBERED& remembered);

    RankedMutex<LockRank::kDatabase> databaseMutex;
    SqliteDatabase database;
    std::filesystem::path file; // absolute

    mutable RankedMutex<LockRank::kLeaf> mutex; // guards what follows
    Folders folders;
    bool damaged = false; // a checksum was wrong
    uint64_t filesRead = 0;
};
