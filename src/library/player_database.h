// What the player has done with each game: whether it is a favourite, when it was played last, for how long in all,
// and how often it was started. It lies in `player.db` in the home folder (player_file.h).
//
// All of it is in memory; a thread writes what changes, so that no picture waits for the disk. What cannot be
// written is tried again with the next change. Without a file, in a folder that may not be written or beside a
// file of a newer version, it works for this run.
//
// Thread-safe. Two programs may use one file: each adds what it has counted, and sees the other's with its next
// start. Order: Open once, before anything else, or never.
#pragma once

#include "base/ranked_mutex.h"
#include "library/player_file.h"

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

inline constexpr std::string_view kPlayerDatabaseFile = ".\\player.db";

class PlayerDatabase {
public:
    // `now` is the time in seconds since 1970, and is called by any thread; empty: the system's.
    explicit PlayerDatabase(std::function<int64_t()> now = {});
    ~PlayerDatabase(); // writes what is not written yet
    PlayerDatabase(const PlayerDatabase&) = delete;
    PlayerDatabase& operator=(const PlayerDatabase&) = delete;

    void Open(const std::filesystem::path& file);

    [[nodiscard]] PLAYER_RECORD Find(const GAME_IDENTITY& game) const; // empty if nothing is known

    void SetFavourite(const GAME_IDENTITY& game, bool favourite);
    void NoteStart(const GAME_IDENTITY& game);
    void NotePlayed(const GAME_IDENTITY& game, int64_t seconds);

    // What the player should know since the last call, in one line; mostly nothing.
    [[nodiscard]] std::string TakeMessage();
    // Waits until every change is written, or could not be.
    void Finish();

private:
    void Change(const GAME_IDENTITY& game, const PLAYER_CHANGE& change);
    void Run();
    void WriteChanges(); // by the thread

    std::function<int64_t()> clock;
    PlayerFile file; // the thread's, once it runs

    mutable RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    PlayerRecords records; // these under `lock`
    PlayerChanges changes; // not written yet
    std::string message;
    bool told = false; // that writing fails
    bool due = false;  // the thread has something to do
    bool busy = false; // and does it
    bool end = false;
    std::thread thread; // last, as it uses the others
};
