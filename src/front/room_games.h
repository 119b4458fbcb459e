// RoomGames: the games that are played in the room, and the sets that they play on.
//
// Sets are turned on and off by a thread of their own (session_worker.h): a call returns at once, and Collect
// takes over what has become of it. What counts for a set is the last call.
//
// Thread: main.
#pragma once

#include "front/light_gun.h"
#include "front/opened_game.h"
#include "front/resume_games.h"
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

// A game that could not start, or a machine that could not go on.
struct GAME_FAILURE {
    bool starting = false;
    std::string reason; // may be empty for a start
    uint32_t key = 0;   // of the set
    STATE_SNAPSHOT
    label{}; // by which the game can be opened again (resume_texts.h); empty for a start
};

class RoomGames {
public:
    // `resume`, which outlives this, keeps the games that are on; null: they are not kept.
    explicit RoomGames(std::vector<OPENED_GAME> openedGames, ResumeGames* resume = nullptr);
    ~RoomGames() { StopAll(); }
    RoomGames(const RoomGames&) = delete;
    RoomGames& operator=(const RoomGames&) = delete;

    // The next game in the list, which goes round, on the set of this key, in the place of what plays on it. False
    // without games.
    [[nodiscard]] bool StartNext(uint32_t key);
    // A game that is not in the list, and is freed when its machine has started.
    void Start(uint32_t key, OPENED_GAME&& opened);
    // A game that joins the list.
    void StartAndKeep(uint32_t key, OPENED_GAME&& opened);
    // A game that was on when the program ended goes on; it does not join the list.
    void GoOn(uint32_t key, OPENED_GAME&& opened, const LEFT_GAME& left);
    // Turns the set off, autosave included.
    void Stop(uint32_t key);
    // The program ends: what is on is kept to go on with the next start. Returns when all are off.
    void StopAll();

    // Once a round, takes over what has been done, and turns off the sets whose machine has ended by itself.
    // Returns these, and the games that could not start.
    [[nodiscard]] std::vector<GAME_FAILURE> Collect();

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
        std::vector<SNAPSHOT_TEXT> texts; // by which it can be opened again
        LightGun guns;
    };
    void StartOn(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened);
    void OrderStart(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened,
                    GAME_RESUME resume);
    void OrderStop(uint32_t key, SessionEnd end);
    void TakeOver(const SESSION_RESULT& result);
    // The set, if a game starts or plays on it.
    [[nodiscard]] const SET* Find(uint32_t key) const;

    ResumeGames* const resumeGames;
    std::vector<std::shared_ptr<const OPENED_GAME>> games;
    size_t next = 0;
    uint64_t orders = 0;
    std::map<uint32_t, SET> sets; // by session key; not those that are off
    SessionWorker worker;
};
