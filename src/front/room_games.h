// RoomGames: the games that are played in the room, and the sets that they play on.
//
// Thread: main. Owner: the opened games stay here for as long as they may be started.
#pragma once

#include "front/light_gun.h"
#include "front/opened_game.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class RoomGames {
public:
    explicit RoomGames(std::vector<OPENED_GAME> openedGames)
        : games(std::move(openedGames)) {}
    ~RoomGames() { StopAll(); }
    RoomGames(const RoomGames&) = delete;
    RoomGames& operator=(const RoomGames&) = delete;

    // The next game in the list, which goes round, on the set of this key. False with the reason.
    bool StartNext(uint32_t key, std::string& error);
    // A game that is not in the list.
    bool Start(uint32_t key, OPENED_GAME&& opened, std::string& error);
    // Autosave included.
    void Stop(uint32_t key);
    void StopAll();
    // Forgets the sets whose sessions have ended by themselves.
    void Forget(uint32_t key) { sets.erase(key); }

    // The title of the game on the set; empty if it is off.
    [[nodiscard]] std::string TitleOn(uint32_t key) const;
    // The game that StartNext starts; empty without games.
    [[nodiscard]] std::string NextTitle() const;
    // The guns of the game on the set; null if it is off.
    [[nodiscard]] const LightGun* GunsOn(uint32_t key) const;
    [[nodiscard]] size_t Count() const { return games.size(); }

private:
    struct SET {
        std::string title;
        LightGun guns;
    };
    bool StartOn(uint32_t key, const OPENED_GAME& opened, std::string& error);

    std::vector<OPENED_GAME> games;
    size_t next = 0;
    std::map<uint32_t, SET> sets; // by session key
};
