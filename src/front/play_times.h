// PlayTimes: tells the player's database which games have started and for how long they run.
//
// A session counts by its serial, so a game that is started again on the same set is another start. What has run is
// told once a minute and at the end: a crash costs less than a minute.
//
// Units: microseconds of the host's clock. Thread: main. Order: Update once a round.
#pragma once

#include "front/room_games.h"

#include <cstdint>
#include <map>
#include <span>

class PlayerDatabase;

class PlayTimes {
public:
    explicit PlayTimes(PlayerDatabase& player)
        : database(player) {}

    // `playing`: the games whose machines run.
    void Update(std::span<const PLAYED_GAME> playing, int64_t now);

    // Seconds of a running game that the database does not know yet.
    [[nodiscard]] int64_t Untold(uint32_t serial, int64_t now) const;

private:
    struct COUNT {
        GAME_IDENTITY game;
        int64_t since = 0; // what ran before this has been told
    };
    void Tell(COUNT& count, int64_t now);

    PlayerDatabase& database;
    std::map<uint32_t, COUNT> counts; // by serial
};
