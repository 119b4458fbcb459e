// RoomGames: the games that are played in the room, and the sets that they play on.
//
// Sets are turned on and off by a thread of their own (session_worker.h): a call returns at once, and Collect
// takes over what has become of it. What counts for a set is the last call.
//
// Thread: main.
#pragma once

#include "front/light_gun.h"
#include "front/opened_game.h"
#include "front/session_worker.h"
#include "library/game_identity.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

enum class SetState : uint8_t {
    kOff,
    kStarting, // what ran on it before may still be ending
    kPlaying,
    kStopping,
};

// A game whose machine runs.
struct PLAYED_GAME {
    uint32_t serial = 0; // of its session
    GAME_IDENTITY identity;
};

class RoomGames {
public:
    explicit RoomGames(std::vector<OPENED_GAME> openedGames);
    ~RoomGames() { StopAll(); }
    RoomGames(const RoomGames&) = delete;
    RoomGames& operator=(const RoomGames&) = delete;

    // The next game in the list, which goes round, on the set of this key, in the place of what plays on it. False
    // without games.
    [[nodiscard]] bool StartNext(uint32_t key);
    // A game that joins the list.
    void Start(uint32_t key, OPENED_GAME&& opened);
    // A game for this once, freed when nothing plays it any more.
    void StartOnce(uint32_t key, OPENED_GAME&& opened);
    // Autosave included.
    void Stop(uint32_t key);
    // Returns when all are off.
    void StopAll();

    // Once a round, takes over what has been done, and turns off the sets whose machine has ended by itself.
    // Returns the reasons of these and of games that could not start.
    [[nodiscard]] std::vector<std::string> Collect();

    [[nodiscard]] SetState StateOf(uint32_t key) const;
    // The serial of the session that plays on the set; 0 while none does.
    [[nodiscard]] uint32_t SerialOn(uint32_t key) const;
    // On all sets.
    [[nodiscard]] std::vector<PLAYED_GAME> Playing() const;
    // The title of the game that starts or plays on the set; else empty.
    [[nodiscard]] std::string TitleOn(uint32_t key) const;
    // Its machine's number; 0 if there is none.
    [[nodiscard]] uint16_t SystemOn(uint32_t key) const;
    // The game that StartNext starts; empty without games.
    [[nodiscard]] std::string NextTitle() const;
    // The guns of the game that starts or plays on the set; else null.
    [[nodiscard]] const LightGun* GunsOn(uint32_t key) const;
    [[nodiscard]] size_t Count() const { return games.size(); }

private:
    struct SET {
        uint64_t order = 0; // number of the last one
        SetState state = SetState::kStarting;
        uint32_t serial = 0;
        std::string title;
        GAME_IDENTITY identity;
        uint16_t system = 0;
        LightGun guns;
    };
    void StartOn(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened);
    void TakeOver(const SESSION_RESULT& result);
    // The set, if a game starts or plays on it.
    [[nodiscard]] const SET* Find(uint32_t key) const;

    std::vector<std::shared_ptr<const OPENED_GAME>> games;
    size_t next = 0;
    uint64_t orders = 0;
    std::map<uint32_t, SET> sets; // by session key; not those that are off
    SessionWorker worker;
};
