// MediaReader: reads what lies on this computer about a game on a thread of its own, as pictures take ten
// milliseconds and more to decode.
//
// Only the game that was asked for last counts: an answer about another one is dropped.
// Threads: everything but the reading itself belongs to the owner, the main thread.
#pragma once

#include "base/ranked_mutex.h"
#include "screens/game_media.h"

#include <condition_variable>
#include <optional>
#include <string>
#include <thread>

class MediaReader {
public:
    MediaReader();
    ~MediaReader(); // waits for the game in hand
    MediaReader(const MediaReader&) = delete;
    MediaReader& operator=(const MediaReader&) = delete;

    void Ask(std::string systemFolder, std::wstring contentKey);
    // What was asked for before is not wanted any more.
    void Forget();
    // What was found about the game asked for last, once.
    [[nodiscard]] std::optional<GAME_MEDIA> Take();
    // Waits until Take has an answer, or nothing is asked for.
    void Wait();

private:
    struct QUESTION {
        std::string systemFolder;
        std::wstring contentKey;
    };

    void Run();

    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    std::optional<QUESTION> question; // under `lock`, as all that follows
    std::optional<GAME_MEDIA> answer;
    bool reading = false;
    bool stale = false; // what is being read is not wanted any more
    bool end = false;
    std::thread thread; // last, as it uses the others
};
