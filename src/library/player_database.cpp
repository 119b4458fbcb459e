#include "library/player_database.h"

#include "base/helper_thread.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <utility>

PlayerDatabase::PlayerDatabase(std::function<int64_t()> now)
    : clock(now ? std::move(now) : [] { return static_cast<int64_t>(std::time(nullptr)); }) {}

PlayerDatabase::~PlayerDatabase() {
    {
        const std::scoped_lock locked(lock);
        end = true;
        due = true;
    }
    changed.notify_all();
    if (thread.joinable()) {
        thread.join();
    }
}

void PlayerDatabase::Open(const std::filesystem::path& path) {
    PlayerRecords read;
    std::string news;
    const bool usable = file.Open(path, read, news);
    {
        const std::scoped_lock locked(lock);
        records = std::move(read);
        message = std::move(news);
        due = usable; // a backup may be
    }
    if (usable) {
        thread = std::thread([this] {
            HelperBegins();
            Run();
        });
    }
}

PLAYER_RECORD PlayerDatabase::Find(const GAME_IDENTITY& game) const {
    const std::scoped_lock locked(lock);
    const auto found = records.find(game);
    return found != records.end() ? found->second : PLAYER_RECORD();
}

void PlayerDatabase::SetFavourite(const GAME_IDENTITY& game, bool favourite) {
    if (Find(game).favourite != favourite) {
        Change(game, {favourite, 0, 0, 0});
    }
}

void PlayerDatabase::NoteStart(const GAME_IDENTITY& game) {
    Change(game, {{}, clock(), 0, 1});
}

void PlayerDatabase::NotePlayed(const GAME_IDENTITY& game, int64_t seconds) {
    Change(game, {{}, clock(), std::max(seconds, int64_t{0}), 0});
}

void PlayerDatabase::Change(const GAME_IDENTITY& game, const PLAYER_CHANGE& change) {
    if (game.system == 0) {
        return;
    }
    {
        const std::scoped_lock locked(lock);
        ApplyChange(change, records[game]);
        AddChange(change, changes[game]);
        due = true;
    }
    changed.notify_all();
}

std::string PlayerDatabase::TakeMessage() {
    const std::scoped_lock locked(lock);
    return std::exchange(message, {});
}

void PlayerDatabase::Finish() {
    std::unique_lock locked(lock);
    if (thread.joinable()) {
        changed.wait(locked, [this] { return !due && !busy; });
    }
}

void PlayerDatabase::Run() {
    bool last = false;
    while (!last) {
        {
            std::unique_lock locked(lock);
            changed.wait(locked, [this] { return due; });
            due = false;
            busy = true;
            last = end;
        }
        WriteChanges();
        file.BackUp(clock());
        {
            const std::scoped_lock locked(lock);
            busy = false;
        }
        changed.notify_all();
    }
}

void PlayerDatabase::WriteChanges() {
    PlayerChanges taken;
    PlayerRecords whole;
    {
        const std::scoped_lock locked(lock);
        taken.swap(changes);
        whole = records;
    }
    if (taken.empty()) {
        return;
    }
    std::string news;
    const bool written = file.Write(taken, whole, news);
    const std::scoped_lock locked(lock);
    if (!written) {
        // Before those that came meanwhile.
        for (const auto& [game, change] : changes) {
            AddChange(change, taken[game]);
        }
        changes.swap(taken);
        news +=
            (news.empty() ? "" : "; ") + std::string("favourites and times played are not kept");
    }
    if (!news.empty() && (written || !told)) {
        message = news;
    }
    told = !written;
}
