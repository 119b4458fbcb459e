// PausedGame: holds a running game while something lies over it.
//
// When that has closed, the game waits until nothing is held down any more, so that the press that closed it does not
// reach the game. A game that was paused before stays paused.
//
// Thread: main. Order: Update once a round. A game that ends meanwhile takes the pause with it.
#pragma once

#include <cstdint>

class PausedGame {
public:
    PausedGame() = default;
    ~PausedGame() { GoOn(); }
    PausedGame(const PausedGame&) = delete;
    PausedGame& operator=(const PausedGame&) = delete;

    // Pauses the session on this key. False if there is none.
    bool Hold(uint32_t sessionKey);
    void LetGo(); // it goes on as soon as nothing is held
    void GoOn();  // at once

    // `now` in microseconds of the host's clock.
    void Update(int64_t now);

private:
    uint32_t key = 0;
    bool holds = false;   // between Hold and GoOn
    bool paused = false;  // the game, by this
    bool leaving = false; // LetGo was called
    int64_t leftAt = 0;   // when; 0: in this round
};
