// The file of player_database.h: what is kept of each game, in SQLite.
//
//     player.db               the records
//     player.db.backup        a copy, not older than a day while the program is used
//     player.db.damaged       a damaged file that was set aside; player.db.damaged-2 and so on if that name is taken
//
// Every row has a checksum over all of it, and one row sums up the others, so that damage to any byte that counts
// is found. Then the file is set aside and the backup takes its place. A missing file is taken from the backup too:
// who wants to begin afresh deletes both. A file of a newer version is neither read nor written.
//
// Owner: one thread at a time. Failure: by result, with one line for the player.
#pragma once

#include "library/game_identity.h"
#include "library/sqlite_database.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

struct PLAYER_RECORD {
    bool favourite = false;
    int64_t lastPlayed = 0; // seconds since 1970; 0: never
    int64_t secondsPlayed = 0;
    int64_t starts = 0;

    [[nodiscard]] bool operator==(const PLAYER_RECORD&) const = default;
};

// What is added to a record. Two programs may add to the same one.
struct PLAYER_CHANGE {
    std::optional<bool> favourite;
    int64_t lastPlayed = 0; // 0: as it was
    int64_t secondsPlayed = 0;
    int64_t starts = 0;
};

void ApplyChange(const PLAYER_CHANGE& change, PLAYER_RECORD& record);
// `to` then does what it did and what `later` does.
void AddChange(const PLAYER_CHANGE& later, PLAYER_CHANGE& to);

using PlayerRecords = std::map<GAME_IDENTITY, PLAYER_RECORD>;
using PlayerChanges = std::map<GAME_IDENTITY, PLAYER_CHANGE>;

class PlayerFile {
public:
    // Reads the records, from the backup if need be. `message` says what the player should know; empty: all is
    // well. False if nothing can be written.
    bool Open(const std::filesystem::path& file, PlayerRecords& records, std::string& message);

    // All changes or none. `whole` are the records with the changes: they are written anew if the file turns out
    // damaged or is gone.
    [[nodiscard]] bool Write(const PlayerChanges& changes, const PlayerRecords& whole,
                             std::string& message);

    // Makes the copy if there is none of the last day; `now` in seconds since 1970. Keeps the old one if it cannot.
    void BackUp(int64_t now);

private:
    enum class State : uint8_t {
        kSound,
        kDamaged,
        kNewer,
        kUnreadable, // locked by another program, or not to be read at all
    };

    [[nodiscard]] static State Read(SqliteDatabase& from, const std::filesystem::path& path,
                                    PlayerRecords& records);
    [[nodiscard]] bool OpenSound(PlayerRecords& records, std::string& message);
    [[nodiscard]] bool Mend(PlayerRecords& records, std::string& message);
    [[nodiscard]] bool MakeTables();
    [[nodiscard]] bool WriteRows(const PlayerChanges& changes);
    [[nodiscard]] bool WriteRow(const GAME_IDENTITY& game, const PLAYER_CHANGE& change,
                                int64_t& games, Sha256Digest& sum);
    [[nodiscard]] bool WriteAgain(const PlayerChanges& changes, const PlayerRecords& whole,
                                  std::string& message);
    [[nodiscard]] bool WriteAnew(const PlayerRecords& whole, std::string& message);
    [[nodiscard]] std::string Refusal(State state) const;

    std::filesystem::path file;
    SqliteDatabase
        database; // open while it may be written; closed, the next Write looks at the file again
    bool rowDamaged = false; // WriteRows has met a wrong checksum
};
